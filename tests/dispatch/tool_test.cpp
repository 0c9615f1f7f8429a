// mvsup dispatch against the test server: what a support engineer sees.
#include <cstdio>

#include "automation_support.h"
#include "common/paths.h"

namespace mvsup::test {
namespace {

struct ToolRun {
  int exit_code;
  std::string output;  // standard output, CR LF turned into LF
};

ToolRun run_tool(const std::wstring& arguments) {
  const std::wstring command = L"\"" + exe_directory() + L"\\mvsup.exe\" dispatch " + arguments + L" 2>nul";
  ToolRun run{-1, {}};
  FILE* pipe = _wpopen(command.c_str(), L"rb");
  if (pipe == nullptr) return run;
  char buffer[512];
  for (size_t n; (n = fread(buffer, 1, sizeof(buffer), pipe)) > 0;) run.output.append(buffer, n);
  run.exit_code = _pclose(pipe);
  for (size_t at; (at = run.output.find("\r\n")) != std::string::npos;) run.output.erase(at, 1);
  return run;
}

class DispatchTool : public AutomationTest {};

TEST_F(DispatchTool, PrintsTheResultWithItsVariantType) {
  struct Case {
    const wchar_t* arguments;
    int exit_code;
    const char* output;
  };
  const Case cases[] = {
      {L"MvSupTest.Automation Short", 0, "VT_I2 -5\n"},
      {L"MvSupTest.Automation Date2036", 0, "VT_DATE 2036-12-31T23:59:59\n"},
      {L"MvSupTest.Automation NullChild", 0, "VT_DISPATCH (null object)\n"},
      {L"MvSupTest.Automation Warn", 0, "VT_I4 9  (HRESULT 0x00000001)\n"},
      {L"MvSupTest.Automation Item 12", 0, "VT_BSTR item12\n"},
      // Typed arguments, by value: the server counts them.
      {L"--method MvSupTest.Automation Bump 1 str:2 bool:true empty", 0, "VT_I4 4\n"},
      {L"--json MvSupTest.Automation Text", 0,
       "{\n  \"progid\": \"MvSupTest.Automation\",\n  \"member\": \"Text\",\n  \"call\": \"get\",\n"
       "  \"hresult\": \"0x00000000\",\n  \"vt\": 8,\n  \"type\": \"VT_BSTR\",\n  \"value\": \"42abc\"\n}\n"},
      {L"Scripting.Dictionary Count", 0, "VT_I4 0\n"},
      {L"MvSupTest.Automation Fail", 1, ""},
      {L"MvSupTest.Automation Item i2:x", 1, ""},
      {L"MvSupTest.NoSuchServer Count", 1, ""},
      {L"MvSupTest.Automation", 1, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << std::string(c.arguments, c.arguments + wcslen(c.arguments)));
    const ToolRun run = run_tool(c.arguments);
    EXPECT_EQ(run.exit_code, c.exit_code);
    EXPECT_EQ(run.output, c.output);
  }
}

}  // namespace
}  // namespace mvsup::test
