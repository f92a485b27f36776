// ModelEdit: one edit of a random script as plain numbers, so that a script can be made shorter.
#include "tests/reliability/model_edit.h"

#include <iterator>

#include "tests/random/random_source.h"

namespace {

struct KindRow {
  const char* name;
  std::size_t weight;  ///< of 100
};
constexpr KindRow kKinds[] = {
    {"insert", 22},        {"move", 20},    {"rotate", 6},     {"erase", 5},
    {"remove feature", 3}, {"suppress", 7}, {"unsuppress", 6}, {"move solid", 4},
    {"rotate solid", 3},   {"drill", 4},    {"refer", 9},      {"rename", 3},
    {"force", 2},          {"undo", 4},     {"redo", 2},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(ModelEditKind::kCount));

ModelEditKind drawKind(RandomSource& random) {
  std::size_t place = random.below(100);
  std::size_t kind = 0;
  while (place >= kKinds[kind].weight) place -= kKinds[kind++].weight;
  return static_cast<ModelEditKind>(kind);
}

}  // namespace

std::vector<ModelEdit> makeModelScript(std::uint64_t seed, std::size_t edits) {
  RandomSource random(seed);
  std::vector<ModelEdit> script(edits);
  for (std::size_t i = 0; i < edits; ++i) {
    // Something to work on first.
    script[i].kind = i < 4 ? ModelEditKind::kInsert : drawKind(random);
    script[i].which = random.next();
    script[i].place = random.next();
    if (random.chance(8)) script[i].failingBoolean = 1 + static_cast<int>(random.below(6));
  }
  return script;
}

std::string toText(const ModelEdit& edit) {
  std::string text = kKinds[static_cast<std::size_t>(edit.kind)].name;
  text += " {" + std::to_string(edit.which) + ", " + std::to_string(edit.place);
  if (edit.failingBoolean != 0) text += ", boolean " + std::to_string(edit.failingBoolean);
  return text + "}";
}
