// Loadable modules: the interface, its concrete form, and the entry points of a module file.
#pragma once

#include <atomic>
#include <memory>
#include <new>

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/rx/alloc.h"
#include "platform/rx/rx_macros.h"

/// What the platform's loader gave for a module file; null for a module within the program.
using OdRxModuleHandle = void*;

/// The object behind a module file. The file registers in initApp and releases in uninitApp.
class OD_API OdRxModule : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(OdRxModule)

  virtual OdRxModuleHandle sysData() = 0;
  /// Destroys the object, whatever references there are.
  virtual void deleteModule() = 0;
  virtual void initApp() = 0;
  virtual void uninitApp() = 0;
  /// Full path of the module's file.
  [[nodiscard]] virtual OdString moduleName() const = 0;
};
using OdRxModulePtr = OdSmartPtr<OdRxModule>;

/// Full path of the file behind a loader's handle; of the file that has `address` when the handle
/// is null. Empty when the loader does not know.
OD_API OdString odrxModuleFileName(OdRxModuleHandle handle, const void* address);

/// The API version of the runtime, which a module and its loader must agree on.
inline constexpr OdUInt32 kOdRxApiMajor = 20;
inline constexpr OdUInt32 kOdRxApiMinor = 6;

inline constexpr const char* kOdRxCreateModuleEntry = "odrxCreateModuleObject";
inline constexpr const char* kOdRxApiVersionEntry = "odrxGetAPIVersion";
using OdRxCreateModuleFunction = OdRxModule* (*)(OdRxModuleHandle& handle);
using OdRxApiVersionFunction = OdInt32 (*)(OdUInt32& major, OdUInt32& minor, OdUInt32& maintenance,
                                           OdUInt32& build);

/// The concrete module of a class derived from OdRxModule: adds a reference count, which starts at
/// 0 and never destroys, and the loader's handle. There is one object in the process. TBase is the
/// class derived from, TModule or one below it.
template <class TModule, class TBase = TModule>
class OdRxWin32Module final : public TBase {
 public:
  /// The one object, made at the first call; then `handle` is stored in it and set to null.
  static OdRxModule* createModule(OdRxModuleHandle& handle) {
    if (!s_module) {
      std::unique_ptr<void, decltype(&odrxFree)> memory(odrxAlloc(sizeof(OdRxWin32Module)),
                                                        &odrxFree);
      s_module = ::new (memory.get()) OdRxWin32Module(handle);
      (void)memory.release();  // deleteModule() frees it
      handle = nullptr;
    }
    return s_module;
  }

  void addRef() override { m_references.fetch_add(1, std::memory_order_relaxed); }
  void release() override { m_references.fetch_sub(1, std::memory_order_acq_rel); }
  [[nodiscard]] OdInt32 numRefs() const override {
    return m_references.load(std::memory_order_relaxed);
  }

  OdRxModuleHandle sysData() override { return m_handle; }
  void deleteModule() override {
    s_module = nullptr;
    this->~OdRxWin32Module();
    odrxFree(this);
  }
  [[nodiscard]] OdString moduleName() const override {
    return odrxModuleFileName(m_handle, &s_module);
  }

 private:
  explicit OdRxWin32Module(OdRxModuleHandle handle) : m_handle(handle) {}
  ~OdRxWin32Module() override = default;

  /// Hidden: a symbol shared by the process would keep the module's file in memory for good.
  __attribute__((visibility("hidden"))) static OdRxWin32Module* s_module;

  std::atomic<OdInt32> m_references{0};
  OdRxModuleHandle m_handle;
};

template <class TModule, class TBase>
OdRxWin32Module<TModule, TBase>* OdRxWin32Module<TModule, TBase>::s_module = nullptr;

// In one source file of a module: its two exported entry points.
#define ODRX_DEFINE_MODULE(TModule)                                                     \
  extern "C" OD_API OdRxModule* odrxCreateModuleObject(OdRxModuleHandle& handle) {      \
    return OdRxWin32Module<TModule, TModule>::createModule(handle);                     \
  }                                                                                     \
  extern "C" OD_API OdInt32 odrxGetAPIVersion(OdUInt32& major, OdUInt32& minor,         \
                                              OdUInt32& maintenance, OdUInt32& build) { \
    major = kOdRxApiMajor;                                                              \
    minor = kOdRxApiMinor;                                                              \
    maintenance = 0;                                                                    \
    build = 0;                                                                          \
    return 0;                                                                           \
  }
