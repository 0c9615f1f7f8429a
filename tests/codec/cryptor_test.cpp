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

namespace mvsup::test {
namespace {

constexpr DWORD kUseCryptor = MVSUP_MODE_USECRYPTOR;
const std::wstring kCryptorKey = client_path(L"MVSUP\\Cryptor");

std::wstring guid_text(const GUID& guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

std::wstring class_key(const GUID& clsid) { return L"Software\\Classes\\CLSID\\" + guid_text(clsid); }

// Windows merges the per-user classes into HKEY_CLASSES_ROOT; Wine reads only
// the machine's, so the class goes there as well when the prefix allows it.
void register_server(const GUID& clsid, const std::wstring& server) {
  const std::wstring key = class_key(clsid) + L"\\InprocServer32";
  set_string(HKEY_CURRENT_USER, key, nullptr, server);
  set_string(HKEY_CURRENT_USER, key, L"ThreadingModel", L"Both");
  const auto bytes = [](const std::wstring& text) { return static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)); };
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, server.c_str(), bytes(server));
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"ThreadingModel", REG_SZ, L"Both", bytes(L"Both"));
}

void unregister_server(const GUID& clsid) {
  delete_tree(HKEY_CURRENT_USER, class_key(clsid));
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, class_key(clsid).c_str());
}

// Owns a BSTR for the duration of a check.
struct Bstr {
  BSTR value = nullptr;
  explicit Bstr(const wchar_t* text = nullptr) : value(text ? SysAllocString(text) : nullptr) {}
  ~Bstr() { SysFreeString(value); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  std::wstring text() const { return std::wstring(value ? value : L"", SysStringLen(value)); }
};

class Cryptor : public RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    const std::wstring server = exe_directory() + L"\\" + kCryptorFixtureFile;
    ASSERT_NE(GetFileAttributesW(server.c_str()), INVALID_FILE_ATTRIBUTES) << "fixture server not built";
    for (const GUID* clsid : {&CLSID_MvCryptHelper, &kAlternateCryptorClass}) register_server(*clsid, server);
    saved_mode_ = static_cast<DWORD>(GetMvSupMode(0xFFFFFFFF));
    SetMvSupMode(0, kUseCryptor);
  }

  void TearDown() override {
    SetMvSupMode(saved_mode_ & kUseCryptor, kUseCryptor);
    for (const GUID* clsid : {&CLSID_MvCryptHelper, &kAlternateCryptorClass}) unregister_server(*clsid);
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

// The class is registered and works (see below): E_NOTIMPL means it was not asked.
TEST_F(Cryptor, OffUnlessTheModeBitIsSet) {
  IMvCryptor* cryptor = reinterpret_cast<IMvCryptor*>(1);
  EXPECT_EQ(GetCryptHelper(&cryptor), E_NOTIMPL);
  EXPECT_EQ(cryptor, nullptr);
  EXPECT_EQ(GetCryptHelper(nullptr), E_POINTER);

  Bstr input(L"Hello");
  BSTR output = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(Encrypt(input.value, &output), FALSE);
  EXPECT_EQ(output, nullptr);
  output = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(Decrypt(input.value, &output), FALSE);
  EXPECT_EQ(output, nullptr);
}

TEST_F(Cryptor, EncryptAndDecryptThroughTheDefaultClass) {
  SetMvSupMode(kUseCryptor, kUseCryptor);
  Bstr input(L"Hello");
  Bstr encrypted;
  ASSERT_EQ(Encrypt(input.value, &encrypted.value), TRUE);
  EXPECT_EQ(encrypted.text(), L"pmmfI");  // reversed, each unit + 1
  Bstr decrypted;
  ASSERT_EQ(Decrypt(encrypted.value, &decrypted.value), TRUE);
  EXPECT_EQ(decrypted.text(), L"Hello");
  expect_no_live_cryptors();

  // Empty and null BSTRs are both the empty text.
  Bstr empty(L"");
  Bstr out;
  EXPECT_EQ(Encrypt(empty.value, &out.value), TRUE);
  EXPECT_EQ(out.text(), L"");
  Bstr out_null;
  EXPECT_EQ(Encrypt(nullptr, &out_null.value), TRUE);
  EXPECT_EQ(out_null.text(), L"");
  EXPECT_EQ(Encrypt(input.value, nullptr), FALSE);

  // The helper itself: a fresh object per call, owned by the caller.
  IMvCryptor* cryptor = nullptr;
  ASSERT_EQ(GetCryptHelper(&cryptor), S_OK);
  ASSERT_NE(cryptor, nullptr);
  Bstr direct;
  EXPECT_EQ(cryptor->Encrypt(input.value, &direct.value), S_OK);
  EXPECT_EQ(direct.text(), L"pmmfI");
  cryptor->Release();
  expect_no_live_cryptors();
}

TEST_F(Cryptor, MethodFailureGivesZero) {
  SetMvSupMode(kUseCryptor, kUseCryptor);
  Bstr input(kCryptorFailInput);
  BSTR output = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(Encrypt(input.value, &output), FALSE);
  EXPECT_EQ(output, nullptr);
  output = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(Decrypt(input.value, &output), FALSE);
  EXPECT_EQ(output, nullptr);
  expect_no_live_cryptors();
}

TEST_F(Cryptor, ModeBitFollowsTheUseCryptorSetting) {
  set_dword(HKEY_CURRENT_USER, client_path(L"MVSUP\\Settings"), L"UseCryptor", 1);
  EXPECT_EQ(GetMvSupMode(kUseCryptor | MVSUP_MODE_RELOAD), static_cast<LONG>(kUseCryptor));
  Bstr input(L"abc");
  Bstr output;
  EXPECT_EQ(Encrypt(input.value, &output.value), TRUE);
  EXPECT_EQ(output.text(), L"dcb");
}

TEST_F(Cryptor, ClassComesFromTheCryptorKeyWhenSet) {
  SetMvSupMode(kUseCryptor, kUseCryptor);
  set_string(HKEY_CURRENT_USER, kCryptorKey, L"CLSID", kAlternateCryptorClassText);
  Bstr input(L"Hello");
  Bstr output;
  ASSERT_EQ(Encrypt(input.value, &output.value), TRUE);
  EXPECT_EQ(output.text(), L"Uryyb");  // the alternate class: ROT13
  Bstr back;
  ASSERT_EQ(Decrypt(output.value, &back.value), TRUE);
  EXPECT_EQ(back.text(), L"Hello");

  // A class that is not registered, or text that is not a class at all,
  // fails; there is no fall-back to the default class.
  IMvCryptor* cryptor = reinterpret_cast<IMvCryptor*>(1);
  set_string(HKEY_CURRENT_USER, kCryptorKey, L"CLSID", L"{00000000-1111-2222-3333-444444444444}");
  EXPECT_EQ(GetCryptHelper(&cryptor), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(cryptor, nullptr);
  set_string(HKEY_CURRENT_USER, kCryptorKey, L"CLSID", L"not a class");
  EXPECT_TRUE(FAILED(GetCryptHelper(&cryptor)));
  EXPECT_EQ(cryptor, nullptr);
  BSTR none = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(Encrypt(input.value, &none), FALSE);
  EXPECT_EQ(none, nullptr);
  expect_no_live_cryptors();
}

}  // namespace
}  // namespace mvsup::test
