// Random expressions against an evaluator of the test's own, which works on the tree that the test
// built and shares no code with the compiler: dimension, value, and whether there is one.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iterator>
#include <memory>
#include <random>
#include <vector>

#include "platform/expressions/compile.h"
#include "tests/support/test_seed.h"

namespace {

using OdExpression::Binding;
using OdExpression::Diagnostic;
using OdExpression::Dimension;
using OdExpression::Program;

enum class Kind { kPlain, kRatio, kAngle, kQuantity };

/// The model's dimension: powers of length and mass.
struct Measure {
  Kind kind = Kind::kPlain;
  double length = 0, mass = 0;
  bool operator==(const Measure&) const = default;
};

using Typed = std::optional<Measure>;
using Valued = std::optional<double>;

constexpr Measure kPlain{}, kRatio{Kind::kRatio}, kAngle{Kind::kAngle};

bool isNumber(const Measure& m) { return m.kind == Kind::kPlain || m.kind == Kind::kRatio; }

Typed quantity(double length, double mass) {
  for (const double power : {length, mass}) {
    if (std::abs(power) > 10 || std::abs(power * 12 - std::round(power * 12)) > 1e-6) return {};
  }
  if (length == 0 && mass == 0) return kRatio;
  return Measure{Kind::kQuantity, length, mass};
}

struct Node;
using Tree = std::unique_ptr<Node>;

/// One operation: how it is written, what it measures and what it gives.
struct Operation {
  const char* before;
  const char* between;
  const char* after;
  int precedence;   ///< of its result as an operand; 9 needs no parentheses
  int left, right;  ///< least precedence of the operands
  Typed (*measure)(const Measure& a, const Measure& b);
  double (*value)(double a, double b);
};

Typed same(const Measure& a, const Measure& b) {
  if (a == b || b == kPlain) return a;
  return a == kPlain ? Typed(b) : Typed();
}
Typed truth(const Measure& a, const Measure& b) { return same(a, b) ? Typed(kRatio) : Typed(); }
Typed logical(const Measure& a, const Measure& b) {
  return isNumber(a) && isNumber(b) ? Typed(kRatio) : Typed();
}
Typed times(const Measure& a, const Measure& b) {
  if (a.kind == Kind::kQuantity || b.kind == Kind::kQuantity) {
    return quantity(a.length + b.length, a.mass + b.mass);
  }
  if (a == kAngle || b == kAngle) return a == b ? kRatio : kAngle;
  return a == kPlain || b == kPlain ? kPlain : kRatio;
}
Typed over(const Measure& a, const Measure& b) {
  if (a.kind == Kind::kQuantity || b.kind == Kind::kQuantity) {
    return quantity(a.length - b.length, a.mass - b.mass);
  }
  if (b == kAngle) return kRatio;
  return a == kAngle ? kAngle : (a == kPlain || b == kPlain ? kPlain : kRatio);
}
Typed root(const Measure& a, const Measure&) {
  if (isNumber(a)) return a;
  return a == kAngle ? Typed(kRatio) : quantity(a.length / 2, a.mass / 2);
}
Typed square(const Measure& a, const Measure&) {
  if (isNumber(a)) return a;
  return a == kAngle ? Typed(kRatio) : quantity(a.length * 2, a.mass * 2);
}
Typed ofAngle(const Measure& a, const Measure&) {
  return isNumber(a) || a == kAngle ? Typed(kRatio) : Typed();
}
Typed ofNumber(const Measure& a, const Measure&) { return isNumber(a) ? Typed(kRatio) : Typed(); }
Typed first(const Measure& a, const Measure&) { return a; }

/// Set when the rounding of the operands decides the result; such a round proves nothing.
bool isUnclear = false;

bool isNear(double a, double b) {
  const double difference = std::abs(a - b) / std::max(std::abs(a), std::abs(b));
  isUnclear |= difference > 1e-13 && difference < 1e-10;
  return a == b || difference <= 1e-11;
}

double modulo(double a, double b) {
  const double quotient = a / b;
  isUnclear |= std::abs(quotient) > 1e4 || std::abs(quotient) < 1e-8;
  const double whole = std::round(quotient);
  const bool isWhole = std::abs(quotient - whole) <= 1e-11 * std::abs(quotient);
  return isWhole ? 0 : a - b * std::floor(quotient);
}

double sineOf(double a, double) {
  isUnclear |= std::abs(a) > 1e5;
  return std::sin(a);
}

constexpr Operation kOperations[] = {
    {"", "+", "", 4, 4, 5, same, [](double a, double b) { return a + b; }},
    {"", "-", "", 4, 4, 5, same, [](double a, double b) { return a - b; }},
    {"", "*", "", 5, 5, 6, times, [](double a, double b) { return a * b; }},
    {"", " / ", "", 5, 5, 6, over, [](double a, double b) { return b == 0 ? NAN : a / b; }},
    {"", " % ", "", 5, 5, 6, same, modulo},
    {"", " < ", "", 3, 4, 4, truth,
     [](double a, double b) { return double(a < b && !isNear(a, b)); }},
    {"", ">=", "", 3, 4, 4, truth,
     [](double a, double b) { return double(a > b || isNear(a, b)); }},
    {"", "==", "", 3, 4, 4, truth, [](double a, double b) { return double(isNear(a, b)); }},
    {"max(", ",", ")", 9, 0, 0, same, [](double a, double b) { return a > b ? a : b; }},
    {"hypot(", " , ", ")", 9, 0, 0, same, [](double a, double b) { return std::hypot(a, b); }},
    {"-", "", "", 6, 6, -1, first, [](double a, double) { return -a; }},
    {"", "^2", "", 7, 9, -1, square, [](double a, double) { return a * a; }},
    {"sqrt(", "", ")", 9, 0, -1, root, [](double a, double) { return std::sqrt(a); }},
    {"sin(", "", ")", 9, 0, -1, ofAngle, sineOf},
    {"exp(", "", ")", 9, 0, -1, ofNumber, [](double a, double) { return std::exp(a); }},
    {"abs(", "", ")", 9, 0, -1, first, [](double a, double) { return std::abs(a); }},
};

struct Leaf {
  const char* text;
  Measure measure;
  double value;
  int slot = -1;
};

constexpr Measure kLength{Kind::kQuantity, 1, 0}, kArea{Kind::kQuantity, 2, 0},
    kMass{Kind::kQuantity, 0, 1};
constexpr Leaf kLeaves[] = {
    {"width", kLength, 12.5, 0},
    {"a", kPlain, 3, 1},
    {"b", kPlain, -0.75, 2},
    {"zero", kRatio, 0, 3},
    {"weight", kMass, 2.25, 4},
    {"tilt", kAngle, .4, 5},
    {"face", kArea, 81, 6},
    {"2", kPlain, 2},
    {"0.5", kPlain, .5},
    {"1e200", kPlain, 1e200},
    {"0", kPlain, 0},
    {"7 mm", kLength, 7},
    {"2 cm", kLength, 20},
    {"1/4 in", kLength, 6.35},
    {"1 ft 2 in", kLength, 355.6},
    {"3 cm^2", kArea, 300},
    {"500 g", kMass, .5},
    {"180 deg", kAngle, 3.14159265358979323846},
    {"true", kRatio, 1},
};

enum class Shape { kLeaf, kOperation, kAnd, kOr, kNot, kIf, kChoice };

struct Node {
  Shape shape = Shape::kLeaf;
  const Leaf* leaf = nullptr;
  const Operation* operation = nullptr;
  std::vector<Tree> parts;
};

class Scope : public OdExpression::NameScope {
 public:
  std::optional<Binding> find(const OdString& name) override {
    for (const Leaf& leaf : kLeaves) {
      if (leaf.slot < 0 || !name.iEquals(leaf.text)) continue;
      return Binding{static_cast<OdUInt32>(leaf.slot), dimensionOf(leaf.measure)};
    }
    return std::nullopt;
  }
  static Dimension dimensionOf(const Measure& m) {
    if (m.kind != Kind::kQuantity) {
      return m == kPlain   ? Dimension::plain()
             : m == kRatio ? Dimension::ratio()
                           : Dimension::angle();
    }
    return *Dimension::length().raised(m.length)->times(
        *Dimension::base(Dimension::kMass).raised(m.mass));
  }
};

class Model {
 public:
  explicit Model(unsigned seed) : m_random(seed) {}

  Tree grow(int depth) {
    auto node = std::make_unique<Node>();
    const int choice = pick(depth <= 0 ? 1 : 14);
    int parts = 0;
    if (choice == 0) {
      node->leaf = &kLeaves[pick(std::size(kLeaves))];
    } else if (choice < 11) {
      node->shape = Shape::kOperation;
      node->operation = &kOperations[pick(std::size(kOperations))];
      parts = node->operation->right < 0 ? 1 : 2;
    } else {
      constexpr Shape kShapes[] = {Shape::kAnd, Shape::kOr, Shape::kNot, Shape::kIf,
                                   Shape::kChoice};
      node->shape = kShapes[pick(std::size(kShapes))];
      parts = node->shape == Shape::kNot                                   ? 1
              : node->shape == Shape::kIf || node->shape == Shape::kChoice ? 3
                                                                           : 2;
    }
    for (int i = 0; i < parts; ++i) node->parts.push_back(grow(depth - 1));
    return node;
  }

  /// Trees that fit are rare, so an unfit part is mostly grown again.
  Tree growFit(int depth) {
    Tree tree = grow(0);
    for (int i = 0; i < 40; ++i) {
      Tree larger = grow(0);
      larger->leaf = nullptr;
      *larger = std::move(*grow(1));
      for (Tree& part : larger->parts) {
        if (depth > 0) part = growFit(depth - 1);
      }
      if (measureOf(*larger) || pick(60) == 0) return larger;
    }
    return tree;
  }

  static Typed measureOf(const Node& node) {
    if (node.shape == Shape::kLeaf) return node.leaf->measure;
    std::array<Measure, 3> parts;
    for (std::size_t i = 0; i < node.parts.size(); ++i) {
      const Typed part = measureOf(*node.parts[i]);
      if (!part) return {};
      parts[i] = *part;
    }
    switch (node.shape) {
      case Shape::kOperation:
        return node.operation->measure(parts[0], parts[1]);
      case Shape::kIf:
      case Shape::kChoice:
        return isNumber(parts[0]) ? same(parts[1], parts[2]) : Typed();
      default:
        return logical(parts[0], parts[1]);
    }
  }

  static Valued valueOf(const Node& node) {
    const auto part = [&node](int i) { return valueOf(*node.parts[static_cast<std::size_t>(i)]); };
    if (node.shape == Shape::kLeaf) return node.leaf->value;
    const Valued a = part(0);
    if (!a) return {};
    const bool holds = *a != 0;
    switch (node.shape) {
      case Shape::kIf:
      case Shape::kChoice:
        return part(holds ? 1 : 2);
      case Shape::kNot:
        return holds ? 0 : 1;
      case Shape::kAnd:
      case Shape::kOr: {
        if (holds == (node.shape == Shape::kOr)) return holds ? 1 : 0;
        const Valued b = part(1);
        return b ? Valued(*b != 0 ? 1 : 0) : Valued();
      }
      default:
        break;
    }
    Valued b = 0;
    if (node.parts.size() > 1) b = part(1);
    if (!b) return {};
    const double result = node.operation->value(*a, *b);
    return std::isfinite(result) ? Valued(result) : Valued();
  }

  /// With parentheses where the operand binds less than its place asks, and sometimes elsewhere.
  std::string textOf(const Node& node, int least) {
    int precedence = 9;
    const auto part = [&](int i, int p) {
      return textOf(*node.parts[static_cast<std::size_t>(i)], p);
    };
    std::string text;
    switch (node.shape) {
      case Shape::kLeaf:
        text = node.leaf->text;
        if (node.leaf->slot < 0 && std::string_view(node.leaf->text).find(' ') != std::string::npos)
          precedence = 8;
        break;
      case Shape::kOperation: {
        const Operation& op = *node.operation;
        precedence = op.precedence;
        text = op.before + part(0, op.left) + op.between;
        if (op.right >= 0) text += part(1, op.right);
        text += op.after;
        break;
      }
      case Shape::kAnd:
        precedence = 2;
        text = part(0, 2) + " and " + part(1, 3);
        break;
      case Shape::kOr:
        precedence = 1;
        text = part(0, 1) + " OR " + part(1, 2);
        break;
      case Shape::kNot:
        precedence = 3;
        text = "not " + part(0, 3);
        break;
      case Shape::kIf:
        text = "if(" + part(0, 0) + "," + part(1, 0) + ", " + part(2, 0) + ")";
        break;
      case Shape::kChoice:
        precedence = 0;
        text = part(0, 1) + " ? " + part(1, 0) + " : " + part(2, 0);
        break;
    }
    const bool needsParentheses = precedence < least || pick(8) == 0;
    return needsParentheses ? "( " + text + ")" : text;
  }

  int pick(std::size_t count) { return static_cast<int>(m_random() % count); }

 private:
  std::mt19937 m_random;
};

TEST(RandomExpression, AgreesWithTheModel) {
  const std::uint32_t seed = freshSeed();
  double slots[8] = {};
  for (const Leaf& leaf : kLeaves) {
    if (leaf.slot >= 0) slots[leaf.slot] = leaf.value;
  }
  std::array<int, 3> outcomes{};
  for (unsigned round = 0; round < 20000; ++round) {
    Model model(seed * 1000003U + round);
    const Tree tree = model.growFit(model.pick(4));
    const std::string text = model.textOf(*tree, 0);
    SCOPED_TRACE("seed " + std::to_string(seed) + ": " + text);
    isUnclear = false;
    const Typed measure = Model::measureOf(*tree);
    const Valued value = measure ? Model::valueOf(*tree) : Valued();
    if (isUnclear) continue;
    Scope scope;
    Program program;
    Diagnostic diagnostic;
    if (!compile(OdString(text), scope, {4, {}}, program, diagnostic)) {
      const bool isConstantFailure = diagnostic.kind == Diagnostic::Kind::kEvaluation;
      ASSERT_EQ(isConstantFailure, measure.has_value()) << diagnostic.text();
      ASSERT_FALSE(value) << diagnostic.text();
      ++outcomes[0];
      continue;
    }
    ASSERT_TRUE(measure);
    ASSERT_EQ(program.dimension().text(), Scope::dimensionOf(*measure).text());
    double result = NAN;
    ASSERT_EQ(program.evaluate(slots, result), value.has_value()) << program.explain(slots).text();
    ++outcomes[value ? 1 : 2];
    const double expected = value.value_or(result);
    if (value) {
      ASSERT_NEAR(result, expected, 1e-9 * std::abs(expected) + 1e-12);
    }
  }
  for (const int count : outcomes) EXPECT_GT(count, 200);
}

}  // namespace
