// Where the faces of a body were born.
#pragma once

#include <compare>
#include <span>
#include <unordered_set>
#include <vector>

#include "platform/base/types.h"

namespace vdm_host {

/// One birth: a face of a feature's tool, or a face that the part itself got at some time.
struct FaceBirth {
  OdUInt32 maker = 0;  ///< of SolidBirths::makers, counted from 1; 0 is the part itself
  OdUInt32 key = 0;    ///< the face of the tool, or a number that the part gives once only

  friend auto operator<=>(const FaceBirth&, const FaceBirth&) = default;
};

/// Rising, each once. Several where faces have become one.
using BirthSet = std::vector<FaceBirth>;

[[nodiscard]] bool meet(std::span<const FaceBirth> a, std::span<const FaceBirth> b);
/// Adds births to a set.
void addBirths(BirthSet& set, std::span<const FaceBirth> births);

/// The births of all faces of one body, by number from 1, in one block of memory.
class FaceBirths {
 public:
  struct Entry {
    OdUInt32 face = 0;
    FaceBirth birth;
    friend auto operator<=>(const Entry&, const Entry&) = default;
  };

  FaceBirths() = default;
  /// In any order; entries of faces beyond the number are left out.
  FaceBirths(std::vector<Entry> entries, OdUInt32 numFaces);

  [[nodiscard]] OdUInt32 numFaces() const {
    return m_first.empty() ? 0 : static_cast<OdUInt32>(m_first.size() - 1);
  }
  /// Rising; none for a face that is not known.
  [[nodiscard]] std::span<const FaceBirth> of(OdUInt32 face) const;
  /// Those of all births, each once.
  [[nodiscard]] std::unordered_set<OdUInt32> makers() const;

 private:
  std::vector<OdUInt32> m_first;  // of each face in m_births, and the end
  std::vector<FaceBirth> m_births;
};

}  // namespace vdm_host
