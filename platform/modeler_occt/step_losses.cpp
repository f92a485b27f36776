// What a STEP file declares and its reading did not give.
#include "platform/modeler_occt/step_losses.h"

#include <TopAbs_ShapeEnum.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <algorithm>
#include <set>
#include <string>
#include <unordered_set>

namespace od_occt {
namespace {

OdString counted(std::size_t number, const char* one, const char* several) {
  return OdString(std::to_string(number) + " " + (number == 1 ? one : several));
}

OdString numbers(const std::set<OdUInt64>& ids) {
  constexpr std::size_t kShown = 5;
  std::string text;
  std::size_t count = 0;
  for (const OdUInt64 id : ids) {
    if (count++ == kShown) break;
    text += (text.empty() ? "#" : ", #") + std::to_string(id);
  }
  return OdString(ids.size() > kShown ? text + ", ..." : text);
}

// ---- Damage.

void addFaults(const StepText& file, OdStringArray& lines) {
  if (file.faults().empty()) return;
  const StepFault& first = file.faults().front();
  OdString line;
  line.format(L"%ls cannot be read; line %u: %ls",
              counted(file.faults().size(), "statement", "statements").c_str(),
              static_cast<unsigned>(first.line), OdString(first.text).c_str());
  lines.append(line);
}

void addMissing(const StepText& file, OdStringArray& lines) {
  std::set<OdUInt64> missing;
  const StepInstance* first = nullptr;
  for (const StepInstance& instance : file.instances()) {
    for (const OdUInt64 id : file.references(instance)) {
      if (file.find(id) != nullptr) continue;
      missing.insert(id);
      if (first == nullptr) first = &instance;
    }
  }
  if (first == nullptr) return;
  const std::string type(file.types(*first).front());
  OdString line;
  line.format(L"%ls missing: %ls; the first is used by #%llu %ls",
              counted(missing.size(), "instance is", "instances are").c_str(),
              numbers(missing).c_str(), static_cast<unsigned long long>(first->id),
              OdString(type).c_str());
  lines.append(line);
}

void addRepeated(const StepText& file, OdStringArray& lines) {
  if (file.repeated().empty()) return;
  std::set<OdUInt64> ids;
  for (const StepRepeated& each : file.repeated()) ids.insert(each.id);
  lines.append(counted(ids.size(), "number is", "numbers are") +
               L" used by more than one instance: " + numbers(ids));
}

// ---- Solids and sheets.

struct BodyType {
  std::string_view type;
  const char* name;
  TopAbs_ShapeEnum shape;  ///< what it has to become; TopAbs_SHAPE for any
};

// The second group is of kinds that the modeller's reader does not know.
constexpr BodyType kBodyTypes[] = {
    {"MANIFOLD_SOLID_BREP", "solid", TopAbs_SOLID},
    {"BREP_WITH_VOIDS", "solid", TopAbs_SOLID},
    {"FACETED_BREP", "solid", TopAbs_SOLID},
    {"SHELL_BASED_SURFACE_MODEL", "sheet", TopAbs_SHAPE},
    {"FACE_BASED_SURFACE_MODEL", "sheet", TopAbs_SHAPE},

    {"TESSELLATED_SOLID", "tessellated solid", TopAbs_SHAPE},
    {"TESSELLATED_SHELL", "tessellated shell", TopAbs_SHAPE},
    {"CSG_SOLID", "solid of primitives", TopAbs_SHAPE},
    {"EXTRUDED_AREA_SOLID", "extruded solid", TopAbs_SHAPE},
    {"REVOLVED_AREA_SOLID", "revolved solid", TopAbs_SHAPE},
    {"EXTRUDED_FACE_SOLID", "extruded solid", TopAbs_SHAPE},
    {"REVOLVED_FACE_SOLID", "revolved solid", TopAbs_SHAPE},
    {"SWEPT_DISK_SOLID", "swept solid", TopAbs_SHAPE},
    {"SOLID_REPLICA", "copy of a solid", TopAbs_SHAPE},
};

const BodyType* bodyTypeOf(const StepText& file, const StepInstance& instance) {
  for (const std::string_view type : file.types(instance)) {
    const auto* row = std::ranges::find(kBodyTypes, type, &BodyType::type);
    if (row != std::end(kBodyTypes)) return row;
  }
  return nullptr;
}

bool isFace(const StepText& file, const StepInstance& instance) {
  return file.isA(instance, "ADVANCED_FACE") || file.isA(instance, "FACE_SURFACE");
}

class BodyCheck {
 public:
  BodyCheck(const StepText& file, const StepStrings& strings, const StepTransfer& transfer,
            const TopTools_MapOfShape& taken)
      : m_file(file), m_strings(strings), m_transfer(transfer), m_taken(taken) {}

  void run(const StepInstance& instance, const BodyType& type, OdStringArray& lines) const {
    const OdString text = problem(instance, type);
    if (text.isEmpty()) return;
    const std::vector<std::string_view> arguments = m_file.arguments(instance);
    const OdString name = arguments.empty() ? OdString() : m_strings.decodeArgument(arguments[0]);
    lines.append(OdString(type.name) + OdString(" #" + std::to_string(instance.id)) +
                 (name.isEmpty() ? OdString() : L" '" + name + L"'") + L" " + text);
  }

 private:
  [[nodiscard]] OdString problem(const StepInstance& instance, const BodyType& type) const {
    const TopoDS_Shape shape = m_transfer.shapeOf(instance.id);
    if (shape.IsNull()) return L"was not read";
    if (type.shape == TopAbs_SOLID && !TopExp_Explorer(shape, TopAbs_SOLID).More()) {
      return L"is not closed and became faces";
    }
    if (!isTaken(shape)) return L"belongs to no product";
    const std::vector<OdUInt64> faces = declaredFaces(instance);
    TopTools_IndexedMapOfShape read;
    TopExp::MapShapes(shape, TopAbs_FACE, read);
    const auto unread = static_cast<std::size_t>(std::ranges::count_if(
        faces, [&](OdUInt64 face) { return m_transfer.shapeOf(face).IsNull(); }));
    const auto numRead = static_cast<std::size_t>(read.Extent());
    const std::size_t fewer = faces.size() > numRead ? faces.size() - numRead : 0;
    if (unread == 0 && fewer == 0) return {};
    return L"lacks " + OdString(std::to_string(std::max(unread, fewer)) + " of its " +
                                std::to_string(faces.size()) + " faces");
  }

  [[nodiscard]] bool isTaken(const TopoDS_Shape& shape) const {
    if (m_taken.Contains(shape)) return true;
    for (const TopAbs_ShapeEnum type : {TopAbs_SOLID, TopAbs_SHELL, TopAbs_FACE}) {
      for (TopExp_Explorer it(shape, type); it.More(); it.Next()) {
        if (m_taken.Contains(it.Current().Located(TopLoc_Location()))) return true;
      }
    }
    return false;
  }

  // The faces that the references of a body lead to; a face's own references lead no further.
  [[nodiscard]] std::vector<OdUInt64> declaredFaces(const StepInstance& body) const {
    std::vector<OdUInt64> faces;
    std::unordered_set<OdUInt64> seen{body.id};
    std::vector<const StepInstance*> open{&body};
    while (!open.empty()) {
      const StepInstance* instance = open.back();
      open.pop_back();
      if (isFace(m_file, *instance)) {
        faces.push_back(instance->id);
        continue;
      }
      for (const OdUInt64 id : m_file.references(*instance)) {
        const StepInstance* next = seen.insert(id).second ? m_file.find(id) : nullptr;
        if (next != nullptr) open.push_back(next);
      }
    }
    return faces;
  }

  const StepText& m_file;
  const StepStrings& m_strings;
  const StepTransfer& m_transfer;
  const TopTools_MapOfShape& m_taken;
};

// ---- Placements.

void addPlacements(const StepText& file, const OdModelerAssembly& assembly, OdStringArray& lines) {
  std::size_t declared = 0;
  for (const StepInstance& instance : file.instances()) {
    if (file.isA(instance, "NEXT_ASSEMBLY_USAGE_OCCURRENCE")) ++declared;
  }
  std::size_t read = 0;
  for (const OdModelerProduct& product : assembly.products) read += product.occurrences.size();
  if (read >= declared) return;
  lines.append(OdString(std::to_string(declared - read) + " of " + std::to_string(declared)) +
               L" placements of products were not read");
}

}  // namespace

OdStringArray stepDamage(const StepText& file) {
  OdStringArray lines;
  addFaults(file, lines);
  addRepeated(file, lines);
  addMissing(file, lines);
  if (!file.isClosed()) lines.append(OdString(L"the data section has no end"));
  return lines;
}

OdStringArray stepLosses(const StepText& file, const StepStrings& strings,
                         const StepTransfer& transfer, const TopTools_MapOfShape& taken,
                         const OdModelerAssembly& assembly) {
  OdStringArray lines;
  const BodyCheck check(file, strings, transfer, taken);
  for (const StepInstance& instance : file.instances()) {
    if (const BodyType* type = bodyTypeOf(file, instance)) check.run(instance, *type, lines);
  }
  addPlacements(file, assembly, lines);
  return lines;
}

}  // namespace od_occt
