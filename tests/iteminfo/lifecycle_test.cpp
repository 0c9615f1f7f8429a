// Creating, copying, opening, committing and closing item infos, and who
// frees which value block.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "common/guard_page.h"
#include "common/item_info_blocks.h"
#include "iteminfo/item_info.h"

namespace mvsup::test {
namespace {

TEST(ItemInfoLifecycle, CreateAndCopyAllocateFourSpareBytes) {
  EXPECT_EQ(MvxCreateItemInfo(nullptr), E_POINTER);

  Committed source(Bytes().header(54).u16(254).u16(1).u32(4).u32(8).u16(0));
  source.get()[54] = 0x77;  // past the size field: not copied
  Committed copy;
  ASSERT_EQ(MvxCopyItemInfo(source.get(), copy.put()), S_OK);
  ASSERT_NE(copy.get(), source.get());
  EXPECT_GE(GlobalSize(copy.get()), 58u);
  EXPECT_EQ(Hex(ByteVector(copy.get(), copy.get() + 58)),
            Hex(Bytes().header(54).u16(254).u16(1).u32(4).u32(8).u16(0).zeros(4)));

  BYTE* untouched = reinterpret_cast<BYTE*>(0x1234);
  source.get()[0] = 39;
  EXPECT_EQ(MvxCopyItemInfo(source.get(), &untouched), E_INVALIDARG);
  EXPECT_EQ(MvxCopyItemInfo(nullptr, &untouched), E_POINTER);
  EXPECT_EQ(untouched, reinterpret_cast<BYTE*>(0x1234));
  EXPECT_EQ(MvxCopyItemInfo(source.get(), nullptr), E_POINTER);
  EXPECT_EQ(FreeMvxInfo(nullptr), nullptr);
}

// A block whose size field is 40 or less is an empty item info (a caller's
// zero-filled block that was never committed is one). Nothing past the size
// field is read: the commit carries over only the header bytes inside it.
TEST(ItemInfoLifecycle, SizeFieldsOfFortyOrLessAreEmptyItemInfos) {
  for (const uint32_t size : {0u, 4u, 39u, 40u}) {
    SCOPED_TRACE(size);
    ByteVector bytes(std::max<size_t>(size, 4), 0);
    for (size_t i = 4; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i);
    std::memcpy(bytes.data(), &size, 4);
    GuardedBuffer block(bytes.data(), bytes.size());
    Opened info(block.data());
    ASSERT_NE(info.get(), nullptr);
    EXPECT_EQ(MvxGetPropertyCount(info), 0);
    EXPECT_EQ(MvxGetCommitSpace(info), 40u);
    ByteVector expected(40, 0);
    std::copy(bytes.begin() + 4, bytes.end(), expected.begin() + 4);
    expected[0] = 40;
    Committed committed;
    EXPECT_EQ(Hex(CommitExactly(info, committed)), Hex(expected));

    LONG number = -1;
    EXPECT_EQ(MvxGetIntegerPropValue(block.data(), 0x80000040, &number), 1);
    EXPECT_EQ(MvxHasProp(block.data(), 0x80000040), S_FALSE);
  }

  // The one-call writers store into such a block (freeing it) as into any
  // empty item info.
  BYTE* zeroed = static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, 44));
  ASSERT_NE(zeroed, nullptr);
  Committed holder(zeroed);
  ASSERT_EQ(MvxPutIntegerPropValue(0x80000040, 7, holder.slot()), S_OK);
  EXPECT_NE(holder.get(), zeroed);
  LONG number = 0;
  EXPECT_EQ(MvxGetIntegerPropValue(holder.get(), 0x80000040, &number), 0);
  EXPECT_EQ(number, 7);
}

TEST(ItemInfoLifecycle, UpdateMovesTheItemInfoOntoANewBlock) {
  Committed holder;
  BYTE* block = Committed::create().release();
  Opened info(block);
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0x80000040), 16), 300);
  BYTE* const old = block;
  ASSERT_EQ(MvxUpdateItemInfo(info, &block), S_OK);
  holder.reset(block);  // the old block was freed by the update
  EXPECT_NE(block, old);
  EXPECT_EQ(LoadU32(block), MvxGetCommitSpace(info));
  EXPECT_EQ(LoadU32(block + 8), 300u);
  EXPECT_EQ(iteminfo::from_handle(info)->buffer, block);

  // A null in/out block only receives the new one.
  BYTE* fresh = nullptr;
  ASSERT_EQ(MvxUpdateItemInfo(info, &fresh), S_OK);
  holder.reset(fresh);
  EXPECT_EQ(iteminfo::from_handle(info)->buffer, fresh);

  EXPECT_EQ(MvxUpdateItemInfo(info, nullptr), E_POINTER);
  BYTE* unchanged = fresh;
  EXPECT_EQ(MvxUpdateItemInfo(nullptr, &unchanged), S_OK);
  EXPECT_EQ(unchanged, fresh);
}

// Unchanged properties, and an unchanged item info as a whole, are copied
// by a commit; their value references must follow them into each new block,
// also for an iteration begun before the commit, with every older block
// already freed, and also when whole-item copies and per-property copies
// alternate.
TEST(ItemInfoLifecycle, ValueReferencesFollowEveryCommit) {
  BYTE* block = Committed::create().release();
  {
    Opened building(block);
    HMVXATTR values = MvxAddAttribute(building, MvxAddProperty(building, 0x2), 16);
    MvxAddString(building, values, L"first");
    MvxAddString(building, values, L"second");
    MvxAddInteger(building, MvxAddAttribute(building, MvxAddProperty(building, 0x4), 16), 7);
    ASSERT_EQ(MvxUpdateItemInfo(building, &block), S_OK);
  }
  {
    Opened info(block);
    HMVXATTR values = MvxFindAttribute(info, MvxFindProperty(info, 0x2), 16);
    HMVXPOS position = MvxGetHeadAttributeValue(info, values);
    EXPECT_EQ(MvxGetNextAttributeValue(info, &position), MvxGetAttributeValue(info, values, 0));
    for (int commit = 0; commit < 3; ++commit)
      ASSERT_EQ(MvxUpdateItemInfo(info, &block), S_OK);  // frees the previous block
    const auto inside = [&](PMVXVALUE value) { return value >= block + 40 && value < block + LoadU32(block); };
    PMVXVALUE next = MvxGetNextAttributeValue(info, &position);
    EXPECT_TRUE(inside(next));
    EXPECT_EQ(next, MvxGetAttributeValue(info, values, 1));
    EXPECT_TRUE(inside(MvxGetAttributeValue(info, values, 0)));
    LPWSTR text = nullptr;
    MvxGetString(info, next, &text);
    EXPECT_STREQ(text, L"second");
    EXPECT_EQ(position, nullptr);
    // Replacing after the commits writes into the current block.
    MvxReplaceString(info, values, 0, L"1st");
    MvxGetString(info, MvxGetAttributeValue(info, values, 0), &text);
    EXPECT_STREQ(text, L"1st");
    EXPECT_EQ(std::wstring(reinterpret_cast<wchar_t*>(MvxGetAttributeValue(info, values, 0) + 4)), L"1st");

    // A change to the other property: this commit copies property 2's body
    // alone, the next one the whole item info again.
    HMVXATTR other = MvxFindAttribute(info, MvxFindProperty(info, 0x4), 16);
    MvxAddInteger(info, other, 8);
    for (int commit = 0; commit < 2; ++commit) {
      ASSERT_EQ(MvxUpdateItemInfo(info, &block), S_OK);
      MvxGetString(info, MvxGetAttributeValue(info, values, 1), &text);
      EXPECT_STREQ(text, L"second");
      EXPECT_TRUE(inside(MvxGetAttributeValue(info, values, 0)));
      LONG UNALIGNED* number = nullptr;
      MvxGetInteger(info, MvxGetAttributeValue(info, other, 1), &number);
      ASSERT_NE(number, nullptr);
      EXPECT_EQ(*number, 8);
    }
  }
  FreeMvxInfo(block);
}

TEST(ItemInfoLifecycle, CommitRefusesTheBlockItWasOpenedOver) {
  Committed source(Bytes().header(54).u16(254).u16(1).u32(4).u32(8).u16(0));
  const ByteVector before = source.bytes();
  Opened info(source.get());
  MvxAddProperty(info, 6);
  EXPECT_EQ(MvxCommit(info, source.get()), 0u);
  EXPECT_EQ(MvxCommit(info, source.get() + 20), 0u);
  EXPECT_EQ(Hex(source.bytes()), Hex(before));
  EXPECT_EQ(iteminfo::from_handle(info)->buffer, source.get());
}

// Large blocks come straight from virtual memory and go back to it when
// freed, so a released block shows as no longer committed.
constexpr size_t kLarge = 4 << 20;

bool IsCommitted(const void* address) {
  MEMORY_BASIC_INFORMATION region{};
  return VirtualQuery(address, &region, sizeof region) == sizeof region && region.State == MEM_COMMIT;
}

const std::vector<BYTE> kLargeData(kLarge, 0x5a);

PMVXVALUE AddLarge(HMVXINFO info, DWORD property) {
  PMVXVALUE value = MvxAddBinary(info, MvxAddAttribute(info, MvxAddProperty(info, property), 16), kLargeData.data(),
                                 static_cast<DWORD>(kLarge));
  EXPECT_NE(value, nullptr);
  EXPECT_TRUE(IsCommitted(value));
  return value;
}

// Closing frees the value blocks outside the buffer, unless the item info
// never had a buffer: then they are the caller's.
TEST(ValueOwnership, CloseFreesValuesUnlessThereWasNeverABuffer) {
  Committed created = Committed::create();
  PMVXVALUE value;
  {
    Opened info(created.get());
    value = AddLarge(info, 4);
  }
  EXPECT_FALSE(IsCommitted(value));
  {
    Opened info(nullptr);
    value = AddLarge(info, 4);
  }
  ASSERT_TRUE(IsCommitted(value));
  EXPECT_EQ(LoadU32(value), kLarge);
  EXPECT_EQ(value[4 + kLarge - 1], 0x5a);
  EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, value));
  EXPECT_FALSE(IsCommitted(value));
}

// Plain commits: the large blocks make byte-wise comparisons slow.
void CommitInto(HMVXINFO info, Committed& into) {
  into.reset(static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED, MvxGetCommitSpace(info))));
  ASSERT_NE(into.get(), nullptr);
  EXPECT_EQ(MvxCommit(info, into.get()), MvxGetCommitSpace(info));
}

// Commits, deletes and replaces free the heap blocks they move or drop, and
// never a block inside a buffer.
TEST(ValueOwnership, CommitDeleteAndReplaceFreeHeapBlocksOnly) {
  Committed first, second;
  Opened info(nullptr);
  PMVXVALUE value = AddLarge(info, 4);
  CommitInto(info, first);
  EXPECT_FALSE(IsCommitted(value)) << "the heap block moved into the commit";
  const ByteVector before = first.bytes();
  HMVXATTR values = MvxFindAttribute(info, MvxFindProperty(info, 4), 16);
  EXPECT_GT(MvxGetAttributeValue(info, values, 0), first.get());
  CommitInto(info, second);
  EXPECT_TRUE(first.bytes() == before) << "values inside the old buffer are copied, not freed";
  EXPECT_GT(MvxGetAttributeValue(info, values, 0), second.get());

  PMVXVALUE deleted = AddLarge(info, 6);
  PMVXVALUE replaced = AddLarge(info, 8);
  MvxDeleteAttributeValue(info, MvxFindAttribute(info, MvxFindProperty(info, 6), 16), 0);
  EXPECT_FALSE(IsCommitted(deleted));
  PMVXVALUE bigger = MvxReplaceString(info, MvxFindAttribute(info, MvxFindProperty(info, 8), 16), 0,
                                      std::wstring(kLarge, L'x').c_str());
  ASSERT_NE(bigger, nullptr);
  EXPECT_NE(bigger, replaced);
  EXPECT_FALSE(IsCommitted(replaced));
  EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr));
}

}  // namespace
}  // namespace mvsup::test
