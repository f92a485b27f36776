// A drawing with a part, its components and names into it, kept in step with their construction.
#include "bench/naming/component_play.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "bench/naming/reference_drawing.h"
#include "host/modeling/component_library.h"
#include "host/modeling/model_editor.h"
#include "host/naming/name_feature.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/features/vdm_clone_with_features.h"

namespace naming_bench {
namespace {

void require(const OdStatus& status) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
}

OdDbObjectId addSolid(OdDbDatabase& database, const OdDbObjectId& block,
                      const OdModelerBodyPtr& body) {
  const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
  solid->setDatabaseDefaults(&database);
  solid->setBody(body);
  return block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)->appendOdDbEntity(solid);
}

// A component of its own for each opening, so that each can have another size.
OdDbObjectId makeComponent(OdDbDatabase& database, const OpeningPlan& opening) {
  OdString name;
  name.format(L"opening_%d", opening.number);
  const auto block = OdDbBlockTableRecord::createObject();
  block->setName(name);
  const OdDbObjectId id =
      database.getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite)->add(block);
  addSolid(database, id, openingTool(opening));
  OdDbObjectId made;
  require(vdm_host::makeFromBlock(
      &database, name,
      opening.fills() ? vdm_host::ComponentRole::kUnite : vdm_host::ComponentRole::kSubtract,
      made));
  return made;
}

OdGePoint3d placeOf(const PartPlan& plan, const OpeningPlan& opening) {
  return {opening.x, opening.y, plan.height};
}

}  // namespace

ComponentPlay::ComponentPlay(const PartPlan& plan)
    : m_services(createSqliteStoreFactory()), m_database(m_services.createDatabase()) {
  m_now.plan = plan;
  m_now.plan.openings.clear();
  const OdDbObjectId solid =
      addSolid(*m_database, m_database->getModelSpaceId(), m_now.plan.baseBody());
  m_now.solid = solid.getHandle();
  m_editor = std::make_unique<vdm_host::ModelEditor>(m_database.get());
  forgetSteps();
  for (const OpeningPlan& opening : plan.openings) (void)insert(opening);
}

ComponentPlay::~ComponentPlay() = default;

OdDbObjectId ComponentPlay::idOf(const OdDbHandle& handle) const {
  return m_database->getOdDbObjectId(handle);
}

OdDbObjectId ComponentPlay::insertOf(int opening) const { return idOf(m_now.inserts.at(opening)); }

OdModelerBodyPtr ComponentPlay::body() const {
  return idOf(m_now.solid).safeOpenAs<OdDb3dSolid>()->body();
}

void ComponentPlay::keep() {
  m_undo.push_back(m_now);
  m_redo.clear();
}

void ComponentPlay::forgetSteps() {
  m_undo.clear();
  m_redo.clear();
  m_database->clearUndo();
}

// ---- Edits

int ComponentPlay::insert(OpeningPlan opening) {
  opening.number = ++m_last;
  // The block is there before the step, so that undo leaves it.
  const OdDbObjectId block = makeComponent(*m_database, opening);
  vdm_host::ComponentPlacement placement;
  placement.solid = idOf(m_now.solid);
  placement.point = placeOf(m_now.plan, opening);
  placement.direction = OdGeVector3d::kZAxis;
  placement.rotation = opening.angle;
  placement.acceptsNoEffect = true;
  const vdm_host::EditResult made = m_editor->insertComponent(block, placement);
  require(made.status);
  m_undo.clear();
  m_redo.clear();
  m_now.plan.openings.push_back(opening);
  m_now.inserts[opening.number] = made.created.getHandle();
  return opening.number;
}

void ComponentPlay::move(int opening, double dx, double dy) {
  require(m_editor->moveObject(insertOf(opening), {dx, dy, 0.0}).status);
  keep();
  m_now.plan.at(opening).x += dx;
  m_now.plan.at(opening).y += dy;
}

void ComponentPlay::turn(int opening, double angle) {
  require(m_editor->rotateObject(insertOf(opening), OdGeVector3d::kZAxis, angle).status);
  keep();
  m_now.plan.at(opening).angle += angle;
}

void ComponentPlay::resize(int opening, double length, double width, double depth) {
  OpeningPlan sized = m_now.plan.at(opening);
  sized.length = length;
  sized.width = width;
  sized.depth = depth;
  const auto exchange = [&]() -> OdStatus {
    const OdDbBlockReferencePtr insert = insertOf(opening).safeOpenAs<OdDbBlockReference>();
    const auto block = insert->blockTableRecord().safeOpenAs<OdDbBlockTableRecord>();
    const OdDbObjectIteratorPtr tools = block->newIterator();
    tools->objectId().safeOpenAs<OdDb3dSolid>(OdDb::kForWrite)->setBody(openingTool(sized));
    (void)insertOf(opening).safeOpenAs<OdDbBlockReference>(OdDb::kForWrite)->transformBy({});
    return {};
  };
  require(m_editor->edit(OdString(L"resize"), exchange).status);
  keep();
  m_now.plan.at(opening) = sized;
}

void ComponentPlay::remove(int opening) {
  require(m_editor->eraseObject(insertOf(opening)).status);
  keep();
  std::erase_if(m_now.plan.openings, [&](const OpeningPlan& o) { return o.number == opening; });
  m_now.inserts.erase(opening);
}

void ComponentPlay::suppress(int opening, bool suppressed) {
  const OdDbObjectId insert = insertOf(opening);
  require((suppressed ? m_editor->suppress(insert) : m_editor->unsuppress(insert)).status);
  keep();
  m_now.plan.at(opening).suppressed = suppressed;
}

void ComponentPlay::nameWholes(Random& random, std::size_t most) {
  const SourcedBody sourced(m_now.plan, body());
  std::vector<OdModelerSubent> wholes = sourced.wholes();
  for (std::size_t i = 0; i < wholes.size(); ++i) {
    std::swap(wholes[i], wholes[i + pick(random, wholes.size() - i)]);
  }
  if (wholes.size() > most) wholes.resize(most);
  std::vector<NamedReference> made;
  const auto nameAll = [&]() -> OdStatus {
    for (const OdModelerSubent subent : wholes) {
      const OdDbFullSubentPath path(idOf(m_now.solid),
                                    OdDbSubentId(static_cast<OdDb::SubentType>(subent.type),
                                                 static_cast<OdGsMarker>(subent.index)));
      OdDbObjectId feature;
      const OdResult result = vdm_host::nameReference(path, OdString(), feature);
      if (result != eOk) return {result, OdString(L"a subentity cannot be named")};
      const Birth birth = sourced.birthOf(subent);
      made.push_back({feature.getHandle(), birth, sourced.nameOf(birth)});
    }
    return {};
  };
  require(m_editor->edit(OdString(L"name"), nameAll).status);
  keep();
  m_now.references.insert(m_now.references.end(), made.begin(), made.end());
}

// ---- Round about

bool ComponentPlay::travel(std::vector<State>& from, std::vector<State>& to,
                           OdResult (OdDbDatabase::*step)()) {
  if (from.empty()) return false;
  if ((m_database.get()->*step)() != eOk) throw std::runtime_error("a step cannot be taken back");
  to.push_back(std::move(m_now));
  m_now = std::move(from.back());
  from.pop_back();
  return true;
}

bool ComponentPlay::undo() { return travel(m_undo, m_redo, &OdDbDatabase::undo); }
bool ComponentPlay::redo() { return travel(m_redo, m_undo, &OdDbDatabase::redo); }

void ComponentPlay::saveAndOpen() {
  const std::filesystem::path file = std::filesystem::temp_directory_path() /
                                     ("vdm_bench_naming_" + std::to_string(::getpid()) + ".vdm");
  require(m_database->saveAs(OdString(file.string())));
  m_editor.reset();
  m_database.release();
  OdStatus status;
  m_database = m_services.readFile(OdString(file.string()), status);
  require(status);
  m_editor = std::make_unique<vdm_host::ModelEditor>(m_database.get());
  forgetSteps();
  // The open drawing keeps what it has not read yet.
  std::filesystem::remove(file);
}

void ComponentPlay::clone() {
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  const OdDbObjectId old = idOf(m_now.solid);
  if (vdmu::cloneWithFeatures({old}, old.ownerId(), *mapping) != eOk) {
    throw std::runtime_error("the part cannot be cloned");
  }
  const auto follow = [&](OdDbHandle& handle) {
    OdDbIdPair pair(idOf(handle));
    if (!mapping->compute(pair)) throw std::runtime_error("something of the part was not cloned");
    handle = pair.value().getHandle();
  };
  follow(m_now.solid);
  for (auto& [number, handle] : m_now.inserts) follow(handle);
  for (NamedReference& reference : m_now.references) follow(reference.feature);
  require(m_editor->eraseObject(old).status);
  forgetSteps();
}

// ---- Answers

Answer ComponentPlay::answerOf(const NamedReference& reference) const {
  const VdmNameFeaturePtr feature =
      VdmNameFeature::cast(VdmFeature::open(idOf(reference.feature)).get());
  return feature.isNull() ? Answer() : naming_bench::answerOf(feature->referenceIds());
}

}  // namespace naming_bench
