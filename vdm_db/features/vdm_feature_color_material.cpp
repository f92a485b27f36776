// The material that faces with a feature colour are drawn with.
#include "vdm_db/features/vdm_feature_color_material.h"

#include <mutex>
#include <string>

#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/material.h"
#include "platform/db/xrecord.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace {

constexpr wchar_t kAnonymous = L'*';

// Guards the search for the material together with its making. A reactor that hears of the new
// material may ask for it in turn.
std::recursive_mutex g_materialSection;

OdDbDictionaryPtr openMaterials(OdDbDatabase* database, bool create) {
  const OdDbObjectId id = database->getMaterialDictionaryId(create);
  return id.openAs<OdDbDictionary>(OdDb::kForRead);
}

bool isFeatureColorMaterial(const OdDbObjectId& id) {
  const OdDbMaterialPtr material = id.openAs<OdDbMaterial>(OdDb::kForRead);
  if (material.isNull()) return false;
  const OdDbDictionaryPtr extension =
      material->extensionDictionary().openAs<OdDbDictionary>(OdDb::kForRead);
  return !extension.isNull() && extension->has(kVdmFeatureColorMaterial);
}

OdDbObjectId findIn(const OdDbDictionary& materials) {
  for (const OdDbDictionaryIteratorPtr at = materials.newIterator(); !at->done(); at->next()) {
    const OdString name = at->name();
    if (!name.isEmpty() && name.getAt(0) == kAnonymous && isFeatureColorMaterial(at->objectId())) {
      return at->objectId();
    }
  }
  return {};
}

OdString freeAnonymousName(const OdDbDictionary& materials) {
  for (OdUInt32 number = 1;; ++number) {
    const OdString name = L"*M" + OdString(std::to_string(number));
    if (!materials.has(name)) return name;
  }
}

void createXrecord(OdDbMaterial& material, const OdString& key) {
  const OdDbDictionaryPtr extension =
      material.createExtensionDictionary().safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
  extension->setAt(key, OdDbXrecord::createObject());
}

OdDbObjectId addTo(OdDbDictionary& materials, const OdString& name, OdDbMaterial* material) {
  const VdmOpenUpgrade upgrade(&materials);
  return materials.setAt(name, material);
}

OdDbObjectId createIn(OdDbDictionary& materials) {
  const OdString name = freeAnonymousName(materials);
  const OdDbMaterialPtr material = OdDbMaterial::cast(OdDbMaterial::desc()->create());
  material->setName(name);
  const OdDbObjectId id = addTo(materials, name, material);
  createXrecord(*material, kVdmFeatureColorMaterial);
  return id;
}

}  // namespace

namespace vdmu {

OdDbObjectId createFeatureColorMaterial(OdDbDatabase* database) {
  if (database == nullptr) return {};
  const std::lock_guard section(g_materialSection);
  const OdDbDictionaryPtr materials = openMaterials(database, /*create=*/true);
  if (materials.isNull()) return {};
  const OdDbObjectId found = findIn(*materials);
  return found.isNull() ? createIn(*materials) : found;
}

OdDbObjectId findFeatureColorMaterial(OdDbDatabase* database) {
  if (database == nullptr) return {};
  const OdDbDictionaryPtr materials = openMaterials(database, /*create=*/false);
  return materials.isNull() ? OdDbObjectId() : findIn(*materials);
}

}  // namespace vdmu
