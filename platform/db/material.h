// OdDbMaterial: what a surface is made of, for pictures.
#pragma once

#include "platform/db/color.h"
#include "platform/db/filing_macros.h"
#include "platform/db/named_style.h"

/// A named material in the drawing's material dictionary. It says how light falls back from a
/// surface; without a colour of its own the surface keeps that of its entity.
class OdDbMaterial : public OdDbNamedStyle {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbMaterial)

  /// By layer means: the colour of the entity. By block and by none raise eInvalidInput.
  [[nodiscard]] OdCmColor diffuse() const;
  void setDiffuse(const OdCmColor& color);
  /// 0 is clear, 1 lets no light through; numbers outside raise eInvalidInput.
  [[nodiscard]] double opacity() const;
  void setOpacity(double opacity);
  /// 0 is dull, 1 a mirror; numbers outside raise eInvalidInput.
  [[nodiscard]] double shininess() const;
  void setShininess(double shininess);

  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  void setFraction(double& member, double value, const char* what);

  OdCmColor m_diffuse;
  double m_opacity = 1.0;
  double m_shininess = 0.3;

  OD_DB_DECLARE_FILING()
};
using OdDbMaterialPtr = OdSmartPtr<OdDbMaterial>;
