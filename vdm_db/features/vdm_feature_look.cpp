// One look at a feature.
#include "vdm_db/features/vdm_feature_look.h"

#include <algorithm>

#include "platform/base/error.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_external_pe.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace {

constexpr std::size_t kMaxClasses = 0xFFFF;

bool isOf(const OdDbObject& object, const OdRxClass* cls) {
  const OdRxClass* own = object.isA();
  return own == cls || (own != nullptr && own->isDerivedFrom(cls));
}

// An erased object does not open until it is noted that it is back. What does not open for another
// reason, or may change without a note while it is open, is not to be relied on.
bool isReliable(const OdDbObjectId& id, const OdDbObjectPtr& object) {
  return object.isNull() ? id.isErased() && id.isResident() : !object->isWriteEnabled();
}

}  // namespace

void VdmFeatureLook::at(const OdDbObjectId& feature) {
  m_traits = 0;
  m_keys.clear();
  m_hasEntity = m_hasSeveral = false;
  const OdDbObjectPtr carrier = feature.openObject();
  if (!isReliable(feature, carrier)) m_traits |= kUnknown;
  if (carrier.isNull()) return;
  if (carrier->isA() != VdmDbFeatureData::desc()) {
    m_traits |= kUnknown;
    return;
  }
  const VdmFeature* adapter = static_cast<const VdmDbFeatureData&>(*carrier).adapter();
  if (adapter == nullptr || adapter->isA() == nullptr) return;
  m_traits |= kLiving;
  try {
    lookAtFeature(*carrier, *adapter);
  } catch (...) {
    m_traits |= kUnknown;  // a class of another module failed to answer
  }
}

void VdmFeatureLook::lookAtFeature(const OdDbObject& carrier, const VdmFeature& feature) {
  const OdDbObjectId id = carrier.objectId();
  for (const OdDbObjectId& reactor : feature.m_reactors) lookAtReactor(reactor, id);
  if (!m_hasEntity || m_hasSeveral) m_traits |= kSeveral;
  if (!feature.asksOnlyReactors()) m_traits |= kAsked;
  lookAtOpening(feature);
}

// A reactor notes itself under its own id and its owner's: the feature that lists it must own it.
void VdmFeatureLook::lookAtReactor(const OdDbObjectId& id, const OdDbObjectId& carrier) {
  const OdDbObjectPtr object = id.openObject();
  if (!isReliable(id, object) || id.ownerId() != carrier) m_traits |= kUnknown;
  if (object.isNull()) return;
  if (!isOf(*object, VdmDbFeatureReactor::desc())) {
    m_traits |= kUnknown;
    return;
  }
  if (isOf(*object, VdmDbPersIdReactor::desc())) {
    lookAtReferences(static_cast<const VdmDbPersIdReactor&>(*object));
  }
  lookAtAnswers(static_cast<const VdmDbFeatureReactor&>(*object));
}

void VdmFeatureLook::lookAtReferences(const VdmDbPersIdReactor& reactor) {
  for (const OdDbObjectId& id : reactor.persIdsRef()) {
    m_keys.push_back(id);
    if (id.originalDatabase() != reactor.database()) m_traits |= kUnknown;
    lookAtDependency(id);
  }
}

void VdmFeatureLook::lookAtDependency(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject();
  if (!isReliable(id, object)) m_traits |= kUnknown;
  if (object.isNull()) return;
  if (!isOf(*object, VdmDbObjectDependency::desc())) {
    m_traits |= kUnknown;
    return;
  }
  const auto& dependency = static_cast<const VdmDbObjectDependency&>(*object);
  const OdDbObjectId entity = dependency.getInsertId();
  countEntity(entity);
  m_keys.push_back(entity);
  for (const auto& element : dependency.compoundId().elements()) {
    if (!element.id.isNull() && element.id != entity) m_keys.push_back(element.id);
  }
}

void VdmFeatureLook::countEntity(const OdDbObjectId& entity) {
  if (m_hasEntity && entity != m_entity) m_hasSeveral = true;
  m_entity = entity;
  m_hasEntity = true;
}

void VdmFeatureLook::lookAtAnswers(const VdmDbFeatureReactor& reactor) {
  if (!vdmAnswersChanges(reactor.isA())) return;
  if (!reactor.changesAreStored()) {
    m_traits |= kAsked;
    return;
  }
  if (reactor.hasChanges()) m_traits |= kChanged;
  if (reactor.needConstraintsRecalculation()) m_traits |= kRecalculated;
}

// ---- Openings

VdmFeatureLook::FeatureClass::FeatureClass(const OdString& className)
    : name(className),
      cls(odrxClassDictionary()->getAt(className)),
      isElsewhere(!VdmFeatureExternalPE::getFrom(VdmUpdateFeatureInterface::desc()).isNull()) {
  if (cls == nullptr) return;
  const OdRxObjectPtr extension = cls->getX(VdmUpdateFeatureInterface::desc());
  if (extension.isNull()) return;
  pattern = static_cast<const VdmUpdateFeatureInterface*>(extension.get());
  patternClass = pattern->isA();
}

std::vector<OdUInt16> VdmFeatureLook::changedClasses() {
  std::vector<OdUInt16> changed;
  for (std::size_t i = 0; i < m_classes.size(); ++i) {
    FeatureClass present(m_classes[i].name);
    if (present == m_classes[i]) continue;
    m_classes[i] = present;
    changed.push_back(static_cast<OdUInt16>(i));
  }
  return changed;
}

const VdmFeatureLook::FeatureClass& VdmFeatureLook::classOf(const VdmFeature& feature) {
  const OdRxClass* cls = feature.isA();
  if (m_class < m_classes.size() && m_classes[m_class].cls == cls) return m_classes[m_class];
  const auto found = std::find_if(m_classes.begin(), m_classes.end(),
                                  [cls](const FeatureClass& row) { return row.cls == cls; });
  m_class = static_cast<OdUInt16>(found - m_classes.begin());
  if (found != m_classes.end()) return *found;
  if (m_classes.size() == kMaxClasses)
    throw OdError(eInvalidIndex, OdString("classes of features"));
  return m_classes.emplace_back(cls->name());
}

void VdmFeatureLook::lookAtOpening(const VdmFeature& feature) {
  const FeatureClass& row = classOf(feature);
  OdDbObjectId insert;
  if (row.isElsewhere || (row.pattern != nullptr && !row.pattern->storedInsert(feature, insert))) {
    m_traits |= kMovable;
  } else if (row.pattern != nullptr) {
    m_keys.push_back(insert);
  }
}
