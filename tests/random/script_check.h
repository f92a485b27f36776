// Plays random edit scripts and compares the drawing with what is remembered of it.
#pragma once

#include <cstdint>
#include <string>

/// What one script does besides editing.
struct ScriptOptions {
  std::uint64_t seed = 0;
  int steps = 50;
  bool withFile =
      false;  ///< the drawing has a file: saves, reopens and page-outs between the steps
};

/// Plays the script and holds the drawing to these laws:
///   1. what an edit changes is taken back by one undo, and a change without an undo step is none;
///   2. undo, redo and going back to a mark give the remembered state to the byte, at every step of
///      the script and when all of it is taken back and brought again;
///   3. saving, dropping objects from memory and reopening change nothing;
///   4. an audit finds nothing; after reopening it finds references to what was erased at most, and
///      nothing once they are mended.
/// Returns the empty text, or what went wrong, with the step and the edits up to it.
std::string playScript(const ScriptOptions& options);

/// playScript(); on failure the text of the shortest beginning of the script that fails.
std::string checkScript(const ScriptOptions& options);
