// VdmTakenNames: names in use, and the next free number for a base.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Names without regard to case. Names of one base with a number, "<base>_<number>", are kept as
/// runs of numbers, too, so that finding a free one does not count through those that are taken: a
/// merge renames thousands of names of one base, and each of them meets all the others. Every
/// operation costs a logarithm of the number of names.
class VDM_DB_EXPORT VdmTakenNames {
 public:
  explicit VdmTakenNames(const std::set<OdString>& names);

  /// False for a name that is taken.
  bool insert(const OdString& name);
  void erase(const OdString& name);
  /// "<base>_<number>" with the first number from `start` on, 0 or above, that is not taken; it is
  /// taken then.
  [[nodiscard]] OdString takeNumbered(const OdString& base, int start);

 private:
  using Runs = std::map<int, int>;  ///< first and last of taken numbers without a gap
  static std::optional<std::pair<OdString, int>> split(const OdString& name);
  static void addTo(Runs& runs, int number);
  static void removeFrom(Runs& runs, int number);

  std::set<OdString> m_names;       ///< in upper case
  std::map<OdString, Runs> m_runs;  ///< by base in upper case
};

}  // namespace vdmu
