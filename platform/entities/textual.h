// What texts share: a style, and extents that are those of their strokes.
#pragma once

#include "platform/entities/curve.h"

/// Adds a text style to a base class. Not a run-time class: the class that derives from it names
/// OdDbEntity as its parent.
template <class Base>
class OdDbTextual : public OdDbBoundedByDrawing<Base> {
 public:
  /// Null is the style "Standard".
  [[nodiscard]] OdDbObjectId textStyle() const { return this->read(m_style); }
  void setTextStyle(const OdDbObjectId& style) { this->change(m_style, style); }

 protected:
  OdDbObjectId m_style;
};
