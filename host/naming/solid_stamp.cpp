// For which body the numbers of the references into a solid hold.
#include "host/naming/solid_stamp.h"

#include <cstring>

#include "host/naming/record_bytes.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/xrecord.h"

namespace vdm_host {

namespace {

constexpr const wchar_t* kKey = L"VDM_NAMING";
constexpr int kCode = 310;  // a binary chunk
constexpr unsigned kFrameRows = 3;
constexpr unsigned kFrameColumns = 4;
constexpr std::size_t kShortStamp = 8 + 4;  // fingerprint, operations
constexpr std::size_t kLongStamp = kShortStamp + kFrameRows * kFrameColumns * sizeof(double);

OdBinaryData stampBytes(const SolidStamp& stamp) {
  ByteWriter out;
  out.fixed(stamp.fingerprint, 8);
  out.fixed(stamp.operations, 4);
  if (stamp.frame != OdGeMatrix3d::kIdentity) {
    for (unsigned r = 0; r < kFrameRows; ++r) {
      for (unsigned c = 0; c < kFrameColumns; ++c) out.real(stamp.frame(r, c));
    }
  }
  const std::vector<char> bytes = out.take();
  OdBinaryData data;
  data.resize(static_cast<OdUInt32>(bytes.size()));
  std::memcpy(data.asArrayPtr(), bytes.data(), bytes.size());
  return data;
}

OdDbXrecordPtr stampRecord(const OdDbObjectId& solid, OdDb::OpenMode mode) {
  const OdDbObjectPtr object = solid.openObject();
  if (object.isNull()) return {};
  const OdDbDictionaryPtr dictionary = object->extensionDictionary().openAs<OdDbDictionary>();
  if (dictionary.isNull()) return {};
  return dictionary->getAt(kKey).openAs<OdDbXrecord>(mode);
}

OdDbXrecordPtr makeStampRecord(const OdDbObjectId& solid) {
  // Solids of external drawings are not written to: their numbers count as they are.
  const OdDbObjectPtr object = solid.openObject();
  if (object.isNull() || object->database()->isReadOnly()) return {};
  const OdDbOpenUpgrade upgrade(object);
  const OdDbDictionaryPtr dictionary =
      object->createExtensionDictionary().openAs<OdDbDictionary>(OdDb::kForWrite);
  if (dictionary.isNull()) return {};
  OdDbXrecordPtr record = OdDbXrecord::createObject();
  dictionary->setAt(kKey, record);
  return record;
}

}  // namespace

SolidStamp SolidStamp::read(const OdDbObjectId& solid) {
  SolidStamp stamp;
  const OdDbXrecordPtr record = stampRecord(solid, OdDb::kForRead);
  if (record.isNull()) return stamp;
  const OdResBufPtr chain = record->rbChain();
  if (chain.isNull() || chain->restype() != kCode) return stamp;
  const OdBinaryData& data = chain->getBinaryChunk();
  if (data.size() != kShortStamp && data.size() != kLongStamp) return stamp;
  ByteReader in(reinterpret_cast<const char*>(data.asArrayPtr()), data.size());
  stamp.fingerprint = in.fixed(8);
  stamp.operations = static_cast<OdUInt32>(in.fixed(4));
  if (data.size() == kShortStamp) return stamp;
  for (unsigned r = 0; r < kFrameRows; ++r) {
    for (unsigned c = 0; c < kFrameColumns; ++c) stamp.frame(r, c) = in.real();
  }
  return stamp;
}

void SolidStamp::write(const OdDbObjectId& solid) const {
  const OdBinaryData data = stampBytes(*this);
  OdDbXrecordPtr record = stampRecord(solid, OdDb::kForRead);
  if (record.isNull()) {
    record = makeStampRecord(solid);
  } else {
    const OdResBufPtr present = record->rbChain();
    if (!present.isNull() && present->restype() == kCode && present->getBinaryChunk() == data) {
      return;
    }
    record->upgradeOpen();
  }
  if (record.isNull()) return;
  const OdResBufPtr chain = OdResBuf::newRb(kCode);
  chain->setBinaryChunk(data);
  (void)record->setFromRbChain(chain);
}

}  // namespace vdm_host
