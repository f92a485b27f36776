// OdDbEvalVariant: making and reading typed values.
#include "platform/assoc/eval_variant.h"

OD_RX_DEFINE(OdDbEvalVariant, OdResBuf, L"OdDbEvalVariant")

namespace {

constexpr int kRealCode = 40;
constexpr int kInt32Code = 90;
constexpr int kTextCode = 1;

OdDbEvalVariantPtr ofCode(int code) {
  OdDbEvalVariantPtr variant = OdDbEvalVariant::createObject();
  variant->setRestype(code);
  return variant;
}

}  // namespace

OdDbEvalVariantPtr OdDbEvalVariant::init(double value) {
  OdDbEvalVariantPtr variant = ofCode(kRealCode);
  variant->setDouble(value);
  return variant;
}

OdDbEvalVariantPtr OdDbEvalVariant::init(OdInt32 value) {
  OdDbEvalVariantPtr variant = ofCode(kInt32Code);
  variant->setInt32(value);
  return variant;
}

OdDbEvalVariantPtr OdDbEvalVariant::init(const OdString& value) {
  OdDbEvalVariantPtr variant = ofCode(kTextCode);
  variant->setString(value);
  return variant;
}

OdDb::DwgDataType OdDbEvalVariant::getType() const {
  if (restype() == 0) return OdDb::kDwgNull;
  switch (kindOf(restype())) {
    case Kind::kDouble:
      return OdDb::kDwgReal;
    case Kind::kInt32:
      return OdDb::kDwgInt32;
    case Kind::kString:
      return OdDb::kDwgText;
    default:
      return OdDb::kDwgNull;
  }
}

double OdDbEvalVariant::getAsDouble() const {
  switch (getType()) {
    case OdDb::kDwgReal:
      return getDouble();
    case OdDb::kDwgInt32:
      return getInt32();
    default:
      return 0.0;
  }
}
