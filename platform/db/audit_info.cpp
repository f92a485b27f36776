// Findings of a check: how their lines read.
#include "platform/db/audit_info.h"

#include "platform/db/db_object.h"
#include "platform/rx/rx_class.h"

void OdDbAuditInfo::printError(const OdString& name, const OdString& value,
                               const OdString& validation, const OdString& defaultValue) {
  ++m_errors;
  m_lines.append(name + L": " + value + L" is not " + validation + L", " + defaultValue +
                 (m_fix ? L" is set" : L" would be set"));
}

void OdDbAuditInfo::printError(const OdDbObject* object, const OdString& value,
                               const OdString& validation, const OdString& defaultValue) {
  const OdRxClass* objectClass = object->isA();
  const OdString className = objectClass == nullptr ? OdString(L"object") : objectClass->name();
  printError(className + L"(" + object->getDbHandle().ascii() + L")", value, validation,
             defaultValue);
}

void OdDbAuditInfo::printInfo(const OdString& line) { m_lines.append(line); }
