/* The entry table and the exported stubs, both expanded from the catalogue.
 *
 * Each slot holds the address of one kernel, in the byte order of the
 * exported names.  The table is constant: filled by the linker, placed by a
 * relative relocation at load time, never written by code, so a call works
 * from the moment the library is loaded.  Each exported array function is a
 * stub that jumps through its slot, leaving every argument untouched; the
 * kernel returns straight to the caller.
 */
#define ORVO_IF_0(...)
#define ORVO_IF_1(...) __VA_ARGS__
#define ORVO_IF(Built, ...) ORVO_IF_##Built(__VA_ARGS__)

#define ORVO_SLOT(Name) .LSlot_##Name: .quad Kernel_##Name;

#define ORVO_STUB(Name)                 \
    .globl orvo##Name;                  \
    .type orvo##Name, @function;        \
    .balign 16;                         \
orvo##Name:                             \
    jmp *.LSlot_##Name(%rip);           \
    .size orvo##Name, .-orvo##Name;

    .section .data.rel.ro,"aw"
    .balign 64
    .globl EntryTable
    .hidden EntryTable
    .type EntryTable, @object
EntryTable:
#define ORVO_ENTRY(Name, Family, Type, Level, Shape, Style, Block, Checks, SameCodeAs, Built) ORVO_IF(Built, ORVO_SLOT(Name))
#include "frame/catalogue.def"
#undef ORVO_ENTRY
    .size EntryTable, .-EntryTable

    .text
#define ORVO_ENTRY(Name, Family, Type, Level, Shape, Style, Block, Checks, SameCodeAs, Built) ORVO_IF(Built, ORVO_STUB(Name))
#include "frame/catalogue.def"
#undef ORVO_ENTRY

    .section .note.GNU-stack,"",@progbits
