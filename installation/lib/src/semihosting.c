/* The debug interface library: how the target's core reaches the debugger. Cores of the
   M profile trap with BKPT; the others trap with SVC, whose number depends on the state. */
#include "debugio.h"

int __semihosting_call(int operation, void *argument)
{
    register int r0 __asm__("r0") = operation;
    register void *r1 __asm__("r1") = argument;
#if defined(__ARM_ARCH_PROFILE) && __ARM_ARCH_PROFILE == 'M'
    __asm__ volatile("bkpt 0xab" : "+r"(r0) : "r"(r1) : "memory");
#elif defined(__thumb__)
    __asm__ volatile("svc 0xab" : "+r"(r0) : "r"(r1) : "memory");
#else
    __asm__ volatile("svc 0x123456" : "+r"(r0) : "r"(r1) : "memory");
#endif
    return r0;
}
