// Macros that define the filing of a class whose stored state is one property bag.
#pragma once

// In the source: the binary form is that of OdDbObject, then that of `bag`, which is a
// VdmDbPropertiesBase. The object must be open for what is done.
#define VDM_DEFINE_BAG_DWG_FILING(ClassName, bag) \
  VDM_DEFINE_BAG_FILING(ClassName, bag, dwg, OdDbDwgFiler)

// The same of the group form.
#define VDM_DEFINE_BAG_DXF_FILING(ClassName, bag) \
  VDM_DEFINE_BAG_FILING(ClassName, bag, dxf, OdDbDxfFiler)

#define VDM_DEFINE_BAG_FILING(ClassName, bag, form, Filer)       \
  OdResult ClassName::form##InFields(Filer* filer) {             \
    assertWriteEnabled();                                        \
    const OdResult result = OdDbObject::form##InFields(filer);   \
    return result == eOk ? (bag).form##InFields(filer) : result; \
  }                                                              \
  void ClassName::form##OutFields(Filer* filer) const {          \
    assertReadEnabled();                                         \
    OdDbObject::form##OutFields(filer);                          \
    (bag).form##OutFields(filer);                                \
  }
