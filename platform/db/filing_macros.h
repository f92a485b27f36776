// Macros that give a class with a field list its four filing functions.
#pragma once

// In the class definition, after all other members: declares dwgInFields(), dwgOutFields(),
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
#define OD_DB_DEFINE_FILING(ClassName, Parent) \
  OD_DB_DEFINE_FILING_NOTED(ClassName, Parent, static_cast<void>(0))

// The same for a class that keeps something about its fields elsewhere: reading runs `note` after
// the fields of the parent, before those of the class are replaced.
#define OD_DB_DEFINE_FILING_NOTED(ClassName, Parent, note)                \
  OD_DB_DEFINE_FILING_OUT(ClassName, Parent)                              \
  OdResult ClassName::dwgInFields(OdDbDwgFiler* filer) {                  \
    const OdResult result = Parent::dwgInFields(filer);                   \
    note;                                                                 \
    return result == eOk ? OdDbFieldFiling::dwgIn(filer, *this) : result; \
  }                                                                       \
  OdResult ClassName::dxfInFields(OdDbDxfFiler* filer) {                  \
    const OdResult result = Parent::dxfInFields(filer);                   \
    note;                                                                 \
    return result == eOk ? OdDbFieldFiling::dxfIn(filer, *this) : result; \
  }

// The two that write, for a class that reads in its own way.
#define OD_DB_DEFINE_FILING_OUT(ClassName, Parent)          \
  void ClassName::dwgOutFields(OdDbDwgFiler* filer) const { \
    Parent::dwgOutFields(filer);                            \
    OdDbFieldFiling::dwgOut(filer, *this);                  \
  }                                                         \
  void ClassName::dxfOutFields(OdDbDxfFiler* filer) const { \
    Parent::dxfOutFields(filer);                            \
    OdDbFieldFiling::dxfOut(filer, *this);                  \
  }
