// The run of the benchmark: models, edits, references, verdicts.
#include "bench/naming/run.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "bench/naming/component_classes.h"
#include "bench/naming/edits.h"
#include "bench/naming/exchange.h"
#include "bench/naming/families.h"

namespace naming_bench {
namespace {

constexpr const char* kChain = "three in a row";

std::string textOf(const std::vector<OdModelerSubent>& subents) {
  std::string text;
  for (const OdModelerSubent s : subents) {
    text += text.empty() ? "" : " ";
    text += "0fev"[static_cast<std::size_t>(s.type)];
    text += "_" + std::to_string(s.index);
  }
  return text;
}

std::string textOf(const Truth& truth) {
  constexpr std::array<const char*, 4> kNames = {"", "gone", "ambiguous", "undecided"};
  return truth.kind == TruthKind::kAnswer ? textOf(truth.subents)
                                          : kNames[static_cast<std::size_t>(truth.kind)];
}

std::string textOf(const Answer& answer) {
  constexpr std::array<const char*, 3> kNames = {"", "lost", "ambiguous"};
  const std::string text = answer.kind == Answer::Kind::kNamed
                               ? textOf(answer.subents)
                               : kNames[static_cast<std::size_t>(answer.kind)];
  return answer.note.empty() ? text : text + " (" + answer.note + ")";
}

std::vector<OdModelerSubent> drawReferences(const OdModelerBody& body, std::size_t count,
                                            Random& random) {
  std::vector<OdModelerSubent> all = referable(body);
  for (std::size_t i = 0; i < std::min(count, all.size()); ++i) {
    std::swap(all[i], all[i + pick(random, all.size() - i)]);
  }
  all.resize(std::min(count, all.size()));
  std::ranges::sort(all);
  return all;
}

/// One case: what was done to which body, and what that means for the references.
struct Script {
  OdModelerBodyPtr start;
  std::vector<EditTrace> edits;
  std::vector<OdModelerSubent> references;
  std::vector<Truth> truths;
  std::vector<std::string> names;  ///< what the references are, as far as the plan tells
};

class Benchmark {
 public:
  Benchmark(const RunOptions& options, const std::vector<MethodMaker>& makers,
            const std::function<void(const CaseResult&)>& progress)
      : m_options(options), m_makers(makers), m_progress(progress) {
    for (const MethodMaker make : makers) m_result.methods.emplace_back(make()->name());
  }

  RunResult run() {
    const std::vector<Model> models =
        generateModels(m_options.modelsPerFamily, m_options.seed, m_options.onlyFamily);
    for (const Model& model : models) runModel(model);
    if (!m_options.stepFolder.empty() && !isLeftOut(m_options.onlyFamily, "file")) {
      for (const FileBody& file : readStepFolder(m_options.stepFolder)) runFile(file);
    }
    for (const Model& model : models) runReplacements(model);
    runComponents();
    return std::move(m_result);
  }

 private:
  static bool isLeftOut(const std::string& only, const std::string& name) {
    return !only.empty() && only != name;
  }

  // What only the references of a drawing can follow.
  void runComponents() {
    const auto ours = std::ranges::find(m_result.methods, makeReferenceMethod()->name());
    if (ours == m_result.methods.end()) return;
    playComponents(m_options, m_result.methods.size(),
                   static_cast<std::size_t>(ours - m_result.methods.begin()), m_result, m_progress);
  }

  void runModel(const Model& model) {
    for (std::size_t repeat = 0; repeat < m_options.repeats; ++repeat) {
      for (const EditRow& row : editRows()) {
        attempt(model.family, model.name, row.name, row.hasHistory,
                [&](Random& random, Script& script) { return single(model, row, random, script); });
      }
      attempt(model.family, model.name, kChain, true,
              [&](Random& random, Script& script) { return chain(model, random, script); });
    }
  }

  void runReplacements(const Model& model) {
    for (std::size_t repeat = 0; repeat < m_options.repeats; ++repeat) {
      for (const EditRow& row : replacementRows()) {
        attempt(model.family, model.name, row.name, row.hasHistory,
                [&](Random& random, Script& script) { return single(model, row, random, script); });
      }
    }
  }

  void runFile(const FileBody& file) {
    for (std::size_t repeat = 0; repeat < m_options.repeats; ++repeat) {
      for (const BodyEditRow& row : bodyEditRows()) {
        attempt("file", file.name, row.name, row.hasHistory,
                [&](Random& random, Script& script) { return onFile(file, row, random, script); });
      }
    }
  }

  bool single(const Model& model, const EditRow& row, Random& random, Script& script) {
    Part part = model.part;
    Stage stage(part);
    EditScene scene(stage, random);
    if (!row.run(scene)) return false;
    script.edits.push_back(stage.finish());
    settle(scene, script, random);
    return true;
  }

  bool chain(const Model& model, Random& random, Script& script) {
    std::vector<const EditRow*> rows;
    for (const EditRow& row : editRows()) {
      if (row.chains) rows.push_back(&row);
    }
    Part part = model.part;
    Stage stage(part);
    EditScene scene(stage, random);
    constexpr std::size_t kLength = 3;
    for (std::size_t tries = 0; tries < 4 * kLength && script.edits.size() < kLength; ++tries) {
      stage.begin();
      if (!rows[pick(random, rows.size())]->run(scene)) continue;
      script.edits.push_back(stage.finish());
    }
    if (script.edits.size() < kLength) return false;
    settle(scene, script, random);
    return true;
  }

  /// References and truths, once the edits are done.
  void settle(EditScene& scene, Script& script, Random& random) {
    script.start = script.edits.front().before;
    script.references = drawReferences(*script.start, m_options.references, random);
    const NamedBody before(scene.before, script.start);
    const NamedBody now(scene.plan(), scene.judged ? scene.judged : script.edits.back().after);
    if (before.unnamed() != 0) {
      throw std::logic_error("the construction plan does not know " +
                             std::to_string(before.unnamed()) + " faces of its part");
    }
    for (const OdModelerSubent subent : script.references) {
      std::string& name = script.names.emplace_back();
      for (const int carrier : before.meeting(subent)) {
        name +=
            (name.empty() ? "" : " / ") + before.carriers()[static_cast<std::size_t>(carrier)].name;
      }
    }
    script.truths =
        truthsOf(scene.before, before, scene.plan(), now, scene.meaning, script.references);
  }

  bool onFile(const FileBody& file, const BodyEditRow& row, Random& random, Script& script) {
    Part part;
    part.body = file.body;
    Stage stage(part);
    BodyEdit edit;
    if (!row.run(stage, random, edit)) return false;
    script.edits.push_back(stage.finish());
    script.start = file.body;
    script.references = drawReferences(*file.body, m_options.references, random);
    script.truths =
        truthsByGeometry(*file.body, *part.body, edit.motion, edit.touched, script.references);
    return true;
  }

  template <class Make>
  void attempt(const std::string& family, const std::string& model, const char* edit,
               bool hasHistory, Make make) {
    const std::uint64_t seed = m_options.seed * 7919 + m_number++;
    if (isLeftOut(m_options.onlyEdit, edit)) return;
    Random random(seed);
    Script script;
    try {
      if (!make(random, script)) return;
    } catch (const std::runtime_error& refusal) {
      ++m_result.refused;
      if (m_options.explain) {
        std::fprintf(stderr, "%s, %s: %s\n", model.c_str(), edit, refusal.what());
      }
      return;
    }
    CaseResult& result = m_result.cases.emplace_back();
    result.family = family;
    result.model = model;
    result.edit = edit;
    result.seed = seed;
    result.hasHistory = hasHistory;
    askAll(script, result);
    if (m_progress) m_progress(result);
  }

  void askAll(const Script& script, CaseResult& result) {
    for (const Truth& truth : script.truths) {
      ++(truth.kind == TruthKind::kUndecided ? result.undecided : result.judged);
    }
    for (const MethodMaker make : m_makers) {
      const std::unique_ptr<NamingMethod> method = make();
      method->begin(script.start, script.references);
      for (const EditTrace& edit : script.edits) method->edited(edit);
      const std::vector<Answer> answers = method->answers();
      Score& score = result.scores.emplace_back();
      for (std::size_t i = 0; i < answers.size(); ++i) {
        const Truth& truth = script.truths[i];
        if (truth.kind == TruthKind::kUndecided) continue;
        const Verdict verdict = judge(truth, answers[i], method->namesAllParts());
        score.add(truth.kind, verdict);
        if (m_options.explain && verdict != Verdict::kRight) {
          const std::string name = script.names.empty() ? "" : " [" + script.names[i] + "]";
          result.lines.push_back(std::string(method->name()) + ": " +
                                 textOf({script.references[i]}) + name + " is " + textOf(truth) +
                                 ", answer " + textOf(answers[i]));
        }
      }
    }
  }

  const RunOptions& m_options;
  const std::vector<MethodMaker>& m_makers;
  const std::function<void(const CaseResult&)>& m_progress;
  RunResult m_result;
  std::uint64_t m_number = 0;
};

}  // namespace

RunResult runBenchmark(const RunOptions& options, const std::vector<MethodMaker>& methods,
                       const std::function<void(const CaseResult&)>& progress) {
  return Benchmark(options, methods, progress).run();
}

}  // namespace naming_bench
