// OdDbXRefMan: attaching, loading, unloading, detaching and binding of external drawings.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/db/db_enums.h"
#include "platform/filer/object_id.h"

class OdDbBlockTableRecord;
class OdDbDatabase;

/// A block record with a path stands for the model space of another drawing. The states, and what
/// leads on from them:
///
///   | status             | meaning                                        | leads on by          |
///   |--------------------|------------------------------------------------|----------------------|
///   | 0 kXrfNotAnXref    | an ordinary block                              |                      |
///   | 1 kXrfResolved     | the drawing is open, read-only                 | unload, detach, bind |
///   | 2 kXrfUnloaded     | the user unloaded it                           | load, detach         |
///   | 3 kXrfUnreferenced | no reference shows it, so it was not opened    | load, detach         |
///   | 4 kXrfFileNotFound | there is no file at the path                   | load, resolve        |
///   | 5 kXrfUnresolved   | not opened yet, or the file could not be read  | load, resolve        |
///
/// Drawings open lazily: a host drawing that is opened finds its external references unresolved,
/// and resolve() opens one when it is needed. The host drawing owns what it has opened; unloading
/// closes it, and every id of the external drawing dies. Failures leave the path in place; they are
/// reported through OdDbHostAppServices::message and the optional `reason`.
///
/// Null arguments give eNullPointer, blocks that are no external reference eNotApplicable.
class OdDbXRefMan {
 public:
  OdDbXRefMan() = delete;

  /// Makes a block `name` that stands for the drawing at `path`, and loads it. An existing block
  /// of that name gives eDuplicateRecordName; a drawing that leads back to the host gives
  /// eCircularReference with the cycle as reason, and nothing is attached. A file that is missing
  /// or unreadable is attached all the same, with status 4 or 5, and the result says so.
  static OdResult attach(OdDbDatabase* host, const OdString& path, const OdString& name,
                         OdDbObjectId& block, bool overlay = false, OdString* reason = nullptr);
  /// Opens the drawing again, also one that the user unloaded. The record is open for write.
  static OdResult load(OdDbBlockTableRecord* block, OdString* reason = nullptr);
  /// Loads several, also after a failure, and returns the first failure.
  static OdResult load(const OdDbObjectIdArray& blocks);
  /// Opens the drawing when it is needed. One that is open stays as it is; unloaded ones, and those
  /// that no reference shows (status 3), are left alone and give eXrefUnresolved. The record is
  /// open for write.
  static OdResult resolve(OdDbBlockTableRecord* block, OdString* reason = nullptr);
  /// Resolves every external reference of the host that is shown and not unloaded; goes on after a
  /// failure and returns the first one.
  static OdResult resolveAll(OdDbDatabase* host);
  /// Closes the drawing and keeps the path; status 2.
  static OdResult unload(OdDbBlockTableRecord* block);
  static OdResult unload(const OdDbObjectIdArray& blocks);
  /// unload, then load: what changed on disk is seen.
  static OdResult reload(OdDbBlockTableRecord* block, OdString* reason = nullptr);
  /// Closes the drawing and erases the block with the references that show it.
  static OdResult detach(OdDbBlockTableRecord* block);
  /// Makes the block an ordinary one that holds the drawing's model space. Records that both
  /// drawings have by name: with `insert` the host's are used, otherwise the incoming ones are
  /// renamed to "<block>$0$<name>". All or nothing.
  static OdResult bind(OdDbBlockTableRecord* block, bool insert = false,
                       OdString* reason = nullptr);
};
