// Classes by object type.
#include "platform/db/class_map.h"

#include "platform/rx/rx_class.h"

namespace {

struct TypeRow {
  int type;
  const wchar_t* className;
};

constexpr TypeRow kTypes[] = {
    {7, L"OdDbBlockReference"},
    {19, L"OdDbLine"},
    {34, L"OdDbViewport"},
    {38, L"OdDb3dSolid"},
    {42, L"OdDbDictionary"},
    {48, L"OdDbBlockTable"},
    {49, L"OdDbBlockTableRecord"},
    {50, L"OdDbLayerTable"},
    {51, L"OdDbLayerTableRecord"},
    {56, L"OdDbLinetypeTable"},
    {57, L"OdDbLinetypeTableRecord"},
    {66, L"OdDbRegAppTable"},
    {67, L"OdDbRegAppTableRecord"},
    {79, L"OdDbXrecord"},
};

}  // namespace

OdRxClass* oddbDwgClassMapDesc(int type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == type) return odrxClassDictionary()->getAt(OdString(row.className));
  }
  return nullptr;
}
