// OdDbLinetypeTable and its records.
#include "platform/db/linetype_table.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/ge/finite.h"

OD_RX_DEFINE_DB(OdDbLinetypeTable, OdDbSymbolTable, L"OdDbLinetypeTable", 0, 0, 0, L"LTYPE_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbLinetypeTableRecord, OdDbSymbolTableRecord, L"OdDbLinetypeTableRecord", 0, 0, 0,
                L"LTYPE", OdString())

namespace {

constexpr OdInt32 kShape = 1;
constexpr OdInt32 kUpright = 2;
constexpr OdInt32 kAbsolute = 4;
constexpr OdInt32 kTextBits = 8;

bool isScale(double scale) { return std::isfinite(scale) && scale > 0.0; }

}  // namespace

OdString OdDbLinetypeTableRecord::comments() const { return read(m_description); }

void OdDbLinetypeTableRecord::setComments(const OdString& description) {
  assign(m_description, description);
}

OdDbDashArray OdDbLinetypeTableRecord::dashes() const { return read(m_dashes); }

void OdDbLinetypeTableRecord::setDashes(const OdDbDashArray& dashes) {
  if (dashes.size() > kMaxDashes) {
    throw OdError(eLimitExceeded, OdString(std::to_string(dashes.size()) + " dashes, at most " +
                                           std::to_string(kMaxDashes)));
  }
  for (const double dash : dashes) {
    if (!std::isfinite(dash)) {
      throw OdError(eInvalidInput, OdString("dash length " + std::to_string(dash)));
    }
  }
  if (dashes == m_dashes) return;
  OdArray<OdDbDashText> kept;
  for (const OdDbDashText& text : texts()) {
    if (static_cast<OdUInt32>(text.dash) < dashes.size()) kept.append(text);
  }
  assertWriteEnabled();
  m_dashes = dashes;
  setTexts(kept);
}

OdUInt32 OdDbLinetypeTableRecord::numDashes() const { return read(m_dashes).size(); }
double OdDbLinetypeTableRecord::dashLengthAt(OdUInt32 index) const { return read(m_dashes)[index]; }

OdArray<OdDbDashText> OdDbLinetypeTableRecord::texts() const {
  assertReadEnabled();
  OdArray<OdDbDashText> texts;
  for (OdUInt32 i = 0; i < m_textPlaces.size(); ++i) {
    const OdInt32 place = m_textPlaces[i];
    texts.append({place / kTextBits, (place & kShape) != 0, (place & kUpright) != 0,
                  (place & kAbsolute) != 0, m_texts[i], m_textFonts[i], m_textScales[i],
                  m_textRotations[i], m_textOffsets[i]});
  }
  return texts;
}

void OdDbLinetypeTableRecord::setTexts(const OdArray<OdDbDashText>& texts) {
  if (texts.size() > kMaxTexts) {
    throw OdError(eLimitExceeded, OdString(std::to_string(texts.size()) + " texts, at most " +
                                           std::to_string(kMaxTexts)));
  }
  for (const OdDbDashText& text : texts) {
    if (text.dash < 0 || static_cast<OdUInt32>(text.dash) >= numDashes()) {
      throw OdError_InvalidIndex(text.dash, numDashes());
    }
    if (isScale(text.scale) && std::isfinite(text.rotation) && odgeIsFinite(text.offset)) continue;
    throw OdError(eInvalidInput, OdString("scale " + std::to_string(text.scale) + ", rotation " +
                                          std::to_string(text.rotation) + " of text '") +
                                     text.text + "' in line type '" + getName() + "'");
  }
  if (texts == this->texts()) return;
  assertWriteEnabled();
  m_textPlaces.clear();
  m_texts.clear();
  m_textFonts.clear();
  m_textScales.clear();
  m_textRotations.clear();
  m_textOffsets.clear();
  for (const OdDbDashText& text : texts) {
    const int bits = (text.isShape ? kShape : 0) | (text.isUpright ? kUpright : 0) |
                     (text.isAbsolute ? kAbsolute : 0);
    m_textPlaces.append(text.dash * kTextBits + bits);
    m_texts.append(text.text);
    m_textFonts.append(text.font);
    m_textScales.append(text.scale);
    m_textRotations.append(text.rotation);
    m_textOffsets.append(text.offset);
  }
}

bool OdDbLinetypeTableRecord::hasSoundTexts() const {
  const OdUInt32 count = m_textPlaces.size();
  for (const OdUInt32 size : {m_texts.size(), m_textFonts.size(), m_textScales.size(),
                              m_textRotations.size(), m_textOffsets.size()}) {
    if (size != count) return false;
  }
  return std::all_of(m_textPlaces.begin(), m_textPlaces.end(), [&](OdInt32 place) {
    return place >= 0 && static_cast<OdUInt32>(place / kTextBits) < m_dashes.size();
  });
}

double OdDbLinetypeTableRecord::patternLength() const {
  assertReadEnabled();
  double length = 0.0;
  for (const double dash : m_dashes) length += std::abs(dash);
  return length;
}

// Fields:
//
//   field         binary                    groups
//   version       uint8                             2 with texts, else 1
//   description   string                    3
//   dashes        int32 count, doubles      49      at most 12: dash > 0, gap < 0, dot 0; drawing
//                                                   units
//   Version 2, for each text, at most 12:
//   places        int32 count, int32        90      dash * 8, and bits: 1 shape, 2 upright,
//                                                   4 absolute
//   texts         int32 count, strings      1
//   fonts         int32 count, strings      6       text style, or shape file
//   scales        int32 count, doubles      46      greater than 0
//   rotations     int32 count, doubles      50      radians
//   offsets       int32 count, 2d points    44, 54  drawing units

template <class Fields, class Self>
void OdDbLinetypeTableRecord::fields(Fields& fields, Self& self) {
  const auto isNumber = [](double value) { return std::isfinite(value); };
  fields.version(1, 2, !self.m_textPlaces.isEmpty());
  fields.value(3, self.m_description);
  fields.list(49, self.m_dashes, kMaxDashes, isNumber);
  fields.from(2, self, [](auto& record) {
    record.m_textPlaces.clear();
    record.m_texts.clear();
    record.m_textFonts.clear();
    record.m_textScales.clear();
    record.m_textRotations.clear();
    record.m_textOffsets.clear();
  });
  fields.list(90, self.m_textPlaces, kMaxTexts);
  fields.list(1, self.m_texts, kMaxTexts);
  fields.list(6, self.m_textFonts, kMaxTexts);
  fields.list(46, self.m_textScales, kMaxTexts, isScale);
  fields.list(50, self.m_textRotations, kMaxTexts, isNumber);
  fields.list(44, self.m_textOffsets, kMaxTexts,
              [](const OdGePoint2d& offset) { return odgeIsFinite(offset); });
  fields.rule([&] { return self.hasSoundTexts(); });
}

OD_DB_DEFINE_FILING(OdDbLinetypeTableRecord, OdDbSymbolTableRecord)
