// OdGiDrawable: what can draw itself.
#pragma once

#include "platform/rx/rx_macros.h"

class OdGiSubEntityTraits;
class OdGiWorldDraw;

/// Base of everything that appears in a picture. Drawing changes nothing in the drawable and is
/// called with the object open for reading, in the thread of its database.
///
/// Whoever shows a drawable calls setAttributes() with the traits of its context, then worldDraw();
/// OdGiWorldGeometry::draw() does both and brings the traits back afterwards.
class OdGiDrawable : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdGiDrawable)

  OdGiDrawable() = default;
  ~OdGiDrawable() override;

  /// Sets the traits to the drawable's own layer, colour, line type, weight and material. These may
  /// be by layer or by block; the context resolves them. False when the drawable is not to be seen.
  bool setAttributes(OdGiSubEntityTraits* traits) const;
  /// Draws in the coordinates of the drawable's block: through the first drawable overrule that
  /// wants the object, and by subWorldDraw() when there is none. True when everything was drawn.
  bool worldDraw(OdGiWorldDraw* context) const;

 protected:
  friend class OdGiDrawableOverrule;

  /// Nothing to tell, and visible.
  virtual bool subSetAttributes(OdGiSubEntityTraits* traits) const;
  /// Nothing to draw.
  virtual bool subWorldDraw(OdGiWorldDraw* context) const;
};
using OdGiDrawablePtr = OdSmartPtr<OdGiDrawable>;
