// OdDbDatabaseReactor: observer of a whole database.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

class OdDbDatabase;
class OdDbObject;
class OdString;

/// Attached with OdDbDatabase::addReactor, which does not own it; it is called in order of
/// attachment and may remove itself during a call. Does nothing by default.
class OdDbDatabaseReactor : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDatabaseReactor)

  virtual void objectAppended(const OdDbDatabase*, const OdDbObject*) {}
  virtual void objectUnAppended(const OdDbDatabase*, const OdDbObject*) {}
  virtual void objectReAppended(const OdDbDatabase*, const OdDbObject*) {}
  virtual void objectOpenedForModify(const OdDbDatabase*, const OdDbObject*) {}
  virtual void objectModified(const OdDbDatabase*, const OdDbObject*) {}
  virtual void objectErased(const OdDbDatabase*, const OdDbObject*, bool /*erasing*/) {}
  virtual void headerSysVarChanged(const OdDbDatabase*, const OdString& /*name*/) {}
  virtual void databaseToBeSaved(OdDbDatabase*) {}
  virtual void databaseSaved(OdDbDatabase*) {}
  /// The database is going away; it detaches the reactor after this call.
  virtual void goodbye(const OdDbDatabase*) {}
};
