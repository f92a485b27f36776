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
const std::vector<ClassRow> kClassRows = {
    {[] { return VdmPropertiesPE::desc(); }, L"VdmPropertiesPE", L"OdRxObject", false, L"", L""},
    {[] { return VdmDbExtensionData::desc(); }, L"VdmDbExtensionData", L"OdDbObject", true,
     L"VDMDBEXTENSIONDATA", L"Vantrel|Description: extension data"},
};

std::vector<OdRxClass*> registered() {
  std::vector<OdRxClass*> classes;
  for (const ClassRow& row : kClassRows)
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

}  // namespace
