// The check of a drawing in all its parts: records, bodies, features, references, components.
#pragma once

#include <vector>

#include "host/naming/reference_query.h"
#include "platform/base/string.h"
#include "platform/db/database.h"

namespace vdm_host {

enum class AuditLevel {
  kNote,   ///< may stay as it is
  kError,  ///< the drawing is not sound
};

/// One finding. `docs/audit.md` lists the codes.
struct DrawingFinding {
  OdString code;
  AuditLevel level = AuditLevel::kError;
  OdUInt64 handle = 0;  ///< 0: the drawing as a whole
  OdString text;        ///< names the object, what was found and the rule
  OdString remedy;      ///< what fixing does; empty where it can do nothing
  bool mended = false;
  std::vector<OdUInt64> alike;  ///< further objects with the same finding
};

/// What a check looks at. Each asks the same question wherever it is asked.
struct AuditParts {
  bool drawing = true;     ///< file, ownership, references between objects, bodies, model objects
  bool features = true;    ///< features and components
  bool references = true;  ///< to faces, edges and vertices; needs the modules, as features do
};

struct DrawingAudit {
  std::vector<DrawingFinding> findings;    ///< one a fault, in the order of the parts
  std::vector<ReferenceEntry> references;  ///< all of the drawing, where they were looked at
  OdUInt32 errors = 0;
  OdUInt32 mended = 0;     ///< errors and notes
  OdUInt32 remaining = 0;  ///< errors that are there afterwards

  [[nodiscard]] bool isSound() const { return remaining == 0; }
};

enum class AuditMode {
  kLook,  ///< the drawing, which may be open for reading, is as before
  kFix,   ///< what can be mended is; nothing is saved
};

[[nodiscard]] DrawingAudit auditDrawing(OdDbDatabase* database, AuditMode mode,
                                        const AuditParts& parts = AuditParts());

/// A reference that leads to no geometry is a fault when something needs it.
enum class ReferenceNeed {
  kResolved,  ///< it leads to geometry
  kWanted,    ///< something needs it: a finding
  kWaiting,   ///< for suppressed components
  kUnneeded,  ///< without a watcher
};
[[nodiscard]] ReferenceNeed needOf(const ReferenceEntry& entry);

}  // namespace vdm_host
