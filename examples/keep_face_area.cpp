// Example: a feature class of one's own that keeps the area of a face up to date through edits.
//
//   example_keep_face_area <path of vdm_db.tx> <drawing to write>
#include <cstdio>
#include <cstdlib>

#include "host/modeling/component_library.h"
#include "host/modeling/component_query.h"
#include "host/modeling/model_editor.h"
#include "host/modeling/register_modeling.h"
#include "host/naming/pers_id_manager_pe.h"
#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/host_app_services.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_group_faces.h"
#include "vdm_db/features/vdm_feature_impl.h"
#include "vdm_db/features/vdm_simple_feature_interface.h"

/// Refers to one face (mask 1) and stores its area, in square drawing units, with the drawing.
class FaceAreaFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(FaceAreaFeature)

  [[nodiscard]] double area() const { return m_area; }
  /// The update pass calls this after each edit of what the feature refers to.
  bool update(VdmFeatureUpdateData& /*data*/) override {
    assertWritable();
    const OdDbObjectIdArray references = getDependencies(1, /*filtered=*/false);
    const OdUInt32 face = references.isEmpty() ? 0 : vdm_host::resolvedIndexOf(references.first());
    const OdDbFullSubentPathArray paths = getFeatureEntities(1, /*filtered=*/false);
    if (face == 0 || paths.isEmpty()) return false;  // the area stays what it was last
    m_area = paths.first().objectIds().last().safeOpenAs<OdDb3dSolid>()->body()->face(face).area;
    return true;
  }

 protected:
  void subMapProperties(VdmProperties& bag) override {
    bag.mapProperty<double>(OdString(L"Area"), &m_area);
  }

 private:
  double m_area = 0.0;
};
VDM_DEFINE_FEATURE_CLASS(FaceAreaFeature, VdmFeature, L"FaceAreaFeature")

/// Makes features of the class take part in update passes; they need nothing else of it.
class FaceAreaInterface : public VdmSimpleFeatureInterface {
 public:
  OD_RX_DECLARE_MEMBERS(FaceAreaInterface)
};
OD_RX_DEFINE(FaceAreaInterface, VdmSimpleFeatureInterface, L"FaceAreaInterface")

static void run(const OdString& path) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  const OdDbDatabasePtr drawing = services.createDatabase();
  const OdDbObjectId space = drawing->getModelSpaceId();
  const OdDb3dSolidPtr plate = OdDb3dSolid::createObject();
  if (!plate->createBox(100.0, 50.0, 10.0).ok()) odRaise(eModelerError, "plate");
  vdm_host::ComponentPlacement place;
  place.solid = space.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)->appendOdDbEntity(plate);
  place.point = {50.0, 25.0, 10.0};
  OdUInt32 top = 1;
  while (plate->body()->face(top).axis.z < 0.5) ++top;

  const auto manager = VdmDbFeatureManager::getInstance(space, /*create=*/true)
                           .safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite);
  const OdDbObjectId id = manager->createFeatureData(FaceAreaFeature::desc(), L"Top", false, false);
  const OdDbFullSubentPath face(place.solid, OdDbSubentId(OdDb::kFaceSubentType, top));
  VdmFeature::open(id, OdDb::kForWrite)->init({VdmFeatureGroupFaces(1, {face})});
  manager->update({id});

  const auto print = [&id](const char* when) {
    const auto feature = FaceAreaFeature::cast(VdmFeature::open(id).get());
    std::printf("%-20s %8.2f\n", when, feature->area());
    return feature->area();
  };
  const double whole = print("plate");
  OdDbObjectId hole;
  vdm_host::ModelEditor editor(drawing.get());
  const bool made = vdm_host::makeHole(drawing.get(), L"Hole", {20.0, {}}, hole).ok() &&
                    editor.insertComponent(hole, place).ok();
  if (!made || print("with a hole") > whole - 300.0) odRaise(eModelerError, "area with a hole");
  if (!drawing->saveAs(path).ok()) odRaise(eFileAccess, "saving");
}

int main(int argc, char** argv) try {
  if (argc != 3) return 2;
  odrxInitialize();
  oddbInitialize();
  odModelerInitialize();
  odInstallOcctModeler();
  odrxDynamicLinker()->loadModule(OdString(argv[1]));
  vdm_host::registerNaming();
  vdm_host::registerModeling();
  FaceAreaFeature::rxInit();
  FaceAreaInterface::rxInit();
  FaceAreaFeature::desc()->addX(VdmUpdateFeatureInterface::desc(),
                                FaceAreaInterface::createObject());
  run(OdString(argv[2]));
  return EXIT_SUCCESS;
} catch (const OdError& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return EXIT_FAILURE;
}
