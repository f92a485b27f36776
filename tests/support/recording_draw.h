// A drawing context that records its calls as lines.
#pragma once

#include <string>
#include <vector>

#include "platform/gi/drawable.h"
#include "platform/gi/world_draw.h"

using Lines = std::vector<std::string>;

/// Adds lines such as "marker 5", "color 255 0 0" or "color layer", "material 2F".
class RecordingTraits : public OdGiSubEntityTraits {
 public:
  explicit RecordingTraits(Lines& lines) : m_lines(lines) {}

  void setTrueColor(const OdCmEntityColor& color) override;
  void setMaterial(const OdDbObjectId& material) override;
  void setSelectionMarker(OdGsMarker marker) override;
  void setLayer(const OdDbObjectId& layer) override { m_layer = layer; }
  void setLineType(const OdDbObjectId& lineType) override { m_lineType = lineType; }
  void setLineWeight(OdInt16 weight) override { m_lineWeight = weight; }
  void setFillType(OdGiFillType fill) override { m_fill = fill; }
  OdCmEntityColor trueColor() const override { return m_color; }
  OdDbObjectId layer() const override { return m_layer; }
  OdDbObjectId lineType() const override { return m_lineType; }
  OdInt16 lineWeight() const override { return m_lineWeight; }
  OdDbObjectId material() const override { return m_material; }
  OdGiFillType fillType() const override { return m_fill; }
  OdGsMarker selectionMarker() const override { return m_marker; }

 private:
  Lines& m_lines;
  OdCmEntityColor m_color;
  OdDbObjectId m_layer;
  OdDbObjectId m_lineType;
  OdDbObjectId m_material;
  OdInt16 m_lineWeight = -1;
  OdGiFillType m_fill = OdGiFillType::kFillAlways;
  OdGsMarker m_marker = 0;
};

/// Adds "polyline 0 0 0 to 1 0 0" in world coordinates and "shell of 2". Drawables within drawables
/// are drawn at once.
class RecordingDraw : public OdGiWorldDraw, public OdGiWorldGeometry, public OdGiContext {
 public:
  Lines lines;
  bool aborts = false;

  explicit RecordingDraw(OdGiRegenType type) : m_type(type), m_traits(lines) {}
  /// What comes of a drawable with its attributes; `complete` gets what worldDraw said.
  static Lines of(const OdGiDrawable* drawable, OdGiRegenType type = kOdGiStandardDisplay,
                  bool* complete = nullptr);

  OdGiContext* context() const override { return const_cast<RecordingDraw*>(this); }
  OdGiRegenType regenType() const override { return m_type; }
  OdGiWorldGeometry& geometry() const override { return const_cast<RecordingDraw&>(*this); }
  OdGiSubEntityTraits& subEntityTraits() const override { return m_traits; }
  OdRxObject* database() const override { return nullptr; }
  bool regenAbort() const override { return aborts; }

  void pushModelTransform(const OdGeMatrix3d& toOuter) override;
  void popModelTransform() override { m_transforms.pop_back(); }
  OdGeMatrix3d getModelToWorldTransform() const override { return m_transforms.back(); }
  void polyline(std::span<const OdGePoint3d> points) override;
  void polygon(std::span<const OdGePoint3d>) override { lines.push_back("polygon"); }
  void shell(const OdGiShell& shell) override;
  void draw(const OdGiDrawable* drawable) override;

 private:
  OdGiRegenType m_type;
  mutable OdStaticRxObject<RecordingTraits> m_traits;
  std::vector<OdGeMatrix3d> m_transforms{OdGeMatrix3d()};
};

/// The lines that begin with one of the words, in order.
[[nodiscard]] Lines linesOf(const Lines& lines, const std::vector<std::string>& words);
