// Dependencies: partial undo and record.
#include "platform/base/error.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_reference_notes.h"
#include "vdm_db/properties/vdm_dwg_utils.h"

namespace {

// Versions of the record's extended form, and the number ahead of them, in whose place the oldest
// form has the type of the subentity.
constexpr OdInt32 kExtendedFormMark = -1;
constexpr OdInt32 kStringPropertiesVersion = 2;
constexpr OdInt32 kPresentVersion = 3;

// Filers of this version and older ones know the oldest form only.
constexpr OdInt32 kLastVersionWithoutExtendedForm = 29;

bool filesForUndo(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kUndoFiler;
}

bool filesForClones(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kDeepCloneFiler ||
         filer->filerType() == OdDbDwgFiler::kWblockCloneFiler;
}

void writeStrings(OdDbDwgFiler* filer, const OdArray<OdString>& strings) {
  filer->wrInt32(static_cast<OdInt32>(strings.size()));
  for (const OdString& string : strings) filer->wrString(string);
}

OdArray<OdString> readStrings(OdDbDwgFiler* filer) {
  OdArray<OdString> strings;
  for (OdUInt32 count = filer->rdCount(); count > 0; --count) strings.append(filer->rdString());
  return strings;
}

// One id of the drawing and nothing else: what most paths are.
bool isPlainId(const VdmCompoundObjectId& path) {
  if (path.size() != 1 || !path.sideStrings().isEmpty()) return false;
  const VdmCompoundObjectId::Element& element = path.elements()[0];
  return element.kind == VdmCompoundObjectId::kId && element.flag == 0;
}

}  // namespace

// ---- Partial undo: a step (uint8), then what it restores
//
//   link   bool: the path is one plain id; that id by soft pointer, or the compound id and its
//          side strings (int32 count, strings); int32 type, int64 index of the subentity
//   tag    int32
//   hash   int32

OdDbDwgFiler* VdmDbObjectDependency::recordStep(UndoStep step) {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer != nullptr) filer->wrUInt8(step);
  return filer;
}

void VdmDbObjectDependency::recordLink() {
  OdDbDwgFiler* filer = recordStep(kUndoLink);
  if (filer == nullptr) return;
  const bool isPlain = isPlainId(m_compoundId);
  filer->wrBool(isPlain);
  if (isPlain) {
    filer->wrSoftPointerId(m_compoundId.topId());
  } else {
    m_compoundId.dwgOutFields(filer, database());
    writeStrings(filer, m_compoundId.sideStrings());
  }
  filer->wrInt32(m_subent.type());
  filer->wrInt64(m_subent.index());
}

void VdmDbObjectDependency::readLinkStep(OdDbDwgFiler* filer) {
  if (filer->rdBool()) {
    m_compoundId.setTopId(filer->rdSoftPointerId());
    m_compoundId.setSideStrings({});
  } else {
    m_compoundId.dwgInFields(filer, 0);
    m_compoundId.setSideStrings(readStrings(filer));
  }
  const OdInt32 type = filer->rdInt32();
  m_subent = OdDbSubentId(static_cast<OdDb::SubentType>(type), filer->rdInt64());
}

void VdmDbObjectDependency::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdUInt8 step = filer->rdUInt8();
  switch (step) {
    case kUndoLink:
      linkWillChange();
      return readLinkStep(filer);
    case kUndoTag:
      return setNumber(kUndoTag, m_entityTag, filer->rdInt32());
    case kUndoHash:
      return setNumber(kUndoHash, m_bodyHash, filer->rdInt32());
    default:
      throw OdError(eCorruptData, OdString().format(L"undo step %d of a dependency", step));
  }
}

// ---- Filing: the base's part, then
//
//   top         hard pointer in files, soft pointer elsewhere; null unless the first element of the
//               path is an id
//   extended    only when the tag or the hash is not 0, or the path has several elements, and not
//               for drawing versions up to 29; in clones also when the path has side strings:
//     mark        int32   -1
//     version     int32   3
//     properties  bag
//     path        compound id
//   type        int32
//   index       int32   the low half
//
// An undo record always has the extended part. After the index it has the whole index (int64) and
// the side strings of the path (int32 count, strings), so that undo loses nothing.
//
// The reader looks at the first number after the id. A number that is not negative is the type, and
// the id is the path. A negative one is followed by a version: 0 and 1 have no properties; 2 has
// them as strings, and the reader stops after them; the reader refuses versions above 3.

bool VdmDbObjectDependency::needsExtendedForm(const OdDbDwgFiler* filer) const {
  if (filesForUndo(filer)) return true;
  if (filesForClones(filer) && !m_compoundId.sideStrings().isEmpty()) return true;
  return filer->dwgVersion() > kLastVersionWithoutExtendedForm &&
         (m_entityTag != 0 || m_bodyHash != 0 || !m_compoundId.isSimpleObjectId());
}

void VdmDbObjectDependency::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  filer->wrId(filer->filerType() == OdDbDwgFiler::kFileFiler ? OdDb::kHardPointerRef
                                                             : OdDb::kSoftPointerRef,
              m_compoundId.topId());
  if (needsExtendedForm(filer)) {
    filer->wrInt32(kExtendedFormMark);
    filer->wrInt32(kPresentVersion);
    m_properties.dwgOutFields(filer);
    m_compoundId.dwgOutFields(filer, database());
  }
  filer->wrInt32(m_subent.type());
  filer->wrInt32(static_cast<OdInt32>(m_subent.index()));
  if (!filesForUndo(filer)) return;
  filer->wrInt64(m_subent.index());
  writeStrings(filer, m_compoundId.sideStrings());
}

OdResult VdmDbObjectDependency::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  VdmReferenceNotes::note(this);
  if (m_compoundId.size() != 0) linkIsNoLongerValid();
  const OdDbObjectId top =
      filer->rdId(filer->filerType() == OdDbDwgFiler::kFileFiler ? OdDb::kHardPointerRef
                                                                 : OdDb::kSoftPointerRef);
  OdInt32 type = filer->rdInt32();
  OdInt32 index = filer->rdInt32();
  if (type >= 0) {
    m_compoundId.setTopId(top);
    resetProperties();
  } else {
    const OdResult extended = readExtendedForm(filer, /*version=*/index);
    if (extended != eOk) return extended;
    type = filer->rdInt32();
    index = filer->rdInt32();
  }
  const auto subentType = static_cast<OdDb::SubentType>(type);
  if (filesForUndo(filer)) {
    m_subent = OdDbSubentId(subentType, filer->rdInt64());
    m_compoundId.setSideStrings(readStrings(filer));
    return eOk;
  }
  if (type < 0 || index < 0) return eCorruptData;
  m_subent = OdDbSubentId(subentType, index);
  return eOk;
}

OdResult VdmDbObjectDependency::readExtendedForm(OdDbDwgFiler* filer, OdInt32 version) {
  if (version > kPresentVersion) return eUnsupportedVersion;
  if (version == kStringPropertiesVersion) {
    const OdResult result = vdmu::dwgInOldPropertyMap(filer, m_properties);
    mapMembers();
    return result == eOk ? eNotApplicable : eCorruptData;
  }
  if (version == kPresentVersion) {
    const OdResult result = m_properties.dwgInFields(filer);
    if (result != eOk) return result;
  } else {
    resetProperties();
  }
  return m_compoundId.dwgInFields(filer, 0);
}
