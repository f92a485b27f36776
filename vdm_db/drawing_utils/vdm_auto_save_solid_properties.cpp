// AutoSaveSolidProperties: keeps how an entity looks while it is worked on.
#include "vdm_db/drawing_utils/vdm_auto_save_solid_properties.h"

#include <utility>

#include "platform/base/error.h"
#include "vdm_utils/vdmc_assert.h"

namespace vdmu {

AutoSaveSolidProperties::AutoSaveSolidProperties(OdSmartPtr<OdDbEntity> entity)
    : m_entity(std::move(entity)) {
  if (m_entity.isNull()) return;
  m_memo = odrxMake<OdDbEntity>();
  m_memo->setPropertiesFrom(m_entity);
}

AutoSaveSolidProperties::~AutoSaveSolidProperties() {
  if (m_entity.isNull()) return;
  try {
    m_entity->setPropertiesFrom(m_memo);
  } catch (const OdError& error) {
    vdmcCallAssert("pEntity->setPropertiesFrom(pMemo)", error.description(),
                   "vdm_db/vdm_auto_save_solid_properties", __LINE__);
  }
}

}  // namespace vdmu
