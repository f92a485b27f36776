// Drawings into STEP files.
#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/layer_table.h"
#include "platform/db/units.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler/step_drawing.h"

namespace {

class Exporter {
 public:
  Exporter(OdDbDatabase* database, OdStepReport& report) : m_database(database), m_report(report) {}

  OdModelerAssembly run() {
    const double scale = oddbGetUnitsConversion(m_database->getINSUNITS(), OdDb::kUnitsMillimeters);
    m_assembly.sourceUnit = {oddbUnitsName(m_database->getINSUNITS()), scale};
    const OdUInt32 space = productOf(m_database->getModelSpaceId());
    reportOthers();
    OdModelerOccurrence root{space, OdGeMatrix3d::scaling(scale), OdString(), std::nullopt};
    const OdModelerProduct& whole = m_assembly.products[space];
    // Model space that holds one reference and nothing else is no product of its own.
    if (whole.bodies.empty() && whole.occurrences.size() == 1 &&
        whole.occurrences[0].placement.isIdentity()) {
      root.product = whole.occurrences[0].product;
      --m_report.products;
      --m_report.occurrences;
    }
    m_assembly.roots.push_back(root);
    return std::move(m_assembly);
  }

  [[nodiscard]] bool foundBodies() const {
    return m_report.solids + m_report.sheets + m_report.curves > 0;
  }

 private:
  // Products are numbered from the outside inwards, in the order of the entities.
  OdUInt32 productOf(const OdDbObjectId& block) {
    const auto known = m_products.find(block);
    if (known != m_products.end()) return known->second;
    const auto index = static_cast<OdUInt32>(m_assembly.products.size());
    m_products.emplace(block, index);
    m_assembly.products.emplace_back();
    OdDbBlockTableRecordPtr record = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForRead);
    const bool isSpace = block == m_database->getModelSpaceId();
    const OdString comment = record->comments();
    const OdString ownName = isSpace ? drawingName() : record->getName();
    m_assembly.products[index].uniqueId = isSpace && !comment.isEmpty() ? comment : ownName;
    m_assembly.products[index].name = comment.isEmpty() ? ownName : comment;
    for (OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step()) {
      addEntity(index, it->entity(), record->origin());
    }
    if (isSpace && comment.isEmpty()) nameAfterBody(m_assembly.products[index]);
    return index;
  }

  // The name of the drawing's file.
  [[nodiscard]] OdString drawingName() const {
    const std::string file(m_database->getFilename().utf8());
    const std::string stem = std::filesystem::path(file).stem().string();
    return stem.empty() ? OdString(L"drawing") : OdString(stem);
  }

  // Model space with a single part is that part.
  static void nameAfterBody(OdModelerProduct& product) {
    if (product.bodies.size() != 1 || !product.occurrences.empty()) return;
    const OdString name = product.bodies[0]->attributes().name;
    if (name.isEmpty()) return;
    product.name = name;
    product.uniqueId = name;
  }

  void addEntity(OdUInt32 product, const OdDbEntityPtr& entity, const OdGePoint3d& origin) {
    if (entity.isNull()) return;
    if (const OdDbLayerTableRecordPtr layer = hidingLayer(*entity); !layer.isNull()) {
      const OdString why = L"is on the layer " + layer->getName() + L", which is off or frozen";
      return skip(*entity, why.c_str());
    }
    if (const OdDb3dSolidPtr solid = OdDb3dSolid::cast(entity); !solid.isNull()) {
      addSolid(product, *solid, origin);
    } else if (const OdDbBlockReferencePtr reference = OdDbBlockReference::cast(entity);
               !reference.isNull()) {
      addReference(product, *reference, origin);
    } else {
      skip(*entity, L"is neither solid nor block reference");
    }
  }

  // The entity's layer when that shows nothing; null otherwise.
  static OdDbLayerTableRecordPtr hidingLayer(const OdDbEntity& entity) {
    OdDbLayerTableRecordPtr layer = entity.layerId().openAs<OdDbLayerTableRecord>();
    const bool hides = !layer.isNull() && (layer->isOff() || layer->isFrozen());
    return hides ? layer : OdDbLayerTableRecordPtr();
  }

  void skip(const OdDbEntity& entity, const wchar_t* why) {
    m_report.leftOut.append(entity.isA()->name() + L" " + entity.getDbHandle().ascii() +
                            L", which " + why);
  }

  // What the written entities have and the file cannot hold.
  void countExtras(const OdDbEntity& entity) {
    const bool hasData = !entity.extensionDictionary().isNull() || hasForeignData(entity);
    m_withData += hasData ? 1U : 0U;
    m_withLines += !entity.linetypeId().isNull() || entity.lineWeight() != OdDb::kLnWtByLayer;
    m_withMaterial += entity.materialId().isNull() ? 0U : 1U;
    m_invisible += entity.visibility() == OdDb::kInvisible ? 1U : 0U;
  }

  static bool hasForeignData(const OdDbEntity& entity) {
    for (OdResBufPtr data = entity.xData(); !data.isNull(); data = data->next()) {
      const bool isName = data->restype() == OdResBuf::kDxfRegAppName;
      if (isName && data->getString() != OdString(kOdStepRegApp)) return true;
    }
    return false;
  }

  void reportOthers() {
    const auto report = [this](unsigned count, const wchar_t* one, const wchar_t* several) {
      if (count == 0) return;
      OdString line;
      line.format(L"%u %ls", count, count == 1 ? one : several);
      m_report.leftOut.append(line);
    };
    report(m_withData, L"entity's extension dictionary or extended data",
           L"entities' extension dictionaries or extended data");
    report(m_withLines, L"entity's line type or weight", L"entities' line types or weights");
    report(m_withMaterial, L"entity's material", L"entities' materials");
    report(m_layeredInserts, L"block reference's layer", L"block references' layers");
    report(m_invisible, L"entity's invisibility: it is written",
           L"entities' invisibility: they are written");
    const auto paper = m_database->getPaperSpaceId().openAs<OdDbBlockTableRecord>();
    if (!paper.isNull() && !paper->isEmpty()) {
      m_report.leftOut.append(OdString(L"the entities of paper space"));
    }
  }

  // An entity's own colour, or the one that its layer gives it; none for a layer's first colour,
  // with which every layer begins.
  static std::optional<OdModelerColor> shownColor(const OdDbEntity& entity) {
    OdCmColor color = entity.color();
    if (color.isByLayer()) {
      const auto layer = entity.layerId().openAs<OdDbLayerTableRecord>();
      if (layer.isNull() || layer->color() == OdCmColor::fromIndex(7)) return std::nullopt;
      color = layer->color();
    }
    if (!color.isByColor() && !color.isByACI()) return std::nullopt;
    const OdCmColor value = color.toRGB();
    return OdModelerColor{value.red(), value.green(), value.blue()};
  }

  static OdString layerOf(const OdDbEntity& entity) {
    const OdString name = entity.layer();
    return name == L"0" ? OdString() : name;
  }

  // Products have their origin at zero: the block's origin is taken off, as its references do.
  static OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGePoint3d& origin) {
    OdModelerBodyPtr result;
    const OdStatus status =
        body->transformed(OdGeMatrix3d::translation(OdGePoint3d::kOrigin - origin), result);
    if (!status.ok()) throw OdError(status.code, status.text);
    return result;
  }

  void addSolid(OdUInt32 product, const OdDb3dSolid& solid, const OdGePoint3d& origin) {
    OdModelerBodyPtr body = solid.body();
    if (!body) return skip(solid, L"is empty");
    if (origin != OdGePoint3d::kOrigin) body = moved(body, origin);
    if (const std::optional<OdModelerColor> color = shownColor(solid)) {
      OdModelerBodyAttributes attributes = body->attributes();
      attributes.color = color;
      body = body->withAttributes(std::move(attributes));
    }
    countExtras(solid);
    count(body->kind());
    m_assembly.products[product].bodies.push_back(std::move(body));
    m_assembly.products[product].layers.push_back(layerOf(solid));
  }

  void count(OdModelerBodyKind kind) {
    if (kind == OdModelerBodyKind::kSolid) {
      ++m_report.solids;
    } else {
      ++(kind == OdModelerBodyKind::kWire ? m_report.curves : m_report.sheets);
    }
  }

  void addReference(OdUInt32 product, const OdDbBlockReference& reference,
                    const OdGePoint3d& origin) {
    const OdDbObjectId shown = reference.blockTableRecord();
    if (shown.isNull() || shown.isErased()) return skip(reference, L"shows no block");
    OdDbBlockTableRecordPtr block = shown.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForRead);
    if (block->isFromExternalReference()) return skip(reference, L"shows an external drawing");
    // The product has its origin at zero, so the placement takes in the block's origin.
    const OdGeMatrix3d placement =
        OdGeMatrix3d::translation(OdGePoint3d::kOrigin - origin) * reference.blockTransform() *
        OdGeMatrix3d::translation(block->origin() - OdGePoint3d::kOrigin);
    const OdUInt32 its = productOf(shown);
    if (isEmpty(m_assembly.products[its])) return;
    OdModelerOccurrence occurrence{its, placement, nameOf(reference), std::nullopt};
    occurrence.color = shownColor(reference);
    countExtras(reference);
    if (const OdString layer = layerOf(reference); !layer.isEmpty()) ++m_layeredInserts;
    m_assembly.products[product].occurrences.push_back(std::move(occurrence));
    ++m_report.occurrences;
  }

  static bool isEmpty(const OdModelerProduct& product) {
    return product.bodies.empty() && product.occurrences.empty();
  }

  static OdString nameOf(const OdDbBlockReference& reference) {
    for (OdResBufPtr data = reference.xData(kOdStepRegApp); !data.isNull(); data = data->next()) {
      if (data->restype() == OdResBuf::kDxfXdAsciiString) return data->getString();
    }
    return {};
  }

  OdDbDatabase* m_database;
  OdStepReport& m_report;
  OdModelerAssembly m_assembly;
  std::map<OdDbObjectId, OdUInt32> m_products;
  unsigned m_withData = 0;
  unsigned m_withLines = 0;
  unsigned m_withMaterial = 0;
  unsigned m_invisible = 0;
  unsigned m_layeredInserts = 0;
};

// Removes occurrences of products without any body below them: some readers refuse such products.
// Gives the number of the other products.
OdUInt32 dropEmptyOccurrences(OdModelerAssembly& assembly) {
  std::vector<char> state(assembly.products.size(), 0);  // 0 unknown, 1 empty, 2 not
  const auto hasBody = [&](auto&& self, OdUInt32 index) -> bool {
    if (state[index] != 0) return state[index] == 2;
    OdModelerProduct& product = assembly.products[index];
    state[index] = 1;
    std::erase_if(product.occurrences,
                  [&](const OdModelerOccurrence& o) { return !self(self, o.product); });
    if (!product.bodies.empty() || !product.occurrences.empty()) state[index] = 2;
    return state[index] == 2;
  };
  for (const OdModelerOccurrence& root : assembly.roots) hasBody(hasBody, root.product);
  return static_cast<OdUInt32>(std::ranges::count(state, char{2}));
}

}  // namespace

OdStatus exportStepFromDatabase(OdDbDatabase* database, const OdString& path, OdStepReport* report,
                                const OdStepExportOptions& options) {
  OdStepReport done;
  OdModelerAssembly assembly;
  try {
    Exporter exporter(database, done);
    assembly = exporter.run();
    if (!exporter.foundBodies()) {
      return {eInvalidInput,
              OdString(L"step file '") + path + L"': there is no solid in model space"};
    }
  } catch (const OdError& error) {
    return {error.code(), OdString(L"step file '") + path + L"': " + error.description()};
  }
  done.products = dropEmptyOccurrences(assembly);
  assembly.header.name = assembly.products[assembly.roots[0].product].name;
  assembly.header.timeStamp = options.timeStamp;
  assembly.header.originatingSystem = options.originatingSystem;
  OdStatus status = odModeler().exportStep(path, assembly);
  if (status.ok() && report != nullptr) *report = std::move(done);
  return status;
}
