// OdDbMaterial: what a surface is made of, for pictures.
#pragma once

#include "platform/db/color.h"
#include "platform/db/db_object.h"

/// A named material in the drawing's material dictionary. It says how light falls back from a
/// surface; without a colour of its own the surface keeps that of its entity.
class OdDbMaterial : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbMaterial)

  [[nodiscard]] OdString name() const;
  /// Names are given when the material is put into the dictionary; this is kept beside it.
  void setName(const OdString& name);
  [[nodiscard]] OdString description() const;
  void setDescription(const OdString& description);
  /// By layer means: the colour of the entity. By block and by none raise eInvalidInput.
  [[nodiscard]] OdCmColor diffuse() const;
  void setDiffuse(const OdCmColor& color);
  /// 0 is clear, 1 lets no light through; numbers outside raise eInvalidInput.
  [[nodiscard]] double opacity() const;
  void setOpacity(double opacity);
  /// 0 is dull, 1 a mirror; numbers outside raise eInvalidInput.
  [[nodiscard]] double shininess() const;
  void setShininess(double shininess);

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  friend struct OdDbFieldFiling;
  template <class Fields, class Self>
  static void fields(Fields& fields, Self& self);

  void setFraction(double& member, double value, const char* what);

  OdString m_name;
  OdString m_description;
  OdCmColor m_diffuse;
  double m_opacity = 1.0;
  double m_shininess = 0.3;
};
using OdDbMaterialPtr = OdSmartPtr<OdDbMaterial>;
