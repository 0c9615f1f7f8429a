// The committed format, checked byte for byte against layouts written out by
// hand from the format tables, and the header summary a commit derives.
#include <windows.h>

#include <gtest/gtest.h>

#include "common/item_info_blocks.h"

namespace mvsup::test {
namespace {

// 2021-03-04 05:06:08 UTC as a FILETIME, and its DOS date and time.
constexpr DWORD kMarchHigh = 0x01d710b4, kMarchLow = 0x16006000;
constexpr WORD kMarchDosDate = 0x5264, kMarchDosTime = 0x28c4;
// 1999-12-31 23:59:58 UTC.
constexpr DWORD kNinetyNineHigh = 0x01bf53eb, kNinetyNineLow = 0x243c1300;
constexpr WORD kNinetyNineDosDate = 0x279f, kNinetyNineDosTime = 0xbf7d;

TEST(CommittedLayout, EmptyItemInfoCommitsItsHeaderOnly) {
  Committed created = Committed::create(), committed;
  ASSERT_NE(created.get(), nullptr);
  EXPECT_GE(GlobalSize(created.get()), 44u);
  EXPECT_EQ(Hex(ByteVector(created.get(), created.get() + 44)), Hex(Bytes().header(40).zeros(4)));
  // Every header byte but the size field is carried over unchanged.
  ByteVector header = Bytes().header(40);
  for (int i = 4; i < 40; ++i) created.get()[i] = header[i] = static_cast<BYTE>(i);
  Opened info(created.get());
  EXPECT_EQ(Hex(CommitExactly(info, committed)), Hex(header));
}

TEST(CommittedLayout, OnePropertyWithoutAttributes) {
  Committed committed;
  Opened info(nullptr);
  ASSERT_NE(info.get(), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info), 40u);
  ASSERT_NE(MvxAddProperty(info, 4), nullptr);
  // marker, N = 1, entry (key 4, offset 8), attribute count 0
  EXPECT_EQ(Hex(CommitExactly(info, committed)), Hex(Bytes().header(54).u16(254).u16(1).u32(4).u32(8).u16(0)));
}

// Two id-keyed and two custom properties with values of three kinds: the
// entry order (signed ids, then names by code unit), both tables' offsets
// and the header summary of properties 32 and 0x80000040.
TEST(CommittedLayout, PropertiesAttributesAndValuesByteForByte) {
  Committed committed;
  Opened info(nullptr);
  HMVXPROP b = MvxAddCustomProperty(info, L"b");
  MvxAddString(info, MvxAddAttribute(info, b, 16), L"x");
  HMVXPROP handle = MvxAddProperty(info, 32);
  MvxAddPropertyType(info, MvxAddAttribute(info, handle, 1), 11);
  MvxAddMvHandle(info, MvxAddAttribute(info, handle, 16), 3, 77, L"Doc");
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0x80000040), 16), 1234);
  ASSERT_NE(MvxAddCustomProperty(info, L"B"), nullptr);
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
  Committed committed;
  Opened info(nullptr);
  HMVXPROP property = MvxAddProperty(info, 8);
  for (DWORD id : {0x7fffffffu, 1u, 0xffffffffu, 0x80000000u}) ASSERT_NE(MvxAddAttribute(info, property, id), nullptr);
  // Attribute body offsets count from the attribute table.
  EXPECT_EQ(Hex(CommitExactly(info, committed)), Hex(Bytes().header(94).u16(254).u16(1).u32(8).u32(8).u16(4)
                                                         .u32(0x80000000).u32(32).u32(0xffffffff).u32(34)
                                                         .u32(1).u32(36).u32(0x7fffffff).u32(38).zeros(8)));
}

TEST(CommittedLayout, HeaderSummaryFromHandlesDatesAndSizes) {
  Committed first, second;
  Opened info(nullptr);
  MvxAddMvHandle(info, MvxAddAttribute(info, MvxAddProperty(info, 32), 16), 0x1234a, 0xdeadbeef, nullptr);
  MvxAddMvHandle(info, MvxAddAttribute(info, MvxAddProperty(info, 64), 16), 9, 4242, L"owner");
  MvxAddDateTime(info, MvxAddAttribute(info, MvxAddProperty(info, 256), 16), kMarchHigh, kMarchLow);
  MvxAddDateTime(info, MvxAddAttribute(info, MvxAddProperty(info, 128), 16), kNinetyNineHigh, kNinetyNineLow);
  HMVXATTR parents = MvxAddAttribute(info, MvxAddProperty(info, 1024), 16);
  MvxAddMvHandle(info, parents, 2, 500, nullptr);
  MvxAddMvHandle(info, parents, 2, 600, nullptr);
  // Of the content-length ids the last in signed order wins: 0x70000002.
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0x70000002), 16), 7);
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0x80000040), 16), 1);
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0x20000010), 16), 2);
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0xC0000010), 16), 3);

  const ByteVector bytes = CommitExactly(info, first);
  // The item type is the low 16 bits of the handle's.
  const Bytes expected = Bytes().u32(static_cast<uint32_t>(bytes.size())).u16(0).u16(0x234a).u32(7)
                             .u16(kMarchDosDate).u16(kMarchDosTime).u16(kNinetyNineDosDate).u16(kNinetyNineDosTime)
                             .u32(0).u32(500).u32(2).u32(0xdeadbeef).u32(4242);
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
  EXPECT_EQ(LoadU16(&again[4]), 0xbbaa);
  EXPECT_EQ(LoadU32(&again[20]), 0xdd0000ccu);
  EXPECT_EQ(LoadU32(&again[24]), 500u);
  EXPECT_EQ(LoadU32(&again[28]), 1u);
}

// Fields are taken only from a value long enough for them, and a property
// without values leaves its fields as carried.
TEST(CommittedLayout, SummaryIgnoresMissingValuesAndValuesTooShortOrOutOfDosRange) {
  Committed created = Committed::create();
  const Bytes carried = Bytes().u32(40).u16(0).u16(0x1111).u32(0x22222222).u16(0x3333).u16(0x4444).u16(0x5555)
                            .u16(0x6666).u32(0).u32(0x99999999).u32(0xaaaaaaaa).u32(0x77777777).u32(0x88888888);
  memcpy(created.get(), carried.data().data(), 40);
  Committed committed;
  Opened info(created.get());
  MvxAddString(info, MvxAddAttribute(info, MvxAddProperty(info, 32), 16), L"");  // L = 2
  MvxAddBinary(info, MvxAddAttribute(info, MvxAddProperty(info, 64), 16), "abcde", 5);
  MvxAddDateTime(info, MvxAddAttribute(info, MvxAddProperty(info, 256), 16), 0, 0);  // 1601
  MvxAddBinary(info, MvxAddAttribute(info, MvxAddProperty(info, 128), 16), "1234567", 7);
  MvxAddBinary(info, MvxAddAttribute(info, MvxAddProperty(info, 0x80000040), 16), "abc", 3);
  MvxAddAttribute(info, MvxAddProperty(info, 1024), 16);
  const ByteVector bytes = CommitExactly(info, committed);
  EXPECT_EQ(Hex(ByteVector(bytes.begin() + 4, bytes.begin() + 40)),
            Hex(ByteVector(carried.data().begin() + 4, carried.data().end())));
}

TEST(CommittedLayout, CommitSizeIsExactAfterEveryChange) {
  Committed committed;
  Opened info(nullptr);
  DWORD expected = 40;
  const auto check = [&](const char* step) {
    SCOPED_TRACE(step);
    EXPECT_EQ(MvxGetCommitSpace(info), expected);
    EXPECT_EQ(CommitExactly(info, committed).size(), expected);
  };
  HMVXPROP property = MvxAddProperty(info, 8);
  expected += 4 + 10;
  check("first property brings the section");
  HMVXATTR attribute = MvxAddAttribute(info, property, 16);
  expected += 10;
  EXPECT_EQ(MvxAddAttribute(info, property, 16), attribute);
  check("attribute");
  const DWORD without_values = expected;
  // Each value takes 4 + L, as its block gives L.
  for (PMVXVALUE value : {MvxAddString(info, attribute, L"abc"), MvxAddString(info, attribute, nullptr),
                          MvxAddInteger(info, attribute, -1), MvxAddPropertyType(info, attribute, 1),
                          MvxAddFloat(info, attribute, 0, 0x3ff80000), MvxAddDateTime(info, attribute, 1, 2),
                          MvxAddBinary(info, attribute, "12345", 5), MvxAddMvHandle(info, attribute, 3, 1, L"T"),
                          MvxAddACE(info, attribute, 5, 2, L"ab", 0xf)}) {
    expected += 4 + LoadU32(value);
  }
  check("a value of every kind");
  HMVXPROP custom = MvxAddCustomProperty(info, L"name");
  expected += 10 + 10 + 4 + 10;
  check("custom property with its name");
  MvxDeleteAllAttributeValues(info, attribute);
  expected = without_values + 10 + 10 + 4 + 10;
  check("delete all values");
  MvxDeleteAllAttributes(info, custom);
  expected -= 10 + 4 + 10;
  check("delete all attributes");
  MvxDeleteProperty(info, 8);
  expected -= 10 + 10;
  check("delete a property while custom ones remain");
  MvxDeleteCustomProperty(info, L"name");
  expected -= 10 + 4;
  check("the last property takes the section with it");
  EXPECT_EQ(expected, 40u);
}

// Properties left alone are copied as they were; a changed one is written
// anew and everything after it moves.
TEST(CommittedLayout, ChangingOnePropertyRewritesOnlyWhatMoves) {
  const auto build = [](HMVXINFO info, bool changed) {
    for (DWORD id = 2; id <= 20; id += 2) {
      HMVXATTR values = MvxAddAttribute(info, MvxAddProperty(info, id), 16);
      MvxAddString(info, values, changed && id == 4 ? L"VALUE" : L"value");
      MvxAddInteger(info, MvxAddAttribute(info, MvxFindProperty(info, id), 17), static_cast<LONG>(id));
      if (changed && id == 10) MvxAddString(info, values, L"added");
    }
  };
  Committed before, after, fresh;
  {
    Opened original(nullptr), changed(nullptr);
    build(original, false);
    CommitExactly(original, before);
    build(changed, true);
    CommitExactly(changed, fresh);
  }
  Opened reopened(before.get());
  MvxAddString(reopened, MvxFindAttribute(reopened, MvxFindProperty(reopened, 10), 16), L"added");
  // In place: the block in `before` changes, and so does its copy.
  MvxReplaceString(reopened, MvxFindAttribute(reopened, MvxFindProperty(reopened, 4), 16), 0, L"VALUE");
  CommitExactly(reopened, after);
  EXPECT_EQ(Hex(after.bytes()), Hex(fresh.bytes()));
  // The references of moved properties follow their values.
  PMVXVALUE last = MvxGetAttributeValue(reopened, MvxFindAttribute(reopened, MvxFindProperty(reopened, 20), 17), 0);
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
  EXPECT_EQ(MvxCommit(info, destination), 100u);
  const Bytes expected = Bytes().header(100).u16(254).u16(2).u32(4).u32(16).u32(1).u32(36)
                             .u16(1).u32(16).u32(8).u16(1).u32(4).u32(1)
                             .u16(1).u32(2).u32(8).u16(1).u32(4).text(L"n");
  EXPECT_EQ(Hex(ByteVector(destination, destination + 100)), Hex(expected));
}

}  // namespace
}  // namespace mvsup::test
