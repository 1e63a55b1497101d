/* The target I/O C library: the target has no clock of its own. */
#include <errno.h>
#include <sys/time.h>
#include <sys/times.h>

int _gettimeofday(struct timeval *time, void *zone)
{
    (void)time;
    (void)zone;
    errno = ENOSYS;
    return -1;
}

clock_t _times(struct tms *times)
{
    (void)times;
    errno = ENOSYS;
    return (clock_t)-1;
}
