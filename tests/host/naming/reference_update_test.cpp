// References in a drawing through cuts, moves, closed and reopened holes, replaced bodies.
#include "host/naming/reference_update.h"

#include <functional>

#include "host/naming/pers_id_manager_pe.h"
#include "host/naming/reference_query.h"
#include "host/naming/subent_name.h"
#include "platform/modeler/db_3d_solid.h"
#include "tests/host/naming/naming_fixture.h"
#include "tests/support/module_testing.h"
#include "tests/support/solid_drawing_testing.h"
#include "tests/support/test_folder.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {
namespace {

/// The module with the naming of this host.
class NamingRuntime : public virtual SolidRuntime, public virtual VdmModule {
 public:
  NamingRuntime() { registerNaming(); }
  ~NamingRuntime() { unregisterNaming(); }
};

class VdmReferenceUpdate : public NamingRuntime, public DrawingVerbs, public NamingTest {
 protected:
  VdmReferenceUpdate() : m_drawing(m_services.createDatabase()) {
    prepareBlock(m_drawing->getModelSpaceId());
  }

  static void prepareBlock(const OdDbObjectId& block) {
    (void)VdmDbPersIdManager::getInstance(block, /*create=*/true);
    (void)VdmDbConstraintManager::getInstance(block, /*create=*/true);
  }
  OdDbObjectId addSolid(const OdModelerBodyPtr& body, OdDbObjectId block = {}) const {
    if (block.isNull()) block = m_drawing->getModelSpaceId();
    const OdDb3dSolidPtr entity = OdDb3dSolid::createObject();
    entity->setBody(body);
    return addTo(block, entity);
  }
  static OdDb3dSolidPtr solid(const OdDbObjectId& id, OdDb::OpenMode mode = OdDb::kForWrite) {
    return id.safeOpenAs<OdDb3dSolid>(mode);
  }
  static OdModelerBodyPtr bodyOfSolid(const OdDbObjectId& id) {
    return solid(id, OdDb::kForRead)->body();
  }
  static VdmDbPersIdManagerPtr manager(const OdDbObjectId& block) {
    return VdmDbPersIdManager::getInstance(block, false)
        .safeOpenAs<VdmDbPersIdManager>(OdDb::kForWrite);
  }
  /// A watched reference.
  OdDbObjectId refer(const OdDbFullSubentPath& path) const {
    const OdDbObjectId block = path.objectIds().first().ownerId();
    const OdDbObjectId id = manager(block)->append({path}, nullptr)[0];
    const VdmDbPersIdReactorPtr reactor = VdmDbPersIdReactor::createObject();
    m_drawing->addOdDbObject(reactor, block);
    reactor->addPersIds({id});
    return id;
  }
  OdDbObjectId refer(const OdDbObjectId& entity, Type type, const OdGePoint3d& at) const {
    const OdUInt32 index = nearest(*bodyOfSolid(entity), type, at);
    EXPECT_NE(index, 0u);
    return refer(OdDbFullSubentPath(
        entity, OdDbSubentId(static_cast<OdDb::SubentType>(type), OdInt64{index})));
  }
  /// What an edit does to the references, within one undo step.
  ReferenceUpdateReport edit(const std::function<void(ReferenceUpdate&)>& change) {
    m_drawing->startUndoRecord();
    OdSolidJournal journal;
    m_map.clear();
    ReferenceUpdate update(m_map);
    change(update);
    return update.settle(journal.changes());
  }
  ReferenceUpdateReport cutSolid(const OdDbObjectId& id,
                                 const std::vector<OdModelerBodyPtr>& tools) {
    return edit([&](ReferenceUpdate&) {
      ASSERT_TRUE(succeeded(solid(id)->booleanOper(BooleanKind::kSubtract, tools)));
    });
  }
  /// Whether the reference leads to a subentity that holds the point.
  static testing::AssertionResult leadsTo(const OdDbObjectId& dependency, const OdGePoint3d& at) {
    const ResolvedReference found = resolveReference(dependency);
    if (!found.resolved()) return testing::AssertionFailure() << found.note.utf8();
    const OdDbSubentId& subent = found.path.subentId();
    const double distance =
        bodyOfSolid(found.solid)
            ->distanceTo({static_cast<Type>(subent.type()), static_cast<OdUInt32>(subent.index())},
                         at);
    if (distance < 1e-6) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it is " << distance << " away";
  }
  static ReferenceGrade gradeOf(const OdDbObjectId& dependency) {
    return resolveReference(dependency).grade;
  }

  // ---- One hole and its references

  struct Hole {
    OdModelerBodyPtr tool;
    OdModelerBodyPtr plug;
    OdGePoint3d centre;
    OdDbHandle feature;
  };
  static Hole holeAt(double x, double y, OdUInt64 feature) {
    Hole hole{cylinder(4.0, 20.0, {x, y, -5.0}), nullptr, {x, y, 0.0}, feature};
    hole.plug = combine(BooleanKind::kIntersect, plate(), {hole.tool});
    return hole;
  }
  struct HoleReferences {
    OdDbObjectId wall, topRim, bottomRim;
  };
  HoleReferences referToHole(const OdDbObjectId& entity, const OdGePoint3d& centre) const {
    const OdGeVector3d side(-4.0, 0.0, 0.0);
    return {refer(entity, Type::kFace, centre + side + OdGeVector3d(0, 0, 5)),
            refer(entity, Type::kEdge, centre + side + OdGeVector3d(0, 0, 10)),
            refer(entity, Type::kEdge, centre + side)};
  }
  static void expectAtHole(const HoleReferences& refs, const OdGePoint3d& centre) {
    const OdGeVector3d side(-4.0, 0.0, 0.0);
    EXPECT_TRUE(leadsTo(refs.wall, centre + side + OdGeVector3d(0, 0, 5)));
    EXPECT_TRUE(leadsTo(refs.topRim, centre + side + OdGeVector3d(0, 0, 10)));
    EXPECT_TRUE(leadsTo(refs.bottomRim, centre + side));
  }
  /// Heals the old places and cuts the new ones (none for a null tool), as a pass does.
  ReferenceUpdateReport recut(const OdDbObjectId& entity,
                              const std::vector<std::pair<Hole, Hole>>& moves) {
    return edit([&](ReferenceUpdate& update) {
      const OdModelerBodyPtr before = bodyOfSolid(entity);
      std::vector<OdModelerBodyPtr> plugs;
      std::vector<OdModelerBodyPtr> tools;
      for (const auto& [old, now] : moves) {
        if (old.plug) plugs.push_back(old.plug);
        if (now.tool) tools.push_back(now.tool);
      }
      if (!plugs.empty()) {
        ASSERT_TRUE(succeeded(solid(entity)->booleanOper(BooleanKind::kUnite, plugs)));
      }
      if (!tools.empty()) {
        ASSERT_TRUE(succeeded(solid(entity)->booleanOper(BooleanKind::kSubtract, tools)));
      }
      const BodyLineage lineage(OdSolidJournal::current()->changes());
      for (const auto& [old, now] : moves) {
        FaceRespawn row;
        row.feature = old.tool ? old.feature : now.feature;
        if (old.tool) row.oldFace = faceAt(*before, old.centre + OdGeVector3d(-4, 0, 5));
        if (now.tool) {
          row.toolFace = faceOfKind(*now.tool, OdModelerSurfaceKind::kCylinder);
          row.newFaces = lineage.facesFrom(now.tool, row.toolFace, bodyOfSolid(entity));
        } else {
          row.toolFace = faceOfKind(*old.tool, OdModelerSurfaceKind::kCylinder);
        }
        if (old.tool && now.tool) {
          row.motion = OdGeMatrix3d::translation(now.centre - old.centre);
        }
        update.addRespawn(entity, row);
      }
    });
  }

  FilingHost m_services;
  OdDbDatabasePtr m_drawing;
  VdmDependenciesReplacementMap m_map;
};

TEST_F(VdmReferenceUpdate, CutsAreFollowedUndoneAndDoneAgain) {
  const OdDbObjectId entity = addSolid(plate());
  const OdGePoint3d places[] = {{300, 100, 5}, {300, 200, 5}, {0, 0, 10}, {150, 100, 10}};
  const Type types[] = {Type::kFace, Type::kEdge, Type::kVertex, Type::kFace};
  std::vector<OdDbObjectId> refs;
  for (std::size_t i = 0; i < 4; ++i) refs.push_back(refer(entity, types[i], places[i]));
  EXPECT_EQ(refer(entity, Type::kFace, places[0]), refs[0]) << "found, not made twice";
  const auto expectAll = [&] {
    for (std::size_t i = 0; i < 4; ++i) EXPECT_TRUE(leadsTo(refs[i], places[i])) << i;
  };
  const ReferenceUpdateReport report = cutSolid(entity, drills(3, 3));
  EXPECT_EQ(report.looked, 4u);
  expectAll();
  EXPECT_EQ(gradeOf(refs[0]), ReferenceGrade::kExact);
  EXPECT_EQ(gradeOf(refs[3]), ReferenceGrade::kByLineage) << "the top got holes";
  ASSERT_EQ(m_drawing->undo(), eOk);
  expectAll();
  EXPECT_EQ(gradeOf(refs[3]), ReferenceGrade::kExact);
  ASSERT_EQ(m_drawing->redo(), eOk);
  expectAll();
  const std::vector<OdString> story = explainReference(refs[3]).lines;
  ASSERT_EQ(story.size(), 3u);
  EXPECT_TRUE(story[1].find(L"boolean") == 0) << story[1].utf8();
}

TEST_F(VdmReferenceUpdate, ManyReferencesFollowInPortionsAndResolveTogether) {
  const std::vector<OdModelerBodyPtr> tools = drills(12, 7);
  const OdDbObjectId entity = addSolid(drilled(tools));
  const OdModelerBodyPtr before = bodyOfSolid(entity);
  OdDbObjectIdArray refs;
  std::vector<OdGePoint3d> places;
  for (OdUInt32 i = 1; i <= before->numEdges(); ++i) {
    refs.append(refer(OdDbFullSubentPath(entity, OdDbSubentId(OdDb::kEdgeSubentType, i))));
    places.push_back(before->edge(i).midPoint);
  }
  ASSERT_GT(refs.size(), 256u);
  const ReferenceUpdateReport report = cutSolid(entity, drills(1, 1, 20.0, 20.0));
  EXPECT_GT(report.renumbered, 0u);
  EXPECT_TRUE(report.changes.empty());
  cutSolid(entity, {box(20.0, 220.0, 30.0, {290.0, -10.0, -5.0})});
  refs.append(OdDbObjectId());
  const std::vector<ResolvedReference> found = resolveReferences({refs.begin(), refs.size()});
  ASSERT_EQ(found.size(), refs.size());
  for (std::size_t i = 0; i < refs.size(); ++i) {
    const ResolvedReference one = resolveReference(refs[static_cast<OdUInt32>(i)]);
    EXPECT_EQ(found[i].dependency, one.dependency);
    EXPECT_EQ(found[i].path, one.path);
    EXPECT_EQ(found[i].grade, one.grade);
    EXPECT_EQ(found[i].note, one.note);
    const bool isCutOff = i < places.size() && places[i].x > 290.0;
    EXPECT_EQ(one.resolved(), i < places.size() && !isCutOff) << i;
    if (one.resolved() && places[i].x < 280.0) {
      EXPECT_TRUE(leadsTo(one.dependency, places[i]));
    }
  }
}

TEST_F(VdmReferenceUpdate, SignaturesOfLargeFacesAreRenewedByAndBy) {
  const OdDbObjectId entity = addSolid(drilled(drills(10, 6)));
  const OdDbObjectId top = refer(entity, Type::kFace, {5, 100, 10});
  const auto remembered = [&] { return explainReference(top).record.signature; };
  const auto expectRenewed = [&](OdUInt16 bounds) {
    const OdModelerBodyPtr body = bodyOfSolid(entity);
    const SubentSignature now = signatureOf(*body, {Type::kFace, faceAt(*body, {5, 100, 10})});
    EXPECT_EQ(now.bounds, bounds);
    EXPECT_TRUE(isIdentical(remembered(), now, MatchTolerance::of(*body)));
    EXPECT_EQ(remembered().bounds, bounds);
  };
  expectRenewed(64);
  cutSolid(entity, drills(2, 1, 30.0, 150.0));
  EXPECT_EQ(remembered().bounds, 64) << "two more holes of 66 are no matter";
  cutSolid(entity, drills(8, 1, 70.0, 150.0));
  expectRenewed(74);
}

TEST_F(VdmReferenceUpdate, PartsOfALargeFaceGetSignaturesOfTheirOwn) {
  const OdDbObjectId entity = addSolid(drilled(drills(12, 6)));
  const OdDbObjectId top = refer(entity, Type::kFace, {5, 100, 10});
  // Nearly all edges stay on one side of the slot.
  cutSolid(entity, {box(20.0, 220.0, 5.0, {265.0, -10.0, 5.0})});
  const OdDbObjectIdArray parts = m_map.getReplacedWith(top);
  ASSERT_EQ(parts.size(), 2u);
  const OdModelerBodyPtr body = bodyOfSolid(entity);
  for (const OdDbObjectId& part : parts) {
    const ReferenceStory story = explainReference(part);
    const OdInt64 index = story.now.path.subentId().index();
    const SubentSignature now = signatureOf(*body, {Type::kFace, static_cast<OdUInt32>(index)});
    EXPECT_TRUE(isIdentical(story.record.signature, now, MatchTolerance::of(*body))) << index;
    EXPECT_EQ(story.record.signature.bounds, now.bounds);
    EXPECT_EQ(story.record.lastIndex, index);
  }
}

TEST_F(VdmReferenceUpdate, BlendsAreTheCauseOfWhatTheyTouch) {
  const OdDbObjectId entity = addSolid(plate());
  const OdDbObjectId top = refer(entity, Type::kFace, {150, 100, 10});
  const OdDbObjectId side = refer(entity, Type::kFace, {300, 100, 5});
  const OdDbObjectId corner = refer(entity, Type::kEdge, {0, 0, 5});
  const OdUInt32 edge = edgeAt(*bodyOfSolid(entity), {0, 0, 5});
  const ReferenceUpdateReport report = edit([&](ReferenceUpdate&) {
    ASSERT_TRUE(succeeded(solid(entity)->filletEdges({&edge, 1}, 3.0)));
  });
  ASSERT_EQ(report.changes.size(), 2u) << "the side keeps its boundary";
  EXPECT_EQ(report.lost, 1u);
  for (const ReferenceChange& change : report.changes) {
    EXPECT_EQ(change.cause, LineageCause::kBlend);
    const LineageStep step = explainReference(change.dependency).record.steps.back();
    EXPECT_EQ(step.cause, LineageCause::kBlend);
    EXPECT_EQ(step.grade, change.grade);
  }
  EXPECT_EQ(gradeOf(top), ReferenceGrade::kByLineage);
  EXPECT_EQ(gradeOf(side), ReferenceGrade::kExact);
  EXPECT_EQ(gradeOf(corner), ReferenceGrade::kLost);
  // A cut before the blend in the same edit does not hide it, nor does one after it.
  const ReferenceUpdateReport mixed = edit([&](ReferenceUpdate&) {
    const auto cutWith = [&](const OdModelerBodyPtr& tool) {
      ASSERT_TRUE(succeeded(solid(entity)->booleanOper(BooleanKind::kSubtract, {&tool, 1})));
    };
    cutWith(cylinder(4.0, 20.0, {60.0, 60.0, -5.0}));
    const OdUInt32 next = edgeAt(*bodyOfSolid(entity), {300, 200, 5});
    ASSERT_TRUE(succeeded(solid(entity)->filletEdges({&next, 1}, 3.0)));
    cutWith(cylinder(4.0, 20.0, {90.0, 60.0, -5.0}));
  });
  ASSERT_FALSE(mixed.changes.empty());
  for (const ReferenceChange& change : mixed.changes) EXPECT_EQ(change.cause, LineageCause::kBlend);
}

TEST_F(VdmReferenceUpdate, SplitsAndMergesReachTheModule) {
  const OdDbObjectId entity = addSolid(plate());
  const OdDbObjectId top = refer(entity, Type::kFace, {150, 100, 10});
  cutSolid(entity, {box(20.0, 220.0, 5.0, {140.0, -10.0, 5.0})});
  const OdDbObjectIdArray parts = m_map.getReplacedWith(top);
  ASSERT_EQ(parts.size(), 2u);
  for (const OdDbObjectId& part : parts) EXPECT_EQ(gradeOf(part), ReferenceGrade::kSplit);
  EXPECT_NE(bool(leadsTo(parts[0], {10, 100, 10})), bool(leadsTo(parts[1], {10, 100, 10})));
  // What the module's features do with the map, by hand.
  for (const OdDbObjectId& part : parts) {
    const VdmDbPersIdReactorPtr reactor = VdmDbPersIdReactor::createObject();
    m_drawing->addOdDbObject(reactor, m_drawing->getModelSpaceId());
    reactor->addPersIds({part});
  }
  edit([&](ReferenceUpdate&) {
    const OdModelerBodyPtr fill = box(20.0, 200.0, 5.0, {140.0, 0.0, 5.0});
    ASSERT_TRUE(succeeded(solid(entity)->booleanOper(BooleanKind::kUnite, {&fill, 1})));
  });
  const OdDbObjectIdArray whole = m_map.getReplacedWith(parts[0]);
  ASSERT_EQ(whole.size(), 1u);
  EXPECT_EQ(m_map.getReplacedWith(parts[1]), whole);
  EXPECT_EQ(gradeOf(whole[0]), ReferenceGrade::kMerged);
  EXPECT_TRUE(leadsTo(whole[0], {150, 100, 10}));
}

TEST_F(VdmReferenceUpdate, DependenciesOfConstraintsFollowToo) {
  const OdDbObjectId entity = addSolid(plate());
  const OdDbObjectId side = refer(entity, Type::kFace, {300, 100, 5});
  const auto faceOf = [&](const OdGePoint3d& at) {
    return OdDbFullSubentPath(
        entity, OdDbSubentId(OdDb::kFaceSubentType, faceAt(*bodyOfSolid(entity), at)));
  };
  const auto own = [&](const OdGePoint3d& at) {
    return VdmDbObject::openVdmDbObject(entity, OdDb::kForWrite)->append(faceOf(at));
  };
  const OdDbObjectId sameSide = own({300, 100, 5});
  const OdDbObjectId top = own({150, 100, 10});
  cutSolid(entity, drills(3, 3));
  cutSolid(entity, {box(20.0, 220.0, 5.0, {200.0, -10.0, 5.0})});
  EXPECT_TRUE(leadsTo(side, {300, 100, 5}));
  EXPECT_TRUE(leadsTo(sameSide, {300, 100, 5}));
  EXPECT_TRUE(leadsTo(top, {100, 100, 10})) << "nothing would follow two: the larger part";
  EXPECT_EQ(gradeOf(top), ReferenceGrade::kSplit);
  EXPECT_TRUE(m_map.isEmptyReplacementDeps()) << "what meets is not merged across owners";
}

TEST_F(VdmReferenceUpdate, OpeningsMoveSwapCloseAndComeBack) {
  const Hole a = holeAt(60, 60, 0x71);
  const Hole b = holeAt(160, 60, 0x72);
  const OdDbObjectId entity = addSolid(drilled({a.tool, b.tool}));
  const HoleReferences refsA = referToHole(entity, a.centre);
  const HoleReferences refsB = referToHole(entity, b.centre);
  // Moved.
  Hole a2 = holeAt(200, 150, 0x71);
  recut(entity, {{a, a2}});
  expectAtHole(refsA, a2.centre);
  expectAtHole(refsB, b.centre);
  EXPECT_EQ(gradeOf(refsA.wall), ReferenceGrade::kByLineage);
  // Two exchange their places: each reference follows its hole.
  const Hole aAtB = holeAt(160, 60, 0x71);
  const Hole bAtA = holeAt(200, 150, 0x72);
  recut(entity, {{a2, aAtB}, {b, bAtA}});
  expectAtHole(refsA, aAtB.centre);
  expectAtHole(refsB, bAtA.centre);
  // Closed: lost, each with a number of its own; and again after storing.
  const ReferenceUpdateReport closed = recut(entity, {{aAtB, Hole()}});
  EXPECT_EQ(closed.lost, 3u);
  for (const OdDbObjectId& id : {refsA.wall, refsA.topRim, refsA.bottomRim}) {
    EXPECT_EQ(gradeOf(id), ReferenceGrade::kLost);
    EXPECT_EQ(resolveReference(id).path.subentId().index(), unresolvedIndexOf(id));
  }
  expectAtHole(refsB, bAtA.centre);
  // Other work in between, then the opening comes back.
  cutSolid(entity, {cylinder(6.0, 30.0, {30.0, 150.0, -5.0})});
  recut(entity, {{Hole(), aAtB}});
  expectAtHole(refsA, aAtB.centre);
  EXPECT_EQ(explainReference(refsA.wall).record.birth.feature, a.feature);
}

TEST_F(VdmReferenceUpdate, BodiesReplacedWithAndWithoutAJournal) {
  const std::vector<OdModelerBodyPtr> tools = drills(4, 3);
  const OdDbObjectId entity = addSolid(drilled(tools));
  const OdDbObjectId wall = refer(entity, Type::kFace, {26, 30, 5});
  const OdDbObjectId closed = refer(entity, Type::kFace, {46, 30, 5});
  const OdDbObjectId rim = refer(entity, Type::kEdge, {26, 30, 10});
  std::vector<OdModelerBodyPtr> fewer = tools;
  fewer.erase(fewer.begin() + 3);
  std::reverse(fewer.begin(), fewer.end());
  const ReferenceUpdateReport report =
      edit([&](ReferenceUpdate&) { solid(entity)->setBody(drilled(fewer)); });
  EXPECT_EQ(report.lost, 1u);
  EXPECT_TRUE(leadsTo(wall, {26, 30, 5}));
  EXPECT_TRUE(leadsTo(rim, {26, 30, 10}));
  EXPECT_EQ(gradeOf(wall), ReferenceGrade::kBySignature);
  EXPECT_EQ(gradeOf(closed), ReferenceGrade::kLost);
  // The solid moves under a journal, then it is edited without one.
  const OdGeMatrix3d motion = OdGeMatrix3d::rotation(0.3, OdGeVector3d::kZAxis, {1000, 0, 0});
  edit([&](ReferenceUpdate&) { ASSERT_EQ(solid(entity)->transformBy(motion), eOk); });
  EXPECT_TRUE(leadsTo(wall, motion * OdGePoint3d(26, 30, 5)));
  const OdModelerBodyPtr other = moved(combine(BooleanKind::kSubtract, drilled(tools),
                                               {box(20.0, 20.0, 30.0, {280.0, 180.0, -5.0})}),
                                       motion);
  solid(entity)->setBody(other);
  EXPECT_FALSE(resolveReference(wall).resolved()) << "nothing has looked since";
  ReferenceUpdate(m_map).settleByStamp(entity);
  EXPECT_TRUE(leadsTo(wall, motion * OdGePoint3d(26, 30, 5)));
  EXPECT_TRUE(leadsTo(rim, motion * OdGePoint3d(26, 30, 10)));
  EXPECT_TRUE(leadsTo(closed, motion * OdGePoint3d(46, 30, 5))) << "its hole is there again";
}

TEST_F(VdmReferenceUpdate, PathsThroughBlockReferencesAndStoredDrawings) {
  const OdDbObjectId block = addBlock(m_drawing, L"PART");
  const OdDbObjectId entity = addSolid(plate(), block);
  const OdGePoint3d at(300, 100, 5);
  OdDbObjectIdArray ids{addReference(m_drawing->getModelSpaceId(), block), entity};
  const OdDbObjectId ref = refer(OdDbFullSubentPath(
      ids, OdDbSubentId(OdDb::kFaceSubentType, faceAt(*bodyOfSolid(entity), at))));
  cutSolid(entity, drills(3, 3));
  EXPECT_TRUE(leadsTo(ref, at));
  const TestFolder folder;
  saveAs(m_drawing, folder.odFile("references.vdm"));
  const OdDbHandle handle = ref.getHandle();
  m_drawing = nullptr;
  m_drawing = read(m_services, folder.odFile("references.vdm"));
  ASSERT_FALSE(m_drawing.isNull());
  const OdDbObjectId stored = m_drawing->getOdDbObjectId(handle);
  EXPECT_TRUE(leadsTo(stored, at));
  EXPECT_EQ(listReferences(m_drawing).size(), 1u);
  EXPECT_EQ(listReferences(m_drawing)[0].watchers.size(), 1u);
}

TEST_F(NamingTest, SubentitiesByTextAndByPoint) {
  OdModelerSubent found;
  EXPECT_TRUE(parseSubentName(L"e_12", found));
  EXPECT_EQ(found, (OdModelerSubent{Type::kEdge, 12}));
  EXPECT_EQ(subentName(found), L"e_12");
  for (const wchar_t* text :
       {L"", L"f_", L"f_0", L"x_1", L"f12", L"f_1a", L"f_-1", L"f_1234567890"}) {
    EXPECT_FALSE(parseSubentName(text, found)) << OdString(text).utf8();
  }
  const OdModelerBodyPtr body = plate();
  const auto at = [&](const OdGePoint3d& point, Type type) {
    return findSubentNear(*body, point, type, 0.5, found);
  };
  EXPECT_TRUE(succeeded(at({300.1, 100, 5}, Type::kFace)));
  EXPECT_EQ(found.index, faceAt(*body, {300, 100, 5}));
  EXPECT_TRUE(succeeded(at({300, 200.2, 10}, Type::kNull)));
  EXPECT_EQ(found.type, Type::kVertex) << "corners before edges before faces";
  const OdStatus both = at({300, 200, 5}, Type::kFace);
  EXPECT_EQ(both.code, eInvalidInput);
  for (const OdGePoint3d& point : {OdGePoint3d(300, 100, 5), OdGePoint3d(150, 200, 5)}) {
    EXPECT_GE(both.text.find(subentName({Type::kFace, faceAt(*body, point)})), 0) << "names both";
  }
  EXPECT_FALSE(at({400, 0, 0}, Type::kNull).ok());
}

TEST(VdmReferenceRecord, BytesComeBackAndDamageIsRefused) {
  ReferenceRecord record;
  record.birth = {OdDbHandle(0x1234), 3};
  record.signature.type = Type::kFace;
  record.signature.radius = 4.5;
  record.signature.place = {1, 2, 3};
  record.births = {{{0, 7}}, {{1, 3}, {2, 300}}};
  for (OdUInt32 i = 1; i <= 20; ++i) {
    record.addStep({LineageCause::kBoolean, ReferenceGrade::kByLineage, i, 1000 * i, 1, 7});
  }
  const std::vector<char> bytes = record.encode();
  ReferenceRecord back;
  ASSERT_TRUE(back.decode(bytes, Type::kFace));
  EXPECT_EQ(back.encode(), bytes);
  EXPECT_EQ(back.births, record.births);
  EXPECT_EQ(back.steps.size(), ReferenceRecord::kKeptSteps);
  EXPECT_EQ(back.stepCount, 20u);
  EXPECT_EQ(back.steps.front().from, 1u) << "the first step stays";
  EXPECT_EQ(back.steps.back().from, 20u);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(back.decode({bytes.begin(), bytes.begin() + static_cast<int>(size)}, Type::kFace));
  }
  std::vector<char> later = bytes;
  later[0] = ReferenceRecord::kRules + 1;
  EXPECT_FALSE(back.decode(later, Type::kFace));
}

}  // namespace
}  // namespace vdm_host
