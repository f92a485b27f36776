// What the entries of the drawing's style dictionaries share.
#pragma once

#include "platform/db/db_object.h"

/// A name and a description. Not a run-time class: the class that derives from it names OdDbObject
/// as its parent.
class OdDbNamedStyle : public OdDbObject {
 public:
  [[nodiscard]] OdString name() const { return read(m_name); }
  /// Names are given when the object is put into its dictionary; this one is kept beside it.
  void setName(const OdString& name) { assign(m_name, name); }
  [[nodiscard]] OdString description() const { return read(m_description); }
  void setDescription(const OdString& description) { assign(m_description, description); }

 protected:
  /// Their stored fields, the first of the class.
  template <class Fields, class Self>
  static void nameFields(Fields& fields, Self& self) {
    fields.version(1);
    fields.value(2, self.m_name);
    fields.value(4, self.m_description);
  }

  OdString m_name;
  OdString m_description;
};
