// The stored form of a property bag in a stream and in DXF.
//
//   field            primitive   meaning
//   count            wrInt32     entries that follow, the version entry included
//   version entry, when the bag's version is above 0:
//     key            wrString    "_ver"
//     type           wrInt8      6
//     version        wrInt8      the bag's version byte
//   each property, in key order:
//     key            wrString
//     type           wrInt8      VdmPropertyType
//     value          by type     see vdm_property_encoding.h
//
// In sparse filing (VdmProperties::kSparse) properties that are not out of date are neither counted
// nor written. A null pointer under a key is not filed.
//
// A bag of version 3 with the OdLong 7 under "a" and the text "hi" under "b", through a
// VdmFlatFiler:
//
//   03 00 00 00                            count
//   04 00 5F 76 65 72   06   03            "_ver", 6, 3
//   01 00 61            03   07 00 00 00   "a", 3, 7
//   01 00 62            02   02 00 68 69   "b", 2, "hi"
#include <algorithm>
#include <array>
#include <vector>

#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_property_encoding.h"
#include "vdm_db/properties/vdm_property_shape.h"
#include "vdm_db/properties/vdm_trans_dwg_filer.h"
#include "vdm_utils/vdmc_assert.h"

VDM_DECLARE_ENCODINGS

namespace {

constexpr OdInt8 kVersionType = static_cast<OdInt8>(VdmPropertyType::kInt8);
// A bag of version 0 takes files of one version ahead.
constexpr int kVersionAccepted = 1;

// The group that leads a bag in DXF. The reader takes another value than the writer puts, so that
// bags do not come in through DXF.
constexpr int kDxfMarkGroup = 280;
constexpr OdUInt8 kDxfMarkWritten = 255;
constexpr OdUInt8 kDxfMarkRead = 1;

}  // namespace

// ---- Writing

class VdmPropertiesWriter {
 public:
  VdmPropertiesWriter(const VdmProperties& bag, OdDbDwgFiler* filer)
      : m_bag(bag), m_filer(filer), m_config(bag.config()) {}

  void write() {
    selectSlots();
    const bool hasVersion = m_bag.version() > 0;
    m_filer->wrInt32(static_cast<OdInt32>(m_count + (hasVersion ? 1 : 0)));
    if (hasVersion) writeVersion();
    for (OdUInt32 i = 0; i < m_count; ++i) writeProperty(m_selected[i]);
  }

 private:
  // Asks each value once whether it is to be filed.
  void selectSlots() {
    if (m_bag.size() > m_few.size()) {
      m_many.resize(m_bag.size());
      m_selected = m_many.data();
    }
    for (OdUInt32 position = 0; position < m_bag.size(); ++position) {
      const OdUInt32 slot = m_bag.slotAt(position);
      if (isFiled(slot)) m_selected[m_count++] = slot;
    }
  }
  [[nodiscard]] bool isFiled(OdUInt32 slot) const {
    if (m_bag.m_slots.isNull(slot)) return false;
    return (m_config & VdmProperties::kSparse) == 0 || !m_bag.m_slots.isBoxed(slot) ||
           m_bag.m_slots.boxed(slot)->isOutOfDate();
  }
  void writeVersion() {
    m_filer->wrString(kVdmVersion);
    m_filer->wrInt8(kVersionType);
    m_filer->wrInt8(static_cast<OdInt8>(m_bag.version()));
  }
  void writeProperty(OdUInt32 slot) {
    m_filer->wrString(m_bag.keyOfSlot(slot));
    writeValue(slot);
  }

 public:
  // Type byte and value of a slot that is not null.
  void writeValue(OdUInt32 slot) {
    if (m_bag.m_slots.isBoxed(slot)) {
      m_bag.m_slots.boxed(slot)->writeToDwg(m_filer, m_config);
      return;
    }
    m_bag.m_slots.visitType(slot, [&]<class T>() {
      m_filer->wrInt8(static_cast<OdInt8>(VdmPropertyTypeInfo<T>::Id));
      writeSlot<T>(slot);
    });
  }

 private:
  // A bag that is filed keeps what it holds as bytes.
  template <class T>
  void writeSlot(OdUInt32 slot) {
    if constexpr (VdmPackedValue<T>) {
      if (m_bag.m_slots.isPacked(slot)) {
        return VdmPropertyEncoding<T>::write(m_filer, m_bag.m_slots.unpacked<T>(slot), m_config);
      }
    }
    VdmPropertyEncoding<T>::write(m_filer, m_bag.m_slots.get<T>(slot), m_config);
  }

  const VdmProperties& m_bag;
  OdDbDwgFiler* m_filer;
  int m_config;
  // The slots that are filed, in key order: here, or for a large bag in a vector.
  std::array<OdUInt32, 64> m_few;
  std::vector<OdUInt32> m_many;
  OdUInt32* m_selected = m_few.data();
  OdUInt32 m_count = 0;
};

void VdmProperties::dwgOutFields(OdDbDwgFiler* filer) const {
  VdmPropertiesWriter(*this, filer).write();
}

// ---- Reading

// Reading one bag from a stream. Mapped properties keep their mappings and are filled in place; all
// others are dropped first and made anew. A setter of a mapping may change the bag while it is
// read, so nothing is remembered across entries: each entry finds its slot by its key, and a boxed
// value is held by a pointer of its own while it is read.
//
// Bags of a drawing are mostly alike, so the reader follows the steps that the last bag of this
// kind took: while the keys arrive as expected, an entry costs one comparison of a key and no
// look-up. Texts and arrays of numbers from a drawing file stay packed bytes until they are asked
// for. Counts are compared with the bytes that are left; what is read before an error stays in the
// bag.
class VdmPropertiesReader {
 public:
  VdmPropertiesReader(VdmProperties& bag, OdDbDwgFiler* filer)
      : m_bag(bag),
        m_filer(filer),
        m_config(bag.config()),
        m_isSparse((m_config & VdmProperties::kSparse) != 0) {}

  OdResult read() {
    dropUnmapped();
    m_packs = m_bag.isEmpty() && m_filer->filerType() == OdDbDwgFiler::kFileFiler;
    const OdInt32 count = m_filer->rdInt32();
    if (count > 0) {
      const OdResult result = readEntries(static_cast<OdUInt32>(count));
      if (result != eOk) return result;
    }
    return m_isSparse ? resetMissing() : eOk;
  }

  // Puts a value in place of the key's; a mapped one is filled.
  bool replace(const OdString& key) {
    const OdUInt32 slot = m_bag.findSlot(key);
    if (slot == VdmPropertyShape::kNoSlot) return readNew(key);
    if (m_bag.isMappedSlot(slot)) return readInPlace(slot);
    m_bag.removeSlot(slot);
    return readNew(key);
  }

 private:
  using Step = VdmPropertyShape::Step;
  // A key and a type byte.
  static constexpr OdUInt32 kMinEntryBytes = 2;
  // A count that the filer cannot check reserves no more than this.
  static constexpr OdUInt32 kMaxReserve = 1024;
  // The packed bytes of a longer value, which stay in the block after it is asked for, would weigh
  // more than an object of its own costs.
  static constexpr OdUInt32 kMaxPackedBytes = 512;

  void dropUnmapped() {
    OdUInt32 mapped = 0;
    for (OdUInt32 slot = 0; slot < m_bag.size(); ++slot) {
      if (m_bag.isMappedSlot(slot)) ++mapped;
    }
    if (mapped == m_bag.size()) return;
    if (mapped == 0) return m_bag.clear();
    for (OdUInt32 slot = m_bag.size(); slot-- > 0;) {
      if (!m_bag.isMappedSlot(slot)) m_bag.removeSlot(slot);
    }
  }

  OdResult readEntries(OdUInt32 count) {
    if (count > m_filer->bytesLeft() / kMinEntryBytes) return eCorruptData;
    m_bag.m_slots.reserve(std::max(m_bag.size(), std::min(count, kMaxReserve)));
    for (; count > 0; --count) {
      const OdResult result = readEntry();
      if (result != eOk) return result;
    }
    return eOk;
  }

  // Bags of one kind hold the same keys one after the other, so that the next one is mostly known.
  OdResult readEntry() {
    const Step* likely = VdmPropertyShape::likelyStep(m_bag.m_shape);
    const OdString key = likely == nullptr ? m_filer->rdKey() : m_filer->rdKeyLike(likely->key);
    if (key.isEmpty()) return skipValue();
    if (key == kVdmVersion) return checkVersion();
    if (!readValue(key, likely)) return eCorruptData;
    if (m_isSparse) m_keysRead.push_back(key);
    return eOk;
  }

  bool readValue(const OdString& key, const Step* likely) {
    if (likely != nullptr && likely->key == key) {
      return readNew([&] { return m_bag.takeStep(*likely); });
    }
    const OdUInt32 slot = findSlot(key);
    return slot == VdmPropertyShape::kNoSlot ? readNew(key) : readInPlace(slot);
  }

  OdResult skipValue() {
    return VdmPropertyData::createFromDwg(m_filer, m_config).isNull() ? eCorruptData : eOk;
  }

  // The version of the file is tested and not kept.
  OdResult checkVersion() {
    if (m_filer->rdInt8() != kVersionType) return eNotApplicable;
    const OdInt8 fileVersion = m_filer->rdInt8();
    const int bagVersion = m_bag.version();
    const bool isAbove = bagVersion == 0 ? fileVersion > kVersionAccepted
                                         : bagVersion > 0 && fileVersion > bagVersion;
    return isAbove ? eNotApplicable : eOk;
  }

  [[nodiscard]] OdUInt32 findSlot(const OdString& key) const {
    const VdmPropertyShape* shape = m_bag.m_shape;
    if (shape == nullptr || shape->isBehindAll(key)) return VdmPropertyShape::kNoSlot;
    return shape->find(key);
  }

  bool readNew(const OdString& key) {
    return readNew([&] { return m_bag.addSlot(key); });
  }

  // Into the slot that `makeSlot` gives once the value is read.
  template <class MakeSlot>
  bool readNew(MakeSlot makeSlot) {
    const OdInt8 number = m_filer->rdInt8();
    const auto put = [&]<class T>() {
      if constexpr (VdmPackedValue<T>) {
        if (readPacked<T>(makeSlot)) return;
      }
      T value{};
      VdmPropertyEncoding<T>::read(m_filer, value, m_config);
      m_bag.m_slots.put<T>(makeSlot(), std::move(value));
    };
    switch (const auto type = static_cast<VdmPropertyType>(number)) {
      case VdmPropertyType::kString:
      case VdmPropertyType::kLong:
      case VdmPropertyType::kDouble:
      case VdmPropertyType::kBool:
      case VdmPropertyType::kInt8:
      case VdmPropertyType::kHandle:
      case VdmPropertyType::kTypedId:
        vdmVisitPlainType(type, put);
        return true;
      case VdmPropertyType::kArray: {
        const auto elementType = static_cast<VdmPropertyType>(m_filer->rdInt8());
        if (!vdmIsElementType(elementType)) return false;
        vdmVisitElementType(elementType,
                            [&]<class E>() { put.template operator()<VdmArray<E>>(); });
        return true;
      }
      default:
        break;
    }
    const VdmPropertyDataPtr value = VdmPropertyData::createFromDwg(m_filer, m_config, number);
    if (value.isNull()) return false;
    m_bag.m_slots.putBoxed(makeSlot(), value);
    return true;
  }

  // False, nothing being read, where the value cannot be kept as bytes.
  template <VdmPackedValue T, class MakeSlot>
  bool readPacked(MakeSlot makeSlot) {
    if (!m_packs || m_bag.size() >= VdmPropertyShape::kMaxSharedKeys) return false;
    if constexpr (std::is_same_v<T, OdString>) {
      std::string_view text;
      if (!m_filer->rdStringBytes(text)) return false;
      if (text.size() <= kMaxPackedBytes) {
        pack<T>(makeSlot(), text);
      } else {
        m_bag.m_slots.put(makeSlot(), OdString::fromUtf8(text));
      }
    } else {
      readPackedArray<typename T::value_type>(makeSlot);
    }
    return true;
  }

  template <class E, class MakeSlot>
  void readPackedArray(MakeSlot makeSlot) {
    constexpr OdUInt32 kMaxPackedElements = kMaxPackedBytes / sizeof(E);
    const OdUInt32 count = m_filer->rdCount(VdmElementEncoding<E>::kMinBytes);
    if (count > kMaxPackedElements) {
      VdmArray<E> array;
      VdmValueEncoding<VdmArray<E>>::readElements(m_filer, array, count, m_config);
      return m_bag.m_slots.put(makeSlot(), std::move(array));
    }
    std::array<E, kMaxPackedElements> elements;
    for (OdUInt32 i = 0; i < count; ++i) {
      elements[i] = VdmElementEncoding<E>::read(m_filer, m_config);
    }
    pack<VdmArray<E>>(makeSlot(),
                      {reinterpret_cast<const char*>(elements.data()), count * sizeof(E)});
  }

  template <VdmPackedValue T>
  void pack(OdUInt32 slot, std::string_view bytes) {
    m_bag.m_slots.putPacked<T>(slot, bytes, m_packedBytes);
    m_packedBytes += static_cast<OdUInt32>(bytes.size());
  }

  bool readInPlace(OdUInt32 slot) {
    if (!vdmAssert(!m_bag.m_slots.isNull(slot), "!val.isNull()", OdString(),
                   "vdm_db/vdm_properties", 798)) {
      return false;
    }
    if (m_bag.m_slots.isBoxed(slot)) {
      const VdmPropertyDataPtr value = m_bag.m_slots.boxed(slot);
      return value->readFromDwg(m_filer, m_config);
    }
    return m_bag.m_slots.visitType(slot, [&]<class T>() {
      if (!readTypes<T>()) return false;
      T value{};
      VdmPropertyEncoding<T>::read(m_filer, value, m_config);
      m_bag.m_slots.set<T>(slot, std::move(value));
      return true;
    });
  }

  template <class T>
  bool readTypes() {
    const bool isRight = VdmPropertyEncoding<T>::readTypes(m_filer);
    // Of an array it is reported there.
    if (VdmPlainType<T> && !isRight) vdmReportWrongType("type == this->type()", 1450);
    return isRight;
  }

  // What a sparse stream does not hold has its default.
  OdResult resetMissing() {
    if (!std::is_sorted(m_keysRead.begin(), m_keysRead.end())) {
      std::sort(m_keysRead.begin(), m_keysRead.end());
    }
    for (OdUInt32 position = 0; position < m_bag.size(); ++position) {
      const OdUInt32 slot = m_bag.slotAt(position);
      if (std::binary_search(m_keysRead.begin(), m_keysRead.end(), m_bag.keyOfSlot(slot))) continue;
      if (!m_bag.m_slots.isBoxed(slot)) return eCorruptData;
      const VdmPropertyDataPtr value = m_bag.m_slots.boxed(slot);
      if (!value->reset()) return eCorruptData;
    }
    return eOk;
  }

  VdmProperties& m_bag;
  OdDbDwgFiler* m_filer;
  int m_config;
  bool m_isSparse;
  // Texts and arrays of a bag that comes from a drawing file, and held nothing, stay bytes.
  bool m_packs = false;
  OdUInt32 m_packedBytes = 0;
  std::vector<OdString> m_keysRead;
};

OdResult VdmProperties::dwgInFields(OdDbDwgFiler* filer) {
  return VdmPropertiesReader(*this, filer).read();
}

// ---- One property: whether it is there (wrBool), then its type byte and value

void VdmProperties::dwgOutProperty(OdDbDwgFiler* filer, const OdString& key) const {
  const OdUInt32 slot = findSlot(key);
  const bool isThere = slot != VdmPropertyShape::kNoSlot && !m_slots.isNull(slot);
  filer->wrBool(isThere);
  if (isThere) VdmPropertiesWriter(*this, filer).writeValue(slot);
}

OdResult VdmProperties::dwgInProperty(OdDbDwgFiler* filer, const OdString& key) {
  if (!filer->rdBool()) {
    removeProperty(key);
    return eOk;
  }
  return VdmPropertiesReader(*this, filer).replace(key) ? eOk : eCorruptData;
}

// ---- DXF

void VdmProperties::dxfOutFields(OdDbDxfFiler* filer) const {
  filer->wrUInt8(kDxfMarkGroup, kDxfMarkWritten);
  TransDwgFiler translator(filer);
  dwgOutFields(&translator);
}

OdResult VdmProperties::dxfInFields(OdDbDxfFiler* filer) {
  if (filer->nextItem() != kDxfMarkGroup || filer->rdUInt8() != kDxfMarkRead) return eNotApplicable;
  TransDwgFiler translator(filer);
  return dwgInFields(&translator);
}
