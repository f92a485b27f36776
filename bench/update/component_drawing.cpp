// A drawing with a plate and one component, as a host keeps them.
#include "bench/update/component_drawing.h"

#include <stdexcept>
#include <string>

#include "host/modeling/component_library.h"
#include "platform/db/block_table_record.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"

namespace {

void require(const OdStatus& status) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
}

}  // namespace

HostRuntime::HostRuntime() {
  oddbInitialize();
  odModelerInitialize();
  odInstallOcctModeler();
  odrxDynamicLinker()->loadModule(VDM_MODULE_FILE);
  odrxDynamicLinker()->loadModule(VDM_HOST_MODULE_FILE);
}

HostRuntime::~HostRuntime() {
  odrxDynamicLinker()->unloadModule(VDM_HOST_MODULE_FILE);
  odrxDynamicLinker()->unloadModule(VDM_MODULE_FILE);
  odModelerUninitialize();
  oddbUninitialize();
}

ComponentDrawing::ComponentDrawing(double length, double width, double holeDiameter)
    : database(services.createDatabase()) {
  const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
  require(solid->createBox(length, width, 10.0));
  plate = database->getModelSpaceId()
              .safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)
              ->appendOdDbEntity(solid);
  require(vdm_host::makeHole(database, OdString(L"HOLE"), {holeDiameter, std::nullopt}, hole));
}

OdDbObjectId ComponentDrawing::addPlate() const {
  const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
  solid->setBody(plateBody());
  return database->getModelSpaceId()
      .safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)
      ->appendOdDbEntity(solid);
}

vdm_host::ComponentPlacement ComponentDrawing::at(double x, double y, OdUInt32 face) const {
  vdm_host::ComponentPlacement placement;
  placement.solid = plate;
  placement.point = {x, y, 10.0};
  placement.direction = OdGeVector3d::kZAxis;
  placement.face = OdDbSubentId(OdDb::kFaceSubentType, static_cast<OdGsMarker>(face));
  return placement;
}

OdModelerBodyPtr ComponentDrawing::plateBody() const {
  return plate.safeOpenAs<OdDb3dSolid>()->body();
}

OdUInt32 ComponentDrawing::topFace() const {
  const OdModelerBodyPtr body = plateBody();
  OdUInt32 best = 1;
  for (OdUInt32 i = 1; i <= body->numFaces(); ++i) {
    const OdModelerFace& face = body->face(i);
    if (face.normal.z > 0.9 && face.pointOnFace.z >= body->face(best).pointOnFace.z) best = i;
  }
  return best;
}

std::vector<vdm_host::EditResult> insertTogether(
    vdm_host::ModelEditor& editor, const std::vector<vdm_host::ComponentInsert>& inserts) {
  auto next = inserts.begin();
  std::vector<vdm_host::EditResult> results =
      editor.insertRow([&]() -> std::optional<vdm_host::ComponentInsert> {
        if (next == inserts.end()) return {};
        return *next++;
      });
  if (results.size() != inserts.size()) throw std::runtime_error("the inserts are not one row");
  return results;
}
