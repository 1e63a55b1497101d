/* Start-up code for the ARM926EJ-S development board (ARMv4T and ARMv5TE ARM code).

   The program is loaded where it runs, so the exception vectors sit at address 0 and the
   entry point is reset_handler. Before main it sets up a stack for every processor mode from
   the stack sections of the section placement, copies initialised data whose load address
   differs from its run address, clears the zeroed data, opens the debugger's I/O channel when
   the semihosting library is linked, and runs the C++ constructors. main runs in System mode;
   its return value goes to exit. */

  .syntax unified
  .arm

  .section .vectors, "ax"
  .global _vectors
_vectors:
  ldr pc, reset_handler_address
  ldr pc, undef_handler_address
  ldr pc, swi_handler_address
  ldr pc, pabort_handler_address
  ldr pc, dabort_handler_address
  nop
  ldr pc, irq_handler_address
  ldr pc, fiq_handler_address

reset_handler_address:  .word reset_handler
undef_handler_address:  .word undef_handler
swi_handler_address:    .word swi_handler
pabort_handler_address: .word pabort_handler
dabort_handler_address: .word dabort_handler
irq_handler_address:    .word irq_handler
fiq_handler_address:    .word fiq_handler

  .equ MODE_FIQ, 0x11
  .equ MODE_IRQ, 0x12
  .equ MODE_SVC, 0x13
  .equ MODE_ABT, 0x17
  .equ MODE_UND, 0x1b
  .equ MODE_SYS, 0x1f
  .equ NO_INTERRUPTS, 0xc0

  .text
  .global reset_handler
  .type reset_handler, %function
reset_handler:
  msr cpsr_c, #MODE_UND | NO_INTERRUPTS
  ldr sp, =__stack_und_end__
  msr cpsr_c, #MODE_ABT | NO_INTERRUPTS
  ldr sp, =__stack_abt_end__
  msr cpsr_c, #MODE_FIQ | NO_INTERRUPTS
  ldr sp, =__stack_fiq_end__
  msr cpsr_c, #MODE_IRQ | NO_INTERRUPTS
  ldr sp, =__stack_irq_end__
  msr cpsr_c, #MODE_SVC | NO_INTERRUPTS
  ldr sp, =__stack_svc_end__
  msr cpsr_c, #MODE_SYS | NO_INTERRUPTS
  ldr sp, =__stack_end__

  /* Initialised data: from its load address to its run address, if they differ. */
  ldr r0, =__data_load_start__
  ldr r1, =__data_start__
  ldr r2, =__data_end__
  cmp r0, r1
  beq 2f
1:
  cmp r1, r2
  ldrlo r3, [r0], #4
  strlo r3, [r1], #4
  blo 1b
2:
  /* Zeroed data. */
  ldr r1, =__bss_start__
  ldr r2, =__bss_end__
  mov r3, #0
3:
  cmp r1, r2
  strlo r3, [r1], #4
  blo 3b

  /* The semihosting C library needs its standard streams opened first; the reference is
     weak so that it stays zero when that library isn't linked. */
  ldr r0, =initialise_monitor_handles
  cmp r0, #0
  movne lr, pc
  bxne r0

  /* C++ constructors, in the order of the table. */
  ldr r4, =__init_array_start__
  ldr r5, =__init_array_end__
4:
  cmp r4, r5
  bhs 5f
  ldr r0, [r4], #4
  mov lr, pc
  bx r0
  b 4b
5:
  mov r0, #0
  mov r1, #0
  ldr r2, =main
  mov lr, pc
  bx r2
  ldr r2, =exit
  bx r2
  .size reset_handler, . - reset_handler
  .weak initialise_monitor_handles

/* Exceptions that the program doesn't handle stop it: the debugger is told of a run-time
   error. A handler of the program's own replaces one of these by defining its name. */
  .macro unhandled name
  .weak \name
  .type \name, %function
\name:
  b unhandled_exception
  .endm

  unhandled undef_handler
  unhandled swi_handler
  unhandled pabort_handler
  unhandled dabort_handler
  unhandled irq_handler
  unhandled fiq_handler

  .equ SYS_EXIT, 0x18
  .equ ADP_Stopped_RunTimeErrorUnknown, 0x20023
unhandled_exception:
  mov r0, #SYS_EXIT
  ldr r1, =ADP_Stopped_RunTimeErrorUnknown
  svc 0x123456
  b unhandled_exception
