/* The example firmware: it prints what its library and its C++ part compute, checks the
   results, and returns the number of failed checks, which becomes the exit status that the
   debugger (here QEMU's semihosting) reports. */
#include "crc32.h"
#include "shapes.h"
#include "statistics.h"

#include <stdio.h>
#include <string.h>

#if defined(BOARD_VERSATILEPB)
#define BOARD "versatilepb"
#elif defined(BOARD_LM3S6965EVB)
#define BOARD "lm3s6965evb"
#else
#error "no board defined"
#endif

static int failures;

static void check(int condition, const char *what)
{
    if (!condition) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

int main(void)
{
    static const int samples[] = {3, 1, 4, 1, 5, 9, 2, 6};
    const int count = sizeof samples / sizeof samples[0];
    static const char text[] = "123456789";

    printf("Hello from %s\n", BOARD);
    const long sum = statistics_sum(samples, count);
    const long mean = statistics_mean_milli(samples, count);
    printf("sum %ld, mean %ld.%03ld, maximum %d\n", sum, mean / 1000, mean % 1000,
           statistics_maximum(samples, count));
    check(sum == 31 && mean == 3875, "statistics");
#if defined(BOARD_VERSATILEPB)
    /* This board's configuration links the floating point printf. */
    printf("mean as a double %.3f\n", (double)mean / 1000);
#endif

    const unsigned long crc = crc32(text, strlen(text));
    printf("crc32 %08lx\n", crc);
    check(crc == 0xcbf43926ul, "crc32");

    check(shapes_report() == 2, "static constructors");
    printf("%s\n", failures ? "some checks failed" : "all checks passed");
    return failures;
}
