// Choosing subentities: a selector runs over all of a type and keeps what its conditions accept.
#include "host/inspect/selector.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>

#include "host/inspect/selector_node.h"
#include "host/naming/subent_name.h"

namespace vdm_host {

namespace {

using Kind = SelectorNode::Kind;
using Subents = std::vector<OdModelerSubent>;

Subents chosen(SelectorContext& context, const SelectorNode& node, const Subents& from);

/// What is as good as the best, within the body's accuracy.
Subents best(SelectorContext& context, const SelectorNode& ranking, const Subents& from) {
  std::vector<double> ranks;
  ranks.reserve(from.size());
  for (const OdModelerSubent subent : from) {
    ranks.push_back(ranking.word->rank(context, context.facts.of(subent), ranking));
  }
  Subents kept;
  if (from.empty()) return kept;
  const double least = *std::ranges::min_element(ranks);
  const double slack = std::max(10.0 * context.facts.lengthTolerance(), 1e-6 * std::abs(least));
  for (std::size_t i = 0; i < from.size(); ++i) {
    if (ranks[i] <= least + slack) kept.push_back(from[i]);
  }
  return kept;
}

/// Conditions first, in order; then rankings over what they leave, in order.
Subents chosenByAll(SelectorContext& context, const SelectorNode& node, Subents from) {
  for (const bool ranks : {false, true}) {
    for (const auto& part : node.parts) {
      if (part->isRanking() == ranks) from = chosen(context, *part, from);
    }
  }
  return from;
}

Subents chosenByAny(SelectorContext& context, const SelectorNode& node, const Subents& from) {
  Subents all;
  for (const auto& part : node.parts) {
    const Subents some = chosen(context, *part, from);
    Subents joined;
    std::ranges::set_union(all, some, std::back_inserter(joined));
    all = std::move(joined);
  }
  return all;
}

Subents chosen(SelectorContext& context, const SelectorNode& node, const Subents& from) {
  Subents kept;
  switch (node.kind) {
    case Kind::kAll:
      return chosenByAll(context, node, from);
    case Kind::kAny:
      return chosenByAny(context, node, from);
    case Kind::kNot:
      std::ranges::set_difference(from, chosen(context, *node.parts.front(), from),
                                  std::back_inserter(kept));
      return kept;
    case Kind::kTest:
      if (node.isRanking()) return best(context, node, from);
      std::ranges::copy_if(from, std::back_inserter(kept), [&](OdModelerSubent subent) {
        return node.word->judge(context, context.facts.of(subent), node).holds();
      });
      return kept;
  }
  return kept;
}

// Why nothing matches.

/// How much of a selector a subentity breaks: first the number of conditions, then by how much.
struct Shortfall {
  int broken = 0;
  double miss = 0.0;
  std::string text;

  void add(const Shortfall& other) {
    broken += other.broken;
    miss += other.miss;
    if (!other.text.empty()) text += (text.empty() ? "" : "; ") + other.text;
  }
  [[nodiscard]] bool isLessThan(const Shortfall& other) const {
    return broken != other.broken ? broken < other.broken : miss < other.miss;
  }
};

Shortfall shortfallOf(SelectorContext& context, const SelectorNode& node, OdModelerSubent subent) {
  Shortfall shortfall;
  if (node.kind == Kind::kAll) {
    for (const auto& part : node.parts) shortfall.add(shortfallOf(context, *part, subent));
  } else if (node.kind == Kind::kAny) {
    for (const auto& part : node.parts) {
      Shortfall one = shortfallOf(context, *part, subent);
      if (&part == &node.parts.front() || one.isLessThan(shortfall)) shortfall = std::move(one);
    }
  } else if (node.kind == Kind::kNot) {
    const Subents alone{subent};
    if (!chosen(context, *node.parts.front(), alone).empty() && !node.parts.front()->isRanking()) {
      shortfall = {1, 1.0, "it is what '!' leaves out"};
    }
  } else if (!node.isRanking()) {
    SelectorVerdict verdict = node.word->judge(context, context.facts.of(subent), node);
    if (!verdict.holds()) {
      shortfall = {1, verdict.miss, verdict.found + " does not meet '" + node.text + "'"};
    }
  }
  return shortfall;
}

OdStatus nothingFound(SelectorContext& context, const SelectorNode& root, const std::string& text,
                      const Subents& all) {
  const OdModelerSubent* nearest = nullptr;
  Shortfall least;
  for (const OdModelerSubent& subent : all) {
    Shortfall one = shortfallOf(context, root, subent);
    if (nearest != nullptr && !one.isLessThan(least)) continue;
    nearest = &subent;
    least = std::move(one);
  }
  std::string message = "nothing matches '" + text + "'";
  if (nearest != nullptr) {
    message += "; the nearest is " + std::string(subentName(*nearest).utf8()) + ": " + least.text;
  }
  return {eKeyNotFound, OdString(message)};
}

/// eKeyNotFound for a name in the selector that no subentity has.
OdStatus checkNames(const SelectorNode& node, const SubentLookup& lookup) {
  if (node.kind == Kind::kTest && node.word->argument == SelectorArgument::kName &&
      lookup(node.name).empty()) {
    return {eKeyNotFound,
            OdString("'" + node.name + "' names no face, edge or vertex of the solid")};
  }
  for (const auto& part : node.parts) {
    const OdStatus status = checkNames(*part, lookup);
    if (!status.ok()) return status;
  }
  return {};
}

/// Takes the word before the colon; the null type when there is none.
OdModelerSubentType takeKind(std::string_view text, std::size_t& start) {
  constexpr std::pair<std::string_view, OdModelerSubentType> kKinds[] = {
      {"face", OdModelerSubentType::kFace},
      {"edge", OdModelerSubentType::kEdge},
      {"vertex", OdModelerSubentType::kVertex}};
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return OdModelerSubentType::kNull;
  for (const auto& [word, type] : kKinds) {
    if (!text.substr(first).starts_with(word)) continue;
    const std::size_t colon = text.find_first_not_of(" \t", first + word.size());
    if (colon == std::string_view::npos || text[colon] != ':') continue;
    start = colon + 1;
    return type;
  }
  return OdModelerSubentType::kNull;
}

}  // namespace

OdStatus Selector::parse(std::string_view text, OdModelerSubentType type,
                         std::optional<Selector>& selector) {
  std::size_t start = 0;
  const OdModelerSubentType named = takeKind(text, start);
  if (named != OdModelerSubentType::kNull) type = named;
  if (type == OdModelerSubentType::kNull) {
    return {eInvalidInput, L"column 1: expected 'face:', 'edge:' or 'vertex:'"};
  }
  std::unique_ptr<SelectorNode> root;
  const OdStatus status = parseSelector(text, start, type, root);
  if (status.ok()) selector = Selector(type, std::string(text), std::move(root));
  return status;
}

OdStatus Selector::select(BodyFacts& facts, const SubentLookup& lookup, Subents& found) const {
  // A name is looked up once, however many subentities are asked.
  std::map<std::string, Subents> known;
  const SubentLookup remembered = [&](const std::string& name) {
    const auto [place, isNew] = known.try_emplace(name);
    if (!isNew) return place->second;
    OdModelerSubent subent;
    if (!parseSubentName(OdString(name), subent)) {
      place->second = lookup(name);
    } else if (facts.body().hasSubent(subent)) {
      place->second = {subent};
    }
    return place->second;
  };
  const OdStatus names = checkNames(*m_root, remembered);
  if (!names.ok()) return names;
  Subents all;
  for (OdUInt32 i = 1; i <= facts.body().numSubents(m_type); ++i) all.push_back({m_type, i});
  SelectorContext context{facts, remembered};
  Subents kept = chosen(context, *m_root, all);
  if (kept.empty()) return nothingFound(context, *m_root, m_text, all);
  found = std::move(kept);
  return {};
}

}  // namespace vdm_host
