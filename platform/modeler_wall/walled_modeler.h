// A modeller that lets another one work in a process of its own, for hosts that must outlive it.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/base/work_note.h"
#include "platform/modeler/body.h"

class OdModeler;

/// An operation that failed, for a host that keeps what it failed on.
struct OdWallFailure {
  OdString operation;                    ///< such as "boolean"
  OdStatus status;                       ///< what the caller gets
  bool died = false;                     ///< the worker died of it
  std::vector<OdModelerBodyPtr> inputs;  ///< the bodies it worked on; the changed one first
  OdString parameters;                   ///< numbers and lists in the order of the interface
  OdString path;                         ///< the file it read or wrote; empty for others
};

struct OdWallSettings {
  /// What one operation may use: processor time, and memory beyond what its worker holds.
  OdWorkBudget budget{.seconds = 120, .bytes = OdUInt64{4} << 30U};
  /// What one operation may take by the clock, in seconds: a worker that waits for something uses
  /// up no processor time.
  OdUInt32 clockSeconds = 1200;
  /// Stored bytes of bodies that the worker keeps for operations to come.
  std::size_t keptBytes = std::size_t{256} << 20U;
  /// Called after each operation that failed, in the thread that asked for it; may be empty.
  std::function<void(const OdWallFailure&)> onFailure = {};
};

/// A modeller that hands each operation which may crash, loop or eat memory to a worker process:
/// primitives and sweeps, booleans, blends, removal of faces, STEP files, checks, meshes and mass
/// properties. An operation that kills its worker fails with eModelerError and a text that says
/// what died of what; the next one gets a new worker. All else is as `inner` does it.
///
/// A body is handed over once, by its content, and so is a body that the worker made itself. The
/// worker's answer is checked before it is taken: the stored form of the result, and a history that
/// fits the inputs and the result.
///
/// To be created before the process has a second thread: it forks. The modeller may then be used
/// from several threads; operations run one after the other. Bodies outlive it, but their checks,
/// meshes and mass properties are then computed by `inner` itself. Bodies of `inner` and of
/// another wall are taken, too. Raises OdError eModelerError when no process can be made.
[[nodiscard]] std::shared_ptr<OdModeler> odCreateWalledModeler(std::shared_ptr<OdModeler> inner,
                                                               OdWallSettings settings = {});
