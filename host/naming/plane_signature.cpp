// The signature of a planar face from its edges, without the modeller's integrals.
//
// The idea: by Green's theorem the area and the first moments of a plane region are sums over its
// boundary. A line adds the triangle between the origin and its ends, an arc adds that and the
// piece between itself and its chord; both have closed forms.
//
// The edges of a face come in no order and in no direction. Loops are put together by walking from
// vertex to vertex. The precondition is that exactly two edges end at each vertex: then each walk
// has one way to go on, uses every edge once and comes back to where it began. Faces that touch
// themselves in a vertex do not have that, and are refused. A loop is turned to run around a
// positive area. The largest loop bounds the face and all others are holes in it, because the
// loops of one face do not cross and a face is connected.
//
// Right without knowing the surface, since every edge is held against the known plane. The cost is
// linear in the number of edges, about a microsecond where the modeller takes 20 for each edge.
#include "host/naming/plane_signature.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/naming/body_signature.h"

namespace vdm_host {

namespace {

struct Point {
  double x = 0.0;
  double y = 0.0;
};

/// Area and first moments, about the origin of the plane's coordinates.
struct Moments {
  double area = 0.0;
  double x = 0.0;
  double y = 0.0;

  void add(double part, Point centroid) {
    area += part;
    x += part * centroid.x;
    y += part * centroid.y;
  }
  void add(const Moments& other, double sign) {
    area += sign * other.area;
    x += sign * other.x;
    y += sign * other.y;
  }
};

/// A plane with coordinates of its own, and whether points lie in it.
class PlaneFrame {
 public:
  PlaneFrame(const OdGePoint3d& origin, const OdGeVector3d& normal)
      : m_origin(origin),
        m_normal(normal),
        m_tolerance(MatchTolerance::lengthAt(origin.asVector().length())) {
    const bool isUpright = std::abs(normal.z) < 0.9;
    m_u = (isUpright ? OdGeVector3d::kZAxis : OdGeVector3d::kXAxis).crossProduct(normal).normal();
    m_v = normal.crossProduct(m_u);
  }

  [[nodiscard]] bool holds(const OdGePoint3d& point) const {
    return std::abs(m_normal.dotProduct(point - m_origin)) <= m_tolerance;
  }
  [[nodiscard]] bool holdsCircle(const OdModelerEdge& edge) const {
    return holds(edge.center) &&
           m_normal.crossProduct(edge.axis).length() * edge.radius <= m_tolerance;
  }
  [[nodiscard]] Point at(const OdGePoint3d& point) const {
    const OdGeVector3d offset = point - m_origin;
    return {m_u.dotProduct(offset), m_v.dotProduct(offset)};
  }
  [[nodiscard]] OdGePoint3d point(Point p) const { return m_origin + m_u * p.x + m_v * p.y; }

 private:
  OdGePoint3d m_origin;
  OdGeVector3d m_normal;
  double m_tolerance;
  OdGeVector3d m_u;
  OdGeVector3d m_v;
};

/// From `from` to `to`, turning by `sweep` around the centre; a line has no radius.
struct Segment {
  Point from;
  Point to;
  Point centre;
  Point middle;
  double radius = 0.0;
  double sweep = 0.0;
};

// Radians from 0 up to a whole turn.
double turnFrom(double begin, double end) {
  const double turn = end - begin;
  return turn < 0.0 ? turn + 2.0 * std::numbers::pi : turn;
}

double angleAt(Point centre, Point p) { return std::atan2(p.y - centre.y, p.x - centre.x); }

// The way round that passes the middle of the arc.
double sweepOf(const Segment& arc) {
  const double begin = angleAt(arc.centre, arc.from);
  const double turn = turnFrom(begin, angleAt(arc.centre, arc.to));
  const bool isForward = turnFrom(begin, angleAt(arc.centre, arc.middle)) < turn;
  return isForward ? turn : turn - 2.0 * std::numbers::pi;
}

// What the segment adds to the area that its loop runs around: the triangle between the origin and
// its ends, and for an arc the piece between it and its chord, whose area is r^2 (a - sin a) / 2
// and whose centroid lies 4 r sin^3(a / 2) / 3 (a - sin a) from the centre.
void addSegment(const Segment& segment, Moments& loop) {
  const Point a = segment.from;
  const Point b = segment.to;
  loop.add((a.x * b.y - b.x * a.y) / 2.0, {(a.x + b.x) / 3.0, (a.y + b.y) / 3.0});
  const double angle = std::abs(segment.sweep);
  const double beyond = angle - std::sin(angle);
  if (beyond <= 0.0) return;
  const double r = segment.radius;
  const double distance = 4.0 * r * std::pow(std::sin(angle / 2.0), 3) / (3.0 * beyond);
  const Point c = segment.centre;
  loop.add(std::copysign(r * r * beyond / 2.0, segment.sweep),
           {c.x + (segment.middle.x - c.x) * distance / r,
            c.y + (segment.middle.y - c.y) * distance / r});
}

/// The boundary of a planar face, put together from its edges in any order.
class PlaneBoundary {
 public:
  PlaneBoundary(const OdModelerBody& body, const PlaneFrame& frame)
      : m_body(body), m_frame(frame) {}

  /// False for an edge that is neither a line nor a circle of the plane.
  bool add(OdUInt32 index);
  /// None when the edges do not close, or not in one way only.
  [[nodiscard]] std::optional<Moments> measure();

 private:
  struct Open {
    Segment segment;
    OdUInt32 ends[2] = {0, 0};
    bool isUsed = false;
  };
  bool closeLoop(Open& first);
  Open* nextAt(OdUInt32 vertex);

  const OdModelerBody& m_body;
  const PlaneFrame& m_frame;
  std::vector<Moments> m_loops;
  std::vector<Open> m_open;
  std::unordered_map<OdUInt32, std::vector<std::size_t>> m_atVertex;  // places in m_open
};

bool PlaneBoundary::add(OdUInt32 index) {
  const OdModelerEdge& edge = m_body.edge(index);
  const bool isCircle = edge.kind == OdModelerCurveKind::kCircle;
  if (!isCircle && edge.kind != OdModelerCurveKind::kLine) return false;
  if (edge.degenerate || edge.seam || !m_frame.holds(edge.midPoint)) return false;
  if (isCircle && !m_frame.holdsCircle(edge)) return false;
  if (isCircle && edge.startVertex == edge.endVertex) {
    m_loops.emplace_back().add(std::numbers::pi * edge.radius * edge.radius,
                               m_frame.at(edge.center));
    return true;
  }
  if (edge.startVertex == 0 || edge.endVertex == 0) return false;
  const OdGePoint3d& from = m_body.vertex(edge.startVertex).point;
  const OdGePoint3d& to = m_body.vertex(edge.endVertex).point;
  if (!m_frame.holds(from) || !m_frame.holds(to)) return false;
  Open open;
  open.segment.from = m_frame.at(from);
  open.segment.to = m_frame.at(to);
  if (isCircle) {
    open.segment.centre = m_frame.at(edge.center);
    open.segment.middle = m_frame.at(edge.midPoint);
    open.segment.radius = edge.radius;
    open.segment.sweep = sweepOf(open.segment);
  }
  open.ends[0] = edge.startVertex;
  open.ends[1] = edge.endVertex;
  for (const OdUInt32 end : open.ends) m_atVertex[end].push_back(m_open.size());
  m_open.push_back(open);
  return true;
}

PlaneBoundary::Open* PlaneBoundary::nextAt(OdUInt32 vertex) {
  for (const std::size_t place : m_atVertex[vertex]) {
    if (!m_open[place].isUsed) return &m_open[place];
  }
  return nullptr;
}

bool PlaneBoundary::closeLoop(Open& first) {
  Moments loop;
  OdUInt32 at = first.ends[0];
  for (Open* open = &first; open != nullptr; open = nextAt(at)) {
    open->isUsed = true;
    if (at != open->ends[0]) {
      std::swap(open->ends[0], open->ends[1]);
      std::swap(open->segment.from, open->segment.to);
      open->segment.sweep = -open->segment.sweep;
    }
    addSegment(open->segment, loop);
    at = open->ends[1];
  }
  m_loops.emplace_back().add(loop, loop.area < 0.0 ? -1.0 : 1.0);
  return at == first.ends[0];
}

// The largest loop runs around the face, the others around its holes.
std::optional<Moments> PlaneBoundary::measure() {
  const auto meetsTwo = [](const auto& row) { return row.second.size() == 2; };
  if (!std::ranges::all_of(m_atVertex, meetsTwo)) return std::nullopt;
  for (Open& open : m_open) {
    if (!open.isUsed && !closeLoop(open)) return std::nullopt;
  }
  if (m_loops.empty()) return std::nullopt;
  const auto outer = std::ranges::max_element(m_loops, {}, &Moments::area);
  Moments all = *outer;
  for (auto loop = m_loops.begin(); loop != m_loops.end(); ++loop) {
    if (loop != outer) all.add(*loop, -1.0);
  }
  if (all.area <= 0.0) return std::nullopt;
  return all;
}

}  // namespace

std::optional<SubentSignature> signatureOfPlane(const OdModelerBody& body, OdUInt32 face,
                                                const SubentSignature& known) {
  if (known.type != OdModelerSubentType::kFace || !known.hasSign()) return std::nullopt;
  if (body.surfaceKind(face) != OdModelerSurfaceKind::kPlane) return std::nullopt;
  const PlaneFrame frame(known.anchor, known.direction);
  PlaneBoundary boundary(body, frame);
  const std::span<const OdUInt32> edges = body.edgesOfFace(face);
  for (const OdUInt32 edge : edges) {
    if (!boundary.add(edge)) return std::nullopt;
  }
  const std::optional<Moments> moments = boundary.measure();
  if (!moments) return std::nullopt;
  SubentSignature s = known;
  s.size = moments->area;
  s.place = s.anchor = frame.point({moments->x / moments->area, moments->y / moments->area});
  s.bounds = boundsOf(edges.size());
  s.neighbours = kindsAround(body, face, edges);
  return s;
}

}  // namespace vdm_host
