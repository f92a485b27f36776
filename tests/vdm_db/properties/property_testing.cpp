// Small verbs of the property tests: bytes, bags and filers.
#include "tests/vdm_db/properties/property_testing.h"

#include <cstdio>
#include <sstream>

namespace property_testing {

std::vector<char> flatOf(const VdmProperties& bag) {
  VdmFlatFiler filer;
  bag.dwgOutFields(filer.clear());
  return filer.getBinaryData();
}

OdResult readFlat(VdmProperties& bag, const std::vector<char>& bytes) {
  VdmFlatFiler filer;
  filer.setBinaryData(bytes.data(), static_cast<unsigned int>(bytes.size()));
  return bag.dwgInFields(&filer);
}

std::string hexOf(const std::vector<char>& bytes) {
  std::string hex;
  for (const char byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02X ", static_cast<unsigned char>(byte));
    hex += digits;
  }
  if (!hex.empty()) hex.pop_back();
  return hex;
}

std::vector<char> bytesOf(const std::string& hex) {
  std::istringstream stream(hex);
  stream >> std::hex;
  std::vector<char> bytes;
  for (int byte = 0; stream >> byte;) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

namespace {

template <class K>
void addMaps(VdmProperties& bag, const OdString& prefix, const K& key) {
  bag.setProperty(prefix + "1",
                  std::map<K, VdmPropertyDataPtr>{{key, VdmPropertyData::create(OdString("in"))}});
  bag.setProperty(prefix + "2", std::map<K, OdString>{{key, OdString("v")}});
  bag.setProperty(prefix + "3", std::map<K, OdLong>{{key, -5}});
  bag.setProperty(prefix + "4", std::map<K, double>{{key, 0.25}});
  bag.setProperty(prefix + "5", std::map<K, bool>{{key, true}});
  bag.setProperty(prefix + "6", std::map<K, signed char>{{key, static_cast<signed char>(-1)}});
  bag.setProperty(prefix + "7", std::map<K, OdDbHandle>{{key, OdDbHandle(0x2A)}});
  bag.setProperty(prefix + "8", std::map<K, OdDbTypedId>{
                                    {key, OdDbTypedId(OdDbObjectId(), OdDb::kHardOwnershipRef)}});
  bag.setProperty(prefix + "9", std::map<K, VdmBlob>{{key, VdmBlob{'x', 'y'}}});
}

template <VdmElementType E>
void addArray(VdmProperties& bag, const OdString& key, std::initializer_list<E> elements) {
  bag.setProperty(key, VdmArray<E>(elements));
}

}  // namespace

VdmProperties fullBag() {
  VdmProperties bag;
  bag.setProperty(L"string", OdString(L"d\u00E9j\u00E0 vu \u4E2D"));
  bag.setProperty(L"long", OdLong{-123456});
  bag.setProperty(L"double", 1.0 / 3.0);
  bag.setProperty(L"bool", true);
  bag.setProperty(L"int8", static_cast<signed char>(-7));
  bag.setProperty(L"handle", OdDbHandle(0x0102030405060708u));
  bag.setProperty(L"id", OdDbObjectId(), OdDb::kSoftOwnershipRef);
  bag.setProperty(L"blob", VdmBlob{'\0', '\x7F', '\xFF'});
  bag.setProperty(L"empty blob", VdmBlob());
  const VdmPropertyDataPtr inner = VdmPropertyData::create(
      VdmPropertyArray{VdmPropertyData::create(OdLong{1}), VdmPropertyDataPtr(),
                       VdmPropertyData::create(std::map<OdString, bool>{{OdString("k"), true}})});
  addArray<VdmPropertyDataPtr>(bag, L"array1", {inner, VdmPropertyData::create(2.5)});
  addArray<OdString>(bag, L"array2", {OdString("a"), OdString(), OdString("c")});
  addArray<OdLong>(bag, L"array3", {1, -2, 3});
  addArray<double>(bag, L"array4", {0.5, -1e300});
  addArray<bool>(bag, L"array5", {true, false});
  addArray<signed char>(bag, L"array6", {1, -1});
  addArray<OdDbHandle>(bag, L"array7", {OdDbHandle(1), OdDbHandle(~OdUInt64{0})});
  addArray<OdDbTypedId>(bag, L"array8", {OdDbTypedId(OdDbObjectId(), OdDb::kHardPointerRef)});
  addArray<VdmBlob>(bag, L"array9", {VdmBlob(), VdmBlob{'b'}});
  addMaps(bag, L"map string ", OdString("key"));
  addMaps(bag, L"map long ", OdLong{4});
  addMaps(bag, L"map double ", 4.5);
  addMaps(bag, L"map bool ", true);
  addMaps(bag, L"map int8 ", static_cast<signed char>(4));
  addMaps(bag, L"map handle ", OdDbHandle(4));
  addMaps(bag, L"map id ", OdDbTypedId(OdDbObjectId(), OdDb::kSoftPointerRef));
  return bag;
}

AssertionLog::AssertionLog()
    : m_sink([this](const VdmAssertion& assertion) {
        m_lines.push_back(std::string(assertion.expression) + "@" + assertion.source + ":" +
                          std::to_string(assertion.line));
      }) {}

}  // namespace property_testing
