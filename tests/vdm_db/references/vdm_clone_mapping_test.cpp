// Tests of what blocks and paths become when entities are cloned: random nested blocks, judged by
// the coordinates of their lines.
#include "vdm_db/references/vdm_clone_mapping.h"

#include <random>
#include <set>

#include "tests/support/reference_testing.h"
#include "tests/support/test_seed.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

class VdmCloneMappingTest : public ReferenceTest {
 protected:
  VdmCloneMappingTest() : m_target(m_host.createDatabase()) {}

  /// A line whose coordinates no other line has.
  OdDbObjectId addMark(OdDbObjectId block) {
    ++m_marks;
    return addLine(block, OdGePoint3d(m_marks, 0, 0), OdGePoint3d(m_marks, 1, 0));
  }
  static OdGePoint3d markOf(OdDbObjectId line) { return open<OdDbLine>(line)->startPoint(); }
  static OdDbObjectId blockOf(OdDbObjectId reference) {
    return open<OdDbBlockReference>(reference)->blockTableRecord();
  }
  static OdDbObjectIdArray entitiesOf(OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->entityIds();
  }
  OdDbObjectId inTarget(OdDbObjectId block) {
    const OdDbBlockTablePtr table = open<OdDbBlockTable>(m_target->getBlockTableId());
    return table->getAt(open<OdDbBlockTableRecord>(block)->getName());
  }
  void write(const OdDbObjectIdArray& ids) {
    m_mapping = OdDbIdMapping::createObject(OdDb::kDcWblkObjects);
    ASSERT_EQ(m_drawing->wblockCloneObjects(ids, m_target->getModelSpaceId(), *m_mapping,
                                            OdDb::kDrcIgnore),
              eOk);
  }
  /// All paths from an entity down to lines.
  static void collectPaths(OdDbObjectIdArray& path, std::vector<OdDbObjectIdArray>& paths) {
    if (OdDbLine::cast(path.last().openObject()).get() != nullptr) return paths.push_back(path);
    for (const OdDbObjectId& id : entitiesOf(blockOf(path.last()))) {
      path.append(id);
      collectPaths(path, paths);
      path.removeLast();
    }
  }
  bool map(const OdDbObjectIdArray& source, OdDbObjectIdArray& mapped, bool keepUnmapped = false) {
    VdmDbIdMapping blocks;
    vdmu::buildBtrMapping(*m_mapping, blocks);
    return vdmu::mapObjectPath(*m_mapping, blocks, source, mapped, vdmu::mapBlockElements(blocks),
                               keepUnmapped);
  }

  template <class Pick>
  void playTree(const Pick& pick, std::size_t& numMapped, std::size_t& numRefused);

  OdDbDatabasePtr m_target;
  OdDbIdMappingPtr m_mapping;
  int m_marks = 0;
};

// Writes references to nested blocks into a drawing that has some of the blocks, in part with other
// contents, and maps every path.
template <class Pick>
void VdmCloneMappingTest::playTree(const Pick& pick, std::size_t& numMapped,
                                   std::size_t& numRefused) {
  m_drawing = m_host.createDatabase();
  m_target = m_host.createDatabase();
  m_modelSpace = m_drawing->getModelSpaceId();
  std::vector<OdDbObjectId> blocks;
  for (int i = 0; i < 12; ++i) {
    blocks.push_back(addBlock(m_drawing, OdString().format(L"B%d", i)));
    for (std::size_t entity = 1 + pick(3); entity > 0; --entity) {
      if (i == 0 || pick(2) == 0)
        addMark(blocks.back());
      else
        addReference(blocks.back(), blocks[pick(blocks.size() - 1)]);
    }
  }
  OdDbObjectIdArray first;
  OdDbObjectIdArray second;
  for (int i = 0; i < 4; ++i) first.append(addReference(m_modelSpace, blocks[pick(6)]));
  for (int i = 0; i < 4; ++i) second.append(addReference(m_modelSpace, blocks[pick(12)]));
  write(first);  // so that the target has some of the blocks
  std::set<OdDbObjectId> changed;
  for (const OdDbObjectId& block : blocks) {
    if (inTarget(block).isNull() || pick(3) != 0) continue;
    // Not the same block any more: one of its lines is elsewhere, or it has one more.
    const OdDbObjectIdArray entities = entitiesOf(inTarget(block));
    const OdDbLinePtr line = OdDbLine::cast(entities[0].openObject(OdDb::kForWrite));
    if (!line.isNull() && pick(2) == 0) {
      line->setStartPoint(OdGePoint3d(0, 99, 0));
    } else {
      addMark(inTarget(block));
    }
    changed.insert(block);
  }
  write(second);
  for (const OdDbObjectId& top : second) {
    OdDbObjectIdArray path{top};
    std::vector<OdDbObjectIdArray> paths;
    collectPaths(path, paths);
    for (const OdDbObjectIdArray& source : paths) {
      bool isSame = true;
      for (OdUInt32 i = 0; i + 1 < source.size(); ++i) {
        isSame = isSame && changed.count(blockOf(source[i])) == 0;
      }
      OdDbObjectIdArray mapped;
      ASSERT_EQ(map(source, mapped), isSame);
      ++(isSame ? numMapped : numRefused);
      if (!isSame) continue;
      ASSERT_EQ(mapped.size(), source.size());
      EXPECT_EQ(mapped[0].ownerId(), m_target->getModelSpaceId());
      EXPECT_TRUE(vdmu::isValidObjectIdPath(mapped, false));
      EXPECT_EQ(markOf(mapped.last()), markOf(source.last()));
    }
  }
}

TEST_F(VdmCloneMappingTest, PathsOfRandomTreesLeadToTheSameMarks) {
  std::mt19937 random(freshSeed());
  const auto pick = [&random](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  std::size_t numMapped = 0;
  std::size_t numRefused = 0;
  for (int round = 0; round < 20; ++round) playTree(pick, numMapped, numRefused);
  EXPECT_GT(numMapped, 0u);
  EXPECT_GT(numRefused, 0u);
}

// In one drawing: a clone of a reference shows the same block, a cloned block has its own.
TEST_F(VdmCloneMappingTest, ClonedBlocksHaveTheirOwnElements) {
  const OdDbObjectId inner = addBlock(m_drawing, L"INNER");
  const OdDbObjectId mark = addMark(inner);
  const OdDbObjectId outer = addBlock(m_drawing, L"OUTER");
  const OdDbObjectId nested = addReference(outer, inner);
  const OdDbObjectId top = addReference(m_modelSpace, outer);
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcCopy);
  ASSERT_EQ(m_drawing->deepCloneObjects({top}, m_modelSpace, *m_mapping), eOk);
  OdDbObjectIdArray mapped;
  ASSERT_TRUE(map({top, nested, mark}, mapped));
  EXPECT_EQ(mapped, (OdDbObjectIdArray{vdmu::findClone(*m_mapping, top), nested, mark}));
  ASSERT_EQ(vdmu::getClonedBTRs(*m_mapping), OdArray<OdDbObjectId>{m_modelSpace});

  m_mapping = OdDbIdMapping::createObject(OdDb::kDcCopy);
  ASSERT_EQ(m_drawing->deepCloneObjects({inner, outer}, m_drawing->getBlockTableId(), *m_mapping),
            eOk);
  const OdDbObjectId nestedClone = vdmu::findClone(*m_mapping, nested);
  const OdDbObjectId innerClone = vdmu::findClone(*m_mapping, inner);
  ASSERT_TRUE(map({nested, mark}, mapped));
  EXPECT_EQ(mapped, (OdDbObjectIdArray{nestedClone, vdmu::findClone(*m_mapping, mark)}));
  EXPECT_EQ(blockOf(nestedClone), innerClone);
  VdmDbIdMapping blocks;
  vdmu::buildBtrMapping(*m_mapping, blocks);
  EXPECT_EQ(blocks.find(inner), innerClone);
  EXPECT_EQ(blocks.find(outer), vdmu::findClone(*m_mapping, outer));
}

TEST_F(VdmCloneMappingTest, WhatIsNotClonedIsKeptOrRefused) {
  const OdDbObjectId line = addMark(m_modelSpace);
  const OdDbObjectId cloned = addMark(m_modelSpace);
  for (const OdDb::DeepCloneType context : {OdDb::kDcCopy, OdDb::kDcInsertCopy}) {
    m_mapping = OdDbIdMapping::createObject(context);
    ASSERT_EQ(m_drawing->deepCloneObjects({cloned}, m_modelSpace, *m_mapping), eOk);
    OdDbObjectIdArray mapped{cloned};
    EXPECT_FALSE(map({line}, mapped));
    EXPECT_FALSE(map({}, mapped));
    EXPECT_EQ(mapped, OdDbObjectIdArray{cloned});
    EXPECT_EQ(map({line}, mapped, /*keepUnmapped=*/true), context == OdDb::kDcInsertCopy);
  }
}

// The second load of an external drawing has other ids and the same handles.
TEST_F(VdmCloneMappingTest, ExternalDrawingsAreFollowedByHandle) {
  const OdDbHandle handle = writePart("part.vdm");
  const OdDbObjectId first = attach(m_drawing, "part.vdm", L"FIRST");
  const OdDbObjectId second = attach(m_drawing, "part.vdm", L"SECOND");
  const OdDbObjectId top = addReference(m_modelSpace, first);
  const OdDbObjectId clone = addReference(m_modelSpace, second);
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcCopy);
  m_mapping->assign(OdDbIdPair(top, clone, /*cloned=*/true));
  const auto within = [&](const OdDbObjectId& block) {
    return open<OdDbBlockTableRecord>(block)->xrefDatabase()->getOdDbObjectId(handle);
  };
  OdDbObjectIdArray mapped;
  ASSERT_TRUE(map({top, within(first)}, mapped));
  EXPECT_EQ(mapped, (OdDbObjectIdArray{clone, within(second)}));
}

}  // namespace
