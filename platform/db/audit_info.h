// OdDbAuditInfo: findings of a check of a drawing, and whether to mend them.
#pragma once

#include <utility>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/base/types.h"

class OdDbObject;

/// One finding of a check. `docs/audit.md` lists the codes.
struct OdDbAuditFinding {
  OdString code;        ///< such as "dangling-reference"
  OdUInt64 handle = 0;  ///< of the object; 0 for the drawing as a whole
  OdString name;        ///< such as "OdDbLine(2A)"
  OdString value;       ///< what was found ...
  OdString rule;        ///< ... and is not this
  OdString remedy;      ///< what takes its place when it is mended; empty where nothing can

  [[nodiscard]] OdString text() const { return name + L": " + value + L" is not " + rule; }
};

/// Handed to OdDbDatabase::audit and on to every object's audit(). A finding is one line:
/// "<name>: <value> is not <validation>, <default value> is set" (or "would be set" when nothing
/// is mended). Hosts derive from it to show lines as they come.
class OdDbAuditInfo {
 public:
  explicit OdDbAuditInfo(bool fixErrors = false) : m_fix(fixErrors) {}
  virtual ~OdDbAuditInfo() = default;

  /// Findings are to be mended. An object that mends calls errorsFixed() for each.
  [[nodiscard]] bool fixErrors() const { return m_fix; }
  void setFixErrors(bool fixErrors) { m_fix = fixErrors; }

  /// Notes one finding: what, the value found, the rule that it breaks, and what replaces it:
  /// "nothing" where fixing changes nothing.
  virtual void printError(const OdString& name, const OdString& value, const OdString& validation,
                          const OdString& defaultValue);
  /// The same; the name is made of the object's class and handle.
  void printError(const OdDbObject* object, const OdString& value, const OdString& validation,
                  const OdString& defaultValue);
  /// Notes one finding with its code, and hands it on to printError().
  void printFinding(const OdDbAuditFinding& finding);
  /// The same without a line and a count: of objects that print and count in a way of their own.
  void noteFinding(OdDbAuditFinding finding) { m_findings.push_back(std::move(finding)); }
  /// A line that is no finding.
  virtual void printInfo(const OdString& line);
  /// Counts findings that were mended.
  void errorsFixed(OdUInt32 count = 1) { m_fixes += count; }
  /// Counts findings beyond those printed.
  void errorsFound(OdUInt32 count = 1) { m_errors += count; }

  [[nodiscard]] OdUInt32 numErrors() const { return m_errors; }
  [[nodiscard]] OdUInt32 numFixes() const { return m_fixes; }
  /// All lines in the order in which they came, findings and information.
  [[nodiscard]] const OdStringArray& lines() const { return m_lines; }

  /// All findings in the order in which they came. One that was printed without a code has the code
  /// "object".
  [[nodiscard]] const std::vector<OdDbAuditFinding>& findings() const { return m_findings; }

  /// Display must be computed anew after the check.
  void requestRegen() { m_regen = true; }
  [[nodiscard]] bool regenRequested() const { return m_regen; }

 private:
  OdStringArray m_lines;
  std::vector<OdDbAuditFinding> m_findings;
  OdUInt64 m_handle = 0;  ///< of the object that is printing
  OdUInt32 m_errors = 0;
  OdUInt32 m_fixes = 0;
  bool m_fix = false;
  bool m_regen = false;
};
