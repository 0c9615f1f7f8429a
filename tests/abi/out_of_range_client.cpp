// A C++ caller built for the MSVC ABI: the out-of-range error of the value
// accessor reaches it as its own runtime's std::out_of_range, caught by every
// clause such callers write, with its text, and the stack between the
// accessor and the handler unwound.
#include <stdio.h>
#include <string.h>

#include "MvSup2u.h"
#include "msvc/std_exception.h"

namespace {

constexpr char kSubscriptError[] = "invalid vector<T> subscript";
constexpr DWORD kMsvcExceptionCode = 0xE06D7363;

int g_failures = 0;

void check(bool passed, const char* what) {
  if (!passed) {
    printf("FAILED: %s\n", what);
    ++g_failures;
  }
}

bool is_subscript_error(const char* what) { return what != nullptr && strcmp(what, kSubscriptError) == 0; }

struct Values {
  HMVXINFO info;
  HMVXATTR attribute;
};

// Increments a counter when destroyed: shows that unwinding ran the caller's
// destructors on the way to the handler.
struct Sentinel {
  int* destroyed;
  ~Sentinel() { ++*destroyed; }
};

__declspec(noinline) PMVXVALUE read_guarded(const Values& values, int index, int* destroyed) {
  Sentinel sentinel{destroyed};
  return MvxGetAttributeValue(values.info, values.attribute, index);
}

// A rethrow in a function of its own (the shape callers use to share
// clean-up code).
[[noreturn]] __declspec(noinline) void rethrow() { throw; }

// The inner handler has a function of its own: clang 14's i686 code crashes
// after a rethrow from a handler nested in another try block of the same
// function, whoever threw.
__declspec(noinline) void read_and_rethrow(const Values& values, int index) {
  try {
    MvxGetAttributeValue(values.info, values.attribute, index);
  } catch (...) {
    rethrow();
  }
}

// What the raised structured exception looked like to the first handler.
struct Raised {
  DWORD code = 0;
  DWORD flags = 0;
  DWORD parameters = 0;
  ULONG_PTR magic = 0;
  ULONG_PTR image_base = 0;
};
Raised g_raised;

LONG CALLBACK record_raise(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  if (record.ExceptionCode == kMsvcExceptionCode && g_raised.code == 0) {
    g_raised.code = record.ExceptionCode;
    g_raised.flags = record.ExceptionFlags;
    g_raised.parameters = record.NumberParameters;
    g_raised.magic = record.ExceptionInformation[0];
    if (record.NumberParameters > 3) g_raised.image_base = record.ExceptionInformation[3];
  }
  return EXCEPTION_CONTINUE_SEARCH;
}

// True when the accessor's error is caught by a clause for `const Error&`
// and carries the text.
template <class Error>
bool caught_as(const Values& values, int index) {
  try {
    MvxGetAttributeValue(values.info, values.attribute, index);
  } catch (const Error& error) {
    return is_subscript_error(error.what());
  }
  return false;
}

void caught_by_each_clause(const Values& values, int index) {
  const int failures_before = g_failures;
  check(caught_as<std::out_of_range>(values, index), "caught as const std::out_of_range& with its text");
  check(caught_as<std::logic_error>(values, index), "caught as const std::logic_error& with its text");
  check(caught_as<std::exception>(values, index), "caught as const std::exception& with its text");
  bool caught = false;
  try {
    MvxGetAttributeValue(values.info, values.attribute, index);
  } catch (...) {
    caught = true;
  }
  check(caught, "caught by catch (...)");
  if (g_failures != failures_before) printf("  (for index %d)\n", index);
}

void matched_by_type(const Values& values) {
  int clause = 0;
  try {
    MvxGetAttributeValue(values.info, values.attribute, 2);
  } catch (const std::runtime_error&) {
    clause = 1;
  } catch (const std::out_of_range&) {
    clause = 2;
  }
  check(clause == 2, "an unrelated type's clause is passed over");

  // By value: the catching runtime copies the object with the library's
  // copy constructor, and the caller destroys the copy.
  bool caught = false;
  try {
    MvxGetAttributeValue(values.info, values.attribute, 2);
  } catch (std::exception error) {
    caught = is_subscript_error(error.what());
  }
  check(caught, "caught by value as std::exception with its text");
}

void unwound_and_rethrown(const Values& values) {
  int destroyed = 0;
  bool caught = false;
  try {
    read_guarded(values, 2, &destroyed);
  } catch (const std::out_of_range& error) {
    caught = is_subscript_error(error.what());
  }
  check(caught && destroyed == 1, "the caller's frames between the call and the handler are unwound");

  caught = false;
  try {
    read_and_rethrow(values, 2);
  } catch (const std::exception& error) {
    caught = is_subscript_error(error.what());
  }
  check(caught, "a rethrown error keeps its type and text");
}

void raised_as_the_runtime_raises(const Values& values) {
  PVOID handler = AddVectoredExceptionHandler(1, record_raise);
  try {
    MvxGetAttributeValue(values.info, values.attribute, 2);
  } catch (...) {
  }
  RemoveVectoredExceptionHandler(handler);
  check(g_raised.code == kMsvcExceptionCode, "the code is the C++ exception's");
  check((g_raised.flags & EXCEPTION_NONCONTINUABLE) != 0, "the exception is not continuable");
  check(g_raised.magic == 0x19930520, "the first parameter is the runtime's magic number");
#if defined(_WIN64)
  check(g_raised.parameters == 4, "four parameters");
  check(g_raised.image_base == reinterpret_cast<ULONG_PTR>(GetModuleHandleW(L"MvSup2u.dll")),
        "the fourth parameter is the library's image base");
#else
  check(g_raised.parameters == 3, "three parameters");
#endif
}

}  // namespace

int main() {
  BYTE* block = nullptr;
  if (FAILED(MvxCreateItemInfo(&block))) {
    printf("FAILED: no item info\n");
    return 1;
  }
  HMVXINFO info = MvxOpen(block);
  const Values values{info, MvxAddAttribute(info, MvxAddProperty(info, 0x1000), 16)};
  MvxAddInteger(info, values.attribute, 7);
  MvxAddInteger(info, values.attribute, 8);

  const int outside[] = {2, -1, 1000};
  for (int index : outside) caught_by_each_clause(values, index);
  matched_by_type(values);
  unwound_and_rethrown(values);
  raised_as_the_runtime_raises(values);

  // The library carries on after its error was handled.
  LONG UNALIGNED* number = nullptr;
  MvxGetInteger(info, MvxGetAttributeValue(info, values.attribute, 1), &number);
  check(number != nullptr && *number == 8, "a valid index still reads its value");

  MvxClose(info);
  FreeMvxInfo(block);
  if (g_failures != 0) return 1;
  printf("out_of_range client ok\n");
  return 0;
}
