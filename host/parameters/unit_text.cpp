// Values of parameters with their units.
#include "host/parameters/unit_text.h"

#include <numbers>

#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/units.h"
#include "platform/expressions/compile.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"

namespace vdm_host {
namespace {

using OdExpression::Dimension;

/// Symbols of the base units by Dimension::Base; the unit of length is that of the block.
constexpr const wchar_t* kBaseSymbols[Dimension::kBaseCount] = {nullptr, L"kg",  L"s", L"K",
                                                                L"A",    L"mol", L"cd"};

OdString factorText(const OdString& symbol, double power) {
  return power == 1.0 ? symbol : OdString().format(L"%ls^%g", symbol.c_str(), power);
}

OdString productText(const Dimension& dimension, OdDb::UnitsValue lengthUnit) {
  OdString text;
  for (int i = 0; i < Dimension::kBaseCount; ++i) {
    const auto base = static_cast<Dimension::Base>(i);
    const double power = dimension.power(base);
    if (power == 0.0) continue;
    const OdString symbol = base == Dimension::kLength
                                ? VdmAssocVariableExt::unitsToString(lengthUnit)
                                : OdString(kBaseSymbols[i]);
    if (!text.isEmpty()) text += L" ";
    text += factorText(symbol, power);
  }
  return text;
}

}  // namespace

ShownValue shownValue(double value, const Dimension& dimension, OdDb::UnitsValue lengthUnit) {
  switch (dimension.kind()) {
    case Dimension::Kind::kAngle:
      return {value * 180.0 / std::numbers::pi, OdString(L"deg")};
    case Dimension::Kind::kQuantity:
      return {value, productText(dimension, lengthUnit)};
    default:
      return {value, OdString()};
  }
}

OdDb::UnitsValue unitsOfBlock(const OdDbObjectId& block) {
  const auto record = block.openAs<OdDbBlockTableRecord>();
  const OdDbDatabase* database = block.database();
  if (record.isNull() || database == nullptr) return OdDb::kUnitsUndefined;
  return block == database->getModelSpaceId() ? database->getINSUNITS()
                                              : record->blockInsertUnits();
}

bool readConstant(const OdString& text, OdDb::UnitsValue lengthUnit, double& value,
                  Dimension& dimension, OdString& error) {
  OdExpression::EmptyScope scope;
  OdExpression::CompileOptions options;
  options.lengthUnit = static_cast<int>(lengthUnit);
  OdExpression::Program program;
  OdExpression::Diagnostic diagnostic;
  if (!OdExpression::compile(text, scope, options, program, diagnostic)) {
    error = diagnostic.text();
    return false;
  }
  dimension = program.dimension();
  return program.evaluate(nullptr, value);
}

}  // namespace vdm_host
