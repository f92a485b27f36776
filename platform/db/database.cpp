// OdDbDatabase: the drawing as its users see it.
#include "platform/db/database.h"

#include <algorithm>

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/dictionary.h"
#include "platform/db/host_app_services.h"
#include "platform/db/object_extra.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/reactor_calls.h"
#include "platform/db/regapp_table.h"

OD_RX_DEFINE_ABSTRACT(OdDbDatabase, OdRxObject, L"OdDbDatabase")
OD_RX_DEFINE_ABSTRACT(OdDbDatabaseReactor, OdRxObject, L"OdDbDatabaseReactor")

// The inside.

OdDbDatabaseImpl::OdDbDatabaseImpl(OdDbDatabase* owner, OdDbHostAppServices* host)
    : self(owner), services(host), ids(owner), undo(*this) {}

OdDbDatabaseImpl::~OdDbDatabaseImpl() = default;

void OdDbDatabaseImpl::closeObjects() {
  closing = true;
  tellDatabaseReactors([this](OdDbDatabaseReactor* reactor) { reactor->goodbye(self); });
  reactors.clear();
  xrefs.clear();
  ids.forEach([](const OdDbIdRecord* idRecord) {
    if (idRecord->object != nullptr) {
      OdDbReactorCalls::tell<const OdDbObject*>(idRecord->object, &OdDbObject::goodbye,
                                                &OdDbObjectReactor::goodbye, idRecord->object);
    }
    return true;
  });
  // An object that somebody still holds stays theirs, outside any database.
  ids.forEach([](OdDbIdRecord* idRecord) {
    OdDbObject* object = idRecord->object;
    idRecord->object = nullptr;
    if (object == nullptr) return true;
    object->m_idRecord = nullptr;
    if (object->m_refs == 0) delete object;
    return true;
  });
}

void OdDbDatabaseImpl::report(const OdString& line) { services->message(line); }

OdDbDatabase::OdDbDatabase() = default;

OdDbDatabase::~OdDbDatabase() {
  if (m_impl) m_impl->closeObjects();
}

#define OD_DB_ROOT(Name, handle, Class, text)        \
  OdDbObjectId OdDbDatabase::get##Name##Id() const { \
    return m_impl->idOf(OdDbRootHandles::k##Name);   \
  }
#include "platform/db/root_object_rows.inc"

// Objects.

OdDbObjectId OdDbDatabase::addOdDbObject(OdDbObject* object, const OdDbObjectId& owner,
                                         const OdDbHandle& handle) {
  return m_impl->append(object, owner.idRecord(), static_cast<OdUInt64>(handle));
}

OdDbObjectId OdDbDatabase::getOdDbObjectId(const OdDbHandle& handle, bool createIfNotFound,
                                           OdUInt32) const {
  const auto number = static_cast<OdUInt64>(handle);
  if (number == 0) return OdDbObjectId::kNull;
  OdDbIdRecord* idRecord = m_impl->ids.find(number);
  if (idRecord == nullptr) {
    if (!createIfNotFound && m_impl->allListed) return OdDbObjectId::kNull;
    idRecord = m_impl->ids.findOrCreate(number);
  }
  if (createIfNotFound) {
    m_impl->seed = std::max(m_impl->seed, number + 1);
    return OdDbObjectId(idRecord);
  }
  m_impl->ensureHeader(idRecord);
  return idRecord->has(OdDbIdRecord::kHeaderKnown) ? OdDbObjectId(idRecord) : OdDbObjectId::kNull;
}

OdDbHandle OdDbDatabase::handseed() const { return OdDbHandle(m_impl->seed); }

void OdDbDatabase::forEachId(const std::function<bool(OdDbObjectId)>& visit,
                             bool withErased) const {
  m_impl->listAll();
  m_impl->ids.forEach([&visit, withErased](OdDbIdRecord* idRecord) {
    if (!idRecord->has(OdDbIdRecord::kHeaderKnown)) return true;
    if (!withErased && idRecord->has(OdDbIdRecord::kErased)) return true;
    return visit(OdDbObjectId(idRecord));
  });
}

OdUInt64 OdDbDatabase::approxNumObjects() const {
  OdUInt64 count = 0;
  forEachId([&count](OdDbObjectId) {
    ++count;
    return true;
  });
  return count;
}

OdDbObjectId OdDbDatabase::newRegApp(const OdString& name) {
  const OdSmartPtr<OdDbRegAppTable> table = getRegAppTableId().safeOpenAs<OdDbRegAppTable>();
  if (const OdDbObjectId present = table->getAt(name); !present.isNull()) return present;
  const OdSmartPtr<OdDbRegAppTableRecord> record = OdDbRegAppTableRecord::createObject();
  record->setName(name);
  const OdDbOpenUpgrade upgrade(table);
  return table->add(record.get());
}

// Drawing settings.

namespace {

const OdDbSettingRow* rowOf(const OdString& name) {
  const OdDbSettingRow* row = OdDbDrawingSettings::find(name);
  if (row == nullptr) throw OdError(eKeyNotFound, OdString("drawing setting ") + name);
  return row;
}

}  // namespace

OdResBufPtr OdDbDatabase::getSysVar(const OdString& name) const {
  return m_impl->settings.get(rowOf(name));
}

void OdDbDatabase::setSysVar(const OdString& name, const OdResBuf* value) {
  const OdDbSettingRow* row = rowOf(name);
  if (m_impl->readOnly) throw OdError(eReadOnlyDatabase, m_impl->filename);
  const double before = m_impl->settings.number(row);
  OdDbDrawingSettings trial = m_impl->settings;
  OdString reason;
  const OdResult result = trial.set(row, value, &reason);
  if (result != eOk) throw OdError(result, reason);
  if (trial.number(row) == before) return;
  m_impl->undo.recordSetting(name);
  m_impl->settings = trial;
  m_impl->noteSettingChanged(row);
}

void OdDbDatabaseImpl::noteSettingChanged(const OdDbSettingRow* row) {
  ++changes;
  if (std::find(changedSettings.begin(), changedSettings.end(), row) == changedSettings.end()) {
    changedSettings.push_back(row);
  }
  tellDatabaseReactors([this, row](OdDbDatabaseReactor* reactor) {
    reactor->headerSysVarChanged(self, OdString(row->name));
  });
}

OdDb::UnitsValue OdDbDatabase::getINSUNITS() const {
  return static_cast<OdDb::UnitsValue>(
      static_cast<int>(m_impl->settings.number(rowOf(OdString("INSUNITS")))));
}

void OdDbDatabase::setINSUNITS(OdDb::UnitsValue units) {
  const OdResBufPtr value = OdResBuf::newRb(70);
  value->setInt16(static_cast<OdInt16>(units));
  setSysVar(OdString("INSUNITS"), value.get());
}

// Undo and transactions.

void OdDbDatabase::startUndoRecord() { m_impl->undo.startStep(); }
bool OdDbDatabase::hasUndo() const { return m_impl->undo.hasUndo(); }
bool OdDbDatabase::hasRedo() const { return m_impl->undo.hasRedo(); }
OdResult OdDbDatabase::undo() { return m_impl->undo.undo(); }
OdResult OdDbDatabase::redo() { return m_impl->undo.redo(); }
void OdDbDatabase::setUndoMark() { m_impl->undo.setMark(); }
bool OdDbDatabase::hasUndoMark() const { return m_impl->undo.hasMark(); }
OdResult OdDbDatabase::undoBack() { return m_impl->undo.undoBack(); }
void OdDbDatabase::clearUndo() { m_impl->undo.clear(); }
bool OdDbDatabase::isUndoing() const { return m_impl->undo.isApplying(); }
bool OdDbDatabase::undoRecording() const { return m_impl->undo.isEnabled(); }
void OdDbDatabase::disableUndoRecording(bool disable) { m_impl->undo.setEnabled(!disable); }
OdUInt32 OdDbDatabase::numUndoSteps() const { return m_impl->undo.numSteps(); }
void OdDbDatabase::startTransaction() { m_impl->undo.startTransaction(); }
OdResult OdDbDatabase::endTransaction() { return m_impl->undo.endTransaction(); }
OdResult OdDbDatabase::abortTransaction() { return m_impl->undo.abortTransaction(); }
OdUInt32 OdDbDatabase::numActiveTransactions() const { return m_impl->undo.numTransactions(); }

// Observers.

void OdDbDatabase::addReactor(OdDbDatabaseReactor* reactor) const {
  if (reactor == nullptr) throw OdError(eInvalidInput, OdString("null database reactor"));
  std::vector<OdDbDatabaseReactor*>& reactors = m_impl->reactors;
  if (std::find(reactors.begin(), reactors.end(), reactor) == reactors.end()) {
    reactors.push_back(reactor);
  }
}

void OdDbDatabase::removeReactor(OdDbDatabaseReactor* reactor) const {
  std::erase(m_impl->reactors, reactor);
}

// File.

OdString OdDbDatabase::getFilename() const { return m_impl->filename; }
bool OdDbDatabase::isReadOnly() const { return m_impl->readOnly; }
bool OdDbDatabase::isModified() const { return m_impl->changes != m_impl->savedChanges; }
OdStatus OdDbDatabase::save() { return m_impl->save(); }
OdStatus OdDbDatabase::saveAs(const OdString& path) { return m_impl->saveAs(path); }
OdStatus OdDbDatabase::compact() { return m_impl->compact(); }
OdStatus OdDbDatabase::loadAll() { return m_impl->loadAll(); }
OdUInt64 OdDbDatabase::pageOut(OdUInt64 budgetBytes) { return m_impl->pageOut(budgetBytes); }
const OdStringArray& OdDbDatabase::loadErrors() const { return m_impl->loadErrors; }
OdDbHostAppServices* OdDbDatabase::appServices() const { return m_impl->services; }
OdDbObjectId OdDbDatabase::xrefBlockId() const { return m_impl->xrefBlock; }
bool OdDbDatabase::isReadyForDisplay() const {
  return m_impl->services == nullptr || m_impl->services->isReadyForDisplay(this);
}
