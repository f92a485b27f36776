// One STEP file, without the files that it names.
#include "platform/modeler_occt/step_reader.h"

#include <STEPCAFControl_Reader.hxx>
#include <TopoDS_Iterator.hxx>
#include <XSControl_WorkSession.hxx>
#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <utility>

#include "platform/modeler_occt/step_annotations.h"
#include "platform/modeler_occt/step_contents.h"
#include "platform/modeler_occt/step_externals.h"
#include "platform/modeler_occt/step_losses.h"
#include "platform/modeler_occt/step_products.h"
#include "platform/modeler_occt/step_repair.h"
#include "platform/modeler_occt/step_session.h"
#include "platform/modeler_occt/step_unit.h"

namespace od_occt {
namespace {

// The reader gives bare structure and colours; texts are read from the file itself.
void configure(STEPCAFControl_Reader& reader) {
  reader.SetColorMode(Standard_True);
  reader.SetNameMode(Standard_True);
  reader.SetLayerMode(Standard_False);
  reader.SetPropsMode(Standard_False);
  reader.SetGDTMode(Standard_False);
  reader.SetMatMode(Standard_False);
  reader.SetViewMode(Standard_False);
}

OdModelerFileHeader headerOf(const StepText& file, const StepStrings& strings) {
  OdModelerFileHeader header;
  for (const StepInstance& record : file.header()) {
    const std::vector<std::string_view> arguments = file.arguments(record, "FILE_NAME");
    if (arguments.size() < 7) continue;
    const auto first = [&](std::string_view list) {
      const std::vector<std::string_view> elements = StepText::elements(list);
      return elements.empty() ? OdString() : strings.decodeArgument(elements.front());
    };
    header.name = strings.decodeArgument(arguments[0]);
    header.timeStamp = strings.decodeArgument(arguments[1]);
    header.author = first(arguments[2]);
    header.organization = first(arguments[3]);
    header.originatingSystem = strings.decodeArgument(arguments[5]);
  }
  return header;
}

void append(OdStringArray& lines, const OdStringArray& more) {
  for (const OdString& line : more) lines.append(line);
}

class Reading {
 public:
  Reading(const StepText& file, const StepStrings& strings, const OdModelerReadOptions& options,
          StepReading& result)
      : m_file(file), m_strings(strings), m_options(options), m_result(result) {}

  OdStatus run() {
    noteTexts();
    if (OdStatus status = transfer(); !status.ok()) return status;
    return collect();
  }

 private:
  OdModelerReadNotes& notes() { return m_result.assembly.notes; }

  void noteTexts() {
    append(notes().lost, stepDamage(m_file));
    append(notes().lost, m_strings.unreadable());
    for (const std::string& name : m_file.referencedFiles()) {
      notes().lost.append(L"references into file '" + OdString(name) + L"' were not read");
    }
    if (m_options.encoding.isEmpty() && !m_strings.foreignEncoding().isEmpty()) {
      notes().remarks.append(L"names are taken for " + m_strings.foreignEncoding());
    }
    m_result.assembly.header = headerOf(m_file, m_strings);
  }

  // What the modeller's reader gets to see.
  [[nodiscard]] std::string readersText() const {
    std::vector<StepEdit> edits = stepRepairs(m_file, kStepFileType);
    std::ranges::move(m_strings.keys(), std::back_inserter(edits));
    return edited(m_file.text(), std::move(edits));
  }

  OdStatus transfer() {
    configure(m_reader);
    {
      std::istringstream stream(readersText());
      if (m_reader.ChangeReader().ReadStream("file", stream) != IFSelect_RetDone) {
        OdString text = L"it cannot be read as STEP";
        if (!notes().lost.isEmpty()) text += L": " + notes().lost.first();
        return {eModelerError, text};
      }
    }
    m_result.assembly.sourceUnit = lengthUnitOf(*m_reader.Reader().WS()->Model());
    m_result.assembly.sourceUnit.name = m_strings.restored(m_result.assembly.sourceUnit.name);
    m_reader.Transfer(m_session.document());  // false means no shapes
    return {};
  }

  OdStatus collect() {
    const StepTransfer transfer(m_reader.Reader());
    const ShapeLooks looks{stepNames(m_file, m_strings, transfer),
                           stepLayers(m_file, m_strings, transfer, notes().leftOut),
                           annotationShapes(m_file, transfer)};
    StepProducts products(m_session, m_strings, looks, m_result.assembly);
    products.run();
    if (m_options.annotations) addAnnotations();
    append(notes().leftOut, stepLeftOut(m_file, m_options.annotations));
    append(notes().lost,
           stepLosses(m_file, m_strings, transfer, products.taken(), m_result.assembly));
    findParts(transfer, products);
    noteUnreadProducts(transfer, products);
    return {};
  }

  // Annotations explain the whole that the file describes: its first root.
  void addAnnotations() {
    OdModelerAssembly& assembly = m_result.assembly;
    if (assembly.roots.empty()) return;
    assembly.products[assembly.roots.front().product].annotations =
        stepAnnotations(m_file, m_strings, assembly.sourceUnit.millimetres, notes().leftOut);
  }

  // A product that is placed may well be empty: a skeleton, a set of axes. One that is a whole has
  // lost its parts, and the modeller's reader does not show it at all.
  void noteUnreadProducts(const StepTransfer& transfer, const StepProducts& products) {
    std::set<OdUInt64> seen;
    for (const StepInstance& instance : m_file.instances()) {
      if (!m_file.isA(instance, "SHAPE_DEFINITION_REPRESENTATION")) continue;
      const StepInstance* shape = argumentOf(instance, 0);
      if (shape == nullptr || !m_file.isA(*shape, "PRODUCT_DEFINITION_SHAPE")) continue;
      const StepInstance* definition = argumentOf(*shape, 2);
      if (definition == nullptr || !isDefinition(*definition)) continue;
      if (!seen.insert(definition->id).second) continue;
      const TopoDS_Shape read = transfer.shapeOf(definition->id);
      if (products.productOf(read) != nullptr) continue;
      if (!read.IsNull() && TopoDS_Iterator(read).More()) continue;
      notes().lost.append(L"product '" + productName(*definition) +
                          L"' has neither shapes nor parts");
    }
  }

  [[nodiscard]] bool isDefinition(const StepInstance& instance) const {
    return m_file.isA(instance, "PRODUCT_DEFINITION") ||
           m_file.isA(instance, "PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS");
  }

  // The instance that an argument of a simple instance refers to.
  [[nodiscard]] const StepInstance* argumentOf(const StepInstance& instance,
                                               std::size_t place) const {
    const std::vector<std::string_view> arguments = m_file.arguments(instance);
    const auto id = place < arguments.size() ? StepText::reference(arguments[place]) : std::nullopt;
    return id ? m_file.find(*id) : nullptr;
  }

  [[nodiscard]] OdString productName(const StepInstance& definition) const {
    const StepInstance* version = argumentOf(definition, 2);
    const StepInstance* product = version == nullptr ? nullptr : argumentOf(*version, 2);
    if (product == nullptr) return {};
    const std::vector<std::string_view> arguments = m_file.arguments(*product);
    return arguments.size() < 2 ? OdString() : m_strings.decodeArgument(arguments[1]);
  }

  void findParts(const StepTransfer& transfer, const StepProducts& products) {
    for (const StepExternal& external : stepExternals(m_file, m_strings)) {
      const OdModelerProduct* product = products.productOf(transfer.shapeOf(external.definition));
      if (product == nullptr) {
        notes().lost.append(L"file '" + external.file + L"' is of no product that was read");
      } else if (product->bodies.empty() && product->occurrences.empty()) {
        const auto index = product - m_result.assembly.products.data();
        m_result.parts.push_back({static_cast<OdUInt32>(index), external.file});
      } else {
        notes().leftOut.append(L"file '" + external.file + L"' of product '" + product->name +
                               L"'");
      }
    }
  }

  const StepText& m_file;
  const StepStrings& m_strings;
  const OdModelerReadOptions& m_options;
  StepReading& m_result;
  StepSession m_session;
  STEPCAFControl_Reader m_reader;
};

}  // namespace

OdStatus readStepText(std::string text, const OdModelerReadOptions& options, StepReading& result) {
  const StepText file(std::move(text));
  const StepStrings strings(file, options.encoding);
  StepReading reading;
  const OdStatus status = Reading(file, strings, options, reading).run();
  if (status.ok()) result = std::move(reading);
  return status;
}

}  // namespace od_occt
