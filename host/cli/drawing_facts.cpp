// What a drawing holds, as plain values.
#include "host/cli/drawing_facts.h"

#include <algorithm>

#include "host/cli/find_object.h"
#include "host/cli/text_lines.h"
#include "host/modeling/component_library.h"
#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/layer_table.h"
#include "platform/db/proxy_object.h"
#include "platform/db/units.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"

namespace cli {

namespace {

bool isOf(const OdDbObjectId& id, const OdRxClass* base) {
  const OdRxClass* itsClass = id.objectClass();
  return itsClass != nullptr && itsClass->isDerivedFrom(base);
}

/// A solid of a block; features own others, which no block shows.
bool isShownSolid(const OdDbObjectId& id) {
  return isOf(id, OdDb3dSolid::desc()) && isOf(id.ownerId(), OdDbBlockTableRecord::desc());
}

const char* kindName(OdModelerBodyKind kind) {
  static constexpr const char* kNames[] = {"solid", "sheet", "wire", "mixed"};
  return kNames[static_cast<std::size_t>(kind)];
}

BlockFacts factsOfBlock(const OdDbBlockTableRecord& block) {
  BlockFacts facts;
  facts.handle = block.getDbHandle();
  facts.name = str(block.getName());
  const OdDbObjectIdArray entities = block.entityIds();
  facts.entities = static_cast<std::uint64_t>(std::count_if(
      entities.begin(), entities.end(), [](const OdDbObjectId& id) { return !id.isErased(); }));
  facts.references = block.getBlockReferenceIds().size();
  facts.layout = block.isLayout();
  if (block.isFromExternalReference()) facts.xrefPath = str(block.pathName());
  return facts;
}

SolidFacts factsOfSolid(const OdDb3dSolid& solid) {
  SolidFacts facts;
  facts.handle = solid.getDbHandle();
  if (const auto block = solid.blockId().openAs<OdDbBlockTableRecord>(); !block.isNull()) {
    facts.block = str(block->getName());
  }
  OdModelerBodyPtr body;
  const OdStatus status = solid.getBody(body);
  if (!status.ok() || !body) {
    facts.fault = status.ok() ? "the solid is empty" : str(status.text);
    return facts;
  }
  facts.name = str(body->attributes().name);
  facts.kind = kindName(body->kind());
  facts.faces = body->numFaces();
  facts.edges = body->numEdges();
  facts.vertices = body->numVertices();
  const OdModelerMassProperties mass = body->massProperties();
  const double millimetresPerUnit =
      oddbGetUnitsConversion(lengthUnitsOf(solid), OdDb::kUnitsMillimeters);
  facts.volume = mass.volume * millimetresPerUnit * millimetresPerUnit * millimetresPerUnit;
  facts.area = mass.area * millimetresPerUnit * millimetresPerUnit;
  return facts;
}

/// Walks the objects of a drawing once.
class Gatherer {
 public:
  void visit(const OdDbObjectId& id) {
    ++m_facts.objects;
    if (isOf(id, OdDbBlockReference::desc())) ++m_facts.inserts;
    const bool wanted = isOf(id, OdDbProxyObject::desc()) || isShownSolid(id) ||
                        isOf(id, OdDbBlockTableRecord::desc()) ||
                        isOf(id, OdDbLayerTableRecord::desc());
    if (!wanted) return;
    try {
      take(*id.safeOpenObject());
    } catch (const OdError& error) {
      m_facts.faults.push_back("object " + str(id.getHandle()) + ": " + str(error.description()));
    }
  }

  DrawingFacts facts() && { return std::move(m_facts); }

 private:
  void take(const OdDbObject& object) {
    if (object.isKindOf(OdDbProxyObject::desc())) {
      ++m_facts.proxies;
      ++m_facts.proxyClasses[classNameOf(object)];
    } else if (object.isKindOf(OdDbBlockTableRecord::desc())) {
      m_facts.blocks.push_back(factsOfBlock(static_cast<const OdDbBlockTableRecord&>(object)));
    } else if (object.isKindOf(OdDbLayerTableRecord::desc())) {
      m_facts.layers.push_back(str(static_cast<const OdDbLayerTableRecord&>(object).getName()));
    } else {
      m_facts.solids.push_back(factsOfSolid(static_cast<const OdDb3dSolid&>(object)));
    }
  }

  DrawingFacts m_facts;
};

}  // namespace

OdDb::UnitsValue lengthUnitsOf(const OdDbEntity& entity) {
  const auto block = entity.blockId().openAs<OdDbBlockTableRecord>();
  if (!block.isNull() && !block->isLayout() && block->blockInsertUnits() != OdDb::kUnitsUndefined) {
    return block->blockInsertUnits();
  }
  return entity.database()->getINSUNITS();
}

std::string unitsName(OdDbDatabase& drawing) { return str(oddbUnitsName(drawing.getINSUNITS())); }

DrawingFacts gatherFacts(OdDbDatabase& drawing) {
  Gatherer gatherer;
  drawing.forEachId([&gatherer](OdDbObjectId id) {
    gatherer.visit(id);
    return true;
  });
  DrawingFacts facts = std::move(gatherer).facts();
  // The drawing's own note says more than the status of opening.
  if (!drawing.loadErrors().isEmpty()) facts.faults = linesOf(drawing.loadErrors());
  facts.units = unitsName(drawing);
  facts.unitsSymbol = str(oddbUnitsSymbol(drawing.getINSUNITS()));
  return facts;
}

std::vector<OdDbObjectId> shownSolids(OdDbDatabase& drawing) {
  std::vector<OdDbObjectId> solids;
  drawing.forEachId([&solids](OdDbObjectId id) {
    if (isShownSolid(id)) solids.push_back(id);
    return true;
  });
  return solids;
}

std::vector<OdDbObjectId> partSolids(OdDbDatabase& drawing) {
  std::vector<OdDbObjectId> tools;
  for (const vdm_host::ComponentInfo& component : vdm_host::listComponents(&drawing)) {
    tools.push_back(component.block);
  }
  std::vector<OdDbObjectId> solids = shownSolids(drawing);
  std::erase_if(solids, [&tools](const OdDbObjectId& solid) {
    return std::ranges::find(tools, solid.ownerId()) != tools.end();
  });
  return solids;
}

DrawingCounts countDrawing(OdDbDatabase& drawing) {
  DrawingCounts counts;
  drawing.forEachId([&counts](OdDbObjectId id) {
    ++counts.objects;
    if (isShownSolid(id)) ++counts.solids;
    if (isOf(id, OdDbBlockTableRecord::desc())) ++counts.blocks;
    if (isOf(id, OdDbBlockReference::desc())) ++counts.inserts;
    return true;
  });
  constexpr std::uint64_t kLayouts = 2;  // model and paper space
  counts.blocks -= std::min(counts.blocks, kLayouts);
  return counts;
}

}  // namespace cli
