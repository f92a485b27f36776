// OdDbTrial: changes of a drawing that are taken back.
#include "platform/db/trial.h"

#include "platform/db/database_impl.h"

OdDbTrial::OdDbTrial(OdDbDatabase* database)
    : m_database(database), m_readOnly(database->impl().readOnly) {
  database->impl().readOnly = false;
  database->startTransaction();
}

OdDbTrial::~OdDbTrial() {
  if (m_database == nullptr) return;
  m_database->abortTransaction();
  m_database->impl().readOnly = m_readOnly;
}

void OdDbTrial::keep() {
  m_database->impl().readOnly = m_readOnly;
  m_database->endTransaction();
  m_database = nullptr;
}
