// Random edits that any object and the drawing itself take.
#include <iterator>

#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table_record.h"
#include "platform/db/dictionary.h"
#include "platform/db/drawing_settings.h"
#include "platform/db/regapp_table.h"
#include "tests/random/edit_context.h"

namespace {

OdDbObjectPtr writable(OdDbObjectId id) { return id.safeOpenObject(OdDb::kForWrite); }

bool eraseObject(const EditContext& context) {
  const OdDbObjectId id = context.pickAdded(OdDbObject::desc());
  // Extended data names its application for as long as there is any.
  if (id.isNull() || id.objectClass() == OdDbRegAppTableRecord::desc()) return false;
  return writable(id)->erase() == eOk;
}

bool uneraseObject(const EditContext& context) {
  const OdDbObjectId id = context.pickErased();
  if (id.isNull()) return false;
  const OdResult result =
      id.safeOpenObject(OdDb::kForWrite, /*openErased=*/true)->erase(/*erasing=*/false);
  if (result != eOk) return result == eDuplicateRecordName;
  // Its name may belong to another entry by now.
  const OdDbDictionaryPtr owner = OdDbDictionary::cast(writable(id.ownerId()));
  if (!owner.isNull() && !owner->has(id)) {
    owner->setAt(L"back " + id.getHandle().ascii(), id);
  }
  return true;
}

bool cloneObjects(const EditContext& context) {
  OdDbObjectIdArray ids;
  ids.append(context.pickAdded(OdDbObject::desc()));
  const OdDbObjectId owner = ids[0].ownerId();
  if (ids[0].isNull() || isExtensionDictionary(ids[0])) return false;
  for (int tries = 0; tries < 4; ++tries) {
    const OdDbObjectId more = context.pickAdded(ids[0].objectClass());
    if (more.ownerId() == owner && !ids.contains(more)) ids.append(more);
  }
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcCopy);
  return context.database()->deepCloneObjects(ids, owner, *mapping) == eOk;
}

bool addReactor(const EditContext& context) {
  const OdDbObjectId reactor = context.pick(OdDbObject::desc());
  writable(context.pick(OdDbObject::desc()))->addPersistentReactor(reactor);
  return true;
}

bool removeReactor(const EditContext& context) {
  const OdDbObjectPtr object = writable(context.pick(OdDbObject::desc()));
  const OdDbObjectIdArray reactors = object->getPersistentReactors();
  if (reactors.isEmpty()) return false;
  object->removePersistentReactor(
      reactors[static_cast<OdUInt32>(context.random().below(reactors.size()))]);
  return true;
}

bool setExtendedData(const EditContext& context) {
  static const OdString kApplications[] = {OdString("FIRST"), OdString("SECOND")};
  const OdString& application = kApplications[context.random().below(2)];
  context.database()->newRegApp(application);
  const OdDbObjectPtr object = writable(context.pick(OdDbObject::desc()));
  const OdResBufPtr chain = OdResBuf::newRb(OdResBuf::kDxfRegAppName, application);
  if (context.random().chance(75)) {  // alone it removes the application's data
    OdResBufPtr last = OdResBuf::newRb(OdResBuf::kDxfXdAsciiString, context.text());
    chain->setNext(last.get());
    last->setNext(
        OdResBuf::newRb(OdResBuf::kDxfXdHandle, context.pick(OdDbObject::desc()).getHandle())
            .get());
    last = chain->last();
    last->setNext(OdResBuf::newRb(OdResBuf::kDxfXdReal, context.random().coordinate()).get());
  }
  object->setXData(chain.get());
  return true;
}

bool setDrawingSetting(const EditContext& context) {
  const auto rows = OdDbDrawingSettings::rows();
  const OdDbSettingRow& row = rows[context.random().below(rows.size())];
  const OdString name(row.name);
  const OdResBufPtr value = context.database()->getSysVar(name);
  switch (row.kind) {
    case OdDbSettingRow::Kind::kBool:
      value->setBool(!value->getBool());
      break;
    case OdDbSettingRow::Kind::kDouble:
      value->setDouble(1.0 + context.random().coordinate() / 2000);
      break;
    case OdDbSettingRow::Kind::kHandle:
      value->setHandle(context.database()->getLayerZeroId().getHandle());
      break;
    default:
      value->setInt16(static_cast<OdInt16>(context.random().below(6)));  // some are refused
  }
  context.database()->setSysVar(name, value.get());
  return true;
}

constexpr EditRow kRows[] = {
    {"erase object", 8, eraseObject},
    {"unerase object", 4, uneraseObject},
    {"clone objects", 6, cloneObjects},
    {"add reactor", 4, addReactor},
    {"remove reactor", 2, removeReactor},
    {"set extended data", 5, setExtendedData},
    {"set drawing setting", 2, setDrawingSetting},
};

}  // namespace

std::span<const EditRow> objectEdits() { return kRows; }
