// The update pass: its order, who takes part, what it removes, rolls back and repairs.
#include "platform/base/error.h"
#include "tests/vdm_db/update/update_testing.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_db_assembly_pe.h"

namespace {

using Lines = std::vector<std::string>;

class VdmFeatureUpdateDataTest : public UpdateTest {
 protected:
  VdmFeatureUpdateDataTest() : m_plate(addSolid(box(100.0, 60.0, 10.0))) {
    m_recorder.names[m_plate] = "plate";
  }
  OdDbObjectId onPlate(const char* name) {
    const OdDbObjectId id = addFeature({{facePath(m_plate, ++m_face)}});
    m_recorder.names[id] = name;
    return id;
  }
  // A feature of an insert whose block holds a drill of radius 5.
  OdDbObjectId opening(const char* name, OdGeVector3d at, const wchar_t* layer = L"0") {
    if (m_drill.isNull()) {
      m_drill = addBlock(L"drill");
      addTo(m_drill, newSolid(cylinder(5.0, 40.0, {0.0, 0.0, -20.0})), L"VC_SUBTRACT");
    }
    const OdDbObjectId reference = insert(m_drill, space(), at, layer);
    const OdDbObjectId id = onPlate(name);
    script(id).ownIds.append(reference);
    script(id).opening = {m_plate, reference, {}};
    script(id).prepare = [this, id, reference](VdmFeatureUpdateData& data) {
      VdmUpdateInfo info{m_plate, reference, {}};
      data.fillData(VdmUpdateFeatureInterface::activeOf(VdmFeature::open(id)), id, info);
      EXPECT_EQ(data.featureEntities(id), (OdDbObjectIdArray{m_plate, reference}));
      return false;
    };
    return id;
  }
  [[nodiscard]] bool recorded(const std::string& line) const {
    return std::count(m_recorder.lines.begin(), m_recorder.lines.end(), line) == 1;
  }

  int m_face = 0;
  const OdDbObjectId m_plate;
  OdDbObjectId m_drill;
};

TEST_F(VdmFeatureUpdateDataTest, PhasesRunInOrderAndSolidsTakeTheirTools) {
  const OdDbObjectId hole = opening("hole", {20.0, 30.0, 0.0});
  const OdDbObjectId other = onPlate("other");
  script(other).prepare = [](VdmFeatureUpdateData&) { return true; };
  EXPECT_FALSE(pass({hole, other}, /*force=*/true)) << "no feature said that it changed";
  EXPECT_EQ(
      m_recorder.lines,
      (Lines{"- intake", "take hole: forced", "queued hole", "take other: forced", "done other",
             "- early removal", "- prepare subtract", "- subtract", "cut plate by 1", "- unite",
             "- update", "update hole", "- init", "- late removal", "- dependencies"}));
  EXPECT_EQ(solid(m_plate)->body()->numFaces(), 7u);
  EXPECT_TRUE(script(other).forced);
}

TEST_F(VdmFeatureUpdateDataTest, WithoutAHelperNoSolidIsTouched) {
  const OdDbObjectId hole = onPlate("hole");
  EXPECT_FALSE(pass({}));
  EXPECT_TRUE(m_recorder.lines.empty());
  m_scene.hasHelper = false;
  script(hole).update = [](VdmFeatureUpdateData&) { return true; };
  EXPECT_TRUE(pass({hole}, true) && recorded("abort in prepare subtract"));
  EXPECT_EQ(m_database->numActiveTransactions(), 0u);
}

TEST_F(VdmFeatureUpdateDataTest, FeaturesAreTakenForTheFirstCause) {
  const OdDbObjectId other = addSolid(box(1.0, 1.0, 1.0));
  const OdDbObjectIdArray ids{onPlate("idle"),
                              onPlate("replaced"),
                              onPlate("cloned"),
                              addFeature({}),
                              addFeature({{facePath(m_plate, 4), facePath(other, 1)}}),
                              addFeature({{facePath(other, 2)}}),
                              opening("hole", {})};
  m_recorder.names.insert({{ids[3], "none"}, {ids[4], "two"}, {ids[5], "moved"}});
  const auto taken = [&] {
    pass(ids);
    std::erase_if(m_recorder.lines, [](const std::string& line) {
      return line.rfind("take", 0) != 0 && line.rfind("skip", 0) != 0;
    });
    return m_recorder.lines;
  };
  EXPECT_EQ(taken(), (Lines{"skip idle", "skip replaced", "skip cloned", "take none: several",
                            "take two: several", "skip moved", "skip hole"}));
  m_map.append(dependencies(ids[1])[0], {dependencies(ids[1])[0]});
  m_map.appendClone(dependencies(ids[2])[0]);
  m_map.addTransformedObject(other, OdGeMatrix3d::kIdentity, false);
  m_map.addTransformedObject(script(ids[6]).ownIds[0], OdGeMatrix3d::kIdentity, false);
  m_map.addTransformedObject(m_plate, OdGeMatrix3d::kIdentity, /*marked=*/true);
  EXPECT_EQ(taken(), (Lines{"skip idle", "take replaced: replaced", "take cloned: cloned",
                            "take none: several", "take two: moved", "take moved: moved",
                            "take hole: insert moved"}));
  EXPECT_FALSE(script(ids[5]).forced);
  script(ids[0]).recalculates = true;
  EXPECT_EQ(taken()[0], "skip idle") << "no constraints were calculated";
  pass(ids, /*force=*/false, /*constraintsCalculated=*/true);
  EXPECT_TRUE(recorded("take idle: constraint") && script(ids[0]).forced);
}

/// A host that knows of one changed entity.
struct ChangingHost : VdmUpdateHost {
  OdDbObjectId changed;
  [[nodiscard]] bool hasChangedEntities() const override { return !changed.isNull(); }
  [[nodiscard]] bool concerns(const VdmFeature&, const OdDbObjectId& entity) const override {
    return entity == changed;
  }
};

TEST_F(VdmFeatureUpdateDataTest, TheHostSaysWhichEntitiesChanged) {
  const OdDbObjectId block = addBlock(L"part");
  const OdDbObjectId inner = addTo(block, newSolid(box(1.0, 1.0, 1.0)), L"0");
  const OdDbFullSubentPath through(OdDbObjectIdArray{insert(block, space()), inner},
                                   facePath(inner, 1).subentId());
  const OdDbObjectId within = addFeature({{through}});
  onPlate("outside");
  m_recorder.names[within] = "within";
  m_recorder.names[addFeature({})] = "none";
  ChangingHost host;
  VdmUpdateContext context;
  context.observer = &m_recorder;
  context.host = &host;
  EXPECT_FALSE(manager()->updateFeatures(context));
  EXPECT_TRUE(m_recorder.lines.empty()) << "nothing is due";
  host.changed = inner;
  manager()->updateFeatures(context);
  EXPECT_TRUE(recorded("take within: changed") && recorded("skip outside"));
  EXPECT_TRUE(recorded("take none: several"));
  m_recorder.lines.clear();
  host.changed = m_plate;
  context.isFollowUp = true;
  manager()->updateFeatures(context);
  EXPECT_TRUE(recorded("skip within") && recorded("take outside: changed"));
  EXPECT_TRUE(recorded("skip none")) << "several entities are no news";
}

TEST_F(VdmFeatureUpdateDataTest, TheContextComesToTheHelperAndKeepsItsStatus) {
  VdmUpdateContext context;
  context.constraintsWereCalculated = context.constraintsWereCalculatedSuccesfully = true;
  const OdDbObjectId id = onPlate("asked");
  bool wasCalculated = true;
  script(id).update = [&](VdmFeatureUpdateData& data) {
    wasCalculated = data.constraintsWereCalculated();
    EXPECT_EQ(&data.context(), &context);
    return data.replacementMap() != nullptr;
  };
  VdmFeatureUpdateData data(manager(), context);
  EXPECT_EQ(m_scene.contextOfHelper, &context);
  EXPECT_TRUE(manager()->update({id}, data));
  EXPECT_FALSE(wasCalculated) << "a pass over given features knows nothing of constraints";
  EXPECT_TRUE(data.constraintsWereCalculated() && data.constraintsWereCalculatedSuccesfully());
  EXPECT_EQ(data.replacementMap(), nullptr) << "the map ended with the pass";
}

TEST_F(VdmFeatureUpdateDataTest, AFailedSolidRollsAllOfThemBackAndThePassGoesOn) {
  const OdDbObjectId hole = opening("hole", {20.0, 30.0, 0.0});
  const OdDbObjectId block = addSolid(box(1.0, 1.0, 1.0));
  m_recorder.names[block] = "block";
  const OdDbObjectId larger = addSolid(box(90.0, 90.0, 90.0, {-50.0, -50.0, -50.0}));
  const OdBinaryData before = bytesOf(solid(m_plate)->body());
  const OdDbObjectId all = onPlate("all");
  script(all).prepare = [&](VdmFeatureUpdateData& data) {
    VdmOpeningEntities entities{script(hole).ownIds[0].openAs<OdDbBlockReference>(),
                                {{larger, {OdGeMatrix3d::kIdentity}}},
                                {},
                                solid(block)};
    return !data.addCopiesToUpdateData(nullptr, all, entities);
  };
  script(all).update = [](VdmFeatureUpdateData& data) { return data.hasSolidsModifications(); };
  EXPECT_TRUE(pass({hole, all}, true)) << "the queue of the failed operation stays";
  EXPECT_TRUE(recorded("fail block") && recorded("abort in subtract") && !recorded("- unite"));
  EXPECT_EQ(bytesOf(solid(m_plate)->body()), before);
  m_scene.preparesSubtract = false;
  pass({hole}, true);
  EXPECT_TRUE(recorded("abort in prepare subtract") && !recorded("- subtract"));
  EXPECT_EQ(bytesOf(solid(m_plate)->body()), before);
}

TEST_F(VdmFeatureUpdateDataTest, TheHelperHearsOfEveryAbortWithoutAnObserver) {
  const OdDbObjectId hole = opening("hole", {20.0, 30.0, 0.0});
  const OdBinaryData before = bytesOf(solid(m_plate)->body());
  const auto heard = [&] {
    m_scene.abortsHeardByHelper.clear();
    manager()->update({hole});
    EXPECT_EQ(bytesOf(solid(m_plate)->body()), before);
    EXPECT_EQ(m_database->numActiveTransactions(), 0u);
    return m_scene.abortsHeardByHelper;
  };
  m_scene.acceptsSolids = false;
  EXPECT_EQ(heard(), Lines{"unite: "}) << "what was cut is not kept";
  m_scene.preparesSubtract = false;
  EXPECT_EQ(heard(), Lines{"prepare subtract: "});
  m_scene.beforeSolids = [] { throw std::runtime_error("out of order"); };
  EXPECT_EQ(heard(), Lines{"prepare subtract: out of order"});
  m_scene.beforeSolids = [] { throw 7; };
  EXPECT_EQ(heard(), Lines{"prepare subtract: an error of an unknown type was raised"});
  m_scene.beforeSolids = nullptr;
  m_scene.preparesSubtract = m_scene.acceptsSolids = true;
  m_scene.abortsHeardByHelper.clear();
  manager()->update({hole});
  EXPECT_TRUE(m_scene.abortsHeardByHelper.empty());
  EXPECT_EQ(solid(m_plate)->body()->numFaces(), 7u);
}

// Whatever a feature raises, and wherever, is its own failure: the others have their turn, and
// nothing is done of what it had gathered.
TEST_F(VdmFeatureUpdateDataTest, AFeatureThatRaisesFailsAlone) {
  const std::vector<std::function<void()>> raises = {
      [] { throw OdError(eInvalidInput, OdString("no good")); },
      [] { throw std::length_error("no good"); },
      [] { throw "no good"; },
  };
  for (const std::function<void()>& raise : raises) {
    const OdDbObjectId plate = addSolid(box(100.0, 60.0, 10.0));
    m_recorder.names[plate] = "other plate";
    const OdDbObjectId bad = opening("bad", {60.0, 30.0, 0.0});
    const OdDbObjectId good = opening("good", {20.0, 30.0, 0.0});
    script(bad).prepare = [&, gather = script(bad).prepare](VdmFeatureUpdateData& data) {
      gather(data);
      data.appendSubEntityToRemove(bad, facePath(plate, 1));
      data.appendFeatureToEnt(plate, bad);
      data.appendFeatureToRemove(bad);
      raise();
      return false;
    };
    pass({bad, good}, true);
    EXPECT_TRUE(recorded("failed bad") && !recorded("queued bad") && !recorded("update bad"));
    EXPECT_TRUE(recorded("cut plate by 1") && recorded("update good"));
    EXPECT_EQ(solid(m_plate)->body()->numFaces(), 7u) << "one hole, and not that of the other";
    EXPECT_FALSE(bad.isErased()) << "what it asked for is withdrawn";
    script(bad).prepare = [](VdmFeatureUpdateData&) { return false; };
    script(bad).update = [&](VdmFeatureUpdateData&) {
      raise();
      return false;
    };
    pass({bad, good}, true);
    EXPECT_TRUE(recorded("failed bad") && recorded("update good"));
    bad.safeOpenObject(OdDb::kForWrite)->erase();
    good.safeOpenObject(OdDb::kForWrite)->erase();
  }
  takeAssertions();
}

// The solids are kept by then, so the caller hears nothing but the report, and the pass goes on.
TEST_F(VdmFeatureUpdateDataTest, AHelperThatRaisesOnceSolidsAreKeptDoesNotEndThePass) {
  const OdDbObjectId hole = opening("hole", {20.0, 30.0, 0.0});
  int initialised = 0;
  script(hole).init = [&](VdmFeatureUpdateData&) { return ++initialised > 0; };
  const std::vector<std::function<void()>> raises = {
      [] { throw OdError(eInvalidInput, OdString("no good")); }, [] { throw 7; }};
  for (const std::function<void()>& raise : raises) {
    m_scene.beforeInit = raise;
    EXPECT_NO_THROW(EXPECT_TRUE(pass({hole}, true)));
    EXPECT_TRUE(recorded("cut plate by 1") && recorded("failed ") && recorded("- dependencies"));
    EXPECT_EQ(takeAssertions().size(), 1u);
    EXPECT_NO_THROW((void)manager()->update({hole})) << "without an observer";
    takeAssertions();
  }
  EXPECT_EQ(initialised, 4);
}

TEST_F(VdmFeatureUpdateDataTest, CondemnedFeaturesGoBeforeTheSolidsOrAfterThem) {
  const OdDbObjectId early = onPlate("early");
  const OdDbObjectId late = onPlate("late");
  const OdDbObjectId stays = onPlate("stays");
  const OdDbObjectId entity = addSolid(box(1.0, 1.0, 1.0));
  script(early).prepare = [&](VdmFeatureUpdateData& data) {
    data.appendFeatureToRemove(early);
    data.appendEntityToCheck(entity);
    data.appendEntityToCheck(m_plate);
    return false;
  };
  script(stays).update = [&](VdmFeatureUpdateData& data) -> bool {
    EXPECT_EQ(data.featureIds(), (OdDbObjectIdArray{stays, late}));
    data.appendFeatureToRemove(late);
    throw OdError(eInvalidInput, OdString("no good"));
  };
  EXPECT_TRUE(pass({early, stays, late}, true) && recorded("update late"));
  const Lines& lines = m_recorder.lines;
  const auto at = [&](const char* line) { return std::find(lines.begin(), lines.end(), line); };
  EXPECT_LT(at("erase early"), at("- prepare subtract"));
  EXPECT_LT(at("failed stays"), at("update late"));
  EXPECT_LT(at("- late removal"), at("erase late"));
  EXPECT_EQ(takeAssertions().size(), 1u) << "the failed update";
  EXPECT_TRUE(early.isErased() && late.isErased() && entity.isErased());
  EXPECT_FALSE(stays.isErased() || m_plate.isErased());
}

TEST_F(VdmFeatureUpdateDataTest, InterfacesTakeSubentitiesUntilNoneIsLeft) {
  const OdDbObjectIdArray ids{opening("hole", {}, kVdmSuppressLayer.c_str()),
                              opening("more", {}, kVdmSuppressLayer.c_str())};
  std::vector<std::size_t> offered;
  for (const OdDbObjectId& id : ids) {
    script(id).prepare = [this, id, fill = script(id).prepare](VdmFeatureUpdateData& data) {
      const OdDbFullSubentPath outside(OdDbObjectIdArray{script(id).ownIds[0], m_plate},
                                       facePath(m_plate, 3).subentId());
      data.appendSubEntitiesToRemove(id, {facePath(m_plate, 1), facePath(m_plate, 2),
                                          facePath(m_plate, 0), OdDbFullSubentPath(), outside});
      return fill(data);
    };
    script(id).removeSubents = [&](VdmFeatureSubentsToRemove& record) {
      offered.push_back(record.subents.size());
      record.subents.clear();
      return record.entity->isWriteEnabled();
    };
  }
  EXPECT_TRUE(pass(ids, true));
  EXPECT_EQ(offered, std::vector<std::size_t>{2});
  const std::string simple = "geometry can be removed only with simple paths!";
  EXPECT_EQ(takeAssertions(), (Lines{"subent type must be not empty!", simple, simple}));
  EXPECT_FALSE(recorded("cut plate by 1")) << "suppressed inserts add nothing";
  m_scene.removesSubents = true;
  EXPECT_TRUE(pass(ids, true));
  EXPECT_EQ(offered.size(), 1u) << "the helper did it";
}

TEST_F(VdmFeatureUpdateDataTest, OpeningsWithoutTheirPartsAreCondemned) {
  const OdDbObjectIdArray ids{opening("lost", {}), opening("filled", {}), opening("based", {})};
  addTo(m_drill, newSolid(box(1.0, 1.0, 1.0)), L"BIM_UNITE");
  script(ids[0]).ownIds[0].safeOpenObject(OdDb::kForWrite)->erase();
  script(ids[1]).needsBaseFaces = true;
  pass(ids, true);
  EXPECT_TRUE(ids[0].isErased() && ids[1].isErased());
  EXPECT_FALSE(ids[2].isErased());
}

TEST_F(VdmFeatureUpdateDataTest, ReferencesFollowTheirReplacements) {
  const OdDbObjectId hole = addFeature({{facePath(m_plate, 1)},
                                        {facePath(m_plate, 2)},
                                        {facePath(m_plate, 3)},
                                        {facePath(m_plate, 4)}});
  m_recorder.names[hole] = "hole";
  const OdDbObjectId first = dependencies(hole, 0)[0];
  const OdDbObjectId second = dependencies(hole, 1)[0];
  const OdDbObjectId third = dependencies(hole, 2)[0];
  const OdDbObjectId shared = dependencies(hole, 3)[0];
  m_map.append(first, {first});
  m_map.append(second, {shared, third});
  m_map.append(third, {shared, third});
  pass({hole});
  EXPECT_EQ(m_erase, OdDbObjectIdArray{second});
  EXPECT_TRUE(recorded("drop hole")) << "two had come to mean the same";
  ASSERT_EQ(numReactors(hole), 3u);
  EXPECT_EQ(dependencies(hole, 0), OdDbObjectIdArray{first});
  EXPECT_EQ(dependencies(hole, 1).size(), 2u);
  EXPECT_EQ(dependencies(hole, 2), OdDbObjectIdArray{shared});
}

TEST_F(VdmFeatureUpdateDataTest, TheAssemblyModuleIsAskedForItsPart) {
  struct Assembly : OdStaticRxObject<VdmDbAssemblyPE> {
    bool collectFromFeature(VdmFeature* feature, const VdmMatchingFaces&, VdmFeatureUpdateData&,
                            VdmUpdateInfo&, bool flag) override {
      return feature != nullptr && flag;
    }
  } assembly;
  const VdmFeaturePtr feature = VdmFeature::open(onPlate("asked"));
  VdmFeatureUpdateData data(nullptr);
  VdmUpdateInfo info;
  EXPECT_FALSE(data.collectFromFeature(feature, {}, info, true)) << "nobody is there";
  VdmDbFeatureManager::desc()->addX(VdmDbAssemblyPE::desc(), &assembly);
  EXPECT_TRUE(data.collectFromFeature(feature, {}, info, true));
  EXPECT_FALSE(data.collectFromFeature(feature, {}, info, false));
  VdmDbFeatureManager::desc()->delX(VdmDbAssemblyPE::desc());
}

}  // namespace
