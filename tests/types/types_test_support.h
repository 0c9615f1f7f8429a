// Shared helpers of the item type tests.
#pragma once

#include <windows.h>

#include <string>

#include "MvSup2u.h"
#include "common/guard_page.h"
#include "common/registry_sandbox.h"

namespace mvsup::test {

inline const std::wstring kCustomTypesKey = client_path(L"MVSUP\\CustomTypes");
inline const std::wstring kMapsKey = kCustomTypesKey + L"\\Maps";
inline const std::wstring kNamesKey = kCustomTypesKey + L"\\Names";
inline const std::wstring kClassesKey = kCustomTypesKey + L"\\Classes";

// Results of the buffer-filling functions as strings.
inline std::wstring word_of(MVXITEMTYPE type) {
  wchar_t buffer[400];
  return GetMvxItemTypeAsStringTS(type, buffer, 400);
}
inline std::wstring handle_of(MVXITEMTYPE type, DWORD number) {
  wchar_t buffer[400];
  GetMvxItemHandleAsString(type, number, buffer, 400);
  return buffer;
}

inline MVXITEMTYPE create_type(const wchar_t* word) {
  MVXITEMTYPE type = -1;
  EXPECT_EQ(MvxCreateCustomItemType(word, &type), 1) << "creating " << testing::PrintToString(std::wstring(word));
  return type;
}

// An in-process object implementing the client's item interface, counting
// the calls the library makes on it. with_interface false: QueryInterface
// offers IUnknown only.
class FakeClientItem : public IMvxClientItem {
 public:
  FakeClientItem(std::wstring class_string, std::wstring server_key, bool with_interface = true)
      : class_string_(std::move(class_string)), server_key_(std::move(server_key)), with_interface_(with_interface) {}
  virtual ~FakeClientItem() = default;

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !(with_interface_ && IsEqualIID(riid, IID_IMvxClientItem)))
      return E_NOINTERFACE;
    *object = static_cast<IMvxClientItem*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(InterlockedDecrement(&references_)); }
  STDMETHODIMP GetClassString(BSTR* text) override {
    ++class_calls_;
    *text = SysAllocString(class_string_.c_str());
    return S_OK;
  }
  STDMETHODIMP GetServerKeyString(BSTR* text) override {
    ++server_calls_;
    *text = SysAllocString(server_key_.c_str());
    return S_OK;
  }

  IUnknown* unknown() { return static_cast<IUnknown*>(this); }
  LONG extra_references() const { return references_ - 1; }  // beyond the test's own
  int class_calls() const { return class_calls_; }
  int server_calls() const { return server_calls_; }

 private:
  std::wstring class_string_, server_key_;
  bool with_interface_;
  LONG references_ = 1;
  int class_calls_ = 0, server_calls_ = 0;
};

}  // namespace mvsup::test
