/* The target I/O C library: the heap is the .heap section that the generated linker script
   sizes by the heap size setting. */
#include <errno.h>
#include <stddef.h>

extern char __heap_start__[];
extern char __heap_end__[];

void *_sbrk(ptrdiff_t increment)
{
    static char *top = __heap_start__;
    if (increment > __heap_end__ - top || increment < __heap_start__ - top) {
        errno = ENOMEM;
        return (void *)-1;
    }
    char *previous = top;
    top += increment;
    return previous;
}
