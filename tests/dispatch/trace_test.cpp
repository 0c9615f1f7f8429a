// What the dispatch helpers write to the call-trace log at level 2: the
// nested scopes of one call, the server's exception texts, the failed name
// lookup and the caught exception. The trace configuration is read when the
// library loads, so the traced calls run in a child process.
#include <iterator>
#include <regex>
#include <string>

#include "automation_support.h"
#include "common/child_process.h"
#include "common/trace_log.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kChildVariable = L"MVSUP_DISPATCH_TRACE_CHILD";

bool run_traced_calls() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return false;
  bool ok = false;
  {
    com_ptr<IDispatch> object;
    IDispatch* created = nullptr;
    long value = 0;
    ok = DispatchCreateDispatch(kAutomationFixtureProgId, &created) == S_OK &&
         DispatchPropertyGetI4(created, const_cast<LPOLESTR>(L"Fail"), &value, 0) == DISP_E_EXCEPTION &&
         DispatchPropertyGetI4(created, const_cast<LPOLESTR>(L"Nope"), &value, 0) == S_OK && value == 7 &&
         DispatchPropertyGetI4(created, const_cast<LPOLESTR>(L"RaiseForeign"), &value, 0) == E_FAIL;
#if defined(_WIN64)
    ok = ok && DispatchPropertyGetI4(created, const_cast<LPOLESTR>(L"Throw"), &value, 0) == E_FAIL;
#endif
    if (created != nullptr) created->Release();
    IDispatch* started = nullptr;
    ok = ok && DispatchQueryApp(kAutomationFixtureProgId, 0x11, &started) == S_OK;
    if (started != nullptr) started->Release();
  }
  CoUninitialize();
  return ok;
}

// Child mode: the traced calls, then exit.
[[maybe_unused]] const bool kRanAsChild = [] {
  if (!is_child_process(kChildVariable)) return false;
  ExitProcess(run_traced_calls() ? 0 : 2);
  return true;
}();

const std::string kStamp = R"( \[MVSUP2u\] @ [0-9:]+)";
std::string start(const std::string& name) { return "==== START " + name + kStamp + "\n"; }
std::string stop(const std::string& name, const std::string& hr) {
  return "---- STOP " + name + kStamp + ":\n HR=" + hr + ", RES=0\n\n";
}

class DispatchTrace : public AutomationTest {};

TEST_F(DispatchTrace, HelpersTraceTheirLookupInvokeAndTheServersException) {
  TraceLogFolder log(0x10002);  // active, level 2
  ASSERT_EQ(run_child_process(kChildVariable), 0);
  const std::string text = log.read_all();

  // One call: the lookup and the Invoke nested in the helper's scope; the
  // record's exception texts in their order, then the scode, before STOP.
  const std::string failed_call = start("DispatchPropertyGetI4") + start("DispatchGetDISPID") + "Name: Fail\n" +
                                  stop("DispatchGetDISPID", "00000000") + start("CDispatchHelper::Invoke") +
                                  stop("CDispatchHelper::Invoke", "80020009") +
                                  "ExcepInfo.Source: MvSupTest.Automation\n"
                                  "ExcepInfo.Description: The member failed on purpose\n"
                                  "ExcepInfo.HelpFile: automation.hlp\n"
                                  "ExcepInfo.Scode: 80040201\n" +
                                  stop("DispatchPropertyGetI4", "80020009");
  EXPECT_TRUE(std::regex_search(text, std::regex(failed_call))) << text;

  // An unknown name: the lookup's failure in its STOP, then the default member.
  const std::string unknown_name = start("DispatchGetDISPID") + "Name: Nope\n" +
                                   stop("DispatchGetDISPID", "80020006") + start("CDispatchHelper::Invoke") +
                                   stop("CDispatchHelper::Invoke", "00000000") + "ExcepInfo.Scode: 0\n" +
                                   stop("DispatchPropertyGetI4", "00000000");
  EXPECT_TRUE(std::regex_search(text, std::regex(unknown_name))) << text;

  const std::string thrown = start("CDispatchHelper::Invoke") + "Caught exception from IDispatch::Invoke\n" +
                             stop("CDispatchHelper::Invoke", "80004005");
  const std::regex thrown_pattern(thrown);
  const auto caught =
      std::distance(std::sregex_iterator(text.begin(), text.end(), thrown_pattern), std::sregex_iterator());
#if defined(_WIN64)
  EXPECT_EQ(caught, 2) << text;  // the GCC throw and the Microsoft one
#else
  EXPECT_EQ(caught, 1) << text;
#endif

  EXPECT_TRUE(std::regex_search(text, std::regex(start("DispatchCreateDispatch") + "ProgId: MvSupTest.Automation\n" +
                                                 stop("DispatchCreateDispatch", "00000000"))))
      << text;
  EXPECT_TRUE(std::regex_search(text, std::regex(start("DispatchQueryApp") +
                                                 "ProgId: MvSupTest.Automation \\(Flags=11\\)\n" +
                                                 stop("DispatchQueryApp", "00000000"))))
      << text;
}

}  // namespace
}  // namespace mvsup::test
