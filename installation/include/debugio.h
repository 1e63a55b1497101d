/* Input and output through the debugger (semihosting), usable whatever the C library's
   streams are connected to. */
#ifndef DEBUGIO_H
#define DEBUGIO_H

#ifdef __cplusplus
extern "C" {
#endif

/* Writes one character to the debugger's console. */
void debug_putchar(int c);
/* Writes a string and a newline to the debugger's console. */
void debug_puts(const char *s);
/* Reads one character from the debugger's console. */
int debug_getchar(void);
/* Ends the program; the debugger sees `status` where it can report it. */
void debug_exit(int status) __attribute__((noreturn));

/* The debugger's semihosting call: operation in r0, argument block in r1, result in r0. The
   debug interface library supplies it in the form the target's core can trap. */
int __semihosting_call(int operation, void *argument);

/* The target's character output and input that the target I/O C library's streams use. The
   library's own versions, which use the debugger, give way to the program's. */
int __putchar(int c);
int __getchar(void);

#ifdef __cplusplus
}
#endif

#endif
