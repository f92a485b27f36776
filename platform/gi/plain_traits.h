// OdGiPlainTraits: traits that only hold their values.
#pragma once

#include "platform/gi/sub_entity_traits.h"

/// For contexts that read the traits when a primitive arrives.
class OdGiPlainTraits : public OdGiSubEntityTraits {
 public:
  struct Values {
    OdCmEntityColor color;
    OdDbObjectId layer;
    OdDbObjectId lineType;
    OdDbObjectId material;
    double lineTypeScale = 1.0;
    OdInt16 lineWeight = -1;
    OdGiFillType fill = OdGiFillType::kFillAlways;
    OdGsMarker marker = 0;
  };

  void setTrueColor(const OdCmEntityColor& color) override { m_values.color = color; }
  void setLayer(const OdDbObjectId& layer) override { m_values.layer = layer; }
  void setLineType(const OdDbObjectId& lineType) override { m_values.lineType = lineType; }
  void setLineTypeScale(double scale) override { m_values.lineTypeScale = scale; }
  void setLineWeight(OdInt16 weight) override { m_values.lineWeight = weight; }
  void setMaterial(const OdDbObjectId& material) override { m_values.material = material; }
  void setFillType(OdGiFillType type) override { m_values.fill = type; }
  void setSelectionMarker(OdGsMarker marker) override { m_values.marker = marker; }
  [[nodiscard]] OdCmEntityColor trueColor() const override { return m_values.color; }
  [[nodiscard]] OdDbObjectId layer() const override { return m_values.layer; }
  [[nodiscard]] OdDbObjectId lineType() const override { return m_values.lineType; }
  [[nodiscard]] double lineTypeScale() const override { return m_values.lineTypeScale; }
  [[nodiscard]] OdInt16 lineWeight() const override { return m_values.lineWeight; }
  [[nodiscard]] OdDbObjectId material() const override { return m_values.material; }
  [[nodiscard]] OdGiFillType fillType() const override { return m_values.fill; }
  [[nodiscard]] OdGsMarker selectionMarker() const override { return m_values.marker; }

  [[nodiscard]] const Values& values() const { return m_values; }
  void setValues(const Values& values) { m_values = values; }

 private:
  Values m_values;
};
