// One or more of each drawn entity, in a plane that is not a world plane.
#include "tests/platform/entities/entity_samples.h"

#include "platform/entities/angular_dimension.h"
#include "platform/entities/arc.h"
#include "platform/entities/arc_aligned_text.h"
#include "platform/entities/circle.h"
#include "platform/entities/ellipse.h"
#include "platform/entities/hatch.h"
#include "platform/entities/leader.h"
#include "platform/entities/line.h"
#include "platform/entities/linear_dimension.h"
#include "platform/entities/mline.h"
#include "platform/entities/mtext.h"
#include "platform/entities/ordinate_dimension.h"
#include "platform/entities/point.h"
#include "platform/entities/polyline.h"
#include "platform/entities/polyline_2d.h"
#include "platform/entities/round_dimension.h"
#include "platform/entities/text.h"
#include "platform/gi/extents_draw.h"

namespace {

const OdGeVector3d kNormal(0.48, -0.6, 0.64);

/// A point of the plane of the normal at the elevation 3.
OdGePoint3d at(double x, double y) { return OdDbPlaneFrame(kNormal).toWorld({x, y}, 3.0); }

template <class T>
OdSmartPtr<T> make() {
  OdSmartPtr<T> entity = T::createObject();
  entity->setNormal(kNormal);
  return entity;
}

OdDbEntityPtr makeLine() {
  auto line = make<OdDbLine>();
  line->setStartPoint({1, 2, 3});
  line->setEndPoint({-4, 5, 7});
  line->setThickness(1.5);
  return line;
}

template <class T>
OdSmartPtr<T> makeRound() {
  auto round = make<T>();
  round->setCenter(at(2, 1));
  round->setRadius(4);
  round->setThickness(-2);
  return round;
}

OdDbEntityPtr makeCircle() { return makeRound<OdDbCircle>(); }

OdDbEntityPtr makeArc() {
  auto arc = makeRound<OdDbArc>();
  arc->setStartAngle(0.4);
  arc->setEndAngle(4.1);
  return arc;
}

OdDbEntityPtr makeEllipse() {
  auto ellipse = OdDbEllipse::createObject();
  const OdDbPlaneFrame frame(kNormal);
  ellipse->set(at(2, 1), kNormal, frame.direction(0.3) * 5, 0.4, 0.5, 3.9);
  return ellipse;
}

template <class T>
OdSmartPtr<T> makeRun(double width) {
  auto run = make<T>();
  run->addVertexAt(0, {0, 0}, 0.0, width, width);
  run->addVertexAt(1, {6, 0}, 0.7, width, 2 * width);
  run->addVertexAt(2, {6, 5}, -0.3, 2 * width, width);
  run->addVertexAt(3, {1, 4});
  run->setClosed(true);
  run->setElevation(3);
  run->setThickness(width > 0.0 ? 0.0 : 1.0);
  return run;
}

OdDbEntityPtr makePolyline() { return makeRun<OdDbPolyline>(0.0); }
OdDbEntityPtr makeWidePolyline() { return makeRun<OdDbPolyline>(0.5); }
OdDbEntityPtr make2dPolyline() {
  auto run = makeRun<OdDb2dPolyline>(0.0);
  run->setPolyType(OdDb::k2dFitCurvePoly);
  return run;
}

OdDbEntityPtr makePoint() {
  auto point = make<OdDbPoint>();
  point->setPosition({3, 2, 1});
  point->setThickness(2);
  point->setEcsRotation(0.7);
  return point;
}

OdDbEntityPtr makeText() {
  auto text = make<OdDbText>();
  text->setTextString(L"%%uPart%%u 7 \\U+00D8 25%%p0,1");
  text->setPosition(at(1, 1));
  text->setAlignmentPoint(at(4, 3));
  text->setHorizontalMode(OdDb::kTextRight);
  text->setVerticalMode(OdDb::kTextTop);
  text->setHeight(3.5);
  text->setRotation(0.4);
  text->setWidthFactor(0.8);
  text->setOblique(0.2);
  text->mirrorInY(true);
  text->setThickness(1);
  return text;
}

OdDbEntityPtr makeMText() {
  auto text = make<OdDbMText>();
  text->setContents(L"A note of {\\H1.5x;several} words\\Pand \\Llines\\l \\S+0,1^-0,2; wide");
  text->setLocation(at(1, 2));
  text->setRotation(0.5);
  text->setWidth(30);
  text->setTextHeight(2);
  text->setAttachment(OdDb::kMiddleRight);
  text->setLineSpacingFactor(1.2);
  return text;
}

OdDbEntityPtr makeArcAlignedText() {
  auto text = make<OdDbArcAlignedText>();
  text->setTextString(L"AROUND");
  text->setCenter(at(0, 0));
  text->setRadius(15);
  text->setStartAngle(0.5);
  text->setEndAngle(2.9);
  text->setTextSize(2);
  text->setXScale(0.9);
  text->setOffsetFromArc(1);
  text->setLeftOffset(1);
  text->setRightOffset(2);
  text->setAlignment(OdDb::kArcTextLeft);
  text->setTextPosition(OdDb::kArcTextConcaveSide);
  text->setTextDirection(OdDb::kArcTextInward);
  return text;
}

OdDbEntityPtr makeLeader() {
  auto leader = make<OdDbLeader>();
  leader->appendVertex(at(0, 0));
  leader->appendVertex(at(10, 12));
  leader->appendVertex(at(18, 12));
  leader->enableHookLine(true);
  return leader;
}

OdDbEntityPtr makeMline() {
  auto lines = make<OdDbMline>();
  for (const OdGePoint2d& p : {OdGePoint2d(0, 0), {10, 0}, {10, 8}, {3, 12}}) {
    lines->appendSeg(at(p.x, p.y));
  }
  lines->setScale(2);
  lines->setJustification(OdDb::kMlineBottom);
  lines->setClosedMline(true);
  return lines;
}

OdSmartPtr<OdDbHatch> makeHatch() {
  auto hatch = make<OdDbHatch>();
  OdArray<OdGePoint2d> outer;
  for (const OdGePoint2d& p : {OdGePoint2d(0, 0), {10, 0}, {12, 8}, {1, 7}}) outer.append(p);
  OdArray<OdGePoint2d> hole;
  for (const OdGePoint2d& p : {OdGePoint2d(3, 3), {6, 3}}) hole.append(p);
  OdArray<double> bulges;
  bulges.resize(2, 1.0);
  hatch->appendLoop(outer);
  hatch->appendLoop(hole, bulges);
  hatch->setElevation(3);
  hatch->setHatchStyle(OdDb::kHatchOuter);
  return hatch;
}

OdDbEntityPtr makeSolidHatch() { return makeHatch(); }
OdDbEntityPtr makeLineHatch() {
  auto hatch = makeHatch();
  hatch->setPattern(L"DASHES",
                    {{0.6, {1, 1}, {0.2, 0.9}, {1.0, -0.5}}, {2.0, {0.3, 0.1}, {0, 1.1}, {}}});
  return hatch;
}

template <class T>
OdSmartPtr<T> makeDimension() {
  auto dimension = make<T>();
  dimension->setDimensionText(L"<> H7");
  dimension->setHorizontalRotation(0.3);
  return dimension;
}

template <class T>
OdSmartPtr<T> makeLinear() {
  auto dimension = makeDimension<T>();
  dimension->setXLine1Point(at(0, 0));
  dimension->setXLine2Point(at(30, 8));
  dimension->setDimLinePoint(at(10, 20));
  return dimension;
}

OdDbEntityPtr makeAligned() { return makeLinear<OdDbAlignedDimension>(); }
OdDbEntityPtr makeRotated() {
  auto dimension = makeLinear<OdDbRotatedDimension>();
  dimension->setRotation(0.6);
  dimension->setTextPosition(at(12, 30));
  dimension->setTextRotation(1.0);
  return dimension;
}
OdDbEntityPtr makeRadial() {
  auto dimension = makeDimension<OdDbRadialDimension>();
  dimension->setCenter(at(0, 0));
  dimension->setChordPoint(at(12, 9));
  return dimension;
}
OdDbEntityPtr makeDiametric() {
  auto dimension = makeDimension<OdDbDiametricDimension>();
  dimension->setChordPoint(at(-12, -9));
  dimension->setFarChordPoint(at(12, 9));
  dimension->setLeaderLength(8);
  return dimension;
}
OdDbEntityPtr makeAngular() {
  auto dimension = makeDimension<OdDb3PointAngularDimension>();
  dimension->setCenterPoint(at(0, 0));
  dimension->setXLine1Point(at(8, 1));
  dimension->setXLine2Point(at(-2, 9));
  dimension->setArcPoint(at(14, 14));
  return dimension;
}
OdDbEntityPtr makeOrdinate() {
  auto dimension = makeDimension<OdDbOrdinateDimension>();
  dimension->setOrigin(at(0, 0));
  dimension->setDefiningPoint(at(20, 6));
  dimension->setLeaderEndPoint(at(24, 30));
  dimension->useYAxis();
  return dimension;
}

/// Keeps the points that it is given.
class PointCollector : public OdGiExtentsDraw {
 public:
  std::vector<OdGePoint3d> points;
  double wanted = 0.0;

  double deviation() const override { return wanted; }
  void polyline(std::span<const OdGePoint3d> run) override { take(run); }
  void polygon(std::span<const OdGePoint3d> run) override { take(run); }
  void shell(const OdGiShell& shell) override { take(shell.points); }

 private:
  void take(std::span<const OdGePoint3d> run) {
    points.insert(points.end(), run.begin(), run.end());
  }
};

}  // namespace

const std::vector<EntitySample>& entitySamples() {
  static const std::vector<EntitySample> kSamples = {
      {"line", makeLine, EntitySample::kAffine},
      {"circle", makeCircle, EntitySample::kUnordered},
      {"arc", makeArc},
      {"ellipse", makeEllipse, EntitySample::kAffine},
      {"polyline", makePolyline},
      {"widePolyline", makeWidePolyline},
      {"polyline2d", make2dPolyline},
      {"point", makePoint, EntitySample::kInner},
      {"text", makeText},
      {"mtext", makeMText, EntitySample::kReadable},
      {"arcAlignedText", makeArcAlignedText, EntitySample::kReadable},
      {"leader", makeLeader, EntitySample::kRigid},
      {"mline", makeMline},
      {"solidHatch", makeSolidHatch, EntitySample::kUnordered},
      {"lineHatch", makeLineHatch, EntitySample::kInner},
      {"alignedDimension", makeAligned, EntitySample::kRigid},
      {"rotatedDimension", makeRotated, EntitySample::kRigid},
      {"radialDimension", makeRadial, EntitySample::kRigid},
      {"diametricDimension", makeDiametric, EntitySample::kRigid},
      {"angularDimension", makeAngular, EntitySample::kRigid},
      {"ordinateDimension", makeOrdinate, EntitySample::kRigid},
  };
  return kSamples;
}

std::vector<OdGePoint3d> drawnPoints(const OdDbEntity& entity, double deviation) {
  OdStaticRxObject<PointCollector> draw;
  draw.wanted = deviation;
  entity.worldDraw(&draw);
  return draw.points;
}
