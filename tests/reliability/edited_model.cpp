// EditedModel: a drawing with solids and components, the edits of scripts, and the truth about it.
#include "tests/reliability/edited_model.h"

#include <numbers>
#include <stdexcept>

#include "host/modeling/component_library.h"
#include "host/modeling/component_tools.h"
#include "host/naming/name_feature.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/storage/sqlite_record_store.h"

using namespace vdm_host;

void fail(const std::string& what) { throw std::runtime_error(what); }

void expect(bool holds, const std::string& what) {
  if (!holds) fail(what);
}

EditedModel::EditedModel(const ModelParts& parts)
    : m_modeler(std::make_shared<FailingModeler>(odCreateOcctModeler())),
      m_services(createSqliteStoreFactory()),
      m_database(m_services.createDatabase()),
      m_editor(std::make_unique<ModelEditor>(m_database.get())) {
  odSetModeler(m_modeler);
  addSolid(parts.plate);
  addSolid(parts.imported);
  addBlocks();
  m_database->clearUndo();
}

EditedModel::~EditedModel() {
  m_editor.reset();
  m_database = OdDbDatabasePtr();
}

// ---- The model

OdDbObjectId EditedModel::idOf(const OdDbHandle& handle) const {
  return m_database->getOdDbObjectId(handle);
}

void EditedModel::addSolid(const OdModelerBodyPtr& body) {
  const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
  solid->setBody(body);
  const OdDbObjectId id = m_database->getModelSpaceId()
                              .safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)
                              ->appendOdDbEntity(solid);
  m_truth.solids.push_back({id.getHandle(), body, {}, {}, body->extents().maxPoint().z});
}

void EditedModel::addBlocks() {
  OdDbDatabase* const db = m_database.get();
  std::vector<OdDbObjectId> ids(5);
  const bool made = makeHole(db, L"through", {18.0, {}}, ids[0]).ok() &&
                    makeHole(db, L"blind", {11.0, 6.0}, ids[1]).ok() &&
                    makeCounterbore(db, L"bore", {9.0, {}, 16.0, 5.0}, ids[2]).ok() &&
                    makeSlot(db, L"slot", {12.0, 40.0, 4.0}, ids[3]).ok() &&
                    makeBoss(db, L"boss", {27.0, 7.0}, ids[4]).ok();
  expect(made, "a component cannot be made");
  ComponentTools tools;
  for (const OdDbObjectId& id : ids) {
    const BlockTools& all = tools.of(id);
    std::vector<OdModelerBodyPtr> cuts = all.of(ToolKind::kCut);
    // What is meant ends at the face; what is above it is a matter of the place.
    const ToolReach reach{all.form ? all.form->depth.value_or(1000.0) : 0.0, 0.0};
    const bool isFitted = all.form && !cuts.empty();
    expect(!isFitted || makeTool(*all.form, reach, cuts.front()).ok(), "a tool cannot be made");
    m_truth.blocks.push_back({id.getHandle(), std::move(cuts), all.of(ToolKind::kFill)});
  }
}

// ---- Edits

EditResult EditedModel::apply(const ModelEdit& edit) {
  switch (edit.kind) {
    case ModelEditKind::kInsert:
      return insert(edit);
    case ModelEditKind::kMoveSolid:
      return transformSolid(edit, OdGeMatrix3d::translation(stepOf(edit) * 3.0));
    case ModelEditKind::kRotateSolid: {
      const OdGePoint3d center = m_truth.solids[edit.which % 2].frame * OdGePoint3d();
      return transformSolid(edit, OdGeMatrix3d::rotation(0.1 * double(edit.place % 60),
                                                         OdGeVector3d::kZAxis, center));
    }
    case ModelEditKind::kDrill:
      return drill(edit);
    case ModelEditKind::kRefer:
      return refer(edit);
    case ModelEditKind::kForce:
      return m_editor->update(/*force=*/true);
    default:
      return applyToInsert(edit);
  }
}

EditResult EditedModel::applyToInsert(const ModelEdit& edit) {
  TruthInsert* const chosen = chooseInsert(edit.which);
  if (chosen == nullptr) return {};
  const OdDbObjectId id = idOf(chosen->insert);
  switch (edit.kind) {
    case ModelEditKind::kMove: {
      const OdGeVector3d by = stepOf(edit);
      chosen->place = OdGeMatrix3d::translation(by) * chosen->place;
      return m_editor->moveObject(id, m_truth.solids[chosen->solid].frame * by);
    }
    case ModelEditKind::kRotate: {
      const double angle = 0.25 * std::numbers::pi * double(1 + edit.place % 7);
      chosen->place = chosen->place * OdGeMatrix3d::rotation(angle, OdGeVector3d::kZAxis);
      return m_editor->rotateObject(id, OdGeVector3d::kZAxis, angle);
    }
    case ModelEditKind::kErase:
      chosen->isErased = true;
      return m_editor->eraseObject(id);
    case ModelEditKind::kRemoveFeature:
      chosen->isErased = true;
      return m_editor->removeFeature(idOf(chosen->feature));
    case ModelEditKind::kSuppress:
      chosen->isSuppressed = true;
      return m_editor->suppress(id);
    case ModelEditKind::kUnsuppress:
      chosen->isSuppressed = false;
      return m_editor->unsuppress(id);
    default: {
      OdString name;
      name.format(L"name %d", static_cast<int>(edit.place % 1000));
      return m_editor->renameFeature(idOf(chosen->feature), name);
    }
  }
}

/// In steps of 1/8, at most 40 along each axis.
OdGeVector3d EditedModel::stepOf(const ModelEdit& edit) {
  const auto part = [&](unsigned shift) {
    return static_cast<double>((edit.place >> shift) % 641) / 8.0 - 40.0;
  };
  return {part(0), part(20), 0.0};
}
OdGePoint3d EditedModel::placeOf(const ModelEdit& edit, std::size_t solid) const {
  const OdGeExtents3d box = m_truth.solids[solid].base->extents();
  const double x = static_cast<double>(edit.place % 1009) / 1008.0;
  const double y = static_cast<double>((edit.place >> 20) % 1009) / 1008.0;
  const OdGeVector3d size = box.maxPoint() - box.minPoint();
  return {box.minPoint().x + x * size.x, box.minPoint().y + y * size.y, m_truth.solids[solid].top};
}
TruthInsert* EditedModel::chooseInsert(std::uint64_t which) {
  std::vector<TruthInsert*> live;
  for (TruthInsert& insert : m_truth.inserts) {
    if (!insert.isErased) live.push_back(&insert);
  }
  return live.empty() ? nullptr : live[which % live.size()];
}

EditResult EditedModel::insert(const ModelEdit& edit) {
  TruthInsert added;
  added.solid = edit.which % 2;
  added.block = (edit.which >> 8) % m_truth.blocks.size();
  const OdGePoint3d point = placeOf(edit, added.solid);
  const TruthSolid& solid = m_truth.solids[added.solid];
  ComponentPlacement placement;
  placement.solid = idOf(solid.handle);
  placement.point = solid.frame * point;
  placement.direction = solid.frame * OdGeVector3d::kZAxis;
  EditResult result =
      m_editor->insertComponent(idOf(m_truth.blocks[added.block].handle), placement);
  if (!result.ok()) return result;
  added.insert = result.created.getHandle();
  added.feature = result.feature.getHandle();
  const OdGeMatrix3d world = result.created.safeOpenAs<OdDbBlockReference>()->blockTransform();
  added.place = solid.frame.inverse() * world;
  expect((added.place * OdGePoint3d()).isEqualTo(point, OdGeTol(1e-6)), "inserted elsewhere");
  m_truth.inserts.push_back(added);
  for (const OdDbObjectId& id : openComponent(added)->baseFaceDependencies()) {
    const ResolvedReference base = resolveReference(id);
    if (base.resolved()) {
      m_truth.inserts.back().base =
          m_truth.sourceOf(*bodyOf(added.solid), numberOf(base), added.solid);
    }
  }
  return result;
}

EditResult EditedModel::transformSolid(const ModelEdit& edit, const OdGeMatrix3d& transform) {
  TruthSolid& solid = m_truth.solids[edit.which % 2];
  solid.frame = transform * solid.frame;
  return m_editor->transformObject(idOf(solid.handle), transform);
}

/// By hand, away from what stands on the solid: a drill through a boss is no part of the boss.
EditResult EditedModel::drill(const ModelEdit& edit) {
  const std::size_t chosen = edit.which % 2;
  const OdGePoint3d point = placeOf(edit, chosen);
  for (const TruthInsert& insert : m_truth.inserts) {
    const OdGePoint3d at = insert.place * OdGePoint3d();
    if (insert.solid == chosen && !m_truth.blocks[insert.block].fills.empty() &&
        at.distanceTo(point) < 30.0) {
      return {};
    }
  }
  TruthSolid& solid = m_truth.solids[chosen];
  OdModelerBodyPtr tool;
  OdModelerBodyPtr local;
  if (!odModeler().cylinder(3.5, 100.0, tool).ok()) fail("no drill can be made");
  const OdGeVector3d down{0.0, 0.0, -95.0};
  if (!tool->transformed(OdGeMatrix3d::translation(point.asVector() + down), local).ok() ||
      !local->transformed(solid.frame, tool).ok()) {
    fail("the drill cannot be placed");
  }
  solid.drills.push_back(local);
  return m_editor->edit(OdString(L"drill"), [&] {
    return idOf(solid.handle)
        .safeOpenAs<OdDb3dSolid>(OdDb::kForWrite)
        ->booleanOper(OdModelerBooleanKind::kSubtract, std::span(&tool, 1));
  });
}

/// Nothing when it cannot be said where the subentity comes from.
EditResult EditedModel::refer(const ModelEdit& edit) {
  TruthReference added;
  added.solid = edit.which % 2;
  const OdModelerBodyPtr body = bodyOf(added.solid);
  added.type = static_cast<OdModelerSubentType>(1 + edit.place % 3);
  const auto index = static_cast<OdUInt32>(1 + (edit.place >> 8) % body->numSubents(added.type));
  for (const OdUInt32 face : ModelTruth::facesAt(*body, {added.type, index})) {
    const std::optional<TruthFace> source = m_truth.sourceOf(*body, face, added.solid);
    if (!source) return {};
    added.faces.push_back(*source);
  }
  const OdDbFullSubentPath path(idOf(m_truth.solids[added.solid].handle),
                                OdDbSubentId(static_cast<OdDb::SubentType>(added.type), index));
  OdDbObjectId feature;
  EditResult result = m_editor->edit(OdString(L"refer"), [&]() -> OdStatus {
    const OdResult made = nameReference(path, OdString(), feature);
    if (made == eOk) return {};
    return {made, OdString(L"the reference cannot be made")};
  });
  if (!result.ok()) fail(std::string(result.status.text.utf8()));
  added.feature = feature.getHandle();
  m_truth.references.push_back(std::move(added));
  return result;
}

// ---- Reading

OdModelerBodyPtr EditedModel::bodyOf(std::size_t solid) const {
  return idOf(m_truth.solids[solid].handle).safeOpenAs<OdDb3dSolid>()->body();
}
VdmComponentFeaturePtr EditedModel::openComponent(const TruthInsert& insert) const {
  const VdmComponentFeaturePtr component =
      VdmComponentFeature::cast(VdmFeature::open(idOf(insert.feature)).get());
  expect(!component.isNull(),
         "component " + std::string(insert.feature.ascii().utf8()) + " is gone");
  return component;
}
OdUInt32 EditedModel::numberOf(const ResolvedReference& reference) {
  return static_cast<OdUInt32>(reference.path.subentId().index());
}
