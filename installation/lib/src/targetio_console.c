/* The target I/O C library: the character I/O a target uses until it supplies its own, for
   example through a UART. These versions use the debugger. */
#include "debugio.h"

__attribute__((weak)) int __putchar(int c)
{
    debug_putchar(c);
    return c;
}

__attribute__((weak)) int __getchar(void)
{
    return debug_getchar();
}
