// VdmFeatureImpl: completes feature classes, and the macros that define one.
#pragma once

#include <atomic>
#include <type_traits>

#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature.h"

/// A feature class with its reference count and its carrier. References to the feature are
/// references of the carrier, too, of the same open mode; the carrier's own one, which is there
/// before it attaches itself, is not. TBase is the class that is completed: T or one below it.
template <class T, class TBase = T>
class VdmFeatureImpl final : public TBase {
 public:
  static OdSmartPtr<T> createObject() { return OdSmartPtr<T>(new VdmFeatureImpl, kOdRxObjAttach); }

  void addRef() override {
    m_references.fetch_add(1, std::memory_order_relaxed);
    if (m_dbObject != nullptr) m_dbObject->addRef();
  }
  void release() override {
    OdDbObject* const carrier = m_dbObject;  // may take this object along
    if (dropReference() && carrier != nullptr) carrier->release();
  }
  void addRefTagged(unsigned tag) override {
    m_references.fetch_add(1, std::memory_order_relaxed);
    if (m_dbObject != nullptr) m_dbObject->addRefTagged(tag);
  }
  void releaseTagged(unsigned tag) override {
    OdDbObject* const carrier = m_dbObject;
    if (dropReference() && carrier != nullptr) carrier->releaseTagged(tag);
  }
  [[nodiscard]] OdInt32 numRefs() const override {
    return m_references.load(std::memory_order_relaxed);
  }

  OdDbObject* getDbObject() override { return m_dbObject; }
  [[nodiscard]] const OdDbObject* getDbObject() const override { return m_dbObject; }
  void attach(OdDbObject* carrier) override { m_dbObject = carrier; }
  // The type of a pointer to a member names the class that declares the member last.
  [[nodiscard]] bool asksOnlyReactors() const override {
    return std::is_same_v<decltype(&VdmFeatureImpl::hasChanges), decltype(&VdmFeature::hasChanges)>;
  }

 private:
  VdmFeatureImpl() = default;
  ~VdmFeatureImpl() override = default;

  // False when that was the last one, and the object was deleted.
  bool dropReference() {
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) != 1) return true;
    delete this;
    return false;
  }

  std::atomic<OdInt32> m_references{1};
  OdDbObject* m_dbObject = nullptr;
};

/// queryX of one feature class: the feature, what VdmFeatureExternalPE gives, or the extension of
/// the class, bound to the feature where it is a VdmFeaturePE. With an added reference, or null.
[[nodiscard]] VDM_DB_EXPORT OdRxObject* vdmQueryFeature(const VdmFeature* feature,
                                                        const OdRxClass* featureClass,
                                                        const OdRxClass* protocol);

/// In the class definition, first of all; ends in `public:`.
#define VDM_DECLARE_FEATURE_MEMBERS(ClassName) OD_RX_DECLARE_MEMBERS(ClassName)

/// In one source file: the run-time members of a feature class. `Parent` is VdmFeature or a class
/// below it; `Name` is what drawings store.
#define VDM_DEFINE_FEATURE_CLASS(ClassName, Parent, Name)                                \
  OdRxClass* ClassName::g_pDesc = nullptr;                                               \
  OdRxClass* ClassName::desc() noexcept { return g_pDesc; }                              \
  OdRxClass* ClassName::isA() const { return g_pDesc; }                                  \
  OdRxObject* ClassName::queryX(const OdRxClass* protocol) const {                       \
    OdRxObject* found = vdmQueryFeature(this, g_pDesc, protocol);                        \
    return found != nullptr ? found : Parent::queryX(protocol);                          \
  }                                                                                      \
  OdSmartPtr<ClassName> ClassName::cast(const OdRxObject* object) {                      \
    return odrxCast<ClassName>(object);                                                  \
  }                                                                                      \
  void ClassName::rxInit() { rxInit(nullptr); }                                          \
  void ClassName::rxInit(AppNameChangeFuncPtr appNameChange) {                           \
    odrxRegister(g_pDesc, {Name, Parent::desc(), &ClassName::pseudoConstructor, 0, 0, 0, \
                           OdString(), OdString(), appNameChange});                      \
  }                                                                                      \
  void ClassName::rxUninit() { odrxUnregister(g_pDesc, Name); }                          \
  OdSmartPtr<ClassName> ClassName::createObject() {                                      \
    return VdmFeatureImpl<ClassName>::createObject();                                    \
  }                                                                                      \
  OdRxObjectPtr ClassName::pseudoConstructor() { return ClassName::createObject(); }
