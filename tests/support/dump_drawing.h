// The state of a drawing as text, for tests that compare drawings.
#pragma once

#include <string>

class OdDbDatabase;

enum class DumpScope {
  kNotErased,  ///< every object that is not erased itself, also below erased owners
  kInFile,     ///< without objects below erased owners and entries of erased objects: what is
               ///< the same after saving and opening
};

/// One line per drawing setting, then one per object in handle order: handle, class, owner and the
/// bytes of its record. Equal dumps are equal drawings. Loads every object.
std::string dumpDrawing(OdDbDatabase* database, DumpScope scope = DumpScope::kNotErased);

/// The first line in which two dumps differ, both forms of it; empty when they are equal.
std::string firstDifference(const std::string& expected, const std::string& actual);
