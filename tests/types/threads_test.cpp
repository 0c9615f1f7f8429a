// The buffer-filling (TS) functions from many threads at once.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "types_test_support.h"

namespace mvsup::test {
namespace {

class TypesFromThreads : public RegistrySandbox {};

struct Sample {
  MVXITEMTYPE type;
  const wchar_t* word;
};

TEST_F(TypesFromThreads, FormattingAndParsingFromEightThreads) {
  ASSERT_EQ(create_type(L"Invoice"), 33);
  ASSERT_EQ(create_type(L"Purchase"), 34);
  const Sample samples[] = {{2, L"Collection"}, {3, L"File"},    {6, L"BulletinBoard"}, {8, L"Bulletin"},
                            {18, L"ContElem"},  {22, L"Weblog"}, {33, L"Invoice"},      {34, L"Purchase"}};
  constexpr int kThreads = 8;
  constexpr int kRounds = 60;
  std::atomic<int> failures{0};
  std::atomic<int> checks{0};

  auto work = [&](int thread) {
    wchar_t buffer[128];
    for (int round = 0; round < kRounds; ++round) {
      const Sample& sample = samples[(thread + round) % std::size(samples)];
      const DWORD number = static_cast<DWORD>(thread * 100000 + round);
      const std::wstring expected = std::wstring(sample.word) + L"-" + std::to_wstring(number);
      bool ok = GetMvxItemHandleAsString(sample.type, number, buffer, 128) == static_cast<int>(expected.size()) &&
                expected == buffer;
      long parsed = -1;
      ok = ok && GetMvxItemHandleFromString(buffer, &parsed) == sample.type && parsed == static_cast<long>(number);
      ok = ok && CompareMvxItemType(buffer, sample.type) == 0;
      ok = ok && std::wstring(GetMvxItemTypeAsStringTS(sample.type, buffer, 128)) == sample.word;
      const std::wstring inside = L"see c:\\work\\" + expected + L".htm";
      WORD type = 0;
      ok = ok && ToHandle(inside.c_str(), &type, &parsed, nullptr, FALSE) == 0 && type == sample.type &&
           parsed == static_cast<long>(number);
      ok = ok && std::wstring(MvxGetCustomItemTypeAsStringTS(34, buffer, 128)) == L"Purchase";
      ok = ok && GetMvxParentItemTypeAsStringTS(buffer, 128, 12, 0, 0, 0, nullptr) == buffer && buffer[0] == 0;
      if (!ok) ++failures;
      ++checks;
    }
  };

  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(checks.load(), kThreads * kRounds);
  EXPECT_EQ(failures.load(), 0);
}

}  // namespace
}  // namespace mvsup::test
