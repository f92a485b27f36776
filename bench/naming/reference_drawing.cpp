// A drawing with one solid and persistent references into it, as a host keeps them.
#include "bench/naming/reference_drawing.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>
#include <stdexcept>

#include "bench/naming/stopwatch.h"
#include "host/naming/pers_id_manager_pe.h"
#include "host/naming/reference_query.h"
#include "host/naming/reference_update.h"
#include "platform/db/block_table_record.h"
#include "platform/db/dictionary.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace naming_bench {
namespace {

void require(const OdStatus& status) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
}

OdStatus apply(OdDb3dSolid& solid, const Operation& operation) {
  switch (operation.kind) {
    case Operation::Kind::kBoolean:
      return solid.booleanOper(operation.boolean, {&operation.body, 1});
    case Operation::Kind::kFillet:
      return solid.filletEdges({&operation.edge, 1}, operation.size);
    case Operation::Kind::kChamfer:
      return solid.chamferEdges({&operation.edge, 1}, operation.size);
    case Operation::Kind::kMove:
      solid.transformBy(operation.motion);
      return {};
    case Operation::Kind::kReplace:
      solid.setBody(operation.body);
      return {};
  }
  return {};
}

// Truths are numbers of the trace's body: the solid's must be the same.
bool sameNumbers(const OdModelerBody& a, const OdModelerBody& b) {
  if (a.numFaces() != b.numFaces() || a.numEdges() != b.numEdges() ||
      a.numVertices() != b.numVertices()) {
    return false;
  }
  for (OdUInt32 i = 1; i <= a.numVertices(); ++i) {
    if (!a.vertex(i).point.isEqualTo(b.vertex(i).point, OdGeTol(kSameSurface))) return false;
  }
  return true;
}

// What the modeller freed is put in order by the next large allocations, whosoever they are: it is
// the modeller's time.
void payArrears() {
  constexpr std::size_t kCount = 32;
  constexpr std::size_t kLarge = 64 * 1024;  // bytes; below what is mapped on its own
  std::vector<std::unique_ptr<std::byte[]>> blocks;
  for (std::size_t i = 0; i < kCount; ++i) {
    blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(kLarge));
  }
}

}  // namespace

DrawingRuntime::DrawingRuntime() {
  oddbInitialize();
  odModelerInitialize();
  odInstallOcctModeler();
  odrxDynamicLinker()->loadModule(VDM_MODULE_FILE);
  odrxDynamicLinker()->loadModule(VDM_HOST_MODULE_FILE);
}

DrawingRuntime::~DrawingRuntime() {
  odrxDynamicLinker()->unloadModule(VDM_HOST_MODULE_FILE);
  odrxDynamicLinker()->unloadModule(VDM_MODULE_FILE);
  odModelerUninitialize();
  oddbUninitialize();
}

ReferenceDrawing::ReferenceDrawing(const OdModelerBodyPtr& body,
                                   std::span<const OdModelerSubent> references)
    : m_database(m_services.createDatabase()) {
  const OdDbObjectId space = m_database->getModelSpaceId();
  const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
  solid->setBody(body);
  m_solid = space.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)->appendOdDbEntity(solid);
  m_watcher = m_database->addOdDbObject(OdDbDictionary::createObject(), space);
  VdmDbConstraintManager::getInstance(space, /*create=*/true);

  m_manager = VdmDbPersIdManager::getInstance(space, /*create=*/true);
  append(references);
}

void ReferenceDrawing::append(std::span<const OdModelerSubent> references) {
  OdDbFullSubentPathArray paths;
  for (const OdModelerSubent subent : references) {
    paths.append({m_solid, OdDbSubentId(static_cast<OdDb::SubentType>(subent.type),
                                        static_cast<OdGsMarker>(subent.index))});
  }
  const OdDbObjectIdArray ids =
      m_manager.safeOpenAs<VdmDbPersIdManager>(OdDb::kForWrite)->append(paths, nullptr);
  if (ids.size() != references.size()) throw std::runtime_error("the manager made no references");
  watch(ids);
  for (const OdDbObjectId& id : ids) m_references.push_back({id});
}

void ReferenceDrawing::watch(const OdDbObjectIdArray& dependencies) {
  for (const OdDbObjectId& id : dependencies) {
    id.safeOpenAs<VdmDbObjectDependency>(OdDb::kForWrite)->addPersistentReactor(m_watcher);
  }
}

void ReferenceDrawing::replay(const EditTrace& edit) {
  const OdDb3dSolidPtr solid = m_solid.safeOpenAs<OdDb3dSolid>(OdDb::kForWrite);
  for (const Operation& operation : edit.operations) require(apply(*solid, operation));
  if (!sameNumbers(*solid->body(), *edit.after)) {
    throw std::logic_error("the solid came out otherwise than the part");
  }
}

void ReferenceDrawing::tellRespawns(vdm_host::ReferenceUpdate& update,
                                    const std::vector<Respawn>& respawns) {
  constexpr OdUInt64 kFirstFeature = 0x10000;  // no object of the drawing has such a handle
  for (const Respawn& one : respawns) {
    vdm_host::FaceRespawn respawn;
    respawn.feature = m_features.emplace(one.feature, OdDbHandle(kFirstFeature + m_features.size()))
                          .first->second;
    respawn.motion = one.motion;
    for (std::size_t k = 0; k < one.before.size(); ++k) {
      respawn.toolFace = static_cast<OdUInt32>(k + 1);
      respawn.newFaces = k < one.after.size() ? one.after[k] : std::vector<OdUInt32>();
      for (const OdUInt32 face : one.before[k]) {
        respawn.oldFace = face;
        update.addRespawn(m_solid, respawn);
      }
    }
  }
}

void ReferenceDrawing::followReplacements(const VdmDependenciesReplacementMap& map) {
  if (map.isEmptyReplacementDeps()) return;
  for (OdDbObjectIdArray& ids : m_references) {
    std::set<OdDbObjectId> now;
    for (const OdDbObjectId& id : ids) {
      OdDbObjectIdArray replacements;
      if (!map.findReplacedWith(id, &replacements)) {
        now.insert(id);
        continue;
      }
      watch(replacements);
      now.insert(replacements.begin(), replacements.end());
    }
    ids.clear();
    for (const OdDbObjectId& id : now) ids.append(id);
  }
}

SettleCost ReferenceDrawing::settle(const OdSolidJournal& journal, const EditTrace& edit) {
  payArrears();
  const Stopwatch watch;
  VdmDependenciesReplacementMap map;
  vdm_host::ReferenceUpdate update(map);
  tellRespawns(update, edit.respawns);
  const vdm_host::ReferenceUpdateReport report = update.settle(journal.changes());
  const double spent = watch.seconds();
  followReplacements(map);
  return {spent, report.renumbered};
}

void ReferenceDrawing::edit(const EditTrace& edit) {
  OdDbTransaction transaction(m_database);
  const OdSolidJournal journal;
  replay(edit);
  (void)settle(journal, edit);
  (void)transaction.commit();
}

SettleCost ReferenceDrawing::adopt(const EditTrace& edit) {
  OdDbTransaction transaction(m_database);
  m_solid.safeOpenAs<OdDb3dSolid>(OdDb::kForWrite)->setBody(edit.after);
  OdSolidJournal journal;
  for (OdSolidChange change : edit.changes) {
    change.solid = m_solid;
    journal.note(std::move(change));
  }
  const SettleCost cost = settle(journal, edit);
  (void)transaction.commit();
  return cost;
}

OdDbObjectIdArray ReferenceDrawing::dependencies() const {
  OdDbObjectIdArray all;
  for (const OdDbObjectIdArray& ids : m_references) all.append(ids);
  return all;
}

Answer ReferenceDrawing::answer(std::size_t reference) const {
  return answerOf(m_references[reference]);
}

Answer answerOf(const OdDbObjectIdArray& dependencies) {
  Answer answer;
  std::set<OdModelerSubent> named;
  bool ambiguous = false;
  for (const OdDbObjectId& id : dependencies) {
    const vdm_host::ResolvedReference now = vdm_host::resolveReference(id);
    if (!answer.note.empty()) answer.note += ", ";
    answer.note += vdm_host::gradeName(now.grade).utf8();
    ambiguous |= now.grade == vdm_host::ReferenceGrade::kAmbiguous;
    if (!now.resolved()) continue;
    named.insert({static_cast<OdModelerSubentType>(now.path.subentId().type()),
                  static_cast<OdUInt32>(now.path.subentId().index())});
  }
  answer.subents.assign(named.begin(), named.end());
  if (!named.empty()) {
    answer.kind = Answer::Kind::kNamed;
  } else if (ambiguous) {
    answer.kind = Answer::Kind::kAmbiguous;
  }
  return answer;
}

}  // namespace naming_bench
