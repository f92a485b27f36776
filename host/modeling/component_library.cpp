// Makers of components: blocks whose solids cut or fill the solid at which they are inserted.
#include "host/modeling/component_library.h"

#include <functional>
#include <vector>

#include "host/modeling/component_kind.h"
#include "host/modeling/component_sizes.h"
#include "host/modeling/step_solids.h"
#include "host/modeling/tool_form.h"
#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/units.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_layer_utils.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/properties/vdm_properties.h"

namespace vdm_host {
namespace {

using Bodies = std::vector<OdModelerBodyPtr>;
constexpr const wchar_t* kKindKey = L"ComponentKind";

// Off, since tools are not part of what they make.
OdDbObjectId toolLayer(const OdDbDatabase* database, ComponentRole role) {
  return vdmu::findOrAddLayer(database,
                              role == ComponentRole::kSubtract ? kVdmSubtractLayer : kVdmUniteLayer,
                              [](OdDbLayerTableRecord& layer) { layer.setIsOff(true); });
}

// All or nothing: what is raised becomes the status.
OdStatus inTransaction(OdDbDatabase* database, const std::function<OdStatus()>& change) {
  OdDbTransaction transaction(database);
  try {
    OdStatus status = change();
    if (status.ok()) transaction.commit();
    return status;
  } catch (const OdError& error) {
    return {error.code(), OdString::fromUtf8(error.what())};
  }
}

OdStatus makeBlock(OdDbDatabase* database, const OdString& name, const wchar_t* kind,
                   ComponentRole role, const Bodies& bodies, OdDbObjectId& block,
                   const ToolForm* form = nullptr) {
  return inTransaction(database, [&]() -> OdStatus {
    OdDbBlockTablePtr table =
        database->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
    if (table->has(name)) return {eDuplicateKey, L"there is a block \"" + name + L"\" already"};
    const OdDbBlockTableRecordPtr record = OdDbBlockTableRecord::createObject();
    record->setName(name);
    const OdDbObjectId made = table->add(record);
    const OdDbObjectId layer = toolLayer(database, role);
    for (const OdModelerBodyPtr& body : bodies) {
      const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
      solid->setBody(body);
      record->appendOdDbEntity(solid);
      solid->setLayer(layer);
    }
    VdmProperties bag;
    bag.setProperty(OdString(kKindKey), OdString(kind));
    if (form != nullptr) writeToolForm(*form, *bodies.front(), bag);
    bag.writeToDbObject(record.get());
    block = made;
    return {};
  });
}

// A component of one tool. The block shows a cutting one with its clearance; each cut makes one
// that fits its place.
OdStatus makeBuiltIn(OdDbDatabase* database, const OdString& name, const wchar_t* kind,
                     const ToolForm& form, OdDbObjectId& block) {
  OdStatus status = checkForm(form);
  OdModelerBodyPtr tool;
  if (status.ok()) {
    status = makeTool(form, {storedDepth(database, form), form.clearance()}, tool);
  }
  if (!status.ok()) return status;
  const ComponentRole role =
      form.shape == ToolShape::kBoss ? ComponentRole::kUnite : ComponentRole::kSubtract;
  return makeBlock(database, name, kind, role, {tool}, block, &form);
}

}  // namespace

OdString componentKind(const OdDbObjectId& block) {
  const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>();
  if (record.isNull()) return {};
  VdmProperties bag;
  OdString kind;
  if (bag.readFromDbObject(record.get()) && bag.getProperty(OdString(kKindKey), kind)) return kind;
  return record->getName();
}

OdStatus makeHole(OdDbDatabase* database, const OdString& name, const HoleSize& size,
                  OdDbObjectId& block) {
  const ToolForm form{ToolShape::kHole, size.diameter, 0.0, 0.0, 0.0, size.depth};
  return makeBuiltIn(database, name, L"Hole", form, block);
}

OdStatus makeCounterbore(OdDbDatabase* database, const OdString& name, const CounterboreSize& size,
                         OdDbObjectId& block) {
  const ToolForm form{ToolShape::kCounterbore, size.diameter,  0.0,
                      size.boreDiameter,       size.boreDepth, size.depth};
  return makeBuiltIn(database, name, L"Counterbore", form, block);
}

OdStatus makeSlot(OdDbDatabase* database, const OdString& name, const SlotSize& size,
                  OdDbObjectId& block) {
  const ToolForm form{ToolShape::kSlot, size.width, size.length, 0.0, 0.0, size.depth};
  return makeBuiltIn(database, name, L"Slot", form, block);
}

OdStatus makeBoss(OdDbDatabase* database, const OdString& name, const BossSize& size,
                  OdDbObjectId& block) {
  const ToolForm form{ToolShape::kBoss, size.diameter, 0.0, 0.0, 0.0, size.height};
  return makeBuiltIn(database, name, L"Boss", form, block);
}

OdStatus makeFromBlock(OdDbDatabase* database, const OdString& blockName, ComponentRole role,
                       OdDbObjectId& block) {
  return inTransaction(database, [&]() -> OdStatus {
    const OdDbBlockTablePtr table = database->getBlockTableId().safeOpenAs<OdDbBlockTable>();
    const OdDbObjectId id = table->getAt(blockName);
    if (id.isNull()) return {eKeyNotFound, L"there is no block \"" + blockName + L"\""};
    if (findComponent(database, blockName) == id) {
      block = id;
      return {};
    }
    const OdDbObjectId layer = toolLayer(database, role);
    OdUInt32 solids = 0;
    const OdDbBlockTableRecordPtr record = id.safeOpenAs<OdDbBlockTableRecord>();
    for (OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step()) {
      const OdDb3dSolidPtr solid = OdDb3dSolid::cast(it->entity(OdDb::kForWrite));
      if (solid.isNull()) continue;
      solid->setLayer(layer);
      ++solids;
    }
    if (solids == 0) return {eInvalidInput, L"block \"" + blockName + L"\" has no solids"};
    block = id;
    return {};
  });
}

OdStatus makeFromStep(OdDbDatabase* database, const OdString& name, const OdString& path,
                      const OdModelerReadOptions& options, ComponentRole role, OdDbObjectId& block,
                      OdStringArray* leftOut) {
  Bodies bodies;
  const OdStatus status = readStepSolids(path, options, database->getINSUNITS(), bodies, leftOut);
  if (!status.ok()) return status;
  if (bodies.empty()) return {eInvalidInput, path + L": there are no solids"};
  return makeBlock(database, name, name.c_str(), role, bodies, block);
}

std::vector<ComponentInfo> listComponents(OdDbDatabase* database) {
  std::vector<ComponentInfo> components;
  const OdDbBlockTablePtr table = database->getBlockTableId().safeOpenAs<OdDbBlockTable>();
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) {
    const OdDbObjectId id = it->getRecordId();
    const OdDbBlockTableRecordPtr record = id.safeOpenAs<OdDbBlockTableRecord>();
    if (record->isLayout()) continue;
    using Interface = VdmUpdateFeatureInterface;
    ComponentInfo info{id, record->getName()};
    info.numCutting = Interface::getSubtractorsOnDedicatedLayer(id, /*forWrite=*/false).size();
    info.numFilling = Interface::getAdditionsOnDedicatedLayer(id, /*forWrite=*/false).size();
    if (info.numCutting + info.numFilling == 0) continue;
    info.numInserts = record->getBlockReferenceIds().size();
    components.push_back(std::move(info));
  }
  return components;
}

OdDbObjectId findComponent(OdDbDatabase* database, const OdString& name) {
  const OdDbBlockTablePtr table = database->getBlockTableId().safeOpenAs<OdDbBlockTable>();
  const OdDbObjectId id = table->getAt(name);
  if (id.isNull()) return {};
  using Interface = VdmUpdateFeatureInterface;
  const bool has = !Interface::getSubtractorsOnDedicatedLayer(id, /*forWrite=*/false).isEmpty() ||
                   !Interface::getAdditionsOnDedicatedLayer(id, /*forWrite=*/false).isEmpty();
  return has ? id : OdDbObjectId();
}

}  // namespace vdm_host
