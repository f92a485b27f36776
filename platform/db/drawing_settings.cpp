// Drawing settings: table, checks, stored form.
#include "platform/db/drawing_settings.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/db_enums.h"

namespace {

using Kind = OdDbSettingRow::Kind;

constexpr double kSmallest = std::numeric_limits<double>::min();
constexpr double kGreatest = std::numeric_limits<double>::max();

// A handle is kept as a double: handles up to this one fit without loss.
constexpr double kGreatestHandle = 9007199254740992.0;

constexpr OdDbSettingRow kRows[] = {
    // name, kind, default, min, max
    {"AUNITS", Kind::kInt16, 0, 0, 4},                      // form of angles
    {"AUPREC", Kind::kInt16, 0, 0, 8},                      // decimals of angles
    {"CECOLOR", Kind::kInt16, 256, 0, 256},                 // colour index of new entities
    {"CELTSCALE", Kind::kDouble, 1, kSmallest, kGreatest},  // pattern scale of new entities
    {"CELTYPE", Kind::kHandle, OdDbRootHandles::kLinetypeByLayer, 1, kGreatestHandle},
    {"CELWEIGHT", Kind::kInt16, -1, -3, 211},  // pen of new entities
    {"CLAYER", Kind::kHandle, OdDbRootHandles::kLayerZero, 1, kGreatestHandle},
    {"DIMSTYLE", Kind::kHandle, OdDbRootHandles::kDimStyleStandard, 1, kGreatestHandle},
    {"FEATURECOLORS", Kind::kBool, 1, 0, 1},  // features colour their faces
    {"FILLMODE", Kind::kBool, 1, 0, 1},       // hatches and wide polylines are filled
    {"INSUNITS", Kind::kInt16, OdDb::kUnitsMillimeters, 0, OdDb::kUnitsMax},
    {"LTSCALE", Kind::kDouble, 1, kSmallest, kGreatest},
    {"LUNITS", Kind::kInt16, 2, 1, 5},                    // form of lengths
    {"LUPREC", Kind::kInt16, 4, 0, 8},                    // decimals of lengths
    {"MEASUREMENT", Kind::kInt16, 1, 0, 1},               // 0 imperial, 1 metric
    {"PDMODE", Kind::kInt16, 0, 0, 100},                  // sign of points
    {"PDSIZE", Kind::kDouble, 0, -kGreatest, kGreatest},  // its size; 0 and below: the standard one
    {"TEXTSIZE", Kind::kDouble, 2.5, kSmallest, kGreatest},  // height of new texts
    {"TEXTSTYLE", Kind::kHandle, OdDbRootHandles::kTextStyleStandard, 1, kGreatestHandle},
    {"VISRETAIN", Kind::kBool, 1, 0, 1},    // layers of external references keep their state
    {"XREFNOTIFY", Kind::kInt16, 2, 0, 2},  // news of external references
};

enum StoredKind : char { kStoredInt16 = 1, kStoredDouble = 2, kStoredBool = 3, kStoredHandle = 4 };

struct KindRow {
  Kind kind;
  int code;
  StoredKind stored;
  std::size_t bytes;
};
constexpr KindRow kKinds[] = {
    {Kind::kInt16, 70, kStoredInt16, 2},
    {Kind::kDouble, 40, kStoredDouble, 8},
    {Kind::kBool, 290, kStoredBool, 1},
    {Kind::kHandle, 5, kStoredHandle, 8},
};

const KindRow& rowOf(Kind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

// Whole numbers without the point and zeros that a double would show.
std::string numberText(double value) {
  const bool isWhole = value == std::floor(value) && std::abs(value) < 1e15;
  return isWhole ? std::to_string(static_cast<OdInt64>(value)) : std::to_string(value);
}

bool fits(const OdDbSettingRow* row, double value) {
  if (!std::isfinite(value) || value < row->min || value > row->max) return false;
  return row->kind == Kind::kDouble || value == std::floor(value);
}

bool numberOf(const OdResBuf& buffer, double& number) {
  switch (OdResBuf::kindOf(buffer.restype())) {
    case OdResBuf::Kind::kBool:
      number = buffer.getBool() ? 1 : 0;
      return true;
    case OdResBuf::Kind::kInt8:
      number = buffer.getInt8();
      return true;
    case OdResBuf::Kind::kInt16:
      number = buffer.getInt16();
      return true;
    case OdResBuf::Kind::kInt32:
      number = buffer.getInt32();
      return true;
    case OdResBuf::Kind::kInt64:
      number = static_cast<double>(buffer.getInt64());
      return true;
    case OdResBuf::Kind::kDouble:
      number = buffer.getDouble();
      return true;
    case OdResBuf::Kind::kHandle:
      number = static_cast<double>(static_cast<OdUInt64>(buffer.getHandle()));
      return true;
    default:
      return false;
  }
}

OdResult refuse(const OdDbSettingRow* row, const std::string& given, OdString* reason) {
  if (reason != nullptr) {
    *reason = OdString(std::string(row->name) + " takes " + numberText(row->min) + " to " +
                       numberText(row->max) + ", given " + given);
  }
  return eInvalidInput;
}

}  // namespace

OdDbDrawingSettings::OdDbDrawingSettings() {
  m_values.reserve(std::size(kRows));
  for (const OdDbSettingRow& row : kRows) m_values.push_back(row.defaultValue);
}

std::span<const OdDbSettingRow> OdDbDrawingSettings::rows() { return kRows; }

const OdDbSettingRow* OdDbDrawingSettings::find(const OdString& name) {
  for (const OdDbSettingRow& row : kRows) {
    if (name.iEquals(OdString(row.name))) return &row;
  }
  return nullptr;
}

std::size_t OdDbDrawingSettings::indexOf(const OdDbSettingRow* row) {
  const std::ptrdiff_t index = row - kRows;
  if (row == nullptr || index < 0 || index >= std::ssize(kRows)) {
    throw OdError(eInvalidInput, OdString("row of no drawing setting"));
  }
  return static_cast<std::size_t>(index);
}

OdResBufPtr OdDbDrawingSettings::get(const OdDbSettingRow* row) const {
  const double value = number(row);
  const int code = rowOf(row->kind).code;
  if (row->kind == Kind::kDouble) return OdResBuf::newRb(code, value);
  if (row->kind == Kind::kHandle) {
    return OdResBuf::newRb(code, OdDbHandle(static_cast<OdUInt64>(value)));
  }
  return OdResBuf::newRb(code, static_cast<OdInt32>(value));
}

OdResult OdDbDrawingSettings::set(const OdDbSettingRow* row, const OdResBuf* value,
                                  OdString* reason) {
  double number = 0.0;
  if (value == nullptr) return refuse(row, "nothing", reason);
  if (!numberOf(*value, number)) {
    return refuse(row, "a value of code " + std::to_string(value->restype()), reason);
  }
  return setNumber(row, number, reason);
}

OdResult OdDbDrawingSettings::setNumber(const OdDbSettingRow* row, double value, OdString* reason) {
  double& stored = m_values[indexOf(row)];
  if (!fits(row, value)) return refuse(row, numberText(value), reason);
  stored = value;
  return eOk;
}

std::vector<const OdDbSettingRow*> OdDbDrawingSettings::changed() const {
  std::vector<const OdDbSettingRow*> found;
  for (const OdDbSettingRow& row : kRows) {
    if (number(&row) != row.defaultValue) found.push_back(&row);
  }
  return found;
}

std::string OdDbDrawingSettings::serialise(const OdDbSettingRow* row) const {
  const double value = number(row);
  const KindRow& kind = rowOf(row->kind);
  std::string bytes(1 + kind.bytes, '\0');
  bytes[0] = kind.stored;
  if (row->kind == Kind::kDouble) {
    std::memcpy(bytes.data() + 1, &value, sizeof value);
  } else if (row->kind == Kind::kInt16) {
    const auto whole = static_cast<OdInt16>(value);
    std::memcpy(bytes.data() + 1, &whole, sizeof whole);
  } else if (row->kind == Kind::kHandle) {
    const auto handle = static_cast<OdUInt64>(value);
    std::memcpy(bytes.data() + 1, &handle, sizeof handle);
  } else {
    bytes[1] = value != 0.0 ? 1 : 0;
  }
  return bytes;
}

OdResult OdDbDrawingSettings::deserialise(const OdDbSettingRow* row, std::string_view bytes,
                                          OdString* reason) {
  const KindRow& kind = rowOf(row->kind);
  if (bytes.size() != 1 + kind.bytes || bytes[0] != kind.stored) {
    if (reason != nullptr) {
      *reason = OdString(std::string(row->name) + " is stored in " + std::to_string(bytes.size()) +
                         " bytes, expected " + std::to_string(1 + kind.bytes));
    }
    return eCorruptData;
  }
  double value = 0.0;
  if (row->kind == Kind::kDouble) {
    std::memcpy(&value, bytes.data() + 1, sizeof value);
  } else if (row->kind == Kind::kInt16) {
    OdInt16 whole = 0;
    std::memcpy(&whole, bytes.data() + 1, sizeof whole);
    value = whole;
  } else if (row->kind == Kind::kHandle) {
    OdUInt64 handle = 0;
    std::memcpy(&handle, bytes.data() + 1, sizeof handle);
    value = static_cast<double>(handle);
  } else {
    value = static_cast<unsigned char>(bytes[1]);
  }
  return setNumber(row, value, reason);
}
