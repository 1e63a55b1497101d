/* The target I/O C library: the system calls beneath the C library's streams. Standard input
   reads the target's __getchar, standard output and error write its __putchar; there are no
   files. */
#include "debugio.h"

#include <errno.h>
#include <sys/stat.h>

enum { STDIN = 0, STDOUT = 1, STDERR = 2 };

static int isConsole(int fd)
{
    return fd == STDIN || fd == STDOUT || fd == STDERR;
}

int _write(int fd, const char *buffer, int length)
{
    if (fd != STDOUT && fd != STDERR) {
        errno = EBADF;
        return -1;
    }
    for (int i = 0; i < length; ++i)
        __putchar((unsigned char)buffer[i]);
    return length;
}

/* Reads up to `length` characters, ending early after a newline as a terminal would. */
int _read(int fd, char *buffer, int length)
{
    if (fd != STDIN) {
        errno = EBADF;
        return -1;
    }
    int count = 0;
    while (count < length) {
        const int c = __getchar();
        if (c < 0)
            break;
        buffer[count++] = (char)c;
        if (c == '\n')
            break;
    }
    return count;
}

int _open(const char *name, int flags, int mode)
{
    (void)name;
    (void)flags;
    (void)mode;
    errno = ENOENT;
    return -1;
}

int _close(int fd)
{
    if (!isConsole(fd)) {
        errno = EBADF;
        return -1;
    }
    return 0;
}

int _lseek(int fd, int offset, int whence)
{
    (void)offset;
    (void)whence;
    errno = isConsole(fd) ? ESPIPE : EBADF;
    return -1;
}

int _fstat(int fd, struct stat *status)
{
    if (!isConsole(fd)) {
        errno = EBADF;
        return -1;
    }
    status->st_mode = S_IFCHR;
    status->st_blksize = 0;
    return 0;
}

int _isatty(int fd)
{
    if (isConsole(fd))
        return 1;
    errno = EBADF;
    return 0;
}
