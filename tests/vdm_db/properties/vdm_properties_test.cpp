// Tests of the property bag: keys, types, sharing, mapping, and a random run against a plain map.
#include "vdm_db/properties/vdm_properties.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "tests/support/test_seed.h"

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

TEST(VdmProperties, KeepsTheTypeOfAKey) {
  VdmProperties bag;
  EXPECT_TRUE(bag.setProperty(L"a", 2.5));
  EXPECT_FALSE(bag.setProperty(L"a", OdLong{1}));
  EXPECT_FALSE(bag.setProperty(L"a", VdmLongArray{1}));
  double real = 0.0;
  EXPECT_TRUE(bag.getProperty(L"a", real));
  EXPECT_EQ(real, 2.5);
  // As an object it may be replaced by one of another type.
  EXPECT_TRUE(bag.setProperty(L"a", VdmPropertyData::create(OdLong{1})));
  EXPECT_EQ(longOf(bag, L"a"), 1);
  EXPECT_FALSE(bag.setProperty(L"a", 2.5));
  // A null object removes.
  EXPECT_FALSE(bag.setProperty(L"b", VdmPropertyDataPtr()));
  EXPECT_TRUE(bag.setProperty(L"a", VdmPropertyDataPtr()));
  EXPECT_TRUE(bag.isEmpty());
}

TEST(VdmProperties, SharesValuesWithItsCopies) {
  OdString member("mine");
  VdmProperties bag(2);
  bag.setVersion(0x104);  // one byte counts
  bag.setProperty(L"array", VdmLongArray{1});
  bag.mapProperty(L"member", &member);
  for (const wchar_t* key : {L"", L"aa", L"B", L"\u4E2D"}) bag.setProperty(key, OdLong{1});
  VdmProperties copy(bag);
  EXPECT_EQ(copy.config(), 2);
  EXPECT_EQ(copy.version(), 4);
  EXPECT_TRUE(copy.setProperty(L"member", OdString("theirs")));
  EXPECT_EQ(member, OdString("theirs"));
  EXPECT_EQ(bag.getProperty(L"array"), copy.getProperty(L"array"));
  const VdmProperties moved(std::move(copy));
  EXPECT_EQ(keysOf(moved), (std::vector<std::string>{"", "B", "aa", "array", "member", "\u4E2D"}));
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
  EXPECT_TRUE(bag.setProperty(L"a", 9.0));
  EXPECT_EQ(member, 9.0);
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

TEST(VdmProperties, MapsIds) {
  OdDbIdRecord idRecords[2];
  OdDbObjectId id;
  OdDbObjectIdArray ids;
  VdmProperties bag;
  bag.setProperty(L"id", OdDbObjectId(&idRecords[0]), OdDb::kSoftPointerRef);
  bag.mapProperty(L"id", &id, OdDb::kHardPointerRef);
  EXPECT_EQ(id, OdDbObjectId(&idRecords[0]));
  OdDbTypedId typedId;
  EXPECT_TRUE(bag.getProperty(L"id", typedId));
  EXPECT_EQ(typedId.type, OdDb::kHardPointerRef);

  ids.append(OdDbObjectId(&idRecords[1]));
  bag.mapProperty(L"ids", &ids, OdDb::kSoftPointerRef);
  bag.setReferenceType(L"ids", OdDb::kHardOwnershipRef);
  bag.setReferenceType(L"id", OdDb::kSoftOwnershipRef);
  VdmTypedIdArray typedIds;
  EXPECT_TRUE(bag.getProperty(L"ids", typedIds));
  EXPECT_EQ(typedIds.getAt(0).type, OdDb::kHardOwnershipRef);
  EXPECT_TRUE(bag.getProperty(L"id", typedId));
  EXPECT_EQ(typedId.type, OdDb::kHardPointerRef);
}

TEST(VdmProperties, WalksALargeBagInKeyOrderAfterEachEdit) {
  VdmProperties bag;
  std::vector<std::string> keys;
  for (int i = 100; i < 200; ++i) {
    keys.push_back("k" + std::to_string(i));
    bag.setProperty(keys.back(), OdLong{i});
  }
  EXPECT_EQ(keysOf(bag), keys);
  bag.removeProperty("k120");
  keys.erase(keys.begin() + 20);
  EXPECT_EQ(keysOf(bag), keys) << "the last key took the place of the removed one";
  bag.setProperty("a", OdLong{1});
  keys.insert(keys.begin(), "a");
  EXPECT_EQ(keysOf(bag), keys);
  bag.setProperty("z", OdLong{2});
  keys.push_back("z");
  EXPECT_EQ(keysOf(bag), keys);
}

// Bags that share values, against maps of shared cells.
TEST(VdmProperties, BehavesLikeAPlainMap) {
  using Model = std::map<std::string, std::shared_ptr<OdLong>>;
  std::mt19937 random(freshSeed());
  std::vector<VdmProperties> bags(3);
  std::vector<Model> models(3);
  std::vector<std::pair<VdmPropertyDataPtr, std::shared_ptr<OdLong>>> held;
  const auto pick = [&](std::size_t count) { return random() % count; };
  for (int step = 0; step < 20000; ++step) {
    const std::size_t at = pick(bags.size());
    const std::string name = "k" + std::to_string(pick(step % 2000 < 1000 ? 12 : 400));
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
        if (models[at].count(name)) {
          *models[at][name] = value;
        } else {
          models[at][name] = std::make_shared<OdLong>(value);
        }
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
