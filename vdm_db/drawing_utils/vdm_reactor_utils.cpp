// Persistent reactors of objects.
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"

#include <algorithm>

#include "platform/db/db_object.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace {

// The class first: most reactors need not be loaded.
bool opensAs(const OdDbObjectId& id, const OdRxClass* cls) {
  return vdmu::isIdOf(id, cls) && !id.openObject().isNull();
}

void removeReactor(const OdDbObjectId& id, const OdDbObjectId& reactor) {
  const OdDbObjectPtr object = id.openObject();
  if (!object.isNull()) vdmu::detachReactor(*object, reactor);
}

}  // namespace

namespace vdmu {

bool hasReactorOfKind(const OdDbObject* object, const OdRxClass* cls) {
  if (object == nullptr || cls == nullptr) return false;
  const OdDbObjectIdArray reactors = object->getPersistentReactors();
  return std::any_of(reactors.begin(), reactors.end(),
                     [cls](const OdDbObjectId& id) { return opensAs(id, cls); });
}

bool hasReactor(OdDbObjectId id, std::initializer_list<OdRxClass*> classes) {
  const OdDbObjectPtr object = id.openObject();
  return std::any_of(classes.begin(), classes.end(),
                     [&object](const OdRxClass* cls) { return hasReactorOfKind(object, cls); });
}

void detachReactor(const OdDbObject& object, OdDbObjectId reactor) {
  if (!object.hasPersistentReactor(reactor)) return;
  const VdmOpenUpgrade upgrade(&object);
  const_cast<OdDbObject&>(object).removePersistentReactor(reactor);
}

void detachReactor(const OdArray<OdDbObjectId>& objects, OdDbObjectId reactor,
                   OdDbIdMapping* mapping) {
  const OdDbObjectId clonedReactor =
      mapping == nullptr ? OdDbObjectId::kNull : findClone(*mapping, reactor);
  for (const OdDbObjectId& id : objects) {
    removeReactor(id, reactor);
    if (clonedReactor.isNull()) continue;
    const OdDbObjectId clone = findClone(*mapping, id);
    removeReactor(clone, reactor);
    removeReactor(clone, clonedReactor);
  }
}

}  // namespace vdmu
