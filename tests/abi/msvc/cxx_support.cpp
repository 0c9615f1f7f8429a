// The pieces of a C++ library that code compiled for the MSVC ABI refers to
// and that the MSVC-ABI test clients, built without one, define themselves.
#include <stdlib.h>

// Deleting destructors of classes with virtual destructors refer to these;
// the clients never allocate with new.
void operator delete(void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }

// The type descriptors that catch clauses emit point at type_info's virtual
// table. The catching runtime compares descriptors by name and never calls
// through it, so an empty table serves.
extern "C" const void* const mvsup_type_info_vtable[2] __asm__("??_7type_info@@6B@") = {nullptr, nullptr};
