// The scripted edits, as rows.
#pragma once

#include <span>
#include <string>

#include "bench/naming/stage.h"
#include "bench/naming/truth.h"

namespace naming_bench {

/// What an edit works on. The stage's part carries the plan, which the edit changes along.
struct EditScene {
  Stage& stage;
  Random& random;
  EditMeaning meaning;
  Plan before;  ///< the plan at the beginning of the stage's trace
  /// A body with the numbers of the new one whose surfaces are the plan's; null when the new one
  /// is.
  OdModelerBodyPtr judged;

  EditScene(Stage& s, Random& r) : stage(s), random(r), before(s.part().plan) {}
  Plan& plan() { return stage.part().plan; }
};

/// A groove across the whole top, in one of the plan's lanes, of which there must be one.
[[nodiscard]] Feature newGroove(const Plan& plan, Random& random);

struct EditRow {
  const char* name;
  bool hasHistory;  ///< the modeller tells what became of what
  bool chains;      ///< may follow any other that chains
  /// False, with nothing done, when the part has nothing to do it on.
  bool (*run)(EditScene& scene);
};

/// The edits of generated parts.
[[nodiscard]] std::span<const EditRow> editRows();
/// More of them: replacements by parts that look like something else (replacements.cpp).
[[nodiscard]] std::span<const EditRow> replacementRows();

/// An edit of a part of which only the body is known. `touched` is where geometry may change.
struct BodyEdit {
  OdGeMatrix3d motion;
  OdGeExtents3d touched;
};
struct BodyEditRow {
  const char* name;
  bool hasHistory;
  bool (*run)(Stage& stage, Random& random, BodyEdit& edit);
};
[[nodiscard]] std::span<const BodyEditRow> bodyEditRows();

}  // namespace naming_bench
