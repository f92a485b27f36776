// Products of a STEP file whose shapes are in other files.
//
// A file is an instance of DOCUMENT_FILE. It reaches a product definition in one of three ways: an
// applied reference names the file and the definition; or names a document that is equivalent to a
// product version, of which a definition lists the file; or the part's own definition lists it.
#include "platform/modeler_occt/step_externals.h"

#include <algorithm>
#include <map>
#include <set>

namespace od_occt {
namespace {

using Ids = std::vector<OdUInt64>;

Ids idsOf(std::string_view argument) {
  Ids ids;
  if (const auto one = StepText::reference(argument)) ids.push_back(*one);
  for (const std::string_view element : StepText::elements(argument)) {
    if (const auto one = StepText::reference(element)) ids.push_back(*one);
  }
  return ids;
}

class Search {
 public:
  Search(const StepText& file, const StepStrings& strings) : m_file(file), m_strings(strings) {}

  std::vector<StepExternal> run() {
    for (const StepInstance& instance : m_file.instances()) collect(instance);
    if (m_names.empty()) return {};
    for (const auto& [document, items] : m_references) {
      for (const OdUInt64 file : filesOf(document)) add(file, items);
    }
    for (const auto& [definition, listed] : m_listed) {
      if (m_documentVersions.contains(listed.version)) continue;
      for (const OdUInt64 file : listed.files) add(file, {definition});
    }
    for (const auto& [file, name] : m_names) {
      if (!m_used.contains(file)) m_found.push_back({0, name});
    }
    return std::move(m_found);
  }

 private:
  struct Listed {
    OdUInt64 version = 0;
    Ids files;
  };

  void collect(const StepInstance& instance) {
    const std::string_view type = m_file.types(instance).front();
    if (type == kStepFileType) {
      nameFile(instance.id, m_file.arguments(instance));
    } else if (type == "APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT") {
      identify(m_file.arguments(instance));
    } else if (type == "APPLIED_DOCUMENT_REFERENCE") {
      const auto arguments = m_file.arguments(instance);
      if (arguments.size() < 3) return;
      for (const OdUInt64 document : idsOf(arguments[0])) {
        m_references.emplace_back(document, idsOf(arguments[2]));
      }
    } else if (type == "DOCUMENT_PRODUCT_EQUIVALENCE") {
      const auto arguments = m_file.arguments(instance);
      if (arguments.size() < 4) return;
      for (const OdUInt64 version : idsOf(arguments[3])) {
        m_documentVersions.insert(version);
        for (const OdUInt64 document : idsOf(arguments[2])) m_versionOf[document] = version;
      }
    } else if (type == "PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS") {
      const auto arguments = m_file.arguments(instance);
      if (arguments.size() < 5) return;
      const Ids versions = idsOf(arguments[2]);
      const OdUInt64 version = versions.empty() ? 0 : versions.front();
      if (m_listed.emplace(instance.id, Listed{version, idsOf(arguments[4])}).second) {
        m_definitionsOf.emplace(version, instance.id);
      }
    }
  }

  // The number of the document, else its name.
  void nameFile(OdUInt64 id, const std::vector<std::string_view>& arguments) {
    OdString& name = m_names[id];
    for (const std::size_t place : {0U, 1U}) {
      if (name.isEmpty() && place < arguments.size()) {
        name = m_strings.decodeArgument(arguments[place]);
      }
    }
    if (const auto given = m_identified.find(id); given != m_identified.end()) {
      name = given->second;
    }
  }

  // The name of the file itself, where a writer gives it.
  void identify(const std::vector<std::string_view>& arguments) {
    if (arguments.size() < 4) return;
    const OdString name = m_strings.decodeArgument(arguments[0]);
    if (name.isEmpty()) return;
    for (const OdUInt64 id : idsOf(arguments[3])) {
      m_identified[id] = name;
      if (const auto known = m_names.find(id); known != m_names.end()) known->second = name;
    }
  }

  [[nodiscard]] Ids filesOf(OdUInt64 document) const {
    if (m_names.contains(document)) return {document};
    const auto version = m_versionOf.find(document);
    if (version == m_versionOf.end()) return {};
    Ids files;
    const auto [from, to] = m_definitionsOf.equal_range(version->second);
    for (auto it = from; it != to; ++it) {
      const Ids& its = m_listed.at(it->second).files;
      files.insert(files.end(), its.begin(), its.end());
    }
    return files;
  }

  void add(OdUInt64 file, const Ids& definitions) {
    const auto name = m_names.find(file);
    if (name == m_names.end()) return;
    for (const OdUInt64 id : definitions) {
      const StepInstance* instance = m_file.find(id);
      if (instance == nullptr || !m_file.types(*instance).front().starts_with("PRODUCT_DEFINITION"))
        continue;
      m_used.insert(file);
      if (m_pairs.emplace(id, name->second).second) m_found.push_back({id, name->second});
    }
  }

  const StepText& m_file;
  const StepStrings& m_strings;
  std::map<OdUInt64, OdString> m_names;       // of the file instances
  std::map<OdUInt64, OdString> m_identified;  // names given to instances of any kind
  std::vector<std::pair<OdUInt64, Ids>> m_references;
  std::map<OdUInt64, OdUInt64> m_versionOf;  // documents
  std::set<OdUInt64> m_documentVersions;
  std::map<OdUInt64, Listed> m_listed;                // by definition
  std::multimap<OdUInt64, OdUInt64> m_definitionsOf;  // by version
  std::set<OdUInt64> m_used;
  std::set<std::pair<OdUInt64, OdString>> m_pairs;
  std::vector<StepExternal> m_found;
};

}  // namespace

std::vector<StepExternal> stepExternals(const StepText& file, const StepStrings& strings) {
  return Search(file, strings).run();
}

}  // namespace od_occt
