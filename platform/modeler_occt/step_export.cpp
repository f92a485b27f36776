// Products and occurrences to STEP files.
#include <APIHeaderSection_MakeHeader.hxx>
#include <BRep_Builder.hxx>
#include <Interface_EntityIterator.hxx>
#include <Interface_Graph.hxx>
#include <Interface_Protocol.hxx>
#include <Interface_Static.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <StepData_StepModel.hxx>
#include <StepRepr_NextAssemblyUsageOccurrence.hxx>
#include <StepRepr_RepresentationContext.hxx>
#include <StepVisual_MechanicalDesignGeometricPresentationRepresentation.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TopoDS_Compound.hxx>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/new_file.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/step_exchange.h"
#include "platform/modeler_occt/step_session.h"

namespace od_occt {
namespace {

namespace fs = std::filesystem;

// ---- The document.

class DocumentBuilder {
 public:
  DocumentBuilder(const StepSession& session, const OdModelerAssembly& assembly)
      : m_session(session), m_assembly(assembly) {}

  OdStatus run() {
    for (const OdModelerOccurrence& root : m_assembly.roots) {
      TDF_Label label;
      const OdStatus status = labelOf(root.product, root.placement, label);
      if (!status.ok()) return status;
    }
    m_session.shapes()->UpdateAssemblies();
    return {};
  }

 private:
  // Exchange files place products rigidly. A product that is scaled or mirrored by its placement is
  // written as a product of its own for each scale, with the scale in its geometry; under a
  // placement that is not uniform the whole placement is.
  struct Key {
    OdUInt32 product;
    OdGeMatrix3d baked;
    bool operator<(const Key& other) const {
      if (product != other.product) return product < other.product;
      return std::lexicographical_compare(baked.getElements(), baked.getElements() + 16,
                                          other.baked.getElements(),
                                          other.baked.getElements() + 16);
    }
  };

  OdStatus labelOf(OdUInt32 product, const OdGeMatrix3d& baked, TDF_Label& label) {
    const Key key{product, baked};
    if (const auto known = m_labels.find(key); known != m_labels.end()) {
      label = known->second;
      return {};
    }
    const OdModelerProduct& source = m_assembly.products[product];
    OdStatus status = source.occurrences.empty() ? addPart(source, baked, label)
                                                 : addAssembly(source, baked, label);
    if (!status.ok()) return status;
    setLabelName(label, source.name.isEmpty() ? source.uniqueId : source.name);
    m_labels.emplace(key, label);
    return {};
  }

  OdStatus addPart(const OdModelerProduct& product, const OdGeMatrix3d& baked, TDF_Label& label) {
    std::vector<OdModelerBodyPtr> bodies;
    for (const OdModelerBodyPtr& body : product.bodies) {
      if (OdStatus status = body->transformed(baked, bodies.emplace_back()); !status.ok()) {
        return status;
      }
    }
    label = m_session.shapes()->AddShape(wholeOf(bodies), /*makeAssembly=*/Standard_False);
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      const bool isWhole = bodies.size() == 1;
      addStyles(label, asOcct(*bodies[i]), isWhole);
      addLayer(label, asOcct(*bodies[i]), isWhole, product.layerOf(i));
    }
    return {};
  }

  // The writer makes an unnamed product of a shape that has a location.
  static TopoDS_Shape wholeOf(const std::vector<OdModelerBodyPtr>& bodies) {
    if (bodies.size() == 1 && asOcct(*bodies.front()).shape().Location().IsIdentity()) {
      return asOcct(*bodies.front()).shape();
    }
    TopoDS_Compound whole;
    BRep_Builder builder;
    builder.MakeCompound(whole);
    for (const OdModelerBodyPtr& body : bodies) builder.Add(whole, asOcct(*body).shape());
    return whole;
  }

  void addStyles(const TDF_Label& part, const Body& body, bool whole) {
    const OdModelerBodyAttributes& attributes = body.attributes();
    if (attributes.color && whole) {
      m_session.colors()->SetColor(part, toOcct(*attributes.color), XCAFDoc_ColorGen);
    }
    if ((attributes.color && !whole) || !attributes.name.isEmpty()) {
      setStyle(part, body.shape(), whole ? std::nullopt : attributes.color, attributes.name);
    }
    for (const auto& [face, color] : attributes.faceColors) {
      setStyle(part, faceOf(body, face), color, {});
    }
    for (const auto& [face, name] : attributes.faceNames) {
      setStyle(part, faceOf(body, face), std::nullopt, name);
    }
  }

  void addLayer(const TDF_Label& part, const Body& body, bool whole, const OdString& layer) {
    if (layer.isEmpty()) return;
    const TDF_Label label = whole ? part : subShape(part, body.shape());
    if (!label.IsNull()) m_session.layers()->SetLayer(label, toOcct(layer));
  }

  static const TopoDS_Shape& faceOf(const Body& body, OdUInt32 index) {
    return body.topology().faces(static_cast<int>(index));
  }

  void setStyle(const TDF_Label& part, const TopoDS_Shape& shape,
                const std::optional<OdModelerColor>& color, const OdString& name) {
    const TDF_Label label = subShape(part, shape);
    if (label.IsNull()) return;
    if (color) m_session.colors()->SetColor(label, toOcct(*color), XCAFDoc_ColorSurf);
    setLabelName(label, name);
  }

  [[nodiscard]] TDF_Label subShape(const TDF_Label& part, const TopoDS_Shape& shape) const {
    TDF_Label label;
    const bool isKnown = m_session.shapes()->FindSubShape(part, shape, label);
    return isKnown ? label : m_session.shapes()->AddSubShape(part, shape);
  }

  OdStatus addAssembly(const OdModelerProduct& product, const OdGeMatrix3d& baked,
                       TDF_Label& label) {
    label = m_session.shapes()->NewShape();
    if (!product.bodies.empty()) {
      TDF_Label part;
      if (OdStatus status = addPart(product, baked, part); !status.ok()) return status;
      setLabelName(part, product.uniqueId + L" bodies");
      m_session.shapes()->AddComponent(label, part, TopLoc_Location());
    }
    for (const OdModelerOccurrence& occurrence : product.occurrences) {
      if (OdStatus status = addOccurrence(occurrence, baked, label); !status.ok()) {
        return status;
      }
    }
    return {};
  }

  OdStatus addOccurrence(const OdModelerOccurrence& occurrence, const OdGeMatrix3d& baked,
                         const TDF_Label& parent) {
    const Split placement = split(baked * occurrence.placement);
    TDF_Label child;
    OdStatus status = labelOf(occurrence.product, placement.baked, child);
    if (!status.ok()) return status;
    const TDF_Label label =
        m_session.shapes()->AddComponent(parent, child, TopLoc_Location(placement.move));
    setLabelName(label, occurrence.name);
    if (occurrence.color) {
      m_session.colors()->SetColor(label, toOcct(*occurrence.color), XCAFDoc_ColorGen);
    }
    return {};
  }

  struct Split {
    gp_Trsf move;
    OdGeMatrix3d baked;
  };
  // A uniform placement is a rigid one after a scaling about the origin, by a negative factor when
  // it mirrors.
  static Split split(const OdGeMatrix3d& placement) {
    constexpr double kTolerance = 1e-9;
    if (!placement.isUniScaledOrtho(OdGeTol(kTolerance))) return {gp_Trsf(), placement};
    const double size = placement.scale();
    const bool plain = std::abs(size - 1.0) <= kTolerance && placement.det() > 0.0;
    const double factor = plain ? 1.0 : std::copysign(size, placement.det());
    Split result{toTrsf(placement * OdGeMatrix3d::scaling(1.0 / factor)),
                 OdGeMatrix3d::scaling(factor)};
    result.move.SetScaleFactor(1.0);
    return result;
  }

  const StepSession& m_session;
  const OdModelerAssembly& m_assembly;
  std::map<Key, TDF_Label> m_labels;
};

// ---- The file.

// Without a date of its own the file gets a fixed one, so that one assembly gives one file.
void writeHeader(STEPCAFControl_Writer& writer, const OdModelerFileHeader& values) {
  const Handle(StepData_StepModel) model = writer.ChangeWriter().Model();
  APIHeaderSection_MakeHeader header(model);
  const auto text = [](const OdString& value, const char* fallback) {
    return new TCollection_HAsciiString(value.isEmpty() ? fallback : value.utf8().data());
  };
  header.SetName(text(values.name, "assembly"));
  header.SetTimeStamp(text(values.timeStamp, "1970-01-01T00:00:00"));
  header.SetAuthorValue(1, text(values.author, ""));
  header.SetOrganizationValue(1, text(values.organization, ""));
  header.SetOriginatingSystem(text(values.originatingSystem, ""));
  header.SetPreprocessorVersion(text({}, ""));
  header.SetAuthorisation(text({}, ""));
}

struct WrittenUnit {
  double millimetres;
  const char* name;  ///< as the writer calls it
};

// The length units that the writer knows.
constexpr WrittenUnit kWrittenUnits[] = {
    {1.0, "MM"}, {10.0, "CM"},  {1000.0, "M"},   {25.4, "INCH"},    {304.8, "FT"},
    {1e6, "KM"}, {0.001, "UM"}, {0.0254, "MIL"}, {1609344.0, "MI"}, {2.54e-5, "UIN"},
};

// Millimetres for a unit that the writer does not know.
const char* writtenUnit(const OdModelerLengthUnit& unit) {
  constexpr double kTolerance = 1e-9;
  for (const WrittenUnit& row : kWrittenUnits) {
    if (std::abs(row.millimetres - unit.millimetres) <= kTolerance * row.millimetres) {
      return row.name;
    }
  }
  return kWrittenUnits[0].name;
}

// Numbers the occurrences from 1. The writer takes the numbers from a counter of the process.
void numberOccurrences(const StepData_StepModel& model) {
  int number = 0;
  for (int i = 1; i <= model.NbEntities(); ++i) {
    const auto usage = Handle(StepRepr_NextAssemblyUsageOccurrence)::DownCast(model.Value(i));
    if (!usage.IsNull()) {
      usage->SetId(new TCollection_HAsciiString(std::to_string(++number).c_str()));
    }
  }
}

// Entities in the order in which a walk along their references meets them first.
class EntityOrder {
 public:
  explicit EntityOrder(const Handle(StepData_StepModel) & model)
      : m_model(model),
        m_graph(model, model->Protocol()),
        m_placed(static_cast<std::size_t>(model->NbEntities()) + 1) {}

  void add(const Handle(Standard_Transient) & entity) {
    const auto number = static_cast<std::size_t>(m_model->Number(entity));
    if (number == 0 || m_placed[number]) return;
    m_placed[number] = true;
    m_order.push_back(entity);
    Interface_EntityIterator next = m_graph.Shareds(entity);
    for (next.Start(); next.More(); next.Next()) add(next.Value());
  }
  [[nodiscard]] const std::vector<Handle(Standard_Transient)>& order() const { return m_order; }

 private:
  Handle(StepData_StepModel) m_model;
  Interface_Graph m_graph;
  std::vector<bool> m_placed;
  std::vector<Handle(Standard_Transient)> m_order;
};

// Puts the entities of the file into an order that depends on the assembly alone. The writer
// appends the colours as one block per product, in the order of the products' addresses in memory,
// and the first block that uses a colour defines it. Here the blocks are sorted by the numbers of
// the products' geometric contexts, which are in the order of the geometry, and a walk along the
// references from each block places its contents. One walk over all entities.
void orderColors(const Handle(StepData_StepModel) & model) {
  using Block = StepVisual_MechanicalDesignGeometricPresentationRepresentation;
  std::vector<Handle(Block)> blocks;
  EntityOrder order(model);
  for (int i = 1; i <= model->NbEntities(); ++i) {
    if (const auto block = Handle(Block)::DownCast(model->Value(i)); !block.IsNull()) {
      blocks.push_back(block);
    } else if (blocks.empty()) {
      order.add(model->Value(i));
    }
  }
  std::ranges::stable_sort(
      blocks, {}, [&](const Handle(Block) & b) { return model->Number(b->ContextOfItems()); });
  for (const Handle(Block) & block : blocks) order.add(block);
  for (int i = 1; i <= model->NbEntities(); ++i) order.add(model->Value(i));
  const std::vector<Handle(Standard_Transient)> entities = order.order();
  model->ClearEntities();
  for (const Handle(Standard_Transient) & entity : entities) model->AddEntity(entity);
}

// Replaces characters outside of ASCII by the escapes that every reader knows. The writer puts out
// UTF-8, which only the newest edition of the format allows.
std::string escaped(const std::string& text) {
  std::string result;
  result.reserve(text.size());
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t end = at;
    while (end < text.size() && static_cast<unsigned char>(text[end]) < 0x80) ++end;
    result.append(text, at, end - at);
    at = end;
    while (end < text.size() && static_cast<unsigned char>(text[end]) >= 0x80) ++end;
    if (end == at) break;
    result += "\\X4\\";
    for (const wchar_t c : OdString::fromUtf8(text.data() + at, end - at).toWide()) {
      char digits[9];
      std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(c));
      result += digits;
    }
    result += "\\X0\\";
    at = end;
  }
  return result;
}

// True when the file could be read and, where it needed to be, written.
bool escapeFile(const fs::path& file) {
  std::ifstream input(file, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(input), {});
  if (!input) return false;
  const auto isWide = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
  if (std::ranges::none_of(text, isWide)) return true;
  std::ofstream output(file, std::ios::binary | std::ios::trunc);
  output << escaped(text);
  return static_cast<bool>(output.flush());
}

OdStatus writeFile(const OdString& path, const OdModelerAssembly& assembly) {
  StepSession session;
  Interface_Static::SetCVal("write.step.unit", writtenUnit(assembly.sourceUnit));
  if (OdStatus status = DocumentBuilder(session, assembly).run(); !status.ok()) {
    return status;
  }
  STEPCAFControl_Writer writer;
  writer.SetColorMode(Standard_True);
  writer.SetNameMode(Standard_True);
  writer.SetLayerMode(Standard_True);
  writer.SetPropsMode(Standard_False);
  if (!writer.Transfer(session.document(), STEPControl_AsIs)) {
    return fileFailure(eModelerError, path, "the assembly cannot be put into STEP");
  }
  writeHeader(writer, assembly.header);
  const Handle(StepData_StepModel) model = writer.ChangeWriter().Model();
  numberOccurrences(*model);
  orderColors(model);
  OdNewFile file(std::string(path.utf8()));
  if (OdStatus status = file.create(); !status.ok()) return status;
  if (writer.Write(file.temporary().c_str()) != IFSelect_RetDone || !escapeFile(file.temporary())) {
    return fileFailure(eFileWriteError, path, "it cannot be written");
  }
  return file.commit();
}

}  // namespace

OdStatus exportStepFile(const OdString& path, const OdModelerAssembly& assembly) {
  if (OdStatus status = assembly.check(); !status.ok()) return status;
  if (assembly.roots.empty()) return fileFailure(eInvalidInput, path, "the assembly has no root");
  return guarded("export", [&] { return writeFile(path, assembly); });
}

}  // namespace od_occt
