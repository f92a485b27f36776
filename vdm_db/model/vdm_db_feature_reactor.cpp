// Links of features: the base of the family.
#include "vdm_db/model/vdm_db_feature_reactor.h"

#include <unordered_map>

#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/model/vdm_block_managers.h"

VDM_DEFINE_DB_CLASS(VdmDbFeatureReactor, OdDbObject, L"VdmDbFeatureReactor", L"VDMDBFEATUREREACTOR",
                    L"features reactor")

// ---- State

VdmDbFeatureReactorImpl::VdmDbFeatureReactorImpl() {
  m_properties.setConfig(VdmProperties::kDropErasedIds);
}
VdmDbFeatureReactorImpl::~VdmDbFeatureReactorImpl() = default;

OdResult VdmDbFeatureReactorImpl::subErase(VdmDbFeatureReactor* /*reactor*/) { return eOk; }

OdDbObjectIdArray VdmDbFeatureReactorImpl::getVariables(const VdmDbFeatureReactor* /*reactor*/) {
  return {};
}
OdDbObjectIdArray VdmDbFeatureReactorImpl::getDependentVariables(
    const VdmDbFeatureReactor* /*reactor*/) {
  return {};
}

VdmDbFeatureReactor::VdmDbFeatureReactor()
    : VdmDbFeatureReactor(std::make_unique<VdmDbFeatureReactorImpl>()) {}
VdmDbFeatureReactor::VdmDbFeatureReactor(std::unique_ptr<VdmDbFeatureReactorImpl> impl)
    : m_impl(std::move(impl)) {}
VdmDbFeatureReactor::~VdmDbFeatureReactor() = default;

const VdmDbFeatureReactorImpl& VdmDbFeatureReactor::implForRead() const {
  assertReadEnabled();
  return *m_impl;
}

VdmDbFeatureReactorImpl& VdmDbFeatureReactor::implForWrite() {
  assertWriteEnabled();
  return *m_impl;
}

// ---- What subclasses answer

bool VdmDbFeatureReactor::hasChanges() const { return false; }
bool VdmDbFeatureReactor::needConstraintsRecalculation() const { return false; }
bool VdmDbFeatureReactor::doAudit() { return true; }

OdDbObjectIdArray VdmDbFeatureReactor::getVariables() {
  assertReadEnabled();
  return m_impl->getVariables(this);
}

OdDbObjectIdArray VdmDbFeatureReactor::getDependentVariables() {
  assertReadEnabled();
  return m_impl->getDependentVariables(this);
}

// ---- Which classes answer

namespace {

// The functions that a class calls for the two questions. A class that overrides neither need not
// be opened and asked, which saves opening every reactor of every feature in each pass. Only GCC
// gives the address of the function that a virtual call reaches; with other compilers every class
// is asked, which is slower and gives the same answers.
struct ChangeFunctions {
  const void* hasChanges = nullptr;
  const void* needRecalculation = nullptr;

  friend bool operator==(const ChangeFunctions&, const ChangeFunctions&) = default;
};

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpmf-conversions"
#pragma GCC diagnostic ignored "-Wpedantic"
ChangeFunctions changeFunctionsOf(const VdmDbFeatureReactor& reactor) {
  using Question = bool (*)(const VdmDbFeatureReactor*);
  const auto address = [](Question function) { return reinterpret_cast<const void*>(function); };
  return {address(reinterpret_cast<Question>(reactor.*(&VdmDbFeatureReactor::hasChanges))),
          address(reinterpret_cast<Question>(
              reactor.*(&VdmDbFeatureReactor::needConstraintsRecalculation)))};
}
#pragma GCC diagnostic pop
bool overridesAny(const VdmDbFeatureReactor& reactor) {
  static const ChangeFunctions kOfBase = changeFunctionsOf(VdmDbFeatureReactor());
  return !(changeFunctionsOf(reactor) == kOfBase);
}
#else
bool overridesAny(const VdmDbFeatureReactor&) { return true; }
#endif

// What is known of classes, in one thread, until a class is registered or released.
struct KnownClasses {
  OdUInt64 generation = 0;
  const OdRxClass* lastClass = nullptr;
  bool lastAnswer = false;
  std::unordered_map<const OdRxClass*, bool> answers;

  bool remember(const OdRxClass* cls, bool answer) {
    lastClass = cls;
    return lastAnswer = answer;
  }
};

}  // namespace

bool VdmDbFeatureReactor::classTellsChanges(const OdDbObjectId& reactor) {
  thread_local KnownClasses known;
  const OdRxClass* cls = reactor.objectClass();
  if (cls == nullptr) return false;
  if (known.generation != odrxClassGeneration()) {
    known = KnownClasses();
    known.generation = odrxClassGeneration();
  }
  if (cls == known.lastClass) return known.lastAnswer;
  if (const auto found = known.answers.find(cls); found != known.answers.end()) {
    return known.remember(cls, found->second);
  }
  bool answer = false;
  if (cls->isDerivedFrom(desc())) {
    const OdDbObjectPtr object = reactor.openObject();
    if (object.isNull()) return false;  // nothing is learnt about the class
    answer = overridesAny(*static_cast<const VdmDbFeatureReactor*>(object.get()));
  }
  known.answers.emplace(cls, answer);
  return known.remember(cls, answer);
}

// ---- Place and life

OdDbObjectId VdmDbFeatureReactor::blockId() const {
  const OdDbObjectPtr carrier = ownerId().openObject();
  if (carrier.isNull()) return OdDbObjectId::kNull;
  const OdDbObjectPtr owner = carrier->ownerId().openObject();
  const VdmFeatureRegistry* manager = VdmFeatureRegistry::of(owner.get());
  return manager == nullptr ? OdDbObjectId::kNull : manager->blockId();
}

OdResult VdmDbFeatureReactor::subErase(bool erasing) {
  const OdResult result = OdDbObject::subErase(erasing);
  if (result == eOk && erasing) m_impl->subErase(this);
  return result;
}

// ---- Filing: the base's part, then the bag

OdResult VdmDbFeatureReactor::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dwgInFields(filer);
  return result == eOk ? m_impl->dwgInFields(filer) : result;
}

void VdmDbFeatureReactor::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl->dwgOutFields(filer);
}
