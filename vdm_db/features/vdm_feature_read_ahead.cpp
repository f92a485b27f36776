// Fetching features into the processor's caches.
#include "vdm_db/features/vdm_feature_read_ahead.h"

#include <array>

#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace {

constexpr std::size_t kLine = 64;  // bytes of a cache line

// All lines that the bytes touch.
void fetch(const void* memory, std::size_t bytes) {
  const char* first = static_cast<const char*>(memory);
  for (std::size_t at = 0; at < bytes; at += kLine) __builtin_prefetch(first + at);
  __builtin_prefetch(first + bytes - 1);
}

/// Some things of the same step; what does not fit is left out.
template <class T>
class Step {
 public:
  void add(T item) {
    if (m_size < m_items.size()) m_items[m_size++] = item;
  }
  [[nodiscard]] const T* begin() const { return m_items.data(); }
  [[nodiscard]] const T* end() const { return m_items.data() + m_size; }

 private:
  std::array<T, 3 * VdmFeatureReadAhead::kPortion> m_items;
  std::size_t m_size = 0;
};

using Ids = Step<OdDbObjectId>;

// The objects of the ids that are in memory and of the class itself.
template <class T>
Step<const T*> residentOf(const Ids& ids) {
  Step<const OdDbObject*> objects;
  for (const OdDbObjectId& id : ids) fetch(id.idRecord(), sizeof(OdDbIdRecord));
  for (const OdDbObjectId& id : ids) {
    const OdDbObject* object = id.idRecord()->object;
    if (object == nullptr) continue;
    fetch(object, sizeof(T));
    objects.add(object);
  }
  Step<const T*> found;
  for (const OdDbObject* object : objects) {
    if (object->isA() == T::desc()) found.add(static_cast<const T*>(object));
  }
  return found;
}

// The first ids of each list.
Ids idsOf(const Step<const OdDbObjectIdArray*>& lists) {
  for (const OdDbObjectIdArray* list : lists) fetch(list->begin(), kLine);
  Ids ids;
  for (const OdDbObjectIdArray* list : lists) {
    for (const OdDbObjectId& id : *list) {
      if (!id.isNull()) ids.add(id);
    }
  }
  return ids;
}

}  // namespace

void VdmFeatureReadAhead::read(std::span<const OdDbObjectId> carriers) {
  Ids ids;
  for (const OdDbObjectId& id : carriers) {
    if (!id.isNull()) ids.add(id);
  }
  Step<const VdmFeature*> features;
  const Step<const VdmDbFeatureData*> resident = residentOf<VdmDbFeatureData>(ids);
  for (const VdmDbFeatureData* carrier : resident)
    fetch(carrier->m_impl.get(), sizeof(VdmDbFeatureDataImpl));
  for (const VdmDbFeatureData* carrier : resident) {
    if (carrier->adapter() != nullptr) features.add(carrier->adapter());
  }
  for (const VdmFeature* feature : features) fetch(feature, sizeof(VdmFeature));
  Step<const OdDbObjectIdArray*> lists;
  for (const VdmFeature* feature : features) {
    (void)feature->numRefs();  // counted when it is opened, at the end of its memory
    lists.add(&feature->m_reactors);
  }
  const Step<const VdmDbPersIdReactor*> reactors = residentOf<VdmDbPersIdReactor>(idsOf(lists));
  Step<const OdDbObjectIdArray*> references;
  for (const VdmDbPersIdReactor* reactor : reactors) {
    const auto& state = static_cast<const VdmDbPersIdReactorImpl&>(reactor->impl());
    fetch(&state.persIds, kLine);
    references.add(&state.persIds.ids());
  }
  (void)residentOf<VdmDbObjectDependency>(idsOf(references));
}
