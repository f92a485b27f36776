// A small module to load, in several behaviours that the build chooses.
#include <stdexcept>

#include "platform/rx/module.h"

namespace {

OdRxClass* g_class = nullptr;

class TestModule : public OdRxModule {
 public:
  void initApp() override {
    odrxRegister(g_class, {.name = L"ClassOfTheTestModule", .parent = OdRxObject::desc()});
#ifdef TEST_MODULE_THROWING
    throw std::runtime_error("refuses to start");
#endif
  }
  void uninitApp() override { odrxUnregister(g_class, L"ClassOfTheTestModule"); }
};

}  // namespace

#if defined(TEST_MODULE_GOOD) || defined(TEST_MODULE_THROWING)
ODRX_DEFINE_MODULE(TestModule)
#elif defined(TEST_MODULE_OTHER_VERSION)
extern "C" OD_API OdRxModule* odrxCreateModuleObject(OdRxModuleHandle& handle) {
  return OdRxWin32Module<TestModule, TestModule>::createModule(handle);
}
extern "C" OD_API OdInt32 odrxGetAPIVersion(OdUInt32& major, OdUInt32& minor, OdUInt32&,
                                            OdUInt32&) {
  major = 19;
  minor = 6;
  return 0;
}
#else
extern "C" OD_API OdRxModule* someOtherFunction(OdRxModuleHandle& handle) {
  return OdRxWin32Module<TestModule, TestModule>::createModule(handle);
}
#endif
