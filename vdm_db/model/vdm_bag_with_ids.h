// VdmBagWithIds: a property bag with indexed lists of ids among its values.
#pragma once

#include "platform/base/result.h"

class OdDbDwgFiler;
class OdDbDxfFiler;

/// Base of an implementation object that maps the arrays of VdmIndexedIds members to properties.
/// Reading the bag fills those arrays and knows nothing of the look-up tables of the lists, so the
/// class drops the tables in idsWereRead(). `Base` is VdmDbPropertiesBase or a class below it.
template <class Base>
class VdmBagWithIds : public Base {
 public:
  OdResult dwgInFields(OdDbDwgFiler* filer) override {
    const OdResult result = Base::dwgInFields(filer);
    idsWereRead();
    return result;
  }
  OdResult dxfInFields(OdDbDxfFiler* filer) override {
    const OdResult result = Base::dxfInFields(filer);
    idsWereRead();
    return result;
  }

 private:
  /// Calls VdmIndexedIds::replaced() of each list. Also called when reading failed.
  virtual void idsWereRead() = 0;
};
