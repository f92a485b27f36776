// OdGiWorldDraw: what a drawable draws into.
#pragma once

#include "platform/gi/context.h"
#include "platform/gi/regen_type.h"
#include "platform/gi/sub_entity_traits.h"
#include "platform/gi/world_geometry.h"
#include "platform/rx/rx_macros.h"

/// One run of drawing: the primitives, the look of the next ones, and what the picture is for.
/// The maker of the picture owns it; drawables do not keep it.
class OdGiWorldDraw : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdGiWorldDraw)

  [[nodiscard]] virtual OdGiContext* context() const = 0;
  [[nodiscard]] virtual OdGiRegenType regenType() const = 0;
  [[nodiscard]] virtual OdGiWorldGeometry& geometry() const = 0;
  [[nodiscard]] virtual OdGiSubEntityTraits& subEntityTraits() const = 0;
  /// Largest distance between curved geometry and its facets, in drawing units; 0 leaves it to the
  /// drawable.
  [[nodiscard]] virtual double deviation() const { return 0.0; }
  [[nodiscard]] bool regenAbort() const { return context() && context()->regenAbort(); }

 protected:
  OdGiWorldDraw() = default;
};
