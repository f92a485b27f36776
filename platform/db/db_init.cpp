// Registration of the drawing database's classes.
#include "platform/db/db_init.h"

#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/database_reactor.h"
#include "platform/db/dictionary.h"
#include "platform/db/dim_style_table.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/material.h"
#include "platform/db/mline_style.h"
#include "platform/db/proxy_object.h"
#include "platform/db/regapp_table.h"
#include "platform/db/text_style_table.h"
#include "platform/db/visual_style.h"
#include "platform/db/xrecord.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/dxf_filer.h"
#include "platform/filer/res_buf.h"
#include "platform/gi/drawable_overrule.h"
#include "platform/gi/world_draw.h"
#include "platform/rx/class_rows.h"
#include "platform/rx/rx_init.h"

namespace {

// Parents before their children.
constexpr OdRxClassRow kRows[] = {
    odrxClassRow<OdResBuf>(),
    odrxClassRow<OdDbDwgFiler>(),
    odrxClassRow<OdDbDxfFiler>(),
    odrxClassRow<OdGiDrawable>(),
    odrxClassRow<OdGiDrawableOverrule>(),
    odrxClassRow<OdGiSubEntityTraits>(),
    odrxClassRow<OdGiWorldDraw>(),
    odrxClassRow<OdDbObject>(),
    odrxClassRow<OdDbProxyObject>(),
    odrxClassRow<OdDbDictionary>(),
    odrxClassRow<OdDbDictionaryIterator>(),
    odrxClassRow<OdDbXrecord>(),
    odrxClassRow<OdDbMaterial>(),
    odrxClassRow<OdDbVisualStyle>(),
    odrxClassRow<OdDbMlineStyle>(),
    odrxClassRow<OdDbSymbolTableRecord>(),
    odrxClassRow<OdDbSymbolTable>(),
    odrxClassRow<OdDbSymbolTableIterator>(),
    odrxClassRow<OdDbEntity>(),
    odrxClassRow<OdDbBlockTableRecord>(),
    odrxClassRow<OdDbBlockTable>(),
    odrxClassRow<OdDbObjectIterator>(),
    odrxClassRow<OdDbLayerTableRecord>(),
    odrxClassRow<OdDbLayerTable>(),
    odrxClassRow<OdDbLinetypeTableRecord>(),
    odrxClassRow<OdDbLinetypeTable>(),
    odrxClassRow<OdDbRegAppTableRecord>(),
    odrxClassRow<OdDbRegAppTable>(),
    odrxClassRow<OdDbTextStyleTableRecord>(),
    odrxClassRow<OdDbTextStyleTable>(),
    odrxClassRow<OdDbDimStyleTableRecord>(),
    odrxClassRow<OdDbDimStyleTable>(),
    odrxClassRow<OdDbDatabase>(),
    odrxClassRow<OdDbDatabaseReactor>(),
};
constinit OdRxClassRows g_classes(kRows);

}  // namespace

// Each start holds one of the run-time class system below.
void oddbInitializeCore() {
  odrxInitialize();
  g_classes.start();
}

void oddbUninitializeCore() {
  g_classes.stop();
  odrxUninitialize();
}
