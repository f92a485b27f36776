// Registration of the drawing database's classes.
#include "platform/db/db_init.h"

#include <iterator>

#include "platform/db/block_reference.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/database_reactor.h"
#include "platform/db/dictionary.h"
#include "platform/db/id_mapping.h"
#include "platform/db/layer_table.h"
#include "platform/db/line.h"
#include "platform/db/linetype_table.h"
#include "platform/db/material.h"
#include "platform/db/proxy_object.h"
#include "platform/db/regapp_table.h"
#include "platform/db/viewport.h"
#include "platform/db/xrecord.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/dxf_filer.h"
#include "platform/filer/res_buf.h"
#include "platform/gi/drawable_overrule.h"
#include "platform/gi/world_draw.h"
#include "platform/rx/rx_init.h"

namespace {

struct ClassRow {
  void (*registerClass)();
  void (*releaseClass)();
};

template <class T>
constexpr ClassRow row() {
  return {static_cast<void (*)()>(&T::rxInit), &T::rxUninit};
}

// Parents before their children; released in reverse.
constexpr ClassRow kClasses[] = {
    row<OdResBuf>(),
    row<OdDbDwgFiler>(),
    row<OdDbDxfFiler>(),
    row<OdGiDrawable>(),
    row<OdGiDrawableOverrule>(),
    row<OdGiSubEntityTraits>(),
    row<OdGiWorldDraw>(),
    row<OdDbObject>(),
    row<OdDbProxyObject>(),
    row<OdDbDictionary>(),
    row<OdDbDictionaryIterator>(),
    row<OdDbXrecord>(),
    row<OdDbMaterial>(),
    row<OdDbSymbolTableRecord>(),
    row<OdDbSymbolTable>(),
    row<OdDbSymbolTableIterator>(),
    row<OdDbEntity>(),
    row<OdDbBlockTableRecord>(),
    row<OdDbBlockTable>(),
    row<OdDbObjectIterator>(),
    row<OdDbLayerTableRecord>(),
    row<OdDbLayerTable>(),
    row<OdDbLinetypeTableRecord>(),
    row<OdDbLinetypeTable>(),
    row<OdDbRegAppTableRecord>(),
    row<OdDbRegAppTable>(),
    row<OdDbBlockReference>(),
    row<OdDbViewRepBlockReference>(),
    row<OdDbViewport>(),
    row<OdDbLine>(),
    row<OdDbDatabase>(),
    row<OdDbDatabaseReactor>(),
    row<OdDbIdMapping>(),
    row<OdDbIdMappingIter>(),
};

int initCount = 0;

}  // namespace

void oddbInitialize() {
  if (initCount++ > 0) return;
  odrxInitialize();
  for (const ClassRow& row : kClasses) row.registerClass();
}

void oddbUninitialize() {
  if (initCount == 0 || --initCount > 0) return;
  for (std::size_t i = std::size(kClasses); i > 0; --i) kClasses[i - 1].releaseClass();
  odrxUninitialize();
}
