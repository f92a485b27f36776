// Surfaces and lines as samples with depth.
//
// A depth buffer: each sample keeps the nearest surface that was drawn over it. A triangle covers
// the samples whose centre it contains. The test and the values at the centre come from the same
// three shares, the areas of the triangles that the centre forms with the sides, divided by the
// whole: none of them is negative inside, and their sum is 1. Depth and light are linear over the
// picture, since the projection is parallel. Of two surfaces at one depth the first one stays, so
// that the picture depends on the order of drawing alone, which is that of the drawing.
//
// Lines walk one sample at a time along their longer direction and paint a span across it, which
// leaves no holes at any slope. Coordinates are clamped to the picture before they become integers:
// a point far outside costs no time and cannot overflow.
//
// The cost of a triangle is that of its bounding box within the picture, that of a line its length
// within the picture times its width.
#include "host/rendering/raster.h"

#include <algorithm>
#include <cmath>

namespace rendering {

namespace {

constexpr double kSameSurface = 3.0;  // gaps within one surface count from this factor on

std::uint8_t lit(std::uint8_t component, double diffuse, double specular) {
  const double value = component * diffuse + 255.0 * specular;
  constexpr double kHalf = 0.5;  // to the nearest
  return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0) + kHalf);
}

RenderColor lit(const RenderColor& color, double diffuse, double specular) {
  return {lit(color.red, diffuse, specular), lit(color.green, diffuse, specular),
          lit(color.blue, diffuse, specular)};
}

// Twice the area of a triangle, positive when it turns clockwise on the picture.
double turn(const PicturePoint& a, const PicturePoint& b, double x, double y) {
  return (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
}

int clampedCeil(double value, int low, int high) {
  return static_cast<int>(std::ceil(std::clamp(value, double(low), double(high))));
}

int clampedFloor(double value, int low, int high) {
  return static_cast<int>(std::floor(std::clamp(value, double(low), double(high))));
}

// Calls `paint(x, y, depth)` once for each sample of a line.
template <class Paint>
void walkLine(const PicturePoint& from, const PicturePoint& to, double width, int pictureWidth,
              int pictureHeight, const Paint& paint) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const bool steep = std::fabs(dy) > std::fabs(dx);
  const double run = std::max(std::fabs(steep ? dy : dx), 1e-9);
  const double half = width / 2 * std::hypot(dx, dy) / run;  // across, along the other axis
  const double across = std::max(half, width / 2);
  const double first = steep ? from.y : from.x;
  const double last = steep ? to.y : to.x;
  const int longLimit = (steep ? pictureHeight : pictureWidth) - 1;
  const int wideLimit = (steep ? pictureWidth : pictureHeight) - 1;
  const double reach = width / 2;  // rounds the ends off
  const int begin = clampedCeil(std::min(first, last) - reach, 0, longLimit + 1);
  const int end = clampedFloor(std::max(first, last) + reach, -1, longLimit);
  for (int along = begin; along <= end; ++along) {
    const double share =
        std::clamp((along - first) / (last - first == 0.0 ? 1.0 : last - first), 0.0, 1.0);
    const double middle = steep ? from.x + dx * share : from.y + dy * share;
    const double depth = from.depth + (to.depth - from.depth) * share;
    const int low = clampedCeil(middle - across, 0, wideLimit + 1);
    const int high = clampedFloor(middle + across, -1, wideLimit);
    for (int side = low; side <= high; ++side) {
      if (steep) {
        paint(side, along, depth);
      } else {
        paint(along, side, depth);
      }
    }
  }
}

}  // namespace

Raster::Raster(int width, int height, const RenderColor& background, int lightLevels)
    : m_width(width), m_height(height), m_lightLevels(lightLevels) {
  Sample empty;
  empty.color = background;
  m_samples.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), empty);
}

void Raster::triangle(const LitPoint (&corners)[3], const RenderColor& color, std::uint32_t part,
                      bool isOutlined) {
  const LitPoint* a = &corners[0];
  const LitPoint* b = &corners[1];
  const LitPoint* c = &corners[2];
  double area = turn(a->at, b->at, c->at.x, c->at.y);
  // Both sides of a surface are drawn: a mesh need not be closed, and a section shows its inside.
  if (area < 0.0) {
    std::swap(b, c);
    area = -area;
  }
  if (!(area > 0.0)) return;
  const auto [left, right] = std::minmax({a->at.x, b->at.x, c->at.x});
  const auto [top, bottom] = std::minmax({a->at.y, b->at.y, c->at.y});
  const int firstX = clampedCeil(left - 0.5, 0, m_width);
  const int lastX = clampedFloor(right - 0.5, -1, m_width - 1);
  const int firstY = clampedCeil(top - 0.5, 0, m_height);
  const int lastY = clampedFloor(bottom - 0.5, -1, m_height - 1);
  for (int y = firstY; y <= lastY; ++y) {
    for (int x = firstX; x <= lastX; ++x) {
      const double shareA = turn(b->at, c->at, x + 0.5, y + 0.5) / area;
      const double shareB = turn(c->at, a->at, x + 0.5, y + 0.5) / area;
      const double shareC = 1.0 - shareA - shareB;
      if (shareA < 0.0 || shareB < 0.0 || shareC < 0.0) continue;
      const auto depth =
          static_cast<float>(shareA * a->at.depth + shareB * b->at.depth + shareC * c->at.depth);
      Sample& sample = m_samples[indexOf(x, y)];
      if (!(depth > sample.depth)) continue;  // also refuses NaN
      double diffuse = shareA * a->diffuse + shareB * b->diffuse + shareC * c->diffuse;
      double specular = shareA * a->specular + shareB * b->specular + shareC * c->specular;
      if (m_lightLevels > 0) {
        diffuse = std::round(diffuse * m_lightLevels) / m_lightLevels;
        specular = std::round(specular * m_lightLevels) / m_lightLevels;
      }
      sample = {depth, part, lit(color, diffuse, specular), isOutlined};
    }
  }
}

void Raster::line(const PicturePoint& from, const PicturePoint& to, double width, double bias,
                  const RenderColor& color) {
  walkLine(from, to, width, m_width, m_height, [&](int x, int y, double depth) {
    Sample& sample = m_samples[indexOf(x, y)];
    if (depth + bias >= static_cast<double>(sample.depth)) sample.color = color;
  });
}

void Raster::lineOnTop(const PicturePoint& from, const PicturePoint& to, double width,
                       const RenderColor& color) {
  walkLine(from, to, width, m_width, m_height,
           [&](int x, int y, double) { m_samples[indexOf(x, y)].color = color; });
}

void Raster::dotOnTop(const PicturePoint& at, double diameter, const RenderColor& color) {
  walkLine(at, at, diameter, m_width, m_height, [&](int x, int y, double) {
    if (std::hypot(x - at.x, y - at.y) <= diameter / 2) m_samples[indexOf(x, y)].color = color;
  });
}

bool Raster::sees(const PicturePoint& point, double bias) const {
  if (!(point.x >= 0.0 && point.x < m_width && point.y >= 0.0 && point.y < m_height)) return false;
  const Sample& sample = at(static_cast<int>(point.x), static_cast<int>(point.y));
  return point.depth + bias >= static_cast<double>(sample.depth);
}

bool Raster::isOutline(const Sample& a, const Sample& b, double gap) {
  if (!a.isOutlined && !b.isOutlined) return false;
  if (a.part == 0 || b.part == 0) return a.part != b.part;
  const double apart = std::fabs(static_cast<double>(a.depth) - static_cast<double>(b.depth));
  return apart > (a.part == b.part ? kSameSurface * gap : gap);
}

void Raster::drawOutlines(double gap, const RenderColor& color) {
  // Marked first and coloured afterwards: isOutline must see the picture without outlines.
  std::vector<std::size_t> marked;
  const auto compare = [&](std::size_t one, std::size_t other) {
    if (!isOutline(m_samples[one], m_samples[other], gap)) return;
    if (m_samples[one].part != 0) marked.push_back(one);
    if (m_samples[other].part != 0) marked.push_back(other);
  };
  for (int y = 0; y < m_height; ++y) {
    for (int x = 0; x < m_width; ++x) {
      if (x + 1 < m_width) compare(indexOf(x, y), indexOf(x + 1, y));
      if (y + 1 < m_height) compare(indexOf(x, y), indexOf(x, y + 1));
    }
  }
  for (const std::size_t index : marked) m_samples[index].color = color;
}

std::vector<std::uint8_t> Raster::pixels(int factor) const {
  const int width = m_width / factor;
  const int height = m_height / factor;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
  const int count = factor * factor;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      int red = 0;
      int green = 0;
      int blue = 0;
      for (int i = 0; i < count; ++i) {
        const RenderColor& color = at(x * factor + i % factor, y * factor + i / factor).color;
        red += color.red;
        green += color.green;
        blue += color.blue;
      }
      for (const int sum : {red, green, blue}) {
        bytes.push_back(static_cast<std::uint8_t>((sum + count / 2) / count));
      }
    }
  }
  return bytes;
}

}  // namespace rendering
