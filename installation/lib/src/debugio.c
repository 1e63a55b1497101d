/* The debug I/O library: console I/O and program exit through the debugger. */
#include "debugio.h"

enum {
    SYS_WRITEC = 0x03,
    SYS_WRITE0 = 0x04,
    SYS_READC = 0x07,
    SYS_EXIT = 0x18,
    SYS_EXIT_EXTENDED = 0x20,
    ADP_Stopped_RunTimeErrorUnknown = 0x20023,
    ADP_Stopped_ApplicationExit = 0x20026
};

void debug_putchar(int c)
{
    char character = (char)c;
    __semihosting_call(SYS_WRITEC, &character);
}

void debug_puts(const char *s)
{
    __semihosting_call(SYS_WRITE0, (void *)s);
    debug_putchar('\n');
}

int debug_getchar(void)
{
    return __semihosting_call(SYS_READC, 0);
}

void debug_exit(int status)
{
    if (status != 0) {
        /* Only the extended call carries a status; a debugger without it returns, and then
           hears of an unknown run-time error instead. */
        int block[2] = {ADP_Stopped_ApplicationExit, status};
        __semihosting_call(SYS_EXIT_EXTENDED, block);
    }
    for (;;)
        __semihosting_call(SYS_EXIT, (void *)(status == 0 ? ADP_Stopped_ApplicationExit
                                                            : ADP_Stopped_RunTimeErrorUnknown));
}
