// Id mapping on a flat hash table, with pairs kept in the order of their assignment.
#include "platform/cloning/id_mapping.h"

#include <bit>
#include <cstdint>
#include <vector>

#include "platform/base/error.h"
#include "platform/cloning/clone_state.h"

namespace {

/// Pairs in one vector, found through an open-addressed table of their positions. A deleted pair
/// leaves a hole with a null key in the vector, so that iterators stay where they are.
class HashIdMapping : public OdDbIdMapping {
 public:
  void assign(const OdDbIdPair& pair) override {
    if (pair.key().isNull()) throw OdError(eNullObjectId, "an id pair needs a key");
    if (change(pair)) return;
    if ((m_used + 1) * 2 > m_slots.size()) grow();
    m_pairs.push_back(pair);
    enter(pair.key(), static_cast<OdUInt32>(m_pairs.size()));
    ++m_used;
  }

  bool compute(OdDbIdPair& pair) const override {
    const std::size_t slot = find(pair.key());
    if (slot == kNowhere) return false;
    pair = m_pairs[m_slots[slot] - 1];
    return true;
  }

  bool change(const OdDbIdPair& pair) override {
    const std::size_t slot = find(pair.key());
    if (slot == kNowhere) return false;
    m_pairs[m_slots[slot] - 1] = pair;
    return true;
  }

  bool del(const OdDbObjectId& key) override {
    const std::size_t slot = find(key);
    if (slot == kNowhere) return false;
    m_pairs[m_slots[slot] - 1] = OdDbIdPair();
    m_slots[slot] = kDeleted;
    return true;
  }

  OdDbIdMappingIterPtr newIterator() override;

  [[nodiscard]] const std::vector<OdDbIdPair>& pairs() const { return m_pairs; }

  explicit HashIdMapping(OdDb::DeepCloneType context) { setDeepCloneContext(context); }

 private:
  static constexpr std::size_t kNowhere = SIZE_MAX;
  static constexpr OdUInt32 kEmpty = 0;  // otherwise one more than the position of the pair
  static constexpr OdUInt32 kDeleted = UINT32_MAX;

  // The multiplier is 2^64 divided by the golden ratio: it spreads addresses of equal stride.
  [[nodiscard]] std::size_t home(OdDbObjectId key) const {
    const auto address = reinterpret_cast<std::uintptr_t>(key.idRecord());
    return static_cast<std::size_t>((address * 0x9E3779B97F4A7C15u) >> m_shift);
  }

  [[nodiscard]] std::size_t find(OdDbObjectId key) const {
    if (key.isNull() || m_slots.empty()) return kNowhere;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t slot = home(key);; slot = (slot + 1) & mask) {
      const OdUInt32 entry = m_slots[slot];
      if (entry == kEmpty) return kNowhere;
      if (entry != kDeleted && m_pairs[entry - 1].key() == key) return slot;
    }
  }

  void enter(OdDbObjectId key, OdUInt32 entry) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = home(key);
    while (m_slots[slot] != kEmpty) slot = (slot + 1) & mask;
    m_slots[slot] = entry;
  }

  void grow() {
    const std::size_t size = m_slots.empty() ? 16 : m_slots.size() * 2;
    m_slots.assign(size, kEmpty);
    m_shift = 64 - static_cast<unsigned>(std::countr_zero(size));
    m_used = 0;
    for (std::size_t i = 0; i < m_pairs.size(); ++i) {
      if (m_pairs[i].key().isNull()) continue;
      enter(m_pairs[i].key(), static_cast<OdUInt32>(i + 1));
      ++m_used;
    }
  }

  std::vector<OdDbIdPair> m_pairs;
  std::vector<OdUInt32> m_slots;
  std::size_t m_used = 0;  // slots that are not empty
  unsigned m_shift = 63;
};

class HashIdMappingIter : public OdDbIdMappingIter {
 public:
  explicit HashIdMappingIter(const HashIdMapping& mapping) : m_mapping(&mapping) { skipHoles(); }

  void start() override {
    m_at = 0;
    skipHoles();
  }
  [[nodiscard]] bool done() const override { return m_at >= m_mapping->pairs().size(); }
  void next() override {
    if (done()) return;
    ++m_at;
    skipHoles();
  }
  bool getMap(OdDbIdPair& pair) const override {
    if (done()) return false;
    pair = m_mapping->pairs()[m_at];
    return true;
  }

 private:
  void skipHoles() {
    while (!done() && m_mapping->pairs()[m_at].key().isNull()) ++m_at;
  }

  const HashIdMapping* m_mapping;
  std::size_t m_at = 0;
};

OdDbIdMappingIterPtr HashIdMapping::newIterator() {
  return OdRxObjectImpl<HashIdMappingIter>::createObject(*this);
}

}  // namespace

OD_RX_DEFINE_ABSTRACT(OdDbIdMappingIter, OdRxObject, L"OdDbIdMappingIter")
OD_RX_DEFINE_COMMON(OdDbIdMapping, OdRxObject, L"OdDbIdMapping", &OdDbIdMapping::pseudoConstructor,
                    0, 0, 0, OdString(), OdString())

OdDbIdMapping::OdDbIdMapping() = default;
OdDbIdMapping::~OdDbIdMapping() = default;

OdDbIdMappingPtr OdDbIdMapping::createObject() { return createObject(OdDb::kDcCopy); }

OdRxObjectPtr OdDbIdMapping::pseudoConstructor() { return createObject(); }

OdDbIdMappingPtr OdDbIdMapping::createObject(OdDb::DeepCloneType context) {
  return OdRxObjectImpl<HashIdMapping>::createObject(context);
}
