// Plays random edit scripts and compares the drawing with what is remembered of it.
#include "tests/random/script_check.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/db/audit_info.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/storage/sqlite_record_store.h"
#include "tests/random/edit_script.h"
#include "tests/support/dump_drawing.h"

namespace {

constexpr const char* kFile = "random_script.vdm";

class ScriptPlay : OdNonCopyable {
 public:
  explicit ScriptPlay(const ScriptOptions& options)
      : m_options(options),
        m_script(options.seed),
        m_services(options.withFile ? createSqliteStoreFactory() : nullptr),
        m_database(m_services.createDatabase()) {}
  ~ScriptPlay() {
    m_database = OdDbDatabasePtr();
    if (m_options.withFile) std::filesystem::remove(kFile);
  }

  std::string run() {
    try {
      begin();
      for (int step = 0; step < m_options.steps; ++step) playStep();
      undoAndRedoAll();
      audit();
      if (m_options.withFile) reopen();
      return {};
    } catch (const std::exception& error) {
      return told(error.what());
    }
  }

 private:
  void begin() {
    if (m_options.withFile) check(m_database->saveAs(OdString(kFile)));
    startRemembering();
  }

  void playStep() {
    RandomSource& random = m_script.random();
    const std::size_t choice = random.below(100);
    if (choice < 8) {
      takeBack(1 + random.below(4));
    } else if (choice < 13) {
      bringAgain(1 + random.below(4));
    } else if (choice < 16) {
      note("mark");
      m_database->setUndoMark();
    } else if (choice < 18) {
      backToMark();
    } else if (choice < 24 && m_options.withFile) {
      save();
    } else if (choice < 26 && m_options.withFile) {
      reopen();
    } else {
      edit();
    }
  }

  // Law 1.
  void edit() {
    m_database->startUndoRecord();
    note("edit");
    m_edits.back() = m_script.edit(m_database.get());
    const std::size_t steps = m_database->numUndoSteps();
    if (!m_database->hasRedo()) m_states.resize(m_at + 1);
    if (steps == m_at) return expectState("an edit that records nothing changes nothing");
    if (steps != m_at + 1) {
      fail("one edit became " + std::to_string(static_cast<long>(steps - m_at)) + " undo steps");
    }
    m_states.push_back(dumpDrawing(m_database.get()));
    m_at = steps;
  }

  // Law 2.
  void takeBack(std::size_t count) {
    note("undo");
    for (; count > 0 && m_at > 0; --count) {
      expectOk(m_database->undo(), "undo");
      --m_at;
      expectState("undo");
    }
  }
  void bringAgain(std::size_t count) {
    note("redo");
    for (; count > 0 && m_at + 1 < m_states.size(); --count) {
      expectOk(m_database->redo(), "redo");
      ++m_at;
      expectState("redo");
    }
  }
  void backToMark() {
    note("back to mark");
    if (!m_database->hasUndoMark()) return;
    expectOk(m_database->undoBack(), "going back to a mark");
    const std::size_t steps = m_database->numUndoSteps();
    if (steps > m_at) fail("going back to a mark brought undo steps");
    m_at = steps;
    expectState("going back to a mark");
  }
  void undoAndRedoAll() {
    takeBack(m_at);
    if (m_database->hasUndo()) fail("something is left to undo");
    bringAgain(m_states.size());
    if (m_database->hasRedo()) fail("something is left to redo");
  }

  // Law 3.
  void save() {
    note("save and drop from memory");
    check(m_database->save());
    expectState("saving");
    m_database->pageOut(0);
    expectState("dropping objects from memory");
  }
  void reopen() {
    note("save and reopen");
    const bool isSaveAs = m_script.random().chance(30);
    check(isSaveAs ? m_database->saveAs(OdString(kFile)) : m_database->save());
    const std::string before = dumpDrawing(m_database.get(), DumpScope::kInFile);
    rememberErased();
    m_database = OdDbDatabasePtr();
    OdStatus status;
    m_database = m_services.readFile(OdString(kFile), status);
    check(status);
    check(m_database->loadAll());
    const std::string after = dumpDrawing(m_database.get(), DumpScope::kInFile);
    if (before != after) fail("reopening: " + firstDifference(before, after));
    auditReopened();
    startRemembering();
  }

  // Law 4.
  void audit() {
    OdDbAuditInfo info;
    m_database->audit(&info);
    if (info.numErrors() == 0) return;
    fail("audit: " + std::string(info.lines()[0].utf8()));
  }

  /// What was erased is not in the file, and objects that point to it are found and mended.
  void auditReopened() {
    OdDbAuditInfo info(/*fixErrors=*/true);
    m_database->audit(&info);
    for (const OdString& line : info.lines()) {
      if (!namesErased(std::string(line.utf8()))) fail("audit: " + std::string(line.utf8()));
    }
    audit();
  }
  void rememberErased() {
    m_erased.clear();
    const auto remember = [this](OdDbObjectId id) {
      if (id.isEffectivelyErased()) m_erased.emplace_back(id.getHandle().ascii().utf8());
      return true;
    };
    m_database->forEachId(remember, /*withErased=*/true);
  }
  [[nodiscard]] bool namesErased(const std::string& line) const {
    return std::ranges::any_of(m_erased, [&line](const std::string& handle) {
      return line.find("reactor " + handle + ' ') != std::string::npos ||
             line.find("reference " + handle + ' ') != std::string::npos ||
             line.find("reference to " + handle + ' ') != std::string::npos;
    });
  }

  void startRemembering() {
    m_database->clearUndo();
    m_states.assign(1, dumpDrawing(m_database.get()));
    m_at = 0;
  }
  void expectState(const std::string& what) {
    const std::string now = dumpDrawing(m_database.get());
    if (now != m_states[m_at]) fail(what + ": " + firstDifference(m_states[m_at], now));
  }
  static void expectOk(OdResult result, const std::string& what) {
    if (result != eOk) fail(what + " gave " + std::to_string(result));
  }
  static void check(const OdStatus& status) {
    if (!status.ok()) fail(std::string(status.text.utf8()));
  }
  [[noreturn]] static void fail(const std::string& what) { throw std::runtime_error(what); }

  void note(const char* edit) { m_edits.emplace_back(edit); }
  [[nodiscard]] std::string told(const std::string& what) const {
    std::string text = "seed " + std::to_string(m_options.seed) + ", step " +
                       std::to_string(m_edits.size()) + " of " + std::to_string(m_options.steps) +
                       ": " + what;
    for (std::size_t i = 0; i < m_edits.size(); ++i) {
      text += "\n  " + std::to_string(i + 1) + ". " + m_edits[i];
    }
    return text;
  }

  ScriptOptions m_options;
  EditScript m_script;
  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_database;
  std::vector<std::string> m_states;  // by the number of undo steps; above m_at what redo brings
  std::size_t m_at = 0;
  std::vector<std::string> m_edits;
  std::vector<std::string> m_erased;  // handles that were erased, or below it, when it was saved
};

}  // namespace

std::string playScript(const ScriptOptions& options) { return ScriptPlay(options).run(); }

std::string checkScript(const ScriptOptions& options) {
  std::string failure = playScript(options);
  if (failure.empty()) return {};
  ScriptOptions shorter = options;
  for (shorter.steps = 1; shorter.steps < options.steps; ++shorter.steps) {
    const std::string failureOfPrefix = playScript(shorter);
    if (!failureOfPrefix.empty()) return failureOfPrefix;
  }
  return failure;
}
