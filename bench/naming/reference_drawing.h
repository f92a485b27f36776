// A drawing with one solid and persistent references into it, as a host keeps them.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bench/naming/method.h"
#include "platform/base/non_copyable.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/filer/object_id.h"

class OdSolidJournal;
class VdmDependenciesReplacementMap;
namespace vdm_host {
class ReferenceUpdate;
}

namespace naming_bench {

/// The drawing runtime, the modeller, the module and the host's naming, while it lives. One in a
/// process at a time.
class DrawingRuntime : OdNonCopyable {
 public:
  /// Raises when the module's file cannot be loaded.
  DrawingRuntime();
  ~DrawingRuntime();
};

/// What dependencies that stand for one reference lead to.
[[nodiscard]] Answer answerOf(const OdDbObjectIdArray& dependencies);

/// What bringing references up to date took.
struct SettleCost {
  double seconds = 0.0;
  std::size_t renumbered = 0;  ///< references that were written because they have another number
};

/// References are dependencies of the model space's manager, each watched by one object, as the
/// module asks of references that are to be split and merged. Needs a DrawingRuntime.
class ReferenceDrawing {
 public:
  ReferenceDrawing(const OdModelerBodyPtr& body, std::span<const OdModelerSubent> references);

  /// More references, to the present body; they are numbered on.
  void append(std::span<const OdModelerSubent> references);
  /// Does the edit's operations on the solid under a journal, then brings the references up to
  /// date; all in one transaction.
  void edit(const EditTrace& edit);
  /// The same with the solid taking over the edit's bodies and a journal that says what they are:
  /// nothing is computed twice. Returns what the references took.
  SettleCost adopt(const EditTrace& edit);
  /// The dependencies, in the order in which they were made.
  [[nodiscard]] OdDbObjectIdArray dependencies() const;
  /// What a reference is now.
  [[nodiscard]] Answer answer(std::size_t reference) const;

 private:
  void replay(const EditTrace& edit);
  SettleCost settle(const OdSolidJournal& journal, const EditTrace& edit);
  void followReplacements(const VdmDependenciesReplacementMap& map);
  void tellRespawns(vdm_host::ReferenceUpdate& update, const std::vector<Respawn>& respawns);
  void watch(const OdDbObjectIdArray& dependencies);

  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_database;
  OdDbObjectId m_solid;
  OdDbObjectId m_watcher;
  std::map<std::string, OdDbHandle> m_features;
  OdDbObjectId m_manager;
  std::vector<OdDbObjectIdArray> m_references;  // several once split
};

}  // namespace naming_bench
