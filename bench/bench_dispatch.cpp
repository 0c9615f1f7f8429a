// The late-bound helpers against the same lookup and Invoke written by hand,
// on the system's Scripting.Dictionary, tracing off.
#include <windows.h>
#include <oleauto.h>

#include <algorithm>
#include <cstdio>

#include "MvSup2u.h"
#include "bench.h"

namespace mvsup::bench {
namespace {

// What a caller writes without the library: look the name up, Invoke, check
// the type.
__attribute__((noinline)) long raw_count(IDispatch* dictionary) {
  LPOLESTR name = const_cast<LPOLESTR>(L"Count");
  DISPID dispid = 0;
  if (FAILED(dictionary->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_SYSTEM_DEFAULT, &dispid))) return -1;
  DISPPARAMS none = {nullptr, nullptr, 0, 0};
  VARIANT result;
  VariantInit(&result);
  EXCEPINFO exception = {};
  UINT arg_err = 0;
  const HRESULT hr = dictionary->Invoke(dispid, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &result, &exception, &arg_err);
  const long count = hr == S_OK && result.vt == VT_I4 ? result.lVal : -1;
  VariantClear(&result);
  return count;
}

__attribute__((noinline)) BOOL raw_exists(IDispatch* dictionary, VARIANT* key) {
  LPOLESTR name = const_cast<LPOLESTR>(L"Exists");
  DISPID dispid = 0;
  if (FAILED(dictionary->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_SYSTEM_DEFAULT, &dispid))) return FALSE;
  VARIANT argument;
  VariantInit(&argument);
  argument.vt = VT_BYREF | VT_VARIANT;
  argument.pvarVal = key;
  DISPPARAMS params = {&argument, nullptr, 1, 0};
  VARIANT result;
  VariantInit(&result);
  EXCEPINFO exception = {};
  UINT arg_err = 0;
  dictionary->Invoke(dispid, IID_NULL, 0, DISPATCH_METHOD, &params, &result, &exception, &arg_err);
  const BOOL found = result.vt == VT_BOOL && result.boolVal;
  VariantClear(&result);
  return found;
}

template <typename Helper, typename Raw>
void compare(const char* what, Helper helper_call, Raw raw_call, int calls, int rounds) {
  double helper = 1e30, raw = 1e30;
  for (int round = 0; round < rounds; ++round) {
    helper = std::min(helper, seconds_per_call(helper_call, calls, 1));
    raw = std::min(raw, seconds_per_call(raw_call, calls, 1));
  }
  std::printf("  %-42s %10.1f ns  by hand %10.1f ns  ratio %.3f\n", what, helper * 1e9, raw * 1e9, helper / raw);
}

void run() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return;
  IDispatch* dictionary = nullptr;
  if (DispatchCreateDispatch(L"Scripting.Dictionary", &dictionary) != S_OK) {
    std::printf("  Scripting.Dictionary is not available\n");
    CoUninitialize();
    return;
  }
  VARIANT key;
  VariantInit(&key);
  key.vt = VT_BSTR;
  key.bstrVal = SysAllocString(L"key");
  VARIANT item;
  VariantInit(&item);
  VARIANT pair[2] = {key, item};
  DispatchDoVerbV(dictionary, const_cast<LPOLESTR>(L"Add"), 2, pair, nullptr);

  compare(
      "DispatchPropertyGetI4 Count",
      [&] {
        long count = 0;
        keep(DispatchPropertyGetI4(dictionary, const_cast<LPOLESTR>(L"Count"), &count, 0));
      },
      [&] { keep(raw_count(dictionary)); }, 20000, 15);
  compare(
      "DispatchDoVerbArgsV Exists(key)",
      [&] {
        VARIANT argument;
        VariantInit(&argument);
        argument.vt = VT_BYREF | VT_VARIANT;
        argument.pvarVal = &key;
        VARIANT result;
        VariantInit(&result);
        keep(DispatchDoVerbArgsV(dictionary, const_cast<LPOLESTR>(L"Exists"), 1, &argument, &result));
        VariantClear(&result);
      },
      [&] { keep(raw_exists(dictionary, &key)); }, 20000, 15);
  std::printf("  goal: ratio within 1.10 (one record and one array allocation more per call)\n");

  VariantClear(&key);
  dictionary->Release();
  CoUninitialize();
}

const BenchRegistration kDispatch("dispatch", run);

}  // namespace
}  // namespace mvsup::bench
