// Makers of components: blocks whose solids cut or fill the solid at which they are inserted.
#pragma once

#include <optional>
#include <vector>

#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/db/database.h"
#include "platform/modeler/modeler.h"

namespace vdm_host {

/// What the solids of a component do.
enum class ComponentRole { kSubtract, kUnite };

/// Dimensions in drawing units. The z axis of a component points out of the material at its origin;
/// cutting tools begin there, or a little above where that removes nothing else, and reach down. A
/// missing depth means through everything below, in whatever body the component is put.
struct HoleSize {
  double diameter = 0.0;
  std::optional<double> depth;
};
struct CounterboreSize {
  double diameter = 0.0;
  std::optional<double> depth;  ///< of the hole, from the face; more than the bore's
  double boreDiameter = 0.0;    ///< more than `diameter`
  double boreDepth = 0.0;
};
/// Along x, with round ends.
struct SlotSize {
  double width = 0.0;
  double length = 0.0;  ///< over all, more than the width
  std::optional<double> depth;
};
struct BossSize {
  double diameter = 0.0;
  double height = 0.0;
};

struct ComponentInfo {
  OdDbObjectId block;
  OdString name;
  OdUInt32 numCutting = 0;  ///< solids on layers for subtracting
  OdUInt32 numFilling = 0;  ///< solids on layers for uniting
  OdUInt32 numInserts = 0;
};

/// Make a block of the given name with its solids on "VC_SUBTRACT" or "VC_UNITE". The codes:
/// eInvalidInput for dimensions that make no component (the text names both values), eDuplicateKey
/// for a name in use, those of the modeller. On failure the drawing is as it was.
OdStatus makeHole(OdDbDatabase* database, const OdString& name, const HoleSize& size,
                  OdDbObjectId& block);
OdStatus makeCounterbore(OdDbDatabase* database, const OdString& name, const CounterboreSize& size,
                         OdDbObjectId& block);
OdStatus makeSlot(OdDbDatabase* database, const OdString& name, const SlotSize& size,
                  OdDbObjectId& block);
OdStatus makeBoss(OdDbDatabase* database, const OdString& name, const BossSize& size,
                  OdDbObjectId& block);
/// Turns a block of the drawing into a component by putting its solids on the role's layer. A block
/// that has solids on such layers already is left as it is. eInvalidInput for one without solids.
OdStatus makeFromBlock(OdDbDatabase* database, const OdString& blockName, ComponentRole role,
                       OdDbObjectId& block);
/// A new block with all solids of a STEP file, where the file places them, in drawing units.
/// `leftOut`, which may be null, gets a line for each kind of body in the file that is no solid.
OdStatus makeFromStep(OdDbDatabase* database, const OdString& name, const OdString& path,
                      const OdModelerReadOptions& options, ComponentRole role, OdDbObjectId& block,
                      OdStringArray* leftOut = nullptr);

/// All components of the drawing, in the order of the block table.
[[nodiscard]] std::vector<ComponentInfo> listComponents(OdDbDatabase* database);
/// The component of a name; null when there is no block of that name or it is no component.
[[nodiscard]] OdDbObjectId findComponent(OdDbDatabase* database, const OdString& name);

}  // namespace vdm_host
