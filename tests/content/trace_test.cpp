// What the content-type functions write to the call-trace log. The trace
// configuration is read when the library loads, so the calls run in a child
// process started after the configuration is written.

#include <regex>
#include <string>

#include "common/child_process.h"
#include "common/registry_sandbox.h"
#include "common/trace_log.h"
#include "content_support.h"

namespace mvsup::test {
namespace {

constexpr const wchar_t* kChildVariable = L"MVSUP_CONTENT_TRACE_CHILD";

[[maybe_unused]] const bool kRanAsChild = [] {
  if (!is_child_process(kChildVariable)) return false;
  wchar_t buffer[64];
  const bool ok = GetMimeTypeFromFileName(L"a.xls", buffer, 64) == 20 &&
                  GetFileExtFromMimeType2(L"", buffer, 64) == E_INVALIDARG &&
                  *GetFileExtFromMimeType(L"image/gif") == L'.' && *GetDocFormatFromFileName(L"a.gif") == L'G' &&
                  *GetDocFormatFromMimeType(L"image/gif") == L'G' && DecomposeURL(L"a://b", nullptr, nullptr, nullptr) == 1;
  ExitProcess(ok ? 0 : 2);
  return true;
}();

class ContentTrace : public RegistrySandbox {};

TEST_F(ContentTrace, RegistryReadersWriteTheirScopesAndResults) {
  SavedKey database(HKEY_LOCAL_MACHINE, kDatabaseMachinePath);
  TraceLogFolder log(0x10001);  // active, level 1
  ASSERT_EQ(run_child_process(kChildVariable), 0);
  const std::string text = log.read_all();
  const auto stop = [](const std::string& name, const std::string& results) {
    return std::regex("---- STOP " + name + R"( \[MVSUP2u\] @ [0-9:]+:\n )" + results + "\n");
  };
  EXPECT_TRUE(std::regex_search(text, stop("GetMimeTypeFromFileName", "HR=00000000, RES=20"))) << text;
  EXPECT_TRUE(std::regex_search(text, stop("GetFileExtFromMimeType2", "HR=80070057, RES=0"))) << text;
  EXPECT_TRUE(std::regex_search(text, stop("GetFileExtFromMimeType", "HR=00000000, RES=0"))) << text;
  EXPECT_TRUE(std::regex_search(text, std::regex("STOP GetDocFormatFromFileName"))) << text;
  // One scope per call: the shared-buffer variant does not show its sibling,
  // and the pure look-ups are not traced.
  const size_t first = text.find("START GetFileExtFromMimeType2");
  EXPECT_NE(first, std::string::npos);
  EXPECT_EQ(text.find("START GetFileExtFromMimeType2", first + 1), std::string::npos) << text;
  for (const char* untraced : {"GetDocFormatFromMimeType", "DecomposeURL"})
    EXPECT_EQ(text.find(untraced), std::string::npos) << untraced;
}

}  // namespace
}  // namespace mvsup::test
