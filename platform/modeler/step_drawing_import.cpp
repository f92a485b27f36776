// STEP files into drawings.
#include <string>
#include <utility>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/units.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler/step_drawing.h"

namespace {

OdCmColor toEntityColor(const OdModelerColor& color) {
  return OdCmColor::fromRGB(color.red, color.green, color.blue);
}

// A valid name for the block table: characters that it refuses become underscores.
OdString blockName(const OdString& name) {
  constexpr int kMaxLength = 200;
  std::wstring text = name.left(kMaxLength).toWide();
  for (wchar_t& c : text) {
    if (c < 0x20 || c == 0x7F ||
        std::wstring_view(L"|*\\:;<>?\",=`/").find(c) != std::wstring::npos) {
      c = L'_';
    }
  }
  OdString result(text);
  result.trimLeft().trimRight();
  return result.isEmpty() ? OdString(L"product") : result;
}

class Importer {
 public:
  Importer(OdDbDatabase* database, const OdModelerAssembly& assembly,
           const OdStepImportOptions& options, OdStepReport& report)
      : m_database(database), m_assembly(assembly), m_options(options), m_report(report) {}

  void run() {
    const double scale = drawingScale();
    m_database->newRegApp(kOdStepRegApp);
    m_blocks.resize(m_assembly.products.size());
    for (const OdModelerOccurrence& root : m_assembly.roots) {
      const OdModelerProduct& product = m_assembly.products[root.product];
      const OdGeMatrix3d placement = OdGeMatrix3d::scaling(scale) * root.placement;
      if (m_assembly.roots.size() == 1 && product.occurrences.empty()) {
        ++m_report.products;
        addBodies(product, m_database->getModelSpaceId(), placement);
      } else {
        addReference({root.product, placement, root.name, root.color},
                     m_database->getModelSpaceId());
      }
    }
  }

 private:
  // Millimetres to the unit of the drawing; an empty drawing takes millimetres.
  double drawingScale() {
    OdDbBlockTableRecordPtr space = open(m_database->getModelSpaceId(), OdDb::kForRead);
    if (space->isEmpty()) m_database->setINSUNITS(OdDb::kUnitsMillimeters);
    return oddbGetUnitsConversion(OdDb::kUnitsMillimeters, m_database->getINSUNITS());
  }

  static OdDbBlockTableRecordPtr open(const OdDbObjectId& id, OdDb::OpenMode mode) {
    return id.safeOpenAs<OdDbBlockTableRecord>(mode);
  }

  // A block is made before the references to it, so sub-assemblies come first.
  OdDbObjectId blockOf(OdUInt32 index) {
    if (!m_blocks[index].isNull()) return m_blocks[index];
    const OdModelerProduct& product = m_assembly.products[index];
    const OdDbObjectId id = newBlock(product);
    m_blocks[index] = id;
    ++m_report.products;
    addBodies(product, id, OdGeMatrix3d::kIdentity);
    for (const OdModelerOccurrence& occurrence : product.occurrences) addReference(occurrence, id);
    return id;
  }

  OdDbObjectId newBlock(const OdModelerProduct& product) {
    OdDbBlockTablePtr table =
        m_database->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
    const OdString wanted = blockName(product.uniqueId);
    OdString name = wanted;
    for (unsigned number = 2; table->has(name); ++number) {
      name.format(L"%ls~%u", wanted.c_str(), number);
    }
    OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    const OdDbObjectId id = table->add(block);
    block->setComments(product.name);
    block->setBlockInsertUnits(OdDb::kUnitsMillimeters);
    if (name != product.uniqueId) {
      m_report.lines.append(OdString(L"product '") + product.uniqueId + L"' is block '" + name +
                            L"'");
    }
    return id;
  }

  bool isWanted(OdModelerBodyKind kind) {
    switch (kind) {
      case OdModelerBodyKind::kSolid:
        ++m_report.solids;
        return true;
      case OdModelerBodyKind::kWire:
        ++m_report.curves;
        return m_options.curves;
      default:
        ++m_report.sheets;
        return m_options.sheets;
    }
  }

  void addBodies(const OdModelerProduct& product, const OdDbObjectId& block,
                 const OdGeMatrix3d& placement) {
    OdDbBlockTableRecordPtr target = open(block, OdDb::kForWrite);
    OdUInt32 left = 0;
    for (const OdModelerBodyPtr& body : product.bodies) {
      if (isWanted(body->kind())) {
        addBody(*target, *body, placement, product.name);
      } else {
        ++left;
      }
    }
    if (left == 0) return;
    OdString line;
    line.format(L"product '%ls': %u bodies of curves or faces left out", product.uniqueId.c_str(),
                left);
    m_report.lines.append(line);
  }

  // The colour of the body becomes that of the entity, where users look for it. A body without a
  // name takes that of its product.
  static void addBody(OdDbBlockTableRecord& block, const OdModelerBody& body,
                      const OdGeMatrix3d& placement, const OdString& productName) {
    OdModelerBodyPtr placed;
    if (const OdStatus status = body.transformed(placement, placed); !status.ok()) {
      throw OdError(status.code, status.text);
    }
    OdModelerBodyAttributes attributes = placed->attributes();
    const std::optional<OdModelerColor> color = std::exchange(attributes.color, std::nullopt);
    if (attributes.name.isEmpty()) attributes.name = productName;
    OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
    block.appendOdDbEntity(solid);
    solid->setBody(placed->withAttributes(std::move(attributes)));
    if (color) solid->setColor(toEntityColor(*color));
  }

  void addReference(const OdModelerOccurrence& occurrence, const OdDbObjectId& owner) {
    const OdDbObjectId shown = blockOf(occurrence.product);
    OdDbBlockTableRecordPtr target = open(owner, OdDb::kForWrite);
    OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    target->appendOdDbEntity(reference);
    reference->setBlockTableRecord(shown);
    if (const OdResult result = reference->setBlockTransform(occurrence.placement); result != eOk) {
      throw OdError(result, OdString(L"placement of occurrence '") + occurrence.name + L"'");
    }
    if (occurrence.color) reference->setColor(toEntityColor(*occurrence.color));
    if (!occurrence.name.isEmpty()) {
      OdResBufPtr data = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(kOdStepRegApp));
      data->setNext(OdResBuf::newRb(OdResBuf::kDxfXdAsciiString, occurrence.name).get());
      reference->setXData(data.get());
    }
    ++m_report.occurrences;
  }

  OdDbDatabase* m_database;
  const OdModelerAssembly& m_assembly;
  const OdStepImportOptions& m_options;
  OdStepReport& m_report;
  std::vector<OdDbObjectId> m_blocks;  // by product
};

}  // namespace

OdStatus importStepIntoDatabase(OdDbDatabase* database, const OdString& path, OdStepReport* report,
                                const OdStepImportOptions& options) {
  OdModelerAssembly assembly;
  if (OdStatus status = odModeler().importStep(path, assembly); !status.ok()) return status;
  if (OdStatus status = assembly.check(); !status.ok()) return status;
  OdStepReport done;
  done.sourceUnit = assembly.sourceUnit.name;
  try {
    OdDbTransaction transaction(database);
    Importer(database, assembly, options, done).run();
    if (const OdResult result = transaction.commit(); result != eOk) throw OdError(result);
  } catch (const OdError& error) {
    return {error.code(), OdString(L"step file '") + path + L"': " + error.description()};
  }
  if (report != nullptr) *report = std::move(done);
  return {};
}
