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

constexpr const wchar_t* kFeaturesData = L"Vantrel|Description: features data";
constexpr const wchar_t* kFeaturesReactor = L"Vantrel|Description: features reactor";
constexpr const wchar_t* kConstraintsData = L"Vantrel|Description: 3D constraints data";

// Rows of classes that are registered under their own names: those that can be made but are not
// filed, those that cannot be made, and those that are filed under a DXF name.
#define PLAIN(Class, parent)                                              \
  {                                                                       \
    [] { return Class::desc(); }, L"" #Class, L"" #parent, true, L"", L"" \
  }
#define ABSTRACT(Class, parent)                                            \
  {                                                                        \
    [] { return Class::desc(); }, L"" #Class, L"" #parent, false, L"", L"" \
  }
#define FILED(Class, parent, dxfName, application)                                        \
  {                                                                                       \
    [] { return Class::desc(); }, L"" #Class, L"" #parent, true, L"" dxfName, application \
  }

// In the order of registration.
const std::vector<ClassRow> kClassRows = {
    {[] { return VdmConstraint::desc(); }, L"VdmDbConstraint", L"OdRxObject", true, L"", L""},
    FILED(VdmDbConstraintManager, OdDbObject, "VDMDBCONSTRAINTMANAGER", kConstraintsData),
    ABSTRACT(VdmDbConstraintManagerPE, OdRxObject),
    FILED(VdmDbFeatureData, OdDbObject, "VDMDBFEATUREDATA", kFeaturesData),
    FILED(VdmDbFeatureManager, OdDbObject, "VDMDBFEATUREMANAGER", kFeaturesData),
    ABSTRACT(VdmDbFeatureManagerPE, OdRxObject),
    PLAIN(VdmDbFeatureManagerTransaction, OdRxObject),
    FILED(VdmDbObjectDependency, OdDbObject, "VDMDBOBJECTDEPENDENCY", kConstraintsData),
    FILED(VdmDbObject, OdDbObject, "VDMOBJECT",
          L"VdmModule|Description: Vantrel Driving Dimension"),
    ABSTRACT(VdmDbObjectPE, OdRxObject),
    FILED(VdmDbPersIdManager, OdDbObject, "VdmDbPersIdManager", L"Vantrel|Description: model data"),
    ABSTRACT(VdmDbPersIdManagerPE, OdRxObject),
    FILED(VdmDbSheetMetalContext, OdDbObject, "VDMDBSHEETMETALCONTEXT", kFeaturesData),
    ABSTRACT(VdmDbSheetMetalContextPE, OdRxObject),
    ABSTRACT(VdmDbSheetMetalContextMaterialPE, OdRxObject),
    PLAIN(VdmFeature, OdRxObject),
    ABSTRACT(VdmFeatureColorPE, OdRxObject),
    ABSTRACT(VdmFeaturePE, OdRxObject),
    ABSTRACT(VdmFeatureExternalPE, OdRxObject),
    PLAIN(VdmGroupFeature, VdmFeature),
    PLAIN(VdmDiffFeature, VdmGroupFeature),
    PLAIN(VdmSuppressFeature, VdmGroupFeature),
    FILED(VdmDbFeatureReactor, OdDbObject, "VDMDBFEATUREREACTOR", kFeaturesReactor),
    FILED(VdmDbPersIdReactor, VdmDbFeatureReactor, "VDMDBPERSIDREACTOR", kFeaturesReactor),
    FILED(VdmDbPropertyReactor, VdmDbFeatureReactor, "VDMDBPROPERTYREACTOR", kFeaturesReactor),
    FILED(VdmDbExpressionReactor, VdmDbFeatureReactor, "VDMDBEXPRESSIONREACTOR", kFeaturesReactor),
    ABSTRACT(VdmDbNamingPolicyPE, OdRxObject),
    {[] { return VdmDbVariableReactor::desc(); }, L"VdmVariableReactor", L"OdDbObject", true,
     L"VDMVARIABLEREACTOR", L"Vantrel|Description: 3D constraints data"},
    ABSTRACT(VdmPropertiesPE, OdRxObject),
    FILED(VdmDbExtensionData, OdDbObject, "VDMDBEXTENSIONDATA",
          L"Vantrel|Description: extension data"),
    PLAIN(VdmThreadFeature, VdmFeature),
    PLAIN(VdmTrackingFeature, VdmFeature),
    PLAIN(VdmDraftingGroupFeature, VdmFeature),
    ABSTRACT(VdmUpdateFeatureInterface, VdmFeaturePE),
    ABSTRACT(VdmDbAssemblyPE, OdRxObject),
    PLAIN(VdmAssocVariableExt, OdRxObject),
    ABSTRACT(VdmCVUnitInterface, OdRxObject),
    ABSTRACT(VdmDbISettings, OdRxObject),
    {[] { return vdmu::VdmRemappingOperationBracket::desc(); }, L"VdmRemappingOperationBracket",
     L"OdRxObject", false, L"", L""},
    FILED(VdmDbConfigurationTable, OdDbObject, "VDMDBCONFIGURATIONTABLE",
          L"Vantrel|Description: configurations data"),
    PLAIN(VdmConfigurationFeature, VdmFeature),
    FILED(VdmDbConfigVarReactor, VdmDbFeatureReactor, "VDMDBCONFIGVARREACTOR", kFeaturesReactor),
    {[] { return vdm_assoc::EntityAssocAttribute::desc(); }, L"EntityAssocAttribute", L"OdRxObject",
     true, L"", L""},
    ABSTRACT(VdmDbTrailingLinePE, OdRxObject),
    PLAIN(vdmu::AssocVariableCloningWatcher, OdDbDatabaseReactor),
};
#undef PLAIN
#undef ABSTRACT
#undef FILED

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
