// How an entity looks once by-layer and by-block rules are settled.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/gi/entity_color.h"
#include "platform/gi/sub_entity_traits.h"

/// Settled attributes of what is drawn.
struct OdDbDisplayAttributes {
  OdCmEntityColor color = OdCmEntityColor::fromIndex(7);  ///< by value or by index
  OdDbObjectId layer;
  OdDbObjectId lineType;   ///< null: continuous
  OdInt16 lineWeight = 0;  ///< hundredths of a millimetre; negative: the default pen
  OdDbObjectId material;   ///< null: none
  bool visible = true;     ///< false: the layer is off or frozen, or the block's is frozen
};

/// Settles the attributes that an entity has set, by these laws:
///
///   1. layer "0" within a block is the layer of the block reference;
///   2. by layer is what that layer says;
///   3. by block is what the block reference was settled to; outside of blocks colour index 7, the
///      default pen, continuous lines and no material;
///   4. nothing shows on a layer that is off or frozen, and a block reference on a frozen layer
///      shows nothing at all.
///
/// `block` is null for entities of a layout.
[[nodiscard]] OdDbDisplayAttributes oddbSettleDisplay(const OdGiSubEntityTraits& own,
                                                      const OdDbDisplayAttributes* block);
