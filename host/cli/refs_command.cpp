// `vdm refs`: the persistent references of a drawing.
#include "host/cli/refs_command.h"

#include <array>
#include <nlohmann/json.hpp>

#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/modeling/drawing_audit.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using vdm_host::ReferenceEntry;

std::vector<ReferenceEntry> readReferences(OdDbDatabase& drawing, const std::string& input) {
  return withProgress("reading " + input, [&] { return vdm_host::listReferences(&drawing); });
}

std::string joined(const std::vector<std::string>& texts) {
  std::string text;
  for (const std::string& one : texts) text += (text.empty() ? "" : ", ") + oneLine(one);
  return text;
}

Json referenceJson(const ReferenceText& text) {
  return {{"reference", text.handle}, {"name", text.name},         {"solid", text.solid},
          {"subentity", text.subent}, {"geometry", text.geometry}, {"grade", text.grade},
          {"note", text.note},        {"watchers", text.watchers}};
}

TextTable referenceTable() {
  using Align = TextTable::Align;
  return TextTable({{"HANDLE", Align::kRight},
                    {"NAME", Align::kLeft},
                    {"SOLID", Align::kRight},
                    {"PART", Align::kLeft},
                    {"GEOMETRY", Align::kLeft},
                    {"GRADE", Align::kLeft},
                    {"WATCHED BY", Align::kLeft}});
}

void addRow(TextTable& table, const ReferenceText& text) {
  table.addRow({text.handle, oneLine(text.name), text.solid, text.subent,
                text.geometry.empty() ? text.note : text.geometry, text.grade,
                joined(text.watchers)});
}

using GradeCounts = std::array<std::uint64_t, vdm_host::kReferenceGradeCount>;

GradeCounts countGrades(const std::vector<ReferenceEntry>& entries) {
  GradeCounts counts{};
  for (const ReferenceEntry& entry : entries) {
    ++counts[static_cast<std::size_t>(entry.now.grade)];
  }
  return counts;
}

std::string gradesText(const GradeCounts& counts) {
  std::string text;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(counts[i]) + " " +
            str(vdm_host::gradeName(static_cast<vdm_host::ReferenceGrade>(i)));
  }
  return text;
}

Json gradesJson(const GradeCounts& counts) {
  Json json = Json::object();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    json[str(vdm_host::gradeName(static_cast<vdm_host::ReferenceGrade>(i)))] = counts[i];
  }
  return json;
}

/// The drawing of a command, open for reading.
class OpenedModel : public OpenedDrawing {
 public:
  OpenedModel(const SessionSettings& settings, const RefsOptions& options)
      : OpenedDrawing(settings, options.input, DrawingSession::Access::kRead, Modules::kRequired) {}
};

std::string listText(const RefsOptions& options, const std::vector<ReferenceEntry>& entries) {
  TextTable table = referenceTable();
  for (const ReferenceEntry& entry : entries) addRow(table, referenceText(entry));
  return table.isEmpty() ? options.input + " has no references\n" : table.text();
}

Json listJson(const RefsOptions& options, const std::vector<ReferenceEntry>& entries) {
  Json list = Json::array();
  for (const ReferenceEntry& entry : entries) list.push_back(referenceJson(referenceText(entry)));
  return {{"file", options.input}, {"references", std::move(list)}};
}

/// References that lead to no geometry, apart from those that need not.
struct ReferenceFindings {
  std::vector<ReferenceText> lost;
  std::uint64_t waiting = 0;   ///< for suppressed components
  std::uint64_t unneeded = 0;  ///< without a watcher
};

ReferenceFindings findLost(const vdm_host::DrawingAudit& audit) {
  ReferenceFindings findings;
  for (const ReferenceEntry& entry : audit.references) {
    switch (vdm_host::needOf(entry)) {
      case vdm_host::ReferenceNeed::kResolved:
        break;
      case vdm_host::ReferenceNeed::kWanted:
        findings.lost.push_back(referenceText(entry));
        break;
      case vdm_host::ReferenceNeed::kWaiting:
        ++findings.waiting;
        break;
      case vdm_host::ReferenceNeed::kUnneeded:
        ++findings.unneeded;
        break;
    }
  }
  return findings;
}

Json auditJson(const RefsOptions& options, const std::vector<ReferenceEntry>& entries,
               const ReferenceFindings& findings) {
  Json list = Json::array();
  for (const ReferenceText& text : findings.lost) list.push_back(referenceJson(text));
  return {{"file", options.input},
          {"references", entries.size()},
          {"waiting", findings.waiting},
          {"unneeded", findings.unneeded},
          {"grades", gradesJson(countGrades(entries))},
          {"sound", findings.lost.empty()},
          {"findings", std::move(list)}};
}

std::string auditText(const std::vector<ReferenceEntry>& entries,
                      const ReferenceFindings& findings) {
  std::string headline = findings.lost.empty() ? "sound: " : "not sound: ";
  headline += counted(entries.size(), "reference");
  if (!entries.empty()) headline += ", " + gradesText(countGrades(entries));
  if (findings.waiting != 0) {
    headline += "; " + std::to_string(findings.waiting) + " of suppressed components";
  }
  if (findings.unneeded != 0) {
    headline += "; " + std::to_string(findings.unneeded) + " without a watcher";
  }
  TextTable table = referenceTable();
  for (const ReferenceText& text : findings.lost) addRow(table, text);
  return headline + "\n" + table.text();
}

std::string storyText(const ReferenceText& text, const vdm_host::ReferenceStory& story) {
  std::string head = "reference " + text.handle;
  if (!text.name.empty()) head += " " + quote(text.name);
  head += ": " + text.subent + (text.subent.empty() ? "" : " of ") + "solid " +
          (text.solid.empty() ? "that was erased" : solidText(story.now.solid));
  if (!text.geometry.empty()) head += ", " + text.geometry;
  std::string out = wrapped(head, "");
  if (!text.watchers.empty()) out += wrapped("watched by " + joined(text.watchers), "  ");
  for (const OdString& line : story.lines) out += wrapped(oneLine(line.utf8()), "  ");
  return out;
}

Json storyJson(const ReferenceText& text, const vdm_host::ReferenceStory& story) {
  Json json = referenceJson(text);
  json["steps"] = story.record.stepCount;
  json["story"] = Json::array();
  for (const OdString& line : story.lines) json["story"].push_back(str(line));
  return json;
}

}  // namespace

int runRefsList(const SessionSettings& settings, const RefsOptions& options) {
  const OpenedModel model(settings, options);
  const std::vector<ReferenceEntry> entries = readReferences(*model, options.input);
  printResult(
      settings, [&] { return listJson(options, entries); },
      [&] { return listText(options, entries); });
  return kDone;
}

int runRefsExplain(const SessionSettings& settings, const RefsOptions& options) {
  const OpenedModel model(settings, options);
  bool resolved = true;
  std::string text;
  Json list = Json::array();
  for (const OdDbObjectId& id : findReferences(*model, options.reference)) {
    const vdm_host::ReferenceStory story = vdm_host::explainReference(id);
    resolved = resolved && story.now.resolved();
    text += storyText(referenceText(id), story);
    list.push_back(storyJson(referenceText(id), story));
  }
  printResult(
      settings,
      [&] {
        return Json{{"file", options.input}, {"references", std::move(list)}};
      },
      [&] { return text; });
  return exitCodeFor(resolved);
}

int runRefsAudit(const SessionSettings& settings, const RefsOptions& options) {
  const OpenedModel model(settings, options);
  constexpr vdm_host::AuditParts kParts{.drawing = false, .features = false, .references = true};
  const vdm_host::DrawingAudit audit = withProgress("reading " + options.input, [&] {
    return vdm_host::auditDrawing(&*model, vdm_host::AuditMode::kLook, kParts);
  });
  const ReferenceFindings findings = findLost(audit);
  printResult(
      settings, [&] { return auditJson(options, audit.references, findings); },
      [&] { return auditText(audit.references, findings); });
  return exitCodeFor(audit.isSound());
}

}  // namespace cli
