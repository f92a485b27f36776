// Plays scripts of edits on a model and compares it with the truth after each.
#include "tests/reliability/model_play.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "host/naming/reference_query.h"
#include "platform/db/audit_info.h"
#include "platform/entities/block_reference.h"
#include "tests/reliability/edited_model.h"
#include "tests/support/dump_drawing.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

using namespace vdm_host;

namespace {

constexpr const char* kFile = "random_model.vdm";
constexpr double kRoundOff = 1e-6;  // relative, of volumes: what a chain of booleans may add up to

std::string handleText(const OdDbHandle& handle) { return std::string(handle.ascii().utf8()); }

class ModelPlay : private EditedModel {
 public:
  ModelPlay(const ModelParts& parts, ReferenceTally& tally) : EditedModel(parts), m_tally(tally) {
    m_truths.assign(1, m_truth);
    m_dumps.assign(1, dump());
  }
  ~ModelPlay() { std::filesystem::remove(kFile); }
  ModelPlay(const ModelPlay&) = delete;
  ModelPlay& operator=(const ModelPlay&) = delete;

  void step(const ModelEdit& edit) {
    if (edit.kind == ModelEditKind::kUndo) return walk(/*forward=*/false, 1 + edit.which % 3);
    if (edit.kind == ModelEditKind::kRedo) return walk(/*forward=*/true, 1 + edit.which % 3);
    if (edit.failingBoolean != 0) tryFailing(edit);
    const ModelTruth before = m_truth;
    const EditResult result = apply(edit);
    if (!result.ok()) m_truth = before;
    settleStep(result);
    checkAll();
  }

  void finish() {
    walk(/*forward=*/false, m_at);
    expect(!m_database->hasUndo(), "something is left to undo");
    walk(/*forward=*/true, m_dumps.size());
    expect(!m_database->hasRedo(), "something is left to redo");
    reopen();
    checkAll();
    eraseAllComponents();
  }

 private:
  // ---- Laws

  [[nodiscard]] std::string dump() const { return dumpDrawing(m_database.get()); }

  // Law 1: an edit that worked.
  void settleStep(const EditResult& result) {
    const std::size_t steps = m_database->numUndoSteps();
    if (!m_database->hasRedo()) {
      m_dumps.resize(m_at + 1);
      m_truths.resize(m_at + 1);
    }
    if (steps == m_at) {
      expectState(result.ok() ? "an edit without changes" : "a refused edit");
      return;
    }
    expect(result.ok(), "a refused edit is a step of undo");
    expect(steps == m_at + 1, "an edit is more than one step of undo");
    m_at = steps;
    m_dumps.push_back(dump());
    m_truths.push_back(m_truth);
  }

  // Law 1: an edit in which a boolean fails.
  void tryFailing(const ModelEdit& edit) {
    const ModelTruth before = m_truth;
    m_modeler->failAt(edit.failingBoolean);
    const EditResult result = apply(edit);
    const bool wasReached = m_modeler->count() >= edit.failingBoolean;
    m_modeler->failAt(0);
    if (result.ok() || !wasReached) {  // done, perhaps in another way: take it back
      if (!result.ok()) m_truth = before;
      checkAll();
      if (m_database->numUndoSteps() > m_at) {
        expect(m_database->undo() == eOk, "undo");
        m_dumps.resize(m_at + 1);
        m_truths.resize(m_at + 1);
      }
    } else {
      expect(result.report.rolledBack && !result.report.rollbackReason.isEmpty(),
             "a failure is not explained");
    }
    m_truth = before;
    expectState("a failed edit");
  }

  void expectState(const std::string& what) const {
    const std::string now = dump();
    if (now != m_dumps[m_at]) fail(what + ": " + firstDifference(m_dumps[m_at], now));
  }

  // Law 5.
  void walk(bool forward, std::size_t count) {
    for (; count > 0; --count) {
      if (forward ? m_at + 1 >= m_dumps.size() : m_at == 0) return;
      expect((forward ? m_database->redo() : m_database->undo()) == eOk, forward ? "redo" : "undo");
      m_at = forward ? m_at + 1 : m_at - 1;
      m_truth = m_truths[m_at];
      expectState(forward ? "redo" : "undo");
      checkReferences();
    }
  }

  void checkAll() {
    checkAudits();
    checkReferences();
    for (std::size_t i = 0; i < m_truth.solids.size(); ++i) checkSolid(i);
  }

  // Law 2.
  void checkAudits() {
    const std::string before = dump();
    const OdDbObjectId space = m_database->getModelSpaceId();
    OdDbTransaction transaction(m_database.get());
    auditManager<VdmDbPersIdManager>(space);
    expectSame(before, "the audit of references");
    auditManager<VdmDbFeatureManager>(space);
    expectSame(before, "the audit of features");
    auditManager<VdmDbConstraintManager>(space);
    expectSame(before, "the audit of constraints");
    OdDbAuditInfo info(/*fixErrors=*/true);
    m_database->audit(&info);
    if (info.numErrors() != 0) fail("audit: " + std::string(info.lines()[0].utf8()));
    expectSame(before, "the audit of the drawing");
  }
  template <class Manager>
  static void auditManager(const OdDbObjectId& block) {
    const OdDbObjectId id = Manager::getInstance(block, /*create=*/false);
    if (!id.isNull()) id.safeOpenAs<Manager>(OdDb::kForWrite)->doAudit();
  }
  void expectSame(const std::string& before, const std::string& what) const {
    const std::string now = dump();
    if (now != before) fail(what + " changes something: " + firstDifference(before, now));
  }

  // Law 3.
  void checkReferences() {
    std::map<OdUInt64, const TruthReference*> named;
    for (const TruthReference& reference : m_truth.references) {
      named[reference.feature] = &reference;
    }
    for (const ReferenceEntry& entry : listReferences(m_database.get())) {
      for (const OdDbObjectId& watcher : entry.watchers) {
        const auto found = named.find(watcher.ownerId().getHandle());
        if (found == named.end()) continue;
        // One that had met with another and came apart again stands for both, and says so.
        if (entry.now.grade == ReferenceGrade::kSplit && hasMerged(entry.now)) continue;
        judge(entry.now, found->second->solid, found->second->faces);
      }
    }
    for (std::size_t i = 0; i < m_truth.inserts.size(); ++i) {
      if (!m_truth.inserts[i].isErased) checkComponent(i);
    }
  }

  static bool hasMerged(const ResolvedReference& reference) {
    const ReferenceStory story = explainReference(reference.dependency);
    return std::ranges::any_of(story.record.steps, [](const LineageStep& step) {
      return step.grade == ReferenceGrade::kMerged;
    });
  }

  void checkComponent(std::size_t number) {
    const TruthInsert& insert = m_truth.inserts[number];
    const VdmComponentFeaturePtr component = openComponent(insert);
    const OdGeMatrix3d world =
        component->insertId().safeOpenAs<OdDbBlockReference>()->blockTransform();
    expect(world.isEqualTo(m_truth.worldOf(insert), OdGeTol(1e-6)), "an insert is elsewhere");
    if (insert.base) {
      for (const OdDbObjectId& id : component->baseFaceDependencies()) {
        judge(resolveReference(id), insert.solid, {*insert.base});
      }
    }
    for (const auto& [tag, ids] : component->openingDependencies()) {
      const TruthFace face{TruthFace::Of::kInsert, number, static_cast<OdUInt32>(tag)};
      for (const OdDbObjectId& id : ids) {
        const ResolvedReference now = resolveReference(id);
        if (insert.isSuppressed) {
          expect(!now.resolved(), "a suppressed opening has faces");
        } else {
          judge(now, insert.solid, {face});
        }
      }
    }
  }

  void judge(const ResolvedReference& now, std::size_t solid, const std::vector<TruthFace>& meant) {
    const OdModelerBodyPtr body = bodyOf(solid);
    const auto type = static_cast<OdModelerSubentType>(now.path.subentId().type());
    if (now.resolved()) {
      const std::string wrong = m_truth.judge(*body, {type, numberOf(now)}, solid, meant);
      if (!wrong.empty()) {
        std::string story;
        for (const OdString& line : explainReference(now.dependency).lines) {
          story += "\n    " + std::string(line.utf8());
        }
        fail("reference " + handleText(now.dependency.getHandle()) + " is wrong: " + wrong + story);
      }
      ++m_tally.right;
      return;
    }
    OdUInt32 candidates = 0;
    for (OdUInt32 i = 1; i <= body->numSubents(type); ++i) {
      if (m_truth.judge(*body, {type, i}, solid, meant).empty()) ++candidates;
    }
    if (candidates == 1) ++m_tally.missed;
  }

  // Law 4.
  void checkSolid(std::size_t number) const {
    const OdModelerBodyPtr now = bodyOf(number);
    const OdStatus sound = now->check();
    if (!sound.ok()) fail("unsound: " + std::string(sound.text.utf8()));
    const OdModelerBodyPtr fresh = m_truth.built(number);
    const OdModelerMassProperties have = now->massProperties();
    const OdModelerMassProperties wanted = fresh->massProperties();
    const std::string solid = "solid " + std::to_string(number);
    if (std::abs(have.volume - wanted.volume) > kRoundOff * wanted.volume) {
      fail(solid + " has the volume " + std::to_string(have.volume) + ", built at once " +
           std::to_string(wanted.volume));
    }
    if (std::abs(have.area - wanted.area) > kRoundOff * wanted.area) {
      fail(solid + " has the area " + std::to_string(have.area) + ", built at once " +
           std::to_string(wanted.area));
    }
    if (now->numFaces() != fresh->numFaces()) {
      fail(solid + " has " + std::to_string(now->numFaces()) + " faces, built at once " +
           std::to_string(fresh->numFaces()));
    }
  }

  // Law 5: the file.
  void reopen() {
    check(m_database->saveAs(OdString(kFile)));
    const std::string before = dump();
    m_editor.reset();
    m_database = OdDbDatabasePtr();
    OdStatus status;
    m_database = m_services.readFile(OdString(kFile), status);
    check(status);
    m_editor = std::make_unique<ModelEditor>(m_database.get());
    const std::string after = dump();
    if (before != after) fail("reopening: " + firstDifference(before, after));
    // Lists leave out what was erased when the file was written, now that it cannot come back.
    OdDbAuditInfo info(/*fixErrors=*/true);
    m_database->audit(&info);
    if (info.numErrors() != 0) fail("audit: " + std::string(info.lines()[0].utf8()));
  }
  static void check(const OdStatus& status) {
    if (!status.ok()) fail(std::string(status.text.utf8()));
  }

  // Law 6.
  void eraseAllComponents() {
    for (TruthInsert& insert : m_truth.inserts) {
      if (insert.isErased) continue;
      insert.isErased = true;
      const EditResult result = m_editor->eraseObject(idOf(insert.insert));
      if (!result.ok()) fail("erasing the components: " + std::string(result.status.text.utf8()));
    }
    checkAll();
  }

  ReferenceTally& m_tally;
  std::vector<ModelTruth> m_truths;  // by the number of undo steps; above m_at what redo brings
  std::vector<std::string> m_dumps;
  std::size_t m_at = 0;
};

}  // namespace

std::string playModelScript(const ModelParts& parts, const std::vector<ModelEdit>& script,
                            ReferenceTally& tally) {
  std::string told;
  try {
    ModelPlay play(parts, tally);
    for (const ModelEdit& edit : script) {
      told += "\n  " + toText(edit);
      play.step(edit);
    }
    told += "\n  all taken back, brought again, opened anew, healed";
    play.finish();
    return {};
  } catch (const std::exception& error) {
    return error.what() + told;
  }
}

std::string checkModelScript(const ModelParts& parts, std::uint64_t seed, std::size_t edits,
                             ReferenceTally& tally) {
  std::vector<ModelEdit> script = makeModelScript(seed, edits);
  std::string failure = playModelScript(parts, script, tally);
  if (failure.empty()) return {};
  for (std::size_t i = script.size(); i-- > 0;) {
    std::vector<ModelEdit> shorter = script;
    shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
    const std::string failureOfShorter = playModelScript(parts, shorter, tally);
    if (failureOfShorter.empty()) continue;
    script = std::move(shorter);
    failure = failureOfShorter;
  }
  return "seed " + std::to_string(seed) + ": " + failure;
}
