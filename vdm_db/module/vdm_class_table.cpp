// The table of the module's run-time classes.
#include "vdm_db/module/vdm_class_table.h"

#include <algorithm>
#include <iterator>

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "vdm_db/associations/vdm_entity_assoc_attribute.h"
#include "vdm_db/cloning/vdm_assoc_variable_cloning_watcher.h"
#include "vdm_db/cloning/vdm_remapping_operation_bracket.h"
#include "vdm_db/concrete_features/vdm_diff_feature.h"
#include "vdm_db/concrete_features/vdm_drafting_group_feature.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"
#include "vdm_db/concrete_features/vdm_suppress_roles.h"
#include "vdm_db/concrete_features/vdm_thread_feature.h"
#include "vdm_db/concrete_features/vdm_tracking_feature.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/configurations/vdm_configuration_roles.h"
#include "vdm_db/configurations/vdm_db_config_var_reactor.h"
#include "vdm_db/configurations/vdm_db_configuration_table.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/constraints/vdm_constraint_roles.h"
#include "vdm_db/constraints/vdm_db_assembly_pe.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_pe.h"
#include "vdm_db/constraints/vdm_db_variable_reactor.h"
#include "vdm_db/drafting/vdm_db_trailing_line_pe.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_feature_manager_transaction.h"
#include "vdm_db/features/vdm_db_naming_policy_pe.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_db_property_reactor.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_color_pe.h"
#include "vdm_db/features/vdm_feature_external_pe.h"
#include "vdm_db/features/vdm_feature_pe.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_object_pe.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_cv_unit_interface.h"
#include "vdm_db/parameters/vdm_variable_roles.h"
#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_properties_pe.h"
#include "vdm_db/sheet_metal/vdm_db_isettings.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_material_pe.h"
#include "vdm_db/update/vdm_db_feature_manager_pe.h"

namespace {

struct ClassRow {
  void (*init)();
  void (*uninit)();
  OdRxClass* (*desc)();
};

template <class T>
constexpr ClassRow rowOf() {
  return {static_cast<void (*)()>(&T::rxInit), &T::rxUninit, &T::desc};
}

// In the order of registration, which is fixed: each parent precedes its children.
constexpr ClassRow kClassRows[] = {
    rowOf<VdmConstraint>(),
    rowOf<VdmDbConstraintManager>(),
    rowOf<VdmDbConstraintManagerPE>(),
    rowOf<VdmDbFeatureData>(),
    rowOf<VdmDbFeatureManager>(),
    rowOf<VdmDbFeatureManagerPE>(),
    rowOf<VdmDbFeatureManagerTransaction>(),
    rowOf<VdmDbObjectDependency>(),
    rowOf<VdmDbObject>(),
    rowOf<VdmDbObjectPE>(),
    rowOf<VdmDbPersIdManager>(),
    rowOf<VdmDbPersIdManagerPE>(),
    rowOf<VdmDbSheetMetalContext>(),
    rowOf<VdmDbSheetMetalContextPE>(),
    rowOf<VdmDbSheetMetalContextMaterialPE>(),
    rowOf<VdmFeature>(),
    rowOf<VdmFeatureColorPE>(),
    rowOf<VdmFeaturePE>(),
    rowOf<VdmFeatureExternalPE>(),
    rowOf<VdmGroupFeature>(),
    rowOf<VdmDiffFeature>(),
    rowOf<VdmSuppressFeature>(),
    rowOf<VdmDbFeatureReactor>(),
    rowOf<VdmDbPersIdReactor>(),
    rowOf<VdmDbPropertyReactor>(),
    rowOf<VdmDbExpressionReactor>(),
    rowOf<VdmDbNamingPolicyPE>(),
    rowOf<VdmDbVariableReactor>(),
    rowOf<VdmPropertiesPE>(),
    rowOf<VdmDbExtensionData>(),
    rowOf<VdmThreadFeature>(),
    rowOf<VdmTrackingFeature>(),
    rowOf<VdmDraftingGroupFeature>(),
    rowOf<VdmUpdateFeatureInterface>(),
    rowOf<VdmDbAssemblyPE>(),
    rowOf<VdmAssocVariableExt>(),
    rowOf<VdmCVUnitInterface>(),
    rowOf<VdmDbISettings>(),
    rowOf<vdmu::VdmRemappingOperationBracket>(),
    rowOf<VdmDbConfigurationTable>(),
    rowOf<VdmConfigurationFeature>(),
    rowOf<VdmDbConfigVarReactor>(),
    rowOf<vdm_assoc::EntityAssocAttribute>(),
    rowOf<VdmDbTrailingLinePE>(),
    rowOf<vdmu::AssocVariableCloningWatcher>(),
};

bool isOfTable(const OdRxClass* rxClass) {
  return std::any_of(std::begin(kClassRows), std::end(kClassRows),
                     [rxClass](const ClassRow& row) { return row.desc() == rxClass; });
}

// Releases what was registered unless all of it was.
class RegistrationGuard : OdNonCopyable {
 public:
  explicit RegistrationGuard(const ClassRow* registered) : m_next(registered) {}
  ~RegistrationGuard() {
    if (m_next == std::end(kClassRows)) return;
    while (m_next != std::begin(kClassRows)) (--m_next)->uninit();
  }

  void registerNext() {
    m_next->init();
    ++m_next;
  }
  [[nodiscard]] bool isDone() const { return m_next == std::end(kClassRows); }

 private:
  const ClassRow* m_next;
};

}  // namespace

// What the rooms above answer about variables.
static void installVariableRoles() {
  VdmVariableRoles roles;
  vdmAddConstraintRoles(roles);
  vdmAddSuppressRoles(roles);
  roles.isSheetMetalThickness = &VdmDbSheetMetalContext::isThicknessVariable;
  vdmAddConfigurationRoles(roles);
  VdmVariableRoles::install(roles);
}

void vdmRegisterClasses() {
  RegistrationGuard guard(std::begin(kClassRows));
  while (!guard.isDone()) guard.registerNext();
  VdmModelObjectRegistry::installFinder(&VdmDbConstraintManager::getInstance);
  installVariableRoles();
}

void vdmRequireReleasable() {
  for (const OdRxClass* rxClass : odrxClassDictionary()->classes()) {
    const OdRxClass* parent = rxClass->myParent();
    if (parent == nullptr || !isOfTable(parent) || isOfTable(rxClass)) continue;
    throw OdError(eModuleInUse, "class " + parent->name() + ", from which class " +
                                    rxClass->name() + " of another module derives");
  }
}

void vdmReleaseClasses() {
  VdmVariableRoles::install({});
  VdmModelObjectRegistry::installFinder(nullptr);
  std::for_each(std::rbegin(kClassRows), std::rend(kClassRows),
                [](const ClassRow& row) { row.uninit(); });
}
