// The subtraction that an intersection has computed, for the call that asks for it next.
#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "platform/modeler/body.h"

class BOPAlgo_PaveFiller;
class BRepAlgoAPI_BooleanOperation;

namespace od_occt {

struct LocalSplit;

/// A boolean operation that has run, with the intersections that it works on, or the split that the
/// next one can start from.
struct FinishedBoolean {
  FinishedBoolean();
  ~FinishedBoolean();
  FinishedBoolean(FinishedBoolean&& other) noexcept;
  FinishedBoolean& operator=(FinishedBoolean&& other) noexcept;

  // The operation refers to the intersections and is destroyed before them.
  std::unique_ptr<BOPAlgo_PaveFiller> intersections;
  std::unique_ptr<BRepAlgoAPI_BooleanOperation> operation;
  std::shared_ptr<const LocalSplit> local;
};

/// Keeps one subtraction between two calls of a modeller, which owns it.
///
/// A component that cuts a solid needs the piece that its tool takes, and then the solid without
/// it: first "solid and tool", then "solid without tool". The first is computed by way of the
/// second (occt_removed_part.h), so the second is done already.
///
/// Why the kept cut is right: it is given out for the same input bodies only, by identity and in
/// their order. Bodies never change, and they are held, so that no other body can come to lie at
/// the address of one of them. A subtraction within the modeller's own tolerance depends on nothing
/// else. A split depends on the solids of the tools alone: it also serves tools that are the very
/// same solids in one body, as those that were united because they lie apart.
///
/// It lives until the next boolean of the modeller, which takes or drops it, and so holds the
/// memory of one operation at most; only a union of bodies that lie apart leaves it. Safe to use
/// from several threads: the boolean of another thread drops what is kept, which costs time and
/// never changes a result.
class KeptCut {
 public:
  /// Replaces what is kept. `cut` is the subtraction of the other inputs from the first one, not
  /// simplified.
  void keep(std::span<const OdModelerBodyPtr> inputs, FinishedBoolean cut);
  /// The kept cut of these inputs, or its split for the same solids in other bodies; empty when
  /// there is none. Nothing is kept afterwards.
  [[nodiscard]] FinishedBoolean take(std::span<const OdModelerBodyPtr> inputs);

 private:
  struct Content {
    std::vector<OdModelerBodyPtr> inputs;
    FinishedBoolean cut;
  };

  std::mutex m_mutex;
  Content m_content;
};

}  // namespace od_occt
