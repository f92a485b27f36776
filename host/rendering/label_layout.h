// Places the labels of a picture.
#pragma once

#include <string>
#include <vector>

#include "host/rendering/camera.h"
#include "host/rendering/render.h"

namespace rendering {

/// A label in pixels. Its leader runs from the anchor to the elbow and on to the end of the text.
struct PlacedLabel {
  std::string text;  ///< shortened where its column is too narrow
  RenderColor color;
  PicturePoint anchor;
  double elbowX = 0.0;
  double textLeft = 0.0;
  double textRight = 0.0;
  double baseLine = 0.0;
  bool isLeft = false;  ///< of the model
};

/// Puts labels into a column on each side of the model, in the order of their anchors. They do not
/// overlap as long as the picture is high enough for them.
class LabelLayout {
 public:
  LabelLayout(const Scene& scene, const RenderOptions& options);

  /// What the columns leave for the model.
  [[nodiscard]] PictureArea modelArea() const;
  /// Height of capitals, pixels.
  [[nodiscard]] double textHeight() const { return m_textHeight; }
  [[nodiscard]] std::vector<PlacedLabel> place(const Camera& fitted) const;

 private:
  [[nodiscard]] double columnWidth(bool isLeft) const;
  void placeColumn(const Camera& camera, bool isLeft, std::vector<PlacedLabel>& placed) const;

  const RenderOptions& m_options;
  double m_textHeight;
  std::vector<bool> m_isLeft;  // by label
};

}  // namespace rendering
