// Properties and custom properties of an open item info: adding, finding,
// walking and deleting, with the commit size checked against sizes worked
// out by hand (40 header, 4 section, 10 per entry and attribute, 4 + L per
// value).
#include "property_support.h"

namespace mvsup::test {
namespace {

class OpenProperties : public testing::Test {
 protected:
  Committed created_ = Committed::create();
  Opened info_{created_.get()};
};

TEST_F(OpenProperties, AddsAreIdempotentAndCountedOnce) {
  // Null arguments add and find nothing.
  EXPECT_EQ(MvxAddProperty(nullptr, 2), nullptr);
  EXPECT_EQ(MvxAddCustomProperty(info_, nullptr), nullptr);
  EXPECT_EQ(MvxFindCustomProperty(info_, L"x"), nullptr) << "no custom map yet";
  EXPECT_EQ(MvxGetHeadProperty(info_), nullptr);
  MvxDeleteCustomProperty(info_, nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info_), 40u);

  HMVXPROP size = MvxAddProperty(info_, 0x80000040);
  ASSERT_NE(size, nullptr);
  EXPECT_EQ(MvxAddProperty(info_, 0x80000040), size);
  EXPECT_EQ(MvxGetCommitSpace(info_), 54u) << "section 4 + entry 10";
  HMVXPROP custom = MvxAddCustomProperty(info_, L"Invoice");
  ASSERT_NE(custom, nullptr);
  EXPECT_EQ(MvxAddCustomProperty(info_, L"Invoice"), custom);
  EXPECT_EQ(MvxGetCommitSpace(info_), 94u) << "entry 10, attribute 2: 10, its name 4 + 16";
  EXPECT_EQ(HexValues(info_, custom, MVX_ATTRIBUTE_CUSTOM_NAME), Hexes{StringValue(L"Invoice")});
  EXPECT_EQ(MvxFindCustomProperty(info_, L"invoice"), nullptr) << "names are case-sensitive";
  EXPECT_EQ(MvxGetPropertyCount(info_), 1);
  EXPECT_EQ(MvxGetCustomPropertyCount(info_), 1);
}

TEST_F(OpenProperties, WalksGoBySignedIdAndByCodeUnit) {
  for (DWORD id : {0x2u, 0x80000040u, 0x400u, 0xE0000002u}) ASSERT_NE(MvxAddProperty(info_, id), nullptr);
  for (const wchar_t* name : {L"b", L"\u00e9", L"B", L"a"}) ASSERT_NE(MvxAddCustomProperty(info_, name), nullptr);
  std::vector<DWORD> ids;
  HMVXPOS position = MvxGetHeadProperty(info_);
  DWORD id = 0;
  while (HMVXPROP property = MvxGetNextProperty(info_, &id, &position)) {
    EXPECT_EQ(MvxFindProperty(info_, id), property);
    ids.push_back(id);
    EXPECT_EQ(position == nullptr, ids.size() == 4) << "the last one sets the position to null";
  }
  EXPECT_EQ(ids, (std::vector<DWORD>{0x80000040, 0xE0000002, 0x2, 0x400}));
  EXPECT_EQ(MvxGetNextProperty(info_, &id, &position), nullptr);
  position = MvxGetHeadProperty(info_);
  EXPECT_EQ(MvxGetNextProperty(info_, &id, &position), MvxFindProperty(info_, 0x80000040)) << "a new walk";

  std::vector<std::wstring> names;
  position = MvxGetHeadCustomProperty(info_);
  LPWSTR name = nullptr;
  while (HMVXPROP property = MvxGetNextCustomProperty(info_, &name, &position)) {
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(MvxFindCustomProperty(info_, name), property);
    names.emplace_back(name);
  }
  EXPECT_EQ(names, (std::vector<std::wstring>{L"B", L"a", L"b", L"\u00e9"}));

  // The name is attribute 2's: without it there is nothing to point at.
  HMVXPROP first = MvxFindCustomProperty(info_, L"B");
  MvxDeleteAllAttributes(info_, first);
  position = MvxGetHeadCustomProperty(info_);
  name = reinterpret_cast<LPWSTR>(1);
  EXPECT_EQ(MvxGetNextCustomProperty(info_, &name, &position), first);
  EXPECT_EQ(name, nullptr);
}

TEST_F(OpenProperties, DeletingEverythingCommitsFortyBytesAgain) {
  HMVXPROP title = MvxAddProperty(info_, 0x2);
  MvxAddString(info_, MvxAddAttribute(info_, title, 16), L"Report");
  HMVXPROP parents = MvxAddProperty(info_, 0x400);
  HMVXATTR values = MvxAddAttribute(info_, parents, 16);
  MvxAddMvHandle(info_, values, 2, 12, L"A");
  MvxAddMvHandle(info_, values, 2, 7, nullptr);
  MvxAddPropertyType(info_, MvxAddAttribute(info_, parents, 1), 19);
  MvxAddInteger(info_, MvxAddAttribute(info_, MvxAddCustomProperty(info_, L"n"), 16), 5);
  constexpr DWORD kTitle = 10 + 10 + (4 + 14);
  constexpr DWORD kParents = 10 + 10 + (4 + 10) + (4 + 8) + 10 + (4 + 4);
  constexpr DWORD kCustom = 10 + 10 + (4 + 4) + 10 + (4 + 4);
  ASSERT_EQ(MvxGetCommitSpace(info_), 40 + 4 + kTitle + kParents + kCustom);

  MvxDeleteProperty(info_, 0x400);
  MvxDeleteProperty(info_, 0x400);  // absent: nothing
  MvxDeleteCustomProperty(info_, L"N");
  EXPECT_EQ(MvxGetCommitSpace(info_), 40 + 4 + kTitle + kCustom);
  MvxDeleteProperty(info_, 0x2);
  EXPECT_EQ(MvxGetCommitSpace(info_), 40 + 4 + kCustom) << "the custom map keeps the section";
  MvxDeleteCustomProperty(info_, L"n");
  EXPECT_EQ(MvxGetCommitSpace(info_), 40u);
  Committed committed;
  EXPECT_EQ(Hex(CommitExactly(info_, committed)), Hex(Bytes().header(40)));
}

// Both maps of an opened block go when their last property does; the
// header summary is carried over.
TEST(OpenPropertiesOfABlock, DeletingEveryPropertyOfACommittedBlockLeavesItsHeader) {
  Committed block = FromServerText({{L"handle", {L"File-9"}}, {L"Retention", {L"R7"}}, {L"parents", {}}});
  Opened info(block.get());
  ASSERT_EQ(MvxGetCommitSpace(info), block.size());
  MvxDeleteProperty(info, 0x20);
  MvxDeleteProperty(info, 0x400);
  MvxDeleteCustomProperty(info, L"Retention");
  Committed committed;
  const ByteVector bytes = CommitExactly(info, committed);
  EXPECT_EQ(bytes.size(), 40u);
  EXPECT_EQ(LoadU16(&bytes[6]), 3);
  EXPECT_EQ(LoadU32(&bytes[32]), 9u);
}

TEST_F(OpenProperties, DeletingDuringAWalkGoesOnWithWhatRemains) {
  for (DWORD id = 2; id <= 64; id *= 2) {
    HMVXATTR values = MvxAddAttribute(info_, MvxAddProperty(info_, id), 16);
    MvxAddInteger(info_, values, static_cast<LONG>(id));
    MvxAddInteger(info_, values, -static_cast<LONG>(id));
  }
  std::vector<DWORD> seen;
  DWORD id = 0;
  HMVXPOS position = MvxGetHeadProperty(info_);
  while (MvxGetNextProperty(info_, &id, &position) != nullptr) {
    seen.push_back(id);
    if (id == 2) MvxDeleteProperty(info_, 2);    // the one just returned
    if (id == 4) MvxDeleteProperty(info_, 8);    // the one the cursor is at
    if (id == 16) MvxDeleteProperty(info_, 64);  // the last one
  }
  EXPECT_EQ(seen, (std::vector<DWORD>{2, 4, 16, 32}));

  // Walks into a property that is deleted end instead of reading it.
  HMVXPROP property = MvxFindProperty(info_, 32);
  HMVXPOS attributes = MvxGetHeadAttribute(info_, property);
  HMVXPOS values = MvxGetHeadAttributeValue(info_, MvxFindAttribute(info_, property, 16));
  ASSERT_NE(attributes, nullptr);
  ASSERT_NE(values, nullptr);
  MvxDeleteProperty(info_, 32);
  EXPECT_EQ(MvxGetNextAttribute(info_, nullptr, &attributes), nullptr);
  EXPECT_EQ(MvxGetNextAttributeValue(info_, &values), nullptr);

  // Emptying the map ends a walk that was still under way.
  position = MvxGetHeadProperty(info_);
  MvxDeleteProperty(info_, 4);
  MvxDeleteProperty(info_, 16);
  EXPECT_EQ(MvxGetNextProperty(info_, &id, &position), nullptr);
  EXPECT_EQ(MvxGetCommitSpace(info_), 40u);
}

}  // namespace
}  // namespace mvsup::test
