// VdmCompoundObjectId: a path of block references down to an entity, fit to be stored.
#pragma once

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/references/vdm_extended_path.h"

class OdDbDatabase;
class OdDbDwgFiler;

/// The path from the outermost block reference to the leaf, which is mostly an entity. Elements in
/// the drawing of the first one keep a real id, so that filers translate them on save and clone.
/// Elements below an external reference are handles of the external drawing: they stay valid when
/// that is unloaded and loaded again.
///
/// A plain value; copies share their arrays until one is changed, and moved-from values keep
/// theirs. Erasing objects of the path does not change it; resolving it then fails.
class VDM_DB_EXPORT VdmCompoundObjectId {
 public:
  /// What an element holds. Numbers are stored.
  enum Kind : OdInt8 { kNone = 0, kId = 1, kHandle = 2 };

  /// One step of the path.
  struct Element {
    OdInt8 flag = 0;  ///< 0 when set by this class; filed and given back as it is
    OdInt8 kind = kNone;
    OdDbObjectId id;    ///< for kind kId
    OdDbHandle handle;  ///< of the id, or the only reference for kind kHandle
  };

  VdmCompoundObjectId() = default;
  VdmCompoundObjectId(const VdmCompoundObjectId&) = default;
  VdmCompoundObjectId(VdmCompoundObjectId&& other) noexcept;
  VdmCompoundObjectId& operator=(const VdmCompoundObjectId&) = default;
  VdmCompoundObjectId& operator=(VdmCompoundObjectId&& other) noexcept;
  ~VdmCompoundObjectId() = default;

  /// Id of the first element; null for an empty path and for one that begins with a handle.
  [[nodiscard]] OdDbObjectId topId() const;
  /// Ids of the leading elements that hold one.
  [[nodiscard]] OdArray<OdDbObjectId> getPathPrefix() const;
  /// Resolves the path. `ids` gets the leading ids and the ids of the handles after them, up to
  /// the first that cannot be resolved; external references that are not open yet are opened. The
  /// leading ids are taken as they are. See vdmu::makeIdArray for the results.
  vdmu::EVdmPathRes getFullPathEx(OdArray<OdDbObjectId>& ids, bool openErased) const;
  [[nodiscard]] bool isSimpleObjectId() const { return m_elements.size() < 2; }
  [[nodiscard]] unsigned int size() const { return m_elements.size(); }
  /// Null when there is no such element.
  [[nodiscard]] OdDbHandle getHandle(unsigned int index) const;
  [[nodiscard]] const OdArray<Element>& elements() const { return m_elements; }

  /// -1, 0 or 1. Fewer elements come first; then from the last element to the first the handle
  /// decides, then the kind. Flags take no part.
  [[nodiscard]] int compareTo(const VdmCompoundObjectId& other) const;
  [[nodiscard]] bool equalTo(const VdmCompoundObjectId& other) const {
    return compareTo(other) == 0;
  }

  /// The path becomes this one id.
  void setTopId(const OdDbObjectId& id);
  /// Sets the path. With `keepLonger` a longer path keeps its tail and only its front is replaced.
  /// No ids empty the path in both cases.
  void setFullPath(const OdArray<OdDbObjectId>& ids, bool keepLonger);

  /// Texts that go with the path through deep and wblock clones and are not filed otherwise.
  [[nodiscard]] const OdArray<OdString>& sideStrings() const { return m_strings; }
  void setSideStrings(const OdArray<OdString>& strings) { m_strings = strings; }

  /// The database has no influence.
  void dwgOutFields(OdDbDwgFiler* filer, OdDbDatabase* database) const;
  /// Replaces the path. A negative version reads nothing and gives eNotApplicable: such a record
  /// has no compound id. Raises OdError eCorruptData for anything else than a compound id; the path
  /// is empty then.
  OdResult dwgInFields(OdDbDwgFiler* filer, int version);

 private:
  OdArray<OdString> m_strings;
  OdArray<Element> m_elements;
};

namespace vdmu {

/// For dumps: the leading ids as strObjectIdArray writes them, then " | " and the handle in
/// hexadecimal for each further element.
[[nodiscard]] VDM_DB_EXPORT OdString strCompoundObjectId(const VdmCompoundObjectId& id);

}  // namespace vdmu
