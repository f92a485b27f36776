// Tests of loading and unloading modules.
#include "platform/rx/module.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/rx/dynamic_linker.h"
#include "tests/platform/rx/rx_test_classes.h"

namespace {

const OdString kFolder(TEST_MODULES_DIR);
const OdString kClassName(L"ClassOfTheTestModule");

OdString pathOf(const char* name) { return kFolder + L"/" + name + L".tx"; }

bool isInMemory(const OdString& path) {
  void* handle = ::dlopen(static_cast<const char*>(path), RTLD_NOW | RTLD_NOLOAD);
  if (handle) ::dlclose(handle);
  return handle != nullptr;
}

// A loader of its own for each test, so that no search path is left over.
class OdRxDynamicLinkerTest : public RxTest {
 protected:
  OdString failure(const OdString& module) {
    try {
      m_linker.loadModule(module);
      return L"loaded";
    } catch (const OdError& error) {
      return error.description();
    }
  }
  OdRxDynamicLinker m_linker;
};

}  // namespace

TEST_F(OdRxDynamicLinkerTest, CountsLoadsAndLeavesNothingBehind) {
  const OdString path = pathOf("rx_test_module");
  {
    const OdRxModulePtr module = m_linker.loadModule(path);
    EXPECT_EQ(m_linker.loadModule(path), module);
    EXPECT_TRUE(m_linker.unloadModule(path));
    EXPECT_EQ(raisedBy([&] { m_linker.unloadModule(path); }), eModuleInUse);
    EXPECT_TRUE(odrxClassDictionary()->has(kClassName));
  }
  EXPECT_TRUE(m_linker.unloadModule(L"rx_test_module.tx"));
  EXPECT_FALSE(odrxClassDictionary()->has(kClassName));
  EXPECT_FALSE(isInMemory(path));
  EXPECT_FALSE(m_linker.unloadModule(path));
}

TEST_F(OdRxDynamicLinkerTest, FindsBareNamesOnlyInNamedFolders) {
  EXPECT_GE(failure(L"rx_test_module").find(L"rx_test_module"), 0);
  m_linker.addSearchPath(L"/nowhere");
  m_linker.addSearchPath(kFolder);
  EXPECT_EQ(m_linker.loadModule(L"rx_test_module")->moduleName(), pathOf("rx_test_module"));
  m_linker.unloadAllModules();
  EXPECT_EQ(raisedBy([&] { m_linker.addSearchPath(L"modules"); }), eInvalidInput);
}

TEST_F(OdRxDynamicLinkerTest, RefusesRelativePathsMissingFilesAndOtherFiles) {
  m_linker.addSearchPath(kFolder);
  for (const wchar_t* relative : {L"./rx_test_module.tx", L"modules/rx_test_module.tx", L""}) {
    EXPECT_EQ(raisedBy([&] { m_linker.loadModule(relative); }), eInvalidInput);
  }
  EXPECT_EQ(raisedBy([&] { m_linker.loadModule(L"/nowhere/rx_test_module.tx"); }), eFileNotFound);
  EXPECT_TRUE(m_linker.loadModule(L"/nowhere/rx_test_module.tx", /*silent=*/true).isNull());
  EXPECT_GE(failure(pathOf("rx_other_version_module")).find(L"19.6, the runtime is 20.6"), 0);
  EXPECT_GE(failure(pathOf("rx_entryless_module")).find(L"odrxGetAPIVersion"), 0);
  EXPECT_EQ(raisedBy([&] { m_linker.loadModule(L"/etc/passwd"); }), eModuleNotLoaded);
}

TEST_F(OdRxDynamicLinkerTest, RefusesFilesThatOthersMayWrite) {
  namespace fs = std::filesystem;
  using fs::perms;
  const fs::path folder = fs::absolute("shared_modules");
  const fs::path file = folder / "copy.tx";
  const fs::path link = fs::absolute("link.tx");
  fs::remove_all(folder);
  fs::remove(link);
  fs::create_directory(folder);
  fs::copy_file(std::string(pathOf("rx_test_module").utf8()), file);
  fs::create_symlink(file, link);
  constexpr perms kPrivate = perms(0755);
  const std::pair<perms, perms> kShared[] = {{perms(0775), kPrivate},
                                             {perms(0757), kPrivate},
                                             {perms(01777), kPrivate},
                                             {kPrivate, perms(0664)},
                                             {kPrivate, perms(0646)}};
  for (const auto& [folderMode, fileMode] : kShared) {
    fs::permissions(folder, folderMode);
    fs::permissions(file, fileMode);
    for (const fs::path& path : {file, link}) {
      const OdString text = failure(OdString(path.native()));
      EXPECT_GE(text.find(L"others may write"), 0) << text;
      EXPECT_GE(text.find(L"copy.tx"), 0) << text;
    }
  }
  fs::permissions(folder, kPrivate);
  fs::permissions(file, perms(0644));
  EXPECT_FALSE(m_linker.loadModule(OdString(link.native())).isNull());
  m_linker.unloadAllModules();
  fs::remove_all(folder);
  fs::remove(link);
}

TEST_F(OdRxDynamicLinkerTest, UndoesALoadWhoseStartFails) {
  const OdString path = pathOf("rx_throwing_module");
  for (int attempt = 0; attempt < 2; ++attempt) {
    const OdString text = failure(path);
    EXPECT_GE(text.find(L"refuses to start"), 0) << text;
    EXPECT_GE(text.find(L"rx_throwing_module"), 0) << text;
    EXPECT_FALSE(odrxClassDictionary()->has(kClassName));
    EXPECT_FALSE(isInMemory(path));
  }
}
