// runModelUpdate: brings a drawing up to date with an edit.
#pragma once

#include "host/modeling/entity_changes.h"
#include "host/modeling/update_report.h"
#include "platform/base/status.h"
#include "platform/db/database.h"
#include "platform/modeler/solid_journal.h"

namespace vdm_host {

/// Which features and references an update looks at beyond those that the edit concerns.
struct ModelUpdateScope {
  bool isForced = false;   ///< every component is healed and done anew
  bool isForeign = false;  ///< also references into solids that were changed without a journal
};

/// Runs the steps of model_update_steps.h in order, within the transaction, the journal and the
/// change log of the caller. A failure leaves everything half done: the caller rolls back.
OdStatus runModelUpdate(OdDbDatabase* database, OdSolidJournal& journal, EntityChanges& changes,
                        const ModelUpdateScope& scope, UpdateReport& report);

}  // namespace vdm_host
