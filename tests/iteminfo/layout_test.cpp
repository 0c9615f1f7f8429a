// The committed format, checked byte for byte against layouts written out by
// hand from the format tables, and the header summary a commit derives.
#include <windows.h>

#include <gtest/gtest.h>

#include "iteminfo/support.h"

namespace mvsup::test {
namespace {

// 2021-03-04 05:06:08 UTC as a FILETIME, and its DOS date and time.
constexpr DWORD kMarchHigh = 0x01d710b4;
constexpr DWORD kMarchLow = 0x16006000;
constexpr WORD kMarchDosDate = 0x5264;
constexpr WORD kMarchDosTime = 0x28c4;
// 1999-12-31 23:59:58 UTC.
constexpr DWORD kNinetyNineHigh = 0x01bf53eb;
constexpr DWORD kNinetyNineLow = 0x243c1300;
constexpr WORD kNinetyNineDosDate = 0x279f;
constexpr WORD kNinetyNineDosTime = 0xbf7d;

TEST(CommittedLayout, EmptyItemInfoCommitsItsHeaderOnly) {
  Committed created = Committed::create();
  ASSERT_NE(created.get(), nullptr);
  EXPECT_GE(GlobalSize(created.get()), 44u);
  EXPECT_EQ(Hex(ByteVector(created.get(), created.get() + 44)), Hex(Bytes().header(40).zeros(4)));

  // Every header byte but the size field is carried over unchanged.
  for (int i = 4; i < 40; ++i) created.get()[i] = static_cast<BYTE>(i);
  BYTE destination[64];
  memset(destination, 0xff, sizeof destination);
  Opened info(created.get());
  ASSERT_NE(info.get(), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info), 40u);
  EXPECT_EQ(MvxCommit(info, destination), 40u);
  EXPECT_EQ(LoadU32(destination), 40u);
  for (int i = 4; i < 40; ++i) EXPECT_EQ(destination[i], i) << "header byte " << i;
  EXPECT_EQ(destination[40], 0xff) << "nothing is written past the header";
}

TEST(CommittedLayout, OnePropertyWithoutAttributes) {
  Committed created = Committed::create();
  Committed committed;
  Opened info(created.get());
  ASSERT_NE(AddProperty(info, 4), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info), 54u);
  const ByteVector bytes = CommitExactly(info, committed);
  // marker, N = 1, entry (key 5, offset 8), attribute count 0
  EXPECT_EQ(Hex(bytes), Hex(Bytes().header(54).u16(254).u16(1).u32(4).u32(8).u16(0)));
}

// Two id-keyed and two custom properties with values of three kinds: the
// entry order (signed ids, then names by code unit), both tables' offsets
// and the header summary of properties 32 and 0x80000040.
TEST(CommittedLayout, PropertiesAttributesAndValuesByteForByte) {
  Committed created = Committed::create();
  Committed committed;
  Opened info(created.get());
  HMVXPROP b = AddCustomProperty(info, L"b");
  MvxAddString(info, MvxAddAttribute(info, b, 16), L"x");
  HMVXPROP handle = AddProperty(info, 32);
  MvxAddPropertyType(info, MvxAddAttribute(info, handle, 1), 11);
  MvxAddMvHandle(info, MvxAddAttribute(info, handle, 16), 3, 77, L"Doc");
  MvxAddInteger(info, MvxAddAttribute(info, AddProperty(info, 0x80000040), 16), 1234);
  ASSERT_NE(AddCustomProperty(info, L"B"), nullptr);
  ASSERT_EQ(MvxGetCommitSpace(info), 202u);

  const ByteVector bytes = CommitExactly(info, committed);
  Bytes expected;
  expected.u32(202).u16(0).u16(3).u32(1234).zeros(20).u32(77).u32(0);  // header
  expected.u16(254).u16(4);
  expected.u32(0x80000040).u32(32).u32(32).u32(52).u32(1).u32(100).u32(1).u32(120);
  // 76: 0x80000040 - one attribute, 16 -> integer 1234
  expected.u16(1).u32(16).u32(8).u16(1).u32(4).u32(1234);
  // 96: 32 - attribute 1 -> type 11; attribute 16 -> handle 3/77 "Doc"
  expected.u16(2).u32(1).u32(16).u32(16).u32(26);
  expected.u16(1).u32(4).u32(11);
  expected.u16(1).u32(14).u16(3).u32(77).text(L"Doc");
  // 144: "B" - attribute 2 -> "B"
  expected.u16(1).u32(2).u32(8).u16(1).u32(4).text(L"B");
  // 164: "b" - attribute 2 -> "b"; attribute 16 -> "x"
  expected.u16(2).u32(2).u32(16).u32(16).u32(26);
  expected.u16(1).u32(4).text(L"b");
  expected.u16(1).u32(4).text(L"x");
  ASSERT_EQ(expected.size(), 202u);
  EXPECT_EQ(Hex(bytes), Hex(expected));
}

TEST(CommittedLayout, AttributesSortBySignedId) {
  Committed created = Committed::create();
  Committed committed;
  Opened info(created.get());
  HMVXPROP property = AddProperty(info, 8);
  for (DWORD id : {0x7fffffffu, 1u, 0xffffffffu, 0x80000000u}) ASSERT_NE(MvxAddAttribute(info, property, id), nullptr);
  const ByteVector bytes = CommitExactly(info, committed);
  // Body at 52: count, then the table of 4 (id, offset) pairs.
  const DWORD expected[] = {0x80000000u, 0xffffffffu, 1u, 0x7fffffffu};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(LoadU32(&bytes[54 + 8 * i]), expected[i]);
    EXPECT_EQ(LoadU32(&bytes[58 + 8 * i]), 32u + 2u * i) << "attribute body offsets count from the table";
  }
}

TEST(CommittedLayout, HeaderSummaryFromHandlesDatesAndSizes) {
  Committed created = Committed::create();
  Committed first, second, third;
  Opened info(created.get());
  MvxAddMvHandle(info, MvxAddAttribute(info, AddProperty(info, 32), 16), 0x1234a, 0xdeadbeef, nullptr);
  MvxAddMvHandle(info, MvxAddAttribute(info, AddProperty(info, 64), 16), 9, 4242, L"owner");
  MvxAddDateTime(info, MvxAddAttribute(info, AddProperty(info, 256), 16), kMarchHigh, kMarchLow);
  MvxAddDateTime(info, MvxAddAttribute(info, AddProperty(info, 128), 16), kNinetyNineHigh, kNinetyNineLow);
  HMVXATTR parents = MvxAddAttribute(info, AddProperty(info, 1024), 16);
  MvxAddMvHandle(info, parents, 2, 500, nullptr);
  MvxAddMvHandle(info, parents, 2, 600, nullptr);
  // Of the content-length ids the last in signed order wins: 0x70000002.
  MvxAddInteger(info, MvxAddAttribute(info, AddProperty(info, 0x70000002), 16), 7);
  MvxAddInteger(info, MvxAddAttribute(info, AddProperty(info, 0x80000040), 16), 1);
  MvxAddInteger(info, MvxAddAttribute(info, AddProperty(info, 0x20000010), 16), 2);
  MvxAddInteger(info, MvxAddAttribute(info, AddProperty(info, 0xC0000010), 16), 3);

  const ByteVector bytes = CommitExactly(info, first);
  const Bytes expected = Bytes()
                             .u32(static_cast<uint32_t>(bytes.size()))
                             .u16(0)
                             .u16(0x234a)  // item type, low 16 bits
                             .u32(7)
                             .u16(kMarchDosDate)
                             .u16(kMarchDosTime)
                             .u16(kNinetyNineDosDate)
                             .u16(kNinetyNineDosTime)
                             .u32(0)
                             .u32(500)
                             .u32(2)
                             .u32(0xdeadbeef)
                             .u32(4242);
  EXPECT_EQ(Hex(ByteVector(bytes.begin(), bytes.begin() + 40)), Hex(expected));

  // Offsets 4 and 20 are carried; 24 keeps the first parent once set, 28
  // follows the parents.
  first.get()[4] = 0xaa;
  first.get()[5] = 0xbb;
  first.get()[20] = 0xcc;
  first.get()[23] = 0xdd;
  MvxReplaceMvHandle(info, parents, 0, 2, 900, nullptr);
  MvxDeleteAttributeValue(info, parents, 1);
  const ByteVector again = CommitExactly(info, second);
  EXPECT_EQ(again[4], 0xaa);
  EXPECT_EQ(again[5], 0xbb);
  EXPECT_EQ(LoadU32(&again[20]), 0xdd0000ccu);
  EXPECT_EQ(LoadU32(&again[24]), 500u);
  EXPECT_EQ(LoadU32(&again[28]), 1u);

  // Properties without values leave their fields as carried.
  MvxDeleteAllAttributeValues(info, parents);
  MvxDeleteAllAttributes(info, FindProperty(info, 32));
  const ByteVector emptied = CommitExactly(info, third);
  EXPECT_EQ(LoadU32(&emptied[24]), 500u);
  EXPECT_EQ(LoadU32(&emptied[28]), 1u);
  EXPECT_EQ(LoadU16(&emptied[6]), 0x234a);
  EXPECT_EQ(LoadU32(&emptied[32]), 0xdeadbeefu);
}

TEST(CommittedLayout, SummaryIgnoresValuesTooShortOrOutOfDosRange) {
  Committed created = Committed::create();
  const Bytes carried = Bytes().u32(40).u16(0).u16(0x1111).u32(0x22222222).u16(0x3333).u16(0x4444).u16(0x5555)
                            .u16(0x6666).u32(0).u32(0).u32(0).u32(0x77777777).u32(0x88888888);
  memcpy(created.get(), carried.data().data(), 40);
  Committed committed;
  Opened info(created.get());
  MvxAddString(info, MvxAddAttribute(info, AddProperty(info, 32), 16), L"");  // L = 2
  MvxAddBinary(info, MvxAddAttribute(info, AddProperty(info, 64), 16), "abcde", 5);
  MvxAddDateTime(info, MvxAddAttribute(info, AddProperty(info, 256), 16), 0, 0);  // 1601
  MvxAddBinary(info, MvxAddAttribute(info, AddProperty(info, 128), 16), "1234567", 7);
  MvxAddBinary(info, MvxAddAttribute(info, AddProperty(info, 0x80000040), 16), "abc", 3);
  const ByteVector bytes = CommitExactly(info, committed);
  EXPECT_EQ(Hex(ByteVector(bytes.begin() + 4, bytes.begin() + 40)),
            Hex(ByteVector(carried.data().begin() + 4, carried.data().end())));
}

TEST(CommittedLayout, CommitSizeIsExactAfterEveryChange) {
  Committed created = Committed::create();
  Committed committed;
  Opened info(created.get());
  DWORD expected = 40;
  const auto check = [&](const char* step) {
    SCOPED_TRACE(step);
    EXPECT_EQ(MvxGetCommitSpace(info), expected);
    EXPECT_EQ(CommitExactly(info, committed).size(), expected);
  };
  HMVXPROP property = AddProperty(info, 8);
  expected += 4 + 10;
  check("first property brings the section");
  EXPECT_EQ(AddProperty(info, 8), property);
  check("adding it again adds nothing");
  HMVXATTR attribute = MvxAddAttribute(info, property, 16);
  expected += 10;
  EXPECT_EQ(MvxAddAttribute(info, property, 16), attribute);
  check("attribute");
  MvxAddString(info, attribute, L"abc");
  expected += 4 + 8;
  MvxAddString(info, attribute, nullptr);
  expected += 4 + 2;
  MvxAddInteger(info, attribute, -1);
  MvxAddPropertyType(info, attribute, 1);
  expected += 2 * (4 + 4);
  MvxAddFloat(info, attribute, 0, 0x3ff80000);
  MvxAddDateTime(info, attribute, kMarchHigh, kMarchLow);
  expected += 2 * (4 + 8);
  MvxAddBinary(info, attribute, "12345", 5);
  expected += 4 + 5;
  MvxAddMvHandle(info, attribute, 3, 1, L"T");
  expected += 4 + 10;
  MvxAddACE(info, attribute, 5, 2, L"ab", 0xf);
  expected += 4 + 16;
  check("a value of every kind");
  MvxReplaceString(info, attribute, 0, L"abcdef");
  expected += 6;
  MvxReplaceString(info, attribute, 0, L"a");
  check("replace grows, then keeps its length");
  MvxDeleteAttributeValue(info, attribute, 1);
  expected -= 4 + 2;
  check("delete a value");
  HMVXPROP custom = AddCustomProperty(info, L"name");
  expected += 10 + 10 + 4 + 10;
  check("custom property with its name");
  MvxDeleteAllAttributeValues(info, attribute);
  expected -= (4 + 14) + 2 * (4 + 4) + 2 * (4 + 8) + (4 + 5) + (4 + 10) + (4 + 16);
  check("delete all values");
  MvxDeleteAllAttributes(info, custom);
  expected -= 10 + 4 + 10;
  check("delete all attributes");
  DeleteProperty(info, 8);
  expected -= 10 + 10;
  check("delete a property while custom ones remain");
  DeleteCustomProperty(info, L"name");
  expected -= 10 + 4;
  check("the last property takes the section with it");
  EXPECT_EQ(expected, 40u);
}

// An item info opened over a block with a section keeps its (empty) custom
// map, so deleting every property still commits the section.
TEST(CommittedLayout, OpenedSectionSurvivesDeletingEveryProperty) {
  Committed source(Bytes().header(54).u16(254).u16(1).u32(4).u32(8).u16(0));
  Committed committed;
  Opened info(source.get());
  ASSERT_NE(info.get(), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info), 54u);
  DeleteProperty(info, 4);
  EXPECT_EQ(MvxGetCommitSpace(info), 44u);
  EXPECT_EQ(Hex(CommitExactly(info, committed)), Hex(Bytes().header(44).u16(254).u16(0)));
}

TEST(CommittedLayout, ReopenedItemInfoCommitsIdentically) {
  Committed created = Committed::create();
  Committed first, second;
  {
    Opened info(created.get());
    HMVXATTR values = MvxAddAttribute(info, AddProperty(info, 2), 16);
    MvxAddString(info, values, L"Title");
    MvxAddACE(info, MvxAddAttribute(info, AddProperty(info, 0x4000), 16), 5, 17, L"someone", 3);
    MvxAddBinary(info, MvxAddAttribute(info, AddCustomProperty(info, L"blob"), 16), "\x01\x02\x03", 3);
    CommitExactly(info, first);
  }
  Opened reopened(first.get());
  ASSERT_NE(reopened.get(), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(reopened), first.size());
  // Values are read in place: the reference is the block's own bytes.
  HMVXATTR title = MvxFindAttribute(reopened, FindProperty(reopened, 2), 16);
  ASSERT_NE(title, nullptr);
  PMVXVALUE value = MvxGetAttributeValue(reopened, title, 0);
  EXPECT_GT(value, first.get());
  EXPECT_LT(value, first.get() + first.size());
  EXPECT_EQ(Hex(CommitExactly(reopened, second)), Hex(first.bytes()));
}

// Properties left alone are copied as they were; a changed one is written
// anew and everything after it moves.
TEST(CommittedLayout, ChangingOnePropertyRewritesOnlyWhatMoves) {
  const auto build = [](HMVXINFO info, bool changed) {
    for (DWORD id = 2; id <= 20; id += 2) {
      HMVXATTR values = MvxAddAttribute(info, AddProperty(info, id), 16);
      MvxAddString(info, values, L"value");
      MvxAddInteger(info, MvxAddAttribute(info, FindProperty(info, id), 17), static_cast<LONG>(id));
      if (changed && id == 10) MvxAddString(info, values, L"added");
    }
  };
  Committed created = Committed::create(), before, after, fresh;
  {
    Opened info(created.get());
    build(info, false);
    CommitExactly(info, before);
  }
  Opened reopened(before.get());
  HMVXATTR values = MvxFindAttribute(reopened, FindProperty(reopened, 10), 16);
  MvxAddString(reopened, values, L"added");
  // In place: the block in `before` changes, and so does its copy.
  MvxReplaceString(reopened, MvxFindAttribute(reopened, FindProperty(reopened, 4), 16), 0, L"VALUE");
  CommitExactly(reopened, after);
  {
    Committed empty = Committed::create();
    Opened info(empty.get());
    build(info, true);
    MvxReplaceString(info, MvxFindAttribute(info, FindProperty(info, 4), 16), 0, L"VALUE");
    CommitExactly(info, fresh);
  }
  EXPECT_EQ(Hex(after.bytes()), Hex(fresh.bytes()));
  // The references of moved properties follow their values.
  PMVXVALUE last = MvxGetAttributeValue(reopened, MvxFindAttribute(reopened, FindProperty(reopened, 20), 17), 0);
  EXPECT_GT(last, after.get());
  EXPECT_EQ(LoadU32(last + 4), 20u);
}

// A later entry under a key or name already present is dropped whole, and a
// custom entry without a name is skipped; the commit size stays the size
// field, so the commit writes less than it.
TEST(CommittedLayout, DuplicateKeysKeepTheFirstAndUnnamedCustomEntriesAreLost) {
  Bytes block;
  block.header(166).u16(254).u16(4);
  block.u32(4).u32(32).u32(4).u32(52).u32(1).u32(72).u32(1).u32(84);
  // 76: 4 -> attribute 16 -> integer 1
  block.u16(1).u32(16).u32(8).u16(1).u32(4).u32(1);
  // 96: 4 again -> attribute 16 -> integer 2
  block.u16(1).u32(16).u32(8).u16(1).u32(4).u32(2);
  // 116: custom without attribute 2: attribute 16 with no values
  block.u16(1).u32(16).u32(8).u16(0);
  // 128: custom "n", whose attribute 2 appears twice: the first names it
  block.u16(2).u32(2).u32(16).u32(2).u32(26).u16(1).u32(4).text(L"n").u16(1).u32(4).text(L"m");
  ASSERT_EQ(block.size(), 166u);
  Committed source(block);
  BYTE destination[200];
  Opened info(source.get());
  ASSERT_NE(info.get(), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info), 166u);
  HMVXATTR first = MvxFindAttribute(info, FindProperty(info, 4), 16);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(LoadU32(MvxGetAttributeValue(info, first, 0) + 4), 1u);
  EXPECT_NE(FindCustomProperty(info, L"n"), nullptr);
  EXPECT_EQ(FindCustomProperty(info, L"m"), nullptr);
  EXPECT_EQ(MvxGetAttributeValuesCount(info, MvxFindAttribute(info, FindCustomProperty(info, L"n"), 2)), 1);

  EXPECT_EQ(MvxCommit(info, destination), 100u);
  const Bytes expected = Bytes().header(100).u16(254).u16(2).u32(4).u32(16).u32(1).u32(36)
                             .u16(1).u32(16).u32(8).u16(1).u32(4).u32(1)
                             .u16(1).u32(2).u32(8).u16(1).u32(4).text(L"n");
  EXPECT_EQ(Hex(ByteVector(destination, destination + 100)), Hex(expected));
}

}  // namespace
}  // namespace mvsup::test
