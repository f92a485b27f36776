// A model with an object of each kind that the module and the networks file.
#pragma once

#include "platform/db/database.h"

/// Adds to the model space: lines with constraints, variables of every type with expressions and
/// attributes, a configuration table with links, settings of sheet metal, a feature of every
/// concrete class and reactors of features.
void fuzzAddModel(OdDbDatabase* drawing);
