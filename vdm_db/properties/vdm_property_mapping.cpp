// Mappings of ids, whose variables do not hold the reference type.
#include "vdm_db/properties/vdm_property_mapping.h"

VdmPropertyDataObjectIdMapping::VdmPropertyDataObjectIdMapping(OdDbObjectId* variable,
                                                               OdDb::ReferenceType type)
    : m_variable(variable), m_type(type) {}

void VdmPropertyDataObjectIdMapping::updateMapped() { *m_variable = m_cached.id; }

const OdDbTypedId& VdmPropertyDataObjectIdMapping::value() const {
  m_cached = OdDbTypedId(*m_variable, m_type);
  return m_cached;
}

VdmPropertyDataObjectIdArrayMapping::VdmPropertyDataObjectIdArrayMapping(
    OdDbObjectIdArray* variable, OdDb::ReferenceType type)
    : m_variable(variable), m_type(type) {}

void VdmPropertyDataObjectIdArrayMapping::updateMapped() {
  m_variable->clear();
  m_variable->reserve(m_cached.size());
  for (const OdDbTypedId& typedId : std::as_const(m_cached)) m_variable->append(typedId.id);
}

const VdmTypedIdArray& VdmPropertyDataObjectIdArrayMapping::value() const {
  m_cached.clear();
  m_cached.reserve(m_variable->size());
  for (const OdDbObjectId& id : std::as_const(*m_variable)) {
    m_cached.append(OdDbTypedId(id, m_type));
  }
  return m_cached;
}
