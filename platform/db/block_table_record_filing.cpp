// OdDbBlockTableRecord: the stored form.
#include <utility>

#include "platform/db/block_table_record.h"
#include "platform/db/field_list.h"
#include "platform/db/list_filing.h"
#include "platform/db/units.h"
#include "platform/ge/finite.h"

namespace {

// The references that are cloned along list themselves with a clone; its source does not know them.
bool filesReferences(const OdDbDwgFiler* filer) {
  const OdDbDwgFiler::FilerType type = filer->filerType();
  return type == OdDbDwgFiler::kFileFiler || type == OdDbDwgFiler::kUndoFiler ||
         type == OdDbDwgFiler::kPageFiler || type == OdDbDwgFiler::kBagFiler;
}

}  // namespace

// Fields:
//
//   field          binary                            groups
//   version        uint8                                     1
//   origin         point                             10      drawing units
//   units          int32                             90      OdDb::UnitsValue
//   comments       string                            4
//   path           string                            1       of the external drawing; empty for an
//                                                            ordinary block
//   overlay        bool                              290
//   xref status    uint8                             280     OdDb::XrefStatus
//   entities       int32 count, hard ownership ids   360     in order of appending
//   references     int32 count, soft pointers        331     in rising handle order; not in copies
//                                                            and clones
//
// For erased objects see oddbIsFiled().

template <class Self>
struct OdDbBlockTableRecord::EntityList {
  Self& self;

  template <class Visit>
  void forEach(Visit&& visit) {
    for (const OdDbObjectId& id : std::as_const(self.m_entities)) visit(id);
  }
  static bool isFiled(const OdDbDwgFiler* filer, const OdDbObjectId& id) {
    return oddbIsFiled(filer, id);
  }
  static bool isFiledAtAll(const OdDbDwgFiler*) { return true; }
  void clear() {
    self.m_entities = OdDbObjectIdArray();
    self.m_entitySet.reset();
  }
  void reserve(OdUInt32 count) { self.m_entities.reserve(count); }
  void add(const OdDbObjectId& id) { self.m_entities.append(id); }
};

template <class Self>
struct OdDbBlockTableRecord::ReferenceList {
  Self& self;

  template <class Visit>
  void forEach(Visit&& visit) {
    self.m_references.forEach(visit);
  }
  static bool isFiled(const OdDbDwgFiler* filer, const OdDbObjectId& id) {
    return oddbIsFiled(filer, id);
  }
  static bool isFiledAtAll(const OdDbDwgFiler* filer) { return filesReferences(filer); }
  void clear() { self.m_references.clear(); }
  void reserve(OdUInt32) {}
  void add(const OdDbObjectId& id) { self.m_references.insert(id); }
};

template <class Fields, class Self>
void OdDbBlockTableRecord::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(10, self.m_origin, [](const OdGePoint3d& point) { return odgeIsFinite(point); });
  fields.template number<OdInt32>(90, self.m_units, oddbIsUnit);
  fields.value(4, self.m_comments);
  fields.value(1, self.m_path);
  fields.value(290, self.m_overlay);
  fields.template number<OdUInt8>(280, self.m_xrefStatus,
                                  [](OdUInt8 status) { return status <= OdDb::kXrfUnresolved; });
  fields.template ids<OdDb::kHardOwnershipRef>(360, EntityList<Self>{self});
  fields.template ids<OdDb::kSoftPointerRef>(331, ReferenceList<Self>{self});
}

OD_DB_DEFINE_FILING_OUT(OdDbBlockTableRecord, OdDbSymbolTableRecord)

OdResult OdDbBlockTableRecord::dwgInFields(OdDbDwgFiler* filer) {
  OdResult result = OdDbSymbolTableRecord::dwgInFields(filer);
  if (result != eOk) return result;
  const OdDb::XrefStatus present = m_xrefStatus;
  result = OdDbFieldFiling::dwgIn(filer, *this);
  const OdDb::XrefStatus filed = std::exchange(m_xrefStatus, present);
  if (result != eOk) return result;
  adoptStatus(filed, /*undoing=*/filer->filerType() == OdDbDwgFiler::kUndoFiler);
  return eOk;
}

OdResult OdDbBlockTableRecord::dxfInFields(OdDbDxfFiler* filer) {
  OdResult result = OdDbSymbolTableRecord::dxfInFields(filer);
  if (result != eOk) return result;
  result = OdDbFieldFiling::dxfIn(filer, *this);
  if (result == eOk) adoptStatus(m_xrefStatus, /*undoing=*/false);
  return result;
}

// Undo changes what a block stands for, and not whether an external drawing is loaded.
void OdDbBlockTableRecord::adoptStatus(OdDb::XrefStatus status, bool undoing) {
  if (m_path.isEmpty()) {
    m_xrefStatus = OdDb::kXrfNotAnXref;
  } else if (!undoing || m_xrefStatus == OdDb::kXrfNotAnXref) {
    m_xrefStatus = status;
  }
}
