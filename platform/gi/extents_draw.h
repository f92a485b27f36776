// OdGiExtentsDraw: measures what a drawable draws.
#pragma once

#include <vector>

#include "platform/ge/extents3d.h"
#include "platform/gi/plain_traits.h"
#include "platform/gi/world_draw.h"

/// A context that keeps nothing but the box around all points it is given, in the coordinates of
/// the outermost drawable. Use it as OdStaticRxObject<OdGiExtentsDraw>.
class OdGiExtentsDraw : public OdGiWorldDraw, public OdGiWorldGeometry, public OdGiContext {
 public:
  [[nodiscard]] const OdGeExtents3d& box() const { return m_box; }

  [[nodiscard]] OdGiContext* context() const override;
  [[nodiscard]] OdGiRegenType regenType() const override { return kOdGiForExtents; }
  [[nodiscard]] OdGiWorldGeometry& geometry() const override;
  [[nodiscard]] OdGiSubEntityTraits& subEntityTraits() const override { return m_traits; }
  [[nodiscard]] OdRxObject* database() const override { return nullptr; }

  void pushModelTransform(const OdGeMatrix3d& toOuter) override;
  void popModelTransform() override;
  [[nodiscard]] OdGeMatrix3d getModelToWorldTransform() const override;
  void polyline(std::span<const OdGePoint3d> points) override { add(points); }
  void polygon(std::span<const OdGePoint3d> points) override { add(points); }
  void shell(const OdGiShell& shell) override { add(shell.points); }
  void draw(const OdGiDrawable* drawable) override;

 private:
  void add(std::span<const OdGePoint3d> points);

  mutable OdStaticRxObject<OdGiPlainTraits> m_traits;
  std::vector<OdGeMatrix3d> m_transforms;
  OdGeExtents3d m_box;
};
