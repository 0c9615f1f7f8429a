// Attributes and values of an open item info, through the exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "iteminfo/support.h"

namespace mvsup::test {
namespace {

class ItemValues : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(created_.get(), nullptr);
    ASSERT_NE(info_.get(), nullptr);
    property_ = AddProperty(info_, 0x1000);
    ASSERT_NE(property_, nullptr);
    values_ = MvxAddAttribute(info_, property_, 16);
    ASSERT_NE(values_, nullptr);
  }

  Committed created_ = Committed::create();
  Committed committed_;
  Opened info_{created_.get()};
  HMVXPROP property_ = nullptr;
  HMVXATTR values_ = nullptr;
};

TEST_F(ItemValues, AttributesAreAddedOnceAndWalkedInSignedOrder) {
  const DWORD space = MvxGetCommitSpace(info_);
  Internals(info_).modified = 0;
  EXPECT_EQ(MvxAddAttribute(info_, property_, 16), values_);
  EXPECT_EQ(MvxGetCommitSpace(info_), space);
  EXPECT_EQ(Internals(info_).modified, 0u) << "finding an attribute is no change";
  HMVXATTR high = MvxAddAttribute(info_, property_, 0x90000000);
  HMVXATTR one = MvxAddAttribute(info_, property_, 1);
  EXPECT_EQ(MvxGetCommitSpace(info_), space + 20);
  EXPECT_EQ(Internals(info_).modified, 1u);
  EXPECT_EQ(MvxFindAttribute(info_, property_, 1), one);
  EXPECT_EQ(MvxFindAttribute(info_, property_, 2), nullptr);
  EXPECT_EQ(MvxGetAttributeCount(info_, property_), 3);

  HMVXPOS position = MvxGetHeadAttribute(info_, property_);
  ASSERT_NE(position, nullptr);
  DWORD id = 0xdeadbeef;
  EXPECT_EQ(MvxGetNextAttribute(info_, &id, &position), high);
  EXPECT_EQ(id, 0x90000000u);
  EXPECT_EQ(MvxGetNextAttribute(info_, &id, &position), one);
  EXPECT_EQ(id, 1u);
  EXPECT_EQ(MvxGetNextAttribute(info_, nullptr, &position), values_);
  EXPECT_EQ(position, nullptr) << "the last attribute ends the walk";
  EXPECT_EQ(MvxGetNextAttribute(info_, &id, &position), nullptr);

  // A value position does not walk attributes.
  MvxAddInteger(info_, values_, 1);
  HMVXPOS value_position = MvxGetHeadAttributeValue(info_, values_);
  ASSERT_NE(value_position, nullptr);
  EXPECT_EQ(MvxGetNextAttribute(info_, &id, &value_position), nullptr);

  MvxDeleteAllAttributes(info_, property_);
  EXPECT_EQ(MvxGetAttributeCount(info_, property_), 0);
  EXPECT_EQ(MvxGetHeadAttribute(info_, property_), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info_), space - 10);
}

TEST_F(ItemValues, NullArgumentsChangeNothing) {
  const DWORD space = MvxGetCommitSpace(info_);
  EXPECT_EQ(MvxAddAttribute(nullptr, property_, 1), nullptr);
  EXPECT_EQ(MvxAddAttribute(info_, nullptr, 1), nullptr);
  EXPECT_EQ(MvxGetAttributeCount(info_, nullptr), 0);
  EXPECT_EQ(MvxGetHeadAttribute(info_, nullptr), nullptr);
  EXPECT_EQ(MvxGetNextAttribute(info_, nullptr, nullptr), nullptr);
  HMVXPOS null_position = nullptr;
  EXPECT_EQ(MvxGetNextAttributeValue(info_, &null_position), nullptr);
  EXPECT_EQ(MvxAddString(nullptr, values_, L"x"), nullptr);
  EXPECT_EQ(MvxAddInteger(info_, nullptr, 1), nullptr);
  EXPECT_EQ(MvxAddBinary(info_, values_, nullptr, 3), nullptr);
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, nullptr), 0);
  EXPECT_EQ(MvxGetAttributeValue(nullptr, values_, 0), nullptr);
  MvxDeleteAllAttributes(nullptr, property_);
  MvxDeleteAttributeValue(info_, nullptr, 0);
  EXPECT_EQ(MvxGetCommitSpace(info_), space);
  EXPECT_EQ(MvxGetCommitSpace(nullptr), 0u);
  EXPECT_EQ(MvxCommit(nullptr, created_.get()), 0u);
  EXPECT_EQ(MvxCommit(info_, nullptr), 0u);
  MvxClose(nullptr);
}

// Each kind's block, written out by hand from the value encodings.
TEST_F(ItemValues, EachKindIsEncodedAsItsBlock) {
  EXPECT_EQ(Hex(ValueBytes(MvxAddString(info_, values_, L"ab"))), Hex(Bytes().u32(6).text(L"ab")));
  EXPECT_EQ(Hex(ValueBytes(MvxAddString(info_, values_, nullptr))), Hex(Bytes().u32(2).u16(0)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddInteger(info_, values_, -2))), Hex(Bytes().u32(4).u32(0xfffffffe)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddPropertyType(info_, values_, 17))), Hex(Bytes().u32(4).u32(17)));
  // 1.5 is 0x3FF8000000000000.
  EXPECT_EQ(Hex(ValueBytes(MvxAddFloat(info_, values_, 0, 0x3ff80000))), Hex(Bytes().u32(8).u32(0).u32(0x3ff80000)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddDateTime(info_, values_, 0x01d710b4, 0x16006000))),
            Hex(Bytes().u32(8).u32(0x01d710b4).u32(0x16006000)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddBinary(info_, values_, "\x00\xff\x10", 3))),
            Hex(Bytes().u32(3).u8(0).u8(0xff).u8(0x10)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddBinary(info_, values_, nullptr, 0))), Hex(Bytes().u32(0)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddMvHandle(info_, values_, 0x10003, 0x01020304, L"T"))),
            Hex(Bytes().u32(10).u16(3).u32(0x01020304).text(L"T")));
  EXPECT_EQ(Hex(ValueBytes(MvxAddMvHandle(info_, values_, 2, 5, nullptr))), Hex(Bytes().u32(8).u16(2).u32(5).u16(0)));
  EXPECT_EQ(Hex(ValueBytes(MvxAddACE(info_, values_, 9, 0x11223344, L"me", 0x1f))),
            Hex(Bytes().u32(16).u16(9).u32(0x11223344).text(L"me").u32(0x1f)));
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, values_), 11);
}

TEST_F(ItemValues, ReadersHandOutPointersIntoTheBlock) {
  PMVXVALUE text = MvxAddString(info_, values_, L"abc");
  PMVXVALUE number = MvxAddInteger(info_, values_, 42);
  PMVXVALUE real = MvxAddFloat(info_, values_, 0, 0x3ff80000);
  PMVXVALUE date = MvxAddDateTime(info_, values_, 0x01d710b4, 0x16006000);
  PMVXVALUE blob = MvxAddBinary(info_, values_, "xyz", 3);
  PMVXVALUE handle = MvxAddMvHandle(info_, values_, 3, 77, L"Doc");
  PMVXVALUE ace = MvxAddACE(info_, values_, 5, 6, L"name", 0x1234);

  LPWSTR string = nullptr;
  EXPECT_EQ(MvxGetString(info_, text, &string), 8u);
  EXPECT_EQ(reinterpret_cast<BYTE*>(string), text + 4);
  EXPECT_STREQ(string, L"abc");
  LONG* integer = nullptr;
  MvxGetInteger(info_, number, &integer);
  EXPECT_EQ(reinterpret_cast<BYTE*>(integer), number + 4);
  EXPECT_EQ(*integer, 42);
  DWORD* type = nullptr;
  MvxGetPropertyType(info_, number, &type);
  EXPECT_EQ(reinterpret_cast<BYTE*>(type), number + 4);
  double* floating = nullptr;
  MvxGetFloat(info_, real, &floating);
  EXPECT_EQ(*floating, 1.5);
  DWORD* high = nullptr;
  DWORD* low = nullptr;
  MvxGetDateTime(info_, date, &high, &low);
  EXPECT_EQ(reinterpret_cast<BYTE*>(high), date + 4);
  EXPECT_EQ(reinterpret_cast<BYTE*>(low), date + 8);
  EXPECT_EQ(*high, 0x01d710b4u);
  BYTE* packed = nullptr;
  EXPECT_EQ(MvxGetDateTimePacked(info_, date, &packed), date + 4);
  EXPECT_EQ(packed, date + 4);
  BYTE* data = nullptr;
  DWORD size = 0;
  MvxGetBinary(info_, blob, &data, &size);
  EXPECT_EQ(data, blob + 4);
  EXPECT_EQ(size, 3u);

  WORD* item_type = nullptr;
  DWORD* item_number = nullptr;
  LPWSTR title = nullptr;
  MvxGetMvHandle(info_, handle, &item_type, &item_number, &title);
  EXPECT_EQ(reinterpret_cast<BYTE*>(item_type), handle + 4);
  EXPECT_EQ(reinterpret_cast<BYTE*>(item_number), handle + 6);
  EXPECT_EQ(reinterpret_cast<BYTE*>(title), handle + 10);
  EXPECT_EQ(LoadU32(reinterpret_cast<BYTE*>(item_number)), 77u);
  EXPECT_STREQ(title, L"Doc");

  WORD* principal_type = nullptr;
  DWORD* principal_number = nullptr;
  LPWSTR name = nullptr;
  DWORD* access = nullptr;
  MvxGetACE(info_, ace, &principal_type, &principal_number, &name, &access);
  EXPECT_EQ(reinterpret_cast<BYTE*>(name), ace + 10);
  EXPECT_EQ(reinterpret_cast<BYTE*>(access), ace + 20);
  EXPECT_EQ(LoadU32(reinterpret_cast<BYTE*>(access)), 0x1234u);
  // Every out argument may be null.
  MvxGetACE(info_, ace, nullptr, nullptr, nullptr, nullptr);
  MvxGetMvHandle(info_, handle, nullptr, nullptr, nullptr);
  EXPECT_EQ(MvxGetString(info_, text, nullptr), 8u);

  // A null item info or value writes nulls.
  string = reinterpret_cast<LPWSTR>(1);
  EXPECT_EQ(MvxGetString(nullptr, text, &string), 0u);
  EXPECT_EQ(string, nullptr);
  item_type = reinterpret_cast<WORD*>(1);
  title = reinterpret_cast<LPWSTR>(1);
  MvxGetMvHandle(info_, nullptr, &item_type, &item_number, &title);
  EXPECT_EQ(item_type, nullptr);
  EXPECT_EQ(title, nullptr);
  size = 9;
  MvxGetBinary(nullptr, blob, &data, &size);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(MvxGetDateTimePacked(info_, nullptr, &packed), nullptr);
}

TEST_F(ItemValues, AceWithEmptyNameHasItsAccessRightAfterTheTerminator) {
  PMVXVALUE ace = MvxAddACE(info_, values_, 1, 2, nullptr, 0xabcd);
  EXPECT_EQ(LoadU32(ace), 12u);
  LPWSTR name = nullptr;
  DWORD* access = nullptr;
  MvxGetACE(info_, ace, nullptr, nullptr, &name, &access);
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(reinterpret_cast<BYTE*>(access), reinterpret_cast<BYTE*>(name) + 2);
  EXPECT_EQ(*access, 0xabcdu);
}

// Fields that do not fit inside a value's length are handed out as null.
TEST_F(ItemValues, ReadersDoNotPointPastAShortValue) {
  PMVXVALUE tiny = MvxAddBinary(info_, values_, "\x01\x00", 2);
  LONG* integer = reinterpret_cast<LONG*>(1);
  MvxGetInteger(info_, tiny, &integer);
  EXPECT_EQ(integer, nullptr);
  WORD* type = nullptr;
  DWORD* number = reinterpret_cast<DWORD*>(1);
  LPWSTR title = reinterpret_cast<LPWSTR>(1);
  MvxGetMvHandle(info_, tiny, &type, &number, &title);
  EXPECT_EQ(reinterpret_cast<BYTE*>(type), tiny + 4);
  EXPECT_EQ(number, nullptr);
  EXPECT_EQ(title, nullptr);
  // A handle whose title has no terminator inside the value.
  PMVXVALUE unterminated = MvxAddBinary(info_, values_, "\x01\x00\x02\x00\x00\x00\x41\x00", 8);
  MvxGetMvHandle(info_, unterminated, &type, &number, &title);
  EXPECT_NE(number, nullptr);
  EXPECT_EQ(title, nullptr);
  LPWSTR name = reinterpret_cast<LPWSTR>(1);
  DWORD* access = reinterpret_cast<DWORD*>(1);
  MvxGetACE(info_, MvxAddBinary(info_, values_, "\x01\x00\x02\x00\x00\x00\x00\x00\x01", 9), nullptr, nullptr,
            &name, &access);
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(access, nullptr);
}

TEST_F(ItemValues, ShorterReplacementsKeepTheirBlockAndLength) {
  PMVXVALUE original = MvxAddString(info_, values_, L"abcdef");
  const DWORD space = MvxGetCommitSpace(info_);
  EXPECT_EQ(MvxReplaceString(info_, values_, 0, L"xy"), original);
  EXPECT_EQ(MvxGetCommitSpace(info_), space);
  // L stays 14: the new text, its terminator, then the old tail.
  EXPECT_EQ(Hex(ValueBytes(original)), Hex(Bytes().u32(14).text(L"xy").u16(L'd').u16(L'e').u16(L'f').u16(0)));

  PMVXVALUE longer = MvxReplaceString(info_, values_, 0, L"12345678");
  ASSERT_NE(longer, nullptr);
  EXPECT_EQ(LoadU32(longer), 18u);
  EXPECT_EQ(MvxGetCommitSpace(info_), space + 4);
  EXPECT_EQ(MvxGetAttributeValue(info_, values_, 0), longer);

  PMVXVALUE blob = MvxAddBinary(info_, values_, "12345", 5);
  EXPECT_EQ(MvxReplaceBinary(info_, values_, 1, "ab", 2), blob);
  EXPECT_EQ(Hex(ValueBytes(blob)), Hex(Bytes().u32(5).u8('a').u8('b').u8('3').u8('4').u8('5')));
  PMVXVALUE handle = MvxAddMvHandle(info_, values_, 1, 2, L"long title");
  EXPECT_EQ(MvxReplaceMvHandle(info_, values_, 2, 7, 8, L"t"), handle);
  EXPECT_EQ(LoadU32(handle), 28u);
  EXPECT_EQ(LoadU16(handle + 4), 7);
  EXPECT_EQ(LoadU32(handle + 6), 8u);
  EXPECT_STREQ(reinterpret_cast<wchar_t*>(handle + 10), L"t");

  // Fixed-size kinds are overwritten in place.
  PMVXVALUE number = MvxAddInteger(info_, values_, 1);
  PMVXVALUE date = MvxAddDateTime(info_, values_, 1, 2);
  const DWORD before = MvxGetCommitSpace(info_);
  EXPECT_EQ(MvxReplaceInteger(info_, values_, 3, -5), number);
  EXPECT_EQ(MvxReplaceDateTime(info_, values_, 4, 0x11, 0x22), date);
  EXPECT_EQ(Hex(ValueBytes(date)), Hex(Bytes().u32(8).u32(0x11).u32(0x22)));
  EXPECT_EQ(MvxReplaceFloat(info_, values_, 4, 0x33, 0x44), date);
  EXPECT_EQ(Hex(ValueBytes(date)), Hex(Bytes().u32(8).u32(0x33).u32(0x44)));
  EXPECT_EQ(LoadU32(number + 4), 0xfffffffbu);
  // An integer into a block too short for it gets a block of its own.
  MvxAddString(info_, values_, nullptr);
  PMVXVALUE grown = MvxReplaceInteger(info_, values_, 5, 9);
  EXPECT_EQ(Hex(ValueBytes(grown)), Hex(Bytes().u32(4).u32(9)));
  EXPECT_EQ(MvxGetCommitSpace(info_), before + 6 + 2);

  EXPECT_EQ(MvxReplaceInteger(info_, values_, 6, 1), nullptr) << "index out of range";
  EXPECT_EQ(MvxReplaceString(info_, values_, -1, L"x"), nullptr);
}

TEST_F(ItemValues, DeletingAValueMovesTheLaterOnesUp) {
  PMVXVALUE a = MvxAddString(info_, values_, L"a");
  PMVXVALUE b = MvxAddString(info_, values_, L"bb");
  PMVXVALUE c = MvxAddString(info_, values_, L"ccc");
  const DWORD space = MvxGetCommitSpace(info_);
  MvxDeleteAttributeValue(info_, values_, 0);
  EXPECT_EQ(MvxGetCommitSpace(info_), space - 8);
  ASSERT_EQ(MvxGetAttributeValuesCount(info_, values_), 2);
  EXPECT_EQ(MvxGetAttributeValue(info_, values_, 0), b);
  EXPECT_EQ(MvxGetAttributeValue(info_, values_, 1), c);
  MvxDeleteAttributeValue(info_, values_, 2);  // out of range: nothing
  MvxDeleteAttributeValue(info_, values_, -1);
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, values_), 2);
  (void)a;

  HMVXPOS position = MvxGetHeadAttributeValue(info_, values_);
  EXPECT_EQ(MvxGetNextAttributeValue(info_, &position), b);
  EXPECT_EQ(MvxGetNextAttributeValue(info_, &position), c);
  EXPECT_EQ(position, nullptr);

  MvxDeleteAllAttributeValues(info_, values_);
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, values_), 0);
  EXPECT_EQ(MvxGetHeadAttributeValue(info_, values_), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info_), space - 8 - 10 - 12);
}

TEST_F(ItemValues, IndexOutOfRangeThrowsTheStandardError) {
  MvxAddInteger(info_, values_, 1);
  for (int index : {1, -1, 1000}) {
#if defined(__i386__)
    EXPECT_EQ(MvxGetAttributeValue(info_, values_, index), nullptr);
#else
    try {
      MvxGetAttributeValue(info_, values_, index);
      ADD_FAILURE() << "no exception for index " << index;
    } catch (const std::out_of_range& error) {
      EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
#endif
  }
  EXPECT_NE(MvxGetAttributeValue(info_, values_, 0), nullptr);
}

// Values read from a committed item info are changed inside it at once.
TEST(ItemValuesInPlace, ReplacingAValueChangesTheOpenedBlock) {
  Committed source;
  {
    Committed created = Committed::create();
    Opened building(created.get());
    MvxAddString(building, MvxAddAttribute(building, AddProperty(building, 2), 16), L"Annual report");
    CommitExactly(building, source);
  }
  const ByteVector before = source.bytes();
  Committed committed;
  Opened info(source.get());
  HMVXATTR title = MvxFindAttribute(info, FindProperty(info, 2), 16);
  PMVXVALUE value = MvxGetAttributeValue(info, title, 0);
  EXPECT_EQ(MvxReplaceString(info, title, 0, L"Memo"), value);
  EXPECT_STREQ(MvxFindTitleValue(source.get()), L"Memo");
  ByteVector after = source.bytes();
  EXPECT_EQ(after.size(), before.size());
  EXPECT_EQ(Hex(ByteVector(after.begin() + (value - source.get()) + 4 + 10, after.end())),
            Hex(ByteVector(before.begin() + (value - source.get()) + 4 + 10, before.end())))
      << "the old tail after the new terminator stays";
  // The longer replacement leaves the block alone and is not freed with it.
  PMVXVALUE moved = MvxReplaceString(info, title, 0, L"A much longer title than before");
  EXPECT_TRUE(moved < source.get() || moved > source.get() + source.size());
  EXPECT_STREQ(MvxFindTitleValue(source.get()), L"Memo");
  CommitExactly(info, committed);
  EXPECT_STREQ(MvxFindTitleValue(committed.get()), L"A much longer title than before");
}

TEST(TitleValue, FoundOnlyAsATerminatedFirstValue) {
  EXPECT_EQ(MvxFindTitleValue(nullptr), nullptr);
  Committed empty = Committed::create();
  EXPECT_EQ(MvxFindTitleValue(empty.get()), nullptr);

  // 2 -> attribute 16 with no values; then the same with a value.
  Committed no_value(Bytes().header(64).u16(254).u16(1).u32(2).u32(8).u16(1).u32(16).u32(8).u16(0));
  EXPECT_EQ(MvxFindTitleValue(no_value.get()), nullptr);
  Committed found(Bytes().header(72).u16(254).u16(1).u32(2).u32(8).u16(1).u32(16).u32(8).u16(1).u32(4).text(L"T"));
  LPWSTR title = MvxFindTitleValue(found.get());
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(reinterpret_cast<BYTE*>(title), found.get() + 68);
  EXPECT_STREQ(title, L"T");
  // The same bytes without a terminator inside the value.
  Committed unterminated(Bytes().header(72).u16(254).u16(1).u32(2).u32(8).u16(1).u32(16).u32(8).u16(1).u32(4)
                             .u16(L'T').u16(L'U'));
  EXPECT_EQ(MvxFindTitleValue(unterminated.get()), nullptr);
  // Attribute 16 of another property is not the title.
  Committed other(Bytes().header(72).u16(254).u16(1).u32(3).u32(8).u16(1).u32(16).u32(8).u16(1).u32(4).text(L"T"));
  EXPECT_EQ(MvxFindTitleValue(other.get()), nullptr);
}

}  // namespace
}  // namespace mvsup::test
