#include "automation_support.h"

#include "common/paths.h"

namespace mvsup::test {
namespace {

const std::wstring kClassKey = std::wstring(L"Software\\Classes\\CLSID\\") + kAutomationFixtureClassText;
const std::wstring kProgIdKey = std::wstring(L"Software\\Classes\\") + kAutomationFixtureProgId;

void set_machine_string(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, value.c_str(),
                            static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS)
      << "cannot register the test server under HKLM\\" << std::string(key.begin(), key.end());
}

template <typename Function>
Function fixture_function(const char* name) {
  HMODULE server = GetModuleHandleW(kAutomationFixtureFile);
  if (server == nullptr) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(server, name)));
}

}  // namespace

void register_automation_server() {
  const std::wstring server = exe_directory() + L"\\" + kAutomationFixtureFile;
  ASSERT_NE(GetFileAttributesW(server.c_str()), INVALID_FILE_ATTRIBUTES) << "fixture server not built";
  set_machine_string(kClassKey + L"\\InprocServer32", nullptr, server);
  set_machine_string(kClassKey + L"\\InprocServer32", L"ThreadingModel", L"Both");
  set_machine_string(kClassKey + L"\\ProgID", nullptr, kAutomationFixtureProgId);
  set_machine_string(kProgIdKey + L"\\CLSID", nullptr, kAutomationFixtureClassText);
}

void unregister_automation_server() {
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey.c_str());
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProgIdKey.c_str());
}

void AutomationTest::SetUp() {
  RegistrySandbox::SetUp();
  ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
  register_automation_server();
}

void AutomationTest::TearDown() {
  // Every object the helpers handed out or made has been released again.
  EXPECT_EQ(live_objects(), 0) << "an object of the test server is still alive";
  unregister_automation_server();
  CoUninitialize();
  RegistrySandbox::TearDown();
}

com_ptr<IDispatch> AutomationTest::create_object() {
  com_ptr<IDispatch> object;
  EXPECT_EQ(CoCreateInstance(kAutomationFixtureClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                             object.put_void()),
            S_OK);
  return object;
}

RecordedCall AutomationTest::last_call() {
  RecordedCall call{};
  if (auto function = fixture_function<LastCallFunction>("AutomationFixtureLastCall")) function(&call);
  return call;
}

LONG AutomationTest::invoke_count() {
  auto function = fixture_function<InvokeCountFunction>("AutomationFixtureInvokeCount");
  return function ? function() : 0;
}

LONG AutomationTest::live_objects() {
  auto function = fixture_function<LiveObjectsFunction>("AutomationFixtureLiveObjects");
  return function ? function() : 0;
}

ULONG reference_count(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

std::vector<std::wstring> arguments_of(const RecordedCall& call) {
  std::vector<std::wstring> arguments;
  for (UINT i = 0; i < call.cArgs && i < RecordedCall::kMaxArguments; ++i) arguments.emplace_back(call.arguments[i]);
  return arguments;
}

std::wstring bstr_text(BSTR text) { return std::wstring(text ? text : L"", text ? SysStringLen(text) : 0); }

VARIANT bstr_value(const wchar_t* text) {
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_BSTR;
  value.bstrVal = SysAllocString(text);
  return value;
}

VARIANT long_value(LONG number) {
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_I4;
  value.lVal = number;
  return value;
}

}  // namespace mvsup::test
