// Drawings with components, edits of them, and what they are to be compared with.
#include "tests/host/modeling/modeling_testing.h"

#include <algorithm>
#include <cmath>

#include "host/modeling/component_query.h"
#include "host/modeling/component_tools.h"
#include "host/naming/reference_record.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

using namespace vdm_host;

VdmHostModule::VdmHostModule() : LoadedModule(OdString(VDM_HOST_MODULE_FILE)) {}

ModelingTest::ModelingTest() {
  m_database = m_files.createDatabase();
  m_base = box(300.0, 200.0, 10.0);
  m_plate = addSolid(m_base);
  m_editor = std::make_unique<ModelEditor>(m_database.get());
}

ModelingTest::~ModelingTest() {
  m_editor.reset();
  m_database.release();
}

testing::AssertionResult ModelingTest::done(const EditResult& result) {
  if (result.ok()) return testing::AssertionSuccess();
  return succeeded(result.status);
}

OdDbObjectId ModelingTest::hole(const std::wstring& name, double diameter,
                                std::optional<double> depth) {
  OdDbObjectId block;
  EXPECT_TRUE(succeeded(makeHole(m_database, OdString(name), {diameter, depth}, block)));
  return block;
}

OdDbObjectId ModelingTest::boss(const std::wstring& name, double diameter, double height) {
  OdDbObjectId block;
  EXPECT_TRUE(succeeded(makeBoss(m_database, OdString(name), {diameter, height}, block)));
  return block;
}

EditResult ModelingTest::insertAt(const OdDbObjectId& block, const OdGePoint3d& point,
                                  std::optional<OdGeVector3d> direction) {
  ComponentPlacement placement;
  placement.solid = m_plate;
  placement.point = point;
  placement.direction = direction;
  return m_editor->insertComponent(block, placement);
}

EditResult ModelingTest::insert(const OdDbObjectId& block, double x, double y, double z) {
  ComponentPlacement placement;
  placement.solid = m_plate;
  placement.point = {x, y, z};
  placement.direction = OdGeVector3d::kZAxis;
  placement.acceptsNoEffect = true;
  EditResult result = m_editor->insertComponent(block, placement);
  EXPECT_TRUE(done(result));
  return result;
}

VdmComponentFeaturePtr ModelingTest::component(const OdDbObjectId& feature) const {
  return VdmComponentFeature::cast(VdmFeature::open(feature).get());
}

OdDbObjectId ModelingTest::openingReference(const OdDbObjectId& feature, int toolFace) const {
  const auto groups = component(feature)->openingDependencies();
  const auto found = groups.find(toolFace);
  return found == groups.end() || found->second.size() != 1 ? OdDbObjectId() : found->second[0];
}

OdUInt32 ModelingTest::openingFace(const OdDbObjectId& feature, int toolFace) const {
  const VdmDbObjectDependencyPtr reference =
      openingReference(feature, toolFace).openAs<VdmDbObjectDependency>();
  if (reference.isNull() || isUnresolvedIndex(reference->subentId().index())) return 0;
  return static_cast<OdUInt32>(reference->subentId().index());
}

// A cutting tool as it is meant: up to the face, and through whatever is below it.
static OdModelerBodyPtr toTheFace(const BlockTools& tools, std::size_t kind,
                                  const OdModelerBodyPtr& tool) {
  if (kind != 0 || !tools.form) return tool;
  constexpr double kThrough = 1000.0;
  OdModelerBodyPtr made;
  EXPECT_TRUE(succeeded(makeTool(*tools.form, {tools.form->depth.value_or(kThrough), 0.0}, made)));
  return made;
}

// Where the component's tools are; nothing for one that is not applied.
static std::optional<OdGeMatrix3d> placeOf(const VdmComponentFeature& component,
                                           const OdDbBlockReference& insert, bool byRecord) {
  VdmComponentFeature::Placed placed;
  if (byRecord) {
    const bool isCut = component.state() == VdmComponentFeature::kStateApplied;
    return isCut && component.placed(placed) ? std::optional(placed.transform) : std::nullopt;
  }
  if (insert.isErased() || insert.layer() == kVdmSuppressLayer) return std::nullopt;
  return insert.blockTransform();
}

OdModelerBodyPtr ModelingTest::freshBody(const OdModelerBodyPtr& base, Places places) const {
  std::array<std::vector<OdModelerBodyPtr>, kToolKindCount> tools;
  ComponentTools library;
  for (const OdDbObjectId& id : componentsOfSolid(m_plate)) {
    const OdDbBlockReferencePtr insert =
        component(id)->insertId().openAs<OdDbBlockReference>(OdDb::kForRead, /*openErased=*/true);
    const auto place = placeOf(*component(id), *insert, places == Places::kRecords);
    if (!place) continue;
    const BlockTools& all = library.of(insert->blockTableRecord());
    for (std::size_t kind = 0; kind < kToolKindCount; ++kind) {
      for (const OdModelerBodyPtr& tool : all.bodies[kind]) {
        tools[kind].push_back(moved(toTheFace(all, kind, tool), *place));
      }
    }
  }
  OdModelerBodyPtr body = base;
  if (!tools[1].empty()) body = combine(OdModelerBooleanKind::kUnite, body, tools[1]);
  if (!tools[0].empty()) body = combine(OdModelerBooleanKind::kSubtract, body, tools[0]);
  return body;
}

testing::AssertionResult ModelingTest::isAsFresh(const OdModelerBodyPtr& base,
                                                 Places places) const {
  const OdModelerBodyPtr now = plateBody();
  const OdModelerBodyPtr fresh = freshBody(base, places);
  if (const OdStatus sound = now->check(); !sound.ok()) {
    return testing::AssertionFailure() << "unsound: " << sound.text.utf8();
  }
  const double expected = fresh->massProperties().volume;
  const double volume = now->massProperties().volume;
  if (std::abs(volume - expected) > 1e-6 * expected) {
    return testing::AssertionFailure() << "volume " << volume << ", built fresh " << expected;
  }
  if (now->numFaces() != fresh->numFaces()) {
    return testing::AssertionFailure()
           << now->numFaces() << " faces, built fresh " << fresh->numFaces();
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult ModelingTest::isAsRecorded(const OdModelerBodyPtr& base) const {
  for (const OdDbObjectId& id : componentsOfSolid(m_plate)) {
    VdmComponentFeature::Placed placed;
    if (!component(id)->placed(placed)) continue;
    for (const auto& [toolFace, references] : component(id)->openingDependencies()) {
      const OdUInt32 face = openingFace(id, toolFace);
      if (face == 0) continue;
      const OdGeExtents3d at = plateBody()->subentExtents({OdModelerSubentType::kFace, face});
      if (std::ranges::any_of(placed.box, [&at](const auto& box) { return overlap(at, box); })) {
        continue;
      }
      return testing::AssertionFailure() << "a reference of " << id.getHandle().ascii().utf8()
                                         << " leads to face " << face << " elsewhere";
    }
  }
  return isAsFresh(base, Places::kRecords);
}
