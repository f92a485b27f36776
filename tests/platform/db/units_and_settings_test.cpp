// Units of length, and the table of drawing settings.
#include <gtest/gtest.h>

#include "platform/db/drawing_settings.h"
#include "platform/db/units.h"
#include "tests/platform/db/db_testing.h"

namespace {

TEST(UnitsTest, ConversionsAreExact) {
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsInches, OdDb::kUnitsMillimeters), 25.4);
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsFeet, OdDb::kUnitsInches), 12.0);
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsMiles, OdDb::kUnitsFeet), 5280.0);
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsMeters, OdDb::kUnitsMicrons), 1e6);
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsUSSurveyFeet, OdDb::kUnitsMeters), 1200.0 / 3937);
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsUndefined, OdDb::kUnitsMeters), 1.0);
  EXPECT_EQ(oddbGetUnitsConversion(OdDb::kUnitsMeters, OdDb::UnitsValue(99)), 1.0);
}

TEST(UnitsTest, ThereAndBackIsOneForEveryPair) {
  for (int from = 1; from <= OdDb::kUnitsMax; ++from) {
    for (int to = 1; to <= OdDb::kUnitsMax; ++to) {
      const auto a = static_cast<OdDb::UnitsValue>(from);
      const auto b = static_cast<OdDb::UnitsValue>(to);
      EXPECT_NEAR(oddbGetUnitsConversion(a, b) * oddbGetUnitsConversion(b, a), 1.0, 1e-15);
      EXPECT_NEAR(oddbGetUnitsConversion(a, b) * oddbMetresPerUnit(b) / oddbMetresPerUnit(a), 1.0,
                  1e-15);
    }
  }
}

class OdDbDrawingSettingsTest : public DbTest {};

TEST_F(OdDbDrawingSettingsTest, RowsAreSoundAndReadBackFromBytes) {
  OdDbDrawingSettings settings;
  for (const OdDbSettingRow& row : OdDbDrawingSettings::rows()) {
    EXPECT_EQ(OdDbDrawingSettings::find(row.name), &row) << "unique name";
    EXPECT_EQ(settings.setNumber(&row, row.defaultValue), eOk) << row.name;
    EXPECT_EQ(settings.setNumber(&row, row.max), eOk) << row.name;
    OdDbDrawingSettings other;
    EXPECT_EQ(other.deserialise(&row, settings.serialise(&row)), eOk);
    EXPECT_EQ(other.number(&row), row.max);
    std::string bytes = settings.serialise(&row);
    bytes.pop_back();
    EXPECT_EQ(other.deserialise(&row, bytes), eCorruptData) << row.name;
    EXPECT_EQ(other.deserialise(&row, ""), eCorruptData) << row.name;
  }
}

TEST_F(OdDbDrawingSettingsTest, RefusesValuesOutsideTheLimits) {
  OdDbDrawingSettings settings;
  const OdDbSettingRow* notify = OdDbDrawingSettings::find("xrefnotify");
  ASSERT_NE(notify, nullptr);
  OdString reason;
  EXPECT_EQ(settings.set(notify, OdResBuf::newRb(70, 3), &reason), eInvalidInput);
  EXPECT_EQ(reason, OdString("XREFNOTIFY takes 0 to 2, given 3"));
  EXPECT_EQ(settings.set(notify, OdResBuf::newRb(40, 0.5)), eInvalidInput);
  EXPECT_EQ(settings.set(notify, OdResBuf::newRb(1, OdString("2"))), eInvalidInput);
  EXPECT_EQ(settings.set(notify, nullptr), eInvalidInput);
  EXPECT_EQ(settings.number(notify), 2);
  EXPECT_TRUE(settings.changed().empty());
  EXPECT_EQ(settings.set(notify, OdResBuf::newRb(90, 0)), eOk);
  ASSERT_EQ(settings.changed().size(), 1u);
  EXPECT_EQ(settings.changed()[0], notify);
  EXPECT_EQ(OdDbDrawingSettings::find("NOVAR"), nullptr);
  EXPECT_EQ(settings.set(OdDbDrawingSettings::find("LTSCALE"), OdResBuf::newRb(40, 0.0)),
            eInvalidInput);
}

TEST_F(OdDbDrawingSettingsTest, DrawingsRefuseUnknownNamesAndUnits) {
  EXPECT_EQ(raisedBy([&] { m_database->setSysVar("INSUNITS", OdResBuf::newRb(70, 99)); }),
            eInvalidInput);
  EXPECT_EQ(raisedBy([&] { (void)m_database->getSysVar("NOVAR"); }), eKeyNotFound);
}

}  // namespace
