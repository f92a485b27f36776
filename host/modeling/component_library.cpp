// Makers of components: blocks whose solids cut or fill the solid at which they are inserted.
#include "host/modeling/component_library.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "host/modeling/component_kind.h"
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

/// Length of stored tools that go through everything, in diagonals of what is in model space. Each
/// cut makes one of the length that its body needs.
constexpr double kThroughDiagonals = 2.0;
/// And at least that many diameters, for parts that come later.
constexpr double kThroughDiameters = 100.0;

OdStatus refuse(const wchar_t* form, double a, double b) {
  OdString text;
  text.format(form, a, b);
  return {eInvalidInput, text};
}

bool isLength(double value) { return std::isfinite(value) && value > 0.0; }

OdStatus checkLength(const wchar_t* name, double value) {
  if (isLength(value)) return {};
  OdString text;
  text.format(L"%ls is %g: a length above 0 is needed", name, value);
  return {eInvalidInput, text};
}

double throughDepth(OdDbDatabase* database, double diameter) {
  OdGeExtents3d box;
  const OdDbBlockTableRecordPtr space =
      database->getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>();
  const bool hasBox = space->getGeomExtents(box) == eOk;
  const double diagonal = hasBox ? box.diagonal().length() : 0.0;
  return std::max(kThroughDiagonals * diagonal, kThroughDiameters * diameter);
}

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

// A component of one cutting tool. The block shows a tool with its clearance; each cut makes one
// that fits its place.
OdStatus makeCutting(OdDbDatabase* database, const OdString& name, const wchar_t* kind,
                     const ToolForm& form, double depth, OdDbObjectId& block) {
  OdModelerBodyPtr tool;
  OdStatus status = makeTool(form, {depth, form.clearance()}, tool);
  if (!status.ok()) return status;
  return makeBlock(database, name, kind, ComponentRole::kSubtract, {tool}, block, &form);
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
  OdStatus status = checkLength(L"the diameter", size.diameter);
  if (status.ok() && size.depth) status = checkLength(L"the depth", *size.depth);
  if (!status.ok()) return status;
  const double depth = size.depth.value_or(throughDepth(database, size.diameter));
  const ToolForm form{ToolShape::kHole, size.diameter, 0.0, 0.0, 0.0, size.depth};
  return makeCutting(database, name, L"Hole", form, depth, block);
}

OdStatus makeCounterbore(OdDbDatabase* database, const OdString& name, const CounterboreSize& size,
                         OdDbObjectId& block) {
  OdStatus status = checkLength(L"the diameter", size.diameter);
  if (status.ok()) status = checkLength(L"the bore's depth", size.boreDepth);
  if (status.ok() && size.depth) status = checkLength(L"the depth", *size.depth);
  if (!status.ok()) return status;
  if (!isLength(size.boreDiameter) || size.boreDiameter <= size.diameter) {
    return refuse(L"the bore's diameter %g is not more than the hole's diameter %g",
                  size.boreDiameter, size.diameter);
  }
  const double depth = size.depth.value_or(throughDepth(database, size.boreDiameter));
  if (depth <= size.boreDepth) {
    return refuse(L"the depth %g is not more than the bore's depth %g", depth, size.boreDepth);
  }
  const ToolForm form{ToolShape::kCounterbore, size.diameter,  0.0,
                      size.boreDiameter,       size.boreDepth, size.depth};
  return makeCutting(database, name, L"Counterbore", form, depth, block);
}

OdStatus makeSlot(OdDbDatabase* database, const OdString& name, const SlotSize& size,
                  OdDbObjectId& block) {
  OdStatus status = checkLength(L"the width", size.width);
  if (status.ok() && size.depth) status = checkLength(L"the depth", *size.depth);
  if (!status.ok()) return status;
  if (!isLength(size.length) || size.length <= size.width) {
    return refuse(L"the length %g is not more than the width %g", size.length, size.width);
  }
  const double depth = size.depth.value_or(throughDepth(database, size.width));
  const ToolForm form{ToolShape::kSlot, size.width, size.length, 0.0, 0.0, size.depth};
  return makeCutting(database, name, L"Slot", form, depth, block);
}

OdStatus makeBoss(OdDbDatabase* database, const OdString& name, const BossSize& size,
                  OdDbObjectId& block) {
  OdStatus status = checkLength(L"the diameter", size.diameter);
  if (status.ok()) status = checkLength(L"the height", size.height);
  OdModelerBodyPtr tool;
  if (status.ok()) status = odModeler().cylinder(0.5 * size.diameter, size.height, tool);
  if (!status.ok()) return status;
  return makeBlock(database, name, L"Boss", ComponentRole::kUnite, {tool}, block);
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
