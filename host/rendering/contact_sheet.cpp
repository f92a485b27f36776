// Contact sheets: many small pictures on one.
#include "host/rendering/contact_sheet.h"

#include <algorithm>
#include <cmath>

#include "host/rendering/png_picture.h"
#include "host/rendering/raster.h"
#include "host/rendering/whole_file.h"
#include "platform/base/error.h"
#include "platform/gi/stroke_font.h"

namespace rendering {

namespace {

constexpr RenderColor kPaper{255, 255, 255};
constexpr RenderColor kBlank{230, 232, 235};
constexpr RenderColor kInk{24, 26, 30};
constexpr RenderColor kPaleInk{110, 114, 122};
constexpr RenderColor kAlarm{180, 30, 20};
constexpr int kSamplesPerSide = 2;
constexpr double kStrokeWidth = 1.1;  // pixels

/// Where things are, in pixels. All of it follows from the tile.
struct Layout {
  explicit Layout(std::size_t numTiles) : tile(tileSizeFor(numTiles)) {
    margin = tile.width / 20;
    capital = std::max(5, tile.width / 32);
    caption = capital * 4;
    const double cells = static_cast<double>(numTiles) * cellHeight() / cellWidth();
    columns = std::clamp(static_cast<int>(std::lround(std::sqrt(cells * 4.0 / 3.0))), 1,
                         static_cast<int>(numTiles));
    rows = (static_cast<int>(numTiles) + columns - 1) / columns;
  }

  [[nodiscard]] int cellWidth() const { return tile.width + margin; }
  [[nodiscard]] int cellHeight() const { return tile.height + caption + margin; }

  TileSize tile;
  int margin = 0;
  int capital = 0;  ///< height of a capital
  int caption = 0;
  int columns = 1;
  int rows = 1;
};

/// The text, cut until it fits.
OdString fitted(const std::string& text, double width) {
  OdString fits(text);
  if (odgiTextWidth(fits) <= width) return fits;
  while (!fits.isEmpty() && odgiTextWidth(fits + L"..") > width) {
    fits = fits.left(fits.getLength() - 1);
  }
  return fits + L"..";
}

void drawLine(Raster& raster, const OdString& text, double baseLine, double height,
              const RenderColor& color) {
  for (const auto& stroke : odgiLayOutText(text).strokes) {
    for (std::size_t i = 1; i < stroke.size(); ++i) {
      raster.lineOnTop({stroke[i - 1].x * height, baseLine - stroke[i - 1].y * height, 0.0},
                       {stroke[i].x * height, baseLine - stroke[i].y * height, 0.0},
                       kStrokeWidth * kSamplesPerSide, color);
    }
  }
}

PixelPicture captionOf(const SheetTile& tile, const Layout& layout) {
  Raster raster(layout.tile.width * kSamplesPerSide, layout.caption * kSamplesPerSide, kPaper);
  const double height = layout.capital * kSamplesPerSide;
  const double width = static_cast<double>(layout.tile.width) / layout.capital;
  drawLine(raster, fitted(tile.title, width), 1.5 * height, height, tile.isSound ? kInk : kAlarm);
  drawLine(raster, fitted(tile.note, width), 3.2 * height, height,
           tile.isSound ? kPaleInk : kAlarm);
  return {layout.tile.width, layout.caption, raster.pixels(kSamplesPerSide)};
}

PixelPicture filled(int width, int height, const RenderColor& color) {
  PixelPicture picture{width, height, {}};
  const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  picture.pixels.reserve(size * 3);
  for (std::size_t i = 0; i < size; ++i) {
    picture.pixels.insert(picture.pixels.end(), {color.red, color.green, color.blue});
  }
  return picture;
}

void paste(const PixelPicture& piece, int left, int top, PixelPicture& sheet) {
  const auto offset = [](const PixelPicture& picture, int x, int y) {
    return 3 * (static_cast<std::ptrdiff_t>(y) * picture.width + x);
  };
  for (int y = 0; y < piece.height; ++y) {
    const auto from = piece.pixels.begin() + offset(piece, 0, y);
    std::copy(from, from + offset(piece, piece.width, 0),
              sheet.pixels.begin() + offset(sheet, left, top + y));
  }
}

PixelPicture pictureOf(const SheetTile& tile, const Layout& layout) {
  if (tile.picture.empty()) return filled(layout.tile.width, layout.tile.height, kBlank);
  PixelPicture picture = readPng(tile.picture);
  const bool fits = picture.width == layout.tile.width && picture.height == layout.tile.height;
  if (fits) return picture;
  throw OdError(OdString("picture '" + tile.picture + "' is " + std::to_string(picture.width) +
                         " by " + std::to_string(picture.height) + " pixels, " +
                         std::to_string(layout.tile.width) + " by " +
                         std::to_string(layout.tile.height) + " are needed"));
}

}  // namespace

TileSize tileSizeFor(std::size_t numTiles) {
  constexpr double kManyTiles = 48.0;
  constexpr int kSmallest = 80;
  const double shrink = std::sqrt(kManyTiles / std::max(static_cast<double>(numTiles), kManyTiles));
  const int width = std::max(kSmallest, static_cast<int>(320 * shrink));
  return {width, width * 3 / 4};
}

std::string writeContactSheet(const std::string& path, const std::vector<SheetTile>& tiles) {
  if (tiles.empty() || tiles.size() > kMostTiles) {
    return "a contact sheet has 1 to " + std::to_string(kMostTiles) + " pictures, these are " +
           std::to_string(tiles.size());
  }
  const Layout layout(tiles.size());
  try {
    PixelPicture sheet = filled(layout.columns * layout.cellWidth() + layout.margin,
                                layout.rows * layout.cellHeight() + layout.margin, kPaper);
    for (std::size_t i = 0; i < tiles.size(); ++i) {
      const int left = layout.margin + static_cast<int>(i) % layout.columns * layout.cellWidth();
      const int top = layout.margin + static_cast<int>(i) / layout.columns * layout.cellHeight();
      paste(pictureOf(tiles[i], layout), left, top, sheet);
      paste(captionOf(tiles[i], layout), left, top + layout.tile.height, sheet);
    }
    return writeWholeFile(path, encodePixels(sheet));
  } catch (const OdError& error) {
    return error.what();
  }
}

}  // namespace rendering
