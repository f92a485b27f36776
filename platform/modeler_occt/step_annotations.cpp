// Drawn annotations of a STEP file: dimensions, notes and symbols as curves.
//
// The modeller's reader knows the older forms of annotations only, so the geometry is read from the
// text. An annotation is a styled item; its item is a set of curves, a set of tessellated curves
// and areas, perhaps moved as a whole, or a single curve. Polylines, circles and tessellated curves
// become edges. A filled area, such as a letter or an arrow head, becomes its outline: the edges
// that only one of its triangles has.
#include "platform/modeler_occt/step_annotations.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRep_Builder.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Edge.hxx>
#include <array>
#include <cmath>
#include <gp_Ax2.hxx>
#include <gp_Ax3.hxx>
#include <gp_Circ.hxx>
#include <gp_Trsf.hxx>
#include <map>
#include <optional>
#include <string>

#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/step_contents.h"
#include "platform/modeler_occt/step_items.h"

namespace od_occt {
namespace {

using Points = std::vector<gp_Pnt>;
using Indices = std::vector<std::size_t>;

// Sets within sets; a file that nests deeper nests in a circle.
constexpr int kMaxDepth = 8;

std::optional<gp_XYZ> coordinates(std::string_view list) {
  const std::vector<std::string_view> numbers = StepText::elements(list);
  if (numbers.size() != 3) return std::nullopt;
  std::array<double, 3> values{};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto value = StepText::number(numbers[i]);
    if (!value || !std::isfinite(*value)) return std::nullopt;
    values[i] = *value;
  }
  return gp_XYZ(values[0], values[1], values[2]);
}

Indices indicesOf(std::string_view list) {
  Indices indices;
  for (const std::string_view element : StepText::elements(list)) {
    const auto value = StepText::number(element);
    if (value && *value >= 1.0 && *value < 1e9) indices.push_back(static_cast<std::size_t>(*value));
  }
  return indices;
}

class Drawing {
 public:
  Drawing(const StepText& file, double millimetres) : m_file(file), m_scale(millimetres) {
    m_builder.MakeCompound(m_compound);
  }

  void draw(OdUInt64 item, const gp_Trsf& place, int depth) {
    const StepInstance* instance = m_file.find(item);
    if (instance == nullptr || depth > kMaxDepth) return;
    for (const std::string_view type : m_file.types(*instance)) {
      if (type == "TESSELLATED_GEOMETRIC_SET" || type == "GEOMETRIC_CURVE_SET" ||
          type == "GEOMETRIC_SET") {
        drawSet(*instance, type, place * relocation(*instance), depth);
      } else if (type == "TESSELLATED_CURVE_SET") {
        drawCurveSet(m_file.arguments(*instance, type), place);
      } else if (type == "COMPLEX_TRIANGULATED_SURFACE_SET") {
        drawAreas(m_file.arguments(*instance, type), place);
      } else if (type == "POLYLINE") {
        drawPolyline(m_file.arguments(*instance, type), place);
      } else if (type == "CIRCLE") {
        drawCircle(m_file.arguments(*instance, type), place);
      }
    }
  }

  [[nodiscard]] OdModelerBodyPtr body() const {
    return m_isEmpty ? nullptr : odBodyFromOcct(m_compound);
  }

 private:
  // The last argument lists the elements, whether the set is written in parts or not.
  void drawSet(const StepInstance& set, std::string_view type, const gp_Trsf& place, int depth) {
    const std::vector<std::string_view> arguments = m_file.arguments(set, type);
    if (arguments.empty()) return;
    for (const std::string_view element : StepText::elements(arguments.back())) {
      if (const auto id = StepText::reference(element)) draw(*id, place, depth + 1);
    }
  }

  // Where a set is moved to as a whole.
  [[nodiscard]] gp_Trsf relocation(const StepInstance& set) const {
    const std::vector<std::string_view> arguments =
        m_file.arguments(set, "REPOSITIONED_TESSELLATED_ITEM");
    const auto id = arguments.empty() ? std::nullopt : StepText::reference(arguments.back());
    const std::optional<gp_Ax2> axes = id ? axesOf(*id) : std::nullopt;
    gp_Trsf result;
    if (axes) result.SetDisplacement(gp_Ax3(), gp_Ax3(*axes));
    return result;
  }

  [[nodiscard]] std::optional<gp_Ax2> axesOf(OdUInt64 id) const {
    const StepInstance* instance = m_file.find(id);
    if (instance == nullptr) return std::nullopt;
    const std::vector<std::string_view> arguments =
        m_file.arguments(*instance, "AXIS2_PLACEMENT_3D");
    if (arguments.size() != 4) return std::nullopt;
    const auto origin = tripleOf(arguments[1], "CARTESIAN_POINT");
    const gp_XYZ axis = tripleOf(arguments[2], "DIRECTION").value_or(gp_XYZ(0.0, 0.0, 1.0));
    const gp_XYZ along = tripleOf(arguments[3], "DIRECTION").value_or(gp_XYZ(1.0, 0.0, 0.0));
    constexpr double kParallel = 1e-9;
    if (!origin || axis.Modulus() <= 0.0 ||
        axis.Crossed(along).Modulus() <= kParallel * axis.Modulus() * along.Modulus()) {
      return std::nullopt;
    }
    return gp_Ax2(gp_Pnt(*origin * m_scale), gp_Dir(axis), gp_Dir(along));
  }

  [[nodiscard]] std::optional<gp_XYZ> tripleOf(std::string_view argument,
                                               std::string_view type) const {
    const auto id = StepText::reference(argument);
    const StepInstance* instance = id ? m_file.find(*id) : nullptr;
    if (instance == nullptr) return std::nullopt;
    const std::vector<std::string_view> arguments = m_file.arguments(*instance, type);
    return arguments.size() == 2 ? coordinates(arguments[1]) : std::nullopt;
  }

  // Name, number of points, points.
  [[nodiscard]] Points pointsOf(std::string_view reference, const gp_Trsf& place) const {
    Points points;
    const auto id = StepText::reference(reference);
    const StepInstance* instance = id ? m_file.find(*id) : nullptr;
    if (instance == nullptr) return points;
    const std::vector<std::string_view> arguments = m_file.arguments(*instance, "COORDINATES_LIST");
    if (arguments.size() != 3) return points;
    for (const std::string_view element : StepText::elements(arguments[2])) {
      const gp_XYZ at = coordinates(element).value_or(gp_XYZ());
      points.push_back(gp_Pnt(at * m_scale).Transformed(place));
    }
    return points;
  }

  void drawCurveSet(const std::vector<std::string_view>& arguments, const gp_Trsf& place) {
    if (arguments.size() != 3) return;
    const Points points = pointsOf(arguments[1], place);
    for (const std::string_view strip : StepText::elements(arguments[2])) {
      const Indices indices = indicesOf(strip);
      for (std::size_t i = 1; i < indices.size(); ++i) {
        addEdge(points, indices[i - 1], indices[i]);
      }
    }
  }

  // Name, points, number of points, normals, indices of points, strips, fans.
  void drawAreas(const std::vector<std::string_view>& arguments, const gp_Trsf& place) {
    if (arguments.size() != 7) return;
    const Points points = pointsOf(arguments[1], place);
    const Indices through = indicesOf(arguments[4]);
    std::map<std::pair<std::size_t, std::size_t>, int> uses;
    const auto use = [&](std::size_t a, std::size_t b) { ++uses[std::minmax(a, b)]; };
    for (const std::size_t list : {5U, 6U}) {
      for (const std::string_view strip : StepText::elements(arguments[list])) {
        Indices indices = indicesOf(strip);
        for (std::size_t& index : indices) {
          if (index <= through.size()) index = through[index - 1];
        }
        for (std::size_t i = 2; i < indices.size(); ++i) {
          const std::size_t first = list == 5 ? indices[i - 2] : indices[0];
          use(first, indices[i - 1]);
          use(indices[i - 1], indices[i]);
          use(indices[i], first);
        }
      }
    }
    for (const auto& [edge, count] : uses) {
      if (count == 1) addEdge(points, edge.first, edge.second);
    }
  }

  void drawPolyline(const std::vector<std::string_view>& arguments, const gp_Trsf& place) {
    if (arguments.size() != 2) return;
    Points points;
    for (const std::string_view element : StepText::elements(arguments[1])) {
      if (const auto at = tripleOf(element, "CARTESIAN_POINT")) {
        points.push_back(gp_Pnt(*at * m_scale).Transformed(place));
      }
    }
    for (std::size_t i = 1; i < points.size(); ++i) addEdge(points, i, i + 1);
  }

  void drawCircle(const std::vector<std::string_view>& arguments, const gp_Trsf& place) {
    if (arguments.size() != 3) return;
    const auto id = StepText::reference(arguments[1]);
    const std::optional<gp_Ax2> axes = id ? axesOf(*id) : std::nullopt;
    const auto radius = StepText::number(arguments[2]);
    if (!axes || !radius || !(*radius * m_scale > gp::Resolution())) return;
    add(BRepBuilderAPI_MakeEdge(gp_Circ(*axes, *radius * m_scale).Transformed(place)));
  }

  // Indices count from 1.
  void addEdge(const Points& points, std::size_t from, std::size_t to) {
    if (from == 0 || to == 0 || from > points.size() || to > points.size()) return;
    const gp_Pnt& a = points[from - 1];
    const gp_Pnt& b = points[to - 1];
    if (a.Distance(b) > Precision::Confusion()) add(BRepBuilderAPI_MakeEdge(a, b));
  }

  void add(BRepBuilderAPI_MakeEdge edge) {
    if (!edge.IsDone()) return;
    m_builder.Add(m_compound, edge.Edge());
    m_isEmpty = false;
  }

  const StepText& m_file;
  double m_scale;
  BRep_Builder m_builder;
  TopoDS_Compound m_compound;
  bool m_isEmpty = true;
};

}  // namespace

TopTools_MapOfShape annotationShapes(const StepText& file, const StepTransfer& transfer) {
  TopTools_MapOfShape shapes;
  for (const StepInstance& instance : file.instances()) {
    if (!isAnnotation(file, instance)) continue;
    const auto item = styledItem(file, instance);
    const TopoDS_Shape shape = item ? transfer.shapeOf(*item) : TopoDS_Shape();
    if (shape.IsNull()) continue;
    TopTools_IndexedMapOfShape parts;
    for (const TopAbs_ShapeEnum type : {TopAbs_SHELL, TopAbs_FACE, TopAbs_EDGE}) {
      TopExp::MapShapes(shape, type, parts);
    }
    for (int i = 1; i <= parts.Extent(); ++i) shapes.Add(parts(i).Located(TopLoc_Location()));
  }
  return shapes;
}

std::vector<OdModelerAnnotation> stepAnnotations(const StepText& file, const StepStrings& strings,
                                                 double millimetres, OdStringArray& leftOut) {
  std::vector<OdModelerAnnotation> annotations;
  std::size_t others = 0;
  for (const StepInstance& instance : file.instances()) {
    const bool isDrawn = isAnnotation(file, instance) && !file.isA(instance, "ANNOTATION_PLANE");
    const auto item = isDrawn ? styledItem(file, instance) : std::nullopt;
    if (!item) continue;
    Drawing drawing(file, millimetres);
    drawing.draw(*item, gp_Trsf(), 0);
    if (OdModelerBodyPtr body = drawing.body()) {
      annotations.push_back({std::move(body), itemName(file, strings, instance)});
    } else {
      ++others;
    }
  }
  if (others > 0) {
    leftOut.append(OdString(std::to_string(others) +
                            (others == 1 ? " annotation" : " annotations") + " without curves"));
  }
  return annotations;
}

}  // namespace od_occt
