// Layers that the module makes.
#pragma once

#include "platform/db/database.h"
#include "platform/db/layer_table.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace vdmu {

/// The layer of the name. A missing one is made: `configure` gets the record before it is added. A
/// layer that is there stays as it is. Null when the drawing has no layer table.
template <class Configure>
OdDbObjectId findOrAddLayer(const OdDbDatabase* database, const OdString& name,
                            const Configure& configure) {
  const OdDbLayerTablePtr table = database->getLayerTableId().openAs<OdDbLayerTable>();
  if (table.isNull()) return OdDbObjectId::kNull;
  if (const OdDbObjectId present = table->getAt(name); !present.isNull()) return present;
  const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  configure(*layer);
  const VdmOpenUpgrade upgrade(table);
  return table->add(layer);
}

}  // namespace vdmu
