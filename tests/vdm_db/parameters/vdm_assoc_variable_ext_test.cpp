// Attributes, units and measurements of variables.
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"

#include "tests/support/model_testing.h"
#include "vdm_db/parameters/vdm_cv_unit_interface.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_roles.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace {

using Ext = VdmAssocVariableExt;

/// Takes "L" before a number for a length, and knows kg/mm and kg/cm.
class TestUnits : public OdStaticRxObject<VdmCVUnitInterface> {
 public:
  OdResult getConversionFactor(const OdString& from, const OdString& to, double* factor) override {
    if (from != L"kg/mm" || to != L"kg/cm") return eInvalidInput;
    *factor = 10.0;
    return eOk;
  }
  OdString formatMeasurement(const Ext::Measurement& measurement) override {
    return vdmu::getConstExpression(measurement.value) + L" " + measurement.text;
  }
  void reservedOperationA() override {}
  void reservedOperationB() override {}
  void reservedOperationC() override {}
  void reservedOperationD() override {}
  void reservedOperationE() override {}
  bool parseLength(const OdString& text, double* value) override {
    *value = 2.5;
    return text[0] == L'L';
  }
};

class VdmAssocVariableExtTest : public ModelTest {
 protected:
  VdmAssocVariableExtTest() {
    m_drawing->setINSUNITS(OdDb::kUnitsMillimeters);
    m_size = add(L"size", L"3");
  }
  ~VdmAssocVariableExtTest() override { VdmVariableRoles::install(m_roles); }

  OdDbObjectId add(const wchar_t* name, const wchar_t* expression) {
    return vdmu::getAssocVariable(m_modelSpace, name, /*create=*/true, expression);
  }
  static VdmAssocVariableExtPtr ext(OdDbObjectId variable) {
    return Ext::cast(open<OdDbAssocVariable>(variable));
  }
  static VdmAssocVariableExtPtr editExt(OdDbObjectId variable) {
    return Ext::cast(edit<OdDbAssocVariable>(variable));
  }
  static bool isExposed(OdDbObjectId variable) {
    return Ext::calculateExposedStatus(open<OdDbAssocVariable>(variable).get());
  }
  void setUnitText(const wchar_t* text) {
    VdmProperties bag;
    bag.setProperty(L"units", OdString(text));
    bag.writeToDbObject(edit<OdDbAssocVariable>(m_size).get());
  }

  const VdmVariableRoles m_roles = VdmVariableRoles::installed();
  OdDbObjectId m_size;
};

TEST_F(VdmAssocVariableExtTest, AttributesAreStoredBesideTheVariable) {
  EXPECT_TRUE(Ext::cast(static_cast<const OdDbAssocVariable*>(nullptr)).isNull());
  double start = 7, end = 7;
  EXPECT_FALSE(ext(m_size)->hasRangeForAnimation(start, end));
  EXPECT_EQ(start, 7.0);
  editExt(m_size)->setRangeForAnimation(5.0, 1.0);
  editExt(m_size)->setStatusBOM(Ext::EBOMStatus(3));
  editExt(m_size)->setGeometryDriven(true);
  editExt(m_size)->setMeasurementType(Ext::kArea);
  const OdDbHandle handle = m_size.getHandle();
  reopen();
  m_size = m_drawing->getOdDbObjectId(handle);
  const VdmAssocVariableExtPtr read = ext(m_size);
  EXPECT_TRUE(read->hasRangeForAnimation(start, end));
  EXPECT_EQ(start, 5.0);
  EXPECT_EQ(end, 1.0);
  EXPECT_EQ(read->statusBOM(), 3);
  EXPECT_TRUE(read->isGeometryDriven());
  EXPECT_EQ(read->measurementType(), 2);
  editExt(m_size)->clearRangeForAnimation();
  EXPECT_FALSE(ext(m_size)->hasRangeForAnimation(start, end));
  EXPECT_NE(raisedBy([&] { ext(m_size)->setExposed(true); }), eOk) << "open for read";
}

TEST_F(VdmAssocVariableExtTest, UnusedAndDefinedVariablesAreNotExposed) {
  const OdDbObjectId user = add(L"user", L"size * 2");
  EXPECT_TRUE(isExposed(m_size));
  EXPECT_FALSE(isExposed(user)) << "nothing uses it";
  editExt(user)->setExposed(true);
  EXPECT_TRUE(isExposed(user));
  editExt(user)->setDefaultExpose();
  EXPECT_FALSE(isExposed(user));
  edit<OdDbAssocVariable>(user)->addPersistentReactor(m_carrier);
  EXPECT_FALSE(isExposed(user)) << "another variable defines it";
  editExt(m_size)->setGeometryDriven(true);
  EXPECT_FALSE(isExposed(m_size));
  editExt(m_size)->setGeometryDriven(false);
  VdmVariableRoles roles;
  roles.isDrivingColumn = [](const OdDbObject*) { return true; };
  VdmVariableRoles::install(roles);
  EXPECT_FALSE(isExposed(m_size));
  EXPECT_FALSE(isExposed(add(L"*1", L"1")));
  EXPECT_FALSE(Ext::calculateExposedStatus(nullptr));
}

TEST_F(VdmAssocVariableExtTest, TextsOfUnits) {
  EXPECT_EQ(Ext::unitsToString(OdDb::UnitsValue(8)), L"\u00B5in");
  EXPECT_EQ(Ext::unitsToString(OdDb::UnitsValue(20)), L"pc");
  EXPECT_EQ(Ext::unitsToString(OdDb::UnitsValue(21)), L"");
  EXPECT_EQ(Ext::unitsToString(OdDb::UnitsValue(-1)), L"");
  EXPECT_EQ(Ext::measurementTypeToString(OdDb::kUnitsMillimeters, 2), L"mm^2");
  EXPECT_EQ(Ext::measurementTypeToString(OdDb::kUnitsUndefined, 2), L"");
  EXPECT_EQ(Ext::measurementTypeToString(OdDb::kUnitsMillimeters, 0), L"");
  EXPECT_EQ(Ext::measurementTypeToString(OdDb::kUnitsMillimeters, 4), L"");
}

TEST_F(VdmAssocVariableExtTest, MeasurementsAreConverted) {
  EXPECT_EQ(ext(m_size)->getMeasurement(true).value, 3.0);
  EXPECT_EQ(ext(m_size)->getMeasurement(false).value, 1.0);
  EXPECT_EQ(ext(m_size)->unitsAsString(), L"");
  editExt(m_size)->setMeasurementType(Ext::kArea);
  EXPECT_EQ(ext(m_size)->unitsAsString(), L"mm^2");
  const Ext::Measurement area = ext(m_size)->convertMeasurement(OdDb::kUnitsCentimeters);
  EXPECT_DOUBLE_EQ(area.value, 0.03);
  EXPECT_EQ(area.text, L"cm^2");
  const Ext::Measurement none = ext(m_size)->convertMeasurement(OdDb::kUnitsUndefined);
  EXPECT_EQ(none.value, 3.0);
  EXPECT_TRUE(none.units == OdDb::kUnitsUndefined && none.text.isEmpty());
  editExt(m_size)->setMeasurementType(Ext::kVolume);
  EXPECT_DOUBLE_EQ(ext(m_size)->getScaleFactor(OdDb::kUnitsCentimeters), 0.001);
  EXPECT_EQ(ext(m_size)->convertMeasurement(OdDb::kUnitsMillimeters).text, L"mm^3");

  const OdDbObjectId block = addBlock(m_drawing, L"B");
  edit<OdDbBlockTableRecord>(block)->setBlockInsertUnits(OdDb::kUnitsInches);
  const OdDbObjectId inBlock = vdmu::getAssocVariable(block, L"w", /*create=*/true, L"2");
  EXPECT_EQ(ext(inBlock)->getBlockUnits(), OdDb::kUnitsInches);

  // Free units need the host.
  setUnitText(L"kg/mm");
  EXPECT_EQ(ext(m_size)->measurementType(), 0) << "a text is no type";
  EXPECT_EQ(ext(m_size)->convertMeasurement(OdDb::kUnitsCentimeters).text, L"");
  EXPECT_EQ(VdmCVUnitInterface::unformatLength(L"L2"), L"L2");
  const OdDbAssocVariablePtr opened = open<OdDbAssocVariable>(m_size);
  const OdDbAssocVariable* variable = opened.get();
  EXPECT_EQ(VdmCVUnitInterface::getFormattedMeasurement(nullptr, OdDb::kUnitsUndefined), L"");
  TestUnits units;
  OdDbAssocVariable::desc()->addX(VdmCVUnitInterface::desc(), &units);
  const Ext::Measurement free = ext(m_size)->convertMeasurement(OdDb::kUnitsCentimeters);
  EXPECT_EQ(free.value, 30.0);
  EXPECT_EQ(free.text, L"kg/cm");
  EXPECT_EQ(ext(m_size)->convertMeasurement(OdDb::kUnitsInches).text, L"") << "not known";
  EXPECT_EQ(VdmCVUnitInterface::unformatLength(L"L2"), L"2.5");
  EXPECT_EQ(VdmCVUnitInterface::unformatLength(L"2"), L"2");
  EXPECT_EQ(VdmCVUnitInterface::getFormattedMeasurement(variable, OdDb::kUnitsUndefined),
            L"3 kg/mm");
  EXPECT_EQ(VdmCVUnitInterface::getFormattedMeasurement(variable, OdDb::kUnitsCentimeters),
            L"30 kg/cm");
  OdDbAssocVariable::desc()->delX(VdmCVUnitInterface::desc());
  EXPECT_EQ(VdmCVUnitInterface::getFormattedMeasurement(variable, OdDb::kUnitsCentimeters), L"3");
}

TEST_F(VdmAssocVariableExtTest, LinearDimensionsAreLengths) {
  VdmVariableRoles roles;
  roles.isLinearConstraint = [](const OdDbAssocVariable*) { return true; };
  VdmVariableRoles::install(roles);
  editExt(m_size)->setMeasurementType(Ext::kArea);
  EXPECT_EQ(ext(m_size)->measurementType(), 0) << "it is a length in any case";
  EXPECT_EQ(ext(m_size)->getMeasurement(false).type, 1);
  EXPECT_DOUBLE_EQ(ext(m_size)->getScaleFactor(OdDb::kUnitsMeters), 0.001);
  EXPECT_FALSE(ext(m_size)->isAngularDimension());
  VdmVariableRoles::install({});
  editExt(m_size)->setMeasurementType(Ext::kLength);
  EXPECT_TRUE(ext(m_size)->isLinearDimension());
  editExt(m_size)->setMeasurementType(Ext::kVolume);
  EXPECT_EQ(ext(m_size)->measurementType(), 3) << "a length by its type alone can become another";
}

}  // namespace
