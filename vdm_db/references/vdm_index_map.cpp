// VdmIndexMap: look-up and filing.
#include "vdm_db/references/vdm_index_map.h"

#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/filer/dwg_filer.h"

namespace {

// Letter, index and list size in their shortest forms.
constexpr OdUInt64 kMinEntryBytes = 3;

OdUInt8 letterOf(OdDb::SubentType type) {
  switch (type) {
    case OdDb::kFaceSubentType:
      return 'f';
    case OdDb::kEdgeSubentType:
      return 'e';
    case OdDb::kVertexSubentType:
      return 'v';
    default:
      return 'b';
  }
}

OdDb::SubentType typeOf(OdUInt8 letter) {
  switch (letter) {
    case 'f':
      return OdDb::kFaceSubentType;
    case 'e':
      return OdDb::kEdgeSubentType;
    case 'v':
      return OdDb::kVertexSubentType;
    case 'l':
      return static_cast<OdDb::SubentType>(4);
    case 'c':
      return static_cast<OdDb::SubentType>(5);
    default:
      return OdDb::kNullSubentType;
  }
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
    filer->wrUInt8(letterOf(subent.type()));
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
    const OdDb::SubentType type = typeOf(filer->rdUInt8());
    const OdDbSubentId subent(type, OdInt64{filer->rdInt32()} + 1);
    std::vector<int> numbers(filer->rdCount());
    for (int& number : numbers) number = filer->rdInt32();
    map.insert_or_assign(subent, std::move(numbers));
  }
  m_map.swap(map);
}
