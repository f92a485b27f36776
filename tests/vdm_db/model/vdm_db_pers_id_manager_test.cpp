// Tests of persistent id managers: making, remapping, audit, cloning and merging.
#include "vdm_db/model/vdm_db_pers_id_manager.h"

#include "platform/cloning/id_mapping.h"
#include "tests/support/model_testing.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"

namespace {

class VdmDbPersIdManagerTest : public ModelTest {
 protected:
  VdmDbPersIdManagerTest() {
    for (OdGsMarker i = 1; i <= 3; ++i) m_ids.append(addDependency(face(m_carrier, i)));
    m_watcher = watch(m_ids);
  }
  VdmDbPersIdManagerPtr manager() const { return edit<VdmDbPersIdManager>(m_manager); }
  void moveTo(OdDbObjectId dependency, OdGsMarker index) const {
    edit<VdmDbObjectDependency>(dependency)->setLinkObject(face(m_carrier, index));
  }

  OdDbObjectIdArray m_ids;
  OdDbObjectId m_watcher;
  VdmDependenciesReplacementMap m_map;
};

TEST_F(VdmDbPersIdManagerTest, AppendGivesOneIdPerPath) {
  EXPECT_EQ(manager()->blockId(), m_modelSpace);
  EXPECT_EQ(vdmu::getAllPersIdManagers(m_drawing), OdDbObjectIdArray{m_manager});
  m_managerHost->calls.clear();
  OdDbObjectIdArray ids;
  expectUndoable([&] { ids = manager()->append({face(m_other, 1), face(m_carrier, 2)}, nullptr); });
  EXPECT_EQ(m_managerHost->calls, OdStringArray({L"prepare", L"find", L"create"}));
  ASSERT_EQ(ids.size(), 2u);
  EXPECT_EQ(ids[1], m_ids[1]);
  EXPECT_EQ(listed().last(), ids[0]);
  EXPECT_EQ(modelObject(m_other)->persIdDependencies(), OdDbObjectIdArray{ids[0]});
  VdmDbPersIdManager::desc()->delX(VdmDbPersIdManagerPE::desc());
  EXPECT_TRUE(manager()->append({face(m_other, 1)}, nullptr).isEmpty());
  EXPECT_FALSE(manager()->updatePairs(m_ids, {face(m_carrier, 4), {}, {}}));
  EXPECT_EQ(placeOf(m_ids[0]), face(m_carrier, 1));
}

/// Finds and makes nothing.
class IdleHost : public ManagerHost {
 public:
  void findExisting(VdmDbPersIdManager*, const OdDbFullSubentPathArray&,
                    OdDbObjectIdArray&) override {}
  void createDependencies(OdDbObjectIdArray&, VdmDbPersIdManager*, const OdDbFullSubentPathArray&,
                          OdDbUserIO*, OdDbObjectIdArray&) override {}
};

TEST_F(VdmDbPersIdManagerTest, AppendNeedsNoConstraintManagerForNothing) {
  const OdDbObjectId block = addBlock(m_drawing, L"A");
  const OdDbObjectId carrier = addCarrier(block);
  const OdDbObjectId manager = VdmDbPersIdManager::getInstance(block, /*create=*/true);
  const auto append = [&] {
    return edit<VdmDbPersIdManager>(manager)->append({face(carrier, 1)}, nullptr);
  };
  VdmDbPersIdManager::desc()->addX(VdmDbPersIdManagerPE::desc(),
                                   OdRxObjectPtr(new IdleHost, kOdRxObjAttach));
  EXPECT_TRUE(append().isEmpty());
  EXPECT_TRUE(m_assertions.empty()) << "fewer ids than paths is an answer";
  EXPECT_TRUE(VdmDbConstraintManager::getInstance(block, /*create=*/false).isNull());
  EXPECT_TRUE(VdmDbObject::openVdmDbObject(carrier).isNull());
}

TEST_F(VdmDbPersIdManagerTest, UndoAfterSavingAndPagingTakesBackWhatIsNamed) {
  for (const OdUInt32 lost : {0u, 1u}) edit<OdDbObject>(m_ids[lost])->erase();
  m_drawing->startUndoRecord();
  const OdDbObjectIdArray added{addDependency(face(m_other, 1)), addDependency(face(m_other, 2))};
  m_drawing->startUndoRecord();
  manager()->removeDependencies({m_ids[2]});  // watched: only the list changes
  saveAs(m_drawing, path("model.vdm"));
  m_drawing->pageOut(0);
  ASSERT_FALSE(m_manager.isResident());
  const auto live = [this] {
    OdDbObjectIdArray ids;
    for (const OdDbObjectId& id : listed()) {
      EXPECT_FALSE(id.isNull());
      if (!id.isErased()) ids.append(id);
    }
    return ids;
  };
  EXPECT_EQ(live(), added);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(live(), (OdDbObjectIdArray{m_ids[2], added[0], added[1]}));
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(live(), OdDbObjectIdArray{m_ids[2]});
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_EQ(live(), (OdDbObjectIdArray{m_ids[2], added[0], added[1]}));
}

TEST_F(VdmDbPersIdManagerTest, UpdatePairsLeavesUnknownIdsOut) {
  const OdDbFullSubentPathArray paths{face(m_other, 1), face(m_carrier, 8), face(m_carrier, 9)};
  const OdDbObjectId unknown = m_drawing->addOdDbObject(VdmDbObjectDependency::createObject());
  expectUndoable([&] {
    EXPECT_FALSE(manager()->updatePairs({m_ids[0], unknown, m_ids[2]}, paths));
  });
  EXPECT_EQ(placeOf(m_ids[0]), paths[0]);
  EXPECT_EQ(placeOf(m_ids[2]), paths[2]);
  EXPECT_TRUE(placeOf(unknown).objectIds().isEmpty());
  EXPECT_EQ(modelObject(m_other)->persIdDependencies(), OdDbObjectIdArray{m_ids[0]});
  EXPECT_EQ(modelObject(m_carrier)->persIdDependencies(), OdDbObjectIdArray({m_ids[1], m_ids[2]}));
  EXPECT_TRUE(manager()->updatePairs(m_ids, paths));
  EXPECT_EQ(raisedBy([&] { manager()->updatePairs(m_ids, {paths[0]}); }), eInvalidInput);
}

TEST_F(VdmDbPersIdManagerTest, SplitMakesClonesOfWatchedDependencies) {
  const OdDbFullSubentPathArray paths{face(m_carrier, 4), face(m_carrier, 5)};
  const OdDbObjectId unwatched = addDependency(face(m_other, 1));
  EXPECT_EQ(manager()->split(m_ids[0], {paths[0]}, m_map), OdDbObjectIdArray{m_ids[0]});
  EXPECT_EQ(manager()->split(unwatched, paths, m_map), OdDbObjectIdArray{unwatched});
  EXPECT_TRUE(manager()->split(m_carrier, paths, m_map).isEmpty());
  EXPECT_TRUE(m_map.isEmpty());
  edit<VdmDbObjectDependency>(m_ids[0])->setEntityTag(6);
  edit<VdmDbObjectDependency>(m_ids[0])->propertiesForWrite().setProperty(L"free", 1.5);
  OdDbObjectIdArray ids;
  expectUndoable([&] {
    ids = manager()->split(m_ids[0], paths, m_map);
    EXPECT_EQ(manager()->finishRemap(m_map), eOk);
  });
  ASSERT_EQ(ids.size(), 2u);
  EXPECT_EQ(placeOf(ids[1]), paths[1]);
  EXPECT_EQ(open<VdmDbObjectDependency>(ids[1])->entityTag(), 6);
  EXPECT_EQ(open<VdmDbObjectDependency>(ids[1])->properties().size(), 2u);
  EXPECT_EQ(m_map.getReplacedWith(m_ids[0]), ids);
  EXPECT_EQ(listed(), OdDbObjectIdArray({m_ids[1], m_ids[2], unwatched, ids[0], ids[1]}));
  EXPECT_FALSE(m_ids[0].isErased());  // its features take it away
  EXPECT_FALSE(modelObject(m_carrier)->persIdDependencies().contains(m_ids[0]));
  EXPECT_TRUE(modelObject(m_carrier)->persIdDependencies().contains(ids[0]));
}

TEST_F(VdmDbPersIdManagerTest, DependenciesThatMeetBecomeOne) {
  moveTo(m_ids[2], 1);
  expectUndoable([&] { manager()->finishRemap(m_map); });
  ASSERT_EQ(listed().size(), 2u);
  const OdDbObjectId merged = listed()[1];
  EXPECT_EQ(placeOf(merged), face(m_carrier, 1));
  EXPECT_EQ(m_map.getAll(), OdDbObjectIdArray({m_ids[0], m_ids[2]}));
  EXPECT_EQ(m_map.getReplacedWith(m_ids[2]), OdDbObjectIdArray{merged});
  EXPECT_EQ(modelObject(m_carrier)->persIdDependencies(), OdDbObjectIdArray({m_ids[1], merged}));

  moveTo(m_ids[1], 1);
  watch({merged});
  manager()->finishRemap2(m_map);
  ASSERT_EQ(listed().size(), 1u);
  EXPECT_EQ(m_map.getReplacedWith(m_ids[0]), listed());
  EXPECT_EQ(m_map.getReplacements(m_ids[0]).count(merged), 0u);
  EXPECT_EQ(modelObject(m_carrier)->persIdDependencies(), listed());
}

TEST_F(VdmDbPersIdManagerTest, RemoveLinkGoesByTag) {
  moveTo(m_ids[2], 1);
  edit<VdmDbObjectDependency>(m_ids[2])->setEntityTag(9);
  EXPECT_FALSE(manager()->removeLink(face(m_carrier, 1), 8));
  const OdDbDatabasePtr elsewhere = m_host.createDatabase();
  const OdDbObjectId broken = addDependency(face(m_other, 1));
  edit<VdmDbObjectDependency>(broken)->setLinkObject(
      {OdDbObjectIdArray{m_other, elsewhere->getModelSpaceId()}, OdDbSubentId()});
  EXPECT_FALSE(manager()->removeLink({m_other, OdDbSubentId()}, 0)) << "only the beginning agrees";
  manager()->removeDependencies({broken});
  expectUndoable([&] { EXPECT_TRUE(manager()->removeLink(face(m_carrier, 1), 9)); });
  EXPECT_EQ(listed(), OdDbObjectIdArray({m_ids[0], m_ids[1]}));
  EXPECT_TRUE(manager()->removeLink(face(m_carrier, 1), 0));
  EXPECT_EQ(modelObject(m_carrier)->persIdDependencies(), OdDbObjectIdArray{m_ids[1]});
  EXPECT_FALSE(m_ids[0].isErased());
}

TEST_F(VdmDbPersIdManagerTest, TheAuditLeavesWhatIsWatchedAndMakesListsAgree) {
  const OdDbObjectId unused = addDependency(face(m_other, 1));
  EXPECT_EQ(manager()->getUnusedDependencies(), OdDbObjectIdArray{unused});
  modelObject(m_carrier, OdDb::kForWrite)->removePersIdDependency(m_ids[0], m_manager);
  modelObject(m_carrier, OdDb::kForWrite)->addPersIdDependency(unused, m_manager);
  watch({m_ids[1]});
  edit<OdDbObject>(m_ids[2])->erase();
  expectUndoable([this] { manager()->doAudit(); });
  EXPECT_EQ(listed(), OdDbObjectIdArray({m_ids[0], m_ids[1]}));
  EXPECT_TRUE(unused.isErased());
  EXPECT_EQ(modelObject(m_carrier)->persIdDependencies(), OdDbObjectIdArray({m_ids[1], m_ids[0]}));
  EXPECT_FALSE(modelObject(m_other)->hasDependencies());
  edit<OdDbObject>(m_watcher)->erase();
  manager()->doAudit();
  EXPECT_EQ(listed(), OdDbObjectIdArray{m_ids[1]});
}

TEST_F(VdmDbPersIdManagerTest, ErasedDependenciesAreLeftOutOfTheFile) {
  edit<OdDbObject>(m_ids[1])->erase();
  edit<VdmDbObjectDependency>(m_ids[2])->setBodyHash(-3);
  const OdDbHandle last = m_ids[2].getHandle();
  reopen();
  ASSERT_EQ(listed().size(), 2u);
  EXPECT_EQ(listed()[1].getHandle(), last);
  EXPECT_EQ(placeOf(listed()[0]), face(m_carrier, 1));
  EXPECT_EQ(open<VdmDbObjectDependency>(listed()[1])->bodyHash(), -3);
  EXPECT_EQ(modelObject(m_carrier)->getPersIdDependency(face(m_carrier, 3)), listed()[1]);
  EXPECT_TRUE(m_drawing->loadErrors().isEmpty());
}

TEST_F(VdmDbPersIdManagerTest, AClonedBlockHasManagersObjectsAndDependenciesOfItsOwn) {
  const OdDbObjectId block = addBlock(m_drawing, L"PART");
  const OdDbObjectId part = addCarrier(block);
  const OdDbObjectId source = VdmDbPersIdManager::getInstance(block, true);
  const OdDbObjectIdArray ids =
      edit<VdmDbPersIdManager>(source)->append({face(part, 1), face(part, 2)}, nullptr);
  VdmDbObject::openVdmDbObject(part, OdDb::kForWrite)->append(face(part, 3));
  const OdDbDatabasePtr other = m_host.createDatabase();
  const auto cloneInto = [&](OdDbDatabase* target, OdDbIdMapping& mapping) {
    const OdDbObjectId table = target->getBlockTableId();
    return target == m_drawing.get()
               ? m_drawing->deepCloneObjects({block}, table, mapping)
               : m_drawing->wblockCloneObjects({block}, table, mapping, OdDb::kDrcIgnore);
  };
  for (OdDbDatabase* target : {m_drawing.get(), other.get()}) {
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
    ASSERT_EQ(cloneInto(target, *mapping), eOk);
    const auto cloneOf = [&mapping](OdDbObjectId id) {
      OdDbIdPair pair(id);
      return mapping->compute(pair) ? pair.value() : OdDbObjectId::kNull;
    };
    const OdDbObjectId manager = VdmDbPersIdManager::getInstance(cloneOf(block), false);
    const OdDbObjectIdArray clones{cloneOf(ids[0]), cloneOf(ids[1])};
    EXPECT_EQ(open<VdmDbPersIdManager>(manager)->objectDependencyIds(), clones);
    EXPECT_EQ(placeOf(clones[1]), face(cloneOf(part), 2));
    const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(cloneOf(part));
    ASSERT_FALSE(object.isNull());
    EXPECT_EQ(object->ownerId(), VdmDbConstraintManager::getInstance(cloneOf(block), false));
    EXPECT_EQ(object->attachedEntityId(), cloneOf(part));
    EXPECT_EQ(object->persIdDependencies(), clones);
    EXPECT_EQ(object->constraintDependencies()[0].ownerId(), object->objectId());
    EXPECT_EQ(open<VdmDbPersIdManager>(source)->objectDependencyIds(), ids);
  }
}

TEST_F(VdmDbPersIdManagerTest, MergingMovesWhatIsWantedAndErasesTheSource) {
  const OdDbObjectId block = addBlock(m_drawing, L"PART");
  const OdDbObjectId part = addCarrier(block);
  const OdDbObjectId source = VdmDbPersIdManager::getInstance(block, true);
  const OdDbObjectIdArray ids = edit<VdmDbPersIdManager>(source)->append(
      {face(part, 1), face(part, 2), face(m_other, 1)}, nullptr);
  watch({ids[0]});
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  VdmDbReverseIdMapping reverse(*mapping);
  std::unordered_set<OdDbObjectId> merged;
  std::map<OdDbObjectId, OdDbObjectId> replaced;
  EXPECT_NE(raisedBy([&] {
              manager()->mergeManagers(nullptr, *mapping, reverse, merged, false, replaced);
            }),
            eOk);
  expectUndoable([&] {
    manager()->mergeManagers(edit<VdmDbPersIdManager>(source), *mapping, reverse, merged, false,
                             replaced);
  });
  EXPECT_EQ(listed().size(), 5u);
  EXPECT_EQ(ids[0].ownerId(), m_manager);
  EXPECT_TRUE(ids[1].isErased());
  EXPECT_EQ(ids[2].ownerId(), m_manager);
  EXPECT_TRUE(source.isErased());
  EXPECT_EQ(replaced[source], m_manager);
  EXPECT_EQ(merged.size(), 2u);
  EXPECT_EQ(modelObject(part)->persIdDependencies(), OdDbObjectIdArray{ids[0]});
}

TEST_F(VdmDbPersIdManagerTest, OneAmongItsOwnReplacementsStays) {
  m_map.append(m_ids[0], {m_ids[0], m_ids[1]});
  m_map.append(m_ids[2], {m_ids[1]});
  manager()->finishRemap(m_map);
  EXPECT_EQ(listed(), OdDbObjectIdArray({m_ids[0], m_ids[1]}));
}

}  // namespace
