// VdmIndexMap: look-up and filing.
//
// The map is ordered by subentity, so that equal maps are filed as equal bytes; a look-up costs the
// logarithm of its size. Reading builds a second map and swaps it in at the end: damaged data
// leaves the map empty and never half filled. The count of entries is compared with the bytes that
// are left by division, so that no product can overflow, and each list's count by
// OdDbDwgFiler::rdCount.
#include "vdm_db/references/vdm_index_map.h"

#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/filer/dwg_filer.h"
#include "vdm_db/references/vdm_subent_letters.h"

namespace {

// Letter, index and list size in their shortest forms.
constexpr OdUInt64 kMinEntryBytes = 3;

/// The letter that an index map is stored with.
OdUInt8 storedLetter(OdDb::SubentType type) {
  return static_cast<OdUInt8>(vdmSubentLetterOr(type, 'b'));
}

/// Readers know two letters that no writer puts, types 4 and 5; all other letters give the null
/// type.
OdDb::SubentType typeOfStoredLetter(OdUInt8 letter) {
  for (const VdmSubentLetter& row : kVdmSubentLetters) {
    if (letter == row.letter) return row.type;
  }
  if (letter == 'l') return static_cast<OdDb::SubentType>(4);
  if (letter == 'c') return static_cast<OdDb::SubentType>(5);
  return OdDb::kNullSubentType;
}

}  // namespace

int VdmIndexMap::getIdx(const OdDbFullSubentPath& path) const {
  const std::vector<int>* numbers = find(path.subentId());
  return numbers == nullptr || numbers->empty() ? 0 : numbers->front();
}

const std::vector<int>* VdmIndexMap::find(const OdDbSubentId& subent) const {
  const auto entry = m_map.find(subent);
  return entry == m_map.end() ? nullptr : &entry->second;
}

void VdmIndexMap::set(const OdDbSubentId& subent, std::vector<int> numbers) {
  m_map.insert_or_assign(subent, std::move(numbers));
}

// ---- Filing
//
//   count     int32     nothing follows when it is not positive
//   entries   in the order of the map, each:
//     type    uint8     'f' face, 'e' edge, 'v' vertex, 'b' anything else; 'l' is read as type 4
//                       and 'c' as type 5, but neither is written: such types come back as null
//     index   int32     the low 32 bits of the subentity's index less 1
//     list    int32 count, then each number as int32

void VdmIndexMap::dwgOutFields(OdDbDwgFiler* filer) const {
  filer->wrInt32(static_cast<OdInt32>(m_map.size()));
  for (const auto& [subent, numbers] : m_map) {
    filer->wrUInt8(storedLetter(subent.type()));
    filer->wrInt32(static_cast<OdInt32>(subent.index() - 1));
    filer->wrInt32(static_cast<OdInt32>(numbers.size()));
    for (const int number : numbers) filer->wrInt32(number);
  }
}

void VdmIndexMap::dwgInFields(OdDbDwgFiler* filer) {
  m_map.clear();
  const OdInt32 count = filer->rdInt32();
  if (count <= 0) return;
  if (static_cast<OdUInt64>(count) > filer->bytesLeft() / kMinEntryBytes) {
    throw OdError(eCorruptData, OdString("index map of " + std::to_string(count) + " entries in " +
                                         std::to_string(filer->bytesLeft()) + " bytes"));
  }
  Map map;
  for (OdInt32 i = 0; i < count; ++i) {
    const OdDb::SubentType type = typeOfStoredLetter(filer->rdUInt8());
    const OdDbSubentId subent(type, OdInt64{filer->rdInt32()} + 1);
    std::vector<int> numbers(filer->rdCount());
    for (int& number : numbers) number = filer->rdInt32();
    map.insert_or_assign(subent, std::move(numbers));
  }
  m_map.swap(map);
}
