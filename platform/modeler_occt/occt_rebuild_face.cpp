// Builds one face over adjacent faces of one surface of revolution.
//
// The idea. In the parameters of such a surface, the angle u and the height v, the joined face is a
// region of the strip between u = 0 and u = 2 pi. Both borders of the strip are one curve in space,
// the seam. So one surface is chosen for the face, every edge of the boundary is brought into the
// strip as a curve of its parameters (a trace), and the stretches of the seam that lie inside the
// face are added, each once on either border. These edges bound the region without gaps.
//
//   1. boundary (addBoundary): the trace of an edge is mapped from the surface of its own face to
//      the chosen one, divided where it passes the seam, and shifted by whole turns into the strip.
//      Ends on the seam are noted.
//   2. seam (addSeam): the noted vertices divide the seam into stretches. The boundary does not
//      pass through a stretch, so all of it is inside the face or none: its middle decides.
//   3. area (buildArea): the modeller finds the region that all these edges bound.
//
// Why it is right. The traces are exact: one surface in two parametrisations differs by a turn, a
// shift and reversals, which map curves to curves of the same kind. A wrong choice cannot pass: an
// outcome counts only when there is one region, it uses every edge, and the modeller's own check
// finds the face sound. Faces and edges of the group belong to bodies that never change, so edges
// that must differ are replaced by copies.
//
// Which surface to take is a question of what has the fewest new edges; rebuildFace tries the
// choices in the order of its laws. There is a fixed number of them, so it ends. Each costs one
// trace per edge of the boundary and one classification per stretch of the seam.
#include "platform/modeler_occt/occt_rebuild_face.h"

#include <BOPAlgo_BuilderFace.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepClass_FaceClassifier.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <BndLib_Add2dCurve.hxx>
#include <Bnd_Box2d.hxx>
#include <Geom2dAPI_InterCurveCurve.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Geom_ElementarySurface.hxx>
#include <Precision.hxx>
#include <TopAbs.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>
#include <algorithm>
#include <cmath>
#include <gp.hxx>
#include <numbers>
#include <optional>
#include <ranges>
#include <span>
#include <utility>

#include "platform/modeler_occt/occt_same_surface.h"

namespace od_occt {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;
constexpr int kMostTurns = 16;      // of the seam to plain vertices, each of which costs a try
constexpr double kLeastGap = 1e-6;  // rad; above what tolerances of vertices span

/// A curve in the parameters of a surface, with the part of it that an edge has.
struct Trace {
  Handle(Geom2d_Curve) curve;
  double first = 0.0;
  double last = 0.0;

  [[nodiscard]] gp_Pnt2d at(double share) const {
    return curve->Value(first + share * (last - first));
  }
};

/// A part of an edge, or all of it.
struct Part {
  Trace trace;
  TopoDS_Vertex start;
  TopoDS_Vertex end;
};

// The least and the greatest u.
std::pair<double, double> anglesOf(const Trace& trace) {
  Bnd_Box2d box;
  BndLib_Add2dCurve::AddOptimal(trace.curve, trace.first, trace.last, 0.0, box);
  double low = 0.0, high = 0.0, unused = 0.0;
  box.Get(low, unused, high, unused);
  return {low, high};
}

struct VertexOnSeam {
  double v;
  TopoDS_Vertex vertex;
};

/// A stretch of the seam.
struct Stretch {
  VertexOnSeam low;
  VertexOnSeam high;

  [[nodiscard]] double middle() const { return 0.5 * (low.v + high.v); }
  [[nodiscard]] bool has(double v) const { return low.v < v && v < high.v; }
};

struct AngleSpan {
  double low = 0.0;
  double high = 0.0;
};

enum class Passing { kRefused, kDivided };  // of an edge of the boundary that passes the seam

/// One try to build the face, on the surface of one of the group.
class FaceBuilder {
 public:
  /// On the surface of `reference`, turned about its axis together with its seam.
  FaceBuilder(const FaceGroup& group, const TopoDS_Face& reference, double turn, Passing passing)
      : m_group(group),
        m_reference(reference),
        m_turn(turn),
        m_passing(passing),
        m_surface(
            Handle(Geom_ElementarySurface)::DownCast(BRep_Tool::Surface(reference, m_location))),
        m_tolerance(BRep_Tool::Tolerance(reference)) {
    if (m_turn != 0.0) turnSurface();
  }

  /// The angles that the edges of the boundary take up, rising. Empty when these are not known.
  [[nodiscard]] std::vector<AngleSpan> spans() const;
  /// The angles at which seams of other faces end at the boundary.
  [[nodiscard]] std::vector<double> anchors() const;

  bool build(RebuiltFace& result) {
    if (m_surface.IsNull()) return false;
    for (const EdgeOfFace& edge : m_group.boundary) {
      if (!addBoundary(edge, result)) return false;
    }
    orderVertices();
    for (std::size_t i = 1; i < m_onSeam.size(); ++i) {
      const Stretch stretch{m_onSeam[i - 1], m_onSeam[i]};
      if (isInside(stretch)) addSeam(stretch, result);
    }
    return buildArea(result);
  }

 private:
  bool addBoundary(const EdgeOfFace& edge, RebuiltFace& result);
  bool addPole(const TopoDS_Edge& edge, Trace trace);
  void addSeam(const Stretch& stretch, RebuiltFace& result);
  bool buildArea(RebuiltFace& result) const;

  void turnSurface();
  [[nodiscard]] bool isDefinedHere(const TopoDS_Face& face) const;
  bool traceOf(const EdgeOfFace& edge, Trace& trace) const;
  [[nodiscard]] std::vector<double> passings(const Trace& trace, double tolerance) const;
  [[nodiscard]] std::vector<Part> partsOf(const TopoDS_Edge& edge, const Trace& trace) const;
  bool putIntoTurn(Trace& trace, TopAbs_Orientation orientation, double tolerance) const;
  [[nodiscard]] TopoDS_Edge copyOf(const TopoDS_Edge& edge, const Part& part) const;
  void noteOnSeam(const Part& part, double tolerance);
  void orderVertices();
  [[nodiscard]] bool isInside(const Stretch& stretch) const;

  [[nodiscard]] gp_Pnt pointAt(const gp_Pnt2d& at) const {
    return m_surface->Value(at.X(), at.Y()).Transformed(m_location);
  }
  // In the sense of the surface, which the reference may reverse.
  [[nodiscard]] TopAbs_Orientation onSurface(const TopoDS_Edge& edge) const {
    return TopAbs::Compose(m_reference.Orientation(), edge.Orientation());
  }
  // The angle that `tolerance` spans at height v.
  [[nodiscard]] double slackAt(double v, double tolerance) const;
  [[nodiscard]] bool isOnSeam(const gp_Pnt2d& at, double tolerance) const {
    return std::abs(std::remainder(at.X(), kTurn)) <= slackAt(at.Y(), tolerance);
  }
  [[nodiscard]] bool runsAlongSeam(const Trace& trace, double tolerance) const {
    return isOnSeam(trace.at(0.0), tolerance) && isOnSeam(trace.at(0.5), tolerance) &&
           isOnSeam(trace.at(1.0), tolerance);
  }

  const FaceGroup& m_group;
  const TopoDS_Face& m_reference;
  double m_turn;
  Passing m_passing;
  TopLoc_Location m_location;  // before the surface, whose making fills it
  Handle(Geom_ElementarySurface) m_surface;
  double m_tolerance;

  TopTools_ListOfShape m_edges;        // of the face to be, in the sense of the surface
  std::vector<VertexOnSeam> m_onSeam;  // rising
  std::vector<double> m_taken;         // v in the middle of boundary edges along the seam
};

void FaceBuilder::turnSurface() {
  if (m_surface.IsNull()) return;
  const gp_Ax3& position = m_surface->Position();
  m_surface = Handle(Geom_ElementarySurface)::DownCast(
      m_surface->Rotated(position.Axis(), position.Direct() ? m_turn : -m_turn));
}

double FaceBuilder::slackAt(double v, double tolerance) const {
  gp_Pnt point;
  gp_Vec du, dv;
  m_surface->D1(0.0, v, point, du, dv);
  return tolerance / std::max(du.Magnitude(), tolerance);
}

bool FaceBuilder::addBoundary(const EdgeOfFace& edge, RebuiltFace& result) {
  Trace trace;
  if (!traceOf(edge, trace)) return false;
  if (BRep_Tool::Degenerated(edge.edge)) return addPole(edge.edge, trace);
  std::vector<Part> parts = partsOf(edge.edge, trace);
  if (parts.size() > 1 && m_passing == Passing::kRefused) return false;
  const TopAbs_Orientation orientation = onSurface(edge.edge);
  const double tolerance = BRep_Tool::Tolerance(edge.edge);
  if (!BRep_Tool::SameRange(edge.edge) || !BRep_Tool::SameParameter(edge.edge)) return false;
  // An edge that was a seam has two traces and cannot serve as it is: only one of them is meant.
  bool isAsItWas =
      parts.size() == 1 && isDefinedHere(edge.face) && !BRep_Tool::IsClosed(edge.edge, edge.face);
  ReplacedEdge replaced{edge.edge, {}};
  for (Part& part : parts) {
    if (!putIntoTurn(part.trace, orientation, tolerance)) return false;
    isAsItWas = isAsItWas && part.trace.curve == trace.curve;
    replaced.parts.push_back(isAsItWas ? edge.edge : copyOf(edge.edge, part));
    m_edges.Append(replaced.parts.back().Oriented(orientation));
    noteOnSeam(part, tolerance);
  }
  if (!isAsItWas) result.boundary.push_back(std::move(replaced));
  return true;
}

// A pole belongs to one face, and all angles meet in it. Its trace runs from one border of the
// strip to the other; shifted to the start of the strip it does so for any seam.
bool FaceBuilder::addPole(const TopoDS_Edge& edge, Trace trace) {
  const auto [low, high] = anglesOf(trace);
  if (std::abs(high - low - kTurn) > Precision::PConfusion()) return false;
  const gp_Vec2d shift(-low, 0.0);
  trace.curve = Handle(Geom2d_Curve)::DownCast(trace.curve->Translated(shift));
  TopoDS_Edge pole;
  BRep_Builder builder;
  builder.MakeEdge(pole);
  builder.UpdateEdge(pole, trace.curve, m_surface, m_location, BRep_Tool::Tolerance(edge));
  builder.Degenerated(pole, Standard_True);
  const TopoDS_Vertex vertex = TopExp::FirstVertex(edge);
  builder.Add(pole, vertex.Oriented(TopAbs_FORWARD));
  builder.Add(pole, vertex.Oriented(TopAbs_REVERSED));
  builder.Range(pole, trace.first, trace.last);
  m_edges.Append(pole.Oriented(onSurface(edge)));
  noteOnSeam({trace, vertex, vertex}, BRep_Tool::Tolerance(edge));
  return true;
}

bool FaceBuilder::isDefinedHere(const TopoDS_Face& face) const {
  TopLoc_Location location;
  return BRep_Tool::Surface(face, location) == m_surface && location == m_location;
}

bool FaceBuilder::traceOf(const EdgeOfFace& edge, Trace& trace) const {
  trace.curve = BRep_Tool::CurveOnSurface(edge.edge, edge.face, trace.first, trace.last);
  if (trace.curve.IsNull()) return false;
  if (isDefinedHere(edge.face)) return true;
  std::optional<ParameterMap> map = parameterMap(edge.face, m_reference);
  if (!map || (map->reversesV && m_surface->IsVPeriodic())) return false;
  map->shift.SetX(map->shift.X() - m_turn);
  trace.curve = (*map)(trace.curve);
  return true;
}

// Where the trace passes the seam between its ends, rising.
std::vector<double> FaceBuilder::passings(const Trace& trace, double tolerance) const {
  std::vector<double> passings;
  if (runsAlongSeam(trace, tolerance)) return passings;
  const auto isEnd = [&](double parameter) {
    const gp_Pnt point = pointAt(trace.curve->Value(parameter));
    return point.Distance(pointAt(trace.at(0.0))) <= tolerance ||
           point.Distance(pointAt(trace.at(1.0))) <= tolerance;
  };
  const Handle(Geom2d_Curve) part = new Geom2d_TrimmedCurve(trace.curve, trace.first, trace.last);
  const auto [low, high] = anglesOf(trace);
  for (double turn = std::ceil(low / kTurn); turn <= std::floor(high / kTurn); ++turn) {
    const Handle(Geom2d_Curve) seam = new Geom2d_Line(gp_Pnt2d(turn * kTurn, 0.0), gp::DY2d());
    const Geom2dAPI_InterCurveCurve found(part, seam, Precision::PConfusion());
    for (int i = 1; i <= found.NbPoints(); ++i) {
      const double parameter = found.Intersector().Point(i).ParamOnFirst();
      if (!isEnd(parameter)) passings.push_back(parameter);
    }
  }
  std::ranges::sort(passings);
  return passings;
}

std::vector<Part> FaceBuilder::partsOf(const TopoDS_Edge& edge, const Trace& trace) const {
  const double tolerance = BRep_Tool::Tolerance(edge);
  std::vector<Part> parts{{trace, TopExp::FirstVertex(edge), TopExp::LastVertex(edge)}};
  for (const double parameter : passings(trace, tolerance)) {
    TopoDS_Vertex between;
    BRep_Builder().MakeVertex(between, pointAt(trace.curve->Value(parameter)), tolerance);
    const TopoDS_Vertex end = std::exchange(parts.back().end, between);
    parts.back().trace.last = parameter;
    parts.push_back({{trace.curve, parameter, trace.last}, between, end});
  }
  return parts;
}

// Shifts the trace by whole turns into the strip; false when it reaches beyond that. A trace along
// the seam fits on either border: the face lies to the left of an edge, so a rising trace is on the
// far border and a falling one on the near border.
bool FaceBuilder::putIntoTurn(Trace& trace, TopAbs_Orientation orientation,
                              double tolerance) const {
  const double middle = trace.at(0.5).X();
  double turns = -std::floor(middle / kTurn);
  if (runsAlongSeam(trace, tolerance)) {
    const bool rises = (trace.at(1.0).Y() > trace.at(0.0).Y()) == (orientation == TopAbs_FORWARD);
    turns = std::round((rises ? 1.0 : 0.0) - middle / kTurn);
  }
  if (turns != 0.0) {
    const gp_Vec2d shift(turns * kTurn, 0.0);
    trace.curve = Handle(Geom2d_Curve)::DownCast(trace.curve->Translated(shift));
  }
  const auto [low, high] = anglesOf(trace);
  const double slack = slackAt(trace.at(0.5).Y(), tolerance);
  return low >= -slack && high <= kTurn + slack;
}

// The original belongs to bodies that do not change.
TopoDS_Edge FaceBuilder::copyOf(const TopoDS_Edge& edge, const Part& part) const {
  TopoDS_Edge copy = TopoDS::Edge(edge.Oriented(TopAbs_FORWARD).EmptyCopied());
  BRep_Builder builder;
  builder.Add(copy, part.start.Oriented(TopAbs_FORWARD));
  builder.Add(copy, part.end.Oriented(TopAbs_REVERSED));
  copy.Closed(part.start.IsSame(part.end));
  builder.UpdateEdge(copy, part.trace.curve, m_surface, m_location, BRep_Tool::Tolerance(edge));
  builder.Range(copy, part.trace.first, part.trace.last);
  return copy;
}

void FaceBuilder::noteOnSeam(const Part& part, double tolerance) {
  if (runsAlongSeam(part.trace, tolerance)) m_taken.push_back(part.trace.at(0.5).Y());
  const std::pair<TopoDS_Vertex, gp_Pnt2d> ends[] = {{part.start, part.trace.at(0.0)},
                                                     {part.end, part.trace.at(1.0)}};
  for (const auto& [vertex, at] : ends) {
    if (isOnSeam(at, BRep_Tool::Tolerance(vertex))) m_onSeam.push_back({at.Y(), vertex});
  }
}

void FaceBuilder::orderVertices() {
  std::ranges::stable_sort(m_onSeam, {}, &VertexOnSeam::v);
  const auto rest = std::unique(m_onSeam.begin(), m_onSeam.end(), [](const auto& a, const auto& b) {
    return a.vertex.IsSame(b.vertex);
  });
  m_onSeam.erase(rest, m_onSeam.end());
}

// Stretches that the boundary runs along are edges of the face already. For the others the middle
// decides.
bool FaceBuilder::isInside(const Stretch& stretch) const {
  if (std::ranges::any_of(m_taken, [&](double v) { return stretch.has(v); })) return false;
  const gp_Pnt middle = pointAt({0.0, stretch.middle()});
  return std::ranges::any_of(m_group.faces, [&](const TopoDS_Face& face) {
    const TopAbs_State state = BRepClass_FaceClassifier(face, middle, m_tolerance).State();
    return state == TopAbs_IN || state == TopAbs_ON;
  });
}

void FaceBuilder::addSeam(const Stretch& stretch, RebuiltFace& result) {
  const Handle(Geom2d_Curve) start = new Geom2d_Line(gp_Pnt2d(0.0, 0.0), gp::DY2d());
  const Handle(Geom2d_Curve) end = new Geom2d_Line(gp_Pnt2d(kTurn, 0.0), gp::DY2d());
  RebuiltSeam seam;
  BRep_Builder builder;
  builder.MakeEdge(seam.edge, m_surface->UIso(0.0), m_location, m_tolerance);
  builder.UpdateEdge(seam.edge, end, start, m_surface, m_location, m_tolerance);
  builder.Continuity(seam.edge, m_surface, m_surface, m_location, m_location, GeomAbs_CN);
  builder.Add(seam.edge, stretch.low.vertex.Oriented(TopAbs_FORWARD));
  builder.Add(seam.edge, stretch.high.vertex.Oriented(TopAbs_REVERSED));
  builder.Range(seam.edge, stretch.low.v, stretch.high.v);
  for (const EdgeOfFace& inner : m_group.inner) {
    Trace trace;
    if (traceOf(inner, trace) && runsAlongSeam(trace, BRep_Tool::Tolerance(inner.edge)) &&
        stretch.has(trace.at(0.5).Y())) {
      seam.former.Append(inner.edge);
    }
  }
  m_edges.Append(seam.edge.Oriented(TopAbs_FORWARD));
  m_edges.Append(seam.edge.Oriented(TopAbs_REVERSED));
  result.seams.push_back(std::move(seam));
}

// The modeller leaves out edges that do not close. An area that lacks an edge is not the face.
bool FaceBuilder::buildArea(RebuiltFace& result) const {
  TopoDS_Face whole;
  BRep_Builder().MakeFace(whole, m_surface, m_location, m_tolerance);
  BOPAlgo_BuilderFace builder;
  builder.SetFace(whole);
  builder.SetShapes(m_edges);
  builder.Perform();
  if (builder.HasErrors() || builder.Areas().Extent() != 1) return false;
  result.face = TopoDS::Face(builder.Areas().First().Oriented(m_reference.Orientation()));
  int numEdges = 0;
  for (TopExp_Explorer it(result.face, TopAbs_EDGE); it.More(); it.Next()) ++numEdges;
  return numEdges == m_edges.Extent() && BRepCheck_Analyzer(result.face).IsValid();
}

std::vector<AngleSpan> FaceBuilder::spans() const {
  std::vector<AngleSpan> spans;
  if (m_surface.IsNull()) return spans;
  for (const EdgeOfFace& edge : m_group.boundary) {
    Trace trace;
    if (!traceOf(edge, trace)) return {};
    const auto [low, high] = anglesOf(trace);
    const double start = low - std::floor(low / kTurn) * kTurn;
    spans.push_back({start, start + high - low});
  }
  std::ranges::sort(spans, {}, &AngleSpan::low);
  return spans;
}

std::vector<double> FaceBuilder::anchors() const {
  std::vector<double> anchors;
  for (const EdgeOfFace& edge : m_group.boundary) {
    Trace trace;
    if (m_surface.IsNull() || !traceOf(edge, trace)) return {};
    if (m_group.anchors.Contains(TopExp::FirstVertex(edge.edge))) {
      anchors.push_back(trace.at(0.0).X());
    }
    if (m_group.anchors.Contains(TopExp::LastVertex(edge.edge))) {
      anchors.push_back(trace.at(1.0).X());
    }
  }
  return anchors;
}

// The angle in the middle of the widest gap between the spans, if there is a gap. One sweep in
// rising order: `reach` is the greatest angle that is taken so far.
std::optional<double> freeAngle(const std::vector<AngleSpan>& spans) {
  if (spans.empty()) return std::nullopt;
  // Spans that pass the full turn take up angles at its start.
  double reach = std::ranges::max(spans, {}, &AngleSpan::high).high - kTurn;
  AngleSpan widest;
  for (const auto& [low, high] : spans) {
    if (low - reach > widest.high - widest.low) widest = {reach, low};
    reach = std::max(reach, high);
  }
  if (widest.high - widest.low < kLeastGap) return std::nullopt;
  return 0.5 * (widest.low + widest.high);
}

// An edge between two faces of the group that must stay. The joined face would have it inside.
bool hasSlit(const FaceGroup& group) {
  TopTools_MapOfShape edges;
  return !std::ranges::all_of(group.boundary,
                              [&](const EdgeOfFace& edge) { return edges.Add(edge.edge); });
}

bool hasSeam(const FaceGroup& group, const TopoDS_Face& face) {
  return std::ranges::any_of(group.inner, [&](const EdgeOfFace& inner) {
    return inner.face.IsSame(face) && BRep_Tool::IsClosed(inner.edge, inner.face);
  });
}

}  // namespace

bool rebuildFace(const FaceGroup& group, RebuiltFace& result) {
  if (hasSlit(group)) return false;
  std::vector<TopoDS_Face> faces = group.faces;
  const auto firstOther = std::stable_partition(
      faces.begin(), faces.end(), [&](const TopoDS_Face& face) { return hasSeam(group, face); });
  const TopoDS_Face& first = faces.front();
  const auto works = [&](const TopoDS_Face& reference, double turn, Passing passing) {
    result = {};
    return FaceBuilder(group, reference, turn, passing).build(result);
  };
  const auto worksAsItIs = [&](const TopoDS_Face& face) {
    return works(face, 0.0, Passing::kRefused);
  };
  const auto worksDivided = [&](const TopoDS_Face& face) {
    return works(face, 0.0, Passing::kDivided);
  };
  const auto worksTurned = [&](double angle) { return works(first, angle, Passing::kDivided); };

  if (std::ranges::any_of(faces, worksAsItIs)) return true;
  const FaceBuilder known(group, first, 0.0, Passing::kRefused);
  const std::vector<AngleSpan> spans = known.spans();
  if (const auto angle = freeAngle(spans)) return works(first, *angle, Passing::kRefused);
  const auto widest = std::span(spans).first(std::min<std::size_t>(kMostTurns, spans.size()));
  return std::any_of(faces.begin(), firstOther, worksDivided) ||
         std::ranges::any_of(known.anchors(), worksTurned) ||
         std::any_of(firstOther, faces.end(), worksDivided) ||
         std::ranges::any_of(widest, worksTurned, &AngleSpan::low);
}

}  // namespace od_occt
