// Box, mass properties and soundness of a whole shape.
#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepCheck_ListOfStatus.hxx>
#include <BRepCheck_Result.hxx>
#include <BRepGProp.hxx>
#include <BRepGProp_Domain.hxx>
#include <BRepGProp_Face.hxx>
#include <BRepGProp_Vinert.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <string>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_face_measures.h"
#include "platform/modeler_occt/occt_guard.h"

namespace od_occt {
namespace {

// Relative error of integrals over each face where they are refined step by step. The plain Gauss
// rule of the modeller is accurate for elementary outlines only: measured, it is off by 1e-4 on an
// elliptic hole. The centroid is not refined on its own; it is right to about 1e-5 of the size.
constexpr double kIntegralAccuracy = 1e-9;

struct FaultName {
  BRepCheck_Status status;
  const char* text;
};

// The faults that operations and imports produce in practice; others are named by their number.
constexpr FaultName kFaults[] = {
    {BRepCheck_InvalidPointOnCurve, "a vertex is off its curve"},
    {BRepCheck_InvalidPointOnSurface, "a vertex is off its surface"},
    {BRepCheck_No3DCurve, "an edge has no curve"},
    {BRepCheck_InvalidCurveOnSurface, "an edge is off its surface"},
    {BRepCheck_InvalidSameParameterFlag, "an edge and its trace on the surface run apart"},
    {BRepCheck_FreeEdge, "an edge bounds only one face"},
    {BRepCheck_InvalidMultiConnexity, "an edge bounds more than two faces"},
    {BRepCheck_InvalidRange, "an edge has an empty range"},
    {BRepCheck_EmptyWire, "a boundary is empty"},
    {BRepCheck_RedundantEdge, "an edge occurs twice in a boundary"},
    {BRepCheck_SelfIntersectingWire, "a boundary crosses itself"},
    {BRepCheck_NoSurface, "a face has no surface"},
    {BRepCheck_IntersectingWires, "boundaries of a face cross"},
    {BRepCheck_InvalidImbricationOfWires, "boundaries of a face are nested wrongly"},
    {BRepCheck_EmptyShell, "a shell is empty"},
    {BRepCheck_NotClosed, "a shell or boundary is not closed"},
    {BRepCheck_NotConnected, "a shell or boundary is not connected"},
    {BRepCheck_UnorientableShape, "a shell cannot be oriented"},
    {BRepCheck_BadOrientation, "faces are not oriented alike"},
    {BRepCheck_BadOrientationOfSubshape, "faces are not oriented alike"},
    {BRepCheck_InvalidImbricationOfShells, "shells are nested wrongly"},
};

// Faces that the plain rule measures well: elementary surfaces between lines and circles.
bool isElementary(const TopoDS_Face& face) {
  if (BRepAdaptor_Surface(face, /*R=*/Standard_False).GetType() > GeomAbs_Torus) return false;
  for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next()) {
    const TopoDS_Edge& edge = TopoDS::Edge(it.Current());
    if (BRep_Tool::Degenerated(edge)) continue;
    if (BRepAdaptor_Curve(edge).GetType() > GeomAbs_Circle) return false;
  }
  return true;
}

std::string describeFault(BRepCheck_Status status) {
  for (const FaultName& row : kFaults) {
    if (row.status == status) return row.text;
  }
  return "fault number " + std::to_string(static_cast<int>(status));
}

// Name of the part that carries the first fault, with the fault.
std::string firstFault(const TopoDS_Shape& shape, const BRepCheck_Analyzer& analyzer) {
  struct Level {
    TopAbs_ShapeEnum type;
    const char* name;
  };
  constexpr Level kLevels[] = {{TopAbs_VERTEX, "vertex"}, {TopAbs_EDGE, "edge"},
                               {TopAbs_FACE, "face"},     {TopAbs_WIRE, "boundary"},
                               {TopAbs_SHELL, "shell"},   {TopAbs_SOLID, "solid"}};
  for (const Level& level : kLevels) {
    TopTools_IndexedMapOfShape parts;
    TopExp::MapShapes(shape, level.type, parts);
    for (int i = 1; i <= parts.Extent(); ++i) {
      const Handle(BRepCheck_Result)& result = analyzer.Result(parts(i));
      if (result.IsNull()) continue;
      for (const BRepCheck_Status status : result->Status()) {
        if (status == BRepCheck_NoError) continue;
        return std::string(level.name) + " " + std::to_string(i) + ": " + describeFault(status);
      }
    }
  }
  return "the parts do not fit together";
}

}  // namespace

OdGeExtents3d measureExtents(const TopoDS_Shape& shape) {
  Bnd_Box box;
  BRepBndLib::AddOptimal(shape, box, /*useTriangulation=*/Standard_False,
                         /*useShapeTolerance=*/Standard_False);
  if (box.IsVoid() || box.IsOpen()) return {};
  return {toPoint(box.CornerMin()), toPoint(box.CornerMax())};
}

namespace {

void addArea(const TopoDS_Face& face, GProp_GProps& result) {
  GProp_GProps part;
  if (isElementary(face)) {
    BRepGProp::SurfaceProperties(face, part);
  } else {
    BRepGProp::SurfaceProperties(face, part, kIntegralAccuracy);
  }
  result.Add(part);
}

void setVolume(const GProp_GProps& volume, OdModelerMassProperties& result) {
  result.volume = volume.Mass();
  result.centroid = toPoint(volume.CentreOfMass());
  const gp_Mat inertia = volume.MatrixOfInertia();
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      result.inertia[r][c] = inertia(static_cast<int>(r) + 1, static_cast<int>(c) + 1);
    }
  }
}

std::shared_ptr<const FaceMeasures> measuresOf(const TopoDS_Face& face, const gp_Pnt& origin) {
  auto measures = std::make_shared<FaceMeasures>();
  addArea(face, measures->area);
  BRepGProp_Face surface(face);
  BRepGProp_Vinert volume;
  volume.SetLocation(origin);
  if (BRep_Tool::NaturalRestriction(face)) {
    volume.Perform(surface, kIntegralAccuracy);
  } else {
    BRepGProp_Domain domain(face);
    volume.Perform(surface, domain, kIntegralAccuracy);
  }
  measures->volume = volume;
  return measures;
}

// Every use of a face is that of its number, in a closed shell of a solid.
bool isSumOfFaces(const TopoDS_Shape& shape, const Topology& topology) {
  int uses = 0;
  for (TopExp_Explorer shell(shape, TopAbs_SHELL); shell.More(); shell.Next()) {
    if (!shell.Current().Closed()) return false;
    for (TopoDS_Iterator it(shell.Current()); it.More(); it.Next(), ++uses) {
      const int number = topology.faces.FindIndex(it.Value());
      if (number == 0 || !topology.faces(number).IsEqual(it.Value())) return false;
    }
  }
  return uses != 0 && uses == topology.faces.Extent() &&
         !TopExp_Explorer(shape, TopAbs_SHELL, TopAbs_SOLID).More();
}

}  // namespace

void measureArea(const TopoDS_Shape& shape, GProp_GProps& result) {
  for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next()) {
    addArea(TopoDS::Face(it.Current()), result);
  }
}

std::optional<OdModelerMassProperties> massByFaces(const TopoDS_Shape& shape,
                                                   const Topology& topology,
                                                   BodyMeasures& measures) {
  if (!isSumOfFaces(shape, topology)) return std::nullopt;
  GProp_GProps area;
  GProp_GProps volume(measures.origin);
  measures.faces.resize(static_cast<std::size_t>(topology.faces.Extent()));
  for (std::size_t i = 0; i < measures.faces.size(); ++i) {
    if (!measures.faces[i]) {
      const TopoDS_Face& face = TopoDS::Face(topology.faces(static_cast<int>(i) + 1));
      measures.faces[i] = measuresOf(face, measures.origin);
    }
    area.Add(measures.faces[i]->area);
    volume.Add(measures.faces[i]->volume);
  }
  OdModelerMassProperties result;
  result.area = area.Mass();
  setVolume(volume, result);
  return result;
}

OdModelerMassProperties measureMass(const TopoDS_Shape& shape) {
  OdModelerMassProperties result;
  GProp_GProps surface;
  measureArea(shape, surface);
  result.area = surface.Mass();
  if (TopExp_Explorer(shape, TopAbs_SOLID).More()) {
    GProp_GProps volume;
    BRepGProp::VolumeProperties(shape, volume, kIntegralAccuracy, /*OnlyClosed=*/Standard_True);
    setVolume(volume, result);
    return result;
  }
  if (result.area > 0.0) {
    result.centroid = toPoint(surface.CentreOfMass());
    return result;
  }
  GProp_GProps length;
  BRepGProp::LinearProperties(shape, length);
  if (length.Mass() > 0.0) result.centroid = toPoint(length.CentreOfMass());
  return result;
}

OdStatus checkShape(const TopoDS_Shape& shape) {
  const BRepCheck_Analyzer analyzer(shape);
  if (analyzer.IsValid()) return {};
  return failure(eModelerInvalidBody, "check", firstFault(shape, analyzer).c_str());
}

}  // namespace od_occt
