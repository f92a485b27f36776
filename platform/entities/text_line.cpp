// One line of text as entities draw it.
#include "platform/entities/text_line.h"

#include <array>
#include <cmath>

#include "platform/gi/stroke_font.h"
#include "platform/gi/world_draw.h"

namespace {

constexpr double kUnderline = -0.25;  // from the base line, in heights
constexpr double kOverline = 1.25;

}  // namespace

void OdDbTextLine::draw(OdGiWorldDraw* context, const OdDbPlainText& text) const {
  const OdGeVector3d along = xAxis * (height * widthFactor * (isBackward ? -1.0 : 1.0));
  const OdGeVector3d slant = xAxis * (std::tan(oblique) * height * (isBackward ? -1.0 : 1.0));
  const OdGeVector3d up = yAxis * (isUpsideDown ? -height : height) + slant;
  if (!text.text.isEmpty()) context->geometry().text({text.text, position, along, up});
  const auto drawRule = [&](const OdDbTextRun& run, double place) {
    if (run.begin >= run.end) return;
    const double gap = run.begin > 0 ? kOdGiCharacterGap : 0.0;
    const double from = odgiTextWidth(text.text.left(run.begin)) + gap;
    const double to = odgiTextWidth(text.text.left(run.end));
    context->geometry().polyline(
        std::array{position + along * from + up * place, position + along * to + up * place});
  };
  for (const OdDbTextRun& run : text.underlines) drawRule(run, kUnderline);
  for (const OdDbTextRun& run : text.overlines) drawRule(run, kOverline);
}

double oddbTextWidth(const OdString& plain, double height, double widthFactor) {
  return odgiTextWidth(plain) * height * widthFactor;
}
