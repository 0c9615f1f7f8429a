// The standard exception classes as a caller built with Microsoft's compiler
// sees them: the same names (so their decorated names match), the same
// layout (a virtual table, then the text and whether the object owns it) and
// the language runtime's helpers for copying and releasing the text. The MSVC-ABI
// clients are built without a C++ library; this is the part of <stdexcept>
// they use.
#pragma once

#include <stddef.h>

struct __std_exception_data {
  const char* _What;
  bool _DoFree;
};

extern "C" void __cdecl __std_exception_copy(const __std_exception_data* from, __std_exception_data* to);
extern "C" void __cdecl __std_exception_destroy(__std_exception_data* data);

namespace std {

class exception {
 public:
  exception() noexcept : data_{} {}
  explicit exception(const char* what) noexcept : data_{} {
    const __std_exception_data source{what, true};
    __std_exception_copy(&source, &data_);
  }
  exception(const exception& other) noexcept : data_{} { __std_exception_copy(&other.data_, &data_); }
  exception& operator=(const exception& other) noexcept {
    if (this != &other) {
      __std_exception_destroy(&data_);
      __std_exception_copy(&other.data_, &data_);
    }
    return *this;
  }
  virtual ~exception() noexcept { __std_exception_destroy(&data_); }
  virtual const char* what() const noexcept { return data_._What ? data_._What : "Unknown exception"; }

 private:
  __std_exception_data data_;
};

class logic_error : public exception {
 public:
  explicit logic_error(const char* what) : exception(what) {}
};

class out_of_range : public logic_error {
 public:
  explicit out_of_range(const char* what) : logic_error(what) {}
};

class runtime_error : public exception {
 public:
  explicit runtime_error(const char* what) : exception(what) {}
};

}  // namespace std
