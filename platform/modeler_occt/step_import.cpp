// STEP files to products and occurrences.
#include <BRep_Builder.hxx>
#include <NCollection_DataMap.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <TDF_LabelMapHasher.hxx>
#include <TDF_LabelSequence.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_DataMapOfShapeInteger.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <XSControl_WorkSession.hxx>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "platform/base/case_compare.h"
#include "platform/base/work_note.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/step_names.h"
#include "platform/modeler_occt/step_session.h"
#include "platform/modeler_occt/step_unit.h"

namespace od_occt {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFirstMark = "ISO-10303-21";
constexpr std::string_view kLastMark = "END-ISO-10303-21";

// ---- The file, before anything is parsed.

bool contains(std::istream& stream, std::streamoff from, std::string_view mark) {
  constexpr std::streamoff kWindow = 1024;
  std::string window(kWindow, '\0');
  stream.clear();
  stream.seekg(from);
  stream.read(window.data(), kWindow);
  return std::string_view(window.data(), static_cast<std::size_t>(stream.gcount())).find(mark) !=
         std::string_view::npos;
}

OdStatus checkFile(const OdString& path) {
  const fs::path file(std::string(path.utf8()));
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) {
    return fileFailure(eFileNotFound, path, "there is no such file");
  }
  if (error || !fs::is_regular_file(status)) {
    return fileFailure(eFileAccess, path, "it is not a plain file");
  }
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return fileFailure(eFileAccess, path, "it cannot be opened for reading");
  const auto size = static_cast<std::streamoff>(fs::file_size(file, error));
  if (size == 0) return fileFailure(eModelerError, path, "it is empty");
  if (!contains(stream, 0, kFirstMark)) {
    return fileFailure(eModelerError, path,
                       "it is not a STEP file, the mark ISO-10303-21 is missing");
  }
  if (!contains(stream, std::max<std::streamoff>(0, size - 1024), kLastMark)) {
    return fileFailure(eModelerError, path,
                       "it is cut short, the mark END-ISO-10303-21 is missing");
  }
  return {};
}

// ---- Colours and names of a product's shape and its parts.

std::optional<OdModelerColor> labelColor(const Handle(XCAFDoc_ColorTool) & colors,
                                         const TDF_Label& label) {
  for (const XCAFDoc_ColorType type : {XCAFDoc_ColorSurf, XCAFDoc_ColorGen}) {
    Quantity_Color color;
    if (colors->GetColor(label, type, color)) return toColor(color);
  }
  return std::nullopt;
}

class PartStyles {
 public:
  PartStyles(const StepSession& session, const StepNames& names, const TDF_Label& product)
      : m_names(names) {
    m_color = labelColor(session.colors(), product);
    TDF_LabelSequence parts;
    XCAFDoc_ShapeTool::GetSubShapes(product, parts);
    for (const TDF_Label& part : parts) {
      const std::optional<OdModelerColor> color = labelColor(session.colors(), part);
      if (!color) continue;
      m_rows.Bind(XCAFDoc_ShapeTool::GetShape(part), static_cast<int>(m_colors.size()));
      m_colors.push_back(*color);
    }
  }

  [[nodiscard]] OdModelerBodyAttributes attributesOf(const TopoDS_Shape& body) const {
    OdModelerBodyAttributes result;
    result.color = m_color;
    result.name = m_names.of(body);
    if (const OdModelerColor* own = find(body)) result.color = *own;
    for (TopExp_Explorer shell(body, TopAbs_SHELL); shell.More(); shell.Next()) {
      if (const OdModelerColor* own = find(shell.Current())) result.color = *own;
    }
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(body, TopAbs_FACE, faces);
    for (int i = 1; i <= faces.Extent(); ++i) {
      const auto index = static_cast<OdUInt32>(i);
      const OdModelerColor* own = find(faces(i));
      if (own != nullptr && *own != result.color) result.faceColors.emplace(index, *own);
      const OdString& name = m_names.of(faces(i));
      if (!name.isEmpty()) result.faceNames.emplace(index, name);
    }
    return result;
  }

 private:
  [[nodiscard]] const OdModelerColor* find(const TopoDS_Shape& shape) const {
    const int* row = m_rows.Seek(shape);
    return row == nullptr ? nullptr : &m_colors[static_cast<std::size_t>(*row)];
  }

  const StepNames& m_names;
  std::optional<OdModelerColor> m_color;
  TopTools_DataMapOfShapeInteger m_rows;
  std::vector<OdModelerColor> m_colors;
};

// ---- The bodies of a shape: each solid and each shell alone, loose faces and curves together.

void addLoose(const TopoDS_Shape& shape, TopAbs_ShapeEnum type, TopAbs_ShapeEnum outside,
              std::vector<TopoDS_Shape>& bodies) {
  BRep_Builder builder;
  TopoDS_Compound loose;
  builder.MakeCompound(loose);
  bool any = false;
  for (TopExp_Explorer it(shape, type, outside); it.More(); it.Next()) {
    builder.Add(loose, it.Current());
    any = true;
  }
  if (any) bodies.push_back(loose);
}

std::vector<TopoDS_Shape> splitBodies(const TopoDS_Shape& shape) {
  std::vector<TopoDS_Shape> bodies;
  for (TopExp_Explorer it(shape, TopAbs_SOLID); it.More(); it.Next()) {
    bodies.push_back(it.Current());
  }
  for (TopExp_Explorer it(shape, TopAbs_SHELL, TopAbs_SOLID); it.More(); it.Next()) {
    bodies.push_back(it.Current());
  }
  addLoose(shape, TopAbs_FACE, TopAbs_SHELL, bodies);
  addLoose(shape, TopAbs_EDGE, TopAbs_FACE, bodies);
  return bodies;
}

// ---- The product structure.

class Collector {
 public:
  Collector(const StepSession& session, const StepNames& names, OdModelerAssembly& assembly)
      : m_session(session), m_names(names), m_assembly(assembly) {}

  void run() {
    TDF_LabelSequence roots;
    m_session.shapes()->GetFreeShapes(roots);
    for (const TDF_Label& root : roots) {
      const OdUInt32 product = productOf(root);
      m_assembly.roots.push_back({product, {}, m_assembly.products[product].name, std::nullopt});
    }
  }

 private:
  // Products are numbered in the order in which the walk meets them first.
  OdUInt32 productOf(const TDF_Label& label) {
    if (const int* known = m_products.Seek(label)) return static_cast<OdUInt32>(*known);
    const auto index = static_cast<OdUInt32>(m_assembly.products.size());
    m_products.Bind(label, static_cast<int>(index));
    OdModelerProduct& product = m_assembly.products.emplace_back();
    product.name = labelName(label);
    product.uniqueId = uniqueId(product.name);
    addContent(index, label, gp_Trsf());
    return index;
  }

  // Several representations of one product arrive as components without a name. They are no
  // products; their content belongs to the product itself.
  void addContent(OdUInt32 product, const TDF_Label& label, const gp_Trsf& placement) {
    if (!XCAFDoc_ShapeTool::IsAssembly(label)) {
      addBodies(product, label, placement);
      return;
    }
    TDF_LabelSequence components;
    XCAFDoc_ShapeTool::GetComponents(label, components);
    for (const TDF_Label& component : components) {
      TDF_Label referred;
      if (!XCAFDoc_ShapeTool::GetReferredShape(component, referred)) continue;
      const gp_Trsf place = placement * XCAFDoc_ShapeTool::GetLocation(component).Transformation();
      if (labelName(referred).isEmpty()) {
        addContent(product, referred, place);
        continue;
      }
      const OdUInt32 child = productOf(referred);
      m_assembly.products[product].occurrences.push_back(
          {child, toMatrix(place), labelName(component),
           labelColor(m_session.colors(), component)});
    }
  }

  void addBodies(OdUInt32 product, const TDF_Label& label, const gp_Trsf& placement) {
    const PartStyles styles(m_session, m_names, label);
    for (const TopoDS_Shape& shape : splitBodies(XCAFDoc_ShapeTool::GetShape(label))) {
      OdModelerBodyAttributes attributes = styles.attributesOf(shape);
      const TopoDS_Shape placed =
          placement.Form() == gp_Identity ? shape : shape.Moved(TopLoc_Location(placement));
      if (OdModelerBodyPtr body = odBodyFromOcct(placed, std::move(attributes))) {
        m_assembly.products[product].bodies.push_back(std::move(body));
      }
    }
  }

  OdString uniqueId(const OdString& name) {
    const OdString base = name.isEmpty() ? OdString(L"product") : name;
    OdString candidate = base;
    for (unsigned number = 2; !m_ids.insert(odCaseFold(candidate)).second; ++number) {
      candidate.format(L"%ls~%u", base.c_str(), number);
    }
    return candidate;
  }

  const StepSession& m_session;
  const StepNames& m_names;
  OdModelerAssembly& m_assembly;
  NCollection_DataMap<TDF_Label, int, TDF_LabelMapHasher> m_products;
  std::set<OdString> m_ids;
};

// What a reader may use before it counts as one that loops or eats memory. The public test models
// (up to 2 MB) need less than a fifth of both.
OdWorkBudget budgetFor(std::uintmax_t fileSize) {
  constexpr std::uintmax_t kMegabyte = std::uintmax_t{1} << 20U;
  OdWorkBudget budget;
  budget.seconds = static_cast<std::uint32_t>(5 + 5 * (fileSize / kMegabyte));
  budget.bytes = 512 * kMegabyte + 40 * fileSize;
  return budget;
}

OdStatus readFile(const OdString& path, OdModelerAssembly& result) {
  StepSession session;
  STEPCAFControl_Reader reader;
  reader.SetColorMode(Standard_True);
  reader.SetNameMode(Standard_True);
  reader.SetLayerMode(Standard_False);
  reader.SetPropsMode(Standard_False);
  reader.SetGDTMode(Standard_False);
  reader.SetMatMode(Standard_False);
  reader.SetViewMode(Standard_False);
  if (reader.ReadFile(static_cast<const char*>(path)) != IFSelect_RetDone) {
    return fileFailure(eModelerError, path, "it cannot be read as STEP");
  }
  OdModelerAssembly assembly;
  assembly.sourceUnit = lengthUnitOf(*reader.Reader().WS()->Model());
  if (!reader.Transfer(session.document())) {
    return fileFailure(eModelerError, path, "there is no geometry in it");
  }
  Collector(session, StepNames(reader.Reader()), assembly).run();
  const auto hasBody = [](const OdModelerProduct& product) { return !product.bodies.empty(); };
  if (std::ranges::none_of(assembly.products, hasBody)) {
    return fileFailure(eModelerError, path, "there is no geometry in it");
  }
  result = std::move(assembly);
  return {};
}

}  // namespace

OdStatus importStep(const OdString& path, OdModelerAssembly& result) {
  if (OdStatus status = checkFile(path); !status.ok()) return status;
  const OdWorkNote note("reading step file ", path.utf8());
  std::error_code error;
  const OdWorkLimit limit(budgetFor(fs::file_size(fs::path(std::string(path.utf8())), error)));
  OdStatus status = guarded("import", [&] { return readFile(path, result); });
  if (!status.ok() && status.text.find(path) < 0) {
    return fileFailure(status.code, path, static_cast<const char*>(status.text));
  }
  return status;
}

}  // namespace od_occt
