// Verbs for the tests of configurations.
#include "tests/vdm_db/configurations/configuration_testing.h"

#include "platform/cloning/id_mapping.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace configuration_testing {

VdmStringArray sheetOf(const Rows& rows) {
  VdmStringArray sheet;
  for (const auto& row : rows) {
    for (const std::string& cell : row) sheet.append(OdString(cell));
  }
  return sheet;
}

OdResult loadSheet(VdmDbConfigurationTable& table, const Rows& rows, bool promote,
                   std::vector<std::string>* lines) {
  VdmuMessageCollector messages;
  const auto columns = rows.empty() ? 0U : static_cast<unsigned>(rows[0].size());
  const OdResult result =
      table.load(sheetOf(rows), static_cast<unsigned>(rows.size()), columns, messages, promote);
  for (const auto& message : messages.messages()) {
    if (lines == nullptr) continue;
    lines->push_back(std::to_string(message.id) + ": " + std::string(message.text.utf8()));
  }
  return result;
}

Rows exported(const VdmDbConfigurationTable& table) {
  VdmStringArray cells;
  unsigned rows = 0;
  unsigned columns = 0;
  Rows result;
  if (table.exportTable(cells, rows, columns) != eOk) return result;
  for (unsigned row = 0; row < rows; ++row) {
    auto& line = result.emplace_back();
    for (unsigned i = 0; i < columns; ++i) line.emplace_back(cells[row * columns + i].utf8());
  }
  return result;
}

ConfigurationTest::ConfigurationTest() : m_block(addBlock(m_drawing, L"Part")) {
  VdmDbFeatureManager::getInstance(m_block, /*create=*/true);
  m_feature =
      manager()->createFeatureData(VdmConfigurationFeature::desc(), L"Variants", false, false);
}

VdmDbFeatureManagerPtr ConfigurationTest::manager() const {
  return DrawingVerbs::edit<VdmDbFeatureManager>(
      VdmDbFeatureManager::getInstance(m_block, /*create=*/false));
}

VdmConfigurationFeaturePtr ConfigurationTest::feature(OdDb::OpenMode mode) const {
  return m_feature.openAs<VdmConfigurationFeature>(mode);
}

OdResult ConfigurationTest::loadSheet(const Rows& rows, bool createVariables, bool promote) {
  VdmuMessageCollector messages;
  return edit()->setConfigurationTable(m_block, sheetOf(rows), static_cast<unsigned>(rows.size()),
                                       static_cast<unsigned>(rows[0].size()), messages,
                                       createVariables, promote);
}

OdDbObjectId ConfigurationTest::variable(const OdString& name) const {
  return vdmu::getAssocVariable(m_block, name, /*create=*/false, OdString());
}

OdDbObjectId ConfigurationTest::addVariable(const wchar_t* name, double value) {
  const OdDbObjectId id = vdmu::getAssocVariable(m_block, name, /*create=*/true, OdString());
  EXPECT_EQ(setNumber(id, value), eOk);
  return id;
}

double ConfigurationTest::numberOf(OdDbObjectId variable) {
  return vdmu::getValueAsDouble(open<OdDbAssocVariable>(variable).get());
}

OdResult ConfigurationTest::setNumber(OdDbObjectId variable, double value) {
  return DrawingVerbs::edit<OdDbAssocVariable>(variable)->setValue(OdDbEvalVariant::init(value));
}

void ConfigurationTest::setExpression(const wchar_t* name, const wchar_t* expression) {
  OdString error;
  EXPECT_EQ(DrawingVerbs::edit<OdDbAssocVariable>(variable(name))
                ->setExpression(expression, OdString::kEmpty, true, true, &error),
            eOk)
      << error;
  vdmu::evaluateVariables(m_block);
}

VdmDbConfigVarReactorPtr ConfigurationTest::link(const OdString& column) const {
  for (const OdDbObjectId& id : feature()->reactors()) {
    VdmDbConfigVarReactorPtr link = id.openAs<VdmDbConfigVarReactor>();
    if (!link.isNull() && link->name() == column) return link;
  }
  return {};
}

std::string ConfigurationTest::stateOf(const VdmConfigurationFeature& feature) {
  OdString state = feature.selectedConfiguration() + ":";
  for (const OdDbObjectId& id : feature.reactors()) {
    const VdmDbConfigVarReactorPtr link = id.openAs<VdmDbConfigVarReactor>();
    OdString text;
    double number = 0;
    if (link.isNull() || link->getVariableValue(text, number) != eOk) continue;
    state += " " + open<OdDbAssocVariable>(link->variable())->name() + "=" +
             (link->isStringType() ? text : vdmu::getConstExpression(number));
  }
  return std::string(state.utf8());
}

std::vector<std::string> ConfigurationTest::columnNames() const {
  return exported(*open<VdmDbConfigurationTable>(feature()->configTableId()))[0];
}

std::string ConfigurationTest::wholeState() const {
  std::string all;
  for (const auto& [handle, bytes] : statesOf(*m_drawing)) all += std::to_string(handle) + bytes;
  return all;
}

VdmConfigurationFeaturePtr ConfigurationTest::configurationOf(OdDbObjectId block) {
  const VdmDbFeatureManagerPtr manager =
      open<VdmDbFeatureManager>(VdmDbFeatureManager::getInstance(block, /*create=*/false));
  for (const OdDbObjectId& id : manager->featureIds()) {
    VdmConfigurationFeaturePtr feature = id.openAs<VdmConfigurationFeature>();
    if (!feature.isNull()) return feature;
  }
  return {};
}

OdDbObjectId ConfigurationTest::copyBlock(const OdDbDatabasePtr& drawing) {
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  const OdDbObjectId table = drawing->getBlockTableId();
  EXPECT_EQ(drawing == m_drawing
                ? drawing->deepCloneObjects({m_block}, table, *mapping)
                : m_drawing->wblockCloneObjects({m_block}, table, *mapping, OdDb::kDrcIgnore),
            eOk);
  OdDbIdPair pair(m_block);
  EXPECT_TRUE(mapping->compute(pair));
  return pair.value();
}

void ConfigurationTest::reopen() {
  const OdDbHandle block = m_block.getHandle();
  const OdDbHandle feature = m_feature.getHandle();
  static int files = 0;
  const std::string file = "configurations" + std::to_string(files++) + ".vdm";
  saveAs(m_drawing, path(file.c_str()));
  m_drawing = nullptr;
  m_drawing = read(file.c_str());
  m_block = m_drawing->getOdDbObjectId(block);
  m_feature = m_drawing->getOdDbObjectId(feature);
}

}  // namespace configuration_testing
