// Tests of the module's file: entry points, class table, loading and unloading.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/rx/dynamic_linker.h"
#include "platform/rx/module.h"
#include "tests/support/runtime.h"
#include "tests/support/status_testing.h"
#include "vdm_db/vdm_db.h"

// A feature class of another module, which is still loaded.
class ForeignFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(ForeignFeature)
};
VDM_DEFINE_FEATURE_CLASS(ForeignFeature, VdmFeature, L"ForeignFeature")

namespace {

const OdString kModuleFile(VDM_MODULE_FILE);

// What the table says of a class: base, whether objects can be made, and for database classes the
// DXF name and the application description.
struct ClassRow {
  OdRxClass* (*desc)();
  const wchar_t* name;
  const wchar_t* base;
  bool isInstantiable;
  const wchar_t* dxfName;
  const wchar_t* application;
};

// In the order of registration.
const std::vector<ClassRow> kClassRows = {
    {[] { return VdmConstraint::desc(); }, L"VdmDbConstraint", L"OdRxObject", true, L"", L""},
    {[] { return VdmDbConstraintManager::desc(); }, L"VdmDbConstraintManager", L"OdDbObject", true,
     L"VDMDBCONSTRAINTMANAGER", L"Vantrel|Description: 3D constraints data"},
    {[] { return VdmDbConstraintManagerPE::desc(); }, L"VdmDbConstraintManagerPE", L"OdRxObject",
     false, L"", L""},
    {[] { return VdmDbFeatureData::desc(); }, L"VdmDbFeatureData", L"OdDbObject", true,
     L"VDMDBFEATUREDATA", L"Vantrel|Description: features data"},
    {[] { return VdmDbFeatureManager::desc(); }, L"VdmDbFeatureManager", L"OdDbObject", true,
     L"VDMDBFEATUREMANAGER", L"Vantrel|Description: features data"},
    {[] { return VdmDbFeatureManagerPE::desc(); }, L"VdmDbFeatureManagerPE", L"OdRxObject", false,
     L"", L""},
    {[] { return VdmDbFeatureManagerTransaction::desc(); }, L"VdmDbFeatureManagerTransaction",
     L"OdRxObject", true, L"", L""},
    {[] { return VdmDbObjectDependency::desc(); }, L"VdmDbObjectDependency", L"OdDbObject", true,
     L"VDMDBOBJECTDEPENDENCY", L"Vantrel|Description: 3D constraints data"},
    {[] { return VdmDbObject::desc(); }, L"VdmDbObject", L"OdDbObject", true, L"VDMOBJECT",
     L"VdmModule|Description: Vantrel Driving Dimension"},
    {[] { return VdmDbObjectPE::desc(); }, L"VdmDbObjectPE", L"OdRxObject", false, L"", L""},
    {[] { return VdmDbPersIdManager::desc(); }, L"VdmDbPersIdManager", L"OdDbObject", true,
     L"VdmDbPersIdManager", L"Vantrel|Description: model data"},
    {[] { return VdmDbPersIdManagerPE::desc(); }, L"VdmDbPersIdManagerPE", L"OdRxObject", false,
     L"", L""},
    {[] { return VdmDbSheetMetalContext::desc(); }, L"VdmDbSheetMetalContext", L"OdDbObject", true,
     L"VDMDBSHEETMETALCONTEXT", L"Vantrel|Description: features data"},
    {[] { return VdmDbSheetMetalContextPE::desc(); }, L"VdmDbSheetMetalContextPE", L"OdRxObject",
     false, L"", L""},
    {[] { return VdmDbSheetMetalContextMaterialPE::desc(); }, L"VdmDbSheetMetalContextMaterialPE",
     L"OdRxObject", false, L"", L""},
    {[] { return VdmFeature::desc(); }, L"VdmFeature", L"OdRxObject", true, L"", L""},
    {[] { return VdmFeatureColorPE::desc(); }, L"VdmFeatureColorPE", L"OdRxObject", false, L"",
     L""},
    {[] { return VdmFeaturePE::desc(); }, L"VdmFeaturePE", L"OdRxObject", false, L"", L""},
    {[] { return VdmFeatureExternalPE::desc(); }, L"VdmFeatureExternalPE", L"OdRxObject", false,
     L"", L""},
    {[] { return VdmGroupFeature::desc(); }, L"VdmGroupFeature", L"VdmFeature", true, L"", L""},
    {[] { return VdmDiffFeature::desc(); }, L"VdmDiffFeature", L"VdmGroupFeature", true, L"", L""},
    {[] { return VdmSuppressFeature::desc(); }, L"VdmSuppressFeature", L"VdmGroupFeature", true,
     L"", L""},
    {[] { return VdmDbFeatureReactor::desc(); }, L"VdmDbFeatureReactor", L"OdDbObject", true,
     L"VDMDBFEATUREREACTOR", L"Vantrel|Description: features reactor"},
    {[] { return VdmDbPersIdReactor::desc(); }, L"VdmDbPersIdReactor", L"VdmDbFeatureReactor", true,
     L"VDMDBPERSIDREACTOR", L"Vantrel|Description: features reactor"},
    {[] { return VdmDbPropertyReactor::desc(); }, L"VdmDbPropertyReactor", L"VdmDbFeatureReactor",
     true, L"VDMDBPROPERTYREACTOR", L"Vantrel|Description: features reactor"},
    {[] { return VdmDbExpressionReactor::desc(); }, L"VdmDbExpressionReactor",
     L"VdmDbFeatureReactor", true, L"VDMDBEXPRESSIONREACTOR",
     L"Vantrel|Description: features reactor"},
    {[] { return VdmDbNamingPolicyPE::desc(); }, L"VdmDbNamingPolicyPE", L"OdRxObject", false, L"",
     L""},
    {[] { return VdmDbVariableReactor::desc(); }, L"VdmVariableReactor", L"OdDbObject", true,
     L"VDMVARIABLEREACTOR", L"Vantrel|Description: 3D constraints data"},
    {[] { return VdmPropertiesPE::desc(); }, L"VdmPropertiesPE", L"OdRxObject", false, L"", L""},
    {[] { return VdmDbExtensionData::desc(); }, L"VdmDbExtensionData", L"OdDbObject", true,
     L"VDMDBEXTENSIONDATA", L"Vantrel|Description: extension data"},
    {[] { return VdmThreadFeature::desc(); }, L"VdmThreadFeature", L"VdmFeature", true, L"", L""},
    {[] { return VdmTrackingFeature::desc(); }, L"VdmTrackingFeature", L"VdmFeature", true, L"",
     L""},
    {[] { return VdmDraftingGroupFeature::desc(); }, L"VdmDraftingGroupFeature", L"VdmFeature",
     true, L"", L""},
    {[] { return VdmUpdateFeatureInterface::desc(); }, L"VdmUpdateFeatureInterface",
     L"VdmFeaturePE", false, L"", L""},
    {[] { return VdmDbAssemblyPE::desc(); }, L"VdmDbAssemblyPE", L"OdRxObject", false, L"", L""},
    {[] { return VdmAssocVariableExt::desc(); }, L"VdmAssocVariableExt", L"OdRxObject", true, L"",
     L""},
    {[] { return VdmCVUnitInterface::desc(); }, L"VdmCVUnitInterface", L"OdRxObject", false, L"",
     L""},
    {[] { return VdmDbISettings::desc(); }, L"VdmDbISettings", L"OdRxObject", false, L"", L""},
    {[] { return vdmu::VdmRemappingOperationBracket::desc(); }, L"VdmRemappingOperationBracket",
     L"OdRxObject", false, L"", L""},
    {[] { return VdmDbConfigurationTable::desc(); }, L"VdmDbConfigurationTable", L"OdDbObject",
     true, L"VDMDBCONFIGURATIONTABLE", L"Vantrel|Description: configurations data"},
    {[] { return VdmConfigurationFeature::desc(); }, L"VdmConfigurationFeature", L"VdmFeature",
     true, L"", L""},
    {[] { return VdmDbConfigVarReactor::desc(); }, L"VdmDbConfigVarReactor", L"VdmDbFeatureReactor",
     true, L"VDMDBCONFIGVARREACTOR", L"Vantrel|Description: features reactor"},
    {[] { return vdm_assoc::EntityAssocAttribute::desc(); }, L"EntityAssocAttribute", L"OdRxObject",
     true, L"", L""},
    {[] { return VdmDbTrailingLinePE::desc(); }, L"VdmDbTrailingLinePE", L"OdRxObject", false, L"",
     L""},
    {[] { return vdmu::AssocVariableCloningWatcher::desc(); }, L"vdmu::AssocVariableCloningWatcher",
     L"OdDbDatabaseReactor", true, L"", L""},
};

std::vector<OdRxClass*> registered() {
  std::vector<OdRxClass*> classes;
  for (const ClassRow& row : kClassRows) {
    if (OdRxClass* rxClass = row.desc()) classes.push_back(rxClass);
  }
  return classes;
}

class VdmDbModuleTest : public virtual Runtime, public testing::Test {};

TEST_F(VdmDbModuleTest, RegistersItsTableAsOftenAsItIsLoaded) {
  const std::size_t before = odrxClassDictionary()->numEntries();
  for (int round = 0; round < 2; ++round) {
    odrxDynamicLinker()->loadModule(kModuleFile);
    const std::vector<OdRxClass*> all = odrxClassDictionary()->classes();
    ASSERT_EQ(all.size(), before + kClassRows.size());
    for (std::size_t i = 0; i < kClassRows.size(); ++i) {
      const ClassRow& row = kClassRows[i];
      const OdRxClass* rxClass = row.desc();
      SCOPED_TRACE(OdString(row.name).utf8());
      ASSERT_EQ(all[before + i], rxClass);
      EXPECT_EQ(rxClass->name(), row.name);
      EXPECT_EQ(rxClass->myParent()->name(), row.base);
      EXPECT_EQ(!rxClass->isAbstract(), row.isInstantiable);
      EXPECT_EQ(rxClass->dxfName(), row.dxfName);
      EXPECT_EQ(rxClass->appName(), row.application);
      const bool isFiled = !rxClass->dxfName().isEmpty();
      EXPECT_EQ(rxClass->dwgVer(), isFiled ? 33 : 0);
      EXPECT_EQ(rxClass->maintVer(), isFiled ? 55 : 0);
      EXPECT_EQ(rxClass->proxyFlags(), isFiled ? 0x401u : 0u);
      if (row.isInstantiable) {
        EXPECT_EQ(rxClass->create()->isA(), rxClass);
      }
    }
    EXPECT_TRUE(odrxDynamicLinker()->unloadModule(kModuleFile));
    EXPECT_TRUE(registered().empty());
    EXPECT_EQ(odrxClassDictionary()->numEntries(), before);
  }
}

// The entry points, as a loader calls them.
TEST_F(VdmDbModuleTest, MakesOneObjectInTheProcess) {
  void* file = ::dlopen(VDM_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(file, nullptr) << ::dlerror();
  const auto create =
      reinterpret_cast<OdRxCreateModuleFunction>(::dlsym(file, kOdRxCreateModuleEntry));
  const auto version =
      reinterpret_cast<OdRxApiVersionFunction>(::dlsym(file, kOdRxApiVersionEntry));
  ASSERT_TRUE(create && version);
  OdUInt32 numbers[4] = {9, 9, 9, 9};
  EXPECT_EQ(version(numbers[0], numbers[1], numbers[2], numbers[3]), 0);
  EXPECT_EQ(std::vector<OdUInt32>(numbers, numbers + 4), (std::vector<OdUInt32>{20, 6, 0, 0}));

  OdRxModuleHandle handle = file;
  OdRxModule* module = create(handle);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(module->sysData(), file);
  OdRxModuleHandle second = &handle;
  EXPECT_EQ(create(second), module);
  EXPECT_EQ(second, &handle);

  module->initApp();
  EXPECT_EQ(raisedBy([&] { module->initApp(); }), eClassAlreadyRegistered);
  module->uninitApp();
  EXPECT_TRUE(registered().empty());
  EXPECT_EQ(raisedBy([&] { module->uninitApp(); }), eClassNotRegistered);

  // A class that is there already: nothing of the table stays behind.
  VdmDbExtensionData::rxInit();
  EXPECT_EQ(raisedBy([&] { module->initApp(); }), eClassAlreadyRegistered);
  EXPECT_EQ(registered().size(), 1u);
  VdmDbExtensionData::rxUninit();
  module->deleteModule();
  ::dlclose(file);
}

TEST_F(VdmDbModuleTest, IsReleasedWholeOrNotAtAll) {
  odrxDynamicLinker()->loadModule(kModuleFile);
  ForeignFeature::rxInit();
  EXPECT_EQ(raisedBy([] { odrxDynamicLinker()->unloadModule(kModuleFile); }), eModuleInUse);
  EXPECT_EQ(registered().size(), kClassRows.size());
  EXPECT_FALSE(ForeignFeature::createObject().isNull());
  ForeignFeature::rxUninit();
  EXPECT_TRUE(odrxDynamicLinker()->unloadModule(kModuleFile));
  EXPECT_TRUE(registered().empty());
}

}  // namespace
