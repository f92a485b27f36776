// Contact sheets: many small pictures on one.
#pragma once

#include <string>
#include <vector>

namespace rendering {

/// Pixels of a tile's picture.
struct TileSize {
  int width = 320;
  int height = 240;
};

struct SheetTile {
  std::string picture;  ///< path of a PNG file of the tile's size; empty: the tile is blank
  std::string title;    ///< UTF-8, below the picture; cut where it is too wide
  std::string note;     ///< a second line
  bool isSound = true;  ///< otherwise texts are red
};

/// The size at which pictures of so many tiles give a sheet that can be looked at.
[[nodiscard]] TileSize tileSizeFor(std::size_t numTiles);
inline constexpr std::size_t kMostTiles = 5000;

/// Writes the tiles as one PNG picture, row by row, about as wide as it is high; whole, or not at
/// all. The result is empty, or says what went wrong: no tiles or too many, or a picture that
/// cannot be read or has another size.
[[nodiscard]] std::string writeContactSheet(const std::string& path,
                                            const std::vector<SheetTile>& tiles);

}  // namespace rendering
