// Fuzz target: solid bodies from their stored bytes.
//
// Input: one byte, even for a whole stored body and odd for the modeller's own bytes, which then
// get a sound envelope so that the checksum does not keep them from their reader.
//
// Geometry is read and written, and not asked for sizes or points: on parameters that are far off
// the modeller may work for a very long time.
#include "fuzz/fuzz_target.h"
#include "platform/modeler/body_envelope.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

OdModeler& modeler() {
  static const std::shared_ptr<OdModeler> modeler = odCreateOcctModeler();
  return *modeler;
}

FuzzInput bytesOf(const OdModelerBodyPtr& body) {
  OdBinaryData bytes;
  fuzzRequire(body->serialise(bytes).ok(), "a body cannot be written");
  return FuzzInput(bytes.cbegin(), bytes.cend());
}

OdBinaryData binary(const std::uint8_t* data, std::size_t size) {
  OdBinaryData bytes;
  bytes.reserve(static_cast<OdUInt32>(size));
  for (std::size_t i = 0; i < size; ++i) bytes.append(data[i]);
  return bytes;
}

OdBinaryData sealed(const std::uint8_t* geometry, std::size_t size) {
  OdModelerEnvelope envelope;
  envelope.geometry = {reinterpret_cast<const char*>(geometry), size};
  OdBinaryData bytes;
  odWriteEnvelope(envelope, bytes);
  return bytes;
}

OdModelerBodyPtr read(const OdBinaryData& bytes) {
  OdModelerBodyPtr body;
  const OdStatus status = modeler().deserialise(bytes, body);
  fuzzRequire(status.ok() == (body != nullptr), "status and body contradict each other");
  return body;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const bool isGeometry = (data[0] & 1) != 0;
  const OdModelerBodyPtr body =
      read(isGeometry ? sealed(data + 1, size - 1) : binary(data + 1, size - 1));
  if (body == nullptr) return 0;
  const FuzzInput first = bytesOf(body);
  const OdModelerBodyPtr again = read(binary(first.data(), first.size()));
  fuzzRequire(again != nullptr && bytesOf(again) == first, "a body is not stable");
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  OdModelerBodyPtr box;
  OdModelerBodyPtr cylinder;
  OdModelerBodyPtr torus;
  OdModelerBodyPtr drilled;
  bool made = modeler().box(10, 20, 30, box).ok();
  made = modeler().cylinder(4, 40, cylinder).ok() && made;
  made = modeler().torus(9, 2, torus).ok() && made;
  const OdModelerBodyPtr tools[] = {cylinder};
  made =
      made && modeler().boolean(OdModelerBooleanKind::kSubtract, box, tools, drilled, nullptr).ok();
  fuzzRequire(made, "the corpus cannot be made");
  std::vector<FuzzInput> corpus;
  for (const OdModelerBodyPtr& body : {box, cylinder, torus, drilled}) {
    const FuzzInput stored = bytesOf(body);
    OdModelerEnvelope envelope;
    fuzzRequire(odReadEnvelope(stored, envelope).ok(), "the envelope of a body is refused");
    FuzzInput whole{0};
    whole.insert(whole.end(), stored.begin(), stored.end());
    FuzzInput geometry{1};
    geometry.insert(geometry.end(), envelope.geometry.begin(), envelope.geometry.end());
    corpus.push_back(whole);
    corpus.push_back(geometry);
  }
  return corpus;
}
