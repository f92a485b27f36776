// State of feature managers.
#include "vdm_db/features/vdm_db_feature_manager_impl.h"

namespace {

constexpr const wchar_t* kFeatures = L"Features";
constexpr const wchar_t* kSheetMetalContext = L"SheetMetalContext";
constexpr const wchar_t* kColorPolicy = L"ColorPolicy";

}  // namespace

VdmDbFeatureManagerImpl::VdmDbFeatureManagerImpl() {
  m_properties.setConfig(VdmProperties::kDropErasedIds);
  m_properties.setVersion(1);
  m_properties.mapProperty(kFeatures, &features.array(), OdDb::kHardOwnershipRef);
  m_properties.mapProperty(kSheetMetalContext, &sheetMetalContext, OdDb::kHardOwnershipRef);
  m_properties.mapProperty(kColorPolicy, &colorPolicy, OdDb::kHardOwnershipRef);
}
