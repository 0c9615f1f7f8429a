// Attributes and values of an open item info, through the exports.
#include <windows.h>

#include <gtest/gtest.h>

#include <utility>

#include "common/item_info_blocks.h"

namespace mvsup::test {
namespace {

class ItemValues : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(info_.get(), nullptr);
    property_ = MvxAddProperty(info_, 0x1000);
    values_ = MvxAddAttribute(info_, property_, 16);
    ASSERT_NE(values_, nullptr);
  }

  Committed created_ = Committed::create();
  Opened info_{created_.get()};
  HMVXPROP property_ = nullptr;
  HMVXATTR values_ = nullptr;
};

TEST_F(ItemValues, AttributesAreAddedOnceAndWalkedInSignedOrder) {
  EXPECT_EQ(MvxAddAttribute(info_, property_, 16), values_);
  HMVXATTR high = MvxAddAttribute(info_, property_, 0x90000000);
  HMVXATTR one = MvxAddAttribute(info_, property_, 1);
  EXPECT_EQ(MvxFindAttribute(info_, property_, 1), one);
  EXPECT_EQ(MvxFindAttribute(info_, property_, 2), nullptr);
  EXPECT_EQ(MvxGetAttributeCount(info_, property_), 3);

  HMVXPOS position = MvxGetHeadAttribute(info_, property_);
  DWORD id = 0;
  for (const auto& [expected_id, expected] : {std::pair{0x90000000u, high}, {1u, one}, {16u, values_}}) {
    EXPECT_EQ(MvxGetNextAttribute(info_, &id, &position), expected);
    EXPECT_EQ(id, expected_id);
  }
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
}

TEST_F(ItemValues, NullArgumentsChangeNothingAndReadAsNull) {
  PMVXVALUE text = MvxAddString(info_, values_, L"abc");
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

  // Readers given a null item info or value write nulls; null outs are skipped.
  BYTE* data = reinterpret_cast<BYTE*>(1);
  DWORD size = 9;
  MvxGetBinary(nullptr, text, &data, &size);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(size, 0u);
  WORD* item_type = reinterpret_cast<WORD*>(1);
  LPWSTR title = reinterpret_cast<LPWSTR>(1);
  MvxGetMvHandle(info_, nullptr, &item_type, nullptr, &title);
  EXPECT_EQ(item_type, nullptr);
  EXPECT_EQ(title, nullptr);
  MvxGetACE(info_, text, nullptr, nullptr, nullptr, nullptr);
}

// Each kind's block, written out by hand from the value encodings, and the
// readers' pointers into it.
TEST_F(ItemValues, EachKindIsEncodedAsItsBlockAndReadInsideIt) {
  const auto add = [](PMVXVALUE value, const Bytes& expected) {
    EXPECT_EQ(Hex(ValueBytes(value)), Hex(expected));
    return value;
  };
  PMVXVALUE text = add(MvxAddString(info_, values_, L"ab"), Bytes().u32(6).text(L"ab"));
  add(MvxAddString(info_, values_, nullptr), Bytes().u32(2).u16(0));
  PMVXVALUE number = add(MvxAddInteger(info_, values_, -2), Bytes().u32(4).u32(0xfffffffe));
  add(MvxAddPropertyType(info_, values_, 17), Bytes().u32(4).u32(17));
  // 1.5 is 0x3FF8000000000000.
  PMVXVALUE real = add(MvxAddFloat(info_, values_, 0, 0x3ff80000), Bytes().u32(8).u32(0).u32(0x3ff80000));
  add(MvxAddDateTime(info_, values_, 0x01d710b4, 0x16006000), Bytes().u32(8).u32(0x01d710b4).u32(0x16006000));
  PMVXVALUE blob = add(MvxAddBinary(info_, values_, "\x00\xff\x10", 3), Bytes().u32(3).u8(0).u8(0xff).u8(0x10));
  add(MvxAddBinary(info_, values_, nullptr, 0), Bytes().u32(0));
  PMVXVALUE handle = add(MvxAddMvHandle(info_, values_, 0x10003, 0x01020304, L"T"),
                         Bytes().u32(10).u16(3).u32(0x01020304).text(L"T"));
  add(MvxAddMvHandle(info_, values_, 2, 5, nullptr), Bytes().u32(8).u16(2).u32(5).u16(0));
  PMVXVALUE ace = add(MvxAddACE(info_, values_, 9, 0x11223344, L"me", 0x1f),
                      Bytes().u32(16).u16(9).u32(0x11223344).text(L"me").u32(0x1f));
  PMVXVALUE unnamed =
      add(MvxAddACE(info_, values_, 1, 2, nullptr, 0xabcd), Bytes().u32(12).u16(1).u32(2).u16(0).u32(0xabcd));
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, values_), 12);

  LPWSTR string = nullptr, title = nullptr, name = nullptr, no_name = nullptr;
  LONG* integer = nullptr;
  double* floating = nullptr;
  DWORD *type = nullptr, *high = nullptr, *low = nullptr, *item_number = nullptr, *access = nullptr,
        *no_name_access = nullptr;
  BYTE *packed = nullptr, *data = nullptr;
  DWORD size = 0;
  WORD* item_type = nullptr;
  EXPECT_EQ(MvxGetString(info_, text, &string), 6u);
  MvxGetInteger(info_, number, &integer);
  MvxGetPropertyType(info_, number, &type);
  MvxGetFloat(info_, real, &floating);
  MvxGetDateTime(info_, real, &high, &low);
  EXPECT_EQ(MvxGetDateTimePacked(info_, real, &packed), real + 4);
  MvxGetBinary(info_, blob, &data, &size);
  MvxGetMvHandle(info_, handle, &item_type, &item_number, &title);
  MvxGetACE(info_, ace, nullptr, nullptr, &name, &access);
  MvxGetACE(info_, unnamed, nullptr, nullptr, &no_name, &no_name_access);
  // An empty name's access value lies right after its terminator.
  const std::pair<const void*, const void*> pointers[] = {
      {string, text + 4},      {integer, number + 4},     {type, number + 4},   {floating, real + 4},
      {high, real + 4},        {low, real + 8},           {packed, real + 4},   {data, blob + 4},
      {item_type, handle + 4}, {item_number, handle + 6}, {title, handle + 10}, {name, ace + 10},
      {access, ace + 16},      {no_name, unnamed + 10},   {no_name_access, unnamed + 12}};
  for (size_t i = 0; i < std::size(pointers); ++i) EXPECT_EQ(pointers[i].first, pointers[i].second) << "pointer " << i;
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(*floating, 1.5);

  // Fields that do not fit inside a value's length are handed out as null.
  PMVXVALUE tiny = MvxAddBinary(info_, values_, "\x01\x00", 2);
  MvxGetInteger(info_, tiny, &integer);
  EXPECT_EQ(integer, nullptr);
  MvxGetMvHandle(info_, tiny, &item_type, &item_number, &title);
  EXPECT_EQ(reinterpret_cast<BYTE*>(item_type), tiny + 4);
  EXPECT_EQ(item_number, nullptr);
  EXPECT_EQ(title, nullptr);
  // A handle whose title has no terminator inside the value.
  PMVXVALUE unterminated = MvxAddBinary(info_, values_, "\x01\x00\x02\x00\x00\x00\x41\x00", 8);
  MvxGetMvHandle(info_, unterminated, &item_type, &item_number, &title);
  EXPECT_NE(item_number, nullptr);
  EXPECT_EQ(title, nullptr);
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
  EXPECT_EQ(Hex(ByteVector(handle, handle + 14)), Hex(Bytes().u32(28).u16(7).u32(8).text(L"t")));

  // Fixed-size kinds are overwritten in place.
  PMVXVALUE number = MvxAddInteger(info_, values_, 1);
  PMVXVALUE date = MvxAddDateTime(info_, values_, 1, 2);
  const DWORD before = MvxGetCommitSpace(info_);
  EXPECT_EQ(MvxReplaceInteger(info_, values_, 3, -5), number);
  EXPECT_EQ(Hex(ValueBytes(number)), Hex(Bytes().u32(4).u32(0xfffffffb)));
  EXPECT_EQ(MvxReplaceDateTime(info_, values_, 4, 0x11, 0x22), date);
  EXPECT_EQ(Hex(ValueBytes(date)), Hex(Bytes().u32(8).u32(0x11).u32(0x22)));
  EXPECT_EQ(MvxReplaceFloat(info_, values_, 4, 0x33, 0x44), date);
  EXPECT_EQ(Hex(ValueBytes(date)), Hex(Bytes().u32(8).u32(0x33).u32(0x44)));
  // An integer into a block too short for it gets a block of its own.
  MvxAddString(info_, values_, nullptr);
  EXPECT_EQ(Hex(ValueBytes(MvxReplaceInteger(info_, values_, 5, 9))), Hex(Bytes().u32(4).u32(9)));
  EXPECT_EQ(MvxGetCommitSpace(info_), before + 6 + 2);
}

TEST_F(ItemValues, DeletingAValueMovesTheLaterOnesUp) {
  MvxAddString(info_, values_, L"a");
  PMVXVALUE b = MvxAddString(info_, values_, L"bb");
  PMVXVALUE c = MvxAddString(info_, values_, L"ccc");
  const DWORD space = MvxGetCommitSpace(info_);
  MvxDeleteAttributeValue(info_, values_, 0);
  EXPECT_EQ(MvxGetCommitSpace(info_), space - 8);
  ASSERT_EQ(MvxGetAttributeValuesCount(info_, values_), 2);
  EXPECT_EQ(MvxGetAttributeValue(info_, values_, 0), b);
  HMVXPOS position = MvxGetHeadAttributeValue(info_, values_);
  EXPECT_EQ(MvxGetNextAttributeValue(info_, &position), b);
  EXPECT_EQ(MvxGetNextAttributeValue(info_, &position), c);
  EXPECT_EQ(position, nullptr);

  MvxDeleteAllAttributeValues(info_, values_);
  EXPECT_EQ(MvxGetAttributeValuesCount(info_, values_), 0);
  EXPECT_EQ(MvxGetHeadAttributeValue(info_, values_), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info_), space - 8 - 10 - 12);
}

// Out of range, replaces give null and deletes do nothing. (The reader
// raises a C++ exception of Microsoft's runtime, which this program cannot
// catch: the MSVC-ABI client in tests/abi catches it.)
TEST_F(ItemValues, ReplaceAndDeleteIgnoreAnIndexOutOfRange) {
  MvxAddInteger(info_, values_, 1);
  const DWORD space = MvxGetCommitSpace(info_);
  for (int index : {1, -1, 1000}) {
    EXPECT_EQ(MvxReplaceInteger(info_, values_, index, 2), nullptr);
    EXPECT_EQ(MvxReplaceString(info_, values_, index, L"x"), nullptr);
    MvxDeleteAttributeValue(info_, values_, index);
  }
  EXPECT_EQ(MvxGetCommitSpace(info_), space);
  EXPECT_EQ(Hex(ValueBytes(MvxGetAttributeValue(info_, values_, 0))), Hex(Bytes().u32(4).u32(1)));
}

// Values read from a committed item info are changed inside it at once.
TEST(ItemValuesInPlace, ReplacingAValueChangesTheOpenedBlock) {
  Committed source, committed;
  {
    Opened building(nullptr);
    MvxAddString(building, MvxAddAttribute(building, MvxAddProperty(building, 2), 16), L"Annual report");
    CommitExactly(building, source);
  }
  const ByteVector before = source.bytes();
  Opened info(source.get());
  HMVXATTR title = MvxFindAttribute(info, MvxFindProperty(info, 2), 16);
  PMVXVALUE value = MvxGetAttributeValue(info, title, 0);
  EXPECT_EQ(MvxReplaceString(info, title, 0, L"Memo"), value);
  EXPECT_STREQ(MvxFindTitleValue(source.get()), L"Memo");
  // The old tail after the new terminator stays.
  const size_t tail = value - source.get() + 4 + 10;
  EXPECT_EQ(Hex(ByteVector(source.get() + tail, source.get() + before.size())),
            Hex(ByteVector(before.begin() + tail, before.end())));
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
  // Property `id` whose attribute 16 has no value, or the value 'T' `second`.
  const auto block = [](DWORD id, bool value, wchar_t second) {
    Bytes bytes;
    bytes.header(value ? 72 : 64).u16(254).u16(1).u32(id).u32(8).u16(1).u32(16).u32(8).u16(value);
    if (value) bytes.u32(4).u16(L'T').u16(second);
    return Committed(bytes);
  };
  const Committed found = block(2, true, 0);
  EXPECT_EQ(reinterpret_cast<BYTE*>(MvxFindTitleValue(found.get())), found.get() + 68);
  EXPECT_STREQ(MvxFindTitleValue(found.get()), L"T");
  EXPECT_EQ(MvxFindTitleValue(block(2, false, 0).get()), nullptr);
  EXPECT_EQ(MvxFindTitleValue(block(2, true, L'U').get()), nullptr) << "no terminator inside the value";
  EXPECT_EQ(MvxFindTitleValue(block(3, true, 0).get()), nullptr) << "attribute 16 of another property";
}

}  // namespace
}  // namespace mvsup::test
