// Unique names that number on.
#include "vdm_db/features/vdm_naming_service.h"

#include <algorithm>

#include "vdm_db/features/vdm_db_feature_manager.h"

namespace {

constexpr int kMaxDigits = 6;
constexpr OdUInt32 kMaxNumber = 999999;  // of as many digits

bool isDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

struct SplitName {
  SplitName(const OdString& name, wchar_t delimiter) : prefix(name) {
    VdmNamingService::trimSuffix(prefix, number, delimiter);
  }
  OdString prefix;
  unsigned number = 0;
};

}  // namespace

VdmNamingService::VdmNamingService() = default;
VdmNamingService::~VdmNamingService() = default;

// Later names are split in another way.
void VdmNamingService::setDelimeter(const wchar_t& delimiter) { m_delimiter = delimiter; }
void VdmNamingService::setStartValue(unsigned start) { m_startValue = start; }

void VdmNamingService::trimSuffix(OdString& name, unsigned& number, wchar_t delimiter) {
  number = 0;
  if (name.isEmpty()) return;
  const int last = name.getLength() - 1;
  int position = last;  // of the character before the digits
  unsigned value = 0;
  for (unsigned place = 1; position > 0 && last - position < kMaxDigits; --position, place *= 10) {
    const wchar_t character = name.getAt(position);
    if (!isDigit(character)) break;
    value += place * static_cast<unsigned>(character - L'0');
  }
  if (name.getAt(position) != delimiter) return;
  number = value;
  name = name.left(position);
}

// ---- The record of names

void VdmNamingService::cacheName(const OdString& name) {
  const SplitName split(name, m_delimiter);
  OdUInt32& highest = getMapPrefix(split.prefix, /*create=*/true)->second;
  highest = std::max(highest, split.number);
}

void VdmNamingService::registerName(const OdString& name) {
  if (m_cacheBuilt) cacheName(name);
}

void VdmNamingService::invalidateCache() {
  m_cacheBuilt = false;
  m_prefixes.clear();
  m_lastEntry = m_prefixes.end();
}

void VdmNamingService::buildCache() {
  if (m_cacheBuilt) return;
  cacheNames();
  m_cacheBuilt = true;
}

VdmNamingService::Prefixes::iterator VdmNamingService::getMapPrefix(const OdString& prefix,
                                                                    bool create) const {
  if (m_lastEntry != m_prefixes.end() && m_lastEntry->first == prefix) return m_lastEntry;
  const auto found =
      create ? m_prefixes.try_emplace(prefix, m_startValue).first : m_prefixes.find(prefix);
  m_lastEntry = found;
  return found;
}

// ---- Names

void VdmNamingService::makeNameUnique(OdString& name) {
  buildCache();
  const SplitName split(name, m_delimiter);
  const OdUInt32 floor = std::max<OdUInt32>(split.number, m_startValue);
  const auto entry = getMapPrefix(split.prefix, /*create=*/false);
  OdUInt32 number = m_startValue;
  if (entry != m_prefixes.end()) {
    if (entry->second < floor) return;  // the number asked for is free
    number = entry->second + 1;
  }
  if (number == 0) return;
  // A name with more digits than a number has is a prefix of its own.
  do {
    name.format(L"%ls%lc%u", split.prefix.c_str(), m_delimiter, number);
  } while (number++ > kMaxNumber && m_prefixes.contains(name));
}

bool VdmNamingService::checkNameCollision(const OdString& name) {
  buildCache();
  const SplitName split(name, m_delimiter);
  const auto entry = getMapPrefix(split.prefix, /*create=*/false);
  return entry != m_prefixes.end() && entry->second >= split.number;
}

bool VdmNamingService::checkInvalidateCacheNeed(const OdString& name) const {
  const SplitName split(name, m_delimiter);
  const auto entry = getMapPrefix(split.prefix, /*create=*/false);
  return entry != m_prefixes.end() && entry->second == split.number;
}

// ---- The names of a manager

NamingService::~NamingService() = default;

void NamingService::cacheNames() {
  for (VdmDbIterator<VdmFeature> it = m_manager->newFeatureIterator(); !it.done(); it.next()) {
    cacheName(it.object()->name());
  }
}
