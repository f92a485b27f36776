// Vdm3dSolidAdaptedWorldDraw: the drawing context of a solid with feature colours.
#pragma once

#include "platform/gi/world_draw.h"
#include "vdm_db/feature_display/vdm_3d_solid_adapted_subentity_traits.h"

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
