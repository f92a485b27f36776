// VdmCompoundObjectId: building, resolving, comparing and filing of stored paths.
#include "vdm_db/references/vdm_compound_object_id.h"

#include <utility>

#include "platform/base/error.h"
#include "platform/filer/dwg_filer.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

using Element = VdmCompoundObjectId::Element;

// Flag, kind and the shortest form of an id or handle.
constexpr OdUInt32 kMinElementBytes = 3;

Element elementOf(const OdDbObjectId& id) {
  return {0, VdmCompoundObjectId::kId, id, id.getHandle()};
}

Element elementOf(const OdDbHandle& handle) {
  return {0, VdmCompoundObjectId::kHandle, OdDbObjectId::kNull, handle};
}

bool filesSideStrings(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kDeepCloneFiler ||
         filer->filerType() == OdDbDwgFiler::kWblockCloneFiler;
}

Element readElement(OdDbDwgFiler* filer) {
  const OdInt8 flag = filer->rdInt8();
  const OdInt8 kind = filer->rdInt8();
  Element element = kind == VdmCompoundObjectId::kId ? elementOf(filer->rdSoftPointerId())
                                                     : elementOf(filer->rdDbHandle());
  element.flag = flag;
  return element;
}

template <class T>
int compareValues(T a, T b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

}  // namespace

VdmCompoundObjectId::VdmCompoundObjectId(VdmCompoundObjectId&& other) noexcept
    : VdmCompoundObjectId(std::as_const(other)) {}

VdmCompoundObjectId& VdmCompoundObjectId::operator=(VdmCompoundObjectId&& other) noexcept {
  return *this = std::as_const(other);
}

// ---- Queries

OdDbObjectId VdmCompoundObjectId::topId() const {
  return m_elements.isEmpty() || m_elements[0].kind != kId ? OdDbObjectId::kNull : m_elements[0].id;
}

OdArray<OdDbObjectId> VdmCompoundObjectId::getPathPrefix() const {
  OdArray<OdDbObjectId> ids;
  for (const Element& element : m_elements) {
    if (element.kind != kId) break;
    ids.append(element.id);
  }
  return ids;
}

vdmu::EVdmPathRes VdmCompoundObjectId::getFullPathEx(OdArray<OdDbObjectId>& ids,
                                                     bool openErased) const {
  ids.clear();
  ids.reserve(m_elements.size());
  const Element* element = m_elements.begin();
  for (; element != m_elements.end() && (element->kind & 1) != 0; ++element) {
    ids.append(element->kind == kId ? element->id : OdDbObjectId::kNull);
  }
  OdArray<OdDbHandle> handles;
  for (; element != m_elements.end(); ++element) handles.append(element->handle);
  return vdmu::makeIdArray(handles, ids, openErased);
}

OdDbHandle VdmCompoundObjectId::getHandle(unsigned int index) const {
  return index < m_elements.size() ? m_elements[index].handle : OdDbHandle();
}

int VdmCompoundObjectId::compareTo(const VdmCompoundObjectId& other) const {
  if (size() != other.size()) return size() < other.size() ? -1 : 1;
  for (unsigned int i = size(); i-- > 0;) {
    const Element& a = m_elements[i];
    const Element& b = other.m_elements[i];
    if (const int order = compareValues<OdUInt64>(a.handle, b.handle)) return order;
    if (const int order = compareValues(a.kind, b.kind)) return order;
  }
  return 0;
}

// ---- Edits

void VdmCompoundObjectId::setTopId(const OdDbObjectId& id) { m_elements = {elementOf(id)}; }

void VdmCompoundObjectId::setFullPath(const OdArray<OdDbObjectId>& ids, bool keepLonger) {
  if (ids.isEmpty()) {
    m_elements.clear();
    return;
  }
  const OdDbDatabase* database = ids.first().originalDatabase();
  if (ids.size() > m_elements.size() || !keepLonger) m_elements.resize(ids.size());
  Element* element = m_elements.asArrayPtr();
  for (const OdDbObjectId& id : ids) {
    *element++ = id.originalDatabase() == database ? elementOf(id) : elementOf(id.getHandle());
  }
}

// ---- Filing
//
//   present   bool     false for an empty path, and nothing follows
//   marker    string   "AcDbImpBlockRefPathObjectId"
//   reserved  int16    0; any value is read
//   elements  int32 count, then per element:
//     flag    int8
//     kind    int8     1: an id follows; otherwise a handle, and 2 is what is read back
//     target  soft pointer or handle
//   strings   int32 count, then each; in the filers of deep and wblock clones only

void VdmCompoundObjectId::dwgOutFields(OdDbDwgFiler* filer, OdDbDatabase*) const {
  filer->wrBool(!m_elements.isEmpty());
  if (m_elements.isEmpty()) return;
  filer->wrString(kVdmImpBlockRefPathObjectId);
  filer->wrInt16(0);
  filer->wrInt32(static_cast<OdInt32>(m_elements.size()));
  for (const Element& element : m_elements) {
    filer->wrInt8(element.flag);
    filer->wrInt8(element.kind);
    if (element.kind == kId) {
      filer->wrSoftPointerId(element.id);
    } else {
      filer->wrDbHandle(element.handle);
    }
  }
  if (!filesSideStrings(filer)) return;
  filer->wrInt32(static_cast<OdInt32>(m_strings.size()));
  for (const OdString& string : m_strings) filer->wrString(string);
}

OdResult VdmCompoundObjectId::dwgInFields(OdDbDwgFiler* filer, int version) {
  m_elements.clear();
  if (version < 0) return eNotApplicable;
  if (!filer->rdBool()) return eOk;
  if (const OdString marker = filer->rdKey(); marker != kVdmImpBlockRefPathObjectId) {
    throw OdError(eCorruptData, L"marker '" + marker + L"' of a compound id, expected '" +
                                    kVdmImpBlockRefPathObjectId + L"'");
  }
  filer->rdInt16();
  OdUInt32 count = filer->rdCount(kMinElementBytes);
  OdArray<Element> elements(count);
  for (; count > 0; --count) elements.append(readElement(filer));
  if (filesSideStrings(filer)) {
    OdArray<OdString> strings;
    for (count = filer->rdCount(); count > 0; --count) strings.append(filer->rdString());
    m_strings = strings;
  }
  m_elements = elements;
  return eOk;
}

// ---- Text

OdString vdmu::strCompoundObjectId(const VdmCompoundObjectId& id) {
  const OdArray<OdDbObjectId> prefix = id.getPathPrefix();
  OdString text = strObjectIdArray(prefix, /*markErased=*/false);
  for (unsigned int i = prefix.size(); i < id.size(); ++i) text += L" | " + id.getHandle(i).ascii();
  return text;
}
