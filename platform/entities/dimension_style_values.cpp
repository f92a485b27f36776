// What dimensions and leaders draw by.
#include "platform/entities/dimension_style_values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "platform/db/database.h"
#include "platform/db/dim_style_table.h"
#include "platform/entities/value_checks.h"

OdDbDimStyleValues::OdDbDimStyleValues(const OdDbObjectId& style, const OdDbDatabase* drawing) {
  constexpr int kTrailing = 8;
  constexpr int kLeading = 4;
  const OdDbObjectId used = oddbStyleOrStandard(style, drawing, OdDbRootHandles::kDimStyleStandard);
  OdDbDimStyleTableRecordPtr record = used.openAs<OdDbDimStyleTableRecord>();
  if (record.isNull()) record = OdDbDimStyleTableRecord::createObject();
  const double scale = record->dimscale();
  arrow = record->dimasz() * scale;
  extensionGap = record->dimexo() * scale;
  extensionBeyond = record->dimexe() * scale;
  textHeight = record->dimtxt() * scale;
  textGap = std::abs(record->dimgap()) * scale;
  toleranceHeight = record->dimtfac();
  centerMark = record->dimcen() * scale;
  lengthFactor = record->dimlfac();
  rounding = record->dimrnd();
  toleranceUp = record->dimtp();
  toleranceDown = record->dimtm();
  decimals = record->dimdec();
  angleDecimals = record->dimadec();
  toleranceDecimals = record->dimtdec();
  separator = static_cast<wchar_t>(record->dimdsep());
  cutsTrailingZeros = (record->dimzin() & kTrailing) != 0;
  cutsLeadingZero = (record->dimzin() & kLeading) != 0;
  isTextAbove = record->dimtad() != 0;
  isTextLevel = record->dimtih() && record->dimtoh();
  hasTolerances = record->dimtol();
  hasLine[0] = !record->dimsd1();
  hasLine[1] = !record->dimsd2();
  hasExtension[0] = !record->dimse1();
  hasExtension[1] = !record->dimse2();
  lineColor = record->dimclrd();
  extensionColor = record->dimclre();
  textColor = record->dimclrt();
  post = record->dimpost();
  textStyle = record->dimtxsty();
}

OdString oddbDimNumber(double value, int decimals, const OdDbDimStyleValues& style) {
  if (!std::isfinite(value)) return OdString("?");
  std::array<char, 400> buffer{};
  const auto [end, failure] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            std::chars_format::fixed, decimals);
  std::string text(buffer.data(), end);
  if (const std::size_t point = text.find('.'); point != std::string::npos) {
    if (style.cutsTrailingZeros) {
      text.erase(text.find_last_not_of('0') + 1);
      if (text.back() == '.') text.pop_back();
    }
  }
  if (text == "-0" || text.find_first_not_of("-0.") == std::string::npos) {
    if (text.front() == '-') text.erase(0, 1);
  }
  const std::size_t whole = text.find_first_not_of('-');
  if (style.cutsLeadingZero && text.compare(whole, 2, "0.") == 0) text.erase(whole, 1);
  OdString shown(text);
  shown.replace(L'.', style.separator);
  return shown;
}
