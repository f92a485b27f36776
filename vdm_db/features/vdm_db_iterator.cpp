// Iterators over lists of ids.
#include "vdm_db/features/vdm_db_iterator.h"

VdmDbIteratorBase::DataSource::~DataSource() = default;

VdmDbIteratorBase::VdmDbIteratorBase(std::unique_ptr<DataSource> source)
    : m_source(std::move(source)) {}

VdmDbIteratorBase::VdmDbIteratorBase(const VdmDbIteratorBase& other)
    : m_index(other.m_index), m_source(other.m_source ? other.m_source->clone() : nullptr) {}

VdmDbIteratorBase::VdmDbIteratorBase(VdmDbIteratorBase&& other) noexcept = default;

VdmDbIteratorBase& VdmDbIteratorBase::operator=(const VdmDbIteratorBase& other) {
  if (this != &other) {
    m_source = other.m_source ? other.m_source->clone() : nullptr;
    m_index = other.m_index;
  }
  return *this;
}

VdmDbIteratorBase& VdmDbIteratorBase::operator=(VdmDbIteratorBase&& other) noexcept = default;

VdmDbIteratorBase::~VdmDbIteratorBase() = default;

bool VdmDbIteratorBase::done() const { return !m_source || m_index >= m_source->size(); }

void VdmDbIteratorBase::next() {
  if (done()) return;
  ++m_index;
  skipForeign();
}

void VdmDbIteratorBase::start() {
  m_index = 0;
  skipForeign();
}

OdDbObjectId VdmDbIteratorBase::objectId() const {
  if (!m_source) odRaiseInvalidIndex(m_index, 0);
  return m_source->at(m_index);
}

void VdmDbIteratorBase::skipForeign() {
  while (!done() && !opens(m_source->at(m_index))) ++m_index;
}
