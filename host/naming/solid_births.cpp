// The births of a solid's faces, as they are kept with the solid.
#include "host/naming/solid_births.h"

#include "host/naming/record_bytes.h"
#include "host/naming/solid_record.h"
#include "platform/db/database.h"

namespace vdm_host {

namespace {

constexpr const wchar_t* kKey = L"VDM_BIRTHS";
constexpr OdUInt8 kRules = 1;

}  // namespace

SolidBirths SolidBirths::read(const OdDbObjectId& solid) {
  SolidRecord record;
  if (!record.readFrom(solid, kKey)) return {};
  ByteReader in(record.bytes.data(), record.bytes.size());
  SolidBirths births;
  births.fingerprint = in.fixed(8);
  if (in.byte() != kRules) return {};
  births.nextKey = in.number();
  const OdUInt32 numFaces = in.number();
  if (numFaces > record.bytes.size()) return {};
  std::vector<FaceBirths::Entry> entries;
  entries.reserve(numFaces);
  for (OdUInt32 face = 1; face <= numFaces; ++face) {
    const OdUInt32 count = in.number();
    for (OdUInt32 i = 0; i < count && in.good(); ++i) {
      const OdUInt32 maker = in.number();
      entries.push_back({face, {maker, in.number()}});
    }
  }
  if (!in.atEnd()) return {};
  births.faces = FaceBirths(std::move(entries), numFaces);
  births.makers = record.pointers;
  return births;
}

void SolidBirths::write(const OdDbObjectId& solid) const {
  constexpr std::size_t kPerFace = 4;  // bytes, most of them
  ByteWriter out(std::size_t{faces.numFaces()} * kPerFace);
  out.fixed(fingerprint, 8);
  out.byte(kRules);
  out.varint(nextKey);
  out.varint(faces.numFaces());
  for (OdUInt32 face = 1; face <= faces.numFaces(); ++face) {
    out.varint(faces.of(face).size());
    for (const FaceBirth& birth : faces.of(face)) {
      out.varint(birth.maker);
      out.varint(birth.key);
    }
  }
  SolidRecord record;
  record.bytes = out.take();
  record.pointers = makers;
  record.writeTo(solid, kKey);
}

void SolidBirths::begin(const OdModelerBody& body) {
  std::vector<FaceBirths::Entry> entries;
  entries.reserve(body.numFaces());
  for (OdUInt32 face = 1; face <= body.numFaces(); ++face) {
    entries.push_back({face, {0, nextKey++}});
  }
  faces = FaceBirths(std::move(entries), body.numFaces());
  fingerprint = body.fingerprint();
}

OdUInt32 SolidBirths::makerOf(const OdDbObjectId& solid, OdDbHandle feature) {
  for (OdUInt32 i = 0; i < makers.size(); ++i) {
    if (OdUInt64(makers[i].getHandle()) == OdUInt64(feature)) return i + 1;
  }
  makers.append(solid.database()->getOdDbObjectId(feature, /*createIfNotFound=*/true));
  return makers.size();
}

OdDbHandle SolidBirths::featureOf(OdUInt32 maker) const {
  if (maker == 0 || maker > makers.size()) return {};
  return makers[maker - 1].getHandle();
}

SolidBirths presentBirths(const OdDbObjectId& solid, const OdModelerBody& body) {
  SolidBirths births = SolidBirths::read(solid);
  if (births.areOf(body)) return births;
  births.begin(body);
  births.write(solid);
  return births;
}

}  // namespace vdm_host
