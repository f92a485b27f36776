// Surfaces and curves by what they are, however they are written.
//
// The idea: points and normals are sampled over the face, a surface of each kind is fitted to them
// in closed form, and the fit counts when every sample lies on it. Normals say more than points:
// those of a plane are equal, those of a cylinder are across its axis, those of a cone make one
// angle with its axis, those of a sphere meet in its centre, and those of a torus meet the circle
// in the middle of its tube, at a distance that is one of the principal radii everywhere.
//
// Why it is right: whatever the fit, only points decide, on a second grid that lies between the
// samples of the first. A spline that passes through both grids on one quadric, and leaves it in
// between, would have to swing more often than it has spans; grids are finer than that for the
// splines of exchange files. The kinds are tried from few parameters to many, so that a flat face
// is a plane and not a wide cylinder.
#include "platform/modeler_occt/occt_recognise.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepLProp_SLProps.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Precision.hxx>
#include <algorithm>
#include <cmath>
#include <functional>
#include <math_Gauss.hxx>
#include <math_Jacobi.hxx>
#include <math_Matrix.hxx>
#include <math_Vector.hxx>
#include <vector>

#include "platform/modeler_occt/occt_convert.h"

namespace od_occt {
namespace {

/// Samples along either parameter; the grid for checking has one less and lies in between.
constexpr int kSamples = 7;
constexpr int kCurveSamples = 12;
/// Fits from normals are bad where they hardly differ: such a face is a plane or nothing.
constexpr double kLeastSpread = 1e-8;
/// Normals of a cylinder are across its axis, and curvatures equal, within this; the points decide.
constexpr double kRoughly = 1e-3;

struct Sample {
  gp_XYZ point;
  gp_XYZ normal;              // unit
  double curvatures[2] = {};  // principal
};
using Samples = std::vector<Sample>;

/// Normal equations of a point: sums of rows, then one solution.
class PointEquations {
 public:
  /// weight * x = value, for a symmetric weight.
  void add(const gp_Mat& weight, const gp_XYZ& value) {
    m_weight.Add(weight);
    m_value += value;
  }
  [[nodiscard]] std::optional<gp_XYZ> solve() const {
    math_Matrix matrix(1, 3, 1, 3);
    for (int i = 1; i <= 3; ++i) {
      for (int j = 1; j <= 3; ++j) matrix(i, j) = m_weight(i, j);
    }
    const math_Gauss gauss(matrix, kLeastSpread);
    if (!gauss.IsDone()) return std::nullopt;
    math_Vector values(1, 3);
    math_Vector solution(1, 3);
    for (int i = 1; i <= 3; ++i) values(i) = m_value.Coord(i);
    gauss.Solve(values, solution);
    return gp_XYZ(solution(1), solution(2), solution(3));
  }

 private:
  gp_Mat m_weight;
  gp_XYZ m_value;
};

gp_Mat dyad(const gp_XYZ& v) {
  gp_Mat result;
  result.SetCols(v * v.X(), v * v.Y(), v * v.Z());
  return result;
}

gp_Mat identity() {
  gp_Mat result;
  result.SetIdentity();
  return result;
}

gp_XYZ meanOf(const std::vector<gp_XYZ>& points) {
  gp_XYZ sum;
  for (const gp_XYZ& point : points) sum += point;
  return sum / static_cast<double>(points.size());
}

// The direction in which the points extend least, as for a plane through them.
gp_XYZ leastDirection(const std::vector<gp_XYZ>& points) {
  const gp_XYZ middle = meanOf(points);
  gp_Mat spread;
  for (const gp_XYZ& point : points) spread.Add(dyad(point - middle));
  math_Matrix matrix(1, 3, 1, 3);
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) matrix(i, j) = spread(i, j);
  }
  math_Jacobi jacobi(matrix);
  int least = 1;
  for (int i = 2; i <= 3; ++i) {
    if (jacobi.Value(i) < jacobi.Value(least)) least = i;
  }
  math_Vector vector(1, 3);
  jacobi.Vector(least, vector);
  return gp_XYZ(vector(1), vector(2), vector(3)).Normalized();
}

std::vector<gp_XYZ> pointsOf(const Samples& samples) {
  std::vector<gp_XYZ> points;
  for (const Sample& sample : samples) points.push_back(sample.point);
  return points;
}

std::vector<gp_XYZ> normalsOf(const Samples& samples) {
  std::vector<gp_XYZ> normals;
  for (const Sample& sample : samples) normals.push_back(sample.normal);
  return normals;
}

gp_XYZ across(const gp_XYZ& vector, const gp_XYZ& axis) { return vector - axis * axis.Dot(vector); }

/// The circle through points that lie about a plane: its centre there and its radius.
struct FittedCircle {
  gp_XYZ center;
  double radius = 0.0;
};

// The centre c solves |p|^2 - 2 p c + (c^2 - r^2) = 0 in least squares, about the middle and across
// the axis; along the axis it is the middle.
std::optional<FittedCircle> circleThrough(const std::vector<gp_XYZ>& points, const gp_XYZ& axis) {
  const gp_XYZ middle = meanOf(points);
  double meanSquare = 0.0;
  for (const gp_XYZ& point : points) meanSquare += across(point - middle, axis).SquareModulus();
  meanSquare /= static_cast<double>(points.size());
  PointEquations equations;
  equations.add(dyad(axis), {});
  for (const gp_XYZ& point : points) {
    const gp_XYZ p = across(point - middle, axis);
    equations.add(dyad(p) * 2.0, p * (p.SquareModulus() - meanSquare));
  }
  const std::optional<gp_XYZ> offset = equations.solve();
  if (!offset) return std::nullopt;
  FittedCircle circle{middle + across(*offset, axis), 0.0};
  for (const gp_XYZ& point : points) circle.radius += across(point - circle.center, axis).Modulus();
  circle.radius /= static_cast<double>(points.size());
  return circle;
}

/// A fitted surface and how far a point is from it.
struct Fit {
  RecognisedSurface surface;
  std::function<double(const gp_XYZ&)> distance;
};

std::optional<Fit> fitPlane(const Samples& samples) {
  const std::vector<gp_XYZ> points = pointsOf(samples);
  const gp_XYZ origin = meanOf(points);
  const gp_XYZ axis = leastDirection(points);
  Fit fit;
  fit.surface = {OdModelerSurfaceKind::kPlane, toPoint(origin), toVector(gp_Dir(axis))};
  fit.distance = [=](const gp_XYZ& p) { return std::abs(axis.Dot(p - origin)); };
  return fit;
}

std::optional<Fit> fitCylinder(const Samples& samples) {
  const gp_XYZ axis = leastDirection(normalsOf(samples));
  PointEquations equations;
  equations.add(dyad(axis), {});
  for (const Sample& sample : samples) {
    if (std::abs(axis.Dot(sample.normal)) > kRoughly) return std::nullopt;
    const gp_Mat weight = identity() - dyad(axis) - dyad(across(sample.normal, axis));
    equations.add(weight, sample.point.Multiplied(weight));
  }
  const std::optional<gp_XYZ> origin = equations.solve();
  if (!origin) return std::nullopt;
  const auto fromAxis = [=](const gp_XYZ& p) { return across(p - *origin, axis).Modulus(); };
  double radius = 0.0;
  for (const Sample& sample : samples) radius += fromAxis(sample.point);
  radius /= static_cast<double>(samples.size());
  Fit fit;
  fit.surface = {OdModelerSurfaceKind::kCylinder, toPoint(*origin), toVector(gp_Dir(axis)), radius};
  fit.distance = [=](const gp_XYZ& p) { return std::abs(fromAxis(p) - radius); };
  return fit;
}

std::optional<Fit> fitCone(const Samples& samples) {
  const std::vector<gp_XYZ> normals = normalsOf(samples);
  const gp_XYZ axis = leastDirection(normals);
  const double sine = axis.Dot(meanOf(normals));
  PointEquations equations;
  for (const Sample& sample : samples) {
    if (std::abs(axis.Dot(sample.normal) - sine) > kRoughly) return std::nullopt;
    equations.add(dyad(sample.normal), sample.normal * sample.normal.Dot(sample.point));
  }
  const std::optional<gp_XYZ> apex = equations.solve();
  const double half = std::asin(std::min(1.0, std::abs(sine)));
  if (!apex || half < kRoughly) return std::nullopt;
  Fit fit;
  fit.surface = {OdModelerSurfaceKind::kCone, toPoint(*apex), toVector(gp_Dir(axis))};
  fit.surface.halfAngle = half;
  fit.distance = [=, apex = *apex](const gp_XYZ& p) {
    const double along = std::abs(axis.Dot(p - apex));
    const double out = across(p - apex, axis).Modulus();
    return std::abs(out * std::cos(half) - along * std::sin(half));
  };
  return fit;
}

std::optional<Fit> fitSphere(const Samples& samples) {
  PointEquations equations;
  for (const Sample& sample : samples) {
    const gp_Mat weight = identity() - dyad(sample.normal);
    equations.add(weight, sample.point.Multiplied(weight));
  }
  const std::optional<gp_XYZ> center = equations.solve();
  if (!center) return std::nullopt;
  double radius = 0.0;
  for (const Sample& sample : samples) radius += (sample.point - *center).Modulus();
  radius /= static_cast<double>(samples.size());
  Fit fit;
  fit.surface = {OdModelerSurfaceKind::kSphere, toPoint(*center), {}, radius};
  fit.distance = [=, center = *center](const gp_XYZ& p) {
    return std::abs((p - center).Modulus() - radius);
  };
  return fit;
}

// With the tube's curvature taken from the first or the second principal one.
std::optional<Fit> fitTorus(const Samples& samples, int which) {
  double curvature = 0.0;
  for (const Sample& sample : samples) curvature += sample.curvatures[which];
  curvature /= static_cast<double>(samples.size());
  if (std::abs(curvature) < kLeastSpread) return std::nullopt;
  std::vector<gp_XYZ> middles;
  for (const Sample& sample : samples) {
    const double deviation = std::abs(sample.curvatures[which] - curvature);
    if (deviation > kRoughly * std::abs(curvature)) return std::nullopt;
    middles.push_back(sample.point + sample.normal / curvature);
  }
  const gp_XYZ axis = leastDirection(middles);
  const std::optional<FittedCircle> circle = circleThrough(middles, axis);
  if (!circle) return std::nullopt;
  const double minor = 1.0 / std::abs(curvature);
  Fit fit;
  fit.surface = {OdModelerSurfaceKind::kTorus, toPoint(circle->center), toVector(gp_Dir(axis)),
                 circle->radius, minor};
  fit.distance = [=, center = circle->center, major = circle->radius](const gp_XYZ& p) {
    const double along = axis.Dot(p - center);
    const double out = across(p - center, axis).Modulus() - major;
    return std::abs(std::hypot(along, out) - minor);
  };
  return fit;
}

/// The two grids over a face.
class FaceSampler {
 public:
  explicit FaceSampler(const TopoDS_Face& face)
      : m_surface(face, /*Restriction=*/Standard_False),
        m_properties(m_surface, /*order=*/2, Precision::Confusion()) {
    BRepTools::UVBounds(face, m_low[0], m_high[0], m_low[1], m_high[1]);
  }

  /// Points with a normal, at the middles of kSamples x kSamples fields.
  Samples samples() {
    Samples result;
    forEach(kSamples, 0.5, [&](double u, double v) {
      m_properties.SetParameters(u, v);
      if (!m_properties.IsNormalDefined()) return;
      Sample sample;
      sample.point = m_properties.Value().XYZ();
      sample.normal = m_properties.Normal().XYZ();
      if (m_properties.IsCurvatureDefined()) {
        sample.curvatures[0] = m_properties.MinCurvature();
        sample.curvatures[1] = m_properties.MaxCurvature();
      }
      result.push_back(sample);
    });
    return result;
  }

  /// Points at the corners of the same fields.
  std::vector<gp_XYZ> corners() {
    std::vector<gp_XYZ> result;
    forEach(kSamples + 1, 0.0,
            [&](double u, double v) { result.push_back(m_surface.Value(u, v).XYZ()); });
    return result;
  }

 private:
  template <class Visit>
  void forEach(int count, double offset, const Visit& visit) {
    for (int i = 0; i < count; ++i) {
      for (int j = 0; j < count; ++j) visit(at(0, i + offset), at(1, j + offset));
    }
  }
  [[nodiscard]] double at(int side, double field) const {
    return m_low[side] + (m_high[side] - m_low[side]) * field / kSamples;
  }

  BRepAdaptor_Surface m_surface;
  BRepLProp_SLProps m_properties;
  double m_low[2] = {};
  double m_high[2] = {};
};

}  // namespace

std::optional<RecognisedSurface> recogniseSurface(const TopoDS_Face& face) {
  FaceSampler sampler(face);
  const Samples samples = sampler.samples();
  if (samples.size() < kSamples * kSamples / 2) return std::nullopt;
  const std::vector<gp_XYZ> corners = sampler.corners();
  const double close = std::max(10.0 * Precision::Confusion(), BRep_Tool::Tolerance(face));
  const auto holds = [&](const std::optional<Fit>& fit) {
    return fit &&
           std::ranges::all_of(samples,
                               [&](const Sample& s) { return fit->distance(s.point) <= close; }) &&
           std::ranges::all_of(corners, [&](const gp_XYZ& p) { return fit->distance(p) <= close; });
  };
  const std::function<std::optional<Fit>()> kinds[] = {
      [&] { return fitPlane(samples); },    [&] { return fitCylinder(samples); },
      [&] { return fitSphere(samples); },   [&] { return fitCone(samples); },
      [&] { return fitTorus(samples, 0); }, [&] { return fitTorus(samples, 1); },
  };
  for (const auto& fitKind : kinds) {
    const std::optional<Fit> fit = fitKind();
    if (holds(fit)) return fit->surface;
  }
  return std::nullopt;
}

std::optional<RecognisedCurve> recogniseCurve(const TopoDS_Edge& edge) {
  const BRepAdaptor_Curve curve(edge);
  const double first = curve.FirstParameter();
  const double step = (curve.LastParameter() - first) / kCurveSamples;
  std::vector<gp_XYZ> points;
  for (int i = 0; i <= kCurveSamples; ++i) points.push_back(curve.Value(first + i * step).XYZ());
  const double close = std::max(10.0 * Precision::Confusion(), BRep_Tool::Tolerance(edge));
  const gp_XYZ start = points.front();
  const gp_XYZ chord = points.back() - start;
  if (chord.Modulus() > close) {
    const gp_XYZ along = chord.Normalized();
    const auto isOnLine = [&](const gp_XYZ& p) {
      return across(p - start, along).Modulus() <= close;
    };
    if (std::ranges::all_of(points, isOnLine))
      return RecognisedCurve{OdModelerCurveKind::kLine, {}, {}, 0.0};
  }
  const gp_XYZ axis = leastDirection(points);
  const std::optional<FittedCircle> circle = circleThrough(points, axis);
  if (!circle) return std::nullopt;
  const bool isRound = std::ranges::all_of(points, [&](const gp_XYZ& p) {
    const gp_XYZ out = p - circle->center;
    return std::abs(axis.Dot(out)) <= close &&
           std::abs(across(out, axis).Modulus() - circle->radius) <= close;
  });
  if (!isRound) return std::nullopt;
  return RecognisedCurve{OdModelerCurveKind::kCircle, toPoint(circle->center),
                         toVector(gp_Dir(axis)), circle->radius};
}

}  // namespace od_occt
