// The parsed form of a selector. Private to the room.
#pragma once

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "host/inspect/selector.h"

namespace vdm_host {

/// Numbers that a condition accepts.
struct SelectorRange {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  bool withLow = true;  ///< the bound itself is accepted
  bool withHigh = true;
};

/// What a condition is given after its word.
enum class SelectorArgument { kNone, kRange, kDirection, kPoint, kName };

/// What one subentity makes of a condition.
struct SelectorVerdict {
  double miss =
      0.0;  ///< 0 where the condition holds; else how far it is from that, 1 for "not at all"
  std::string found;  ///< what is there instead: "radius 3.5"

  [[nodiscard]] bool holds() const { return miss == 0.0; }
};

struct SelectorNode;

/// What is known while a selector runs.
struct SelectorContext {
  BodyFacts& facts;
  const SubentLookup& lookup;
};

/// One word of the language. A ranking has `rank` and no `judge`: less is better.
struct SelectorWord {
  const char* word;
  const char* types;  ///< letters of f, e, v: what it can be asked of
  SelectorArgument argument;
  SelectorVerdict (*judge)(SelectorContext&, const SubentFacts&, const SelectorNode&);
  double (*rank)(SelectorContext&, const SubentFacts&, const SelectorNode&);
};
[[nodiscard]] const SelectorWord* findSelectorWord(std::string_view word);
/// All words that can be asked of a type, for messages.
[[nodiscard]] std::string selectorWordsOf(OdModelerSubentType type);
[[nodiscard]] char selectorLetter(OdModelerSubentType type);

struct SelectorNode {
  enum class Kind { kAll, kAny, kNot, kTest };
  Kind kind = Kind::kTest;
  std::vector<std::unique_ptr<SelectorNode>> parts;

  // Of a test.
  const SelectorWord* word = nullptr;
  std::string text;  ///< as written
  SelectorRange range;
  OdGeVector3d direction;  ///< unit
  OdGePoint3d point;
  std::string name;

  [[nodiscard]] bool isRanking() const { return kind == Kind::kTest && word->rank != nullptr; }
};

/// Parses what follows the kind. The status has the column in the whole text, where the part begins
/// at `start`.
OdStatus parseSelector(std::string_view text, std::size_t start, OdModelerSubentType type,
                       std::unique_ptr<SelectorNode>& root);

}  // namespace vdm_host
