// What copies refer to, and whether their drawings are sound.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <utility>
#include <vector>

#include "platform/db/audit_info.h"
#include "platform/db/database.h"
#include "platform/db/db_object.h"
#include "platform/filer/id_filer.h"

/// The block and all that it owns, at any depth.
inline std::set<OdDbObjectId> belongingTo(OdDbObjectId block) {
  std::set<OdDbObjectId> all;
  std::vector<OdDbObjectId> waiting{block};
  while (!waiting.empty()) {
    const OdDbObjectId id = waiting.back();
    waiting.pop_back();
    const OdDbObjectPtr object = id.openObject();
    if (object.isNull() || !all.insert(id).second) continue;
    OdDbIdFiler filer(id.database());
    object->dwgOutFields(&filer);
    for (const OdDbFiledId& filed : filer.ids()) {
      if (OdDb::isOwnership(filed.type) && filed.id.ownerId() == id) waiting.push_back(filed.id);
    }
  }
  return all;
}

/// No object of `block` refers to one of `other`.
inline void expectNoReferences(OdDbObjectId block, const std::set<OdDbObjectId>& other) {
  for (const OdDbObjectId& id : belongingTo(block)) {
    OdDbIdFiler filer(id.database());
    id.openObject()->dwgOutFields(&filer);
    for (const OdDbFiledId& filed : filer.ids()) {
      if (filed.id == block.ownerId()) continue;
      const OdDbObjectPtr object = id.openObject();
      EXPECT_TRUE(other.count(filed.id) == 0 || filed.id.isNull())
          << object->isA()->name().utf8() << " refers to "
          << filed.id.openObject(OdDb::kForRead, true)->isA()->name().utf8();
    }
  }
}

/// What an audit finds, each line as a failure.
inline OdUInt32 findings(OdDbDatabase& drawing) {
  OdDbAuditInfo info;
  drawing.audit(&info);
  for (const OdString& line : std::as_const(info).lines()) ADD_FAILURE() << line.utf8();
  return info.numErrors();
}
