// Places the labels of a picture.
//
// A label belongs to the side of the model on which its anchor is. In each column the labels keep
// the order of their anchors from top to bottom, so that leaders of one column do not cross on
// their level parts. The heights come from two sweeps. The first one goes down and pushes each
// label below the one before it; the second one goes up from the lower margin and lifts what was
// pushed out of the picture. The second sweep ends at the first label that needs no lifting: the
// labels above it are at the right distance already. When a column has more labels than lines, the
// topmost ones leave the picture; none is dropped.
//
// The side is decided with the unfitted camera: the columns determine the area of the model, and
// the area determines the fit, but moving and scaling do not change which side of the middle a
// point is on. The cost is that of sorting the labels.
#include "host/rendering/label_layout.h"

#include <algorithm>

#include "host/rendering/scene.h"
#include "platform/base/string.h"
#include "platform/gi/stroke_font.h"

namespace rendering {

namespace {

constexpr double kTextShare = 1.0 / 64;  // of the picture's height
constexpr double kSmallestText = 8.0;    // pixels
constexpr double kLargestText = 20.0;    // pixels
constexpr double kMarginShare = 0.05;    // of the smaller side of the picture
constexpr double kWidestColumn = 0.25;   // of the picture's width
constexpr double kLineDistance = 2.0;    // in text heights
constexpr double kLeaderRoom = 3.0;      // between text and model, in text heights
constexpr const char* kCut = "...";

double widthOf(const std::string& text, double height) {
  return odgiTextWidth(OdString(text)) * height;
}

std::string shortened(const std::string& text, double width, double height) {
  if (widthOf(text, height) <= width) return text;
  OdString wide(text);
  while (!wide.isEmpty() && widthOf(std::string(wide.utf8()) + kCut, height) > width) {
    wide = wide.left(wide.getLength() - 1);
  }
  return std::string(wide.utf8()) + kCut;
}

/// Moves the lines apart in their order, within the height of the picture as far as there is room.
void spread(std::vector<PlacedLabel>& column, double distance, double top, double bottom) {
  double least = top;
  for (PlacedLabel& label : column) {
    label.baseLine = std::max(label.baseLine, least);
    least = label.baseLine + distance;
  }
  double most = bottom;
  for (auto label = column.rbegin(); label != column.rend() && label->baseLine > most; ++label) {
    label->baseLine = most;
    most -= distance;
  }
}

}  // namespace

LabelLayout::LabelLayout(const Scene& scene, const RenderOptions& options)
    : m_options(options),
      m_textHeight(std::clamp(options.height * kTextShare, kSmallestText, kLargestText)) {
  const Camera camera(options.viewDirection);
  const PictureArea area = projectedArea(scene, camera);
  for (const RenderLabel& label : options.labels) {
    m_isLeft.push_back(camera.project(label.anchor).x < (area.left + area.right) / 2);
  }
}

double LabelLayout::columnWidth(bool isLeft) const {
  double width = 0.0;
  for (std::size_t i = 0; i < m_isLeft.size(); ++i) {
    if (m_isLeft[i] == isLeft) {
      width = std::max(width, widthOf(m_options.labels[i].text, m_textHeight));
    }
  }
  return std::min(width, m_options.width * kWidestColumn);
}

PictureArea LabelLayout::modelArea() const {
  const double margin = std::min(m_options.width, m_options.height) * kMarginShare;
  const auto side = [&](bool isLeft) {
    const double width = columnWidth(isLeft);
    return width > 0.0 ? width + m_textHeight * (1.0 + kLeaderRoom) : margin;
  };
  return {side(true), margin, m_options.width - side(false), m_options.height - margin};
}

std::vector<PlacedLabel> LabelLayout::place(const Camera& fitted) const {
  std::vector<PlacedLabel> placed;
  placeColumn(fitted, /*isLeft=*/true, placed);
  placeColumn(fitted, /*isLeft=*/false, placed);
  return placed;
}

void LabelLayout::placeColumn(const Camera& camera, bool isLeft,
                              std::vector<PlacedLabel>& placed) const {
  const double width = columnWidth(isLeft);
  std::vector<PlacedLabel> column;
  for (std::size_t i = 0; i < m_isLeft.size(); ++i) {
    if (m_isLeft[i] != isLeft) continue;
    const RenderLabel& source = m_options.labels[i];
    PlacedLabel label;
    label.text = shortened(source.text, width, m_textHeight);
    label.color = source.color;
    label.anchor = camera.project(source.anchor);
    label.isLeft = isLeft;
    label.baseLine = label.anchor.y + m_textHeight / 2;
    const double own = widthOf(label.text, m_textHeight);
    // The texts of a column are aligned at the edge that faces the model.
    const double edge = isLeft ? m_textHeight + width : m_options.width - m_textHeight - width;
    label.textLeft = isLeft ? edge - own : edge;
    label.textRight = label.textLeft + own;
    label.elbowX = edge + (isLeft ? m_textHeight : -m_textHeight);
    column.push_back(std::move(label));
  }
  std::ranges::stable_sort(column, {}, &PlacedLabel::baseLine);
  spread(column, kLineDistance * m_textHeight, 2 * m_textHeight, m_options.height - m_textHeight);
  placed.insert(placed.end(), column.begin(), column.end());
}

}  // namespace rendering
