// Example: a drawing with one of each drawn entity, on layers with line types from the standard
// file, and a picture of it.
//
//   drawn_entities DRAWING PICTURE     the picture's name ends in .png or .svg
#include <cstdio>
#include <initializer_list>
#include <numbers>
#include <string>

#include "examples/run_example.h"
#include "host/rendering/render.h"
#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_file.h"
#include "platform/db/linetype_table.h"
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
#include "platform/runtime/runtime_init.h"
#include "platform/storage/sqlite_record_store.h"

namespace {

constexpr double kQuarter = std::numbers::pi / 2;

void require(const OdStatus& status) {
  if (!status.ok()) throw OdError(status.code, status.text);
}

/// Adds entities to the model space, on one layer at a time.
class Sheet {
 public:
  explicit Sheet(OdDbDatabase& drawing) : m_drawing(drawing) {
    require(drawing.loadLineTypeFile(L"*", oddbStandardLinetypeFile()));
    drawing.setLTSCALE(0.5);
  }

  void useLayer(const wchar_t* name, OdUInt16 color, const wchar_t* linetype) {
    const OdDbLayerTablePtr layers =
        m_drawing.getLayerTableId().safeOpenAs<OdDbLayerTable>(OdDb::kForWrite);
    const OdDbLinetypeTablePtr types =
        m_drawing.getLinetypeTableId().safeOpenAs<OdDbLinetypeTable>();
    const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(name);
    layer->setColor(OdCmColor::fromIndex(color));
    layer->setLinetypeObjectId(types->getAt(linetype));
    m_drawing.setCLAYER(layers->add(layer));
  }

  template <class T>
  OdSmartPtr<T> add() {
    OdSmartPtr<T> entity = T::createObject();
    entity->setDatabaseDefaults(&m_drawing);
    const OdDbBlockTableRecordPtr space =
        m_drawing.getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    const OdDbObjectId id = space->appendOdDbEntity(entity);
    entity = nullptr;
    return id.safeOpenAs<T>(OdDb::kForWrite);
  }

 private:
  OdDbDatabase& m_drawing;
};

// A plate with a hole, a slot and rounded corners.
void addPlate(Sheet& sheet) {
  constexpr double kRound = 0.41421356237309503;  // bulge of a quarter turn
  sheet.useLayer(L"OUTLINE", 7, L"Continuous");
  const OdDbPolylinePtr outline = sheet.add<OdDbPolyline>();
  const OdGePoint2d corners[] = {{10, 0},  {90, 0},  {100, 10}, {100, 50},
                                 {90, 60}, {10, 60}, {0, 50},   {0, 10}};
  for (OdUInt32 i = 0; i < 8; ++i) {
    outline->addVertexAt(i, corners[i], i % 2 == 1 ? kRound : 0.0);
  }
  outline->setClosed(true);
  const OdDbCirclePtr hole = sheet.add<OdDbCircle>();
  hole->setCenter({30, 30, 0});
  hole->setRadius(12);
  const OdDbEllipsePtr window = sheet.add<OdDbEllipse>();
  window->set({70, 30, 0}, OdGeVector3d::kZAxis, {15, 5, 0}, 0.4);
  const OdDbArcPtr groove = sheet.add<OdDbArc>();
  groove->setCenter({30, 30, 0});
  groove->setRadius(18);
  groove->setStartAngle(kQuarter);
  groove->setEndAngle(3 * kQuarter);

  sheet.useLayer(L"AXES", 1, L"CENTER");
  for (const auto& [from, to] : {std::pair(OdGePoint3d(5, 30, 0), OdGePoint3d(95, 30, 0)),
                                 std::pair(OdGePoint3d(30, 5, 0), OdGePoint3d(30, 55, 0))}) {
    const OdDbLinePtr axis = sheet.add<OdDbLine>();
    axis->setStartPoint(from);
    axis->setEndPoint(to);
  }
  sheet.useLayer(L"HIDDEN", 5, L"HIDDEN");
  const OdDb2dPolylinePtr pocket = sheet.add<OdDb2dPolyline>();
  for (const OdGePoint3d& corner : {OdGePoint3d(48, 8, 0), {94, 8, 0}, {94, 14, 0}, {48, 14, 0}}) {
    pocket->appendVertex(corner);
  }
  pocket->setClosed(true);
}

void addDimensions(Sheet& sheet) {
  sheet.useLayer(L"DIMENSIONS", 3, L"Continuous");
  const OdDbRotatedDimensionPtr width = sheet.add<OdDbRotatedDimension>();
  width->setXLine1Point({0, 10, 0});
  width->setXLine2Point({100, 10, 0});
  width->setDimLinePoint({50, -15, 0});
  const OdDbAlignedDimensionPtr slant = sheet.add<OdDbAlignedDimension>();
  slant->setXLine1Point({90, 60, 0});
  slant->setXLine2Point({100, 50, 0});
  slant->setDimLinePoint({103, 63, 0});
  const OdDbDiametricDimensionPtr diameter = sheet.add<OdDbDiametricDimension>();
  diameter->setChordPoint({38.4853, 38.4853, 0});
  diameter->setFarChordPoint({21.5147, 21.5147, 0});
  diameter->setLeaderLength(14);
  const OdDbRadialDimensionPtr radius = sheet.add<OdDbRadialDimension>();
  radius->setCenter({30, 30, 0});
  radius->setChordPoint({17.2721, 17.2721, 0});
  const OdDb3PointAngularDimensionPtr angle = sheet.add<OdDb3PointAngularDimension>();
  angle->setCenterPoint({70, 30, 0});
  angle->setXLine1Point({85, 30, 0});
  angle->setXLine2Point({85, 35, 0});
  angle->setArcPoint({118, 38, 0});
  const OdDbOrdinateDimensionPtr ordinate = sheet.add<OdDbOrdinateDimension>();
  ordinate->setDefiningPoint({30, 0, 0});
  ordinate->setLeaderEndPoint({26, -8, 0});
  const OdDbLeaderPtr leader = sheet.add<OdDbLeader>();
  for (const OdGePoint3d& point : {OdGePoint3d(62, 14, 0), {68, 72, 0}, {74, 72, 0}}) {
    leader->appendVertex(point);
  }
  const OdDbMTextPtr note = sheet.add<OdDbMText>();
  note->setContents(L"pocket, {\\H1.4x;6} deep\\P\\Lall edges\\l broken 0.2 \\S+0.1^-0.0;");
  note->setLocation({75, 75, 0});
  note->setTextHeight(2.5);
}

void addTexts(Sheet& sheet) {
  sheet.useLayer(L"TEXTS", 6, L"Continuous");
  const OdDbTextPtr title = sheet.add<OdDbText>();
  title->setTextString(L"%%uPLATE 4711%%u  %%c24 %%p0.1  30%%d");
  title->setHeight(4);
  title->setPosition({0, 78, 0});
  const OdDbTextPtr slanted = sheet.add<OdDbText>();
  slanted->setTextString(L"slanted, wide, turned");
  slanted->setHeight(3);
  slanted->setOblique(0.3);
  slanted->setWidthFactor(1.3);
  slanted->setRotation(0.2);
  slanted->setPosition({125, 60, 0});
  const OdDbTextPtr mirrored = sheet.add<OdDbText>();
  mirrored->setTextString(L"mirrored");
  mirrored->setHeight(3);
  mirrored->mirrorInX(true);
  mirrored->setPosition({175, 55, 0});
  for (const auto direction : {OdDb::kArcTextOutward, OdDb::kArcTextInward}) {
    const OdDbArcAlignedTextPtr around = sheet.add<OdDbArcAlignedText>();
    const bool isOutward = direction == OdDb::kArcTextOutward;
    around->setTextString(isOutward ? L"ALONG AN ARC" : L"AND BELOW IT");
    around->setCenter({150, 20, 0});
    around->setRadius(20);
    around->setStartAngle(isOutward ? 0.4 : 0.4 + 2 * kQuarter);
    around->setEndAngle(isOutward ? 2 * kQuarter - 0.4 : -0.4);
    around->setTextSize(4);
    around->setTextDirection(direction);
  }
}

void addAreas(Sheet& sheet) {
  sheet.useLayer(L"AREAS", 4, L"Continuous");
  OdArray<OdGePoint2d> square;
  for (const OdGePoint2d& corner : {OdGePoint2d(0, 0), {20, 0}, {20, 20}, {0, 20}}) {
    square.append(corner);
  }
  OdArray<OdGePoint2d> hole;
  for (const OdGePoint2d& corner : {OdGePoint2d(5, 10), {15, 10}}) hole.append(corner);
  OdArray<double> bulges;
  bulges.resize(2, 1.0);
  for (const int kind : {0, 1, 2}) {
    const OdDbHatchPtr hatch = sheet.add<OdDbHatch>();
    hatch->appendLoop(square);
    hatch->appendLoop(hole, bulges);
    if (kind == 1) hatch->setLinePattern(kQuarter / 2, 2.0);
    if (kind == 2) hatch->setPattern(L"DASHES", {{0.3, {}, {0.8, 1.8}, {3, -1.5, 0, -1.5}}});
    (void)hatch->transformBy(OdGeMatrix3d::translation({25.0 * kind, -45, 0}));
  }
  const OdDbMlinePtr wall = sheet.add<OdDbMline>();
  for (const OdGePoint3d& point :
       {OdGePoint3d(85, -45, 0), {115, -45, 0}, {115, -30, 0}, {95, -30, 0}}) {
    wall->appendSeg(point);
  }
  wall->setScale(3);
  const OdDbPolylinePtr arrow = sheet.add<OdDbPolyline>();
  arrow->addVertexAt(0, {125, -40}, 0.5, 1, 1);
  arrow->addVertexAt(1, {145, -40}, 0.0, 5, 0);
  arrow->addVertexAt(2, {155, -34});
  sheet.useLayer(L"MAINS", 2, L"GAS_LINE");
  const OdDbPolylinePtr pipe = sheet.add<OdDbPolyline>();
  pipe->addVertexAt(0, {120, -25}, 0.3);
  pipe->addVertexAt(1, {160, -25});
  pipe->addVertexAt(2, {190, -10});
  const OdDbPointPtr point = sheet.add<OdDbPoint>();
  point->setPosition({165, -40, 0});
}

void make(const char* drawingPath, const char* picturePath) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  const OdDbDatabasePtr drawing = services.createDatabase();
  const OdResBufPtr sign = OdResBuf::newRb(70, 34);  // a plus in a circle
  drawing->setSysVar(L"PDMODE", sign.get());
  Sheet sheet(*drawing);
  addPlate(sheet);
  addDimensions(sheet);
  addTexts(sheet);
  addAreas(sheet);
  require(drawing->saveAs(OdString(drawingPath)));
  rendering::RenderOptions options;
  options.width = 1600;
  options.height = 1000;
  options.viewDirection = OdGeVector3d::kZAxis;
  const std::string failure = rendering::renderFile(*drawing, picturePath, options);
  if (!failure.empty()) throw OdError(OdString(failure));
}

}  // namespace

int main(int argc, char** argv) {
  constexpr const char* kNames[] = {"DRAWING", "PICTURE"};
  return runExample(argc, argv, kNames, [](std::span<char*> arguments) {
    oddbInitialize();
    make(arguments[0], arguments[1]);
    oddbUninitialize();
  });
}
