// What the property accessors write to the call-trace log at level 2. The
// trace configuration is read when the library loads, so the traced calls
// run in a child process started after the configuration is written.
#include <regex>
#include <string>

#include "common/child_process.h"
#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "property_support.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kChildVariable = L"MVSUP_PROPERTIES_TRACE_CHILD";

// Child mode: one traced reader and one traced writer, then exit.
[[maybe_unused]] const bool kRanAsChild = [] {
  if (!is_child_process(kChildVariable)) return false;
  BYTE* block = nullptr;
  LONG value = 0;
  const bool ok = MvxPutCustomStringProp(L"Cost Centre", L"0x4711", 1, &block) == S_OK &&
                  MvxPutStringPropValue(0x2, L"t", &block) == S_OK &&
                  MvxGetCustomIntegerProp(block, L"Cost Centre", &value) == S_OK && value == 0x4711 &&
                  MvxDeleteProp(0x400, &block) == S_OK;
  FreeMvxInfo(block);
  ExitProcess(ok ? 0 : 2);
  return true;
}();

class PropertyTrace : public RegistrySandbox {};

TEST_F(PropertyTrace, AccessorsWriteTheirScopesAndDetailLines) {
  TraceLogFolder log(0x10002);  // active, level 2
  ASSERT_EQ(run_child_process(kChildVariable), 0);
  const std::string text = log.read_all();
  // START, the detail line, STOP with the result: nothing in between.
  const auto scope = [](const std::string& name, const std::string& detail) {
    const std::string bracket = name + R"( \([0-9A-F]{8}\) \[MVSUP2u\] @ [0-9:]+)";
    return std::regex("==== START " + bracket + "\n" + detail + "\n---- STOP " + bracket + ":\n HR=00000000, RES=0\n");
  };
  EXPECT_TRUE(std::regex_search(text, scope("MvxGetCustomIntegerProp", "PropName: Cost Centre"))) << text;
  EXPECT_TRUE(std::regex_search(text, scope("MvxDeleteProp", "PropId: 00000400"))) << text;
  for (const char* name : {"MvxPutCustomStringProp", "MvxPutStringPropValue"})
    EXPECT_TRUE(std::regex_search(text, std::regex(std::string("---- STOP ") + name))) << name << "\n" << text;
}

}  // namespace
}  // namespace mvsup::test
