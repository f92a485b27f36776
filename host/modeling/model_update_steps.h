// The steps of an update, in the order in which they run; model_update.cpp has the table. Each is
// in the source of its name.
#pragma once

#include "platform/base/status.h"

namespace vdm_host {

class ModelUpdateContext;

/// Lists the managers of features, the components by solid, and whether any feature follows changes
/// of entities by itself.
OdStatus indexFeatures(ModelUpdateContext& context);
/// Has features that wait for it evaluate themselves. The one place where an update computes
/// variables: before anything reads them.
OdStatus evaluateFeatures(ModelUpdateContext& context);
/// Components whose dimensions expressions give get their tools; their inserts are due then.
OdStatus sizeComponents(ModelUpdateContext& context);
/// Solids that were moved take their components along; stored pieces of components lose what direct
/// booleans did, and take in what blends of their rims took away; components of replaced bodies are
/// to be cut anew.
OdStatus followSolids(ModelUpdateContext& context);
/// References follow what the journal says, and with foreign changes what the stamps of solids say.
OdStatus settleReferences(ModelUpdateContext& context);
/// Inserts at replaced bodies follow base faces that were displaced along their normal.
OdStatus followBaseFaces(ModelUpdateContext& context);
/// Enters what was moved, and the inserts of components that have work to do, in the map.
OdStatus enterChanges(ModelUpdateContext& context);
/// Runs the passes of the module over every block. What a round replaced or changed is the input of
/// another one, until nothing is new.
OdStatus runFeatures(ModelUpdateContext& context);
/// Components drop references to faces that their openings have no part in any more.
OdStatus separateOpenings(ModelUpdateContext& context);
/// Takes out references without a watcher that erased features or the step before left.
OdStatus dropUnwatched(ModelUpdateContext& context);
/// Enters in the report what became of references.
OdStatus reportReferences(ModelUpdateContext& context);
/// Enters in the report how much of each solid the modeller looked at.
OdStatus reportSolids(ModelUpdateContext& context);

}  // namespace vdm_host
