// Classes by object type.
#include "platform/db/class_map.h"

#include "platform/rx/rx_class.h"

namespace {

struct TypeRow {
  int type;
  const wchar_t* className;
};

constexpr TypeRow kTypes[] = {
    {1, L"OdDbText"},
    {7, L"OdDbBlockReference"},
    {15, L"OdDb2dPolyline"},
    {17, L"OdDbArc"},
    {18, L"OdDbCircle"},
    {19, L"OdDbLine"},
    {20, L"OdDbOrdinateDimension"},
    {21, L"OdDbRotatedDimension"},
    {22, L"OdDbAlignedDimension"},
    {23, L"OdDb3PointAngularDimension"},
    {25, L"OdDbRadialDimension"},
    {26, L"OdDbDiametricDimension"},
    {27, L"OdDbPoint"},
    {34, L"OdDbViewport"},
    {35, L"OdDbEllipse"},
    {38, L"OdDb3dSolid"},
    {42, L"OdDbDictionary"},
    {44, L"OdDbMText"},
    {45, L"OdDbLeader"},
    {47, L"OdDbMline"},
    {48, L"OdDbBlockTable"},
    {49, L"OdDbBlockTableRecord"},
    {50, L"OdDbLayerTable"},
    {51, L"OdDbLayerTableRecord"},
    {52, L"OdDbTextStyleTable"},
    {53, L"OdDbTextStyleTableRecord"},
    {56, L"OdDbLinetypeTable"},
    {57, L"OdDbLinetypeTableRecord"},
    {66, L"OdDbRegAppTable"},
    {67, L"OdDbRegAppTableRecord"},
    {68, L"OdDbDimStyleTable"},
    {69, L"OdDbDimStyleTableRecord"},
    {73, L"OdDbMlineStyle"},
    {77, L"OdDbPolyline"},
    {78, L"OdDbHatch"},
    {79, L"OdDbXrecord"},
};

}  // namespace

OdRxClass* oddbDwgClassMapDesc(int type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == type) return odrxClassDictionary()->getAt(OdString(row.className));
  }
  return nullptr;
}
