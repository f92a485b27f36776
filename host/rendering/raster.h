// Surfaces and lines as samples with depth.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "host/rendering/camera.h"
#include "host/rendering/render.h"

namespace rendering {

/// A corner of a triangle: its place in samples, and how much light it reflects.
struct LitPoint {
  PicturePoint at;
  double diffuse = 1.0;   ///< share of the surface's colour
  double specular = 0.0;  ///< share of white added to it
};

/// A picture in samples, the nearest surface at each. Surfaces have different parts, which are
/// numbers from 1; 0 is the background.
class Raster {
 public:
  struct Sample {
    float depth = -std::numeric_limits<float>::infinity();
    std::uint32_t part = 0;
    RenderColor color;
    bool isOutlined = false;  ///< its part is large enough for an outline
  };

  /// `lightLevels`: number of values that the light of a surface is rounded to; 0 does not round.
  Raster(int width, int height, const RenderColor& background, int lightLevels = 0);

  [[nodiscard]] int width() const { return m_width; }
  [[nodiscard]] int height() const { return m_height; }
  [[nodiscard]] const Sample& at(int x, int y) const { return m_samples[indexOf(x, y)]; }

  void triangle(const LitPoint (&corners)[3], const RenderColor& color, std::uint32_t part,
                bool isOutlined);
  /// A line of a width in samples. It is hidden where something is more than `bias` drawing units
  /// nearer.
  void line(const PicturePoint& from, const PicturePoint& to, double width, double bias,
            const RenderColor& color);
  /// The same without hiding.
  void lineOnTop(const PicturePoint& from, const PicturePoint& to, double width,
                 const RenderColor& color);
  /// A round dot that nothing hides.
  void dotOnTop(const PicturePoint& at, double diameter, const RenderColor& color);
  /// Whether a point is at most `bias` farther than the surface at its sample; false outside.
  [[nodiscard]] bool sees(const PicturePoint& point, double bias) const;
  /// Whether the outline of a surface runs between two neighbours: at least one is of a part that
  /// has outlines, and their depths differ by more than `gap` when they are of different parts, by
  /// more than three times that when they are of one. The background is infinitely far.
  [[nodiscard]] static bool isOutline(const Sample& a, const Sample& b, double gap);
  /// Colours the samples on both sides of outlines, the background's excepted.
  void drawOutlines(double gap, const RenderColor& color);

  /// Rows of red, green and blue bytes, each pixel the mean of `factor` by `factor` samples.
  [[nodiscard]] std::vector<std::uint8_t> pixels(int factor) const;

 private:
  [[nodiscard]] std::size_t indexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
           static_cast<std::size_t>(x);
  }

  int m_width;
  int m_height;
  int m_lightLevels;
  std::vector<Sample> m_samples;
};

}  // namespace rendering
