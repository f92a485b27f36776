// A model with an object of each kind that the module and the networks file.
#include "fuzz/model_drawing.h"

#include "fuzz/fuzz_target.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/line.h"
#include "vdm_db/concrete_features/vdm_diff_feature.h"
#include "vdm_db/concrete_features/vdm_drafting_group_feature.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"
#include "vdm_db/concrete_features/vdm_thread_feature.h"
#include "vdm_db/concrete_features/vdm_tracking_feature.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_property_reactor.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context.h"
#include "vdm_utils/vdmu_reporter.h"

namespace {

OdDbObjectId addLine(OdDbObjectId block) {
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setEndPoint(OdGePoint3d(1, 2, 3));
  return block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)->appendOdDbEntity(line);
}

OdDbAssocVariablePtr addVariable(OdDbObjectId block, const wchar_t* name, const wchar_t* text) {
  return vdmu::getAssocVariable(block, name, /*create=*/true, text)
      .safeOpenAs<OdDbAssocVariable>(OdDb::kForWrite);
}

void addConstraint(OdDbObjectId block, OdLong type, OdDbObjectId a, OdDbObjectId b) {
  VdmExtendedPathArray arguments;
  for (const OdDbObjectId& id : {a, b}) {
    VdmExtendedPath argument;
    argument.path = OdDbFullSubentPath(id, OdDbSubentId());
    arguments.append(argument);
  }
  VdmConstraintManagerServices services;
  VdmDbConstraintManager::getInstance(block, /*create=*/true)
      .safeOpenAs<VdmDbConstraintManager>(OdDb::kForWrite)
      ->addConstraint(type, arguments, services, L"D_1", /*flag=*/false);
}

void addVariables(OdDbObjectId block) {
  addVariable(block, L"width", L"10");
  const auto exposed =
      VdmAssocVariableExt::cast(addVariable(block, L"height", L"2 * width + width ^ 0"));
  exposed->setExposed(true);
  exposed->setRangeForAnimation(1.0, 5.0);
  addVariable(block, L"count", L"")->setValue(OdDbEvalVariant::init(OdInt32{7}));
  addVariable(block, L"label", L"")->setValue(OdDbEvalVariant::init(L"M6"));
}

void addFeatures(OdDbObjectId block) {
  const auto manager = VdmDbFeatureManager::getInstance(block, /*create=*/true)
                           .safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite);
  for (OdRxClass* kind :
       {VdmGroupFeature::desc(), VdmDiffFeature::desc(), VdmSuppressFeature::desc(),
        VdmThreadFeature::desc(), VdmTrackingFeature::desc(), VdmDraftingGroupFeature::desc()}) {
    const auto feature =
        manager->createFeatureData(kind, L"F", false, false).openAs<VdmFeature>(OdDb::kForWrite);
    fuzzRequire(!feature.isNull(), "a feature cannot be made");
    (void)feature->addReactor(VdmDbPropertyReactor::desc(), -1);
    const auto reactor = feature->addReactor(VdmDbExpressionReactor::desc(), -1)
                             .safeOpenAs<VdmDbExpressionReactor>(OdDb::kForWrite);
    reactor->setPropertyName(L"ThreadDepth");
    (void)reactor->setExpression(L"width + 1", /*reacts=*/true);
  }
}

void addConfigurations(OdDbObjectId block) {
  const auto feature = VdmDbFeatureManager::getInstance(block, /*create=*/true)
                           .safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
                           ->createFeatureData(VdmConfigurationFeature::desc(), L"V", false, false)
                           .openAs<VdmConfigurationFeature>(OdDb::kForWrite);
  VdmStringArray sheet;
  for (const wchar_t* cell :
       {L"Name", L"width", L"Material", L"A", L"10", L"Steel", L"B", L"20", L"Iron"}) {
    sheet.append(cell);
  }
  VdmuMessageCollector messages;
  fuzzRequire(feature->setConfigurationTable(block, sheet, 3, 3, messages,
                                             /*createVariables=*/true, /*promote=*/false) == eOk,
              "a table cannot be loaded");
}

}  // namespace

void fuzzAddModel(OdDbDatabase* drawing) {
  const OdDbObjectId block = drawing->getModelSpaceId();
  const OdDbObjectId a = addLine(block);
  const OdDbObjectId b = addLine(block);
  for (const OdLong type : {1, 15, 16}) addConstraint(block, type, a, b);
  addVariables(block);
  addFeatures(block);
  addConfigurations(block);
  const auto context = VdmDbSheetMetalContext::getInstance(block, /*create=*/true)
                           .safeOpenAs<VdmDbSheetMetalContext>(OdDb::kForWrite);
  context->optionForWriteTab().setSlotNumber(8);
  (void)VdmDbPersIdManager::getInstance(block, /*create=*/true);
}
