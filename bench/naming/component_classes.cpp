// Sequences of edits of parts with components, each class of them a row of the benchmark.
//
// Sizes and places are multiples of ten units where a class does not say otherwise, so that walls
// share planes, floors share depths and outlines touch as a rule. Names are given to everything
// that can be named as a whole, at the beginning and in between, also while openings have merged.
#include "bench/naming/component_classes.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numbers>
#include <span>
#include <stdexcept>

#include "bench/naming/component_play.h"

namespace naming_bench {
namespace {

constexpr double kGrid = 10.0;
constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr std::size_t kNames = 24;  // given at once

/// What became of the faces and of the edges of one sequence.
struct GameResult {
  CaseResult faces;
  CaseResult edges;
};

/// One sequence: its steps, and the verdicts after each of them.
class Game {
 public:
  Game(const PartPlan& plan, std::uint64_t seed, bool explains, std::size_t ours,
       GameResult& result)
      : random(seed), play(plan), m_explains(explains), m_ours(ours), m_result(result) {}

  Random random;
  ComponentPlay play;

  template <class Edit>
  void step(const char* what, const Edit& edit) {
    edit();
    m_steps += (m_steps.empty() ? "" : ", ") + std::string(what);
    judgeAll();
  }

  // Steps that most classes use.
  void name() {
    step("name", [this] { play.nameWholes(random, kNames); });
  }
  void shift(int opening, double dx, double dy) {
    step(text("move #%d by %g %g", opening, dx, dy).c_str(), [&] { play.move(opening, dx, dy); });
  }
  void suppress(int opening, bool suppressed) {
    step(text(suppressed ? "suppress #%d" : "unsuppress #%d", opening).c_str(),
         [&] { play.suppress(opening, suppressed); });
  }
  double upTo(int count, double unit = kGrid) {
    return unit * static_cast<double>(pick(random, static_cast<std::size_t>(count)));
  }

  template <class... Values>
  static std::string text(const char* format, Values... values) {
    std::array<char, 128> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, values...);
    return buffer.data();
  }

 private:
  void judgeAll() {
    const SourcedBody truth(play.plan(), play.body());
    for (const NamedReference& reference : play.references()) {
      const Truth expected = truth.truthOf(reference.birth);
      const bool isFace = reference.birth.type == OdModelerSubentType::kFace;
      CaseResult& result = isFace ? m_result.faces : m_result.edges;
      ++(expected.kind == TruthKind::kUndecided ? result.undecided : result.judged);
      if (expected.kind == TruthKind::kUndecided) continue;
      const Answer answer = play.answerOf(reference);
      const Verdict verdict = judge(expected, answer, /*namesAllParts=*/true);
      result.scores[m_ours].add(expected.kind, verdict);
      if (!m_explains || verdict == Verdict::kRight) continue;
      result.lines.push_back(m_steps + ": " + reference.text + " is " + namesOf(expected.subents) +
                             ", answer " + namesOf(answer.subents) + " (" + answer.note + ")");
    }
  }

  static std::string namesOf(const std::vector<OdModelerSubent>& subents) {
    std::string all;
    for (const OdModelerSubent s : subents) {
      all += text("%s%c_%u", all.empty() ? "" : " ", "0fev"[static_cast<std::size_t>(s.type)],
                  s.index);
    }
    return all.empty() ? "nothing" : all;
  }

  bool m_explains;
  std::size_t m_ours;
  GameResult& m_result;
  std::string m_steps;
};

OpeningPlan opening(OpeningKind kind, double length, double width, double depth, double x,
                    double y) {
  OpeningPlan plan;
  plan.kind = kind;
  plan.length = length;
  plan.width = width;
  plan.depth = depth;
  plan.x = x;
  plan.y = y;
  return plan;
}

PartPlan plate(const std::vector<OpeningPlan>& openings, double riserX = 0.0) {
  PartPlan plan;
  plan.riserX = riserX;
  plan.riserHeight = riserX > 0.0 ? kGrid : 0.0;
  plan.openings = openings;
  return plan;
}

// Openings 0 and 1 meet and part again, either of them moving; names come in between.
void meetAndPart(Game& game, double across) {
  game.name();
  for (int round = 0; round < 3; ++round) {
    const int one = static_cast<int>(pick(game.random, 2));
    const double toward = one == 0 ? 1.0 : -1.0;
    const double near = toward * (kGrid + game.upTo(5));
    game.shift(one, near, across);
    if (pick(game.random, 2) == 0) game.name();
    game.shift(static_cast<int>(pick(game.random, 2)), toward * game.upTo(4), 0.0);
    const int other = pick(game.random, 2) == 0 ? one : 1 - one;
    const OpeningPlan& moved = game.play.plan().at(other);
    game.shift(other, (other == 0 ? 30.0 : 90.0) - moved.x, 40.0 - moved.y);
    const int rest = 1 - other;
    const OpeningPlan& stayed = game.play.plan().at(rest);
    game.shift(rest, (rest == 0 ? 30.0 : 90.0) - stayed.x, 40.0 - stayed.y);
  }
}

// ---- The classes

PartPlan sharedWallPart(Random& random) {
  const double width = 20.0;
  const double depth = 5.0 + 5.0 * static_cast<double>(pick(random, 2));
  return plate({opening(OpeningKind::kPocket, 40.0, width, depth, 30.0, 40.0),
                opening(OpeningKind::kSlot, 40.0, width, 15.0 - depth, 90.0, 40.0)});
}
PartPlan sharedFloorPart(Random& random) {
  const double depth = 5.0 + 5.0 * static_cast<double>(pick(random, 2));
  return plate({opening(OpeningKind::kPocket, 40.0, 30.0, depth, 30.0, 40.0),
                opening(OpeningKind::kSlot, 40.0, 10.0, depth, 90.0, 40.0)});
}
PartPlan equalSlotsPart(Random& random) {
  const double width = kGrid * static_cast<double>(1 + pick(random, 2));
  return plate({opening(OpeningKind::kSlot, 50.0, width, 10.0, 30.0, 40.0),
                opening(OpeningKind::kSlot, 50.0, width, 10.0, 90.0, 40.0)});
}
PartPlan bossesPart(Random& random) {
  const double height = 5.0 + 5.0 * static_cast<double>(pick(random, 2));
  return plate({opening(OpeningKind::kBoss, 40.0, 20.0, height, 30.0, 40.0),
                opening(OpeningKind::kBoss, 40.0, 30.0, height, 90.0, 40.0)});
}
void inOneRow(Game& game) { meetAndPart(game, 0.0); }
void besideEachOther(Game& game) {
  meetAndPart(game, kGrid * (static_cast<double>(pick(game.random, 3)) - 1.0));
}

PartPlan riserPart(Random& random) {
  const double depth = 5.0 + 5.0 * static_cast<double>(pick(random, 2));
  return plate({opening(OpeningKind::kPocket, 20.0, 30.0, depth, 30.0, 40.0),
                opening(OpeningKind::kPocket, 20.0, 20.0, 10.0, 30.0, 15.0)},
               80.0);
}
// Pockets with a wall in the plane of the riser's, at its foot, and away again.
void atTheFoot(Game& game) {
  game.name();
  for (int round = 0; round < 3; ++round) {
    const int one = static_cast<int>(pick(game.random, 2));
    game.shift(one, 40.0, 0.0);
    if (pick(game.random, 2) == 0) game.name();
    game.shift(1 - one, 40.0, kGrid * (static_cast<double>(pick(game.random, 3)) - 1.0));
    game.shift(one, -40.0, 0.0);
    game.shift(1 - one, 30.0 - game.play.plan().at(1 - one).x, 0.0);
  }
}

PartPlan turnedSlotPart(Random& random) {
  std::vector<OpeningPlan> all = {opening(OpeningKind::kSlot, 60.0, 10.0, 5.0, 60.0, 40.0),
                                  opening(OpeningKind::kPocket, 30.0, 30.0, 10.0, 20.0, 60.0)};
  all.front().angle = kQuarter * static_cast<double>(1 + pick(random, 5)) / 3.0;
  return plate(all);
}
// A pocket takes one end of a turned slot, then the other one, while the slot turns.
void turnedEnds(Game& game) {
  game.name();
  for (int round = 0; round < 4; ++round) {
    const OpeningPlan slot = game.play.plan().at(0);
    const OpeningPlan pocket = game.play.plan().at(1);
    const double side = pick(game.random, 2) == 0 ? 25.0 : -25.0;
    game.shift(1, slot.x + side * std::cos(slot.angle) - pocket.x,
               slot.y + side * std::sin(slot.angle) - pocket.y);
    game.step("turn #0", [&] { game.play.turn(0, kQuarter * (1.0 + game.upTo(3, 1.0))); });
    if (pick(game.random, 2) == 0) {
      game.suppress(1, true);
      game.suppress(1, false);
    }
  }
  game.shift(1, 20.0 - game.play.plan().at(1).x, 60.0 - game.play.plan().at(1).y);
}

PartPlan holesPart(Random& random) {
  const double depth = pick(random, 2) == 0 ? 0.0 : 10.0;
  return plate({opening(OpeningKind::kHole, 20.0, 0.0, depth, 30.0, 40.0),
                opening(OpeningKind::kHole, 20.0, 0.0, depth, 60.0, 40.0),
                opening(OpeningKind::kHole, 20.0, 0.0, depth, 90.0, 40.0)});
}
void passingHoles(Game& game) {
  game.name();
  for (int round = 0; round < 6; ++round) {
    const int one = static_cast<int>(pick(game.random, 3));
    const OpeningPlan& hole = game.play.plan().at(one);
    game.shift(one, 30.0 + game.upTo(7) - hole.x, 40.0 + game.upTo(2) - hole.y);
  }
  for (int one = 0; one < 3; ++one) {
    const OpeningPlan& hole = game.play.plan().at(one);
    game.shift(one, 30.0 * (one + 1) - hole.x, 40.0 - hole.y);
  }
}

PartPlan closedFloorPart(Random& random) {
  const double depth = 5.0 + 5.0 * static_cast<double>(pick(random, 2));
  return plate({opening(OpeningKind::kPocket, 40.0, 20.0, depth, 30.0, 40.0),
                opening(OpeningKind::kSlot, 40.0, 20.0, depth, 90.0, 40.0)});
}
// An opening is closed, another one of its depth comes to its place, and it opens again.
void closedFloor(Game& game) {
  game.name();
  for (int round = 0; round < 3; ++round) {
    const int one = static_cast<int>(pick(game.random, 2));
    const int other = 1 - one;
    const double away = game.play.plan().at(one).x - game.play.plan().at(other).x;
    game.suppress(one, true);
    game.shift(other, away + game.upTo(3) - kGrid, 0.0);
    if (pick(game.random, 2) == 0) game.suppress(one, false);
    game.shift(other, (other == 0 ? 30.0 : 90.0) - game.play.plan().at(other).x, 0.0);
    if (game.play.plan().at(one).suppressed) game.suppress(one, false);
  }
}

// ---- Random sequences

/// Components of all kinds come, move, turn, change their sizes, and go.
class RandomEdits {
 public:
  RandomEdits(Game& game, bool isOnGrid) : m_game(game), m_isOnGrid(isOnGrid) {}

  void run(bool withRoundabout) {
    for (int i = 0; i < 3; ++i) insert();
    m_game.name();
    for (int i = 0; i < 14; ++i) {
      if (withRoundabout && pick(m_game.random, 2) == 0) {
        goRoundabout();
      } else {
        edit();
      }
    }
  }

 private:
  double place(double low, double high) {
    if (!m_isOnGrid) return between(m_game.random, low, high);
    return low + m_game.upTo(static_cast<int>((high - low) / kGrid) + 1);
  }
  double size(int most) {
    if (!m_isOnGrid) return between(m_game.random, 8.0, kGrid * most);
    return kGrid * static_cast<double>(1 + pick(m_game.random, static_cast<std::size_t>(most)));
  }

  OpeningPlan draw() {
    constexpr std::array kKinds = {OpeningKind::kPocket, OpeningKind::kSlot, OpeningKind::kHole,
                                   OpeningKind::kBoss};
    OpeningPlan plan;
    plan.kind = kKinds[pick(m_game.random, kKinds.size())];
    resize(plan);
    plan.x = place(20.0, 100.0);
    plan.y = place(20.0, 60.0);
    if (plan.kind == OpeningKind::kSlot && pick(m_game.random, 2) == 0) plan.angle = kQuarter;
    return plan;
  }

  void resize(OpeningPlan& plan) {
    plan.width = size(2);
    plan.length = plan.kind == OpeningKind::kSlot ? plan.width + size(3) : size(3);
    plan.depth = m_isOnGrid ? 5.0 * static_cast<double>(1 + pick(m_game.random, 2))
                            : between(m_game.random, 4.0, 12.0);
    if (plan.isRound() && pick(m_game.random, 2) == 0) plan.depth = 0.0;
  }

  int any() {
    const auto& all = m_game.play.plan().openings;
    return all[pick(m_game.random, all.size())].number;
  }

  void insert() {
    m_game.step("insert", [this] { m_game.play.insert(draw()); });
  }

  void edit() {
    const std::size_t count = m_game.play.plan().openings.size();
    const std::size_t choice = count == 0 ? 0 : pick(m_game.random, 10);
    if (choice < 2) {
      if (count < 6) insert();
      m_game.name();
      return;
    }
    const int one = any();
    OpeningPlan plan = m_game.play.plan().at(one);
    if (choice < 6) {
      m_game.shift(one, place(20.0, 100.0) - plan.x, place(20.0, 60.0) - plan.y);
    } else if (choice == 6 && !plan.isRound()) {
      m_game.step("turn", [&] { m_game.play.turn(one, kQuarter); });
    } else if (choice == 7) {
      resize(plan);
      m_game.step(Game::text("resize #%d", one).c_str(),
                  [&] { m_game.play.resize(one, plan.length, plan.width, plan.depth); });
    } else if (choice == 8) {
      m_game.suppress(one, !plan.suppressed);
    } else if (choice == 9 && count > 2) {
      m_game.step(Game::text("remove #%d", one).c_str(), [&] { m_game.play.remove(one); });
    }
  }

  void goRoundabout() {
    switch (pick(m_game.random, 5)) {
      case 0:
        m_game.step("save", [this] { m_game.play.saveAndOpen(); });
        break;
      case 1:
        m_game.step("clone", [this] { m_game.play.clone(); });
        break;
      case 2:
        m_game.step("undo", [this] { m_game.play.undo(); });
        m_game.step("redo", [this] { m_game.play.redo(); });
        break;
      default:
        edit();
        m_game.step("undo", [this] { m_game.play.undo(); });
    }
  }

  Game& m_game;
  bool m_isOnGrid;
};

PartPlan plainPart(Random&) { return plate({}); }
PartPlan someRiserPart(Random& random) {
  return plate({},
               pick(random, 2) == 0 ? 0.0 : 60.0 + kGrid * static_cast<double>(pick(random, 3)));
}
void onGrid(Game& game) { RandomEdits(game, true).run(false); }
void offGrid(Game& game) { RandomEdits(game, false).run(false); }
void roundabout(Game& game) { RandomEdits(game, true).run(true); }

struct ComponentClass {
  const char* name;
  PartPlan (*start)(Random& random);
  void (*run)(Game& game);
};

constexpr std::array kClasses = {
    ComponentClass{"walls in one plane", sharedWallPart, inOneRow},
    ComponentClass{"floors in one plane", sharedFloorPart, besideEachOther},
    ComponentClass{"equal slots meet", equalSlotsPart, besideEachOther},
    ComponentClass{"tops in one plane", bossesPart, besideEachOther},
    ComponentClass{"at a riser's foot", riserPart, atTheFoot},
    ComponentClass{"ends of a turned slot", turnedSlotPart, turnedEnds},
    ComponentClass{"holes pass each other", holesPart, passingHoles},
    ComponentClass{"floor of a closed one", closedFloorPart, closedFloor},
    ComponentClass{"random on a grid", someRiserPart, onGrid},
    ComponentClass{"random off a grid", plainPart, offGrid},
    ComponentClass{"random and round about", someRiserPart, roundabout},
};

CaseResult startCase(const char* family, const char* edit, std::uint64_t seed,
                     std::size_t methods) {
  CaseResult one;
  one.family = family;
  one.model = family;
  one.edit = edit;
  one.seed = seed;
  one.hasHistory = true;
  one.scores.resize(methods);
  return one;
}

}  // namespace

void playComponents(const RunOptions& options, std::size_t methods, std::size_t ours,
                    RunResult& result, const std::function<void(const CaseResult&)>& done) {
  if (!options.onlyFamily.empty() && options.onlyFamily != "components") return;
  for (std::size_t number = 0; number < kClasses.size(); ++number) {
    const ComponentClass& row = kClasses[number];
    if (!options.onlyEdit.empty() && options.onlyEdit != row.name) continue;
    for (std::size_t i = 0; i < options.sequences; ++i) {
      const std::uint64_t seed = (options.seed * 7919 + number) * 100003 + i;
      GameResult both{startCase("faces at components", row.name, seed, methods),
                      startCase("edges at components", row.name, seed, methods)};
      Random random(seed);
      try {
        Game game(row.start(random), seed, options.explain, ours, both);
        row.run(game);
      } catch (const std::runtime_error& refusal) {
        ++result.refused;
        if (options.explain) {
          std::fprintf(stderr, "%s, seed %llu: %s\n", row.name,
                       static_cast<unsigned long long>(seed), refusal.what());
        }
      }
      for (const CaseResult* one : {&both.faces, &both.edges}) {
        result.cases.push_back(*one);
        if (done) done(*one);
      }
    }
  }
}

}  // namespace naming_bench
