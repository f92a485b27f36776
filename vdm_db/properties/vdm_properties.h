// VdmProperties: the property bag, a map from string keys to typed values.
#pragma once

#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/dxf_filer.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_property_data.h"
#include "vdm_db/properties/vdm_property_slots.h"
#include "vdm_db/properties/vdm_property_types.h"

class OdDbDatabase;
class OdDbObject;
class VdmPropertiesIterator;
class VdmPropertyShape;
struct VdmPropertyShapeStep;

// Properties in key order (case-sensitive, by characters), with a configuration word and a format
// version. Values are objects that can be shared by pointer (VdmPropertyData); the bag makes the
// object of a plain value or an array only when a caller asks for its pointer. A bag that holds
// mappings is a member of the object it maps. A bag follows the open state of its owner and belongs
// to one thread at a time. It must not outlive the module.
//
// 1. Operations answer an absent key, or a value of another type, with false and change nothing.
// 2. A copy of a bag shares the value objects, mappings included: what is set through one is seen
//    through the other.
// 3. A value set through the bag is stored in value() of what is there. Behind a getter-setter
//    mapping that is the cached copy, which the setter does not hear of; use getProperty(key) and
//    VdmPropertyData::set to reach the setter.
class VDM_DB_EXPORT VdmProperties {
 public:
  // Bits of the configuration word.
  enum Config {
    // In a drawing file an id of an erased object is filed as null, and left out of an array.
    kDropErasedIds = 1,
    // Only values that are out of date are filed; reading resets what the stream does not hold.
    kSparse = 2,
  };

  using Iterator = VdmPropertiesIterator;
  using const_iterator = VdmPropertiesIterator;

  VdmProperties() noexcept;
  explicit VdmProperties(int config) noexcept;
  VdmProperties(const VdmProperties& other);
  VdmProperties(VdmProperties&& other) noexcept;
  VdmProperties& operator=(const VdmProperties& other);
  VdmProperties& operator=(VdmProperties&& other) noexcept;
  ~VdmProperties();

  // ---- The bag as a whole

  [[nodiscard]] int config() const noexcept { return m_config; }
  // Const, so that the owner of a bag can file it in another way.
  void setConfig(int config) const noexcept { m_config = config; }
  [[nodiscard]] int version() const noexcept { return m_version; }
  // Stores the low byte.
  void setVersion(int version) noexcept { m_version = static_cast<signed char>(version); }

  [[nodiscard]] bool isEmpty() const noexcept { return m_slots.size() == 0; }
  [[nodiscard]] OdUInt32 size() const noexcept { return m_slots.size(); }
  void clear();

  // Pairs of key and VdmPropertyDataPtr in key order. The pairs refer into the bag; they and the
  // iterators are valid until it changes.
  [[nodiscard]] Iterator begin() const;
  [[nodiscard]] Iterator end() const;

  // ---- Values as objects

  // Null when the key is absent.
  VdmPropertyDataPtr getProperty(const OdString& key) const;
  // Replaces what was there, whatever its type; a null pointer removes the key.
  bool setProperty(const OdString& key, const VdmPropertyDataPtr& value);
  bool removeProperty(const OdString& key);
  [[nodiscard]] bool hasProperty(const OdString& key) const;

  // ---- Values by type, of any type of vdm_property_types.h

  // Creates the property, or stores into one of the same type.
  template <VdmPropertyValue T>
  bool setProperty(const OdString& key, const T& value);
  template <VdmPropertyValue T>
  bool getProperty(const OdString& key, T& value) const;

  // Typed ids by their parts; reading gives the ids without their reference types.
  bool setProperty(const OdString& key, const OdDbObjectId& id, OdDb::ReferenceType type);
  bool getProperty(const OdString& key, OdDbObjectId& id) const;
  bool setProperty(const OdString& key, const OdDbObjectIdArray& ids, OdDb::ReferenceType type);
  bool getProperty(const OdString& key, OdDbObjectIdArray& ids) const;

  // ---- Mapping of members. True always.
  //
  // A value under the key is copied into the variable (or passed to the setter) when its type is T.
  // In either case the key then refers to the variable.

  template <VdmPropertyValue T>
  bool mapProperty(const OdString& key, T* variable);
  template <VdmPropertyValue T>
  bool mapProperty(const OdString& key, T* variable, const std::type_identity_t<T>& defaultValue);
  // T is to be given: mapProperty<double>(key, getter, setter).
  template <VdmPropertyValue T>
  bool mapProperty(const OdString& key, std::function<T()> getter, std::function<void(T)> setter);
  template <VdmPropertyValue T>
  bool mapProperty(const OdString& key, std::function<T()> getter, std::function<void(T)> setter,
                   const std::type_identity_t<T>& defaultValue);
  bool mapProperty(const OdString& key, OdDbObjectId* id, OdDb::ReferenceType type);
  bool mapProperty(const OdString& key, OdDbObjectIdArray* ids, OdDb::ReferenceType type);
  // Changes the type of a mapped array of ids. A missing key is created with a null pointer; any
  // other value is left alone.
  void setReferenceType(const OdString& key, OdDb::ReferenceType type);

  // ---- Filing; vdm_properties_wire.cpp gives the form

  void dwgOutFields(OdDbDwgFiler* filer) const;
  // Keeps mapped properties, which are filled in place, and drops all others first. 1 for a version
  // that is not accepted, 83 for damaged data; what was read until then stays. Errors of the filer
  // pass through.
  OdResult dwgInFields(OdDbDwgFiler* filer);
  // One property alone, or that it is absent: what an owner files as a partial undo step before it
  // changes that property, and reads back.
  void dwgOutProperty(OdDbDwgFiler* filer, const OdString& key) const;
  OdResult dwgInProperty(OdDbDwgFiler* filer, const OdString& key);
  void dxfOutFields(OdDbDxfFiler* filer) const;
  OdResult dxfInFields(OdDbDxfFiler* filer);

  // Extended data of the application "VDM_DB", or the extension dictionary from 16000 bytes up; an
  // empty bag removes both. The object is open for write; nothing happens when it is null or in no
  // database. Raises OdError(eLimitExceeded), nothing being changed, for a text that could not be
  // read back (32768 bytes or more).
  void writeToDbObject(OdDbObject* object) const;
  // False when there is nothing to read or it cannot be read.
  bool readFromDbObject(const OdDbObject* object);
  // Id of the registered application, null when it is absent or there is no database.
  static OdDbObjectId regAppName(OdDbDatabase* database, bool create);

 private:
  friend class VdmPropertiesIterator;
  friend class VdmPropertiesReader;
  friend class VdmPropertiesWriter;

  OdUInt32 findSlot(const OdString& key) const;
  void makeRoom();
  // The slot of a new key, null as yet; the key is that of the step, which leads on from m_shape.
  OdUInt32 addSlot(const OdString& key);
  OdUInt32 takeStep(const VdmPropertyShapeStep& step);
  OdUInt32 findOrAddSlot(const OdString& key);
  void removeSlot(OdUInt32 slot);
  const OdString& keyOfSlot(OdUInt32 slot) const;
  OdUInt32 slotAt(OdUInt32 position) const;
  bool isMappedSlot(OdUInt32 slot) const;
  void boxAll() const;
  template <class T, class SlotOf>
  void putValue(const T& value, SlotOf slotOf);
  // Takes over the mapping, in place of the key's value.
  void mapTo(const OdString& key, VdmPropertyData* mapping);

  const VdmPropertyShape* m_shape = nullptr;
  mutable VdmPropertySlots m_slots;  // in key order while the shape is shared
  mutable int m_config = 0;
  signed char m_version = 0;
};

// Walks a bag in key order.
class VDM_DB_EXPORT VdmPropertiesIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = std::pair<const OdString&, const VdmPropertyDataPtr&>;
  using difference_type = std::ptrdiff_t;
  using reference = value_type;
  // Holds the pair for operator->.
  struct pointer {
    value_type pair;
    const value_type* operator->() const { return &pair; }
  };

  VdmPropertiesIterator() = default;
  VdmPropertiesIterator(const VdmProperties* bag, OdUInt32 position)
      : m_bag(bag), m_position(position) {}

  value_type operator*() const;
  pointer operator->() const { return {**this}; }
  VdmPropertiesIterator& operator++() {
    ++m_position;
    return *this;
  }
  VdmPropertiesIterator operator++(int) {
    VdmPropertiesIterator before = *this;
    ++m_position;
    return before;
  }
  friend bool operator==(const VdmPropertiesIterator& a, const VdmPropertiesIterator& b) {
    return a.m_position == b.m_position && a.m_bag == b.m_bag;
  }

 private:
  const VdmProperties* m_bag = nullptr;
  OdUInt32 m_position = 0;
};
