// OdDbAssocDependency, OdDbAssocValueDependency: what an action depends on.
#pragma once

#include "platform/assoc/assoc_status.h"
#include "platform/db/db_object.h"
#include "platform/db/filing_macros.h"

class OdDbAssocDependency;
using OdDbAssocDependencyPtr = OdSmartPtr<OdDbAssocDependency>;

/// One reference of an action to an object: the action reads the object, changes it, or both. Owned
/// by the action. Attached to an object, a dependency is one of its persistent reactors; when the
/// object changes, the action becomes out of date.
class OdDbAssocDependency : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAssocDependency)

  /// Null when the dependency is attached to nothing.
  [[nodiscard]] OdDbObjectId dependentOnObject() const;
  /// The action that owns the dependency; null when it has none.
  [[nodiscard]] OdDbObjectId owningAction() const;
  [[nodiscard]] bool isReadDependency() const;
  [[nodiscard]] bool isWriteDependency() const;
  void setIsReadDependency(bool reads);
  void setIsWriteDependency(bool writes);
  /// kAssocErased while the object is erased or absent.
  [[nodiscard]] OdDbAssocStatus status() const;
  void setStatus(OdDbAssocStatus status);

  /// Attaches the dependency, which is in a database, to an object of it: eAlreadyInDatabase when
  /// it is attached, eWrongDatabase, eNullObjectId.
  OdResult attachToObject(const OdDbObjectId& object);
  /// Takes it off the object again. eOk also when it was attached to nothing.
  OdResult detachFromObject();
  [[nodiscard]] bool isAttachedToObject() const { return !dependentOnObject().isNull(); }

  /// The first dependency on an object; null when there is none.
  static OdDbObjectId getFirstDependencyOnObject(const OdDbObjectId& object);
  /// The dependency on the same object that follows this one; null for the last. Dependencies on
  /// one object have no order that means anything. A step takes constant time on variables.
  [[nodiscard]] OdDbObjectId nextDependencyOnObject() const;

  void modified(const OdDbObject* object) override;
  void erased(const OdDbObject* object, bool erasing) override;

 private:
  friend class OdDbAssocGraph;
  friend class OdDbAssocVariable;
  void markAction();

  // Small ones first: they lie in the padding of the base, and there are many dependencies.
  bool m_reads = true;
  bool m_writes = false;
  OdDbAssocStatus m_status = kAssocUpToDate;
  OdDbObjectId m_dependentOn;

  OD_DB_DECLARE_FILING()
};

class OdDbAssocValueDependency;
using OdDbAssocValueDependencyPtr = OdSmartPtr<OdDbAssocValueDependency>;

/// A dependency on the value of a variable. The expression of the owning variable mentions the
/// other one under the name that is kept here.
class OdDbAssocValueDependency : public OdDbAssocDependency {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAssocValueDependency)

  /// The name under which the owning expression mentions the variable; empty for an action that is
  /// no variable.
  [[nodiscard]] const OdString& valueName() const;

 private:
  friend class OdDbAssocGraph;
  friend class OdDbAssocVariable;

  OdString m_name;

  OD_DB_DECLARE_FILING()
};
