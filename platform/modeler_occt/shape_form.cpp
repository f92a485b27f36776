// A check of the binary shape form before its reader sees it.
//
// The checker is the grammar below, one function per rule, in one pass without going back. Each
// rule takes its bytes in order and refuses a value that the reader could not bear; nothing is
// allocated but one byte per part. It ends: every loop takes at least one byte per round, and a
// count is at most the number of bytes left. Rules that contain themselves (trimmed and offset
// geometry) nest kMaxNesting deep at the most.
//
// The form, version 3 without triangulations; numbers are little-endian, "int" has 4 bytes:
//
//   empty line, then the line kTitle
//   "Locations" n       n times: 1 and 12 doubles (three rows of a matrix), or
//                       2 and pairs of an earlier location and a power (ints), closed by int 0
//   "Curve2ds" n        n curves of the plane
//   "Curves" n          n curves of space
//   "Polygon3D" 0, "PolygonOnTriangulations" 0
//   "Surfaces" n        n surfaces
//   "Triangulations" 0
//   "TShapes" n         n parts, each after those that it is made of: kind, geometry, seven flags,
//                       uses of other parts, '*'
//   the use that is the whole shape
//
// A section is a line with its name and count, after an optional line break. A use is an
// orientation byte, the number of the part counted from the last one (int), and its location (int,
// 0 for none).
#include "platform/modeler_occt/shape_form.h"

#include <cmath>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

#include "platform/base/error.h"

namespace od_occt {
namespace {

constexpr std::string_view kTitle = "Open CASCADE Topology V3 (c)";
constexpr unsigned kMaxNesting = 8;  // of trimmed and offset geometry
constexpr unsigned kMaxDegree = 25;  // of splines, the modeller's own limit

enum Kind : OdUInt8 {
  kCompound,
  kCompSolid,
  kSolid,
  kShell,
  kFace,
  kWire,
  kEdge,
  kVertex,
  kNumKinds
};

constexpr unsigned bit(Kind kind) { return 1U << kind; }

// Kinds of parts that each kind may be made of.
constexpr unsigned kParts[kNumKinds] = {
    0xFF,
    bit(kSolid),
    bit(kShell) | bit(kEdge) | bit(kVertex),
    bit(kFace),
    bit(kWire) | bit(kVertex),
    bit(kEdge),
    bit(kVertex),
    bit(kVertex),
};

// Geometry of fixed size: leading lengths and directions, then sizes that must be above zero.
struct FixedRow {
  OdUInt8 type;
  unsigned vectors;    ///< points and directions
  unsigned positives;  ///< trailing sizes
  unsigned others;     ///< numbers in between
};

// Lines, circles, ellipses, parabolas, hyperbolas.
constexpr FixedRow kConics2d[] = {
    {1, 2, 0, 0}, {2, 3, 1, 0}, {3, 3, 2, 0}, {4, 3, 1, 0}, {5, 3, 2, 0}};
constexpr FixedRow kConics3d[] = {
    {1, 2, 0, 0}, {2, 4, 1, 0}, {3, 4, 2, 0}, {4, 4, 1, 0}, {5, 4, 2, 0}};
// Planes, cylinders, cones (radius may be 0, half angle any), spheres, tori.
constexpr FixedRow kQuadrics[] = {
    {1, 4, 0, 0}, {2, 4, 1, 0}, {3, 4, 0, 2}, {4, 4, 1, 0}, {5, 4, 2, 0}};

class FormChecker {
 public:
  explicit FormChecker(std::string_view bytes) : m_bytes(bytes) {}

  void run() {
    require(line().empty() && line() == kTitle, "title");
    m_locations = section("Locations");
    for (OdUInt32 i = 1; i <= m_locations; ++i) location(i);
    m_curves2d = section("Curve2ds");
    for (OdUInt32 i = 0; i < m_curves2d; ++i) curve(2, 0);
    m_curves3d = section("Curves");
    for (OdUInt32 i = 0; i < m_curves3d; ++i) curve(3, 0);
    require(section("Polygon3D") == 0, "polygons");
    require(section("PolygonOnTriangulations") == 0, "polygons");
    m_surfaces = section("Surfaces");
    for (OdUInt32 i = 0; i < m_surfaces; ++i) surface(0);
    require(section("Triangulations") == 0, "triangulations");
    m_numParts = section("TShapes");
    for (OdUInt32 i = 0; i < m_numParts; ++i) part();
    use(number<OdUInt8>(), 0xFF);
    require(m_at == m_bytes.size(), "bytes after the end");
  }

 private:
  [[noreturn]] void fail(const char* what) const {
    OdString text;
    text.format(L"shape: %ls at byte %u of %u", OdString(what).c_str(), static_cast<unsigned>(m_at),
                static_cast<unsigned>(m_bytes.size()));
    throw OdError(eCorruptData, text);
  }
  void require(bool holds, const char* what) const {
    if (!holds) fail(what);
  }

  // ---- Primitives.

  template <class T>
  T number() {
    require(m_bytes.size() - m_at >= sizeof(T), "end of data");
    T value;
    std::memcpy(&value, m_bytes.data() + m_at, sizeof(T));
    m_at += sizeof(T);
    return value;
  }
  double real() {
    const double value = number<double>();
    require(std::isfinite(value), "number that is not finite");
    return value;
  }
  double positive() {
    const double value = real();
    require(value > 0.0, "size that is not above zero");
    return value;
  }
  void reals(unsigned count) {
    for (unsigned i = 0; i < count; ++i) real();
  }
  bool flag() {
    const auto value = number<OdUInt8>();
    require(value <= 1, "flag that is neither 0 nor 1");
    return value != 0;
  }
  OdUInt32 index(OdUInt32 least, OdUInt32 greatest, const char* what) {
    const auto value = number<OdInt32>();
    require(value >= 0 && static_cast<OdUInt32>(value) >= least &&
                static_cast<OdUInt32>(value) <= greatest,
            what);
    return static_cast<OdUInt32>(value);
  }
  // A count of items of at least `size` bytes each.
  OdUInt32 count(OdUInt32 least, std::size_t size) {
    const auto value = number<OdInt32>();
    require(value >= 0 && static_cast<OdUInt32>(value) >= least &&
                static_cast<OdUInt32>(value) <= (m_bytes.size() - m_at) / size,
            "count that cannot be");
    return static_cast<OdUInt32>(value);
  }
  std::string_view line() {
    const std::size_t end = m_bytes.find('\n', m_at);
    require(end != std::string_view::npos && end - m_at < 100, "line without end");
    const std::string_view text = m_bytes.substr(m_at, end - m_at);
    m_at = end + 1;
    return text;
  }
  // The line of a section; each of its items takes a byte at least.
  OdUInt32 section(std::string_view name) {
    std::string_view text = line();
    if (text.empty()) text = line();
    require(text.size() > name.size() + 1 && text.starts_with(name) && text[name.size()] == ' ',
            "section name");
    std::size_t value = 0;
    for (const char c : text.substr(name.size() + 1)) {
      require(c >= '0' && c <= '9', "section count");
      value = value * 10 + static_cast<std::size_t>(c - '0');
      require(value <= m_bytes.size() - m_at, "section count");
    }
    return static_cast<OdUInt32>(value);
  }

  // ---- Locations.

  void location(OdUInt32 own) {
    const auto type = number<OdUInt8>();
    if (type == 1) return matrix();
    require(type == 2, "kind of location");
    constexpr OdInt32 kMaxPower = 1000;
    while (index(0, own - 1, "location that is not there") != 0) {
      const auto power = number<OdInt32>();
      require(power != 0 && std::abs(power) <= kMaxPower, "power of a location");
    }
  }

  // Locations move and turn, they do not scale.
  void matrix() {
    double m[12];
    for (double& value : m) value = real();
    const double det = m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
                       m[2] * (m[4] * m[9] - m[5] * m[8]);
    require(std::abs(std::abs(det) - 1.0) < 1e-6, "location that is not rigid");
  }

  // ---- Curves and surfaces.

  // A point, then directions.
  void vectors(unsigned dimension, unsigned howMany) {
    reals(dimension);
    for (unsigned v = 1; v < howMany; ++v) direction(dimension);
  }

  bool fixed(std::span<const FixedRow> rows, unsigned dimension, OdUInt8 type) {
    for (const FixedRow& row : rows) {
      if (row.type != type) continue;
      vectors(dimension, row.vectors);
      reals(row.others);
      for (unsigned i = 0; i < row.positives; ++i) positive();
      return true;
    }
    return false;
  }

  void curve(unsigned dimension, unsigned depth) {
    require(depth < kMaxNesting, "nesting");
    const auto type = number<OdUInt8>();
    if (fixed(dimension == 2 ? std::span(kConics2d) : std::span(kConics3d), dimension, type)) {
      return;
    }
    switch (type) {
      case 6:
        return bezierCurve(dimension);
      case 7:
        return splineCurve(dimension);
      case 8:
        range();
        return curve(dimension, depth + 1);
      case 9:
        real();
        if (dimension == 3) direction(3);
        return curve(dimension, depth + 1);
      default:
        fail("kind of curve");
    }
  }

  void direction(unsigned dimension) {
    double square = 0.0;
    for (unsigned i = 0; i < dimension; ++i) {
      const double value = real();
      square += value * value;
    }
    require(std::abs(square - 1.0) < 1e-3, "direction that is not of length 1");
  }

  void range() {
    const double first = real();
    require(first < real(), "empty range");
  }

  unsigned degree() {
    const auto value = number<OdUInt16>();
    require(value >= 1 && value <= kMaxDegree, "degree");
    return value;
  }

  void poles(unsigned dimension, std::size_t howMany, bool rational) {
    for (std::size_t i = 0; i < howMany; ++i) {
      reals(dimension);
      if (rational) positive();
    }
  }

  // Knots rise; their multiplicities fit the number of poles, which repeat when periodic.
  void knots(OdUInt32 howMany, unsigned degree, OdUInt32 numPoles, bool periodic) {
    double before = 0.0;
    OdUInt64 sum = 0;
    OdUInt32 last = 0;
    for (OdUInt32 i = 0; i < howMany; ++i) {
      const double knot = real();
      require(i == 0 || knot > before, "knots that do not rise");
      before = knot;
      const bool end = i == 0 || i + 1 == howMany;
      last = index(1, end && !periodic ? degree + 1 : degree, "multiplicity of a knot");
      sum += last;
    }
    require(periodic ? sum - last == numPoles : sum == OdUInt64{numPoles} + degree + 1,
            "knots that do not fit the poles");
  }

  void bezierCurve(unsigned dimension) {
    const bool rational = flag();
    poles(dimension, degree() + 1, rational);
  }

  void splineCurve(unsigned dimension) {
    const bool rational = flag();
    const bool periodic = flag();
    const unsigned d = degree();
    const OdUInt32 numPoles = count(2, 8 * dimension);
    const OdUInt32 numKnots = count(2, 12);
    poles(dimension, numPoles, rational);
    knots(numKnots, d, numPoles, periodic);
  }

  void surface(unsigned depth) {
    require(depth < kMaxNesting, "nesting");
    const auto type = number<OdUInt8>();
    if (fixed(kQuadrics, 3, type)) return;
    switch (type) {
      case 6:
        direction(3);
        return curve(3, depth + 1);
      case 7:
        vectors(3, 2);
        return curve(3, depth + 1);
      case 8:
        return bezierSurface();
      case 9:
        return splineSurface();
      case 10:
        range();
        range();
        return surface(depth + 1);
      case 11:
        real();
        return surface(depth + 1);
      default:
        fail("kind of surface");
    }
  }

  void bezierSurface() {
    const bool uRational = flag();
    const bool vRational = flag();
    const std::size_t u = degree() + 1;
    const std::size_t v = degree() + 1;
    poles(3, u * v, uRational || vRational);
  }

  void splineSurface() {
    const bool uRational = flag();
    const bool vRational = flag();
    const bool uPeriodic = flag();
    const bool vPeriodic = flag();
    const unsigned uDegree = degree();
    const unsigned vDegree = degree();
    const OdUInt32 uPoles = count(2, 24);
    const OdUInt32 vPoles = count(2, 24);
    const OdUInt32 uKnots = count(2, 12);
    const OdUInt32 vKnots = count(2, 12);
    const std::size_t room = (m_bytes.size() - m_at) / 24;
    require(uPoles <= room / vPoles, "count that cannot be");
    poles(3, std::size_t{uPoles} * vPoles, uRational || vRational);
    knots(uKnots, uDegree, uPoles, uPeriodic);
    knots(vKnots, vDegree, vPoles, vPeriodic);
  }

  // ---- Parts.

  void part() {
    const auto kind = number<OdUInt8>();
    require(kind < kNumKinds, "kind of part");
    if (kind == kVertex) vertex();
    if (kind == kEdge) edge();
    if (kind == kFace) face();
    for (int i = 0; i < 7; ++i) flag();
    for (auto mark = number<OdUInt8>(); mark != '*'; mark = number<OdUInt8>()) {
      use(mark, kParts[kind]);
    }
    m_kinds.push_back(static_cast<Kind>(kind));
  }

  // Parts count from the last one; only those before this one can be used.
  void use(OdUInt8 orientation, unsigned allowed) {
    require(orientation < 4, "orientation");
    const auto known = static_cast<OdUInt32>(m_kinds.size());
    require(known > 0, "use of a part that is not there");
    const OdUInt32 fromEnd =
        index(m_numParts - known + 1, m_numParts, "use of a part that is not there");
    require((allowed & bit(m_kinds[m_numParts - fromEnd])) != 0, "part of the wrong kind");
    location();
  }

  void location() { index(0, m_locations, "location that is not there"); }
  void curve2d() { index(1, m_curves2d, "curve that is not there"); }
  void surfaceIndex() { index(1, m_surfaces, "surface that is not there"); }
  void tolerance() { require(real() >= 0.0, "tolerance below zero"); }
  void continuity() { require(number<OdUInt8>() <= 6, "kind of continuity"); }

  void vertex() {
    tolerance();
    reals(3);
    for (auto kind = number<OdUInt8>(); kind != 0; kind = number<OdUInt8>()) {
      real();
      if (kind == 1) {
        index(1, m_curves3d, "curve that is not there");
      } else if (kind == 2) {
        curve2d();
        surfaceIndex();
      } else {
        require(kind == 3, "kind of vertex place");
        real();
        surfaceIndex();
      }
      location();
    }
  }

  void edge() {
    tolerance();
    for (int i = 0; i < 3; ++i) flag();
    for (auto kind = number<OdUInt8>(); kind != 0; kind = number<OdUInt8>()) edgePlace(kind);
  }

  void edgePlace(OdUInt8 kind) {
    switch (kind) {
      case 1:
        index(1, m_curves3d, "curve that is not there");
        location();
        return range();
      case 2:
      case 3:
        curve2d();
        if (kind == 3) {
          curve2d();
          continuity();
        }
        surfaceIndex();
        location();
        range();
        return reals(4);
      case 4:
        continuity();
        for (int i = 0; i < 2; ++i) {
          surfaceIndex();
          location();
        }
        return;
      default:
        fail("kind of edge place");
    }
  }

  void face() {
    flag();
    tolerance();
    surfaceIndex();
    location();
    require(number<OdUInt8>() <= 1, "triangulation of a face");
  }

  std::string_view m_bytes;
  std::size_t m_at = 0;
  OdUInt32 m_locations = 0;
  OdUInt32 m_curves2d = 0;
  OdUInt32 m_curves3d = 0;
  OdUInt32 m_surfaces = 0;
  OdUInt32 m_numParts = 0;
  std::vector<Kind> m_kinds;  // of the parts read so far
};

}  // namespace

OdStatus checkShapeForm(std::string_view bytes) {
  try {
    FormChecker(bytes).run();
    return {};
  } catch (const OdError& error) {
    return {error.code(), error.description()};
  }
}

}  // namespace od_occt
