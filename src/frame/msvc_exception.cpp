// std::out_of_range as Microsoft's C++ runtime throws and catches it.
//
// A throw in code built with Microsoft's compiler is a structured exception
// with code 0xE06D7363 whose parameters point at the exception object and at
// a description of its type (the throw information): its destructor and the
// list of types a catch clause may name to catch it, most derived first,
// each with its type descriptor (matched by its decorated name), size and
// copy constructor. On x86_64 every reference inside that description is an
// offset from the image base of the module that raised it (passed as the
// fourth parameter); on i686 it is a plain pointer. The object itself has
// the layout of Microsoft's std::exception: a virtual table (slot 0 the
// deleting destructor, slot 1 what()) and the text with its ownership flag.
#include "frame/msvc_exception.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace mvsup::frame {

namespace {

constexpr DWORD kMsvcExceptionCode = 0xE06D7363;  // 0xE0000000 | "msc"
constexpr ULONG_PTR kMsvcThrowMagic = 0x19930520;

#if defined(__i386__)
// Member functions on i686 take `this` in ECX; the catching runtime calls
// them that way.
#define MVSUP_THISCALL __attribute__((thiscall))
using ImageRef = const void*;
ImageRef image_ref(const void* target) { return target; }
#else
#define MVSUP_THISCALL
using ImageRef = std::int32_t;
ImageRef image_ref(const void* target) {
  return static_cast<ImageRef>(reinterpret_cast<std::uintptr_t>(target) -
                               reinterpret_cast<std::uintptr_t>(&__ImageBase));
}
#endif

using VtableSlot = void (*)();

// std::exception: the text and whether the object owns (and must free) it.
struct ExceptionObject {
  const VtableSlot* vtable;
  const char* what;
  bool owns_what;
};

template <std::size_t N>
struct TypeDescriptor {
  const void* type_info_vtable;  // the catching runtime matches by name alone
  void* runtime_cache;           // written by the runtime (undecorated name)
  char decorated_name[N];
};

template <std::size_t N>
constexpr TypeDescriptor<N> describe(const char (&decorated_name)[N]) {
  TypeDescriptor<N> descriptor{};
  for (std::size_t i = 0; i < N; ++i) descriptor.decorated_name[i] = decorated_name[i];
  return descriptor;
}

struct MemberDisplacement {
  int member;
  int vbtable;  // -1: no virtual base
  int vbtable_entry;
};

struct CatchableType {
  unsigned properties;  // 0: a class, caught by value or reference
  ImageRef type;
  MemberDisplacement this_displacement;
  int size;
  ImageRef copy_constructor;
};

struct CatchableTypeArray {
  int count;
  ImageRef types[3];
};

struct ThrowInfo {
  unsigned attributes;
  ImageRef destructor;
  ImageRef forward_compat;
  ImageRef catchable_types;
};

// The type descriptors are written by the runtime: they live in writable data.
auto g_out_of_range_type = describe(".?AVout_of_range@std@@");
auto g_logic_error_type = describe(".?AVlogic_error@std@@");
auto g_exception_type = describe(".?AVexception@std@@");

// The text always has static storage (owns_what is false): destroying an
// object has nothing to release, and a copy shares the text.
void MVSUP_THISCALL destroy(ExceptionObject*) {}

// Slot 0. Objects of this library are never allocated by a caller's operator
// new, so the "free the memory too" flag has nothing to free.
void* MVSUP_THISCALL destroy_scalar(ExceptionObject* self, unsigned /*flags*/) {
  destroy(self);
  return self;
}

const char* MVSUP_THISCALL what(const ExceptionObject* self) {
  return self->what != nullptr ? self->what : "Unknown exception";
}

ExceptionObject* MVSUP_THISCALL copy(ExceptionObject* self, const ExceptionObject* source) {
  *self = *source;
  return self;
}

// Slot -1 is the runtime type information locator; there is none, and
// runtimes that look for it (typeid) report a missing one instead of reading
// past the table.
const VtableSlot kVtable[] = {nullptr, reinterpret_cast<VtableSlot>(&destroy_scalar),
                              reinterpret_cast<VtableSlot>(&what)};

struct ThrowTables {
  CatchableType types[3];
  CatchableTypeArray array;
  ThrowInfo info;
};

ThrowTables g_tables;

// Image-relative offsets cannot be written as static initialisers: the
// tables are filled in when the library is loaded, before any export runs.
bool build_throw_tables() {
  const auto catchable = [](const void* type) {
    return CatchableType{0, image_ref(type), {0, -1, 0}, static_cast<int>(sizeof(ExceptionObject)),
                         image_ref(reinterpret_cast<const void*>(&copy))};
  };
  g_tables.types[0] = catchable(&g_out_of_range_type);
  g_tables.types[1] = catchable(&g_logic_error_type);
  g_tables.types[2] = catchable(&g_exception_type);
  g_tables.array.count = static_cast<int>(std::size(g_tables.types));
  for (int i = 0; i < g_tables.array.count; ++i) g_tables.array.types[i] = image_ref(&g_tables.types[i]);
  g_tables.info = ThrowInfo{0, image_ref(reinterpret_cast<const void*>(&destroy)), ImageRef{},
                            image_ref(&g_tables.array)};
  return true;
}

[[maybe_unused]] const bool g_tables_built = build_throw_tables();

}  // namespace

void raise_out_of_range(const char* what) {
  // The object lives in this frame: the catching runtime runs the handler
  // before it unwinds the stack, and destroys the object when the handler
  // ends.
  ExceptionObject object{&kVtable[1], what, false};
  const ULONG_PTR arguments[] = {
      kMsvcThrowMagic, reinterpret_cast<ULONG_PTR>(&object), reinterpret_cast<ULONG_PTR>(&g_tables.info),
#if !defined(__i386__)
      reinterpret_cast<ULONG_PTR>(&__ImageBase),
#endif
  };
  ::RaiseException(kMsvcExceptionCode, EXCEPTION_NONCONTINUABLE, static_cast<DWORD>(std::size(arguments)),
                   arguments);
  // A handler that tries to continue a non-continuable exception gets
  // another exception; control never comes back here.
  __builtin_trap();
}

}  // namespace mvsup::frame
