// Names of model objects: what they are made from, and when what is remembered of them is outdated.
#pragma once

#include "platform/base/string.h"
#include "platform/base/types.h"

class OdDbEntity;

/// What the model object of an entity is called before a number makes it unique: references by
/// their block, others by their kind. "Object" for null.
OdString vdmNameBaseOf(const OdDbEntity* entity);

/// Called by model objects of a drawing whenever a name of theirs changes, by undo and loading,
/// too. What was remembered under an earlier generation is outdated then.
void vdmObjectNamesChanged();
[[nodiscard]] OdUInt64 vdmObjectNamesGeneration();
