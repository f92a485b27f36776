// Tests of id mappings: pairs, their order, and their agreement with a plain model.
#include "platform/db/id_mapping.h"

#include <random>

#include "clone_testing.h"

namespace {

class OdDbIdMappingTest : public CloneTest {
 protected:
  OdDbObjectId id(OdUInt64 number) { return m_drawing->getOdDbObjectId(0x1000 + number, true); }
  std::vector<OdDbIdPair> walk() const {
    std::vector<OdDbIdPair> pairs;
    OdDbIdPair pair;
    for (const OdDbIdMappingIterPtr it = m_mapping->newIterator(); !it->done(); it->next()) {
      EXPECT_TRUE(it->getMap(pair));
      pairs.push_back(pair);
    }
    return pairs;
  }

  OdDbDatabasePtr m_drawing = m_host.createDatabase();
  OdDbIdMappingPtr m_mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
};

TEST_F(OdDbIdMappingTest, KeepsFlagsAndTheOrderOfFirstAssignment) {
  m_mapping->assign(OdDbIdPair(id(3), id(30), true, true, false));
  m_mapping->assign(OdDbIdPair(id(1), id(10)));
  m_mapping->assign(OdDbIdPair(id(2), id(20)));
  m_mapping->assign(OdDbIdPair(id(3), id(31), true, false));
  EXPECT_TRUE(m_mapping->del(id(1)));
  EXPECT_FALSE(m_mapping->del(id(1)));
  m_mapping->assign(OdDbIdPair(id(1), id(11)));
  const std::vector<OdDbIdPair> pairs = walk();
  ASSERT_EQ(pairs.size(), 3u);
  EXPECT_EQ(pairs[0].value(), id(31));
  EXPECT_TRUE(pairs[0].isCloned() && !pairs[0].isPrimary() && pairs[0].isOwnerXlated());
  EXPECT_EQ(pairs[1].key(), id(2));
  EXPECT_EQ(pairs[2].value(), id(11));
  EXPECT_EQ(m_mapping->deepCloneContext(), OdDb::kDcObjects);
}

TEST_F(OdDbIdMappingTest, UnknownAndNullKeysChangeNothing) {
  OdDbIdPair pair(id(5), id(50), true);
  EXPECT_FALSE(m_mapping->compute(pair));
  EXPECT_EQ(pair.value(), id(50));
  EXPECT_FALSE(m_mapping->change(pair));
  OdDbIdPair null;
  EXPECT_FALSE(m_mapping->compute(null));
  EXPECT_THROW(m_mapping->assign(null), OdError);
  EXPECT_TRUE(walk().empty());
}

TEST_F(OdDbIdMappingTest, AgreesWithAModelUnderRandomEdits) {
  std::mt19937 random(20240611);
  std::map<OdUInt64, OdDbObjectId> model;
  for (int step = 0; step < 20000; ++step) {
    const OdUInt64 key = random() % 400;
    const OdDbObjectId value = id(random() % 1000);
    switch (random() % 4) {
      case 0:
      case 1:
        m_mapping->assign(OdDbIdPair(id(key), value));
        model[key] = value;
        break;
      case 2:
        EXPECT_EQ(m_mapping->del(id(key)), model.erase(key) == 1) << "step " << step;
        break;
      default: {
        OdDbIdPair pair(id(key));
        const auto found = model.find(key);
        ASSERT_EQ(m_mapping->compute(pair), found != model.end()) << "step " << step;
        if (found != model.end()) {
          ASSERT_EQ(pair.value(), found->second) << "step " << step;
        }
      }
    }
  }
  EXPECT_EQ(walk().size(), model.size());
}

}  // namespace
