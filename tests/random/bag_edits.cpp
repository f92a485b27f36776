// Random edits of property bags: as objects of their own and beside other objects.
#include <iterator>
#include <map>

#include "platform/db/dictionary.h"
#include "tests/random/edit_context.h"
#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_properties.h"

namespace {

// Ids point and do not own: what a bag owned would have two owners.
OdDbTypedId typedId(const EditContext& context) {
  const bool isHard = context.random().chance(30);
  return {context.pick(OdDbObject::desc()), isHard ? OdDb::kHardPointerRef : OdDb::kSoftPointerRef};
}

VdmBlob blob(const EditContext& context, std::size_t size) {
  VdmBlob bytes(size);
  for (char& byte : bytes) byte = static_cast<char>(context.random().next());
  return bytes;
}

// A value of any type under the key; one of another type that stands there is replaced.
bool setValue(const EditContext& context, VdmProperties& bag, const OdString& key) {
  RandomSource& random = context.random();
  bag.removeProperty(key);
  switch (random.below(12)) {
    case 0:
      return bag.setProperty(key, context.text());
    case 1:
      return bag.setProperty(key, static_cast<OdLong>(random.next()));
    case 2:
      return bag.setProperty(key, random.coordinate());
    case 3:
      return bag.setProperty(key, random.chance(50));
    case 4:
      return bag.setProperty(key, static_cast<signed char>(random.next()));
    case 5:
      return bag.setProperty(key, context.pick(OdDbObject::desc()).getHandle());
    case 6: {
      const OdDbTypedId id = typedId(context);
      return bag.setProperty(key, id.id, id.type);
    }
    case 7:
      return bag.setProperty(key, VdmDoubleArray{0.5, random.coordinate()});
    case 8: {
      VdmTypedIdArray ids;
      for (std::size_t count = random.below(4); count > 0; --count) ids.append(typedId(context));
      return bag.setProperty(key, ids);
    }
    case 9:
      return bag.setProperty(key,
                             std::map<OdString, OdDbTypedId>{{context.name(), typedId(context)},
                                                             {context.name(), typedId(context)}});
    case 10: {
      VdmPropertyArray values;
      values.append(VdmPropertyData::create(context.text()));
      values.append(VdmPropertyDataPtr());
      values.append(VdmPropertyData::create(VdmStringArray{context.name(), OdString()}));
      return bag.setProperty(key, values);
    }
    default:
      return bag.setProperty(key, blob(context, random.below(40)));
  }
}

bool addBagObject(const EditContext& context) {
  const OdDbObjectId home = context.pickDictionary();
  const VdmDbExtensionDataPtr object = VdmDbExtensionData::createObject();
  VdmProperties& bag = object->propertiesForWrite();
  for (std::size_t count = context.random().below(5); count > 0; --count) {
    setValue(context, bag, context.name());
  }
  home.safeOpenAs<OdDbDictionary>(OdDb::kForWrite)->setAt(context.name(), object);
  return true;
}

bool changeBagObject(const EditContext& context) {
  const OdDbObjectId id = context.pick(VdmDbExtensionData::desc());
  if (id.isNull()) return false;
  const VdmDbExtensionDataPtr object = id.safeOpenAs<VdmDbExtensionData>(OdDb::kForWrite);
  VdmProperties& bag = object->propertiesForWrite();
  if (!bag.isEmpty() && context.random().chance(30)) {
    const OdString key = (*bag.begin()).first;
    bag.removeProperty(key);
    return true;
  }
  return setValue(context, bag, context.name());
}

// Beside an object: in its extended data, or above a size in its extension dictionary.
bool writeBag(const EditContext& context) {
  VdmProperties bag;
  for (std::size_t count = 1 + context.random().below(4); count > 0; --count) {
    setValue(context, bag, context.name());
  }
  if (context.random().chance(8)) bag.setProperty(L"large", blob(context, 16000));
  const OdDbObjectId id = context.pick(OdDbObject::desc());
  bag.writeToDbObject(id.safeOpenObject(OdDb::kForWrite).get());
  return true;
}

bool removeBag(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbObject::desc());
  VdmProperties bag;
  if (!bag.readFromDbObject(id.safeOpenObject().get())) return false;
  VdmProperties().writeToDbObject(id.safeOpenObject(OdDb::kForWrite).get());
  return true;
}

constexpr EditRow kRows[] = {
    {"add bag object", 6, addBagObject},
    {"change bag object", 6, changeBagObject},
    {"write bag", 6, writeBag},
    {"remove bag", 4, removeBag},
};

}  // namespace

std::span<const EditRow> bagEdits() { return kRows; }
