// Encryption through the client's cryptor object. The library holds no
// cipher of its own: every call creates the object, uses it once and
// releases it.
#include <initguid.h>

#include <string>

#include "MvSupCodec.h"
#include "frame/library_state.h"
#include "frame/mode_bits.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "settings/settings.h"

namespace mvsup::codec {

namespace {

constexpr const wchar_t* kCryptorComponent = L"MVSUP\\Cryptor";
constexpr const wchar_t* kClassValue = L"CLSID";

// The configured class, or the default crypt helper when none is set. A set
// value that is neither a GUID nor a known ProgID fails rather than falling
// back to another class.
HRESULT cryptor_class(CLSID* clsid) noexcept {
  try {
    const std::wstring configured = settings::read_expanded(kCryptorComponent, kClassValue);
    if (configured.empty()) {
      *clsid = CLSID_MvCryptHelper;
      return S_OK;
    }
    const HRESULT hr = ::CLSIDFromString(configured.c_str(), clsid);
    if (FAILED(hr))
      trace::line(L"GetCryptHelper: CLSID \"%ls\" not usable. HRESULT=%X\n", configured.c_str(),
                  static_cast<unsigned>(hr));
    return hr;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT create_cryptor(IMvCryptor** cryptor) noexcept {
  *cryptor = nullptr;
  if (!(frame::mode_word() & mode::kUseCryptor)) return E_NOTIMPL;
  CLSID clsid;
  HRESULT hr = cryptor_class(&clsid);
  if (SUCCEEDED(hr))
    hr = ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IMvCryptor, reinterpret_cast<void**>(cryptor));
  if (FAILED(hr)) {
    *cryptor = nullptr;
    trace::line("GetCryptHelper failed. CoCreateInstance HRESULT=%X\n", static_cast<unsigned>(hr));
  }
  return hr;
}

enum class Direction { Encrypt, Decrypt };

BOOL call_cryptor(Direction direction, BSTR input, BSTR* output) noexcept {
  if (output == nullptr) return FALSE;
  *output = nullptr;
  com_ptr<IMvCryptor> cryptor;
  if (FAILED(create_cryptor(cryptor.put()))) return FALSE;
  const HRESULT hr =
      direction == Direction::Encrypt ? cryptor->Encrypt(input, output) : cryptor->Decrypt(input, output);
  return SUCCEEDED(hr) ? TRUE : FALSE;
}

}  // namespace
}  // namespace mvsup::codec

extern "C" {

HRESULT WINAPI GetCryptHelper(IMvCryptor** cryptor) {
  mvsup::trace::CallScope scope("GetCryptHelper");
  if (cryptor == nullptr) return scope.hr(E_POINTER);
  return scope.hr(mvsup::codec::create_cryptor(cryptor));
}

BOOL WINAPI Encrypt(BSTR input, BSTR* output) {
  mvsup::trace::CallScope scope("Encrypt");
  return scope.res(mvsup::codec::call_cryptor(mvsup::codec::Direction::Encrypt, input, output));
}

BOOL WINAPI Decrypt(BSTR input, BSTR* output) {
  mvsup::trace::CallScope scope("Decrypt");
  return scope.res(mvsup::codec::call_cryptor(mvsup::codec::Direction::Decrypt, input, output));
}

}  // extern "C"
