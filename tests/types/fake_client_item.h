// An in-process object implementing the client's item interface, counting
// the calls the library makes on it.
#pragma once

#include <windows.h>

#include <string>

#include "MvSup2u.h"

namespace mvsup::test {

class FakeClientItem : public IMvxClientItem {
 public:
  // with_interface false: QueryInterface offers IUnknown only.
  FakeClientItem(std::wstring class_string, std::wstring server_key, bool with_interface = true)
      : class_string_(std::move(class_string)), server_key_(std::move(server_key)), with_interface_(with_interface) {}
  virtual ~FakeClientItem() = default;

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(InterlockedDecrement(&references_)); }
  STDMETHODIMP GetClassString(BSTR* text) override;
  STDMETHODIMP GetServerKeyString(BSTR* text) override;

  IUnknown* unknown() { return static_cast<IUnknown*>(this); }
  // References beyond the one the test holds.
  LONG extra_references() const { return references_ - 1; }
  int class_calls() const { return class_calls_; }
  int server_calls() const { return server_calls_; }

 private:
  std::wstring class_string_;
  std::wstring server_key_;
  bool with_interface_;
  LONG references_ = 1;
  int class_calls_ = 0;
  int server_calls_ = 0;
};

}  // namespace mvsup::test
