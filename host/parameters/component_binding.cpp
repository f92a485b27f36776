// What a component or an insert takes from numbers and expressions.
//
// A property that an expression gives has a reactor of expressions below the feature's carrier,
// with an anonymous variable of its own; when its value changes the feature is called, and notes
// what the next pass has to do. A property that is a number has none.
#include "host/parameters/component_binding.h"

#include <numbers>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_size_feature.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/expression_parser.h"
#include "platform/assoc/variable_dimension.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace vdm_host {
namespace {

using OdExpression::Dimension;

OdStatus refuse(const OdString& name, const OdString& why, OdResult code = eInvalidInput) {
  return {code, name + L": " + why};
}

/// A property and what it measures.
struct Property {
  OdString name;
  Dimension dimension;
};

constexpr const wchar_t* kPlaceNames[] = {L"X", L"Y", L"Z"};
constexpr const wchar_t* kAngleName = L"Angle";
constexpr const wchar_t* kSuppressName = L"Suppress";

/// All properties of an insert of the block, sizes first.
std::vector<Property> propertiesOf(const OdDbObjectId& block) {
  std::vector<Property> all;
  for (const OdString& size : sizeNames(block)) all.push_back({size, Dimension::length()});
  for (const wchar_t* place : kPlaceNames) all.push_back({OdString(place), Dimension::length()});
  all.push_back({OdString(kAngleName), Dimension::angle()});
  all.push_back({OdString(kSuppressName), Dimension::ratio()});
  return all;
}

OdStatus findProperty(const std::vector<Property>& all, const OdString& name, Property& found) {
  OdString plain(name);
  plain.remove(L'-');
  OdString known;
  for (const Property& property : all) {
    if (property.name.iEquals(plain)) {
      found = property;
      return {};
    }
    known += (known.isEmpty() ? L"" : L", ") + property.name;
  }
  return refuse(name, known.isEmpty() ? OdString(L"the component was not made from dimensions")
                                      : L"there is no such property, there are " + known);
}

OdDbObjectId blockOf(const VdmComponentFeature& feature) {
  const auto insert = feature.insertId().openAs<OdDbBlockReference>();
  return insert.isNull() ? OdDbObjectId::kNull : insert->blockTableRecord();
}

OdDb::UnitsValue unitsAround(const VdmFeature& feature) {
  const auto manager = feature.featureManagerId().openAs<VdmDbFeatureManager>();
  return manager.isNull() ? OdDb::kUnitsUndefined : unitsOfBlock(manager->blockId());
}

/// A plain number serves for everything but an angle.
OdStatus requireDimension(const Property& property, const OdString& text,
                          const Dimension& dimension) {
  const bool isPlain = dimension == Dimension::plain();
  const bool fits = property.dimension == Dimension::angle() ? dimension == Dimension::angle()
                    : property.dimension.isNumber()          ? dimension.isNumber()
                                                    : isPlain || dimension == property.dimension;
  if (fits) return {};
  return refuse(property.name,
                text + L": found " + dimension.text() + L", expected " + property.dimension.text());
}

// ---- Reactors

/// A copy of a feature without its block has reactors that name the variables of the original and
/// do not hear of them. They do not count.
bool hearsOfItsVariable(const VdmDbExpressionReactor& reactor) {
  const auto variable = reactor.assocVariable().openAs<OdDbAssocVariable>();
  return !variable.isNull() && variable->hasPersistentReactor(reactor.objectId());
}

OdDbObjectId reactorOf(const VdmFeature& feature, const OdString& property) {
  for (const OdDbObjectId& id : feature.reactorIds()) {
    if (id.isErased() || !vdmu::isIdOf<VdmDbExpressionReactor>(id)) continue;
    const auto reactor = id.openAs<VdmDbExpressionReactor>();
    const bool isOfProperty = !reactor.isNull() && reactor->propertyName() == property;
    if (isOfProperty && hearsOfItsVariable(*reactor)) return id;
  }
  return {};
}

OdString expressionOf(const VdmFeature& feature, const OdString& property) {
  const auto reactor = reactorOf(feature, property).openAs<VdmDbExpressionReactor>();
  return reactor.isNull() ? OdString() : reactor->expression();
}

void unbind(VdmFeature& feature, const OdString& property) {
  const OdDbObjectId reactor = reactorOf(feature, property);
  if (!reactor.isNull()) feature.eraseReactor(reactor, /*mask=*/0, /*tag=*/0);
}

OdStatus bind(VdmFeature& feature, const Property& property, const OdString& text) {
  OdDbObjectId id = reactorOf(feature, property.name);
  if (id.isNull()) id = feature.addReactor(VdmDbExpressionReactor::desc(), /*mask=*/-1);
  double value = 0;
  {
    const auto reactor = id.safeOpenAs<VdmDbExpressionReactor>(OdDb::kForWrite);
    reactor->setPropertyName(property.name);
    OdString error;
    const OdResult result = reactor->setExpression(text, /*reacts=*/true, &error);
    if (result != eOk) return refuse(property.name, text + L": " + error, result);
    const auto variable = reactor->assocVariable().safeOpenAs<OdDbAssocVariable>();
    const OdStatus status = requireDimension(property, text, oddbDimensionOf(*variable));
    if (!status.ok()) return status;
    value = vdmu::getValueAsDouble(variable.get());
    reactor->setInitialValue(value);
  }
  feature.onPropertyModified(property.name, value);
  return {};
}

/// The number of a constant text. A plain number for an angle is in degrees.
OdStatus readNumber(const Property& property, const OdString& text, OdDb::UnitsValue units,
                    double& value) {
  Dimension dimension;
  OdString error;
  if (!readConstant(text, units, value, dimension, error)) {
    return refuse(property.name, text + L": " + error);
  }
  if (property.dimension == Dimension::angle() && dimension == Dimension::plain()) {
    value *= std::numbers::pi / 180.0;
    return {};
  }
  return requireDimension(property, text, dimension);
}

bool usesNames(const OdString& text) {
  OdExpression::Parser parser;
  return parser.setExpression(text) == eOk && !parser.isConstExpression();
}

PropertyInfo infoOf(const Property& property, const std::optional<double>& value,
                    OdDb::UnitsValue units) {
  PropertyInfo info;
  info.name = property.name;
  info.hasValue = value.has_value();
  if (value) info.shown = shownValue(*value, property.dimension, units);
  return info;
}

}  // namespace

// ---- Inserts

OdStatus setInsertProperty(const OdDbObjectId& id, const OdString& name, const OdString& text) {
  const VdmComponentFeaturePtr feature =
      VdmComponentFeature::cast(VdmFeature::open(id, OdDb::kForWrite));
  if (feature.isNull()) return refuse(name, OdString(L"the feature is no component"));
  Property property;
  OdStatus status = findProperty(propertiesOf(blockOf(*feature)), name, property);
  if (!status.ok()) return status;
  if (usesNames(text)) return bind(*feature, property, text);
  unbind(*feature, property.name);
  if (text.isEmpty()) {
    feature->dropSize(property.name);
    return {};
  }
  double value = 0;
  status = readNumber(property, text, unitsAround(*feature), value);
  if (status.ok()) feature->onPropertyModified(property.name, value);
  return status;
}

std::vector<PropertyInfo> insertProperties(const OdDbObjectId& id) {
  std::vector<PropertyInfo> all;
  const VdmComponentFeaturePtr feature = VdmComponentFeature::cast(VdmFeature::open(id).get());
  if (feature.isNull()) return all;
  const OdDbObjectId block = blockOf(*feature);
  const std::optional<ToolForm> form = formOf(block);
  const ComponentSizes own = feature->sizes();
  for (const Property& property : propertiesOf(block)) {
    const bool isSize = !sizeNamed(block, property.name).isEmpty();
    const bool isOwn = !isSize || own.contains(property.name);
    std::optional<double> value;
    if (!isSize) {
      value = feature->propertyValue(property.name);
    } else {
      value = isOwn ? std::optional(own.at(property.name)) : sizeOf(*form, property.name);
    }
    PropertyInfo& info = all.emplace_back(infoOf(property, value, unitsAround(*feature)));
    info.isOwn = isOwn;
    info.expression = expressionOf(*feature, property.name);
  }
  return all;
}

// ---- Components

namespace {

/// Sizes are in the units of the component's block, those of the drawing where it has none.
OdDb::UnitsValue unitsOfComponent(const OdDbObjectId& block) {
  const OdDb::UnitsValue own = unitsOfBlock(block);
  const OdDbDatabase* database = block.database();
  return own == OdDb::kUnitsUndefined && database != nullptr ? database->getINSUNITS() : own;
}

OdStatus bindSize(const OdDbObjectId& block, const Property& property, const OdString& text) {
  OdDbObjectId id = VdmComponentSizeFeature::of(block);
  if (id.isNull()) {
    const OdDbObjectId manager =
        VdmDbFeatureManager::getInstance(block.database()->getModelSpaceId(), /*create=*/true);
    const OdString name = block.safeOpenAs<OdDbBlockTableRecord>()->getName();
    id = manager.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
             ->createFeatureData(VdmComponentSizeFeature::desc(), name + L"_sizes",
                                 /*numberGiven=*/false, /*trim=*/true);
  }
  const VdmComponentSizeFeaturePtr feature =
      VdmComponentSizeFeature::cast(VdmFeature::open(id, OdDb::kForWrite));
  feature->bind(block);
  return bind(*feature, property, text);
}

/// The feature of sizes ends with its last expression.
void unbindSize(const OdDbObjectId& block, const OdString& name) {
  const OdDbObjectId id = VdmComponentSizeFeature::of(block);
  const VdmComponentSizeFeaturePtr feature =
      VdmComponentSizeFeature::cast(VdmFeature::open(id, OdDb::kForWrite));
  if (feature.isNull()) return;
  unbind(*feature, name);
  feature->dropSize(name);
  if (feature->reactorIds().isEmpty()) id.safeOpenObject(OdDb::kForWrite)->erase();
}

}  // namespace

OdStatus setComponentSize(const OdDbObjectId& block, const OdString& name, const OdString& text) {
  std::vector<Property> sizes;
  for (const OdString& size : sizeNames(block)) sizes.push_back({size, Dimension::length()});
  Property property;
  OdStatus status = findProperty(sizes, name, property);
  if (!status.ok()) return status;
  if (usesNames(text)) return bindSize(block, property, text);
  unbindSize(block, property.name);
  if (text.isEmpty()) return {};
  double value = 0;
  status = readNumber(property, text, unitsOfComponent(block), value);
  return status.ok() ? resizeComponent(block, {{property.name, value}}) : status;
}

std::vector<PropertyInfo> componentProperties(const OdDbObjectId& block) {
  std::vector<PropertyInfo> all;
  const std::optional<ToolForm> form = formOf(block);
  const VdmFeaturePtr feature = VdmFeature::open(VdmComponentSizeFeature::of(block));
  for (const OdString& size : sizeNames(block)) {
    PropertyInfo& info = all.emplace_back(
        infoOf({size, Dimension::length()}, sizeOf(*form, size), unitsOfComponent(block)));
    if (!feature.isNull()) info.expression = expressionOf(*feature, size);
  }
  return all;
}

}  // namespace vdm_host
