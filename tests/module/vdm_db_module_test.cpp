// Tests of the module's file: entry points, class table, loading and unloading.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/base/error.h"
#include "platform/db/db_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/module.h"
#include "platform/rx/rx_init.h"
#include "vdm_db/vdm_db.h"

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
const std::vector<ClassRow>& classRows() {
  static const std::vector<ClassRow> rows = {
      {[] { return VdmPropertiesPE::desc(); }, L"VdmPropertiesPE", L"OdRxObject", false, L"", L""},
      {[] { return VdmDbExtensionData::desc(); }, L"VdmDbExtensionData", L"OdDbObject", true,
       L"VDMDBEXTENSIONDATA", L"Vantrel|Description: extension data"},
  };
  return rows;
}

std::vector<OdRxClass*> registered() {
  std::vector<OdRxClass*> classes;
  for (const ClassRow& row : classRows())
    if (OdRxClass* rxClass = row.desc()) classes.push_back(rxClass);
  return classes;
}

template <class Call>
OdResult raisedBy(Call call) {
  try {
    call();
    return eOk;
  } catch (const OdError& error) {
    return error.code();
  }
}

class VdmDbModuleTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    odrxInitialize();
    oddbInitialize();
  }
  static void TearDownTestSuite() {
    oddbUninitialize();
    odrxUninitialize();
  }
};

TEST_F(VdmDbModuleTest, RegistersItsTable) {
  ASSERT_TRUE(registered().empty());
  const std::size_t before = odrxClassDictionary()->numEntries();
  odrxDynamicLinker()->loadModule(kModuleFile);
  const std::vector<OdRxClass*> all = odrxClassDictionary()->classes();
  ASSERT_EQ(all.size(), before + classRows().size());
  for (std::size_t i = 0; i < classRows().size(); ++i) {
    const ClassRow& row = classRows()[i];
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

TEST_F(VdmDbModuleTest, LoadsAgainAfterUnloading) {
  for (int i = 0; i < 2; ++i) {
    OdRxModulePtr module = odrxDynamicLinker()->loadModule(kModuleFile);
    EXPECT_EQ(module->moduleName(), kModuleFile);
    EXPECT_EQ(registered().size(), classRows().size());
    odrxDynamicLinker()->loadModule(kModuleFile);
    EXPECT_TRUE(odrxDynamicLinker()->unloadModule(kModuleFile));
    EXPECT_EQ(raisedBy([] { odrxDynamicLinker()->unloadModule(kModuleFile); }), eModuleInUse);
    EXPECT_EQ(registered().size(), classRows().size());
    module.release();
    EXPECT_TRUE(odrxDynamicLinker()->unloadModule(kModuleFile));
    EXPECT_TRUE(registered().empty());
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
  EXPECT_EQ(module->numRefs(), 0);
  OdRxModuleHandle second = &handle;
  EXPECT_EQ(create(second), module);
  EXPECT_EQ(second, &handle);

  module->initApp();
  EXPECT_EQ(raisedBy([&] { module->initApp(); }), eClassAlreadyRegistered);
  EXPECT_EQ(registered().size(), classRows().size());
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

TEST(VdmConstants, StandFromLoading) {
  EXPECT_EQ(kVdmRegApp, OdString("VDM_DB"));
  EXPECT_EQ(kVdmVersion, OdString("_ver"));
  EXPECT_EQ(kVdmLayerTrailingLines, OdString("VC_TRAILING_LINES"));
}

}  // namespace
