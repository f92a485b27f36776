// What a drawing holds, as plain values.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/base/handle.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"

namespace cli {

/// One block of the block table, model and paper space included.
struct BlockFacts {
  OdDbHandle handle;
  std::string name;
  std::uint64_t entities = 0;    ///< that are not erased
  std::uint64_t references = 0;  ///< block references that show it directly
  bool layout = false;
  std::string xrefPath;  ///< of an external drawing; empty otherwise
};

/// One solid. Volume and area are in millimetres for any units of drawing and block.
struct SolidFacts {
  OdDbHandle handle;
  std::string block;
  std::string name;
  std::string kind;  ///< "solid", "sheet", "wire" or "mixed"
  std::uint32_t faces = 0;
  std::uint32_t edges = 0;
  std::uint32_t vertices = 0;
  double volume = 0.0;
  double area = 0.0;
  std::string fault;  ///< why there is no more than this; empty when the solid is readable
};

struct DrawingFacts {
  std::string units;        ///< English name, in the plural
  std::string unitsSymbol;  ///< empty where there is none
  std::uint64_t objects = 0;
  std::uint64_t proxies = 0;
  std::map<std::string, std::uint64_t> proxyClasses;  ///< objects by the class that is not there
  std::uint64_t inserts = 0;
  std::vector<std::string> layers;
  std::vector<BlockFacts> blocks;   ///< in rising handle order
  std::vector<SolidFacts> solids;   ///< in rising handle order
  std::vector<std::string> faults;  ///< objects that cannot be read: one line each
};

/// Reads the whole drawing: every solid is measured.
[[nodiscard]] DrawingFacts gatherFacts(OdDbDatabase& drawing);

/// Numbers that need no measuring.
struct DrawingCounts {
  std::uint64_t objects = 0;
  std::uint64_t solids = 0;
  std::uint64_t blocks = 0;  ///< without layouts
  std::uint64_t inserts = 0;
};
[[nodiscard]] DrawingCounts countDrawing(OdDbDatabase& drawing);

/// The solids of all blocks, in rising handle order; those that features own are no part of them.
[[nodiscard]] std::vector<OdDbObjectId> shownSolids(OdDbDatabase& drawing);
/// Those of them that are parts, not tools in the blocks of components.
[[nodiscard]] std::vector<OdDbObjectId> partSolids(OdDbDatabase& drawing);

/// Unit of the coordinates of an entity: that of its block, or of the drawing where the block has
/// none of its own.
[[nodiscard]] OdDb::UnitsValue lengthUnitsOf(const OdDbEntity& entity);

/// "millimeters", "unitless".
[[nodiscard]] std::string unitsName(OdDbDatabase& drawing);

}  // namespace cli
