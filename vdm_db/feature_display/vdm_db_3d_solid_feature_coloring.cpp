// VdmDb3dSolidFeatureColoring: feature colours beyond drawing, and the blocks that show them.
#include "vdm_db/feature_display/vdm_db_3d_solid_feature_coloring.h"

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/feature_display/vdm_db_3d_solid_draw_overrule.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr int kAppNameCode = 1001;
constexpr int kValueCode = 1070;  // 16-bit integer
constexpr OdInt16 kOn = 1;        // being there is what counts

bool wouldDrawFeatureColors(const OdDbObjectId& id) {
  const OdDb3dSolidPtr solid = id.openAs<OdDb3dSolid>(OdDb::kForRead);
  return VdmDb3dSolidDrawOverrule::needDrawOverride(solid, kOdGiStandardDisplay);
}

bool hasMark(const OdDbBlockTableRecord& block) { return !block.xData(kVdmFeatureColors).isNull(); }

// The name of the application alone takes its data away.
OdResBufPtr markChain(bool on) {
  OdResBufPtr chain = OdResBuf::newRb(kAppNameCode, kVdmFeatureColors);
  if (on) chain->setNext(OdResBuf::newRb(kValueCode, kOn));
  return chain;
}

}  // namespace

VdmDb3dSolidFeatureColoring::Method VdmDb3dSolidFeatureColoring::m_methodOverwriteAttr = nullptr;
VdmDb3dSolidFeatureColoring::Method VdmDb3dSolidFeatureColoring::m_methodRecoverAttr = nullptr;

VdmDb3dSolidFeatureColoring::AutoApplyColor::AutoApplyColor(const OdDbObjectId& solid)
    : m_id(solid) {
  if (m_methodOverwriteAttr == nullptr || !wouldDrawFeatureColors(m_id)) return;
  m_methodOverwriteAttr(m_id);
  m_overwritten = true;
}

VdmDb3dSolidFeatureColoring::AutoApplyColor::~AutoApplyColor() {
  if (!m_overwritten || m_methodRecoverAttr == nullptr) return;
  try {
    m_methodRecoverAttr(m_id);
  } catch (const OdError& error) {
    vdmcCallAssert("methodRecoverAttr(id)", error.description(),
                   "vdm_db/vdm_db_3d_solid_feature_coloring", __LINE__);
  }
}

void VdmDb3dSolidFeatureColoring::setOverriddenAttr(const OdDbObjectId& solid) {
  if (m_methodOverwriteAttr != nullptr) m_methodOverwriteAttr(solid);
}

void VdmDb3dSolidFeatureColoring::restoreColorAndMaterialAttr(const OdDbObjectId& solid,
                                                              bool condition) {
  if (!condition || m_methodRecoverAttr == nullptr || !wouldDrawFeatureColors(solid)) return;
  m_methodRecoverAttr(solid);
}

void VdmDb3dSolidFeatureColoring::overrideColorForBlock(const OdDbObjectId& block, bool on) {
  const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>(OdDb::kForRead);
  if (record.isNull()) return;
  record->database()->newRegApp(kVdmFeatureColors);
  if (hasMark(*record) == on) return;
  record->upgradeOpen();
  record->setXData(markChain(on));
}

bool VdmDb3dSolidFeatureColoring::isOverridenColorForBlock(const OdDbObjectId& block) {
  const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>(OdDb::kForRead);
  return !record.isNull() && hasMark(*record);
}
