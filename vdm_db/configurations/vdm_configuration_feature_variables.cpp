// Configuration features: what a variable is to the feature that it is linked to, and values of
// columns.
#include <algorithm>
#include <numeric>
#include <unordered_set>
#include <vector>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/configurations/vdm_configuration_results.h"
#include "vdm_db/parameters/vdm_variable_names.h"

bool VdmConfigurationFeature::isLinked(const OdDbAssocVariable* variable, bool nonKeyOnly) {
  const LinkPtr link = VdmDbConfigVarReactor::of(variable);
  return !link.isNull() && !(nonKeyOnly && link->isKey());
}

bool VdmConfigurationFeature::isKey(const OdDbAssocVariable* variable) {
  const LinkPtr link = VdmDbConfigVarReactor::of(variable);
  return !link.isNull() && link->isKey();
}

bool VdmConfigurationFeature::isStringType(const OdDbAssocVariable* variable) {
  const LinkPtr link = VdmDbConfigVarReactor::of(variable);
  return !link.isNull() && link->isStringType();
}

VdmConfigurationFeaturePtr VdmConfigurationFeature::getFeature(const OdDbAssocVariable* variable,
                                                               OdDb::OpenMode mode) {
  const LinkPtr link = VdmDbConfigVarReactor::of(variable);
  return link.isNull() ? VdmConfigurationFeaturePtr()
                       : link->ownerId().openAs<VdmConfigurationFeature>(mode);
}

// ---- Texts

OdResult VdmConfigurationFeature::getStringValue(const OdDbAssocVariable* variable,
                                                 OdString& text) {
  const LinkPtr link = VdmDbConfigVarReactor::of(variable);
  if (link.isNull() || !link->isStringType()) return kVdmNotFound;
  text = link->stringValue();
  return eOk;
}

OdResult VdmConfigurationFeature::setStringValue(OdDbAssocVariable* variable, const OdString& text,
                                                 bool select) {
  OdDbObjectId owner;
  OdString column;
  {
    const LinkPtr link = VdmDbConfigVarReactor::of(variable, OdDb::kForWrite);
    if (link.isNull()) return kVdmNotFound;
    const OdResult result = link->setVariableValue(text);
    if (result != eOk || !select) return result;
    owner = link->ownerId();
    column = link->name();
  }
  const VdmConfigurationFeaturePtr feature = owner.openAs<VdmConfigurationFeature>(OdDb::kForWrite);
  return feature.isNull() ? kVdmNotFound : feature->onPropertyModified(column, 0.0);
}

OdResult VdmConfigurationFeature::evaluateStringValue(OdDbObjectId variable, OdString& text) {
  std::unordered_set<OdDbObjectId> passed;  // a damaged drawing may have a circle
  for (OdDbObjectId id = variable; !id.isNull() && passed.insert(id).second;) {
    const OdDbAssocVariablePtr opened = id.openAs<OdDbAssocVariable>();
    if (opened.isNull()) return kVdmNoVariable;
    OdDbObjectIdArray dependencies;
    opened->getDependencies(/*readDependencies=*/true, /*writeDependencies=*/true, dependencies);
    if (dependencies.isEmpty()) return getStringValue(opened, text);
    if (dependencies.size() > 1) return kVdmNotFound;
    const OdDbAssocDependencyPtr dependency = dependencies.first().openAs<OdDbAssocDependency>();
    if (dependency.isNull()) return kVdmNotFound;
    id = dependency->dependentOnObject();
  }
  return kVdmNotFound;
}

OdResult VdmConfigurationFeature::evaluateStringValue(OdDbObjectId block, const OdString& name,
                                                      OdString& text) {
  return evaluateStringValue(vdmu::getAssocVariable(block, name, /*create=*/false, OdString()),
                             text);
}

// ---- Values of a column

namespace {

constexpr double kSameNumber = 1e-10;

// The positions of the first of each run of equal numbers, rising.
std::vector<OdUInt32> firstOfEach(const VdmDoubleArray& numbers) {
  std::vector<OdUInt32> order(numbers.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&](OdUInt32 a, OdUInt32 b) { return numbers[a] < numbers[b]; });
  std::vector<OdUInt32> first;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool isEqual = i > 0 && numbers[order[i]] - numbers[order[i - 1]] <= kSameNumber;
    if (isEqual) {
      first.back() = std::min(first.back(), order[i]);
    } else {
      first.push_back(order[i]);
    }
  }
  std::sort(first.begin(), first.end());
  return first;
}

std::vector<OdUInt32> firstOfEach(const VdmStringArray& texts) {
  std::vector<OdUInt32> first;
  VdmNameOrder(texts).forEachGroup(
      texts, [&first](std::span<const OdUInt32> equal) { first.push_back(equal.front()); });
  std::sort(first.begin(), first.end());
  return first;
}

}  // namespace

OdResult VdmConfigurationFeature::getValueList(const OdString& column,
                                               VdmStringArray& values) const {
  values.clear();
  const TablePtr table = openTable();
  if (table.isNull()) return kVdmTableEmpty;
  if (odStrICmp(table->keyColumnName(), column) == 0) {
    table->getKeyColumn(values);
    return eOk;
  }
  VdmStringArray texts;
  VdmDoubleArray numbers;
  const OdResult result = table->getColumnValues(column, texts, numbers);
  if (result != eOk) return result;
  const bool isNumeric = table->getColumnType(column) == VdmConfigurationCells::kNumeric;
  for (const OdUInt32 row : isNumeric ? firstOfEach(numbers) : firstOfEach(texts)) {
    values.append(texts[row]);
  }
  return eOk;
}

OdResult VdmConfigurationFeature::getValueList(OdDbObjectId variable,
                                               VdmStringArray& values) const {
  values.clear();
  const LinkPtr link = findLinkWhere([&](const VdmDbConfigVarReactor& candidate) {
    return !variable.isNull() && candidate.variable() == variable;
  });
  return link.isNull() ? kVdmNotFound : getValueList(link->name(), values);
}

OdResult VdmConfigurationFeature::getValueList(const OdDbAssocVariable* variable,
                                               VdmStringArray& values) {
  values.clear();
  const LinkPtr link = VdmDbConfigVarReactor::of(variable);
  const VdmConfigurationFeaturePtr feature = getFeature(variable, OdDb::kForRead);
  return feature.isNull() ? kVdmNotFound : feature->getValueList(link->name(), values);
}
