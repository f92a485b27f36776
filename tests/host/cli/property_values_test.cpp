// Tests of property values as texts and JSON: all value types, in memory.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "host/cli/cli_error.h"
#include "host/cli/property_json.h"
#include "host/cli/property_node.h"
#include "host/cli/property_text.h"
#include "host/cli/text_output.h"

#include "platform/db/host_app_services.h"
#include "tests/support/runtime.h"

namespace cli {

// A plain memberwise comparison; ids by what they name.
bool operator==(const PropertyNode& a, const PropertyNode& b) {
  return a.kind == b.kind && a.scalar == b.scalar && a.items == b.items && a.keys == b.keys;
}

namespace {

using Type = VdmPropertyType;

constexpr Type kPlain[] = {Type::kString, Type::kLong,   Type::kDouble, Type::kBool,
                           Type::kInt8,   Type::kHandle, Type::kTypedId};
/// Every kind of value that a property can have: 8 plain ones, 9 arrays, 63 maps.
std::vector<PropertyKind> allKinds() {
  std::vector<PropertyKind> kinds{{Type::kBlob, {}, {}}};
  for (const Type type : kPlain) kinds.push_back({type, {}, {}});
  std::vector<Type> elements{Type::kProperty, Type::kBlob};
  elements.insert(elements.end(), std::begin(kPlain), std::end(kPlain));
  for (const Type element : elements) {
    kinds.push_back({Type::kArray, element, {}});
    for (const Type key : kPlain) kinds.push_back({Type::kMap, element, key});
  }
  return kinds;
}

class PropertyValues : public virtual Runtime, public testing::Test {
 protected:
  PropertyValues() : m_drawing(m_services.createDatabase()) {}

  [[nodiscard]] const OdDbDatabase& drawing() const { return *m_drawing; }

  /// The line of the error that a parse ends with; empty when it ends well.
  template <class Parse>
  static std::string errorOf(const Parse& parse) {
    try {
      static_cast<void>(parse());
      return {};
    } catch (const CliError& error) {
      return error.what();
    }
  }
  [[nodiscard]] std::string scalarError(Type type, const std::string& text) const {
    return errorOf([&] { return parseScalar(type, text, drawing()); });
  }

  // Random values.
  int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

  double anyDouble() {
    const double value = std::ldexp(below(1 << 20) - (1 << 19), below(200) - 100);
    return below(10) == 0 ? std::numeric_limits<double>::max() : value;
  }

  OdString anyText() {
    static const wchar_t kCharacters[] = L"ab\"'\\ ,:{}[]\n\té\u20ac\U0001F529";
    OdString text;
    for (int i = below(8); i > 0; --i) text += kCharacters[below(17)];
    return text;
  }

  OdDbTypedId anyId() {
    const OdDbObjectId id = below(4) == 0 ? OdDbObjectId() : drawing().getModelSpaceId();
    return {id, static_cast<OdDb::ReferenceType>(below(4))};
  }

  PropertyNode::Scalar anyScalar(Type type) {
    if (type == Type::kString) return anyText();
    if (type == Type::kLong) return static_cast<OdLong>(m_random());
    if (type == Type::kDouble) return anyDouble();
    if (type == Type::kBool) return below(2) == 1;
    if (type == Type::kInt8) return static_cast<signed char>(below(256) - 128);
    if (type == Type::kHandle) return OdDbHandle(OdUInt64{m_random()} << below(33));
    if (type == Type::kTypedId) return anyId();
    VdmBlob bytes(static_cast<std::size_t>(below(5)));
    for (char& byte : bytes) byte = static_cast<char>(below(256));
    return bytes;
  }

  PropertyNode anyNode(const PropertyKind& kind, int depth = 0) {
    PropertyNode node;
    node.kind = kind;
    if (kind.type != Type::kArray && kind.type != Type::kMap) {
      node.scalar = anyScalar(kind.type);
      return node;
    }
    for (int i = below(4); i > 0; --i) {
      if (kind.type == Type::kMap) node.keys.push_back(anyNode({kind.key, {}, {}}, depth));
      node.items.push_back(anyNode(elementKind(kind.element, depth), depth + 1));
    }
    return node;
  }

  /// A nested value may be anything, but not for ever.
  PropertyKind elementKind(Type element, int depth) {
    if (element != Type::kProperty) return {element, {}, {}};
    static const std::vector<PropertyKind> kKinds = allKinds();
    if (depth > 3) return {Type::kLong, {}, {}};
    return kKinds[static_cast<std::size_t>(below(static_cast<int>(kKinds.size())))];
  }

  std::mt19937 m_random{20260101};

 private:
  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_drawing;
};

TEST_F(PropertyValues, EveryTypeSurvivesTheValueItsJsonAndItsText) {
  const std::vector<PropertyKind> kinds = allKinds();
  ASSERT_EQ(kinds.size(), 80u);
  for (const PropertyKind& kind : kinds) {
    for (int round = 0; round < 50; ++round) {
      // Through a value first: it puts maps in order and takes twin keys out.
      const VdmPropertyDataPtr data = toProperty(anyNode(kind));
      ASSERT_FALSE(data.isNull()) << kindText(kind);
      const PropertyNode node = toNode(data.get());
      ASSERT_EQ(node.kind, kind) << kindText(kind);
      EXPECT_TRUE(toNode(toProperty(node).get()) == node) << kindText(kind);
      const std::string json = typedJson(node).dump();
      EXPECT_TRUE(parseTypedJson(json, drawing()) == node) << json;
      if (kind.type == Type::kArray || kind.type == Type::kMap) continue;
      EXPECT_TRUE(parseScalar(kind.type, plainText(node), drawing()) == node) << plainText(node);
    }
  }
}

TEST_F(PropertyValues, TypeTextsReadBackAndOthersAreRefused) {
  for (const PropertyKind& kind : allKinds()) EXPECT_EQ(parseKind(kindText(kind)), kind);
  EXPECT_EQ(parseKind("array"), (PropertyKind{Type::kArray, {}, {}}));
  EXPECT_EQ(parseKind("map"), (PropertyKind{Type::kMap, {}, {}}));
  for (const char* text :
       {"", ":", "int", "Long", "long:", "long:long", "value", "array:", "array:array", "array:map",
        "array:long:long", "map:long", "map:value:long", "map:blob:long", "map:long:array",
        "map:long:long:long"}) {
    EXPECT_THROW(static_cast<void>(parseKind(text)), CliError) << text;
  }
}

TEST_F(PropertyValues, LimitsOfNumbersHold) {
  struct Row {
    Type type;
    const char* good[3];
    const char* bad[6];
  };
  const Row rows[] = {
      {Type::kLong,
       {"-2147483648", "2147483647", "0"},
       {"2147483648", "-2147483649", "1.0", "", " 1", "0x1"}},
      {Type::kInt8, {"-128", "127", "0"}, {"128", "-129", "1.0", "", "a", "1 "}},
      {Type::kDouble, {"1e308", "-2.3e-308", "-0"}, {"1e309", "1e-310", "inf", "nan", "1,5", ""}},
      {Type::kBool, {"true", "0", "1"}, {"True", "yes", "2", "", "-1", "on"}},
      {Type::kHandle,
       {"0", "ffffffffffffffff", "1a"},
       {"", "g", "-1", "10000000000000000", "0x1", " 1"}},
      {Type::kBlob, {"", "00", "DEADbeef"}, {"0", "0g", "00 ", "0x00", "-1", "zz"}},
      {Type::kTypedId,
       {"6", "hard-owner:6", "0"},
       {"", "pointer:6", ":6", "soft-pointer:", "hard-owner", "6:6"}},
  };
  for (const Row& row : rows) {
    for (const char* text : row.good) EXPECT_EQ(scalarError(row.type, text), "") << text;
    for (const char* text : row.bad) {
      EXPECT_EQ(scalarError(row.type, text), mismatchText(text, row.type)) << text;
    }
  }
  EXPECT_EQ(scalarError(Type::kTypedId, "FFFF"), "handle FFFF names no object of the drawing");
}

TEST_F(PropertyValues, OpenElementTypesAreTakenFromTheValues) {
  struct Row {
    const char* type;
    const char* json;
    const char* kind;  // empty: refused
  };
  const Row rows[] = {
      {"array", "[1, 2]", "array:long"},
      {"array", "[1, 2.5]", "array:double"},
      {"array", "[{\"type\": \"long\", \"value\": 1}]", "array:value"},
      {"array", "[]", ""},
      {"array", "[1, \"a\"]", ""},
      {"array", "[null]", ""},
      {"array", "[[1]]", ""},
      {"array", "{}", ""},
      {"array", "[9999999999]", ""},
      {"map", "{\"a\": 1}", "map:string:long"},
      {"map", "[[1, 2]]", ""},
      {"map:long:string", "[[1, \"a\"], [1, \"b\"]]", ""},
      {"map:long:string", "[[1]]", ""},
      {"map:long:string", "{\"1\": \"a\"}", ""},
      {"array:long", "[18446744073709551615]", ""},
  };
  for (const Row& row : rows) {
    PropertyNode node;
    const std::string error =
        errorOf([&] { return node = parseBareJson(parseKind(row.type), row.json, drawing()); });
    EXPECT_EQ(error.empty(), *row.kind != '\0') << row.json << ": " << error;
    EXPECT_EQ(error.empty() ? kindText(node.kind) : "", row.kind) << row.json;
  }
}

TEST_F(PropertyValues, DeepNestingIsRefusedBeforeTheStackEnds) {
  std::string json = "{\"type\": \"long\", \"value\": 1}";
  for (int level = 0; level < 5000; ++level) {
    json = "{\"type\":\"array\",\"of\":\"value\",\"value\":[" + json + "]}";
  }
  EXPECT_EQ(errorOf([&] { return parseTypedJson(json, drawing()); }),
            "values nest deeper than 100 levels");
}

TEST(TextOutput, NothingFromAFileMovesTheCursor) {
  EXPECT_EQ(shortened("größe", 5), "größe");
  EXPECT_EQ(shortened("größen", 5), "größ\u2026");
  EXPECT_EQ(oneLine("a\nb\tc\x1b[2Jd\x7f"), "a\\nb\\tc\\x1b[2Jd\\x7f");
  EXPECT_EQ(quote("x\r"), "'x\\x0d'");
}

}  // namespace
}  // namespace cli
