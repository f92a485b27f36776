// Components and inserts that follow parameters, by what is left of the plate.
#include "host/parameters/component_binding.h"

#include <algorithm>
#include <numbers>

#include "host/parameters/configurations.h"
#include "host/parameters/parameter_edit.h"
#include "platform/entities/block_reference.h"
#include "tests/host/modeling/modeling_testing.h"

namespace {

using namespace vdm_host;

class ComponentBindingTest : public ModelingTest {
 protected:
  ComponentBindingTest() : m_block(m_database->getModelSpaceId()) {
    m_database->setINSUNITS(OdDb::kUnitsMillimeters);
    m_database->disableUndoRecording(false);
    EXPECT_TRUE(edit([&] { return addParameters(m_block, {{L"d", L"10 mm"}, {L"x", L"50 mm"}}); }));
  }
  testing::AssertionResult edit(const std::function<OdStatus()>& change) {
    return done(m_editor->edit(OdString(L"test"), change));
  }
  OdStatus statusOf(const std::function<OdStatus()>& change) {
    return m_editor->edit(OdString(), change).status;
  }
  testing::AssertionResult set(const wchar_t* name, const wchar_t* value) {
    return edit([&] { return setParameters(m_block, {{name, value}}); });
  }
  testing::AssertionResult bind(const OdDbObjectId& feature, const wchar_t* name,
                                const wchar_t* text) {
    return edit([&] { return setInsertProperty(feature, name, text); });
  }
  /// What through holes of these diameters take out of the plate, which is 10 thick.
  [[nodiscard]] double removed() const { return 600000.0 - volume(); }
  static double holes(std::initializer_list<double> diameters) {
    double area = 0;
    for (const double d : diameters) area += 0.25 * std::numbers::pi * d * d;
    return 10.0 * area;
  }
  [[nodiscard]] OdGePoint3d placeOf(const EditResult& insert) const {
    return insert.created.safeOpenAs<OdDbBlockReference>()->position();
  }

  OdDbObjectId m_block;
};

TEST_F(ComponentBindingTest, SizesOfAComponentFollowAndAnInsertMayHaveItsOwn) {
  const OdDbObjectId block = hole(L"pin", 6.0);
  const EditResult first = insert(block, 50, 50);
  const EditResult second = insert(block, 100, 50);
  ASSERT_TRUE(edit([&] { return setComponentSize(block, L"diameter", L"d + 2 mm"); }));
  EXPECT_NEAR(removed(), holes({12, 12}), 1e-3);
  ASSERT_TRUE(bind(second.feature, L"Diameter", L"2 * d"));
  EXPECT_NEAR(removed(), holes({12, 20}), 1e-3);

  const auto before = snapshot();
  const EditResult both = m_editor->edit(L"", [&] {
    return setParameters(m_block, {{L"d", L"8"}, {L"x", L"60"}});
  });
  EXPECT_TRUE(done(both));
  EXPECT_NEAR(removed(), holes({10, 16}), 1e-3);
  const auto isUpdated = [](const FeatureReport& feature) {
    return feature.outcome == FeatureOutcome::kUpdated;
  };
  EXPECT_EQ(std::ranges::count_if(both.report.features, isUpdated), 2) << "each once";
  EXPECT_EQ(m_database->undo(), eOk);
  EXPECT_EQ(snapshot(), before);

  // What no tool can have is refused, and nothing changed.
  const auto sound = snapshot();
  for (const wchar_t* wrong : {L"-2 mm", L"-1 mm"}) {  // of the component, of the insert's own
    EXPECT_FALSE(statusOf([&] { return setParameters(m_block, {{L"d", wrong}}); }).ok());
  }
  EXPECT_EQ(snapshot(), sound);
  EXPECT_NE(statusOf([&] { return setComponentSize(block, L"bore", L"3"); }).text.find(L"Diameter"),
            -1);
  EXPECT_FALSE(statusOf([&] { return setComponentSize(block, L"diameter", L"d * d"); }).ok());

  ASSERT_TRUE(bind(second.feature, L"diameter", L""));
  EXPECT_NEAR(removed(), holes({12, 12}), 1e-3);
  ASSERT_TRUE(edit([&] { return setComponentSize(block, L"diameter", L"7"); }));
  ASSERT_TRUE(set(L"d", L"30"));
  EXPECT_NEAR(removed(), holes({7, 7}), 1e-3) << "a number follows nothing";
  ASSERT_TRUE(edit([&] { return removeParameters(m_block, {L"d"}); })) << "nothing uses it";
  EXPECT_TRUE(isAsFresh(m_base));
}

TEST_F(ComponentBindingTest, PlaceAngleAndSuppressionFollow) {
  const EditResult made = insert(hole(L"pin", 6.0), 50, 50);
  ASSERT_TRUE(bind(made.feature, L"x", L"x + 10 mm"));
  ASSERT_TRUE(bind(made.feature, L"angle", L"30"));
  ASSERT_TRUE(bind(made.feature, L"suppress", L"x > 80 mm"));
  EXPECT_NEAR(placeOf(made).x, 60, 1e-9);
  ASSERT_TRUE(set(L"x", L"70"));
  EXPECT_NEAR(placeOf(made).x, 80, 1e-9);
  EXPECT_TRUE(isAsFresh(m_base));
  for (const PropertyInfo& property : insertProperties(made.feature)) {
    if (property.name == L"Angle") {
      EXPECT_NEAR(property.shown.number, 30, 1e-9);
    }
    EXPECT_EQ(property.isOwn, property.name != L"Diameter" && property.name != L"Depth");
  }
  ASSERT_TRUE(set(L"x", L"90"));
  EXPECT_NEAR(removed(), 0, 1e-3) << "suppressed";
  ASSERT_TRUE(set(L"x", L"20"));
  EXPECT_NEAR(removed(), holes({6}), 1e-3);
  EXPECT_NEAR(placeOf(made).x, 30, 1e-9);
  EXPECT_FALSE(statusOf([&] { return setInsertProperty(made.feature, L"angle", L"x"); }).ok());
}

TEST_F(ComponentBindingTest, ARowOfATableReachesTheSolids) {
  const OdDbObjectId block = hole(L"pin", 6.0);
  (void)insert(block, 50, 50);
  ASSERT_TRUE(edit([&] { return setComponentSize(block, L"diameter", L"d"); }));
  TableSheet sheet;
  ASSERT_TRUE(readTable("Size,d [cm],Material\nS,0.5,Steel\nM,1,Iron\nL,2,Iron\n", sheet).ok());
  OdDbObjectId table;
  std::vector<OdString> problems;
  ASSERT_TRUE(edit([&] { return loadConfigurations(m_block, sheet, {}, table, problems); }));
  EXPECT_EQ(configurationState(table).selected, L"M");
  ASSERT_TRUE(edit([&] { return selectConfiguration(table, L"l"); }));
  EXPECT_NEAR(removed(), holes({20}), 1e-3);
  ASSERT_TRUE(set(L"d", L"5"));
  EXPECT_EQ(configurationState(table).selected, L"S");
  ASSERT_TRUE(set(L"d", L"6"));
  const ConfigurationState custom = configurationState(table);
  EXPECT_TRUE(custom.isCustom);
  EXPECT_EQ(nearestRows(custom), std::vector<std::size_t>{0});
  const std::vector<CellDifference> differences = differencesOf(table, 0);
  ASSERT_EQ(differences.size(), 1u);
  EXPECT_EQ(differences[0].cell, L"5");
  TableSheet exported;
  ASSERT_TRUE(exportConfigurations(table, exported).ok());
  EXPECT_EQ(writeTable(exported),
            "Size,d [cm],Material\r\nS,0.5,Steel\r\nM,1,Iron\r\nL,2,Iron\r\n");

  // A table with faults reports all of them and leaves the old one.
  ASSERT_TRUE(readTable("Size,d,d\nS,,1\nS,1,2\n", sheet).ok());
  const auto before = snapshot();
  EXPECT_FALSE(
      statusOf([&] { return loadConfigurations(m_block, sheet, {}, table, problems); }).ok());
  EXPECT_EQ(problems.size(), 3u);
  EXPECT_EQ(snapshot(), before);
}

}  // namespace
