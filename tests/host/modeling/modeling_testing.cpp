// Drawings with components, edits of them, and what they are to be compared with.
#include "tests/host/modeling/modeling_testing.h"

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

OdModelerBodyPtr ModelingTest::freshBody(const OdModelerBodyPtr& base) const {
  std::array<std::vector<OdModelerBodyPtr>, kToolKindCount> tools;
  ComponentTools library;
  for (const OdDbObjectId& id : componentsOfSolid(m_plate)) {
    const OdDbBlockReferencePtr place = component(id)->insertId().openAs<OdDbBlockReference>();
    if (place.isNull() || place->layer() == kVdmSuppressLayer) continue;
    const BlockTools& all = library.of(place->blockTableRecord());
    for (std::size_t kind = 0; kind < kToolKindCount; ++kind) {
      for (const OdModelerBodyPtr& tool : all.bodies[kind]) {
        tools[kind].push_back(moved(toTheFace(all, kind, tool), place->blockTransform()));
      }
    }
  }
  OdModelerBodyPtr body = base;
  if (!tools[1].empty()) body = combine(OdModelerBooleanKind::kUnite, body, tools[1]);
  if (!tools[0].empty()) body = combine(OdModelerBooleanKind::kSubtract, body, tools[0]);
  return body;
}

testing::AssertionResult ModelingTest::isAsFresh(const OdModelerBodyPtr& base) const {
  const OdModelerBodyPtr now = plateBody();
  const OdModelerBodyPtr fresh = freshBody(base);
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
