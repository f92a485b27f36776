// Verbs for the tests of configurations.
#pragma once

#include <string>
#include <vector>

#include "platform/assoc/assoc_variable.h"
#include "tests/support/reference_testing.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_utils/vdmu_reporter.h"

namespace configuration_testing {

using RowMap = VdmDbConfigurationTable::RowMap;
using Rows = std::vector<std::vector<std::string>>;

/// Row by row.
VdmStringArray sheetOf(const Rows& rows);
/// The same with loading; what was reported goes to `lines`, the identifier before each text.
OdResult loadSheet(VdmDbConfigurationTable& table, const Rows& rows, bool promote = false,
                   std::vector<std::string>* lines = nullptr);
/// What the table exports, or nothing.
Rows exported(const VdmDbConfigurationTable& table);

/// A block with variables and a configuration feature.
class ConfigurationTest : public virtual VdmModule, public ReferenceTest {
 protected:
  ConfigurationTest();
  /// What a reaction raises is a message to the host and nothing else.
  void TearDown() override { EXPECT_EQ(m_host.lines, std::vector<std::string>()); }

  [[nodiscard]] VdmDbFeatureManagerPtr manager() const;
  [[nodiscard]] VdmConfigurationFeaturePtr feature(OdDb::OpenMode mode = OdDb::kForRead) const;
  [[nodiscard]] VdmConfigurationFeaturePtr edit() const { return feature(OdDb::kForWrite); }
  template <class T>
  static OdSmartPtr<T> change(OdDbObjectId id) {
    return open<T>(id, OdDb::kForWrite);
  }
  OdResult loadSheet(const Rows& rows, bool createVariables = true, bool promote = false);

  [[nodiscard]] OdDbObjectId variable(const OdString& name) const;
  OdDbObjectId addVariable(const wchar_t* name, double value);
  static double numberOf(OdDbObjectId variable);
  static OdResult setNumber(OdDbObjectId variable, double value);
  void setExpression(const wchar_t* name, const wchar_t* expression);
  /// The link of a column; null without one.
  [[nodiscard]] VdmDbConfigVarReactorPtr link(const OdString& column) const;

  /// "<selected>: <variable>=<value> ..." in the order of the links.
  [[nodiscard]] std::string state() const { return stateOf(*feature()); }
  static std::string stateOf(const VdmConfigurationFeature& feature);
  using DrawingVerbs::stateOf;
  [[nodiscard]] std::vector<std::string> columnNames() const;
  /// Everything in the drawing.
  [[nodiscard]] std::string wholeState() const;

  /// The first configuration feature of a block; null without one.
  static VdmConfigurationFeaturePtr configurationOf(OdDbObjectId block);
  /// A copy of the block in a drawing.
  OdDbObjectId copyBlock(const OdDbDatabasePtr& drawing);
  /// Saves and reads again.
  void reopen();

  OdDbObjectId m_block, m_feature;
};

}  // namespace configuration_testing
