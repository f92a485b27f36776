// ModelEditor: edits of a model, each with the update pass that it calls for.
#include "host/modeling/model_editor.h"

#include <chrono>

#include "host/modeling/component_query.h"
#include "host/modeling/insert_row.h"
#include "host/modeling/insertion.h"
#include "host/modeling/model_update.h"
#include "host/naming/reference_query.h"
#include "platform/base/error.h"
#include "platform/db/locked_layers.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/reach.h"
#include "vdm_db/drawing_utils/vdm_handle_text.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

namespace vdm_host {
namespace {

using vdmu::handleText;

OdStatus refuse(const OdString& text) { return {eInvalidInput, text}; }

/// Refuses an entity whose layer is locked.
OdStatus requireUnlocked(const OdDbObjectId& id) {
  const OdDbEntityPtr entity = id.openAs<OdDbEntity>();
  if (entity.isNull() || !oddbIsOnLockedLayer(entity)) return {};
  return {eOnLockedLayer, L"object " + handleText(id) + L" is on layer '" + entity->layer() +
                              L"', which is locked"};
}

OdStatus openSolid(const OdDbObjectId& id, OdDb3dSolidPtr& solid) {
  if (OdStatus status = requireUnlocked(id); !status.ok()) return status;
  solid = id.openAs<OdDb3dSolid>(OdDb::kForWrite);
  if (!solid.isNull()) return {};
  return refuse(L"object " + handleText(id) + L" is no solid that can be changed");
}

// Numbers of edges that references stand for, and their solid.
OdStatus resolveEdges(std::span<const OdDbObjectId> references, OdDbObjectId& solid,
                      std::vector<OdUInt32>& edges) {
  for (const OdDbObjectId& id : references) {
    const ResolvedReference found = resolveReference(id);
    const OdString name = L"reference " + handleText(id);
    if (!found.resolved()) return refuse(name + L" leads nowhere: " + found.note);
    const OdDbSubentId& subent = found.path.subentId();
    if (subent.type() != OdDb::kEdgeSubentType) return refuse(name + L" is no edge");
    if (!solid.isNull() && solid != found.solid) {
      return refuse(name + L" lies on solid " + handleText(found.solid) + L", not on " +
                    handleText(solid));
    }
    solid = found.solid;
    edges.push_back(static_cast<OdUInt32>(subent.index()));
  }
  return edges.empty() ? refuse(OdString(L"there is no edge")) : OdStatus();
}

OdStatus erase(const OdDbObjectId& id) {
  if (OdStatus status = requireUnlocked(id); !status.ok()) return status;
  const OdDbObjectPtr object = id.openObject(OdDb::kForWrite);
  if (object.isNull()) return refuse(L"object " + handleText(id) + L" cannot be opened");
  const OdResult result = object->erase();
  if (result == eOk) return {};
  return {result, L"object " + handleText(id) + L" cannot be erased"};
}

}  // namespace

ModelEditor::ModelEditor(OdDbDatabase* database) : m_database(database) {}

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point began) {
  return std::chrono::duration<double>(Clock::now() - began).count();
}

// The change and the pass; everything that is raised becomes a status.
OdStatus runEdit(OdDbDatabase* database, UpdateReport& report, bool force,
                 const std::function<OdStatus()>& change) {
  try {
    OdSolidJournal journal;
    EntityChanges changes(database, journal);
    OdStatus status = change ? change() : OdStatus();
    if (!status.ok()) return status;
    const auto began = Clock::now();
    const ModelUpdateScope scope{force, /*isForeign=*/!change};
    status = runModelUpdate(database, journal, changes, scope, report);
    report.passSeconds = secondsSince(began);
    return status;
  } catch (const OdError& error) {
    return {error.code(), OdString::fromUtf8(error.what())};
  }
}

// `accept` sees the report of an edit that went well, and may refuse it.
EditResult transact(OdDbDatabase* database, bool force, const std::function<OdStatus()>& change,
                    const std::function<OdStatus(UpdateReport&)>& accept = nullptr) {
  const auto began = Clock::now();
  EditResult result;
  OdDbTransaction transaction(database);
  result.status = runEdit(database, result.report, force, change);
  if (result.ok() && accept) result.status = accept(result.report);
  if (result.ok()) {
    transaction.commit();
  } else {
    result.report.rolledBack = true;
    result.report.rollbackReason = result.status.text;
  }
  result.report.seconds = secondsSince(began);
  return result;
}

}  // namespace

// Within a group the group has begun the step.
void ModelEditor::beginStep() {
  if (m_undoSteps && !m_inGroup) m_database->startUndoRecord();
}

EditResult ModelEditor::edit(const OdString& what, const std::function<OdStatus()>& change) {
  return edit(what, change, nullptr);
}

EditResult ModelEditor::edit(const OdString& what, const std::function<OdStatus()>& change,
                             const std::function<OdStatus(UpdateReport&)>& accept) {
  beginStep();
  EditResult result = transact(m_database, /*force=*/false, change, accept);
  // The modeller's own text may begin with the name of the same operation.
  const bool isNamed = result.status.text.find(what + L":") == 0;
  if (!result.ok() && !what.isEmpty() && !isNamed) {
    result.status.text = what + L": " + result.status.text;
  }
  return result;
}

EditResult ModelEditor::update(bool force) {
  beginStep();
  return transact(m_database, force, nullptr);
}

// ---- Components

EditResult ModelEditor::insertComponent(const OdDbObjectId& block,
                                        const ComponentPlacement& placement) {
  OdDbObjectId insert;
  OdDbObjectId feature;
  const auto make = [&] {
    const ComponentInsert component{block, placement};
    ComponentTools tools;
    InsertionPlace place;
    OdStatus status = placeInsertion(component, tools, place);
    if (status.ok()) status = makeInsertion(m_database, component, place, insert, feature);
    return status;
  };
  const auto accept = [&](UpdateReport& report) -> OdStatus {
    const FeatureReport& own = report.feature(feature);
    if (own.outcome != FeatureOutcome::kIdle || placement.acceptsNoEffect) return {};
    return refuse(L"component \"" + own.component + L"\": " + own.text);
  };
  EditResult result = edit(OdString(L"insert"), make, accept);
  if (!result.ok()) return result;
  result.created = insert;
  result.feature = feature;
  return result;
}

std::vector<EditResult> ModelEditor::insertRow(
    const std::function<std::optional<ComponentInsert>()>& next) {
  InsertRow row(m_database);
  const auto make = [&]() -> OdStatus {
    for (auto insert = next(); insert && row.add(*insert);) insert = next();
    return row.isEmpty() ? refuse(OdString(L"no component can be inserted")) : OdStatus();
  };
  const auto accept = [&row](UpdateReport& report) { return row.accept(report); };
  const EditResult all = edit(OdString(L"insert"), make, accept);
  return all.ok() ? row.results(all.report) : std::vector<EditResult>();
}

EditResult ModelEditor::suppress(const OdDbObjectId& insert) {
  return edit(OdString(L"suppress"), [&]() -> OdStatus {
    const VdmComponentFeaturePtr feature =
        VdmComponentFeature::cast(VdmFeature::open(componentOf(insert), OdDb::kForWrite));
    if (feature.isNull()) return refuse(handleText(insert) + L" is no component");
    if (OdStatus status = requireUnlocked(feature->insertId()); !status.ok()) return status;
    feature->setSuppressed(true);
    return {};
  });
}

EditResult ModelEditor::unsuppress(const OdDbObjectId& insert) {
  return edit(OdString(L"unsuppress"), [&]() -> OdStatus {
    const VdmComponentFeaturePtr feature =
        VdmComponentFeature::cast(VdmFeature::open(componentOf(insert), OdDb::kForWrite));
    if (feature.isNull()) return refuse(handleText(insert) + L" is no component");
    feature->setSuppressed(false);
    return {};
  });
}

EditResult ModelEditor::removeFeature(const OdDbObjectId& feature) {
  return edit(OdString(L"remove"), [&]() -> OdStatus {
    const VdmFeaturePtr object = VdmFeature::open(feature);
    if (object.isNull()) return refuse(handleText(feature) + L" is no feature");
    const VdmComponentFeaturePtr component = VdmComponentFeature::cast(object.get());
    if (!component.isNull()) return erase(component->insertId());
    const OdDbObjectId block = feature.ownerId().safeOpenAs<VdmDbFeatureManager>()->blockId();
    OdStatus status = erase(feature);
    if (status.ok()) dropUnwatchedReferences(block);
    return status;
  });
}

EditResult ModelEditor::renameFeature(const OdDbObjectId& feature, const OdString& name) {
  return edit(OdString(L"rename"), [&]() -> OdStatus {
    const VdmFeaturePtr object = VdmFeature::open(feature, OdDb::kForWrite);
    if (object.isNull()) return refuse(handleText(feature) + L" is no feature");
    if (name.isEmpty()) return refuse(OdString(L"the name of a feature is empty"));
    object->setName(name);
    return {};
  });
}

// ---- Entities

namespace {

/// Why an entity cannot be moved, where its body is the reason.
OdStatus refuseMove(const OdDbEntity& entity, const OdGeMatrix3d& transform, OdResult result) {
  OdStatus status{result, OdString(L"object ") + entity.objectId().getHandle().ascii() +
                              L" cannot be moved: " + OdString(odResultText(result))};
  const OdDb3dSolid* solid = OdDb3dSolid::cast(&entity).get();
  OdModelerBodyPtr body;
  if (solid == nullptr || !solid->getBody(body).ok() || !body) return status;
  const OdStatus reach = odCheckReach(*body, transform);
  if (!reach.ok()) status.text = L"solid " + handleText(entity.objectId()) + L": " + reach.text;
  return status;
}

/// An insert may lie where bodies may lie.
OdStatus requirePlace(const OdDbEntity& entity, const OdGeMatrix3d& transform) {
  const OdDbBlockReferencePtr insert = OdDbBlockReference::cast(&entity);
  if (insert.isNull()) return {};
  const OdGePoint3d place = transform * insert->position();
  if (odIsWithinReach(place)) return {};
  OdStatus status{eInvalidInput, {}};
  status.text.format(L"object %ls would lie at (%g, %g, %g), coordinates are at most %g",
                     handleText(entity.objectId()).c_str(), place.x, place.y, place.z,
                     kOdModelerReach);
  return status;
}

OdStatus transformEntity(const OdDbObjectId& entity, const OdGeMatrix3d& transform) {
  if (OdStatus status = requireUnlocked(entity); !status.ok()) return status;
  const OdDbEntityPtr object = entity.openAs<OdDbEntity>(OdDb::kForWrite);
  if (object.isNull()) return refuse(handleText(entity) + L" is no entity");
  if (OdStatus status = requirePlace(*object, transform); !status.ok()) return status;
  const OdResult moved = object->transformBy(transform);
  return moved == eOk ? OdStatus() : refuseMove(*object, transform, moved);
}

}  // namespace

EditResult ModelEditor::moveObject(const OdDbObjectId& entity, const OdGeVector3d& by) {
  return transformObject(entity, OdGeMatrix3d::translation(by));
}

EditResult ModelEditor::rotateObject(const OdDbObjectId& entity, const OdGeVector3d& axis,
                                     double angle, const std::optional<OdGePoint3d>& center) {
  return edit(OdString(L"rotate"), [&]() -> OdStatus {
    const OdDbEntityPtr object = entity.openAs<OdDbEntity>();
    if (object.isNull()) return refuse(handleText(entity) + L" is no entity");
    OdGePoint3d about;
    const OdDbBlockReferencePtr insert = OdDbBlockReference::cast(object.get());
    OdGeExtents3d box;
    if (center) {
      about = *center;
    } else if (!insert.isNull()) {
      about = insert->position();
    } else if (object->getGeomExtents(box) == eOk) {
      about = box.center();
    }
    return transformEntity(entity, OdGeMatrix3d::rotation(angle, axis, about));
  });
}

EditResult ModelEditor::transformObject(const OdDbObjectId& entity, const OdGeMatrix3d& transform) {
  return edit(OdString(L"move"), [&] { return transformEntity(entity, transform); });
}

EditResult ModelEditor::eraseObject(const OdDbObjectId& entity) {
  return edit(OdString(L"erase"), [&]() -> OdStatus {
    const bool isSolid = !entity.openAs<OdDb3dSolid>().isNull();
    if (isSolid) {
      for (const OdDbObjectId& id : componentsOfSolid(entity)) {
        const OdDbObjectId insert =
            VdmComponentFeature::cast(VdmFeature::open(id).get())->insertId();
        if (insert.openObject().isNull()) continue;
        if (OdStatus status = erase(insert); !status.ok()) return status;
      }
    }
    return erase(entity);
  });
}

// ---- Bodies

EditResult ModelEditor::replaceBody(const OdDbObjectId& solid, OdModelerBodyPtr body) {
  return edit(OdString(L"replace"), [&]() -> OdStatus {
    if (!body) return refuse(OdString(L"the new body is null"));
    OdDb3dSolidPtr object;
    if (OdStatus status = openSolid(solid, object); !status.ok()) return status;
    object->setBody(body);
    return {};
  });
}

EditResult ModelEditor::blendEdges(const OdString& what, Blend blend, const OdDbObjectId& solid,
                                   std::span<const OdUInt32> edges, double size) {
  return edit(what, [&] {
    OdDb3dSolidPtr object;
    OdStatus status = openSolid(solid, object);
    return status.ok() ? (object.get()->*blend)(edges, size, nullptr) : status;
  });
}

EditResult ModelEditor::filletEdges(const OdDbObjectId& solid, std::span<const OdUInt32> edges,
                                    double radius) {
  return blendEdges(OdString(L"fillet"), &OdDb3dSolid::filletEdges, solid, edges, radius);
}

EditResult ModelEditor::chamferEdges(const OdDbObjectId& solid, std::span<const OdUInt32> edges,
                                     double distance) {
  return blendEdges(OdString(L"chamfer"), &OdDb3dSolid::chamferEdges, solid, edges, distance);
}

EditResult ModelEditor::blendReferences(BlendEdges blend, std::span<const OdDbObjectId> references,
                                        double size) {
  OdDbObjectId solid;
  std::vector<OdUInt32> edges;
  EditResult refused;
  refused.status = resolveEdges(references, solid, edges);
  return refused.ok() ? (this->*blend)(solid, edges, size) : refused;
}

EditResult ModelEditor::filletReferences(std::span<const OdDbObjectId> references, double radius) {
  return blendReferences(&ModelEditor::filletEdges, references, radius);
}

EditResult ModelEditor::chamferReferences(std::span<const OdDbObjectId> references,
                                          double distance) {
  return blendReferences(&ModelEditor::chamferEdges, references, distance);
}

EditResult ModelEditor::booleanSolid(OdModelerBooleanKind kind, const OdDbObjectId& solid,
                                     const OdDbObjectId& tool, bool consumeTool) {
  return edit(OdString(L"boolean"), [&]() -> OdStatus {
    if (solid == tool) return refuse(handleText(solid) + L" cannot be its own tool");
    OdDb3dSolidPtr object;
    OdStatus status = openSolid(solid, object);
    if (!status.ok()) return status;
    {
      const OdDb3dSolidPtr other = tool.openAs<OdDb3dSolid>();
      if (other.isNull()) return refuse(handleText(tool) + L" is no solid");
      status = object->booleanOper(kind, *other);
      if (!status.ok()) status.text = L"solid " + handleText(solid) + L": " + status.text;
    }
    if (!status.ok() || !consumeTool) return status;
    return erase(tool);
  });
}

// ---- Groups

EditGroup::EditGroup(ModelEditor& editor) : m_editor(editor) {
  if (m_editor.m_undoSteps) m_editor.m_database->startUndoRecord();
  m_transaction = std::make_unique<OdDbTransaction>(m_editor.m_database);
  m_editor.m_inGroup = true;
}

EditGroup::~EditGroup() { m_editor.m_inGroup = false; }

void EditGroup::commit() {
  if (m_transaction) m_transaction->commit();
  m_transaction.reset();
}

}  // namespace vdm_host
