// The drawing: one VdmDbExtensionData with its bag a record, owned by a dictionary.
#include <stdexcept>

#include "bench/records/record_values.h"
#include "bench/records/subject.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/database.h"
#include "platform/db/db_object.h"
#include "platform/db/host_app_services.h"
#include "platform/runtime/runtime_init.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_properties_pe.h"

namespace {

void require(const OdStatus& status) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
}

void require(OdResult result) {
  if (result != eOk) throw std::runtime_error(odResultText(result));
}

class DrawingSubject : public RecordSubject {
 public:
  explicit DrawingSubject(const OdSqliteStoreOptions& files = {},
                          const OdDbReadOptions& reading = {})
      : m_services(createSqliteStoreFactory(files)), m_reading(reading) {
    oddbInitialize();
    VdmPropertiesPE::rxInit();
    VdmDbExtensionData::rxInit();
    for (const char* key : RecordValues::kKeys) m_keys.append(OdString(key));
    m_database = m_services.createDatabase();
  }

  void create(std::size_t count) override {
    m_database->startUndoRecord();
    OdDbTransaction transaction(m_database.get());
    const OdSmartPtr<VdmDbExtensionData> parent = VdmDbExtensionData::createObject();
    const OdDbObjectId owner =
        m_database->addOdDbObject(parent.get(), m_database->getNamedObjectsDictionaryId());
    m_first = static_cast<OdUInt64>(m_database->handseed());
    for (std::size_t i = 0; i < count; ++i) {
      const OdSmartPtr<VdmDbExtensionData> record = VdmDbExtensionData::createObject();
      m_database->addOdDbObject(record.get(), owner);
      fill(record->propertiesForWrite(), i);
    }
    require(transaction.commit());
    m_count = count;
  }

  double lookUp(std::size_t record) override {
    const OdDbObjectPtr object = recordId(record).openObject();
    double value = 0;
    static_cast<VdmDbExtensionData*>(object.get())->properties().getProperty(keys()[3], value);
    return value;
  }

  void write(std::size_t record, double value) override {
    m_database->startUndoRecord();
    OdDbTransaction transaction(m_database.get());
    {
      const OdDbObjectPtr object = recordId(record).openObject(OdDb::kForWrite);
      static_cast<VdmDbExtensionData*>(object.get())->setProperty(keys()[3], value);
    }
    require(transaction.commit());
  }

  void undo() override { require(m_database->undo()); }
  void redo() override { require(m_database->redo()); }
  void saveAs(const std::string& path) override { require(m_database->saveAs(OdString(path))); }
  void save() override { require(m_database->save()); }

  void load(const std::string& path) override {
    open(path);
    require(m_database->loadAll());
  }

  double openFirst(const std::string& path, std::size_t record) override {
    open(path);
    return lookUp(record);
  }

  void cloneAll() override {
    OdDbObjectIdArray ids;
    for (std::size_t i = 0; i < m_count; ++i) ids.append(recordId(i));
    const OdSmartPtr<OdDbIdMapping> mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
    m_database->startUndoRecord();
    require(m_database->deepCloneObjects(ids, recordId(0).ownerId(), *mapping));
  }

 private:
  void open(const std::string& path) {
    OdStatus status;
    m_database = m_services.readFile(OdString(path), status, m_reading);
    require(status);
    m_first = kFirstRecordHandle;
  }

  [[nodiscard]] const OdStringArray& keys() const { return m_keys; }

  [[nodiscard]] OdDbObjectId recordId(std::size_t record) const {
    return m_database->getOdDbObjectId(OdDbHandle(m_first + record));
  }

  void fill(VdmProperties& bag, std::size_t index) const {
    const RecordValues values(index);
    VdmArray<double> profile;
    profile.assign(values.profile.begin(), values.profile.end());
    const OdStringArray& key = m_keys;
    bag.setProperty(key[0], OdString(values.description));
    bag.setProperty(key[1], values.height);
    bag.setProperty(key[2], values.length);
    bag.setProperty(key[3], values.mass);
    bag.setProperty(key[4], OdString(values.material));
    bag.setProperty(key[5], OdString(values.name));
    bag.setProperty(key[6], OdString(values.partNumber));
    bag.setProperty(key[7], profile);
    bag.setProperty(key[8], values.quantity);
    bag.setProperty(key[9], values.revision);
    bag.setProperty(key[10], values.visible);
    bag.setProperty(key[11], values.width);
  }

  static constexpr OdUInt64 kFirstRecordHandle = OdDbRootHandles::kFirstFree + 1;

  OdDbHostAppServices m_services;
  OdDbReadOptions m_reading;
  OdDbDatabasePtr m_database;
  OdStringArray m_keys;
  OdUInt64 m_first = kFirstRecordHandle;
  std::size_t m_count = 0;
};

}  // namespace

std::unique_ptr<RecordSubject> makeDrawingSubject() { return std::make_unique<DrawingSubject>(); }

std::unique_ptr<RecordSubject> makeReadingSubject(bool holdsOneState) {
  OdSqliteStoreOptions files;
  files.readersHoldOneState = holdsOneState;
  return std::make_unique<DrawingSubject>(
      files, OdDbReadOptions{OdDbStoreOpenMode::kReadOnly, /*withUndo=*/false});
}
