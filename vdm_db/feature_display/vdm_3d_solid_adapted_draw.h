// The drawing context of a solid with feature colours: the real one, with other colours for faces.
#pragma once

#include "platform/db/subent.h"
#include "platform/gi/world_draw.h"
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

/// A context around another one that differs in its traits alone.
class Vdm3dSolidAdaptedWorldDraw : public OdGiWorldDraw {
 public:
  Vdm3dSolidAdaptedWorldDraw(OdGiWorldDraw& context, const OdDb3dSolid* solid,
                             const OdDbObjectId& featureColorMaterial)
      : m_context(context), m_traits(context.subEntityTraits(), solid, featureColorMaterial) {}

  [[nodiscard]] OdGiContext* context() const override { return m_context.context(); }
  [[nodiscard]] OdGiRegenType regenType() const override { return m_context.regenType(); }
  [[nodiscard]] OdGiWorldGeometry& geometry() const override { return m_context.geometry(); }
  [[nodiscard]] OdGiSubEntityTraits& subEntityTraits() const override { return m_traits; }
  [[nodiscard]] double deviation() const override { return m_context.deviation(); }

 private:
  OdGiWorldDraw& m_context;
  mutable OdStaticRxObject<Vdm3dSolidAdaptedSubentityTraits> m_traits;
};
