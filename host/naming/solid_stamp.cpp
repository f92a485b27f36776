// For which body the numbers of the references into a solid hold.
#include "host/naming/solid_stamp.h"

#include "host/naming/record_bytes.h"
#include "host/naming/solid_record.h"

namespace vdm_host {

namespace {

constexpr const wchar_t* kKey = L"VDM_NAMING";
constexpr unsigned kFrameRows = 3;
constexpr unsigned kFrameColumns = 4;
constexpr std::size_t kShortStamp = 8 + 4;  // fingerprint, operations
constexpr std::size_t kLongStamp = kShortStamp + kFrameRows * kFrameColumns * sizeof(double);

}  // namespace

SolidStamp SolidStamp::read(const OdDbObjectId& solid) {
  SolidStamp stamp;
  SolidRecord record;
  if (!record.readFrom(solid, kKey)) return stamp;
  const std::size_t size = record.bytes.size();
  if (size != kShortStamp && size != kLongStamp) return stamp;
  ByteReader in(record.bytes.data(), size);
  stamp.fingerprint = in.fixed(8);
  stamp.operations = static_cast<OdUInt32>(in.fixed(4));
  if (size == kShortStamp) return stamp;
  for (unsigned r = 0; r < kFrameRows; ++r) {
    for (unsigned c = 0; c < kFrameColumns; ++c) stamp.frame(r, c) = in.real();
  }
  return stamp;
}

void SolidStamp::write(const OdDbObjectId& solid) const {
  ByteWriter out;
  out.fixed(fingerprint, 8);
  out.fixed(operations, 4);
  if (frame != OdGeMatrix3d::kIdentity) {
    for (unsigned r = 0; r < kFrameRows; ++r) {
      for (unsigned c = 0; c < kFrameColumns; ++c) out.real(frame(r, c));
    }
  }
  SolidRecord record;
  record.bytes = out.take();
  record.writeTo(solid, kKey);
}

}  // namespace vdm_host
