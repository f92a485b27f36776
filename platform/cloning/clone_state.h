// OdDbCloneState: what a clone operation keeps between the clones of its objects.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "platform/base/string.h"
#include "platform/cloning/id_mapping.h"
#include "platform/filer/memory_filer.h"
#include "platform/filer/object_id.h"

/// Hangs on the mapping of the operation, so that clone hooks, which know only the mapping, take
/// part in it. Vectors and buffer keep their memory from object to object.
struct OdDbCloneState {
  /// An owned object whose turn comes later, because ownership is nested too deeply.
  struct Waiting {
    OdDbObjectId source;
    OdDbObjectId cloneOwner;
    OdDbDwgFiler::FilerType type;
  };
  /// A clone whose source has reactors.
  struct Copy {
    OdDbObjectId source;
    OdDbObjectId clone;
  };
  /// How the name of a record or entry was settled with its destination, before it is cloned.
  struct Settled {
    OdDbObjectId source;
    OdString name;          ///< that the clone gets
    OdDbObjectId replaced;  ///< destination's object that takes over the state; null: a new one
  };

  OdDbFilerBuffer buffer;           ///< one record at a time
  std::vector<OdDbFiledId> ids;     ///< of that record
  std::vector<OdDbObjectId> owned;  ///< a stack: what the objects being cloned own
  std::vector<Waiting> waiting;
  std::vector<OdDbObjectId> followed;      ///< hard pointers met by a wblock clone
  std::size_t numFollowed = 0;             ///< how many of them are dealt with
  std::vector<OdDbObjectId> untranslated;  ///< clones that hold ids of their sources
  std::vector<Copy> unannounced;           ///< copies that reactors have not heard of yet
  std::vector<OdDbObjectId> entered;       ///< keys of the pairs made since the operation began
  std::vector<Settled> settled;            ///< a stack, as primary clones may nest
  std::unordered_map<OdString, OdUInt32> nameCounters;     ///< last number given to a mangled name
  std::unordered_map<OdDbObjectId, OdDbObjectId> targets;  ///< where contents of an owner go
  std::unordered_map<OdDbObjectId, OdDbObjectId> takeovers;  ///< by source: what is its clone
  std::vector<OdDbObjectId> receivers;  ///< owners that were asked for, each once
  int nesting = 0;
  bool running = false;
};
