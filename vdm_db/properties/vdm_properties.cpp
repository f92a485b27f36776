// The property bag: keys, values, sharing and mapping.
#include "vdm_db/properties/vdm_properties.h"

#include <algorithm>

#include "vdm_db/properties/vdm_properties_templates.h"
#include "vdm_db/properties/vdm_property_shape.h"
#include "vdm_db/properties/vdm_property_type_rows.h"

// ---- Copies and moves

VdmProperties::VdmProperties() noexcept = default;
VdmProperties::VdmProperties(int config) noexcept : m_config(config) {}

VdmProperties::VdmProperties(const VdmProperties& other)
    : m_config(other.m_config), m_version(other.m_version) {
  // From here on the two bags share their value objects.
  other.boxAll();
  m_slots.reserve(other.size());
  for (OdUInt32 slot = 0; slot < other.size(); ++slot) {
    m_slots.insert(slot);
    if (other.m_slots.isBoxed(slot)) m_slots.putBoxed(slot, other.m_slots.boxed(slot));
  }
  m_shape = VdmPropertyShape::copy(other.m_shape);
}

VdmProperties::VdmProperties(VdmProperties&& other) noexcept
    : m_shape(std::exchange(other.m_shape, nullptr)),
      m_slots(std::move(other.m_slots)),
      m_config(other.m_config),
      m_version(other.m_version) {}

VdmProperties& VdmProperties::operator=(const VdmProperties& other) {
  if (this != &other) *this = VdmProperties(other);
  return *this;
}

VdmProperties& VdmProperties::operator=(VdmProperties&& other) noexcept {
  std::swap(m_shape, other.m_shape);
  m_slots.swap(other.m_slots);
  m_config = other.m_config;
  m_version = other.m_version;
  return *this;
}

VdmProperties::~VdmProperties() { VdmPropertyShape::release(m_shape); }

void VdmProperties::clear() {
  VdmPropertyShape::release(std::exchange(m_shape, nullptr));
  m_slots.clear();
}

void VdmProperties::boxAll() const {
  for (OdUInt32 slot = 0; slot < m_slots.size(); ++slot) m_slots.box(slot);
}

// ---- Slots and keys

OdUInt32 VdmProperties::findSlot(const OdString& key) const {
  return m_shape == nullptr ? VdmPropertyShape::kNoSlot : m_shape->find(key);
}

// Grows by half, from four slots on, or at once to the size of the last bag that went this way.
void VdmProperties::makeRoom() {
  if (const OdUInt32 count = m_slots.size(); count == m_slots.capacity()) {
    m_slots.reserve(std::max({4u, count + count / 2, VdmPropertyShape::expectedSize(m_shape)}));
  }
}

OdUInt32 VdmProperties::takeStep(const VdmPropertyShapeStep& step) {
  makeRoom();
  m_shape = step.to;
  m_slots.insert(step.slot);
  return step.slot;
}

OdUInt32 VdmProperties::addSlot(const OdString& key) {
  makeRoom();
  OdUInt32 slot = 0;
  m_shape = VdmPropertyShape::add(m_shape, key, slot);
  m_slots.insert(slot);
  return slot;
}

OdUInt32 VdmProperties::findOrAddSlot(const OdString& key) {
  const OdUInt32 slot = findSlot(key);
  return slot == VdmPropertyShape::kNoSlot ? addSlot(key) : slot;
}

void VdmProperties::removeSlot(OdUInt32 slot) {
  const bool shifts = m_shape->isShared();
  m_shape = VdmPropertyShape::remove(m_shape, slot);
  if (shifts) {
    m_slots.eraseShifting(slot);
  } else {
    m_slots.eraseFilling(slot);
  }
}

const OdString& VdmProperties::keyOfSlot(OdUInt32 slot) const { return m_shape->keyOfSlot(slot); }

OdUInt32 VdmProperties::slotAt(OdUInt32 position) const { return m_shape->slotAt(position); }

bool VdmProperties::isMappedSlot(OdUInt32 slot) const {
  if (m_slots.isNull(slot)) return false;
  return m_slots.isBoxed(slot) ? m_slots.boxed(slot)->isMapped() : m_slots.isMappedVariable(slot);
}

// ---- Values as objects

VdmProperties::Iterator VdmProperties::begin() const { return {this, 0}; }
VdmProperties::Iterator VdmProperties::end() const { return {this, m_slots.size()}; }

VdmPropertiesIterator::value_type VdmPropertiesIterator::operator*() const {
  const OdUInt32 slot = m_bag->slotAt(m_position);
  return {m_bag->keyOfSlot(slot), m_bag->m_slots.box(slot)};
}

VdmPropertyDataPtr VdmProperties::getProperty(const OdString& key) const {
  const OdUInt32 slot = findSlot(key);
  return slot == VdmPropertyShape::kNoSlot ? VdmPropertyDataPtr() : m_slots.box(slot);
}

bool VdmProperties::setProperty(const OdString& key, const VdmPropertyDataPtr& value) {
  if (value.isNull()) return removeProperty(key);
  // May be the bag's own pointer.
  const VdmPropertyDataPtr kept(value);  // NOLINT(performance-unnecessary-copy-initialization)
  m_slots.putBoxed(findOrAddSlot(key), kept);
  return true;
}

bool VdmProperties::removeProperty(const OdString& key) {
  const OdUInt32 slot = findSlot(key);
  if (slot == VdmPropertyShape::kNoSlot) return false;
  removeSlot(slot);
  return true;
}

bool VdmProperties::hasProperty(const OdString& key) const {
  return findSlot(key) != VdmPropertyShape::kNoSlot;
}

// ---- Ids by their parts

bool VdmProperties::setProperty(const OdString& key, const OdDbObjectId& id,
                                OdDb::ReferenceType type) {
  return setProperty(key, OdDbTypedId(id, type));
}

bool VdmProperties::getProperty(const OdString& key, OdDbObjectId& id) const {
  OdDbTypedId typedId;
  if (!getProperty(key, typedId)) return false;
  id = typedId.id;
  return true;
}

bool VdmProperties::setProperty(const OdString& key, const OdDbObjectIdArray& ids,
                                OdDb::ReferenceType type) {
  VdmTypedIdArray typedIds;
  typedIds.reserve(ids.size());
  for (const OdDbObjectId& id : ids) typedIds.append(OdDbTypedId(id, type));
  return setProperty(key, typedIds);
}

bool VdmProperties::getProperty(const OdString& key, OdDbObjectIdArray& ids) const {
  VdmTypedIdArray typedIds;
  if (!getProperty(key, typedIds)) return false;
  ids.clear();
  ids.reserve(typedIds.size());
  for (const OdDbTypedId& typedId : std::as_const(typedIds)) ids.append(typedId.id);
  return true;
}

// ---- Mapping

void VdmProperties::mapTo(const OdString& key, VdmPropertyData* mapping) {
  const VdmPropertyDataPtr value(mapping);
  removeProperty(key);
  m_slots.putBoxed(addSlot(key), value);
}

bool VdmProperties::mapProperty(const OdString& key, OdDbObjectId* id, OdDb::ReferenceType type) {
  getProperty(key, *id);
  mapTo(key, new VdmPropertyDataObjectIdMapping(id, type));
  return true;
}

bool VdmProperties::mapProperty(const OdString& key, OdDbObjectIdArray* ids,
                                OdDb::ReferenceType type) {
  getProperty(key, *ids);
  mapTo(key, new VdmPropertyDataObjectIdArrayMapping(ids, type));
  return true;
}

void VdmProperties::setReferenceType(const OdString& key, OdDb::ReferenceType type) {
  const OdUInt32 slot = findOrAddSlot(key);
  if (!m_slots.isBoxed(slot)) return;
  if (auto* mapping =
          dynamic_cast<VdmPropertyDataObjectIdArrayMapping*>(m_slots.boxed(slot).get())) {
    mapping->setReferenceType(type);
  }
}

// ---- Instantiations for plain values and arrays; those for maps are in vdm_properties_maps.cpp

VDM_SINGLE_AND_ARRAY_TYPE_ROWS(VDM_INSTANTIATE_BAG_VALUE)

// Only these types are mapped onto variables.
VDM_INSTANTIATE_BAG_MAPPING(OdString)
VDM_INSTANTIATE_BAG_MAPPING(OdLong)
VDM_INSTANTIATE_BAG_MAPPING(double)
VDM_INSTANTIATE_BAG_MAPPING(bool)
VDM_INSTANTIATE_BAG_MAPPING(signed char)
VDM_INSTANTIATE_BAG_MAPPING(OdDbTypedId)
VDM_INSTANTIATE_BAG_MAPPING(VdmArray<VdmPropertyDataPtr>)
VDM_INSTANTIATE_BAG_MAPPING(VdmArray<OdString>)
VDM_INSTANTIATE_BAG_MAPPING(VdmArray<OdLong>)
VDM_INSTANTIATE_BAG_MAPPING(VdmArray<double>)
VDM_INSTANTIATE_BAG_MAPPING(VdmArray<bool>)
VDM_INSTANTIATE_BAG_MAPPING(VdmArray<OdDbTypedId>)
