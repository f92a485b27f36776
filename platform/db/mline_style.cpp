// OdDbMlineStyle: what a multi-line is made of.
#include "platform/db/mline_style.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbMlineStyle, OdDbObject, L"OdDbMlineStyle", 0, 0, 0, L"MLINESTYLE", OdString())

namespace {

bool isColor(OdInt32 packed) { return OdCmColor().setPacked(packed) == eOk; }

}  // namespace

OdDbMlineStyle::OdDbMlineStyle() {
  for (const double offset : {0.5, -0.5}) {
    m_offsets.append(offset);
    m_colors.append(OdCmColor().packed());
    m_linetypes.append(OdDbObjectId());
  }
}

bool OdDbMlineStyle::showMiters() const { return read(m_showMiters); }
void OdDbMlineStyle::setShowMiters(bool show) { assign(m_showMiters, show); }
bool OdDbMlineStyle::startSquareCap() const { return read(m_startCap); }
void OdDbMlineStyle::setStartSquareCap(bool cap) { assign(m_startCap, cap); }
bool OdDbMlineStyle::endSquareCap() const { return read(m_endCap); }
void OdDbMlineStyle::setEndSquareCap(bool cap) { assign(m_endCap, cap); }

OdArray<OdDbMlineElement> OdDbMlineStyle::elements() const {
  assertReadEnabled();
  OdArray<OdDbMlineElement> elements;
  for (OdUInt32 i = 0; i < m_offsets.size(); ++i) {
    OdDbMlineElement element{m_offsets[i], {}, m_linetypes[i]};
    (void)element.color.setPacked(m_colors[i]);  // was checked when it was stored
    elements.append(element);
  }
  return elements;
}

void OdDbMlineStyle::setElements(const OdArray<OdDbMlineElement>& elements) {
  const OdString style = OdString(" of multi-line style '") + name() + "'";
  if (elements.isEmpty()) throw OdError(eInvalidInput, OdString("no elements") + style);
  if (elements.size() > kMaxElements) {
    throw OdError(eLimitExceeded, OdString(std::to_string(elements.size()) + " elements, at most " +
                                           std::to_string(kMaxElements)) +
                                      style);
  }
  for (const OdDbMlineElement& element : elements) {
    if (std::isfinite(element.offset)) continue;
    throw OdError(eInvalidInput, OdString("offset " + std::to_string(element.offset)) + style);
  }
  OdArray<OdDbMlineElement> sorted = elements;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& a, const auto& b) { return a.offset > b.offset; });
  if (sorted == this->elements()) return;
  assertWriteEnabled();
  m_offsets.clear();
  m_colors.clear();
  m_linetypes.clear();
  for (const OdDbMlineElement& element : sorted) {
    m_offsets.append(element.offset);
    m_colors.append(element.color.packed());
    m_linetypes.append(element.linetypeId);
  }
}

// Fields:
//
//   field               binary                       groups
//   version             uint8
//   name, description   2 strings                    2, 4
//   offsets             int32 count, doubles         49         falling
//   colours             int32 count, int32           420        four bytes each, see OdCmColor
//   line types          for each a hard pointer      340        null: by the multi-line
//   mitres, caps        3 bools                      290 to 292
//
// The three lists have one element for each line, at most 16.

template <class Fields, class Self>
void OdDbMlineStyle::fields(Fields& fields, Self& self) {
  nameFields(fields, self);
  fields.list(49, self.m_offsets, kMaxElements, [](double value) { return std::isfinite(value); });
  fields.list(420, self.m_colors, kMaxElements, isColor);
  fields.rule(
      [&] { return !self.m_offsets.isEmpty() && self.m_offsets.size() == self.m_colors.size(); });
  fields.template pointers<OdDb::kHardPointerRef>(340, self.m_linetypes);
  fields.value(290, self.m_showMiters);
  fields.value(291, self.m_startCap);
  fields.value(292, self.m_endCap);
  fields.rule([&] { return self.m_offsets.size() == self.m_linetypes.size(); });
}

OD_DB_DEFINE_FILING(OdDbMlineStyle, OdDbObject)
