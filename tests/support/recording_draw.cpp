// A drawing context that records its calls as lines.
#include "tests/support/recording_draw.h"

#include <algorithm>
#include <sstream>

namespace {

std::string asText(const OdCmEntityColor& color) {
  if (color.isByLayer()) return "layer";
  if (color.isByBlock()) return "block";
  if (color.isByACI()) return "index " + std::to_string(color.colorIndex());
  return std::to_string(color.red()) + " " + std::to_string(color.green()) + " " +
         std::to_string(color.blue());
}

std::string asText(const OdGePoint3d& point) {
  std::ostringstream out;
  out << point.x << " " << point.y << " " << point.z;
  return out.str();
}

}  // namespace

void RecordingTraits::setTrueColor(const OdCmEntityColor& color) {
  m_color = color;
  m_lines.push_back("color " + asText(color));
}

void RecordingTraits::setMaterial(const OdDbObjectId& material) {
  m_material = material;
  m_lines.push_back("material " + std::string(OdString(material.getHandle().ascii()).utf8()));
}

void RecordingTraits::setSelectionMarker(OdGsMarker marker) {
  m_marker = marker;
  m_lines.push_back("marker " + std::to_string(marker));
}

void RecordingDraw::pushModelTransform(const OdGeMatrix3d& toOuter) {
  m_transforms.push_back(m_transforms.back() * toOuter);
}

void RecordingDraw::polyline(std::span<const OdGePoint3d> points) {
  lines.push_back("polyline " + asText(m_transforms.back() * points.front()) + " to " +
                  asText(m_transforms.back() * points.back()));
}

void RecordingDraw::shell(const OdGiShell& shell) {
  lines.push_back("shell of " + std::to_string(shell.triangles.size()));
}

void RecordingDraw::draw(const OdGiDrawable* drawable) {
  if (drawable->setAttributes(&m_traits)) drawable->worldDraw(this);
}

Lines RecordingDraw::of(const OdGiDrawable* drawable, OdGiRegenType type, bool* complete) {
  OdStaticRxObject<RecordingDraw> draw(type);
  drawable->setAttributes(&draw.subEntityTraits());
  const bool result = drawable->worldDraw(&draw);
  if (complete) *complete = result;
  return draw.lines;
}

Lines linesOf(const Lines& lines, const std::vector<std::string>& words) {
  Lines found;
  std::ranges::copy_if(lines, std::back_inserter(found), [&](const std::string& line) {
    return std::ranges::any_of(words,
                               [&](const std::string& word) { return line.starts_with(word); });
  });
  return found;
}
