// Selectors on a plate whose faces and edges are known by construction.
#include "host/inspect/selector.h"

#include <set>

#include "tests/support/modeler_testing.h"

namespace vdm_host {
namespace {

using Type = OdModelerSubentType;

/// A plate 100 x 60 x 10 with holes of radius 4 and 8 and a boss of radius 5 on top.
class VdmSelector : public ModelerTest {
 protected:
  VdmSelector()
      : m_body(combine(OdModelerBooleanKind::kUnite,
                       combine(OdModelerBooleanKind::kSubtract, box(100, 60, 10),
                               {cylinder(4, 30, {20, 30, -5}), cylinder(8, 30, {50, 30, -5})}),
                       {cylinder(5, 12, {80, 30, 8})})),
        m_facts(m_body) {}

  std::vector<OdModelerSubent> selected(const std::string& text, Type type = Type::kFace) {
    std::optional<Selector> selector;
    const OdStatus parsed = Selector::parse(text, type, selector);
    EXPECT_TRUE(parsed.ok()) << text << ": " << parsed.text.utf8();
    std::vector<OdModelerSubent> found;
    if (!selector) return found;
    const OdStatus status = selector->select(
        m_facts,
        [this](const std::string& name) {
          return name == "bore" ? std::vector<OdModelerSubent>{bore()}
                                : std::vector<OdModelerSubent>{};
        },
        found);
    m_message = status.ok() ? "" : std::string(status.text.utf8());
    return found;
  }
  std::string refused(const std::string& text, Type type = Type::kFace) {
    std::optional<Selector> selector;
    const OdStatus status = Selector::parse(text, type, selector);
    EXPECT_FALSE(status.ok()) << text;
    EXPECT_FALSE(selector);
    return std::string(status.text.utf8());
  }
  /// The one face or edge that is chosen, by a point of it.
  void expectOne(const std::string& text, const OdGePoint3d& point) {
    const auto found = selected(text);
    ASSERT_EQ(found.size(), 1U) << text << ": " << m_message;
    EXPECT_LT(m_body->distanceTo(found.front(), point), 1e-6) << text;
  }
  OdModelerSubent bore() {
    for (OdUInt32 i = 1; i <= m_body->numFaces(); ++i) {
      if (m_body->face(i).radius == 8.0) return {Type::kFace, i};
    }
    return {};
  }

  OdModelerBodyPtr m_body;
  BodyFacts m_facts;
  std::string m_message;
};

TEST_F(VdmSelector, EachConditionChoosesWhatItSays) {
  EXPECT_EQ(selected("plane").size(), 7U);
  EXPECT_EQ(selected("cylinder").size(), 3U);
  EXPECT_EQ(selected("cylinder & inward").size(), 2U);
  expectOne("cylinder & outward", {85, 30, 15});
  expectOne("plane & normal=-z", {5, 5, 0});
  expectOne("plane & highest", {80, 30, 20});
  expectOne("normal=z & largest", {5, 5, 10});
  expectOne("plane & normal=x", {100, 5, 5});
  expectOne("radius=7..9", {58, 30, 5});
  expectOne("diameter=8", {24, 30, 5});
  expectOne("radius<4.5", {24, 30, 5});
  expectOne("cylinder & near 21,30,0", {24, 30, 5});
  expectOne("at 58,30,5", {58, 30, 5});
  EXPECT_EQ(selected("z=0..10 & plane").size(), 6U);
  EXPECT_EQ(selected("area>5000 | cylinder & axis=z").size(), 5U);
  EXPECT_EQ(selected("!(plane | radius=4)").size(), 2U);
  EXPECT_EQ(selected("beside f_" + std::to_string(bore().index)).size(), 2U);
  EXPECT_EQ(selected("edge: of bore & circle").size(), 2U);
  EXPECT_EQ(selected("edge: of bore & convex").size(), 2U);
  EXPECT_EQ(selected("edge: concave").size(), 1U) << "the foot of the boss";
  EXPECT_EQ(selected("edge: line & direction=z & convex & length=10").size(), 4U);
  EXPECT_EQ(selected("vertex: x=100 & z=10").size(), 2U);
  expectOne("edge: closed & radius=8 & highest", {58, 30, 10});
}

TEST_F(VdmSelector, AMissSaysWhatComesNearest) {
  EXPECT_TRUE(selected("cylinder & radius=6..7 & inward").empty());
  EXPECT_NE(m_message.find("radius 8 does not meet 'radius=6..7'"), std::string::npos) << m_message;
  EXPECT_TRUE(selected("sphere").empty());
  EXPECT_NE(m_message.find("does not meet 'sphere'"), std::string::npos) << m_message;
  EXPECT_TRUE(selected("of nothing").empty());
  EXPECT_NE(m_message.find("'nothing' names no"), std::string::npos) << m_message;
}

TEST_F(VdmSelector, WhatIsNoSelectorIsRefusedWithItsColumn) {
  struct Row {
    const char* text;
    const char* part;
  };
  for (const Row& row :
       std::initializer_list<Row>{{"plane &", "column 8: expected a condition, the text ends"},
                                  {"plan", "column 1: 'plan' is no condition; faces have plane"},
                                  {"convex", "'convex' is no condition for faces"},
                                  {"radius", "column 7: expected =, <"},
                                  {"radius=9..4", "begins above its end"},
                                  {"normal=0,0,0", "has no length"},
                                  {"(plane", "expected ')'"},
                                  {"plane cylinder", "column 7: expected '&'"},
                                  {"near 1,2", "column 9: expected ','"},
                                  {"of \"open", "expected '\"'"}}) {
    EXPECT_NE(refused(row.text).find(row.part), std::string::npos)
        << row.text << ": " << refused(row.text);
  }
  EXPECT_NE(refused("plane", Type::kNull).find("expected 'face:'"), std::string::npos);
  EXPECT_NE(refused(std::string(300, '(')).find("nested"), std::string::npos);
}

}  // namespace
}  // namespace vdm_host
