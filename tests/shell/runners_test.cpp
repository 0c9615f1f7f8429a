// The script, form and message-box runners: a real script through the
// prefix's script host, the form runner and message-box helper as test COM
// objects, and the plain boxes under the test display.
#include <windows.h>
// Defines the public header's GUIDs, as a client does.
#include <initguid.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "MvSup2u.h"
#include "common/message_boxes.h"
#include "common/paths.h"
#include "common/registry_sandbox.h"
#include "shell_fixture_client.h"

namespace mvsup::test {
namespace {

constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002);

// Writes its arguments, one a line, to the file named by the first one; with
// no arguments, "none" to noargs.txt beside the script.
constexpr const char* kWriterScript =
    "Set fso = CreateObject(\"Scripting.FileSystemObject\")\r\n"
    "If WScript.Arguments.Count = 0 Then\r\n"
    "  target = fso.GetParentFolderName(WScript.ScriptFullName) & \"\\noargs.txt\"\r\n"
    "Else\r\n"
    "  target = WScript.Arguments(0)\r\n"
    "End If\r\n"
    "Set out = fso.CreateTextFile(target & \".part\", True)\r\n"
    "out.WriteLine WScript.Arguments.Count\r\n"
    "For i = 0 To WScript.Arguments.Count - 1\r\n"
    "  out.WriteLine WScript.Arguments(i)\r\n"
    "Next\r\n"
    "out.Close\r\n"
    "fso.MoveFile target & \".part\", target\r\n";

std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

// The file's text once it exists (the script renames it into place when
// complete); empty after the timeout.
std::string wait_for_file(const std::wstring& path, DWORD timeout_ms = 30000) {
  const ULONGLONG deadline = GetTickCount64() + timeout_ms;
  while (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
    if (GetTickCount64() > deadline) return {};
    Sleep(50);
  }
  std::ifstream in(narrow(path), std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// A client installation in a temporary directory: Location\Programs points
// at it.
class Runners : public RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", programs_.path());
    CreateDirectoryW(scripts().c_str(), nullptr);
  }
  void TearDown() override {
    CoUninitialize();
    RegistrySandbox::TearDown();
  }
  std::wstring scripts() const { return programs_.path() + L"\\Scripts"; }
  void write_script(const wchar_t* name) const {
    std::ofstream(narrow(scripts() + L"\\" + name), std::ios::binary) << kWriterScript;
  }

  TempDirectory programs_;
};

TEST_F(Runners, ScriptRunsThroughTheScriptHostWithItsArguments) {
  write_script(L"writer.vbs");
  const std::wstring out = programs_.path() + L"\\out.txt";
  ASSERT_EQ(RunVBScript(L"writer.vbs", (L"\"" + out + L"\" second \"third one\"").c_str()), S_OK);
  EXPECT_EQ(wait_for_file(out), "3\r\n" + narrow(out) + "\r\nsecond\r\nthird one\r\n");
}

TEST_F(Runners, ScriptWithoutArgumentsGetsNone) {
  write_script(L"writer.vbs");
  // An empty argument text is the one-argument command line: the script
  // sees no argument at all (not an empty one).
  ASSERT_EQ(RunVBScript(L"writer.vbs", L""), S_OK);
  EXPECT_EQ(wait_for_file(scripts() + L"\\noargs.txt"), "0\r\n");
  DeleteFileW((scripts() + L"\\noargs.txt").c_str());
  ASSERT_EQ(RunVBScript(L"writer.vbs", nullptr), S_OK);
  EXPECT_EQ(wait_for_file(scripts() + L"\\noargs.txt"), "0\r\n");
}

TEST_F(Runners, MissingScriptStartsNothing) {
  EXPECT_EQ(RunVBScript(L"absent.vbs", L"x"), kFileNotFound);
  // The Scripts folder itself is no script.
  EXPECT_EQ(RunVBScript(L"", nullptr), kFileNotFound);
  EXPECT_EQ(RunVBScript(nullptr, nullptr), kFileNotFound);
  // Without a program directory there is no Scripts folder to look in.
  write_script(L"writer.vbs");
  delete_tree(HKEY_CURRENT_USER, client_path(L"Location"));
  EXPECT_EQ(RunVBScript(L"writer.vbs", nullptr), kFileNotFound);
}

class FormAndBoxRunners : public Runners {
 protected:
  ShellFixtureModule fixture_;
};

TEST_F(FormAndBoxRunners, FormRunnerGetsTheFormPathInScriptsForms) {
  ClassRegistration runner(CLSID_MvFormRunner);
  ASSERT_EQ(RunHTMLForm(L"Request.htm"), S_OK);
  const FixtureFormCall& call = fixture_.form_call();
  EXPECT_EQ(call.calls, 1);
  EXPECT_EQ(std::wstring(call.path), programs_.path() + L"\\Scripts\\Forms\\Request.htm");
  EXPECT_EQ(call.flags, 0);
  EXPECT_EQ(call.reserved, 0);
  EXPECT_TRUE(call.result_given);
  EXPECT_EQ(fixture_.live_objects(), 0) << "the runner was not released";

  // The runner's answer is the result; a trailing backslash in the setting
  // is not doubled; the form's existence is the runner's business.
  fixture_.set_form_answer(static_cast<HRESULT>(0x80040155));
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", programs_.path() + L"\\");
  EXPECT_EQ(RunHTMLForm(L"Other.htm"), static_cast<HRESULT>(0x80040155));
  EXPECT_EQ(std::wstring(call.path), programs_.path() + L"\\Scripts\\Forms\\Other.htm");
}

TEST_F(FormAndBoxRunners, FormRunnerThatIsNotRegisteredFailsAsCreationFails) {
  EXPECT_EQ(RunHTMLForm(L"Request.htm"), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(fixture_.form_call().calls, 0);
}

TEST_F(FormAndBoxRunners, HelperGetsSixArgumentsInOrder) {
  ClassRegistration helper(CLSID_MvMessageBoxHelper);
  const HWND owner = reinterpret_cast<HWND>(static_cast<LONG_PTR>(0x00012345));
  EXPECT_EQ(RunMessageBox(owner, L"Save changes?", L"Macro", MB_YESNO | MB_ICONQUESTION, 0xFFFF, 0x80000001),
            IDYES);
  const FixtureBoxCall& call = fixture_.box_call();
  EXPECT_EQ(call.calls, 1);
  EXPECT_EQ(call.dispid, 0x1000F);
  EXPECT_EQ(call.flags, DISPATCH_METHOD);
  ASSERT_EQ(call.argument_count, 6u);
  const VARTYPE expected_types[] = {VT_I4, VT_BSTR, VT_BSTR, VT_I4, VT_I4, VT_I4};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(call.types[i], expected_types[i]) << "argument " << i;
  EXPECT_EQ(call.owner, 0x12345);
  EXPECT_EQ(std::wstring(call.text), L"Save changes?");
  EXPECT_EQ(std::wstring(call.caption), L"Macro");
  EXPECT_EQ(call.type, static_cast<LONG>(MB_YESNO | MB_ICONQUESTION));
  EXPECT_EQ(call.extra16, 0xFFFF) << "extra16 is widened without its sign";
  EXPECT_EQ(call.extra32, static_cast<LONG>(0x80000001));
  EXPECT_EQ(fixture_.live_objects(), 0);

  // Null texts travel as empty BSTRs.
  fixture_.set_box_answer(VT_I4, IDRETRY);
  EXPECT_EQ(RunMessageBox(nullptr, nullptr, nullptr, MB_OK, 0, 0), IDRETRY);
  EXPECT_EQ(call.types[1], VT_BSTR);
  EXPECT_EQ(call.types[2], VT_BSTR);
  EXPECT_EQ(std::wstring(call.text), L"");
  EXPECT_EQ(std::wstring(call.caption), L"");
}

TEST_F(FormAndBoxRunners, HelperAnswerThatIsNoButtonGivesAbort) {
  ClassRegistration helper(CLSID_MvMessageBoxHelper);
  fixture_.set_box_answer(VT_BSTR, 0);
  EXPECT_EQ(RunMessageBox(nullptr, L"t", L"c", MB_OK, 0, 0), IDABORT);
  fixture_.set_box_answer(VT_I4, IDOK, DISP_E_EXCEPTION);
  EXPECT_EQ(RunMessageBox(nullptr, L"t", L"c", MB_OK, 0, 0), IDABORT);
  EXPECT_EQ(fixture_.box_call().calls, 2);
  EXPECT_EQ(fixture_.live_objects(), 0);
}

// A window of this thread to own the boxes.
class OwnerWindow {
 public:
  OwnerWindow()
      : window_(CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                                nullptr, nullptr)) {}
  ~OwnerWindow() { DestroyWindow(window_); }
  HWND get() const { return window_; }

 private:
  HWND window_;
};

TEST_F(FormAndBoxRunners, WithoutTheHelperANoticeComesFirstThenThePlainBox) {
  OwnerWindow owner;
  ASSERT_NE(owner.get(), nullptr);
  MessageBoxWatcher boxes(IDCANCEL);  // the notice has no Cancel: it is closed
  EXPECT_EQ(RunMessageBox(owner.get(), L"Continue the macro?", L"Macro", MB_OKCANCEL, 1, 2), IDCANCEL);
  const auto shown = boxes.boxes();
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_EQ(shown[0].caption, L"Mervane Client Internal Error");
  EXPECT_EQ(shown[0].text,
            L"The program could not find a necessary software library. The macro processing may not work "
            L"correctly.\n\nClass: HelperObj\nLibrary: UTILLIB");
  EXPECT_EQ(shown[1].caption, L"Macro");
  EXPECT_EQ(shown[1].text, L"Continue the macro?");
  for (const ShownBox& box : shown) EXPECT_EQ(box.owner, owner.get());
  EXPECT_EQ(fixture_.box_call().calls, 0);
}

TEST_F(FormAndBoxRunners, ThreadBoxReturnsAtOnceAndShowsWithoutOwner) {
  OwnerWindow owner;
  std::wstring text = L"Upload finished";
  std::wstring caption = L"Mervane Client";
  // No one answers boxes yet: the call cannot have waited for this one.
  ASSERT_EQ(RunMessageBoxThread(owner.get(), text.c_str(), caption.c_str(), MB_OK | MB_ICONINFORMATION), S_OK);
  text.assign(text.size(), L'x');  // the box shows copies
  caption.assign(caption.size(), L'y');
  ASSERT_EQ(RunMessageBoxThread(owner.get(), L"No caption", nullptr, MB_OK), S_OK);

  MessageBoxWatcher boxes;
  ASSERT_TRUE(boxes.wait_for(2));
  auto shown = boxes.boxes();
  if (shown[0].text != L"Upload finished") std::swap(shown[0], shown[1]);
  EXPECT_EQ(shown[0].text, L"Upload finished");
  EXPECT_EQ(shown[0].caption, L"Mervane Client");
  EXPECT_EQ(shown[1].text, L"No caption");
  EXPECT_EQ(shown[1].caption, L"Error") << "a null caption reaches MessageBoxW as null";
  for (const ShownBox& box : shown) {
    EXPECT_EQ(box.owner, nullptr);
    EXPECT_NE(box.thread, GetCurrentThreadId());
  }
}

}  // namespace
}  // namespace mvsup::test
