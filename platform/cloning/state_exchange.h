// Exchange of the states of objects, with translation of their references.
#pragma once

#include <vector>

#include "platform/cloning/id_mapping.h"

/// For each pair, key and value exchange what they file, and keep their ids and owners: the key
/// gets the state of the value with its references translated by `reverse`, the value that of the
/// key translated by `forward`. References without a pair stay. What only one of the two owns
/// changes its owner. The objects are in one database and can be opened for write; their ids are
/// no longer in flux afterwards.
///
/// eWrongObjectType for two classes, what reading gives for a state that cannot be read; the
/// caller's transaction takes back what was exchanged before.
OdResult oddbExchangeStates(const std::vector<OdDbIdPair>& pairs, const OdDbIdMapping& forward,
                            const OdDbIdMapping& reverse);
