// Associative actions of blocks: listing and cloning.
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"

#include <utility>
#include <vector>

#include "platform/assoc/assoc_network.h"
#include "platform/db/database.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"

namespace vdmu {

OdDbObjectIdArray getAssocActions(const OdDbObjectId& block) {
  const OdDbAssocNetworkPtr network =
      OdDbAssocNetwork::getInstanceFromObject(block, /*createIfDoesNotExist=*/false)
          .openAs<OdDbAssocNetwork>();
  return network.isNull() ? OdDbObjectIdArray() : network->getActions();
}

OdResult cloneAssocActions(OdDbDatabase* database, const OdDbObjectIdArray& ids,
                           const OdDbObjectId& block, OdDbIdMapping& mapping, bool deferXlation) {
  OdDbDatabase* destination = block.database();
  if (database == nullptr || destination == nullptr) return eOk;
  if (ids.isEmpty() && deferXlation) return eOk;
  const OdDbObjectId network =
      ids.isEmpty() ? block
                    : OdDbAssocNetwork::getInstanceFromObject(block, /*createIfDoesNotExist=*/true);
  if (destination == database) {
    return database->deepCloneObjects(ids, network, mapping, deferXlation);
  }
  return database->wblockCloneObjects(ids, network, mapping, OdDb::kDrcIgnore, deferXlation);
}

OdResult cloneAssocActionsInsideCloning(const OdDbObjectIdArray& ids, const OdDbObjectId& block,
                                        OdDbIdMapping& mapping) {
  if (ids.isEmpty()) return eOk;
  return cloneAssocActions(ids.first().database(), ids, block, mapping, /*deferXlation=*/true);
}

OdResult cloneAssocActionsInsideCloning(const OdDbObjectIdArray& ids, OdDbIdMapping& mapping) {
  std::vector<std::pair<OdDbObjectId, OdDbObjectIdArray>> byBlock;  // few blocks, in their order
  for (const OdDbObjectId& id : ids) {
    const OdDbObjectId block = getOwningBlock(id);
    if (byBlock.empty() || byBlock.back().first != block) byBlock.push_back({block, {}});
    byBlock.back().second.append(id);
  }
  for (const auto& [block, actions] : byBlock) {
    const OdResult result =
        cloneAssocActionsInsideCloning(actions, findClone(mapping, block), mapping);
    if (result != eOk) return result;
  }
  return eOk;
}

}  // namespace vdmu
