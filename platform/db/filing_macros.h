// Macros that give a class with a field list its four filing functions.
#pragma once

// In the class definition, after the public members: declares dwgInFields(), dwgOutFields(),
// dxfInFields(), dxfOutFields() and the field list (see field_list.h), which the source defines
// before it uses OD_DB_DEFINE_FILING. Ends in `private:`.
#define OD_DB_DECLARE_FILING()                           \
 public:                                                 \
  OdResult dwgInFields(OdDbDwgFiler* filer) override;    \
  void dwgOutFields(OdDbDwgFiler* filer) const override; \
  OdResult dxfInFields(OdDbDxfFiler* filer) override;    \
  void dxfOutFields(OdDbDxfFiler* filer) const override; \
                                                         \
 private:                                                \
  friend struct OdDbFieldFiling;                         \
  template <class Fields, class Self>                    \
  static void fields(Fields& fields, Self& self);        \
                                                         \
 private:

// In the source: each form is that of the parent, then the fields of the class.
#define OD_DB_DEFINE_FILING(ClassName, Parent)                            \
  void ClassName::dwgOutFields(OdDbDwgFiler* filer) const {               \
    Parent::dwgOutFields(filer);                                          \
    OdDbFieldFiling::dwgOut(filer, *this);                                \
  }                                                                       \
  OdResult ClassName::dwgInFields(OdDbDwgFiler* filer) {                  \
    const OdResult result = Parent::dwgInFields(filer);                   \
    return result == eOk ? OdDbFieldFiling::dwgIn(filer, *this) : result; \
  }                                                                       \
  void ClassName::dxfOutFields(OdDbDxfFiler* filer) const {               \
    Parent::dxfOutFields(filer);                                          \
    OdDbFieldFiling::dxfOut(filer, *this);                                \
  }                                                                       \
  OdResult ClassName::dxfInFields(OdDbDxfFiler* filer) {                  \
    const OdResult result = Parent::dxfInFields(filer);                   \
    return result == eOk ? OdDbFieldFiling::dxfIn(filer, *this) : result; \
  }
