// ComponentTools: the tools of component blocks, read once in a pass.
//
// A component is done anew when its tools are not those that were applied. To see that without
// keeping the old bodies, the bodies' fingerprints are folded into one stamp of 64 bits, in the
// order of the block, cuts before fills, with the number of cuts in between: the same body in
// another place or in the other role gives another stamp. Two different sets of tools have the same
// stamp with a probability of about 2^-64.
#include "host/modeling/component_tools.h"

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/features/vdm_update_feature_interface.h"

namespace vdm_host {
namespace {

// splitmix64's finaliser: every bit of the input reaches every bit of the output.
OdUInt64 mixed(OdUInt64 stamp, OdUInt64 value) {
  OdUInt64 x = stamp + 0x9E3779B97F4A7C15ULL + value;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31);
}

void readTools(const VdmSolidOccurrences& occurrences, std::vector<OdModelerBodyPtr>& bodies,
               OdUInt64& stamp) {
  for (const auto& [id, places] : occurrences) {
    const OdDb3dSolidPtr solid = id.openAs<OdDb3dSolid>();
    const OdModelerBodyPtr body = solid.isNull() ? nullptr : solid->body();
    if (!body) continue;
    for (const OdGeMatrix3d& place : places) {
      OdModelerBodyPtr placed = body;
      if (!(place == OdGeMatrix3d::kIdentity)) {
        const OdStatus status = body->transformed(place, placed);
        if (!status.ok()) throw OdError(status.code, status.text);
      }
      stamp = mixed(stamp, placed->fingerprint());
      bodies.push_back(std::move(placed));
    }
  }
}

}  // namespace

const BlockTools& ComponentTools::of(const OdDbObjectId& block) {
  const auto [it, isNew] = m_tools.try_emplace(block);
  BlockTools& tools = it->second;
  if (!isNew || block.isNull()) return tools;
  using Interface = VdmUpdateFeatureInterface;
  readTools(Interface::getSubtractorsOnDedicatedLayer(block, /*forWrite=*/false), tools.bodies[0],
            tools.stamp);
  tools.stamp = mixed(tools.stamp, tools.bodies[0].size());
  readTools(Interface::getAdditionsOnDedicatedLayer(block, /*forWrite=*/false), tools.bodies[1],
            tools.stamp);
  VdmProperties bag;
  const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>();
  if (tools.bodies[0].size() == 1 && !record.isNull() && bag.readFromDbObject(record.get())) {
    tools.form = readToolForm(bag, *tools.bodies[0].front());
  }
  return tools;
}

}  // namespace vdm_host
