// EntityAssocAttribute: which dependency an entity was made from.
#pragma once

#include "platform/base/handle.h"
#include "platform/base/result.h"
#include "platform/db/entity.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDwgFiler;

namespace vdm_assoc {

class EntityAssocAttribute;
using EntityAssocAttributePtr = OdSmartPtr<EntityAssocAttribute>;

/// A record in the extended data of an entity (application "VdmAssoc") with the handle of the
/// dependency that the entity was made from. A transient object: it is read from an entity, changed
/// and written back. Another module derives classes that add fields of their own after those of
/// this one.
///
/// The record is bytes, which cloning does not translate: in the clone of an entity the handle is
/// still that of the source's dependency.
///
/// While it has an entity, that stays open.
class VDM_DB_EXPORT EntityAssocAttribute : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(EntityAssocAttribute)

  EntityAssocAttribute();
  ~EntityAssocAttribute() override;
  /// A record of the present version, to be written to the entity.
  static EntityAssocAttributePtr createObject(const OdSmartPtr<OdDbEntity>& entity,
                                              const OdDbHandle& depHandle);
  /// The record of an entity as an object of the class. Null for a null entity, one without such
  /// data, a class that is not registered or no record, and data that the class cannot read.
  static EntityAssocAttributePtr readAttributeFromEntity(OdString className,
                                                         const OdSmartPtr<OdDbEntity>& entity);

  [[nodiscard]] OdDbHandle depHandle() const { return m_depHandle; }
  void setDepHandle(const OdDbHandle& handle) { m_depHandle = handle; }
  [[nodiscard]] const OdSmartPtr<OdDbEntity>& entity() const { return m_entity; }
  void setEntity(const OdSmartPtr<OdDbEntity>& entity) { m_entity = entity; }
  /// As read, or as created.
  [[nodiscard]] OdLong storedMajorVersion() const { return m_storedMajorVersion; }
  [[nodiscard]] OdLong minorVersionRead() const { return m_minorVersionRead; }

  /// Replaces the record of the entity, which is upgraded for that; the application is registered
  /// when need be. eNoEntity (24), eEntityNotInDrawing (21), eNoReference (106) for a null handle,
  /// eNoExtendedData (417) for fields of a derived class that extended data cannot hold (16000
  /// bytes or more); nothing changes then.
  OdResult writeXData();

  // A derived class calls these first and files its fields after that.
  /// eNotApplicable (1) for a major version below 1, eNullHandle (16) for a null handle. Raises
  /// eEndOfStream for a record that is too short.
  virtual OdResult dwgInFields(OdDbDwgFiler* filer);
  virtual void dwgOutFields(OdDbDwgFiler* filer) const;
  /// The record as a chain led by the application's name; null when it cannot be kept there.
  virtual OdSmartPtr<OdResBuf> convertToResBuf();
  /// `chain` begins after the application's name. eNoBinaryData (39) when it begins with no bytes,
  /// otherwise what dwgInFields gives or raises.
  virtual OdResult convertFromResBuf(OdResBuf* chain);
  /// Of the form that is written: 2.
  [[nodiscard]] virtual OdLong minorVersion() const;

 private:
  OdDbHandle m_depHandle;
  OdSmartPtr<OdDbEntity> m_entity;
  OdInt32 m_minorVersionRead = 0;
  OdInt32 m_storedMajorVersion = 0;
};

}  // namespace vdm_assoc
