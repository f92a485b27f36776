// Plays scripts of edits on a model and compares it with the truth after each.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/modeler/body.h"
#include "tests/reliability/model_edit.h"

/// How references came out, over any number of scripts.
struct ReferenceTally {
  std::uint64_t right = 0;
  std::uint64_t missed = 0;  ///< lead nowhere although one subentity is the one that is meant
};

/// The bodies on which scripts are played: a plate, and a part that came through a STEP file.
struct ModelParts {
  OdModelerBodyPtr plate;
  OdModelerBodyPtr imported;
};

/// Plays a script on a new drawing; the modules are loaded and a modeller is installed. The laws:
///
///   1. an edit is one step of undo or changes nothing; one that fails changes no byte;
///   2. after each edit the audits find and change nothing;
///   3. no reference leads to anything but what is meant by it;
///   4. each solid is as if built at once: same volume, area and number of faces, sound;
///   5. undo and redo bring every state back to the byte, and so do saving and opening;
///   6. with all components erased the solids are as they would be without them.
///
/// Empty when all hold, otherwise the edits and what was found.
std::string playModelScript(const ModelParts& parts, const std::vector<ModelEdit>& script,
                            ReferenceTally& tally);

/// The same for the script of a seed; a failure tells the shortest script that was found to fail.
std::string checkModelScript(const ModelParts& parts, std::uint64_t seed, std::size_t edits,
                             ReferenceTally& tally);
