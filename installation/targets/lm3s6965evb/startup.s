/* Start-up code for the Cortex-M3 evaluation board (ARMv7-M Thumb code).

   The core takes its initial stack pointer and the address of reset_handler from the first
   two words of the vector table, which the section placement puts at the start of flash.
   Before main it copies initialised data from flash to SRAM, clears the zeroed data, opens
   the debugger's I/O channel when the semihosting library is linked, and runs the C++
   constructors; main's return value goes to exit. */

  .syntax unified
  .cpu cortex-m3
  .thumb

  .section .vectors, "a"
  .global _vectors
_vectors:
  .word __stack_end__
  .word reset_handler
  .word nmi_handler
  .word hard_fault_handler
  .word mem_manage_handler
  .word bus_fault_handler
  .word usage_fault_handler
  .word 0, 0, 0, 0
  .word svc_handler
  .word debug_monitor_handler
  .word 0
  .word pend_sv_handler
  .word systick_handler

  .text
  .global reset_handler
  .type reset_handler, %function
  .thumb_func
reset_handler:
  /* Initialised data: from its load address in flash to its run address in SRAM. */
  ldr r0, =__data_load_start__
  ldr r1, =__data_start__
  ldr r2, =__data_end__
  cmp r0, r1
  beq 2f
1:
  cmp r1, r2
  itt lo
  ldrlo r3, [r0], #4
  strlo r3, [r1], #4
  blo 1b
2:
  /* Zeroed data. */
  ldr r1, =__bss_start__
  ldr r2, =__bss_end__
  movs r3, #0
3:
  cmp r1, r2
  itt lo
  strlo r3, [r1], #4
  blo 3b

  /* The semihosting C library needs its standard streams opened first; the reference is
     weak so that it stays zero when that library isn't linked. */
  ldr r0, =initialise_monitor_handles
  cbz r0, 4f
  blx r0
4:
  /* C++ constructors, in the order of the table. */
  ldr r4, =__init_array_start__
  ldr r5, =__init_array_end__
5:
  cmp r4, r5
  bhs 6f
  ldr r0, [r4], #4
  blx r0
  b 5b
6:
  movs r0, #0
  movs r1, #0
  bl main
  bl exit
  .size reset_handler, . - reset_handler
  .weak initialise_monitor_handles

/* Exceptions that the program doesn't handle stop it: the debugger is told of a run-time
   error. A handler of the program's own replaces one of these by defining its name. */
  .macro unhandled name
  .weak \name
  .type \name, %function
  .thumb_func
\name:
  b unhandled_exception
  .endm

  unhandled nmi_handler
  unhandled hard_fault_handler
  unhandled mem_manage_handler
  unhandled bus_fault_handler
  unhandled usage_fault_handler
  unhandled svc_handler
  unhandled debug_monitor_handler
  unhandled pend_sv_handler
  unhandled systick_handler

  .equ SYS_EXIT, 0x18
  .equ ADP_Stopped_RunTimeErrorUnknown, 0x20023
  .thumb_func
unhandled_exception:
  movs r0, #SYS_EXIT
  ldr r1, =ADP_Stopped_RunTimeErrorUnknown
  bkpt 0xab
  b unhandled_exception
