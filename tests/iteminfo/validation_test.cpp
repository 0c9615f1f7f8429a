// Blocks that do not hold together: placed flush against an inaccessible
// page, so that any read past the size field faults the test.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

#include "common/guard_page.h"
#include "common/item_info_blocks.h"
#include "iteminfo/item_info.h"

namespace mvsup::test {
namespace {

namespace ii = mvsup::iteminfo;

// header | 254, N = 1 | (2, 8) | A = 1 (16, 8) | V = 1 | L = 4 "T"
//  0       40  42       44       52    54        62      64    68
Bytes TitleBlock() {
  return Bytes().header(72).u16(254).u16(1).u32(2).u32(8).u16(1).u32(16).u32(8).u16(1).u32(4).text(L"T");
}

// A table whose count wrapped leaves a gap before the bodies: still whole.
Bytes GapBlock() { return Bytes().header(62).u16(254).u16(1).u32(4).u32(16).u32(0xaaaaaaaa).u32(0xbbbbbbbb).u16(0); }

// The table in map order, the bodies not: 0x80000040 (an integer) points at
// the second body, 2 ("Doc") at the first; the custom entry "c" has its
// attribute 16 body before that of attribute 2.
//  0 header | 40 254, N = 3 | 44 (0x80000040, 48) (2, 24) (1, 68)
//  68 A = 1 (16, 8) | 78 V = 1, L = 8 "Doc"
//  92 A = 1 (16, 8) | 102 V = 1, L = 4, 4096
//  112 A = 2 (2, 26) (16, 16) | 130 V = 1, L = 4 "v" | 140 V = 1, L = 4 "c"
Bytes ShuffledBlock(uint32_t title_length = 8) {
  return Bytes().header(150).u16(254).u16(3).u32(0x80000040).u32(48).u32(2).u32(24).u32(1).u32(68)
      .u16(1).u32(16).u32(8).u16(1).u32(title_length).text(L"Doc")
      .u16(1).u32(16).u32(8).u16(1).u32(4).u32(4096)
      .u16(2).u32(2).u32(26).u32(16).u32(16).u16(1).u32(4).text(L"v").u16(1).u32(4).text(L"c");
}

void Put16(ByteVector& bytes, size_t at, uint16_t value) { std::memcpy(&bytes[at], &value, 2); }
void Put32(ByteVector& bytes, size_t at, uint32_t value) { std::memcpy(&bytes[at], &value, 4); }

// The first offset at which the shared reader stops.
int64_t FaultOffset(const BYTE* block, size_t available) {
  ii::NullVisitor visitor;
  const auto fault = ii::walk_block(block, available, visitor);
  return fault ? static_cast<int64_t>(fault->offset) : -1;
}

struct Malformed {
  const char* what;
  ByteVector bytes;
  int64_t fault;
};

std::vector<Malformed> MalformedBlocks() {
  const ByteVector base = TitleBlock();
  std::vector<Malformed> cases;
  const auto with = [&](const char* what, int64_t fault, auto change) {
    ByteVector bytes = base;
    change(bytes);
    cases.push_back({what, bytes, fault});
  };
  with("section cut short", 40, [](ByteVector& b) { b.resize(42), Put32(b, 0, 42); });
  with("entry count past the end", 42, [](ByteVector& b) { Put16(b, 42, 0xffff); });
  with("entry count that puts the first body inside the table", 56, [](ByteVector& b) { Put16(b, 42, 2); });
  with("entry offset past the end", 48, [](ByteVector& b) { Put32(b, 48, 0xffffffff); });
  with("entry body inside the table", 50, [](ByteVector& b) { Put32(b, 48, 0); });
  with("attribute count past the end", 52, [](ByteVector& b) { Put16(b, 52, 0xffff); });
  with("attribute offset past the end", 58, [](ByteVector& b) { Put32(b, 58, 0xfffffff0); });
  with("attribute body inside its table", 60, [](ByteVector& b) { Put32(b, 58, 4); });
  with("value count past the end", 72, [](ByteVector& b) { Put16(b, 62, 2); });
  with("value length past the end", 64, [](ByteVector& b) { Put32(b, 64, 5); });
  with("value length wrapping", 64, [](ByteVector& b) { Put32(b, 64, 0xfffffffc); });
  with("truncated value", 64, [](ByteVector& b) { b.resize(70), Put32(b, 0, 70); });
  with("custom name without terminator", 64,
       [](ByteVector& b) { Put32(b, 44, 1), Put32(b, 54, 2), Put32(b, 68, 0x00550054); });
  with("valid", -1, [](ByteVector&) {});
  // Two entries sharing one body would commit to more than the size field.
  cases.push_back({"two entries sharing a body", Bytes().header(80).u16(254).u16(2).u32(2).u32(16).u32(4).u32(16)
                                                    .u16(1).u32(16).u32(8).u16(1).u32(4).u32(9), 56});
  cases.push_back({"gap after the table", GapBlock(), -1});
  // The title's value runs 4 bytes into the body that its entry comes after.
  cases.push_back({"bodies out of order that overlap", ShuffledBlock(12), 48});
  cases.push_back({"bodies out of order", ShuffledBlock(), -1});
  return cases;
}

TEST(BlockValidation, OnlyBlocksThatHoldTogetherOpen) {
  for (const Malformed& entry : MalformedBlocks()) {
    SCOPED_TRACE(entry.what);
    GuardedBuffer block(entry.bytes.data(), entry.bytes.size());
    EXPECT_EQ(FaultOffset(block.data(), block.size()), entry.fault);
    Opened info(block.data());
    EXPECT_EQ(info.get() != nullptr, entry.fault < 0);
    if (entry.fault >= 0) {
      EXPECT_EQ(MvxFindTitleValue(block.data()), nullptr);
    }
  }
}

// Where the bodies lie is the entry table's business: opening, the one-call
// readers and a commit all see the same item info as in table order, and a
// commit writes it in the order of the format.
TEST(BlockValidation, BodiesInAnyOrderReadAsTheirTableSays) {
  const ByteVector bytes = ShuffledBlock();
  GuardedBuffer block(bytes.data(), bytes.size());
  LPWSTR text = nullptr;
  EXPECT_EQ(MvxGetStringPropValue(block.data(), 2, &text), 0);
  EXPECT_STREQ(text, L"Doc");
  LONG number = 0;
  EXPECT_EQ(MvxGetIntegerPropValue(block.data(), 0x80000040, &number), 0);
  EXPECT_EQ(number, 4096);
  text = nullptr;
  EXPECT_EQ(MvxGetCustomStringProp(block.data(), L"c", &text), S_OK);
  EXPECT_STREQ(text, L"v");
  EXPECT_STREQ(MvxFindTitleValue(block.data()), L"Doc");

  Opened info(block.data());
  ASSERT_NE(info.get(), nullptr);
  EXPECT_EQ(MvxGetPropertyCount(info), 2);
  EXPECT_EQ(MvxGetCustomPropertyCount(info), 1);
  EXPECT_EQ(MvxGetCommitSpace(info), 150u);
  Committed committed;
  EXPECT_EQ(Hex(CommitExactly(info, committed)),
            Hex(Bytes().u32(150).u32(0).u32(4096).zeros(28).u16(254).u16(3)
                    .u32(0x80000040).u32(24).u32(2).u32(44).u32(1).u32(68)
                    .u16(1).u32(16).u32(8).u16(1).u32(4).u32(4096)
                    .u16(1).u32(16).u32(8).u16(1).u32(8).text(L"Doc")
                    .u16(2).u32(2).u32(16).u32(16).u32(26).u16(1).u32(4).text(L"c").u16(1).u32(4).text(L"v")));
  EXPECT_STREQ(MvxFindTitleValue(committed.get()), L"Doc");
}

// Records where a block's structural fields are, for targeted mutations.
struct FieldRecorder {
  std::vector<std::pair<uint32_t, int>> fields;  // offset, width
  void on_header(uint32_t) {}
  void on_section(uint16_t, uint16_t) { fields.push_back({42, 2}); }
  bool on_entry(const ii::EntryView& entry) { return add(entry.table_offset, entry.body_offset); }
  bool on_attribute(const ii::EntryView&, const ii::AttributeView& attribute) {
    return add(attribute.table_offset, attribute.body_offset);
  }
  // A table row's key and offset, and the count that starts its body.
  bool add(uint32_t row, uint32_t body) {
    fields.insert(fields.end(), {{row, 4}, {row + 4, 4}, {body, 2}});
    return true;
  }
  void on_value(const ii::AttributeView&, const ii::ValueView& value) { fields.push_back({value.offset, 4}); }
};

std::vector<ByteVector> Seeds() {
  std::vector<ByteVector> seeds;
  Committed committed;
  Opened info(nullptr);
  HMVXPROP handle = MvxAddProperty(info, 32);
  MvxAddPropertyType(info, MvxAddAttribute(info, handle, 1), 11);
  MvxAddMvHandle(info, MvxAddAttribute(info, handle, 16), 3, 77, L"Doc");
  MvxAddString(info, MvxAddAttribute(info, MvxAddProperty(info, 2), 16), L"Quarterly figures");
  HMVXATTR acl = MvxAddAttribute(info, MvxAddProperty(info, 0x4000), 16);
  MvxAddACE(info, acl, 5, 1, L"team", 7);
  MvxAddACE(info, acl, 5, 2, nullptr, 1);
  MvxAddDateTime(info, MvxAddAttribute(info, MvxAddProperty(info, 256), 16), 0x01d710b4, 0x16006000);
  HMVXATTR parents = MvxAddAttribute(info, MvxAddProperty(info, 1024), 16);
  for (DWORD i = 1; i <= 3; ++i) MvxAddMvHandle(info, parents, 2, i, L"p");
  MvxAddInteger(info, MvxAddAttribute(info, MvxAddProperty(info, 0x80000040), 16), 4096);
  HMVXPROP custom = MvxAddCustomProperty(info, L"client_data");
  MvxAddPropertyType(info, MvxAddAttribute(info, custom, 1), 1);
  MvxAddString(info, MvxAddAttribute(info, custom, 16), L"x=1");
  MvxAddBinary(info, MvxAddAttribute(info, MvxAddCustomProperty(info, L"raw"), 16), "\x00\x01\x02", 3);
  MvxAddAttribute(info, MvxAddProperty(info, 0x700), 0x55);
  seeds.push_back(CommitExactly(info, committed));
  seeds.push_back(TitleBlock());
  seeds.push_back(GapBlock());
  seeds.push_back(ShuffledBlock());
  seeds.push_back(Bytes().header(44).u16(254).u16(0));
  return seeds;
}

// Everything an open item info holds, read through the exports; reads that
// leave a value's bytes fault on the guard page.
size_t TouchEverything(HMVXINFO info) {
  size_t touched = 0;
  const auto touch_property = [&](HMVXPROP property) {
    HMVXPOS position = MvxGetHeadAttribute(info, property);
    while (HMVXATTR attribute = MvxGetNextAttribute(info, nullptr, &position)) {
      const int count = MvxGetAttributeValuesCount(info, attribute);
      for (int i = 0; i < count; ++i) {
        PMVXVALUE value = MvxGetAttributeValue(info, attribute, i);
        BYTE* data = nullptr;
        DWORD size = 0;
        MvxGetBinary(info, value, &data, &size);
        if (size != 0) touched += data[size - 1];
        LPWSTR title = nullptr;
        MvxGetMvHandle(info, value, nullptr, nullptr, &title);
        if (title != nullptr) touched += std::wcslen(title);
        LPWSTR name = nullptr;
        DWORD* access = nullptr;
        MvxGetACE(info, value, nullptr, nullptr, &name, &access);
        if (access != nullptr) touched += *access & 1;
      }
    }
  };
  HMVXPOS position = MvxGetHeadProperty(info);
  while (HMVXPROP property = MvxGetNextProperty(info, nullptr, &position)) touch_property(property);
  position = MvxGetHeadCustomProperty(info);
  while (HMVXPROP property = MvxGetNextCustomProperty(info, nullptr, &position)) touch_property(property);
  return touched;
}

void MarkEverythingChanged(HMVXINFO info) {
  ii::ItemInfo& internals = *ii::from_handle(info);
  if (internals.properties)
    for (auto& [id, property] : *internals.properties) ii::mark_changed(internals, property);
  if (internals.custom_properties)
    for (auto& [name, property] : *internals.custom_properties) ii::mark_changed(internals, property);
}

void CheckMutant(const ByteVector& bytes) {
  GuardedBuffer block(bytes.data(), bytes.size());
  const bool whole = FaultOffset(block.data(), block.size()) < 0;
  LPWSTR title = MvxFindTitleValue(block.data());
  if (title != nullptr) {
    EXPECT_TRUE(whole);
    std::wcslen(title);
  }
  HMVXINFO info = MvxOpen(block.data());
  EXPECT_EQ(info != nullptr, whole);
  if (info == nullptr) return;
  TouchEverything(info);
  const DWORD space = MvxGetCommitSpace(info);
  EXPECT_LE(space, std::max<size_t>(bytes.size(), 40));
  GuardedBuffer destination(space);
  const DWORD written = MvxCommit(info, destination.data());
  EXPECT_GE(written, 40u);
  EXPECT_LE(written, space);
  MvxClose(info);
  // Bodies copied whole must read exactly as if every property were
  // written anew.
  {
    HMVXINFO rewritten = MvxOpen(block.data());
    MarkEverythingChanged(rewritten);
    GuardedBuffer other(space);
    EXPECT_EQ(MvxCommit(rewritten, other.data()), written);
    EXPECT_EQ(std::memcmp(other.data(), destination.data(), written), 0) << "a body was copied that had changed";
    MvxClose(rewritten);
  }
  // What a commit writes always holds together and commits to itself.
  GuardedBuffer again(destination.data(), written);
  Committed recommitted;
  Opened reopened(again.data());
  ASSERT_NE(reopened.get(), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(reopened), written);
  EXPECT_EQ(Hex(CommitExactly(reopened, recommitted)), Hex(ByteVector(destination.data(), destination.data() + written)));
}

// Every truncation of each seed, then random mutations of its structural
// fields and bytes.
TEST(BlockValidation, TruncatedAndMutatedBlocksNeverReadOutside) {
  std::mt19937 random(20240229);
  const std::vector<ByteVector> seeds = Seeds();
  std::vector<std::vector<std::pair<uint32_t, int>>> fields;
  for (const ByteVector& seed : seeds) {
    for (size_t length = 4; length <= seed.size(); ++length) {
      SCOPED_TRACE(testing::Message() << "seed of " << seed.size() << " bytes cut to " << length);
      ByteVector bytes(seed.begin(), seed.begin() + length);
      Put32(bytes, 0, static_cast<uint32_t>(length));
      CheckMutant(bytes);
    }
    FieldRecorder recorder;
    ASSERT_FALSE(ii::walk_block(seed.data(), seed.size(), recorder).has_value());
    fields.push_back(recorder.fields);
  }
  const auto pick = [&](uint32_t bound) { return static_cast<uint32_t>(random() % bound); };
  int refused = 0;
  constexpr int kMutants = 4000;
  for (int round = 0; round < kMutants; ++round) {
    const size_t which = pick(static_cast<uint32_t>(seeds.size()));
    ByteVector bytes = seeds[which];
    const int mutations = 1 + pick(3);
    for (int m = 0; m < mutations; ++m) {
      const auto& targets = fields[which];
      switch (pick(4)) {
        case 0: {  // truncate, keeping the size field true to the buffer
          const size_t length = 4 + pick(static_cast<uint32_t>(bytes.size() - 3));
          bytes.resize(length);
          Put32(bytes, 0, static_cast<uint32_t>(length));
          break;
        }
        case 1:
        case 2: {  // a count, offset or length set to a telling value
          if (targets.empty()) break;
          const auto [offset, width] = targets[pick(static_cast<uint32_t>(targets.size()))];
          if (offset + width > bytes.size()) break;
          uint32_t old = width == 2 ? LoadU16(&bytes[offset]) : LoadU32(&bytes[offset]);
          const uint32_t choices[] = {0, 1, old + 1, old - 1, old + 8, old * 2, 0x7fff, 0xffff, 0x7fffffff,
                                      0xffffffff, static_cast<uint32_t>(bytes.size()), static_cast<uint32_t>(random())};
          const uint32_t value = choices[pick(std::size(choices))];
          if (width == 2)
            Put16(bytes, offset, static_cast<uint16_t>(value));
          else
            Put32(bytes, offset, value);
          break;
        }
        default: {  // any byte after the size field
          if (bytes.size() <= 4) break;
          bytes[4 + pick(static_cast<uint32_t>(bytes.size() - 4))] ^= static_cast<uint8_t>(1u << pick(8));
          break;
        }
      }
    }
    SCOPED_TRACE(testing::Message() << "mutant " << round << " of seed " << which << ": " << Hex(bytes));
    refused += FaultOffset(bytes.data(), bytes.size()) >= 0;
    CheckMutant(bytes);
    if (HasFatalFailure() || HasNonfatalFailure()) break;
  }
  // Both outcomes must occur often, or the mutations test nothing.
  EXPECT_GT(refused, kMutants / 10);
  EXPECT_LT(refused, kMutants * 9 / 10);
}

}  // namespace
}  // namespace mvsup::test
