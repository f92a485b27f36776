// SVG pictures.
#include "host/rendering/svg_picture.h"

#include <charconv>
#include <cmath>
#include <map>

#include "host/rendering/region_trace.h"
#include "host/rendering/view.h"

namespace rendering {

namespace {

constexpr int kSamplesPerSide = 2;
constexpr int kLightLevels = 32;
constexpr double kStraightness = 0.9;    // samples
constexpr double kVisibilityStep = 2.0;  // samples
constexpr double kShortest = 0.7;        // samples
constexpr double kEdgeWidth = 1.1;       // pixels
constexpr double kLeaderWidth = 0.9;     // pixels
constexpr double kLeaderGap = 0.45;      // between leader and text, in text heights
constexpr double kDotRadius = 2.5;       // pixels
constexpr double kCapitalShare = 0.8;    // of the font size; wider fonts still fit

std::string number(double value) {
  char text[32];
  const double rounded = std::round(value * 10.0) / 10.0 + 0.0;  // no minus zero
  const auto end = std::to_chars(text, text + sizeof text, rounded);
  return std::string(text, end.ptr);
}

std::string hex(const RenderColor& color) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "#";
  for (const unsigned component : {color.red, color.green, color.blue}) {
    text += kDigits[component / 16];
    text += kDigits[component % 16];
  }
  return text;
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        // The format does not allow control characters, not even escaped.
        result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return result;
}

/// Writes in pixels what is given in samples.
class SvgWriter {
 public:
  SvgWriter(const RenderOptions& options, const View& view) : m_options(options), m_view(view) {}

  std::string write(const Scene& scene, const Raster& raster) {
    begin();
    writeSurfaces(raster);
    writeLines(scene, raster);
    for (const PlacedLabel& label : m_view.labels) writeLabel(label);
    return m_text + "</svg>\n";
  }

 private:
  [[nodiscard]] std::string at(double samples) const { return number(samples / m_view.factor); }
  [[nodiscard]] std::string at(double x, double y) const { return at(x) + " " + at(y); }

  void begin() {
    const std::string width = std::to_string(m_options.width);
    const std::string height = std::to_string(m_options.height);
    m_text = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" +
             height + "\" viewBox=\"0 0 " + width + " " + height + "\">\n<rect width=\"" + width +
             "\" height=\"" + height + "\" fill=\"" + hex(m_options.background) + "\"/>\n";
  }

  void writeSurfaces(const Raster& raster) {
    const TracedPicture picture = traceRegions(raster, m_view.outlineGap(), kStraightness);
    std::map<RenderColor, std::string> paths;
    for (const Region& region : picture.regions) {
      std::string& path = paths[region.color];
      for (const auto& loop : region.loops) path += pathOf(loop) + "z";
    }
    // A thin line of its own colour closes the seams that viewers leave between neighbours.
    m_text += "<g fill-rule=\"evenodd\" stroke-width=\"0.6\" stroke-linejoin=\"round\">\n";
    for (const auto& [color, path] : paths) {
      m_text +=
          "<path fill=\"" + hex(color) + "\" stroke=\"" + hex(color) + "\" d=\"" + path + "\"/>\n";
    }
    m_text += "</g>\n";
    if (!m_options.showEdges) return;
    for (const auto& line : picture.outlines) m_lines[kEdgeColor] += pathOf(line);
  }

  [[nodiscard]] std::string pathOf(const std::vector<OutlinePoint>& points) const {
    std::string path;
    for (std::size_t i = 0; i < points.size(); ++i) {
      path += (i == 0 ? "M" : "L") + at(points[i].x, points[i].y);
    }
    return path;
  }

  void writeLines(const Scene& scene, const Raster& raster) {
    forEachLine(scene, m_view, m_options.showEdges,
                [&](const PicturePoint& from, const PicturePoint& to, const RenderColor& color) {
                  addVisible(raster, from, to, m_lines[color]);
                });
    m_text += "<g fill=\"none\" stroke-width=\"" + number(kEdgeWidth) +
              "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
    for (const auto& [color, path] : m_lines) {
      if (!path.empty()) m_text += "<path stroke=\"" + hex(color) + "\" d=\"" + path + "\"/>\n";
    }
    m_text += "</g>\n";
  }

  // The pieces of a line that no surface hides, found by looking every few samples.
  void addVisible(const Raster& raster, const PicturePoint& from, const PicturePoint& to,
                  std::string& path) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    const int steps = std::max(1, static_cast<int>(std::ceil(length / kVisibilityStep)));
    const auto pointAt = [&](int step) {
      const double share = static_cast<double>(step) / steps;
      return PicturePoint{from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share,
                          from.depth + (to.depth - from.depth) * share};
    };
    const auto isSeen = [&](int step) {
      const PicturePoint a = pointAt(step);
      const PicturePoint b = pointAt(step + 1);
      return isNearSeen(raster, {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.depth + b.depth) / 2});
    };
    for (int step = 0; step < steps;) {
      if (!isSeen(step)) {
        ++step;
        continue;
      }
      const int first = step;
      while (step < steps && isSeen(step)) ++step;
      addPiece(pointAt(first), pointAt(step), path);
    }
  }

  // Goes on where the last piece ended; what is too short to be seen waits for more.
  void addPiece(const PicturePoint& begin, const PicturePoint& end, std::string& path) {
    if (m_lastPath != &path || !isNear(begin, m_last)) {
      path += "M" + at(begin.x, begin.y);
      m_last = begin;
      m_lastPath = &path;
    }
    if (isNear(end, m_last)) return;
    path += "L" + at(end.x, end.y);
    m_last = end;
  }

  static bool isNear(const PicturePoint& a, const PicturePoint& b) {
    return std::hypot(a.x - b.x, a.y - b.y) < kShortest;
  }

  // On a silhouette the sample itself may show a surface farther away, or its neighbour does.
  [[nodiscard]] bool isNearSeen(const Raster& raster, const PicturePoint& point) const {
    constexpr PicturePoint kAround[] = {{0, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}};
    for (const PicturePoint& off : kAround) {
      if (raster.sees({point.x + off.x, point.y + off.y, point.depth}, m_view.lineBias())) {
        return true;
      }
    }
    return false;
  }

  void writeLabel(const PlacedLabel& label) {
    const double middle = label.baseLine - m_view.textHeight / 2;
    const double gap = m_view.textHeight * kLeaderGap;
    const double textEnd = label.isLeft ? label.textRight + gap : label.textLeft - gap;
    const std::string color = hex(label.color);
    const std::string path = "M" + at(label.anchor.x, label.anchor.y) + "L" +
                             at(label.elbowX, middle) + "L" + at(textEnd, middle);
    m_text += "<path fill=\"none\" stroke=\"" + hex(m_options.background) +
              "\" stroke-width=\"3\" d=\"" + path + "\"/>\n";
    m_text += "<path fill=\"none\" stroke=\"" + color + "\" stroke-width=\"" +
              number(kLeaderWidth) + "\" d=\"" + path + "\"/>\n";
    m_text += "<circle cx=\"" + at(label.anchor.x) + "\" cy=\"" + at(label.anchor.y) + "\" r=\"" +
              number(kDotRadius) + "\" fill=\"" + color + "\"/>\n";
    m_text += "<text x=\"" + at(label.isLeft ? label.textRight : label.textLeft) + "\" y=\"" +
              at(label.baseLine) + "\" text-anchor=\"" + (label.isLeft ? "end" : "start") +
              "\" font-family=\"sans-serif\" font-size=\"" + at(m_view.textHeight / kCapitalShare) +
              "\" fill=\"" + color + "\">" + escaped(label.text) + "</text>\n";
  }

  const RenderOptions& m_options;
  const View& m_view;
  std::string m_text;
  std::map<RenderColor, std::string> m_lines;  // paths
  PicturePoint m_last;                         // where the last piece of a path ended
  const std::string* m_lastPath = nullptr;
};

}  // namespace

std::string encodeSvg(const Scene& scene, const RenderOptions& options) {
  const View view(scene, options, kSamplesPerSide);
  const Raster raster = rasterise(scene, view, options, kLightLevels);
  return SvgWriter(options, view).write(scene, raster);
}

}  // namespace rendering
