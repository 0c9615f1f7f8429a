// Runners for the client's macros and add-ins: a script from the client's
// Scripts directory through the system's script host, an HTML form through
// the client's form runner, and message boxes, through the client's helper
// object or on a thread of their own.
#include <memory>
#include <optional>
#include <string>

#include "MvSupShell.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/win32_handles.h"
#include "storage/directories.h"

namespace mvsup::shell {

namespace {

constexpr size_t kPathCapacity = MAX_PATH;
constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002);
constexpr HRESULT kPathNotFound = static_cast<HRESULT>(0x80070003);
constexpr const wchar_t* kScriptFolder = L"Scripts";
constexpr const wchar_t* kFormFolder = L"Scripts\\Forms";
constexpr const wchar_t* kScriptHost = L"WSCRIPT.EXE";

constexpr const wchar_t* kHelperMissingText =
    L"The program could not find a necessary software library. The macro processing may not work "
    L"correctly.\n\nClass: HelperObj\nLibrary: UTILLIB";
constexpr const wchar_t* kHelperMissingCaption = L"Mervane Client Internal Error";

void ensure_backslash(std::wstring& path) {
  if (!path.empty() && path.back() != L'\\') path += L'\\';
}

// <program directory>\<folder>\<name>; nullopt when the program directory is
// unknown or the path would not fit the 260 characters the client allows.
std::optional<std::wstring> program_subpath(const wchar_t* folder, const wchar_t* name) {
  wchar_t directory[kPathCapacity];
  if (directories::program(directory, static_cast<int>(kPathCapacity)) == 0) return std::nullopt;
  std::wstring path = directory;
  ensure_backslash(path);
  path += folder;
  ensure_backslash(path);
  path += text::view_or_empty(name);
  if (path.size() >= kPathCapacity) return std::nullopt;
  return path;
}

bool is_file(const std::wstring& path) noexcept {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

HRESULT last_error_result() noexcept {
  const DWORD error = ::GetLastError();
  if (static_cast<LONG>(error) > 0) return static_cast<HRESULT>(0x80070000u | (error & 0xFFFF));
  return static_cast<HRESULT>(error);
}

// The script host of the system directory (the Windows directory on 9x);
// the bare name when it is not there.
std::wstring script_host() {
  wchar_t directory[kPathCapacity] = {};
  const bool windows9x = (::GetVersion() & 0x80000000u) != 0;
  const UINT length = windows9x ? ::GetWindowsDirectoryW(directory, static_cast<UINT>(kPathCapacity))
                                : ::GetSystemDirectoryW(directory, static_cast<UINT>(kPathCapacity));
  if (length > 0 && length < kPathCapacity) {
    std::wstring host = std::wstring(directory) + L"\\" + kScriptHost;
    if (is_file(host)) return host;
  }
  return kScriptHost;
}

HRESULT run_script(const wchar_t* name, const wchar_t* arguments) noexcept {
  try {
    const std::optional<std::wstring> path = program_subpath(kScriptFolder, name);
    if (!path || !is_file(*path)) return kFileNotFound;
    std::wstring command = (arguments != nullptr && *arguments != L'\0')
                               ? text::format(L"WSCRIPT \"%ls\" %ls", path->c_str(), arguments)
                               : text::format(L"WSCRIPT \"%ls\"", path->c_str());
    trace::line(L"RunVBScript: %ls\n", command.c_str());
    const std::wstring host = script_host();
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(host.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process))
      return last_error_result();
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT run_form(const wchar_t* name) noexcept {
  try {
    const std::optional<std::wstring> path = program_subpath(kFormFolder, name);
    if (!path) return kPathNotFound;
    com_ptr<IMvFormRunner> runner;
    const HRESULT created =
        ::CoCreateInstance(CLSID_MvFormRunner, nullptr, CLSCTX_INPROC_SERVER, IID_IMvFormRunner, runner.put_void());
    if (FAILED(created)) return created;
    unique_bstr form(::SysAllocString(path->c_str()));
    if (!form) form.reset(::SysAllocString(L""));
    unique_variant result;
    return runner->RunForm(form.get(), 0, 0, result.get());
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

BSTR bstr_or_empty(const wchar_t* text) noexcept { return ::SysAllocString(text != nullptr ? text : L""); }

int run_message_box(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type, WORD extra16,
                    DWORD extra32) noexcept {
  com_ptr<IDispatch> helper;
  if (FAILED(::CoCreateInstance(CLSID_MvMessageBoxHelper, nullptr, CLSCTX_INPROC_SERVER, IID_IMvMessageBoxHelper,
                                helper.put_void()))) {
    trace::line("RunMessageBox: no helper object\n");
    ::MessageBoxW(owner, kHelperMissingText, kHelperMissingCaption, MB_ICONEXCLAMATION);
    return ::MessageBoxW(owner, text, caption, type);
  }
  const unique_bstr text_value(bstr_or_empty(text));
  const unique_bstr caption_value(bstr_or_empty(caption));
  // Dispatch arguments go last to first.
  VARIANTARG arguments[6];
  for (VARIANTARG& argument : arguments) ::VariantInit(&argument);
  const auto set_long = [](VARIANTARG& argument, LONG value) {
    argument.vt = VT_I4;
    argument.lVal = value;
  };
  set_long(arguments[5], static_cast<LONG>(reinterpret_cast<LONG_PTR>(owner)));
  arguments[4].vt = VT_BSTR;
  arguments[4].bstrVal = text_value.get();
  arguments[3].vt = VT_BSTR;
  arguments[3].bstrVal = caption_value.get();
  set_long(arguments[2], static_cast<LONG>(type));
  set_long(arguments[1], static_cast<LONG>(extra16));
  set_long(arguments[0], static_cast<LONG>(extra32));
  DISPPARAMS parameters = {arguments, nullptr, 6, 0};
  unique_variant result;
  const HRESULT hr = helper->Invoke(MVSUP_DISPID_SHOWMESSAGEBOX, IID_NULL, 0, DISPATCH_METHOD, &parameters,
                                    result.get(), nullptr, nullptr);
  if (FAILED(hr) || result->vt != VT_I4) return IDABORT;
  return static_cast<int>(result->lVal);
}

// One box shown on its own thread. The thread owns the record and holds a
// reference on this library until the box is closed, so that a caller may
// unload the library while a box is still open.
struct BoxRecord {
  HWND owner = nullptr;
  std::wstring text;
  std::optional<std::wstring> caption;
  UINT type = 0;
  HMODULE module = nullptr;
};

DWORD WINAPI show_box_thread(void* parameter) {
  HMODULE module;
  int button;
  {
    std::unique_ptr<BoxRecord> record(static_cast<BoxRecord*>(parameter));
    module = record->module;
    button = ::MessageBoxW(record->owner, record->text.c_str(),
                           record->caption ? record->caption->c_str() : nullptr, record->type);
  }
  if (module != nullptr) ::FreeLibraryAndExitThread(module, static_cast<DWORD>(button));
  return static_cast<DWORD>(button);
}

HRESULT run_message_box_thread(const wchar_t* text, const wchar_t* caption, UINT type) noexcept {
  std::unique_ptr<BoxRecord> record;
  try {
    record = std::make_unique<BoxRecord>();
    record->text = text::view_or_empty(text);
    if (caption != nullptr) record->caption = caption;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  record->type = type;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&show_box_thread)), &record->module);
  HANDLE thread = ::CreateThread(nullptr, 0, show_box_thread, record.get(), 0, nullptr);
  // Only INVALID_HANDLE_VALUE counts as failure, as callers have always been
  // told; a thread that did not start leaves its record to us.
  if (thread == INVALID_HANDLE_VALUE) {
    (void)record.release();
    return E_FAIL;
  }
  if (thread == nullptr) {
    if (record->module != nullptr) ::FreeLibrary(record->module);
    return S_OK;
  }
  (void)record.release();
  ::CloseHandle(thread);
  return S_OK;
}

}  // namespace
}  // namespace mvsup::shell

extern "C" {

HRESULT WINAPI RunVBScript(LPCWSTR scriptName, LPCWSTR arguments) {
  mvsup::trace::CallScope scope("RunVBScript");
  return scope.hr(mvsup::shell::run_script(scriptName, arguments));
}

HRESULT WINAPI RunHTMLForm(LPCWSTR formName) {
  mvsup::trace::CallScope scope("RunHTMLForm");
  return scope.hr(mvsup::shell::run_form(formName));
}

int WINAPI RunMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type, WORD extra16, DWORD extra32) {
  mvsup::trace::CallScope scope("RunMessageBox");
  return scope.res(mvsup::shell::run_message_box(owner, text, caption, type, extra16, extra32));
}

HRESULT WINAPI RunMessageBoxThread(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) {
  (void)owner;  // the box is shown without an owner
  mvsup::trace::CallScope scope("RunMessageBoxThread");
  return scope.hr(mvsup::shell::run_message_box_thread(text, caption, type));
}

}  // extern "C"
