// A block of text with formats, laid out in lines.
#pragma once

#include <vector>

#include "platform/entities/text_line.h"

namespace OdDb {

/// The point of a text block that is at its location. Numbers are stored.
enum AttachmentPoint : OdUInt8 {
  kTopLeft = 1,
  kTopCenter = 2,
  kTopRight = 3,
  kMiddleLeft = 4,
  kMiddleCenter = 5,
  kMiddleRight = 6,
  kBottomLeft = 7,
  kBottomCenter = 8,
  kBottomRight = 9,
};

}  // namespace OdDb

[[nodiscard]] constexpr bool oddbIsAttachment(OdUInt8 number) {
  return number >= OdDb::kTopLeft && number <= OdDb::kBottomRight;
}
/// The same row with left and right exchanged.
[[nodiscard]] OdDb::AttachmentPoint oddbMirrored(OdDb::AttachmentPoint attachment);
/// The same column with top and bottom exchanged.
[[nodiscard]] OdDb::AttachmentPoint oddbTurnedOver(OdDb::AttachmentPoint attachment);

/// Laid out from formatted contents:
///
///   \P            new line                  \~           space that does not break
///   \\ \{ \}      the character itself      { ... }      formats end with the group
///   \L \l \O \o   line under, over the text: on, off
///   \H2.5; \H2x;  height, absolute or as a factor        \W0.8;  width factor
///   \Q15;         slant in degrees          \Supper^lower; \Sa/b; \Sa#b;   stacked
///   \U+hhhh       a character               %%c and the like, see text_codes.h
///
/// \F \f \C \c \A \T \K \k \p are read and have no effect. Lengths are drawing units; x runs along
/// the lines and y up, with the top of the first line's capitals at 0.
class OdDbTextBlock {
 public:
  /// Lines break at spaces beyond `wrapWidth`, 0 for never. `spacing` is a factor on the usual
  /// distance of lines, five thirds of the height.
  OdDbTextBlock(const OdString& contents, double height, double widthFactor, double oblique,
                double wrapWidth, double spacing);

  [[nodiscard]] double width() const { return m_width; }
  /// From the top of the first line's capitals to the last base line.
  [[nodiscard]] double height() const { return m_height; }
  [[nodiscard]] std::size_t numLines() const { return m_lines.size(); }
  /// The contents without formats; lines are parted by a line feed.
  [[nodiscard]] OdString plainText() const;

  /// Draws it at a location, with unit vectors along the lines and up.
  void draw(OdGiWorldDraw* context, const OdGePoint3d& location, const OdGeVector3d& xAxis,
            const OdGeVector3d& yAxis, OdDb::AttachmentPoint attachment) const;

 private:
  friend class OdDbTextBlockMaker;

  /// A run of characters of one format.
  struct Piece {
    OdDbPlainText text;
    double x = 0.0;     // from the start of its line
    double rise = 0.0;  // above its base line
    double height = 1.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
  };
  struct Line {
    std::vector<Piece> pieces;
    double width = 0.0;
    double baseLine = 0.0;  // below the top
  };

  std::vector<Line> m_lines;
  double m_width = 0.0;
  double m_height = 0.0;
};
