// A step of the update: components follow what the edit did to their solids.
//
// A component's residue is the piece that its tool took from the solid, or added to it; healing
// gives it back. So whatever an edit does to the solid, the residues must be changed by the same:
//
//   moved      insert, residues, boxes and base plane take the same motion: nothing needs cutting.
//   boolean    what the tool reached is final, also where it lies in an opening: residues lose it.
//   blend      what a blend of an opening's rim took away joins the opening's residue, so that the
//              opening closes without a groove. A blend that reaches far beyond is the part's own.
//   replaced   the new body has no openings: residues are worthless, and all is cut anew.
//
// The journal is worked off in order, and each change sees what the one before it stored. The cost
// is that of the modeller for the residues near the change; boxes keep all others out.
#include <algorithm>

#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "host/modeling/residues.h"
#include "platform/entities/block_reference.h"

namespace vdm_host {
namespace {

// How far a blend may reach beyond an opening to be the opening's, in widths of the opening.
constexpr double kRimReach = 0.5;

VdmComponentFeaturePtr openToChange(const OdDbObjectId& feature) {
  VdmComponentFeaturePtr component = openComponent(feature, OdDb::kForWrite);
  if (!component.isNull()) component->getDbObject()->assertWriteEnabled();
  return component;
}

// ---- Residues as they are stored

std::unique_ptr<ResidueLedger> appliedPieces(const ModelUpdateContext& context,
                                             const OdDbObjectId& solid) {
  auto ledger = std::make_unique<ResidueLedger>([](const OdDbObjectId& feature, ToolKind kind) {
    return openComponent(feature)->piece(kind);
  });
  for (const OdDbObjectId& id : context.componentsAt(solid)) {
    const VdmComponentFeaturePtr component = openComponent(id);
    VdmComponentFeature::Placed placed;
    if (component.isNull() || component->state() != VdmComponentFeature::kStateApplied) continue;
    if (component->placed(placed)) ledger->add(id).box = placed.box;
  }
  return ledger;
}

void storePieces(ResidueLedger& ledger) {
  for (ComponentPieces& pieces : ledger.components()) {
    for (const ToolKind kind : kToolKinds) {
      if (pieces.isChanged(kind)) {
        openToChange(pieces.feature)->setPiece(kind, pieces.pieceOf(kind));
      }
    }
  }
}

// ---- Moved

// The insert was changed by others, and lies elsewhere than when the solid was cut.
bool wentSomewhere(const VdmComponentFeature& component, const OdDbBlockReference& insert,
                   const VdmComponentFeature::Placed& placed) {
  const VdmDbInsertReactorPtr reactor = component.insertReactorId().openAs<VdmDbInsertReactor>();
  return !reactor.isNull() && reactor->hasChanges() &&
         !insert.blockTransform().isEqualTo(placed.transform);
}

OdStatus movePieces(VdmComponentFeature& component, const OdGeMatrix3d& transform) {
  for (const ToolKind kind : kToolKinds) {
    OdModelerBodyPtr piece = component.piece(kind);
    if (!piece) continue;
    if (OdStatus status = piece->transformed(transform, piece); !status.ok()) return status;
    component.setPiece(kind, piece);
  }
  return {};
}

// An insert that went along already, or somewhere else, is left where it is.
OdStatus carryAlong(const ModelUpdateContext& context, const OdSolidChange& change) {
  const OdGeMatrix3d& transform = change.transform;
  if (transform.isIdentity()) return {};
  for (const OdDbObjectId& id : context.componentsAt(change.solid)) {
    const VdmComponentFeaturePtr component = openToChange(id);
    VdmComponentFeature::Placed placed;
    if (component.isNull() || !component->placed(placed)) continue;
    const OdDbBlockReferencePtr insert =
        component->insertId().openAs<OdDbBlockReference>(OdDb::kForWrite);
    if (!insert.isNull() && !wentSomewhere(*component, *insert, placed)) {
      insert->transformBy(transform);
    }
    if (OdStatus status = movePieces(*component, transform); !status.ok()) return status;
    placed.transform = transform * placed.transform;
    for (OdGeExtents3d& box : placed.box) box.transformBy(transform);
    placed.basePoint = transform * placed.basePoint;
    placed.baseNormal = transform * placed.baseNormal;
    component->setPlaced(placed);
  }
  return {};
}

// ---- Cut and blended by others

OdStatus excludeTools(const ModelUpdateContext& context, const OdSolidChange& change) {
  const std::unique_ptr<ResidueLedger> ledger = appliedPieces(context, change.solid);
  for (const OdModelerBodyPtr& tool : change.tools) {
    OdStatus status = ledger->exclude(tool);
    if (status.ok()) continue;
    status.text = L"solid " + OdString(change.solid.getHandle().ascii()) +
                  L": what components took away or added: " + status.text;
    return status;
  }
  storePieces(*ledger);
  return {};
}

// The part of a blend lies at the opening, and not further from it than its rim may reach.
bool isWithinReach(ComponentPieces& pieces, const OdGeExtents3d& part) {
  OdGeExtents3d reach = pieces.boxOf(ToolKind::kCut);
  if (!overlap(part, reach) || !pieces.hasPiece(ToolKind::kCut)) return false;
  const OdGeVector3d size = reach.diagonal();
  reach.expandBy(kRimReach * std::min({size.x, size.y, size.z}));
  return reach.contains(part.minPoint()) && reach.contains(part.maxPoint());
}

// Gives the part to the first opening at which it grows on.
OdStatus giveToOpening(ResidueLedger& ledger, const OdModelerBodyPtr& part) {
  for (ComponentPieces& pieces : ledger.components()) {
    if (!isWithinReach(pieces, part->extents())) continue;
    const OdModelerBodyPtr& piece = pieces.pieceOf(ToolKind::kCut);
    OdModelerBodyPtr both;
    if (OdStatus status = unionOf(piece, part, both); !status.ok()) return status;
    // A lump apart from the residue does not belong to it.
    if (both->numSolids() > piece->numSolids()) continue;
    pieces.setPiece(ToolKind::kCut, both);
    return {};
  }
  return {};
}

OdStatus adoptBlend(const ModelUpdateContext& context, const OdSolidChange& change) {
  OdModelerBodyPtr taken;
  OdStatus status = differenceOf(change.before, change.after, taken);
  if (!status.ok() || !taken) return status;
  const std::unique_ptr<ResidueLedger> ledger = appliedPieces(context, change.solid);
  for (const OdModelerBodyPtr& part : taken->solids()) {
    status = giveToOpening(*ledger, part);
    if (!status.ok()) return status;
  }
  storePieces(*ledger);
  return {};
}

// ---- Replaced

void forgetPieces(ModelUpdateContext& context, const OdDbObjectId& solid) {
  context.replacedSolids.push_back(solid);
  for (const OdDbObjectId& id : context.componentsAt(solid)) {
    const VdmComponentFeaturePtr component = openToChange(id);
    if (component.isNull()) continue;
    component->forgetApplied();
    const VdmDbInsertReactorPtr reactor =
        component->insertReactorId().openAs<VdmDbInsertReactor>(OdDb::kForWrite);
    if (!reactor.isNull()) reactor->setChanged(true);
  }
}

OdStatus followChange(ModelUpdateContext& context, const OdSolidChange& change) {
  switch (change.kind) {
    case OdSolidChangeKind::kMoved:
      return carryAlong(context, change);
    case OdSolidChangeKind::kBoolean:
      return excludeTools(context, change);
    case OdSolidChangeKind::kBlend:
      return adoptBlend(context, change);
    case OdSolidChangeKind::kReplaced:
      forgetPieces(context, change.solid);
      return {};
  }
  return {};
}

}  // namespace

OdStatus followSolids(ModelUpdateContext& context) {
  // Stored residues are solids, too: changing them adds to the journal.
  const std::vector<OdSolidChange> changes(context.journal.changes().begin(),
                                           context.journal.changes().end());
  for (const OdSolidChange& change : changes) {
    if (change.solid.isNull() || context.componentsAt(change.solid).isEmpty()) continue;
    if (OdStatus status = followChange(context, change); !status.ok()) return status;
  }
  return {};
}

}  // namespace vdm_host
