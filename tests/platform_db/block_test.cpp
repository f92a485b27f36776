// Blocks: entities and their order, moving them, references to blocks, cycles.
#include "platform/entities/block_reference.h"
#include "platform/filer/id_filer.h"
#include "tests/platform_db/db_testing.h"

namespace {

class OdDbBlockTableRecordTest : public DbTest {
 protected:
  OdDbObjectId insert(OdDbObjectId into, OdDbObjectId block) {
    const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    reference->setBlockTableRecord(block);
    return edit<OdDbBlockTableRecord>(into)->appendOdDbEntity(reference);
  }
  static OdDbObjectIdArray walk(OdDbObjectId block, bool forward = true, bool skipErased = true) {
    OdDbObjectIdArray ids;
    const OdDbBlockTableRecordPtr record = open<OdDbBlockTableRecord>(block);
    for (auto at = record->newIterator(forward, skipErased); !at->done();
         at->step(forward, skipErased)) {
      ids.append(at->objectId());
    }
    return ids;
  }
  static OdDbObjectIdArray references(OdDbObjectId block, bool directOnly = true) {
    return open<OdDbBlockTableRecord>(block)->getBlockReferenceIds(directOnly);
  }

  OdDbObjectId m_space = m_database->getModelSpaceId();
  OdDbObjectId m_a = addBlock("A");
  OdDbObjectId m_b = addBlock("B");
};

TEST_F(OdDbBlockTableRecordTest, EntitiesStandInOrderOfAppending) {
  const OdDbObjectId first = addLine(m_a);
  const OdDbObjectId second = addLine(m_a);
  const OdDbObjectId third = addLine(m_a);
  erase(second);
  EXPECT_EQ(walk(m_a), (OdDbObjectIdArray{first, third}));
  EXPECT_EQ(walk(m_a, false, false), (OdDbObjectIdArray{third, second, first}));
  EXPECT_EQ(first.ownerId(), m_a);
  const OdDbObjectIteratorPtr at = open<OdDbBlockTableRecord>(m_a)->newIterator();
  EXPECT_TRUE(at->seek(third));
  EXPECT_FALSE(at->seek(m_b));
  EXPECT_EQ(at->entity()->objectId(), third);
  OdDbIdFiler filer;
  open<OdDbBlockTableRecord>(m_a)->dwgOutFields(&filer);
  ASSERT_EQ(filer.ids().size(), 2u) << "what is erased is not filed";
  EXPECT_EQ(filer.ids()[1].type, OdDb::kHardOwnershipRef);
}

TEST_F(OdDbBlockTableRecordTest, WalksSeeTheBlockAsItWas) {
  addLine(m_a);
  OdUInt32 met = 0;
  const OdDbBlockTableRecordPtr block = edit<OdDbBlockTableRecord>(m_a);
  for (auto at = block->newIterator(); !at->done(); at->step()) {
    addLine(m_a);
    ++met;
  }
  EXPECT_EQ(met, 1u);
  EXPECT_EQ(walk(m_a).size(), 2u);
}

TEST_F(OdDbBlockTableRecordTest, RefusesWhatItCannotTake) {
  const OdDbObjectId line = addLine(m_a);
  const auto append = [](OdDbObjectId block, OdDbEntity* entity) {
    return raisedBy([&] { edit<OdDbBlockTableRecord>(block)->appendOdDbEntity(entity); });
  };
  EXPECT_EQ(append(m_b, open<OdDbLine>(line)), eAlreadyInDatabase);
  EXPECT_EQ(append(m_a, open<OdDbLine>(line)), eAlreadyInDatabase) << "listed already";
  EXPECT_EQ(append(m_a, nullptr), eNullPointer);
  const OdDbLinePtr fresh = OdDbLine::createObject();
  EXPECT_EQ(raisedBy([&] { OdDbBlockTableRecord::createObject()->appendOdDbEntity(fresh); }),
            eNoDatabase);
  const OdDbDatabasePtr other = m_host.createDatabase();
  fresh->setLayer(other->getLayerZeroId());
  EXPECT_EQ(append(m_a, fresh), eWrongDatabase) << "a layer of another drawing";
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setBlockTableRecord(other->getModelSpaceId());
  EXPECT_EQ(append(m_a, reference), eWrongDatabase) << "a block of another drawing";
  EXPECT_EQ(edit<OdDbBlockTableRecord>(m_space)->erase(), eInvalidInput);
  const OdDbBlockTableRecordPtr block = edit<OdDbBlockTableRecord>(m_a);
  EXPECT_EQ(raisedBy([&] { block->setOrigin({0.0 / 0.0, 0, 0}); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { block->setBlockInsertUnits(OdDb::UnitsValue(99)); }), eInvalidInput);
}

TEST_F(OdDbBlockTableRecordTest, EntitiesMoveBetweenBlocksWithTheirIds) {
  const OdDbObjectId a1 = addLine(m_a);
  const OdDbObjectId a2 = addLine(m_a);
  const OdDbObjectId b1 = addLine(m_b);
  erase(a1);
  ASSERT_EQ(edit<OdDbBlockTableRecord>(m_b)->takeEntities(edit<OdDbBlockTableRecord>(m_a)), eOk);
  EXPECT_EQ(walk(m_b), (OdDbObjectIdArray{b1, a2}));
  EXPECT_EQ(walk(m_a, true, false), (OdDbObjectIdArray{a1}));
  EXPECT_EQ(a2.ownerId(), m_b);
  const OdDbBlockTableRecordPtr block = edit<OdDbBlockTableRecord>(m_a);
  EXPECT_EQ(block->assumeOwnershipOf({a2, b1, a2}), eDuplicateKey);
  EXPECT_EQ(block->assumeOwnershipOf({b1, m_b}), eWrongObjectType);
  EXPECT_EQ(block->assumeOwnershipOf({a1}), eWasErased);
  EXPECT_EQ(block->assumeOwnershipOf({m_host.createDatabase()->getModelSpaceId()}), eWrongDatabase);
  EXPECT_EQ(walk(m_b), (OdDbObjectIdArray{b1, a2})) << "a refused move moves nothing";
}

TEST_F(OdDbBlockTableRecordTest, KnowsTheReferencesThatShowIt) {
  addLine(m_a);
  const OdDbObjectId inSpace = insert(m_space, m_a);
  const OdDbObjectId inB = insert(m_b, m_a);
  const OdDbObjectId ofB = insert(m_space, m_b);
  EXPECT_EQ(references(m_a), (OdDbObjectIdArray{inSpace, inB}));
  EXPECT_EQ(references(m_a, false), (OdDbObjectIdArray{inSpace, inB, ofB}));
  erase(inSpace);
  EXPECT_EQ(references(m_a), (OdDbObjectIdArray{inB}));
  erase(inSpace, false);
  EXPECT_EQ(references(m_a).size(), 2u);
  edit<OdDbBlockReference>(inSpace)->setBlockTableRecord(m_b);
  EXPECT_EQ(references(m_a), (OdDbObjectIdArray{inB}));
  EXPECT_EQ(references(m_b), (OdDbObjectIdArray{inSpace, ofB}));
}

TEST_F(OdDbBlockTableRecordTest, NoBlockContainsItself) {
  insert(m_b, m_a);
  const OdDbObjectId inSpace = insert(m_space, m_a);
  EXPECT_EQ(raisedBy([&] { insert(m_a, m_a); }), eCircularReference);
  EXPECT_EQ(raisedBy([&] { insert(m_a, m_b); }), eCircularReference);
  EXPECT_EQ(raisedBy([&] { edit<OdDbBlockReference>(inSpace)->setBlockTableRecord(m_space); }),
            eCircularReference);
  EXPECT_TRUE(walk(m_a).isEmpty());
  const OdDbObjectId ofB = insert(m_space, m_b);
  EXPECT_EQ(edit<OdDbBlockTableRecord>(m_a)->assumeOwnershipOf({ofB}), eCircularReference);
  EXPECT_EQ(ofB.ownerId(), m_space);
}

TEST_F(OdDbBlockTableRecordTest, PropertiesAreUndoneAndTruncationsFail) {
  insert(m_space, m_a);
  addLine(m_a);
  m_database->startUndoRecord();
  const std::string before = stateOf(m_a);
  {
    const OdDbBlockTableRecordPtr block = edit<OdDbBlockTableRecord>(m_a);
    block->setOrigin({1, 2, 3});
    block->setComments("a block");
    block->setBlockInsertUnits(OdDb::kUnitsInches);
    block->setPathName("a/b.vdm");
    block->setIsFromOverlayReference(true);
  }
  expectTruncationsFail(m_a);
  expectUndone(m_a, before);
}

}  // namespace
