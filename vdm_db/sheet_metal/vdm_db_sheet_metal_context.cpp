// The sheet-metal settings of a block: place, options, bend tables, filing.
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context.h"

#include <algorithm>

#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/properties/vdm_bag_filing.h"
#include "vdm_db/sheet_metal/vdm_db_isettings.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_impl.h"
#include "vdm_utils/vdmc_assert.h"

VDM_DEFINE_DB_CLASS(VdmDbSheetMetalContext, OdDbObject, L"VdmDbSheetMetalContext",
                    L"VDMDBSHEETMETALCONTEXT", L"features data")

namespace {

constexpr const char* kSource = "vdm_db/vdm_db_sheet_metal_context_impl";

}  // namespace

// ---- State

VdmDbSheetMetalContext::VdmDbSheetMetalContext()
    : m_impl(std::make_unique<VdmDbSheetMetalContextImpl>()) {}
VdmDbSheetMetalContext::~VdmDbSheetMetalContext() = default;

const VdmDbSheetMetalContextImpl& VdmDbSheetMetalContext::implForRead() const {
  assertReadEnabled();
  return *m_impl;
}

const VdmProperties& VdmDbSheetMetalContext::sheetMetalProperties() const {
  return implForRead().properties();
}

// ---- Place

OdDbObjectId VdmDbSheetMetalContext::getInstance(OdDbObjectId block, bool create) {
  const VdmDbFeatureManagerPtr manager =
      VdmDbFeatureManager::getInstance(block, create).openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return OdDbObjectId::kNull;
  const OdDbObjectId present = manager->sheetMetalContext();
  if (!present.openAs<VdmDbSheetMetalContext>().isNull()) return present;
  if (!create) return OdDbObjectId::kNull;
  const VdmOpenUpgrade upgrade(manager);
  const OdDbObjectId context =
      manager->database()->addOdDbObject(createObject(), manager->objectId());
  manager->setSheetMetalContext(context);
  return context;
}

VdmDbSheetMetalContextPtr VdmDbSheetMetalContext::openInstance(const VdmFeature* feature) {
  const OdDbObject* carrier = feature == nullptr ? nullptr : feature->getDbObject();
  if (carrier == nullptr) return {};
  const auto manager = carrier->ownerId().openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return {};
  return manager->sheetMetalContext().openAs<VdmDbSheetMetalContext>();
}

OdDbObjectId VdmDbSheetMetalContext::featureManager() const { return ownerId(); }

// ---- Options

#define VDM_OPTION_READ_WRITE(Name, member)                                                       \
  const VdmSheetMetalContext##Name##Option& VdmDbSheetMetalContext::optionForRead##Name() const { \
    return implForRead().member;                                                                  \
  }
#define VDM_OPTION_WRITE_ONLY(Name, member)
#define VDM_SHEET_METAL_OPTION(Name, member, access)                                       \
  VDM_OPTION_##access(Name, member)                                                        \
      VdmSheetMetalContext##Name##Option& VdmDbSheetMetalContext::optionForWrite##Name() { \
    return implForWrite().member;                                                          \
  }
#include "vdm_db/sheet_metal/vdm_sheet_metal_option_rows.inc"
#undef VDM_SHEET_METAL_OPTION
#undef VDM_OPTION_WRITE_ONLY
#undef VDM_OPTION_READ_WRITE

void VdmDbSheetMetalContext::initDefaultParameters(OdDbDatabase* database) {
  const VdmDbISettingsPtr settings = VdmDbISettings::cast(database);
  for (VdmISheetMetalContextOption* option : implForWrite().options) {
    option->setDefaultValue(settings.get());
  }
}

void VdmDbSheetMetalContext::copyParameters(const VdmDbSheetMetalContextPtr& other) {
  if (other.isNull()) return;
  const auto& theirs = other->implForRead().options;
  const auto& ours = implForWrite().options;
  if (!vdmAssert(theirs.size() == ours.size(), "false", OdString::kEmpty, kSource, 158)) return;
  for (std::size_t i = 0; i < ours.size(); ++i) {
    const OdResult res = ours[i]->copyFrom(theirs[i]);
    VDM_ASSERT_AT(eOk == res, kSource, 163);
  }
}

// ---- Bend tables

OdResult VdmDbSheetMetalContext::loadBendTable(OdArray<OdString>& cells) {
  const OdDbDatabase* drawing = database();
  if (drawing == nullptr) return kVdmNoSource;
  const OdString name = implForRead().unfolding.bendTableRelativePath();
  const OdString path =
      name.isEmpty() ? OdString() : drawing->appServices()->findFile(name, drawing);
  const auto extension = VdmDbSheetMetalContextPE::cast(this);
  if (extension.isNull()) return kVdmNoSource;
  const OdResult result = extension->loadBendTable(this, path);
  extension->getBendTable(cells);
  return result;
}

OdResult VdmDbSheetMetalContext::getAvailableDieWidths(OdArray<double>& widths) {
  assertReadEnabled();
  widths.clear();
  const auto extension = VdmDbSheetMetalContextPE::cast(this);
  if (extension.isNull() || !extension->hasBendTable(this)) return kVdmNoSource;
  const OdResult result = extension->getDieWidths(this, widths);
  if (result == eOk) std::sort(widths.begin(), widths.end());
  return result;
}

// ---- Filing: the base's part, then the bag

VDM_DEFINE_BAG_DWG_FILING(VdmDbSheetMetalContext, *m_impl)
