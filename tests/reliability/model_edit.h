// ModelEdit: one edit of a random script as plain numbers, so that a script can be made shorter.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum class ModelEditKind {
  kInsert,
  kMove,
  kRotate,
  kErase,
  kRemoveFeature,
  kSuppress,
  kUnsuppress,
  kMoveSolid,
  kRotateSolid,
  kDrill,
  kRefer,
  kRename,
  kForce,
  kUndo,
  kRedo,
  kCount,
};

/// Means something in every model: `which` and `place` are taken modulo what there is to choose
/// from.
struct ModelEdit {
  ModelEditKind kind = ModelEditKind::kInsert;
  std::uint64_t which = 0;
  std::uint64_t place = 0;
  /// Not 0: is first tried with this boolean of the modeller failing.
  int failingBoolean = 0;
};

/// The script of a seed.
std::vector<ModelEdit> makeModelScript(std::uint64_t seed, std::size_t edits);
std::string toText(const ModelEdit& edit);
