// Tests of the property bag: keys, types, sharing, mapping, and a random run against a plain map.
#include "vdm_db/properties/vdm_properties.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace {

OdLong longOf(const VdmProperties& bag, const OdString& key) {
  OdLong value = -1;
  EXPECT_TRUE(bag.getProperty(key, value)) << key;
  return value;
}

std::vector<std::string> keysOf(const VdmProperties& bag) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : bag) keys.emplace_back(key.utf8());
  return keys;
}

TEST(VdmProperties, StartsEmpty) {
  const VdmProperties bag;
  EXPECT_TRUE(bag.isEmpty());
  EXPECT_EQ(bag.config(), 0);
  EXPECT_EQ(bag.version(), 0);
  EXPECT_EQ(bag.begin(), bag.end());
  VdmProperties configured(3);
  EXPECT_EQ(configured.config(), 3);
  configured.setVersion(0x105);
  EXPECT_EQ(configured.version(), 5);
}

TEST(VdmProperties, KeepsTheTypeOfAKey) {
  VdmProperties bag;
  EXPECT_TRUE(bag.setProperty(L"a", 2.5));
  EXPECT_FALSE(bag.setProperty(L"a", OdLong{1}));
  EXPECT_FALSE(bag.setProperty(L"a", VdmLongArray{1}));
  double real = 0.0;
  EXPECT_TRUE(bag.getProperty(L"a", real));
  EXPECT_EQ(real, 2.5);
  OdDbObjectId id;
  EXPECT_FALSE(bag.getProperty(L"a", id));
  OdDbObjectIdArray ids;
  EXPECT_FALSE(bag.getProperty(L"a", ids));
  // As an object it may be replaced by one of another type.
  EXPECT_TRUE(bag.setProperty(L"a", VdmPropertyData::create(OdLong{1})));
  EXPECT_EQ(longOf(bag, L"a"), 1);
  EXPECT_FALSE(bag.setProperty(L"a", 2.5));
}

TEST(VdmProperties, RemovesByNullPointer) {
  VdmProperties bag;
  bag.setProperty(L"a", true);
  EXPECT_FALSE(bag.setProperty(L"b", VdmPropertyDataPtr()));
  EXPECT_TRUE(bag.setProperty(L"a", VdmPropertyDataPtr()));
  EXPECT_FALSE(bag.removeProperty(L"a"));
  EXPECT_TRUE(bag.getProperty(L"a").isNull());
  EXPECT_TRUE(bag.isEmpty());
}

TEST(VdmProperties, WalksInOrderOfCharacters) {
  VdmProperties bag;
  for (const wchar_t* key : {L"b", L"", L"a", L"B", L"aa", L"\u00E9", L"\u4E2D"})
    bag.setProperty(key, OdLong{1});
  EXPECT_EQ(keysOf(bag), (std::vector<std::string>{"", "B", "a", "aa", "b", "\u00E9", "\u4E2D"}));
  EXPECT_EQ(bag.begin()->first, OdString());
  EXPECT_EQ(bag.begin()->second->type(), VdmPropertyType::kLong);
}

TEST(VdmProperties, HandsOutItsOwnValues) {
  VdmProperties bag;
  bag.setProperty(L"a", OdLong{1});
  const VdmPropertyDataPtr held = bag.getProperty(L"a");
  EXPECT_TRUE(held->set(OdLong{2}));
  EXPECT_EQ(longOf(bag, L"a"), 2);
  EXPECT_TRUE(bag.setProperty(L"a", OdLong{3}));
  OdLong seen = 0;
  EXPECT_TRUE(held->get(seen));
  EXPECT_EQ(seen, 3);
  bag.clear();
  EXPECT_TRUE(held->get(seen));
  EXPECT_EQ(bag.getProperty(L"a"), nullptr);
}

TEST(VdmProperties, SharesValuesWithItsCopies) {
  OdString member("mine");
  VdmProperties bag(2);
  bag.setVersion(4);
  bag.setProperty(L"plain", OdLong{1});
  bag.setProperty(L"array", VdmLongArray{1});
  bag.mapProperty(L"member", &member);
  VdmProperties copy(bag);
  EXPECT_EQ(copy.config(), 2);
  EXPECT_EQ(copy.version(), 4);
  EXPECT_TRUE(copy.setProperty(L"plain", OdLong{9}));
  EXPECT_EQ(longOf(bag, L"plain"), 9);
  EXPECT_TRUE(copy.setProperty(L"member", OdString("theirs")));
  EXPECT_EQ(member, OdString("theirs"));
  EXPECT_EQ(bag.getProperty(L"array"), copy.getProperty(L"array"));
  // Keys are each bag's own.
  copy.removeProperty(L"plain");
  copy.setProperty(L"new", true);
  EXPECT_EQ(longOf(bag, L"plain"), 9);
  EXPECT_FALSE(bag.hasProperty(L"new"));

  VdmProperties assigned;
  assigned.setProperty(L"old", true);
  assigned = bag;
  EXPECT_EQ(keysOf(assigned), keysOf(bag));
  VdmProperties moved(std::move(assigned));
  EXPECT_EQ(keysOf(moved), keysOf(bag));
}

TEST(VdmProperties, KeepsIdsByTheirParts) {
  OdDbStub stubs[2];
  const OdDbObjectId first(&stubs[0]);
  const OdDbObjectIdArray both{first, OdDbObjectId(&stubs[1])};
  VdmProperties bag;
  EXPECT_TRUE(bag.setProperty(L"id", first, OdDb::kHardOwnershipRef));
  EXPECT_TRUE(bag.setProperty(L"ids", both, OdDb::kHardPointerRef));
  OdDbObjectId id;
  OdDbObjectIdArray ids{OdDbObjectId()};
  OdDbTypedId typedId;
  EXPECT_TRUE(bag.getProperty(L"id", id));
  EXPECT_EQ(id, first);
  EXPECT_TRUE(bag.getProperty(L"id", typedId));
  EXPECT_EQ(typedId.type, OdDb::kHardOwnershipRef);
  EXPECT_TRUE(bag.getProperty(L"ids", ids));
  EXPECT_TRUE(ids == both);
}

// ---- Mapping

TEST(VdmProperties, MovesAPresentValueIntoTheVariable) {
  VdmProperties bag;
  bag.setProperty(L"a", 2.5);
  bag.setProperty(L"other type", OdLong{1});
  double member = 0.0;
  double untouched = 7.0;
  EXPECT_TRUE(bag.mapProperty(L"a", &member));
  EXPECT_EQ(member, 2.5);
  EXPECT_TRUE(bag.mapProperty(L"other type", &untouched, 1.0));
  EXPECT_EQ(untouched, 7.0);
  member = 8.0;
  double read = 0.0;
  EXPECT_TRUE(bag.getProperty(L"a", read));
  EXPECT_EQ(read, 8.0);
  EXPECT_TRUE(bag.setProperty(L"a", 9.0));
  EXPECT_EQ(member, 9.0);
  EXPECT_TRUE(bag.getProperty(L"a")->isMapped());
  EXPECT_TRUE(bag.getProperty(L"a")->set(10.0));
  EXPECT_EQ(member, 10.0);
}

TEST(VdmProperties, ReachesASetterThroughTheValueOnly) {
  VdmProperties bag;
  bag.setProperty(L"a", OdLong{5});
  std::vector<OdLong> calls;
  OdLong state = 1;
  bag.mapProperty<OdLong>(
      L"a", [&] { return state; },
      [&](OdLong value) {
        calls.push_back(value);
        state = value;
      });
  EXPECT_EQ(calls, std::vector<OdLong>{5});
  EXPECT_TRUE(bag.setProperty(L"a", OdLong{6}));
  EXPECT_EQ(calls.size(), 1u);
  EXPECT_EQ(longOf(bag, L"a"), 5);
  EXPECT_TRUE(bag.getProperty(L"a")->set(OdLong{7}));
  EXPECT_EQ(calls, (std::vector<OdLong>{5, 7}));
  EXPECT_EQ(longOf(bag, L"a"), 7);
}

TEST(VdmProperties, RefusesAnEmptySetterOnlyWhenAValueFlows) {
  const std::function<bool()> getter;
  const std::function<void(bool)> setter;
  VdmProperties bag;
  EXPECT_TRUE(bag.mapProperty(L"free", getter, setter, true));
  bag.setProperty(L"taken", true);
  EXPECT_THROW(bag.mapProperty(L"taken", getter, setter), std::bad_function_call);
  bool kept = false;
  EXPECT_TRUE(bag.getProperty(L"taken", kept));
  EXPECT_TRUE(kept);
}

TEST(VdmProperties, MapsIds) {
  OdDbStub stubs[2];
  OdDbObjectId id;
  OdDbObjectIdArray ids;
  VdmProperties bag;
  bag.setProperty(L"id", OdDbObjectId(&stubs[0]), OdDb::kSoftPointerRef);
  bag.mapProperty(L"id", &id, OdDb::kHardPointerRef);
  EXPECT_EQ(id, OdDbObjectId(&stubs[0]));
  OdDbTypedId typedId;
  EXPECT_TRUE(bag.getProperty(L"id", typedId));
  EXPECT_EQ(typedId.type, OdDb::kHardPointerRef);

  ids.append(OdDbObjectId(&stubs[1]));
  bag.mapProperty(L"ids", &ids, OdDb::kSoftPointerRef);
  bag.setReferenceType(L"ids", OdDb::kHardOwnershipRef);
  bag.setReferenceType(L"id", OdDb::kSoftOwnershipRef);
  VdmTypedIdArray typedIds;
  EXPECT_TRUE(bag.getProperty(L"ids", typedIds));
  EXPECT_EQ(typedIds.getAt(0).type, OdDb::kHardOwnershipRef);
  EXPECT_TRUE(bag.getProperty(L"id", typedId));
  EXPECT_EQ(typedId.type, OdDb::kHardPointerRef);
}

TEST(VdmProperties, TakesANullEntryForAnAbsentOne) {
  VdmProperties bag;
  bag.setReferenceType(L"made", OdDb::kSoftPointerRef);
  EXPECT_FALSE(bag.isEmpty());
  EXPECT_TRUE(bag.getProperty(L"made").isNull());
  EXPECT_TRUE(bag.begin()->second.isNull());
  OdLong value = 4;
  EXPECT_FALSE(bag.getProperty(L"made", value));
  VdmProperties copy(bag);
  EXPECT_EQ(copy.size(), 1u);
  EXPECT_TRUE(bag.setProperty(L"made", OdLong{1}));
  EXPECT_EQ(longOf(bag, L"made"), 1);
}

// ---- Shapes: what many bags, or large ones, must not be seen to do

TEST(VdmProperties, HoldsThousandsOfKeys) {
  VdmProperties bag;
  constexpr int kCount = 5000;
  for (int i = 0; i < kCount; ++i) bag.setProperty(OdString().format(L"k%d", i * 7919 % kCount), i);
  EXPECT_EQ(bag.size(), static_cast<OdUInt32>(kCount));
  const std::vector<std::string> keys = keysOf(bag);
  EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
  VdmProperties copy(bag);
  for (int i = 0; i < kCount; i += 2) EXPECT_TRUE(bag.removeProperty(OdString().format(L"k%d", i)));
  EXPECT_EQ(bag.size(), static_cast<OdUInt32>(kCount / 2));
  EXPECT_EQ(copy.size(), static_cast<OdUInt32>(kCount));
  EXPECT_EQ(longOf(bag, L"k1"), longOf(copy, L"k1"));
}

TEST(VdmProperties, TakesAnyNumberOfKeySets) {
  std::vector<VdmProperties> bags(6000);
  for (std::size_t i = 0; i < bags.size(); ++i) {
    const auto number = static_cast<OdLong>(i);
    bags[i].setProperty(OdString().format(L"only %d", number), number);
    bags[i].setProperty(L"common", number);
  }
  for (std::size_t i = 0; i < bags.size(); ++i) {
    const auto number = static_cast<OdLong>(i);
    ASSERT_EQ(longOf(bags[i], OdString().format(L"only %d", number)), number);
    ASSERT_EQ(longOf(bags[i], L"common"), number);
    ASSERT_TRUE(bags[i].removeProperty(L"common"));
    ASSERT_EQ(bags[i].size(), 1u);
  }
}

// Bags that share values, against maps of shared cells.
TEST(VdmProperties, BehavesLikeAPlainMap) {
  using Model = std::map<std::string, std::shared_ptr<OdLong>>;
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::vector<VdmProperties> bags(3);
  std::vector<Model> models(3);
  std::vector<std::pair<VdmPropertyDataPtr, std::shared_ptr<OdLong>>> held;
  const auto pick = [&](std::size_t count) { return random() % count; };
  for (int step = 0; step < 20000; ++step) {
    const std::size_t at = pick(bags.size());
    const std::string name = "k" + std::to_string(pick(step % 2000 < 1000 ? 12 : 80));
    const OdString key(name);
    const auto value = static_cast<OdLong>(random() % 1000);
    switch (pick(8)) {
      case 0:
        EXPECT_EQ(bags[at].removeProperty(key), models[at].erase(name) == 1);
        break;
      case 1:
        if (pick(20) != 0) break;
        bags[at] = bags[(at + 1) % bags.size()];
        models[at] = models[(at + 1) % bags.size()];
        break;
      case 2:
        held.emplace_back(bags[at].getProperty(key),
                          models[at].count(name) ? models[at][name] : nullptr);
        ASSERT_EQ(held.back().first.isNull(), held.back().second == nullptr);
        break;
      case 3:
        if (held.empty() || held.back().first.isNull()) break;
        held.back().first->set(value);
        *held.back().second = value;
        break;
      case 4:
        if (pick(50) != 0) break;
        bags[at].clear();
        models[at].clear();
        break;
      default:
        EXPECT_TRUE(bags[at].setProperty(key, value));
        if (models[at].count(name))
          *models[at][name] = value;
        else
          models[at][name] = std::make_shared<OdLong>(value);
    }
    OdLong read = -1;
    ASSERT_EQ(bags[at].getProperty(key, read), models[at].count(name) == 1) << "step " << step;
    if (models[at].count(name)) {
      ASSERT_EQ(read, *models[at][name]) << "step " << step;
    }
    if (step % 500 != 0) continue;
    auto expected = models[at].begin();
    ASSERT_EQ(bags[at].size(), models[at].size());
    for (const auto& [foundKey, found] : VdmProperties(bags[at])) {
      ASSERT_EQ(foundKey.utf8(), expected->first);
      ASSERT_TRUE(found->get(read));
      ASSERT_EQ(read, *(expected++)->second);
    }
  }
}

}  // namespace
