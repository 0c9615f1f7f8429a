// Handle formatting and the handle recognisers, called through the exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "types_test_support.h"

namespace mvsup::test {
namespace {

class Handles : public RegistrySandbox {};

TEST_F(Handles, FormattingClearsTheBufferAndReportsWhatItCopied) {
  wchar_t buffer[32];
  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, buffer, 32), 21);
  EXPECT_STREQ(buffer, L"Collection-4294967295");
  for (int i = 21; i < 32; ++i) EXPECT_EQ(buffer[i], 0) << i;

  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, buffer, 5), 4);
  EXPECT_STREQ(buffer, L"Coll");
  EXPECT_EQ(buffer[5], 0xffff);

  std::memset(buffer, 0xff, sizeof(buffer));
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, nullptr, 32), 21);
  EXPECT_EQ(GetMvxItemHandleAsString(2, 4294967295u, buffer, 0), 21);
  EXPECT_EQ(GetMvxItemHandleAsString(2, 7, buffer, -3), 12);
  EXPECT_EQ(buffer[0], 0xffff);

  EXPECT_EQ(GetMvxItemHandleAsString(3, 0, buffer, 1), 0);
  EXPECT_EQ(buffer[0], 0);

  // The whole capacity is cleared, and not one character more.
  GuardedBuffer guarded(12 * sizeof(wchar_t));
  std::memset(guarded.data(), 0xff, guarded.size());
  EXPECT_EQ(GetMvxItemHandleAsString(7, 3, guarded.as<wchar_t>(), 12), 5);
  EXPECT_STREQ(guarded.as<wchar_t>(), L"URL-3");
  EXPECT_EQ(guarded.as<wchar_t>()[11], 0);
}

TEST_F(Handles, HttpFormAlwaysWritesFileForDocuments) {
  wchar_t buffer[40];
  EXPECT_EQ(GetMvxItemHandleAsHttpString(3, 77, buffer, 40), 7);
  EXPECT_STREQ(buffer, L"File-77");
  EXPECT_EQ(GetMvxItemHandleAsHttpString(22, 1, buffer, 40), 8);
  EXPECT_STREQ(buffer, L"Weblog-1");
  // Types without a word keep only the number.
  EXPECT_EQ(handle_of(16, 5), L"-5");
  EXPECT_EQ(handle_of(4, 5), L"-5");
  EXPECT_EQ(create_type(L"Invoice"), 33);
  EXPECT_EQ(handle_of(33, 17), L"Invoice-17");
}

TEST_F(Handles, FormattingUsesAtMost320CharactersOfTheWord) {
  const std::wstring word(383, L'W');
  EXPECT_EQ(create_type(word.c_str()), 33);
  EXPECT_EQ(GetMvxItemHandleAsString(33, 7, nullptr, 0), 322);
  EXPECT_EQ(handle_of(33, 7), std::wstring(320, L'W') + L"-7");
}

TEST_F(Handles, ToNumberNeedsThePrefixAndNothingButANumberAfterIt) {
  EXPECT_EQ(ToNumber(L"Collection-12", L"collection-"), 12);
  EXPECT_EQ(ToNumber(L"COLLECTION-12", L"Collection-"), 12);
  EXPECT_EQ(ToNumber(L"Collection-12x", L"collection-"), -1);
  EXPECT_EQ(ToNumber(L"Collection-1 2", L"collection-"), -1);
  EXPECT_EQ(ToNumber(L"Collection- 12", L"collection-"), -1);
  EXPECT_EQ(ToNumber(L"collection-", L"collection-"), -1);
  EXPECT_EQ(ToNumber(L"collection-+", L"collection-"), 0);
  EXPECT_EQ(ToNumber(L"collection--5", L"collection-"), -5);
  EXPECT_EQ(ToNumber(L"collection-99999999999", L"collection-"), LONG_MAX);
  EXPECT_EQ(ToNumber(L"Collection-12", L"file-"), -1);
  EXPECT_EQ(ToNumber(L"Col", L"collection-"), -1);
  EXPECT_EQ(ToNumber(nullptr, L"c"), -1);
  EXPECT_EQ(ToNumber(L"c5", nullptr), -1);
  EXPECT_EQ(ToNumber(L"c5", L""), -1);
  const std::wstring prefix31(31, L'p');
  const std::wstring prefix32(32, L'p');
  EXPECT_EQ(ToNumber((prefix31 + L"9").c_str(), prefix31.c_str()), 9);
  EXPECT_EQ(ToNumber((prefix32 + L"9").c_str(), prefix32.c_str()), -1);
}

TEST_F(Handles, CollectionFileGroupAndUserRecognisers) {
  EXPECT_EQ(ToCollHandle(L"c7", FALSE, TRUE), 7);
  EXPECT_EQ(ToCollHandle(L"C7", FALSE, TRUE), 7);
  EXPECT_EQ(ToCollHandle(L"c7", FALSE, FALSE), -1);
  EXPECT_EQ(ToCollHandle(L"42", TRUE, FALSE), 42);
  EXPECT_EQ(ToCollHandle(L"42", FALSE, TRUE), -1);
  EXPECT_EQ(ToCollHandle(L"+", TRUE, FALSE), 0);
  EXPECT_EQ(ToCollHandle(L"", TRUE, TRUE), -1);
  EXPECT_EQ(ToCollHandle(L"Collection-5", FALSE, TRUE), 5);
  EXPECT_EQ(ToCollHandle(L"Calendar-5", TRUE, TRUE), -1);
  EXPECT_EQ(ToCollHandle(L"File-5", TRUE, TRUE), -1);

  EXPECT_EQ(ToFileHandle(L"f9", FALSE, nullptr, TRUE), 9);
  EXPECT_EQ(ToFileHandle(L"f9", FALSE, nullptr, FALSE), -1);
  EXPECT_EQ(ToFileHandle(L"file-3", FALSE, nullptr, FALSE), 3);
  EXPECT_EQ(ToFileHandle(L"Document-4", FALSE, nullptr, FALSE), 4);
  EXPECT_EQ(ToFileHandle(L"11", TRUE, nullptr, FALSE), 11);
  EXPECT_EQ(ToFileHandle(L"Files-3", TRUE, nullptr, TRUE), -1);

  EXPECT_EQ(ToGroupHandle(L"group-3", FALSE), 3);
  EXPECT_EQ(ToGroupHandle(L"3", TRUE), 3);
  EXPECT_EQ(ToGroupHandle(L"3", FALSE), -1);
  EXPECT_EQ(ToGroupHandle(L"user-3", TRUE), -1);
  EXPECT_EQ(ToUserHandle(L"USER-8", FALSE), 8);
  EXPECT_EQ(ToUserHandle(L"-8", TRUE), -8);
  EXPECT_EQ(ToUserHandle(L"group-8", TRUE), -1);
  EXPECT_EQ(ToUserHandle(nullptr, TRUE), -1);
}

TEST_F(Handles, FileVersionIsTheNumberAfterTheLastSlash) {
  long version = 77;
  // The digits-only rule leaves no room for the slash, so a versioned text
  // is no file handle; the version is written all the same.
  EXPECT_EQ(ToFileHandle(L"File-12/3", FALSE, &version, FALSE), -1);
  EXPECT_EQ(version, 3);
  version = 77;
  EXPECT_EQ(ToFileHandle(L"a/b/File-12/40x", FALSE, &version, TRUE), -1);
  EXPECT_EQ(version, 40);
  version = 77;
  EXPECT_EQ(ToFileHandle(L"File-12", FALSE, &version, FALSE), 12);
  EXPECT_EQ(version, 77);
  EXPECT_EQ(ToFileHandle(L"f12", FALSE, &version, TRUE), 12);
  EXPECT_EQ(version, 77);
}

struct Found {
  WORD type;
  long number;
  long version;
};

Found to_handle(const wchar_t* text, BOOL allow_short = FALSE) {
  Found found{0x1234, 12345, 77};
  EXPECT_EQ(ToHandle(text, &found.type, &found.number, &found.version, allow_short), 0);
  return found;
}

TEST_F(Handles, ToHandleTriesTheKnownWordsInOrder) {
  const struct {
    const wchar_t* text;
    WORD type;
    long number;
  } cases[] = {
      {L"URL-3", 7, 3},         {L"collection-5", 2, 5}, {L"document-6", 3, 6},  {L"Version-1", 12, 1},
      {L"BulletinBoard-4", 6, 4}, {L"Bulletin-4", 8, 4},  {L"Workspace-9", 20, 9}, {L"Object-2", 17, 2},
      {L"Subscription-+", 13, 0}, {L"User-1", 14, 1},    {L"group-1", 15, 1},    {L"Wiki-0", 21, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.text)));
    const Found found = to_handle(c.text);
    EXPECT_EQ(found.type, c.type);
    EXPECT_EQ(found.number, c.number);
  }
  EXPECT_EQ(to_handle(L"c7", TRUE).type, 2);
  EXPECT_EQ(to_handle(L"f7", TRUE).type, 3);
  const Found no_short = to_handle(L"c7");
  EXPECT_EQ(no_short.type, 0xFFFF);
  EXPECT_EQ(no_short.number, -1);
}

TEST_F(Handles, ToHandleFindsAHandleInsideLongerText) {
  Found found = to_handle(L"see C:\\work\\Weblog-12.htm");
  EXPECT_EQ(found.type, 22);
  EXPECT_EQ(found.number, 12);

  found = to_handle(L"http://srv/Server-4,x");
  EXPECT_EQ(found.type, 1);
  EXPECT_EQ(found.number, 4);
  found = to_handle(L"a.b,ContElem-8");
  EXPECT_EQ(found.type, 18);
  EXPECT_EQ(found.number, 8);
  // The number rule rejects the version, the search inside accepts it.
  found = to_handle(L"File-12/3");
  EXPECT_EQ(found.type, 3);
  EXPECT_EQ(found.number, 12);
  EXPECT_EQ(found.version, 3);

  EXPECT_EQ(create_type(L"Invoice"), 33);
  found = to_handle(L"please see Invoice-17 today");
  EXPECT_EQ(found.type, 33);
  EXPECT_EQ(found.number, 17);

  // Only the first '-' counts, and only before a digit, after a visible
  // character, not at the start.
  for (const wchar_t* text : {L"x-3", L"my-doc File-5", L"File -5", L"-5", L"File-", L"Files-2", L"", L"a/-5"}) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
    found = to_handle(text);
    EXPECT_EQ(found.type, 0xFFFF);
    EXPECT_EQ(found.number, -1);
  }
  found = Found{0x1234, 12345, 77};
  EXPECT_EQ(ToHandle(nullptr, &found.type, &found.number, nullptr, TRUE), 0);
  EXPECT_EQ(found.type, 0xFFFF);
  EXPECT_EQ(found.number, -1);
  EXPECT_EQ(ToHandle(L"URL-3", nullptr, nullptr, nullptr, FALSE), 0);
}

TEST_F(Handles, FormattedHandlesParseBack) {
  EXPECT_EQ(create_type(L"Invoice"), 33);
  for (MVXITEMTYPE type : {1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, 19, 20, 21, 22, 33}) {
    SCOPED_TRACE(type);
    const std::wstring text = handle_of(type, 123456);
    long number = 0;
    EXPECT_EQ(GetMvxItemHandleFromString(text.c_str(), &number), type);
    EXPECT_EQ(number, 123456);
    WORD found_type = 0;
    EXPECT_EQ(ToHandle(text.c_str(), &found_type, &number, nullptr, FALSE), 0);
    EXPECT_EQ(found_type, type);
    EXPECT_EQ(number, 123456);
  }
}

}  // namespace
}  // namespace mvsup::test
