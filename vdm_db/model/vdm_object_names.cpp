// Names of model objects.
#include "vdm_db/model/vdm_object_names.h"

#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"

namespace {
OdUInt64 g_generation = 1;
}

OdString vdmNameBaseOf(const OdDbEntity* entity) {
  if (entity == nullptr) return OdString(L"Object");
  if (const auto reference = OdDbBlockReference::cast(entity); !reference.isNull()) {
    const auto block = reference->blockTableRecord().openAs<OdDbBlockTableRecord>();
    if (!block.isNull() && !block->isAnonymous()) return block->getName();
  }
  const OdRxClass* cls = entity->isA();
  return cls->dxfName().isEmpty() ? cls->name() : cls->dxfName();
}

void vdmObjectNamesChanged() { ++g_generation; }
OdUInt64 vdmObjectNamesGeneration() { return g_generation; }
