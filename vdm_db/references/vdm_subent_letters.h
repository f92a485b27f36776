// The letters of faces, edges and vertices, which stored index maps and formatted paths share.
#pragma once

#include <array>

#include "platform/db/subent.h"

/// One type of subentity and its letter.
struct VdmSubentLetter {
  OdDb::SubentType type;
  char letter;
};

inline constexpr std::array<VdmSubentLetter, 3> kVdmSubentLetters = {{
    {OdDb::kFaceSubentType, 'f'},
    {OdDb::kEdgeSubentType, 'e'},
    {OdDb::kVertexSubentType, 'v'},
}};

/// The type's letter; `otherwise` for a type without a row, for which each form has a letter of its
/// own: 'b' in stored index maps, '0' in texts.
constexpr char vdmSubentLetterOr(OdDb::SubentType type, char otherwise) {
  for (const VdmSubentLetter& row : kVdmSubentLetters) {
    if (row.type == type) return row.letter;
  }
  return otherwise;
}
