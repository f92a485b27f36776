// What the modeller's reader must not see of a STEP file.
#include "platform/modeler_occt/step_repair.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace od_occt {
namespace {

constexpr std::string_view kDropped = "LEFT_OUT('')";

constexpr std::string_view kCollections[] = {
    "CLOSED_SHELL",
    "CONNECTED_FACE_SET",
    "GEOMETRIC_CURVE_SET",
    "GEOMETRIC_SET",
    "PRESENTATION_LAYER_ASSIGNMENT",
    "OPEN_SHELL",
    "SHELL_BASED_SURFACE_MODEL",
};

/// Types whose instances do without some of their arguments.
struct TolerantType {
  std::string_view type;
  std::size_t argument;  ///< that may lead nowhere
};
constexpr TolerantType kTolerant[] = {
    {"APPLICATION_PROTOCOL_DEFINITION", 3},
    {"PRODUCT", 3},
    {"PRODUCT_CONTEXT", 1},
    {"PRODUCT_DEFINITION", 3},
    {"PRODUCT_DEFINITION_CONTEXT", 1},
    {"PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS", 3},
};

class Repair {
 public:
  Repair(const StepText& file, std::string_view hiddenType) : m_file(file), m_hidden(hiddenType) {}

  std::vector<StepEdit> run() {
    for (const StepFault& fault : m_file.faults()) m_edits.push_back({fault.at, fault.length, ""});
    for (const StepRepeated& each : m_file.repeated()) {
      m_edits.push_back({each.at, each.length, ""});
    }
    findMissing();
    spread();
    for (const StepInstance& instance : m_file.instances()) {
      if (m_dead.contains(instance.id) || m_file.isA(instance, m_hidden)) {
        m_edits.push_back({instance.at, instance.length, std::string(kDropped)});
      }
    }
    for (const StepInstance* collection : m_reduced) {
      if (!m_dead.contains(collection->id)) reduce(*collection);
    }
    return std::move(m_edits);
  }

 private:
  void findMissing() {
    for (const StepInstance& instance : m_file.instances()) {
      for (const OdUInt64 id : m_file.references(instance)) {
        if (m_file.find(id) == nullptr && m_dead.insert(id).second) m_open.push_back(id);
      }
    }
  }

  // From what is missing to what refers to it, and on. Each instance is dropped at most once.
  void spread() {
    if (m_open.empty()) return;
    std::unordered_map<OdUInt64, std::vector<const StepInstance*>> users;
    for (const StepInstance& instance : m_file.instances()) {
      for (const OdUInt64 id : m_file.references(instance)) users[id].push_back(&instance);
    }
    while (!m_open.empty()) {
      const OdUInt64 dead = m_open.back();
      m_open.pop_back();
      for (const StepInstance* user : users[dead]) hit(*user, dead);
    }
  }

  void hit(const StepInstance& user, OdUInt64 dead) {
    if (m_dead.contains(user.id)) return;
    if (isCollection(user) && isElement(user, dead)) {
      m_reduced.insert(&user);
    } else if (!toleratesLoss(user, dead)) {
      m_dead.insert(user.id);
      m_open.push_back(user.id);
    }
  }

  [[nodiscard]] bool isCollection(const StepInstance& instance) const {
    const std::vector<std::string_view> types = m_file.types(instance);
    if (types.size() != 1) return false;
    return types[0].ends_with("REPRESENTATION")
               ? !types[0].starts_with("CONTEXT_DEPENDENT") &&
                     !types[0].ends_with("_DEFINITION_REPRESENTATION")
               : std::ranges::find(kCollections, types[0]) != std::end(kCollections);
  }

  // Named as an element of lists of the instance and nowhere else in it.
  [[nodiscard]] bool isElement(const StepInstance& instance, OdUInt64 id) const {
    std::ptrdiff_t elements = 0;
    for (const std::string_view argument : m_file.arguments(instance)) {
      elements += std::ranges::count_if(
          StepText::elements(argument),
          [&](std::string_view element) { return StepText::reference(element) == id; });
    }
    return elements == std::ranges::count(m_file.references(instance), id);
  }

  [[nodiscard]] bool toleratesLoss(const StepInstance& instance, OdUInt64 id) const {
    const std::vector<std::string_view> types = m_file.types(instance);
    const auto* row = std::ranges::find(kTolerant, types.front(), &TolerantType::type);
    if (types.size() != 1 || row == std::end(kTolerant)) return false;
    const std::vector<std::string_view> arguments = m_file.arguments(instance);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (i != row->argument && StepText::reference(arguments[i]) == id) return false;
    }
    return true;
  }

  // Takes the dead elements out of the collection's lists.
  void reduce(const StepInstance& collection) {
    for (const std::string_view argument : m_file.arguments(collection)) {
      const std::vector<std::string_view> elements = StepText::elements(argument);
      if (elements.empty()) continue;
      std::string list;
      for (const std::string_view element : elements) {
        const auto id = StepText::reference(element);
        if (id && m_dead.contains(*id)) continue;
        if (!list.empty()) list += ',';
        list += element;
      }
      const auto at = static_cast<std::size_t>(argument.data() - m_file.text().data());
      m_edits.push_back({at, argument.size(), "(" + list + ")"});
    }
  }

  const StepText& m_file;
  std::string_view m_hidden;
  std::unordered_set<OdUInt64> m_dead;  // numbers that are missing or dropped
  std::vector<OdUInt64> m_open;         // dead ones whose users were not looked at
  std::unordered_set<const StepInstance*> m_reduced;
  std::vector<StepEdit> m_edits;
};

}  // namespace

std::vector<StepEdit> stepRepairs(const StepText& file, std::string_view hiddenType) {
  return Repair(file, hiddenType).run();
}

std::string edited(std::string_view text, std::vector<StepEdit> edits) {
  std::ranges::stable_sort(edits, [](const StepEdit& a, const StepEdit& b) {
    return a.at != b.at ? a.at < b.at : a.length > b.length;
  });
  std::string result;
  result.reserve(text.size() + 16 * edits.size());
  std::size_t from = 0;
  for (const StepEdit& edit : edits) {
    if (edit.at < from) continue;
    result.append(text, from, edit.at - from);
    result += edit.replacement;
    from = edit.at + edit.length;
  }
  return result.append(text, std::min(from, text.size()));
}

}  // namespace od_occt
