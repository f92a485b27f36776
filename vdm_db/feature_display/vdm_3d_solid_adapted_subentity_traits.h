// Vdm3dSolidAdaptedSubentityTraits: traits that draw faces in the colours of features.
#pragma once

#include "platform/db/subent.h"
#include "platform/gi/sub_entity_traits.h"
#include "vdm_db/model/vdm_db_object.h"

class OdDb3dSolid;

/// Traits that put a feature's colour, and the feature colour material, in front of what the solid
/// asks for. A face announces itself by its selection marker: 5, 9, 13 and so on for faces 1, 2, 3.
/// While a feature colour is in force, settings of colour and material are kept and not forwarded;
/// they come into force with the next marker of something else, and at the end.
class Vdm3dSolidAdaptedSubentityTraits : public OdGiSubEntityTraits {
 public:
  /// The traits outlive this object and are left as the solid asked for. The material may be null.
  Vdm3dSolidAdaptedSubentityTraits(OdGiSubEntityTraits& traits, const OdDb3dSolid* solid,
                                   const OdDbObjectId& featureColorMaterial);
  ~Vdm3dSolidAdaptedSubentityTraits() override;

  void setTrueColor(const OdCmEntityColor& color) override;
  void setMaterial(const OdDbObjectId& material) override;
  void setSelectionMarker(OdGsMarker marker) override;
  void setLayer(const OdDbObjectId& layer) override { m_traits.setLayer(layer); }
  void setLineType(const OdDbObjectId& lineType) override { m_traits.setLineType(lineType); }
  void setLineWeight(OdInt16 weight) override { m_traits.setLineWeight(weight); }
  void setFillType(OdGiFillType type) override { m_traits.setFillType(type); }

  /// What the solid set last, whether it is in force or not.
  [[nodiscard]] OdCmEntityColor trueColor() const override { return m_color; }
  [[nodiscard]] OdDbObjectId material() const override { return m_material; }
  [[nodiscard]] OdDbObjectId layer() const override { return m_traits.layer(); }
  [[nodiscard]] OdDbObjectId lineType() const override { return m_traits.lineType(); }
  [[nodiscard]] OdInt16 lineWeight() const override { return m_traits.lineWeight(); }
  [[nodiscard]] OdGiFillType fillType() const override { return m_traits.fillType(); }
  [[nodiscard]] OdGsMarker selectionMarker() const override { return m_traits.selectionMarker(); }

 private:
  bool findFeatureColor(OdGsMarker face, OdCmEntityColor& color);
  void useFeatureColor(const OdCmEntityColor& color);
  void restore();

  OdGiSubEntityTraits& m_traits;
  OdCmEntityColor m_color;
  bool m_isFeatureColor = false;
  OdDbFullSubentPath m_path;  // of the solid; the subentity is the present face
  OdDbObjectId m_material;
  OdDbObjectId m_featureColorMaterial;
  OdSmartPtr<VdmDbObject> m_model;  // knows the persistent references into the solid; may be null
};
