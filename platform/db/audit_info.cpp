// Findings of a check: how their lines read.
#include "platform/db/audit_info.h"

#include "platform/db/db_object.h"
#include "platform/rx/rx_class.h"

namespace {

constexpr const wchar_t* kUncoded = L"object";
constexpr const wchar_t* kNoRemedy = L"nothing";

}  // namespace

void OdDbAuditInfo::printError(const OdString& name, const OdString& value,
                               const OdString& validation, const OdString& defaultValue) {
  ++m_errors;
  const OdString remedy = defaultValue == kNoRemedy ? OdString() : defaultValue;
  m_findings.push_back({kUncoded, m_handle, name, value, validation, remedy});
  m_lines.append(name + L": " + value + L" is not " + validation + L", " + defaultValue +
                 (m_fix ? L" is set" : L" would be set"));
}

void OdDbAuditInfo::printError(const OdDbObject* object, const OdString& value,
                               const OdString& validation, const OdString& defaultValue) {
  const OdRxClass* objectClass = object->isA();
  const OdString className = objectClass == nullptr ? OdString(L"object") : objectClass->name();
  m_handle = object->getDbHandle();
  printError(className + L"(" + object->getDbHandle().ascii() + L")", value, validation,
             defaultValue);
  m_handle = 0;
}

void OdDbAuditInfo::printFinding(const OdDbAuditFinding& finding) {
  const std::size_t known = m_findings.size();
  printError(finding.name, finding.value, finding.rule,
             finding.remedy.isEmpty() ? OdString(kNoRemedy) : finding.remedy);
  m_findings.resize(known);
  m_findings.push_back(finding);
}

void OdDbAuditInfo::printInfo(const OdString& line) { m_lines.append(line); }
