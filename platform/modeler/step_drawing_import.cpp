// STEP files into drawings.
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/layer_table.h"
#include "platform/db/units.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler/step_drawing.h"

namespace {

OdCmColor toEntityColor(const OdModelerColor& color) {
  return OdCmColor::fromRGB(color.red, color.green, color.blue);
}

// A valid name for a symbol table: characters that it refuses become underscores.
OdString symbolName(const OdString& name, const wchar_t* fallback) {
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
  return result.isEmpty() ? OdString(fallback) : result;
}

// The unit of a file as a unit of drawings; millimetres when drawings do not have it.
OdDb::UnitsValue drawingUnit(const OdModelerLengthUnit& unit) {
  constexpr double kTolerance = 1e-9;  // of a factor that went through text
  constexpr double kMillimetres = 1e3;
  for (OdInt32 i = 1; oddbIsUnit(i); ++i) {
    const auto units = static_cast<OdDb::UnitsValue>(i);
    const double factor = oddbMetresPerUnit(units) * kMillimetres;
    if (std::abs(factor - unit.millimetres) <= kTolerance * factor) return units;
  }
  return OdDb::kUnitsMillimeters;
}

class Importer {
 public:
  Importer(OdDbDatabase* database, const OdModelerAssembly& assembly,
           const OdStepImportOptions& options, OdStepReport& report)
      : m_database(database), m_assembly(assembly), m_options(options), m_report(report) {}

  void run() {
    const OdDbObjectId space = m_database->getModelSpaceId();
    const bool isEmpty = open(space, OdDb::kForRead)->isEmpty();
    if (isEmpty) m_database->setINSUNITS(drawingUnit(m_assembly.sourceUnit));
    m_scale = oddbGetUnitsConversion(OdDb::kUnitsMillimeters, m_database->getINSUNITS());
    m_database->newRegApp(kOdStepRegApp);
    m_blocks.resize(m_assembly.products.size());
    for (const OdModelerOccurrence& root : m_assembly.roots) {
      const OdModelerProduct& product = m_assembly.products[root.product];
      if (m_assembly.roots.size() == 1 && product.occurrences.empty()) {
        ++m_report.products;
        if (isEmpty) open(space, OdDb::kForWrite)->setComments(product.name);
        addContent(product, space, OdGeMatrix3d::scaling(m_scale) * root.placement);
      } else {
        addReference(root, space);
      }
    }
    if (m_report.annotations == 0) return;
    OdString line;
    line.format(L"%u annotations are on the layer '%ls'", m_report.annotations,
                kOdStepAnnotationLayer);
    m_report.lines.append(line);
  }

 private:
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
    addContent(product, id, OdGeMatrix3d::scaling(m_scale));
    for (const OdModelerOccurrence& occurrence : product.occurrences) addReference(occurrence, id);
    return id;
  }

  OdDbObjectId newBlock(const OdModelerProduct& product) {
    OdDbBlockTablePtr table =
        m_database->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
    const OdString wanted = symbolName(product.uniqueId, L"product");
    OdString name = wanted;
    for (unsigned number = 2; table->has(name); ++number) {
      name.format(L"%ls~%u", wanted.c_str(), number);
    }
    OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    const OdDbObjectId id = table->add(block);
    block->setComments(product.name);
    block->setBlockInsertUnits(m_database->getINSUNITS());
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

  // Bodies and annotations; occurrences are placed by the caller.
  void addContent(const OdModelerProduct& product, const OdDbObjectId& block,
                  const OdGeMatrix3d& placement) {
    OdDbBlockTableRecordPtr target = open(block, OdDb::kForWrite);
    bool curvesLeft = false;
    bool sheetsLeft = false;
    for (std::size_t i = 0; i < product.bodies.size(); ++i) {
      const OdModelerBodyPtr& body = product.bodies[i];
      if (isWanted(body->kind())) {
        addBody(*target, *body, placement, product.name, layerId(product.layerOf(i)));
      } else {
        (body->kind() == OdModelerBodyKind::kWire ? curvesLeft : sheetsLeft) = true;
      }
    }
    if (curvesLeft) m_report.leftOut.append(L"curves of product '" + product.name + L"'");
    if (sheetsLeft) m_report.leftOut.append(L"sheets of product '" + product.name + L"'");
    for (const OdModelerAnnotation& annotation : product.annotations) {
      addBody(*target, *annotation.body, placement, annotation.name,
              layerId(kOdStepAnnotationLayer));
      ++m_report.annotations;
    }
  }

  // The colour of the body becomes that of the entity, where users look for it. A body without a
  // name takes that of its product.
  static void addBody(OdDbBlockTableRecord& block, const OdModelerBody& body,
                      const OdGeMatrix3d& placement, const OdString& fallbackName,
                      const OdDbObjectId& layer) {
    OdModelerBodyPtr placed;
    if (const OdStatus status = body.transformed(placement, placed); !status.ok()) {
      throw OdError(status.code, status.text);
    }
    OdModelerBodyAttributes attributes = placed->attributes();
    const std::optional<OdModelerColor> color = std::exchange(attributes.color, std::nullopt);
    if (attributes.name.isEmpty()) attributes.name = fallbackName;
    OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
    block.appendOdDbEntity(solid);
    solid->setBody(placed->withAttributes(std::move(attributes)));
    if (color) solid->setColor(toEntityColor(*color));
    if (!layer.isNull()) solid->setLayer(layer);
  }

  // Null for no name. A layer of that name which the drawing has is used as it is.
  OdDbObjectId layerId(const OdString& name) {
    if (name.isEmpty()) return {};
    OdDbObjectId& id = m_layers[name];
    if (!id.isNull()) return id;
    const OdString valid = symbolName(name, L"layer");
    if (valid != name) {
      m_report.lines.append(L"layer '" + name + L"' is layer '" + valid + L"'");
    }
    OdDbLayerTablePtr table =
        m_database->getLayerTableId().safeOpenAs<OdDbLayerTable>(OdDb::kForWrite);
    id = table->getAt(valid);
    if (!id.isNull()) return id;
    OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(valid);
    return id = table->add(layer);
  }

  // A placement in millimetres as one in drawing units: only lengths change.
  [[nodiscard]] OdGeMatrix3d inDrawingUnits(OdGeMatrix3d placement) const {
    for (unsigned row = 0; row < 3; ++row) placement(row, 3) *= m_scale;
    return placement;
  }

  void addReference(const OdModelerOccurrence& occurrence, const OdDbObjectId& owner) {
    const OdDbObjectId shown = blockOf(occurrence.product);
    OdDbBlockTableRecordPtr target = open(owner, OdDb::kForWrite);
    OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    target->appendOdDbEntity(reference);
    reference->setBlockTableRecord(shown);
    const OdGeMatrix3d placement = inDrawingUnits(occurrence.placement);
    if (const OdResult result = reference->setBlockTransform(placement); result != eOk) {
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
  double m_scale = 1.0;                       // drawing units in a millimetre
  std::vector<OdDbObjectId> m_blocks;         // by product
  std::map<OdString, OdDbObjectId> m_layers;  // by name in the file
};

}  // namespace

OdStatus importStepIntoDatabase(OdDbDatabase* database, const OdString& path, OdStepReport* report,
                                const OdStepImportOptions& options) {
  OdModelerAssembly assembly;
  const OdModelerReadOptions reading{options.encoding, options.annotations};
  if (OdStatus status = odModeler().importStep(path, reading, assembly); !status.ok()) {
    return status;
  }
  if (OdStatus status = assembly.check(); !status.ok()) return status;
  OdStepReport done;
  done.sourceUnit = assembly.sourceUnit.name;
  done.lines = assembly.notes.remarks;
  done.leftOut = assembly.notes.leftOut;
  done.lost = assembly.notes.lost;
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
