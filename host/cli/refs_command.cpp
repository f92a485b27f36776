// `vdm refs`: the persistent references of a drawing.
#include "host/cli/refs_command.h"

#include <array>
#include <nlohmann/json.hpp>

#include "host/cli/cli_error.h"
#include "host/cli/json_text.h"
#include "host/cli/model_lookup.h"
#include "host/cli/paths.h"
#include "host/cli/progress.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using vdm_host::ReferenceEntry;

std::vector<ReferenceEntry> readReferences(OdDbDatabase& drawing, const std::string& input) {
  const Progress progress("reading " + input);
  return vdm_host::listReferences(&drawing);
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
class OpenedModel {
 public:
  OpenedModel(const SessionOptions& session, const RefsOptions& options)
      : m_runtime(session), m_drawing(open(session, options)) {}

  OdDbDatabase& drawing() { return *m_drawing; }

 private:
  OdDbDatabasePtr open(const SessionOptions& session, const RefsOptions& options) {
    requireModules(session);
    checkInput(options.input);
    return m_runtime.open(options.input, DrawingSession::Access::kRead);
  }

  DrawingSession m_runtime;
  OdDbDatabasePtr m_drawing;
};

}  // namespace

int runRefsList(const SessionOptions& session, const RefsOptions& options) {
  OpenedModel model(session, options);
  const std::vector<ReferenceEntry> entries = readReferences(model.drawing(), options.input);
  if (session.json) {
    Json list = Json::array();
    for (const ReferenceEntry& entry : entries) list.push_back(referenceJson(referenceText(entry)));
    printOut(jsonText({{"file", options.input}, {"references", std::move(list)}}));
    return kDone;
  }
  TextTable table = referenceTable();
  for (const ReferenceEntry& entry : entries) addRow(table, referenceText(entry));
  printOut(table.isEmpty() ? options.input + " has no references\n" : table.text());
  return kDone;
}

namespace {

std::string storyText(const ReferenceText& text, const vdm_host::ReferenceStory& story) {
  std::string head = "reference " + text.handle;
  if (!text.name.empty()) head += " " + quote(text.name);
  head += ": " + text.subent + (text.subent.empty() ? "" : " of ") + "solid " +
          (text.solid.empty() ? "that is gone" : solidText(story.now.solid));
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

int runRefsExplain(const SessionOptions& session, const RefsOptions& options) {
  OpenedModel model(session, options);
  bool resolved = true;
  std::string text;
  Json list = Json::array();
  for (const OdDbObjectId& id : findReferences(model.drawing(), options.reference)) {
    const vdm_host::ReferenceStory story = vdm_host::explainReference(id);
    resolved = resolved && story.now.resolved();
    text += storyText(referenceText(id), story);
    list.push_back(storyJson(referenceText(id), story));
  }
  printOut(session.json ? jsonText({{"file", options.input}, {"references", std::move(list)}})
                        : text);
  return resolved ? kDone : kNotSound;
}

int runRefsAudit(const SessionOptions& session, const RefsOptions& options) {
  OpenedModel model(session, options);
  const std::vector<ReferenceEntry> entries = readReferences(model.drawing(), options.input);
  const GradeCounts counts = countGrades(entries);
  Json findings = Json::array();
  std::uint64_t waiting = 0;   // for suppressed components
  std::uint64_t unneeded = 0;  // nobody watches them
  TextTable table = referenceTable();
  for (const ReferenceEntry& entry : entries) {
    if (entry.now.resolved()) continue;
    const ReferenceText text = referenceText(entry);
    if (text.isExpected) {
      ++(text.watchers.empty() ? unneeded : waiting);
      continue;
    }
    findings.push_back(referenceJson(text));
    addRow(table, text);
  }
  const bool sound = findings.empty();
  if (session.json) {
    printOut(jsonText({{"file", options.input},
                       {"references", entries.size()},
                       {"waiting", waiting},
                       {"unneeded", unneeded},
                       {"grades", gradesJson(counts)},
                       {"sound", sound},
                       {"findings", std::move(findings)}}));
  } else {
    std::string headline = sound ? "sound: " : "not sound: ";
    headline += counted(entries.size(), "reference");
    if (!entries.empty()) headline += ", " + gradesText(counts);
    if (waiting != 0) headline += "; " + std::to_string(waiting) + " of suppressed components";
    if (unneeded != 0) headline += "; " + std::to_string(unneeded) + " needed by nobody";
    printOut(headline + "\n" + table.text());
  }
  return sound ? kDone : kNotSound;
}

}  // namespace cli
