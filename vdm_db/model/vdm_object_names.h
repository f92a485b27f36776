// Names of model objects: their bases, and the generation of what is remembered of them.
#pragma once

#include "platform/base/string.h"
#include "platform/base/types.h"

class OdDbEntity;

/// What the model object of an entity is called before a number makes it unique: references by
/// their block, others by their kind. "Object" for null.
OdString vdmNameBaseOf(const OdDbEntity* entity);

/// Model objects of a drawing call it whenever their name changes, also by undo and loading. Names
/// that were remembered under an earlier generation are then outdated.
void vdmObjectNamesChanged();
[[nodiscard]] OdUInt64 vdmObjectNamesGeneration();
