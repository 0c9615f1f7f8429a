// Encrypt / Decrypt / GetCryptHelper against the test cryptor, a real
// in-process COM server registered per user for the duration of each test.
#include <windows.h>
// Defines the cryptor's GUIDs from the public header, as a client does.
#include <initguid.h>

#include <gtest/gtest.h>

#include <string>

#include "MvSup2u.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "cryptor_fixture.h"
#include "frame/win32_handles.h"

namespace mvsup::test {
namespace {

constexpr DWORD kUseCryptor = MVSUP_MODE_USECRYPTOR;
const std::wstring kCryptorKey = client_path(L"MVSUP\\Cryptor");

std::wstring class_key(const GUID& clsid) {
  wchar_t text[40] = {};
  StringFromGUID2(clsid, text, 40);
  return std::wstring(L"Software\\Classes\\CLSID\\") + text;
}

// The text handed out, or "!" when the call gives 0 (the output must then be null).
std::wstring call(BOOL(WINAPI* fn)(BSTR, BSTR*), const wchar_t* text) {
  const unique_bstr input(text ? SysAllocString(text) : nullptr);
  BSTR output = reinterpret_cast<BSTR>(1);
  if (fn(input.get(), &output) != TRUE) {
    EXPECT_EQ(output, nullptr);
    return L"!";
  }
  const unique_bstr owned(output);
  return std::wstring(output ? output : L"", SysStringLen(output));
}

class Cryptor : public RegistrySandbox {
 protected:
  // Windows merges the per-user classes into HKEY_CLASSES_ROOT; Wine reads
  // only the machine's, so the classes go there as well when it allows.
  void SetUp() override {
    RegistrySandbox::SetUp();
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    const std::wstring server = exe_directory() + L"\\" + kCryptorFixtureFile;
    ASSERT_NE(GetFileAttributesW(server.c_str()), INVALID_FILE_ATTRIBUTES) << "fixture server not built";
    const DWORD bytes = static_cast<DWORD>((server.size() + 1) * sizeof(wchar_t));
    for (const GUID* clsid : {&CLSID_MvCryptHelper, &kAlternateCryptorClass}) {
      const std::wstring key = class_key(*clsid) + L"\\InprocServer32";
      set_string(HKEY_CURRENT_USER, key, nullptr, server);
      set_string(HKEY_CURRENT_USER, key, L"ThreadingModel", L"Both");
      RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, server.c_str(), bytes);
      RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"ThreadingModel", REG_SZ, L"Both", sizeof(L"Both"));
    }
    saved_mode_ = static_cast<DWORD>(GetMvSupMode(0xFFFFFFFF));
    SetMvSupMode(0, kUseCryptor);
  }

  void TearDown() override {
    SetMvSupMode(saved_mode_ & kUseCryptor, kUseCryptor);
    for (const GUID* clsid : {&CLSID_MvCryptHelper, &kAlternateCryptorClass}) {
      delete_tree(HKEY_CURRENT_USER, class_key(*clsid));
      RegDeleteTreeW(HKEY_LOCAL_MACHINE, class_key(*clsid).c_str());
    }
    CoUninitialize();
    RegistrySandbox::TearDown();
  }

  // Every cryptor the library created has been released again.
  static void expect_no_live_cryptors() {
    HMODULE server = GetModuleHandleW(kCryptorFixtureFile);
    if (server == nullptr) return;  // unloaded: nothing can be alive
    auto can_unload = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(server, "DllCanUnloadNow")));
    ASSERT_NE(can_unload, nullptr);
    EXPECT_EQ(can_unload(), S_OK) << "a cryptor object is still alive";
  }

 private:
  DWORD saved_mode_ = 0;
};

// The class is registered and works once the mode bit is set, so E_NOTIMPL
// means it was not asked.
TEST_F(Cryptor, OffUntilTheUseCryptorSettingSetsTheModeBit) {
  IMvCryptor* cryptor = reinterpret_cast<IMvCryptor*>(1);
  EXPECT_EQ(GetCryptHelper(&cryptor), E_NOTIMPL);
  EXPECT_EQ(cryptor, nullptr);
  EXPECT_EQ(GetCryptHelper(nullptr), E_POINTER);
  EXPECT_EQ(call(Encrypt, L"Hello"), L"!");
  EXPECT_EQ(call(Decrypt, L"Hello"), L"!");

  set_dword(HKEY_CURRENT_USER, client_path(L"MVSUP\\Settings"), L"UseCryptor", 1);
  EXPECT_EQ(GetMvSupMode(kUseCryptor | MVSUP_MODE_RELOAD), static_cast<LONG>(kUseCryptor));
  EXPECT_EQ(call(Encrypt, L"abc"), L"dcb");
}

TEST_F(Cryptor, EncryptAndDecryptThroughTheDefaultClass) {
  SetMvSupMode(kUseCryptor, kUseCryptor);
  EXPECT_EQ(call(Encrypt, L"Hello"), L"pmmfI");  // reversed, each unit + 1
  EXPECT_EQ(call(Decrypt, L"pmmfI"), L"Hello");
  // Empty and null BSTRs are both the empty text.
  EXPECT_EQ(call(Encrypt, L""), L"");
  EXPECT_EQ(call(Encrypt, nullptr), L"");
  const unique_bstr input(SysAllocString(L"Hello"));
  EXPECT_EQ(Encrypt(input.get(), nullptr), FALSE);
  // A method that fails gives 0.
  EXPECT_EQ(call(Encrypt, kCryptorFailInput), L"!");
  EXPECT_EQ(call(Decrypt, kCryptorFailInput), L"!");
  expect_no_live_cryptors();

  // The helper itself: a fresh object per call, owned by the caller.
  IMvCryptor* cryptor = nullptr;
  ASSERT_EQ(GetCryptHelper(&cryptor), S_OK);
  ASSERT_NE(cryptor, nullptr);
  unique_bstr direct;
  EXPECT_EQ(cryptor->Encrypt(input.get(), direct.put()), S_OK);
  EXPECT_EQ(std::wstring(direct.get(), SysStringLen(direct.get())), L"pmmfI");
  cryptor->Release();
  expect_no_live_cryptors();
}

TEST_F(Cryptor, ClassComesFromTheCryptorKeyWhenSet) {
  SetMvSupMode(kUseCryptor, kUseCryptor);
  set_string(HKEY_CURRENT_USER, kCryptorKey, L"CLSID", kAlternateCryptorClassText);
  EXPECT_EQ(call(Encrypt, L"Hello"), L"Uryyb");  // the alternate class: ROT13
  EXPECT_EQ(call(Decrypt, L"Uryyb"), L"Hello");

  // A class that is not registered, or text that is not a class at all,
  // fails; there is no fall-back to the default class.
  IMvCryptor* cryptor = reinterpret_cast<IMvCryptor*>(1);
  set_string(HKEY_CURRENT_USER, kCryptorKey, L"CLSID", L"{00000000-1111-2222-3333-444444444444}");
  EXPECT_EQ(GetCryptHelper(&cryptor), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(cryptor, nullptr);
  set_string(HKEY_CURRENT_USER, kCryptorKey, L"CLSID", L"not a class");
  EXPECT_TRUE(FAILED(GetCryptHelper(&cryptor)));
  EXPECT_EQ(cryptor, nullptr);
  EXPECT_EQ(call(Encrypt, L"Hello"), L"!");
  expect_no_live_cryptors();
}

}  // namespace
}  // namespace mvsup::test
