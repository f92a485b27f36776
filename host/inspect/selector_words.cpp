// The words of the selector language: one row each.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "host/inspect/selector_node.h"

namespace vdm_host {

namespace {

using Argument = SelectorArgument;
using Type = OdModelerSubentType;
using Verdict = SelectorVerdict;

/// What is typed with four digits is found.
constexpr double kValueShare = 1e-4;
constexpr double kDirectionSine = 1.8e-4;  // 0.01 degrees

constexpr double kDegrees = 180.0 / std::numbers::pi;

std::string numberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string directionText(const OdGeVector3d& v) {
  return numberText(v.x) + "," + numberText(v.y) + "," + numberText(v.z);
}

Verdict inRange(const char* what, double value, const SelectorRange& range, double tolerance) {
  const double below = range.low - value;
  const double above = value - range.high;
  const double low = range.withLow ? below - tolerance : below + tolerance;
  const double high = range.withHigh ? above - tolerance : above + tolerance;
  const double beyond = std::max(low, high);
  if (beyond <= 0.0) return {};
  const double scale = std::max(std::abs(value), 1e-9);
  return {std::min(beyond / scale, 1.0) + 1e-12, std::string(what) + " " + numberText(value)};
}

// Judges.

template <SubentForm form>
Verdict isForm(SelectorContext&, const SubentFacts& facts, const SelectorNode&) {
  if (facts.form == form) return {};
  return {1.0, std::string("it is a ") + subentFormName(facts.form)};
}

template <double SubentFacts::*value, int factor = 1>
Verdict valueIn(SelectorContext&, const SubentFacts& facts, const SelectorNode& node) {
  const double its = factor * facts.*value;
  if (its == 0.0) return {1.0, std::string("it has no ") + node.word->word};
  return inRange(node.word->word, its, node.range, kValueShare * std::abs(its));
}

Verdict coneAngleIn(SelectorContext&, const SubentFacts& facts, const SelectorNode& node) {
  if (facts.form != SubentForm::kCone) return {1.0, "it is no cone"};
  const double angle = 2.0 * facts.halfAngle * kDegrees;
  return inRange("angle", angle, node.range, kValueShare * angle);
}

/// Along an axis of the coordinates the whole subentity lies within the range.
template <unsigned axis>
Verdict placeIn(SelectorContext& context, const SubentFacts& facts, const SelectorNode& node) {
  const double tolerance = kValueShare * context.facts.diagonal();
  const double low = facts.box.minPoint()[axis];
  const double high = facts.box.maxPoint()[axis];
  Verdict verdict = inRange(node.word->word, low, node.range, tolerance);
  if (verdict.holds()) verdict = inRange(node.word->word, high, node.range, tolerance);
  if (!verdict.holds() && high - low > tolerance) {
    verdict.found =
        std::string(node.word->word) + " " + numberText(low) + " to " + numberText(high);
  }
  return verdict;
}

/// `isSigned`: the opposite direction is another one.
Verdict alongDirection(const SubentFacts& facts, const SelectorNode& node, bool isSigned) {
  if (!facts.hasDirection()) return {1.0, std::string("it has no ") + node.word->word};
  const double sine = facts.direction.crossProduct(node.direction).length();
  const bool isOpposite = isSigned && facts.direction.dotProduct(node.direction) < 0.0;
  if (sine <= kDirectionSine && !isOpposite) return {};
  const double angle = isOpposite ? std::numbers::pi - std::asin(std::min(sine, 1.0))
                                  : std::asin(std::min(sine, 1.0));
  return {angle / std::numbers::pi,
          std::string(node.word->word) + " " + directionText(facts.direction)};
}

Verdict normalAlong(SelectorContext&, const SubentFacts& facts, const SelectorNode& node) {
  if (facts.form != SubentForm::kPlane) {
    return {1.0, std::string("it is a ") + subentFormName(facts.form)};
  }
  return alongDirection(facts, node, /*isSigned=*/true);
}

Verdict axisAlong(SelectorContext&, const SubentFacts& facts, const SelectorNode& node) {
  if (facts.form == SubentForm::kPlane || facts.form == SubentForm::kLine) {
    return {1.0, "it has no axis"};
  }
  return alongDirection(facts, node, /*isSigned=*/false);
}

Verdict lineAlong(SelectorContext&, const SubentFacts& facts, const SelectorNode& node) {
  if (facts.form != SubentForm::kLine) {
    return {1.0, std::string("it is a ") + subentFormName(facts.form)};
  }
  return alongDirection(facts, node, /*isSigned=*/false);
}

template <bool wanted>
Verdict looksInward(SelectorContext&, const SubentFacts& facts, const SelectorNode&) {
  if (!facts.hasDirection() && facts.form != SubentForm::kSphere) return {1.0, "it has no inside"};
  if (facts.form == SubentForm::kPlane) return {1.0, "it is a plane"};
  if (facts.inward == wanted) return {};
  return {1.0, facts.inward ? "it is a wall around its axis" : "it is an outer wall"};
}

template <EdgeTurn turn>
Verdict turns(SelectorContext& context, const SubentFacts& facts, const SelectorNode&) {
  const EdgeTurn its = context.facts.turnOf(facts.subent.index);
  if (its == turn) return {};
  return {1.0, its == EdgeTurn::kNone ? "it lies on one face"
                                      : std::string("it is ") + edgeTurnName(its)};
}

Verdict isClosed(SelectorContext&, const SubentFacts& facts, const SelectorNode&) {
  return facts.closed ? Verdict{} : Verdict{1.0, "it has two ends"};
}

Verdict liesAt(SelectorContext& context, const SubentFacts& facts, const SelectorNode& node) {
  const double distance = context.facts.body().distanceTo(facts.subent, node.point);
  if (distance <= kValueShare * context.facts.diagonal()) return {};
  return {distance / (distance + context.facts.diagonal()),
          "it is " + numberText(distance) + " away"};
}

bool isAmong(const std::vector<OdModelerSubent>& subents, OdModelerSubent wanted) {
  return std::ranges::find(subents, wanted) != subents.end();
}

/// What has the name, and what bounds or joins it: edges of a face, faces of an edge.
Verdict belongsTo(SelectorContext& context, const SubentFacts& facts, const SelectorNode& node) {
  for (const OdModelerSubent named : context.lookup(node.name)) {
    if (named == facts.subent) return {};
    const std::vector<OdModelerSubent> parts = named.type < facts.subent.type
                                                   ? context.facts.boundsOf(named)
                                                   : context.facts.neighboursOf(named);
    if (named.type != facts.subent.type && isAmong(parts, facts.subent)) return {};
    if (named.type != Type::kFace || facts.subent.type != Type::kVertex) continue;
    for (const OdModelerSubent edge : parts) {
      if (isAmong(context.facts.boundsOf(edge), facts.subent)) return {};
    }
  }
  return {1.0, "it is not of " + node.name};
}

/// Meets what has the name at an edge (faces) or vertex (edges), and is not that itself.
Verdict liesBeside(SelectorContext& context, const SubentFacts& facts, const SelectorNode& node) {
  const std::vector<OdModelerSubent> named = context.lookup(node.name);
  if (!isAmong(named, facts.subent)) {
    for (const OdModelerSubent one : named) {
      if (one.type == Type::kFace && isAmong(context.facts.neighboursOf(one), facts.subent))
        return {};
      if (one.type != Type::kEdge) continue;
      for (const OdModelerSubent end : context.facts.boundsOf(one)) {
        if (isAmong(context.facts.neighboursOf(end), facts.subent)) return {};
      }
    }
  }
  return {1.0, "it is not beside " + node.name};
}

// Rankings.

template <unsigned axis, int sign>
double furthest(SelectorContext&, const SubentFacts& facts, const SelectorNode&) {
  return -sign * 0.5 * (facts.box.minPoint()[axis] + facts.box.maxPoint()[axis]);
}

template <int sign>
double bySize(SelectorContext&, const SubentFacts& facts, const SelectorNode&) {
  return -sign * facts.size;
}

double nearPoint(SelectorContext& context, const SubentFacts& facts, const SelectorNode& node) {
  return context.facts.body().distanceTo(facts.subent, node.point);
}

constexpr SelectorWord kWords[] = {
    {"plane", "f", Argument::kNone, isForm<SubentForm::kPlane>, nullptr},
    {"cylinder", "f", Argument::kNone, isForm<SubentForm::kCylinder>, nullptr},
    {"cone", "f", Argument::kNone, isForm<SubentForm::kCone>, nullptr},
    {"sphere", "f", Argument::kNone, isForm<SubentForm::kSphere>, nullptr},
    {"torus", "f", Argument::kNone, isForm<SubentForm::kTorus>, nullptr},
    {"line", "e", Argument::kNone, isForm<SubentForm::kLine>, nullptr},
    {"circle", "e", Argument::kNone, isForm<SubentForm::kCircle>, nullptr},
    {"ellipse", "e", Argument::kNone, isForm<SubentForm::kEllipse>, nullptr},
    {"freeform", "fe", Argument::kNone, isForm<SubentForm::kFreeform>, nullptr},
    {"normal", "f", Argument::kDirection, normalAlong, nullptr},
    {"axis", "fe", Argument::kDirection, axisAlong, nullptr},
    {"direction", "e", Argument::kDirection, lineAlong, nullptr},
    {"radius", "fe", Argument::kRange, valueIn<&SubentFacts::radius>, nullptr},
    {"diameter", "fe", Argument::kRange, valueIn<&SubentFacts::radius, 2>, nullptr},
    {"angle", "f", Argument::kRange, coneAngleIn, nullptr},
    {"area", "f", Argument::kRange, valueIn<&SubentFacts::size>, nullptr},
    {"length", "e", Argument::kRange, valueIn<&SubentFacts::size>, nullptr},
    {"inward", "f", Argument::kNone, looksInward<true>, nullptr},
    {"outward", "f", Argument::kNone, looksInward<false>, nullptr},
    {"convex", "e", Argument::kNone, turns<EdgeTurn::kConvex>, nullptr},
    {"concave", "e", Argument::kNone, turns<EdgeTurn::kConcave>, nullptr},
    {"smooth", "e", Argument::kNone, turns<EdgeTurn::kSmooth>, nullptr},
    {"closed", "e", Argument::kNone, isClosed, nullptr},
    {"x", "fev", Argument::kRange, placeIn<0>, nullptr},
    {"y", "fev", Argument::kRange, placeIn<1>, nullptr},
    {"z", "fev", Argument::kRange, placeIn<2>, nullptr},
    {"at", "fev", Argument::kPoint, liesAt, nullptr},
    {"of", "fev", Argument::kName, belongsTo, nullptr},
    {"beside", "fe", Argument::kName, liesBeside, nullptr},
    {"near", "fev", Argument::kPoint, nullptr, nearPoint},
    {"highest", "fev", Argument::kNone, nullptr, furthest<2, 1>},
    {"lowest", "fev", Argument::kNone, nullptr, furthest<2, -1>},
    {"rightmost", "fev", Argument::kNone, nullptr, furthest<0, 1>},
    {"leftmost", "fev", Argument::kNone, nullptr, furthest<0, -1>},
    {"rearmost", "fev", Argument::kNone, nullptr, furthest<1, 1>},
    {"foremost", "fev", Argument::kNone, nullptr, furthest<1, -1>},
    {"largest", "f", Argument::kNone, nullptr, bySize<1>},
    {"smallest", "f", Argument::kNone, nullptr, bySize<-1>},
    {"longest", "e", Argument::kNone, nullptr, bySize<1>},
    {"shortest", "e", Argument::kNone, nullptr, bySize<-1>},
};

}  // namespace

char selectorLetter(Type type) {
  return type == Type::kFace ? 'f' : type == Type::kEdge ? 'e' : 'v';
}

const SelectorWord* findSelectorWord(std::string_view word) {
  const auto* row =
      std::ranges::find_if(kWords, [word](const SelectorWord& w) { return w.word == word; });
  return row == std::end(kWords) ? nullptr : row;
}

std::string selectorWordsOf(Type type) {
  std::string words;
  for (const SelectorWord& row : kWords) {
    if (std::string_view(row.types).find(selectorLetter(type)) == std::string_view::npos) continue;
    words += (words.empty() ? "" : ", ") + std::string(row.word);
  }
  return words;
}

}  // namespace vdm_host
