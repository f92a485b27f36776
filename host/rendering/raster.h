// Surfaces and lines as samples with depth.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "host/rendering/camera.h"
#include "host/rendering/render.h"

namespace rendering {

/// A corner of a triangle: its place in samples, and how much light falls back from it.
struct LitPoint {
  PicturePoint at;
  double diffuse = 1.0;   ///< share of the surface's colour
  double specular = 0.0;  ///< share of white added to it
};

/// A picture in samples, the nearest surface at each. Parts are numbers from 1 that tell surfaces
/// apart; 0 is the background.
class Raster {
 public:
  struct Sample {
    float depth = -std::numeric_limits<float>::infinity();
    std::uint32_t part = 0;
    RenderColor color;
    bool isOutlined = false;  ///< its part is large enough for an outline
  };

  /// With `lightLevels` the light of a surface takes only so many values, 0: any.
  Raster(int width, int height, const RenderColor& background, int lightLevels = 0);

  [[nodiscard]] int width() const { return m_width; }
  [[nodiscard]] int height() const { return m_height; }
  [[nodiscard]] const Sample& at(int x, int y) const { return m_samples[indexOf(x, y)]; }

  void triangle(const LitPoint (&corners)[3], const RenderColor& color, std::uint32_t part,
                bool isOutlined);
  /// A line of a width in samples, where nothing lies more than `bias` drawing units before it.
  void line(const PicturePoint& from, const PicturePoint& to, double width, double bias,
            const RenderColor& color);
  /// The same in front of everything.
  void lineOnTop(const PicturePoint& from, const PicturePoint& to, double width,
                 const RenderColor& color);
  /// A round dot in front of everything.
  void dotOnTop(const PicturePoint& at, double diameter, const RenderColor& color);
  /// Whether a point lies at most `bias` behind the surface at its sample; false outside.
  [[nodiscard]] bool sees(const PicturePoint& point, double bias) const;
  /// Whether the outline of a surface runs between two neighbours: one is of a part that has
  /// outlines, and they are of different parts and
  /// `gap` apart in depth, or of one and three times that. The background is infinitely far.
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
