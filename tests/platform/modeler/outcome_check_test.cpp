// The check of an operation's outcome: what it finds in parts that the operation did not change.
// The modeller's full check, which shares no code with it, says which bodies are damaged.
#include <BRepAdaptor_Surface.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>
#include <functional>
#include <gp_Vec2d.hxx>

#include "platform/modeler_occt/occt_body.h"
#include "tests/support/modeler_testing.h"

namespace {

using od_occt::asOcct;
using od_occt::checkOutcome;
using od_occt::checkShape;

class OutcomeCheck : public ModelerTest {
 protected:
  using Change = std::function<void(TopoDS_Shell& shell, const TopoDS_Shape& face, int number)>;

  static OdModelerBodyPtr part() {
    return combine(OdModelerBooleanKind::kUnite, plateWithHole(),
                   {cylinder(6.0, 15.0, {20.0, 30.0, 0.0})});
  }
  /// A solid of the faces of `body`, each added to the shell by `change`.
  static std::shared_ptr<const od_occt::Body> rebuilt(const OdModelerBodyPtr& body,
                                                      const Change& change) {
    BRep_Builder builder;
    TopoDS_Shell shell;
    builder.MakeShell(shell);
    int number = 0;
    for (TopExp_Explorer it(asOcct(*body).shape(), TopAbs_FACE); it.More(); it.Next()) {
      change(shell, it.Current(), ++number);
    }
    shell.Closed(true);
    TopoDS_Solid solid;
    builder.MakeSolid(solid);
    builder.Add(solid, shell);
    return od_occt::bodyOf(solid);
  }
  static bool isRefused(const std::shared_ptr<const od_occt::Body>& body) {
    EXPECT_FALSE(checkShape(body->shape()).ok()) << "the modeller finds no fault";
    return !checkOutcome(*body, *body).ok();
  }
  static void add(TopoDS_Shell& shell, const TopoDS_Shape& face) {
    BRep_Builder().Add(shell, face);
  }
};

TEST_F(OutcomeCheck, FacesThatDoNotCloseTheShellAreFound) {
  const auto same = rebuilt(part(), [](auto& shell, const auto& face, int) { add(shell, face); });
  EXPECT_TRUE(checkOutcome(*same, *same).ok());
  for (int bad = 1; bad <= static_cast<int>(same->numFaces()); ++bad) {
    EXPECT_TRUE(isRefused(rebuilt(part(),
                                  [bad](auto& shell, const auto& face, int number) {
                                    if (number != bad) add(shell, face);
                                  })))
        << "without face " << bad;
    EXPECT_TRUE(isRefused(
        rebuilt(part(), [bad](auto& shell, const auto& face,
                              int number) { add(shell, number == bad ? face.Reversed() : face); })))
        << "face " << bad << " turned over";
  }
}

TEST_F(OutcomeCheck, AShellOfTwoPartsIsFound) {
  const OdModelerBodyPtr apart = made([&](auto& result) {
    const OdModelerBodyPtr both[] = {part(), box(5.0, 5.0, 5.0, {500.0, 0.0, 0.0})};
    return odModeler().compound(both, result);
  });
  EXPECT_TRUE(
      isRefused(rebuilt(apart, [](auto& shell, const auto& face, int) { add(shell, face); })));
}

// What a careless operation does to an edge it shares with the part: all counts stay right.
TEST_F(OutcomeCheck, ATraceOnTheWrongSideOfTheSeamIsFound) {
  int numEdges = 0;
  for (int bad = 1; bad <= 6; ++bad) {
    const auto body = std::static_pointer_cast<const od_occt::Body>(part());
    int number = 0;
    for (TopExp_Explorer faces(body->shape(), TopAbs_FACE); faces.More(); faces.Next()) {
      const TopoDS_Face& face = TopoDS::Face(faces.Current());
      const BRepAdaptor_Surface surface(face, Standard_False);
      if (!surface.IsUPeriodic()) continue;
      for (TopExp_Explorer edges(face, TopAbs_EDGE); edges.More(); edges.Next()) {
        const TopoDS_Edge& edge = TopoDS::Edge(edges.Current());
        if (BRep_Tool::IsClosed(edge, face) || ++number != bad) continue;
        double first = 0.0, last = 0.0;
        const Handle(Geom2d_Curve) trace = BRep_Tool::CurveOnSurface(edge, face, first, last);
        const Handle(Geom2d_Curve) turned =
            Handle(Geom2d_Curve)::DownCast(trace->Translated(gp_Vec2d(surface.UPeriod(), 0.0)));
        TopLoc_Location location;
        BRep_Builder().UpdateEdge(edge, turned, BRep_Tool::Surface(face, location), location,
                                  BRep_Tool::Tolerance(edge));
        ++numEdges;
      }
    }
    if (number < bad) break;
    EXPECT_TRUE(isRefused(od_occt::bodyOf(body->shape()))) << "edge " << bad;
  }
  EXPECT_GE(numEdges, 4);
}

}  // namespace
