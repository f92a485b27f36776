// ComponentTools: the tools of component blocks, read once in a pass.
//
// A component is done anew when its tools are not those that were applied. To see that without
// keeping the old bodies, the bodies' fingerprints are folded into one stamp of 64 bits, in the
// order of the block, cuts before fills, with the number of cuts in between: the same body in
// another place or in the other role gives another stamp. Two different sets of tools have the same
// stamp with a probability of about 2^-64.
#include "host/modeling/component_tools.h"

#include "host/modeling/component_sizes.h"
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

/// Null when there are several or none.
OdModelerBodyPtr onlyTool(const BlockTools& tools) {
  const std::size_t total = tools.bodies[0].size() + tools.bodies[1].size();
  if (total != 1) return nullptr;
  return tools.bodies[0].empty() ? tools.bodies[1].front() : tools.bodies[0].front();
}

void require(const OdStatus& status) {
  if (!status.ok()) throw OdError(status.code, status.text);
}

/// The same tool with other sizes, which its stamp tells from the shared one.
BlockTools withOwnSizes(const BlockTools& shared, const ComponentSizes& sizes,
                        const OdDbDatabase* database) {
  BlockTools own = shared;
  require(withSizes(*shared.form, sizes, *own.form));
  OdModelerBodyPtr body;
  require(makeTool(*own.form, {storedDepth(database, *own.form), own.form->clearance()}, body));
  for (auto& bodies : own.bodies) {
    if (!bodies.empty()) bodies.front() = body;
  }
  own.stamp = mixed(shared.stamp, body->fingerprint());
  return own;
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
  if (!record.isNull() && bag.readFromDbObject(record.get())) {
    if (const OdModelerBodyPtr only = onlyTool(tools)) tools.form = readToolForm(bag, *only);
  }
  return tools;
}

const BlockTools& ComponentTools::of(const OdDbObjectId& block,
                                     const VdmComponentFeature& component) {
  const BlockTools& shared = of(block);
  const ComponentSizes sizes = component.sizes();
  if (sizes.empty() || !shared.form) return shared;
  const auto known = m_ownTools.find(component.objectId());
  if (known != m_ownTools.end()) return known->second;
  BlockTools own = withOwnSizes(shared, sizes, block.database());
  return m_ownTools.emplace(component.objectId(), std::move(own)).first->second;
}

}  // namespace vdm_host
