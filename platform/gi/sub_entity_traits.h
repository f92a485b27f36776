// OdGiSubEntityTraits: how the next primitives look.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/gi/entity_color.h"
#include "platform/gi/selection_marker.h"
#include "platform/rx/rx_macros.h"

enum class OdGiFillType : OdUInt8 { kFillAlways = 1, kFillNever = 2 };

/// Set by what is drawn, read by the context: a setting holds for the primitives that follow, until
/// it is set again. Values may be by layer or by block; the context resolves them. Belongs to its
/// context.
class OdGiSubEntityTraits : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdGiSubEntityTraits)

  virtual void setTrueColor(const OdCmEntityColor& color) = 0;
  /// By index of the colour table, 0 by block, 256 by layer; above that raises eInvalidInput.
  void setColor(OdUInt16 index) { setTrueColor(OdCmEntityColor::fromIndex(index)); }
  /// Null is layer "0".
  virtual void setLayer(const OdDbObjectId& layer) = 0;
  /// Null is by layer.
  virtual void setLineType(const OdDbObjectId& lineType) = 0;
  /// Factor on the pattern of the line type, greater than 0.
  virtual void setLineTypeScale(double /*scale*/) {}
  /// Hundredths of a millimetre; -1 by layer, -2 by block, -3 default.
  virtual void setLineWeight(OdInt16 weight) = 0;
  /// Null is by layer.
  virtual void setMaterial(const OdDbObjectId& material) = 0;
  virtual void setFillType(OdGiFillType type) = 0;
  /// Names the part of the drawable that the next primitives belong to.
  virtual void setSelectionMarker(OdGsMarker marker) = 0;

  [[nodiscard]] virtual OdCmEntityColor trueColor() const = 0;
  [[nodiscard]] virtual OdDbObjectId layer() const = 0;
  [[nodiscard]] virtual OdDbObjectId lineType() const = 0;
  [[nodiscard]] virtual double lineTypeScale() const { return 1.0; }
  [[nodiscard]] virtual OdInt16 lineWeight() const = 0;
  [[nodiscard]] virtual OdDbObjectId material() const = 0;
  [[nodiscard]] virtual OdGiFillType fillType() const = 0;
  [[nodiscard]] virtual OdGsMarker selectionMarker() const = 0;

 protected:
  OdGiSubEntityTraits() = default;
};
