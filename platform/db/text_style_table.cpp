// OdDbTextStyleTable and its records.
#include "platform/db/text_style_table.h"

#include <cmath>
#include <numbers>
#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbTextStyleTable, OdDbSymbolTable, L"OdDbTextStyleTable", 0, 0, 0, L"STYLE_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbTextStyleTableRecord, OdDbSymbolTableRecord, L"OdDbTextStyleTableRecord", 0, 0,
                0, L"STYLE", OdString())

namespace {

bool isHeight(double height) { return std::isfinite(height) && height >= 0.0; }

double checked(const OdDbTextStyleTableRecord* style, const char* what, double value, bool fits) {
  if (fits) return value;
  throw OdError(eInvalidInput, OdString(what) + " " + std::to_string(value).c_str() +
                                   " of text style '" + style->getName() + "'");
}

}  // namespace

bool oddbIsWidthFactor(double factor) { return factor >= 0.01 && factor <= 100.0; }

bool oddbIsObliquingAngle(double radians) {
  return std::abs(radians) <= 85.0 / 180.0 * std::numbers::pi + 1e-12;
}

OdString OdDbTextStyleTableRecord::fileName() const { return read(m_fileName); }
void OdDbTextStyleTableRecord::setFileName(const OdString& fontFile) {
  assign(m_fileName, fontFile);
}
OdString OdDbTextStyleTableRecord::bigFontFileName() const { return read(m_bigFontFileName); }
void OdDbTextStyleTableRecord::setBigFontFileName(const OdString& fontFile) {
  assign(m_bigFontFileName, fontFile);
}
double OdDbTextStyleTableRecord::textSize() const { return read(m_textSize); }
void OdDbTextStyleTableRecord::setTextSize(double height) {
  assign(m_textSize, checked(this, "height", height, isHeight(height)));
}
double OdDbTextStyleTableRecord::xScale() const { return read(m_xScale); }
void OdDbTextStyleTableRecord::setXScale(double factor) {
  assign(m_xScale, checked(this, "width factor", factor, oddbIsWidthFactor(factor)));
}
double OdDbTextStyleTableRecord::obliquingAngle() const { return read(m_obliquing); }
void OdDbTextStyleTableRecord::setObliquingAngle(double angle) {
  assign(m_obliquing, checked(this, "slant", angle, oddbIsObliquingAngle(angle)));
}
bool OdDbTextStyleTableRecord::isBackwards() const { return read(m_backwards); }
void OdDbTextStyleTableRecord::setIsBackwards(bool backwards) { assign(m_backwards, backwards); }
bool OdDbTextStyleTableRecord::isUpsideDown() const { return read(m_upsideDown); }
void OdDbTextStyleTableRecord::setIsUpsideDown(bool upsideDown) {
  assign(m_upsideDown, upsideDown);
}

// Fields:
//
//   field                    binary      groups
//   version                  uint8
//   font, big font           2 strings   3, 4
//   height                   double      40       drawing units, 0 for none
//   width factor             double      41       0.01 to 100
//   slant                    double      50       radians, within 85 degrees
//   backwards, upside down   2 bools     290, 291

template <class Fields, class Self>
void OdDbTextStyleTableRecord::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(3, self.m_fileName);
  fields.value(4, self.m_bigFontFileName);
  fields.value(40, self.m_textSize, isHeight);
  fields.value(41, self.m_xScale, oddbIsWidthFactor);
  fields.value(50, self.m_obliquing, oddbIsObliquingAngle);
  fields.value(290, self.m_backwards);
  fields.value(291, self.m_upsideDown);
}

OD_DB_DEFINE_FILING(OdDbTextStyleTableRecord, OdDbSymbolTableRecord)
