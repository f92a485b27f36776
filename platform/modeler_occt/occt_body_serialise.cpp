// The stored form of a body.
#include <BinTools.hxx>
#include <locale>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

#include "platform/modeler/body_envelope.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/shape_form.h"

namespace od_occt {
namespace {

// Version 3 of the binary shape form is the last without stored normals, which bodies do not have.
constexpr BinTools_FormatVersion kShapeVersion = BinTools_FormatVersion_VERSION_3;

// A read-only stream over borrowed bytes, with the positions that the shape reader asks for.
class ViewBuffer : public std::streambuf {
 public:
  explicit ViewBuffer(std::string_view bytes) {
    // The standard library has no buffer over constant bytes. This one never writes: it overrides
    // neither overflow nor pbackfail, and has no put area.
    char* begin = const_cast<char*>(bytes.data());
    setg(begin, begin, begin + bytes.size());
  }

 protected:
  pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
    const char* base = from == std::ios_base::beg   ? eback()
                       : from == std::ios_base::cur ? gptr()
                                                    : egptr();
    return moveTo((base - eback()) + offset);
  }
  pos_type seekpos(pos_type position, std::ios_base::openmode) override {
    return moveTo(static_cast<off_type>(position));
  }

 private:
  pos_type moveTo(off_type offset) {
    if (offset < 0 || offset > egptr() - eback()) return pos_type(off_type(-1));
    setg(eback(), eback() + offset, egptr());
    return pos_type(offset);
  }
};

std::string writeShape(const TopoDS_Shape& shape) {
  std::ostringstream stream(std::ios::binary);
  stream.imbue(std::locale::classic());
  BinTools::Write(shape, stream, /*theWithTriangles=*/Standard_False,
                  /*theWithNormals=*/Standard_False, kShapeVersion);
  if (!stream) throw OdError(eModelerError, OdString(L"the shape could not be written"));
  return std::move(stream).str();
}

TopoDS_Shape readShape(std::string_view bytes) {
  ViewBuffer buffer(bytes);
  std::istream stream(&buffer);
  stream.imbue(std::locale::classic());
  TopoDS_Shape shape;
  BinTools::Read(shape, stream);
  if (!shape.IsNull()) normaliseFlags(shape);
  return shape;
}

// Reading scales directions to length 1 again, which may change their last bit: the stored form is
// one that reading and writing leave as it is. That takes one or two rounds; the limit is there for
// a value that would swing between two neighbours.
std::string stableBytes(const TopoDS_Shape& shape) {
  constexpr int kMaxRounds = 8;
  std::string bytes = writeShape(shape);
  for (int round = 0; round < kMaxRounds; ++round) {
    std::string again = writeShape(readShape(bytes));
    if (again == bytes) break;
    bytes = std::move(again);
  }
  return bytes;
}

OdStatus takeApart(const OdBinaryData& bytes, OdModelerEnvelope& envelope) {
  OdStatus status = odReadEnvelope({bytes.asArrayPtr(), bytes.size()}, envelope);
  if (status.ok() && envelope.engine != OdModelerEngine::kOpenCascade) {
    status.code = eUnsupportedVersion;
    status.text.format(L"stored body: modeller %u, this one is %u",
                       static_cast<unsigned>(envelope.engine),
                       static_cast<unsigned>(OdModelerEngine::kOpenCascade));
  }
  return status;
}

}  // namespace

OdStatus Body::serialise(OdBinaryData& bytes) const {
  return guarded("serialise", [&]() -> OdStatus {
    const std::scoped_lock lock(m_mutex);
    if (m_bytes.isEmpty()) {
      odWriteEnvelope({OdModelerEngine::kOpenCascade, m_attributes, stableBytes(m_shape)}, m_bytes);
    }
    bytes = m_bytes;
    return {};
  });
}

OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result) {
  return guarded("deserialise", [&]() -> OdStatus {
    OdModelerEnvelope envelope;
    if (OdStatus status = takeApart(bytes, envelope); !status.ok()) return status;
    if (OdStatus status = checkShapeForm(envelope.geometry); !status.ok()) return status;
    const TopoDS_Shape shape = readShape(envelope.geometry);
    if (shape.IsNull()) return {eCorruptData, OdString(L"stored body: there is no shape in it")};
    result = std::make_shared<const Body>(shape, std::move(envelope.attributes),
                                          BodyOrigin{false, bytes});
    return {};
  });
}

}  // namespace od_occt
