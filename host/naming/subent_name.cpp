// Naming a subentity by text or by a point.
#include "host/naming/subent_name.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;

struct TypeLetter {
  Type type;
  wchar_t letter;
};
constexpr TypeLetter kLetters[] = {{Type::kFace, L'f'}, {Type::kEdge, L'e'}, {Type::kVertex, L'v'}};

double distanceToBox(const OdGeExtents3d& box, const OdGePoint3d& p) {
  const auto beyond = [](double low, double high, double value) {
    return std::max({low - value, 0.0, value - high});
  };
  const OdGePoint3d& a = box.minPoint();
  const OdGePoint3d& b = box.maxPoint();
  return std::hypot(beyond(a.x, b.x, p.x), beyond(a.y, b.y, p.y), beyond(a.z, b.z, p.z));
}

/// The two nearest subentities of a type.
struct Nearest {
  OdModelerSubent first;
  OdModelerSubent second;
  double distance = std::numeric_limits<double>::infinity();
  double secondDistance = std::numeric_limits<double>::infinity();

  void offer(OdModelerSubent subent, double d) {
    if (d < distance) {
      second = first;
      secondDistance = distance;
      first = subent;
      distance = d;
    } else if (d < secondDistance) {
      second = subent;
      secondDistance = d;
    }
  }
};

Nearest nearestOf(const OdModelerBody& body, const OdGePoint3d& point, Type type,
                  double tolerance) {
  Nearest nearest;
  for (OdUInt32 i = 1; i <= body.numSubents(type); ++i) {
    const OdModelerSubent subent{type, i};
    // The box is cheap and never farther than the subentity itself.
    const double box = distanceToBox(body.subentExtents(subent), point);
    if (box > tolerance || box > nearest.secondDistance) continue;
    nearest.offer(subent, body.distanceTo(subent, point));
  }
  return nearest;
}

OdString text(const OdGePoint3d& p) {
  OdString s;
  s.format(L"(%g, %g, %g)", p.x, p.y, p.z);
  return s;
}

const wchar_t* surfaceName(OdModelerSurfaceKind kind) {
  static constexpr const wchar_t* kNames[] = {L"plane",  L"cylinder", L"cone",
                                              L"sphere", L"torus",    L"surface"};
  return kNames[static_cast<std::size_t>(kind)];
}

const wchar_t* curveName(OdModelerCurveKind kind) {
  static constexpr const wchar_t* kNames[] = {L"line", L"circle", L"ellipse", L"curve"};
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace

bool parseSubentName(const OdString& name, OdModelerSubent& subent) {
  const std::wstring s(name.c_str());
  constexpr std::size_t kMaxDigits = 9;
  if (s.size() < 3 || s.size() > 2 + kMaxDigits || s[1] != L'_') return false;
  const auto row = std::ranges::find(kLetters, s[0], &TypeLetter::letter);
  if (row == std::end(kLetters)) return false;
  OdUInt32 index = 0;
  for (const wchar_t c : s.substr(2)) {
    if (c < L'0' || c > L'9') return false;
    index = index * 10 + static_cast<OdUInt32>(c - L'0');
  }
  if (index == 0) return false;
  subent = {row->type, index};
  return true;
}

OdString subentName(OdModelerSubent subent) {
  const auto row = std::ranges::find(kLetters, subent.type, &TypeLetter::type);
  OdString name;
  name.format(L"%lc_%u", static_cast<wint_t>(row == std::end(kLetters) ? L'0' : row->letter),
              subent.index);
  return name;
}

OdStatus findSubentNear(const OdModelerBody& body, const OdGePoint3d& point, Type type,
                        double tolerance, OdModelerSubent& found) {
  OdStatus status{eInvalidInput, {}};
  if (!(tolerance > 0.0) || !std::isfinite(tolerance)) {
    status.text.format(L"point %ls: the tolerance is %g, it must be more than 0",
                       text(point).c_str(), tolerance);
    return status;
  }
  Nearest nearest;
  for (const Type candidate : {Type::kVertex, Type::kEdge, Type::kFace}) {
    if (type != Type::kNull && type != candidate) continue;
    nearest = nearestOf(body, point, candidate, tolerance);
    if (nearest.distance <= tolerance) break;
  }
  if (!(nearest.distance <= tolerance)) {
    status.text.format(L"point %ls: nothing lies within %g of it", text(point).c_str(), tolerance);
    return status;
  }
  if (nearest.secondDistance - nearest.distance < tolerance &&
      nearest.secondDistance <= tolerance) {
    status.text.format(L"point %ls: %ls at %g and %ls at %g are both within %g of it",
                       text(point).c_str(), subentName(nearest.first).c_str(), nearest.distance,
                       subentName(nearest.second).c_str(), nearest.secondDistance, tolerance);
    return status;
  }
  found = nearest.first;
  return {};
}

OdString describeSubent(const OdModelerBody& body, OdModelerSubent subent) {
  OdString s;
  if (!body.hasSubent(subent)) return s;
  if (subent.type == Type::kFace) {
    const OdModelerFace& face = body.face(subent.index);
    s.format(L"%ls area %g", surfaceName(face.kind), face.area);
    if (face.radius > 0.0) {
      s.format(L"%ls r %g area %g", surfaceName(face.kind), face.radius, face.area);
    }
  } else if (subent.type == Type::kEdge) {
    const OdModelerEdge& edge = body.edge(subent.index);
    s.format(L"%ls length %g", curveName(edge.kind), edge.length);
    if (edge.radius > 0.0) {
      s.format(L"%ls r %g length %g", curveName(edge.kind), edge.radius, edge.length);
    }
  } else {
    const OdGePoint3d& point = body.vertex(subent.index).point;
    s.format(L"point %ls", text(point).c_str());
  }
  return s;
}

}  // namespace vdm_host
