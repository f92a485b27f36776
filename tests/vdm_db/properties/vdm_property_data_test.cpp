// Tests of single values: types, access, and the behaviour of the mappings.
#include "vdm_db/properties/vdm_property_data.h"

#include <gtest/gtest.h>

#include "vdm_db/properties/vdm_property_mapping.h"

namespace {

template <class T>
VdmPropertyDataPtr valueOf(const T& value) {
  return VdmPropertyData::create(value);
}

TEST(VdmPropertyData, KeepsGeometryAsDoubles) {
  OdGePoint3d point(1, 2, 3);
  OdGeMatrix3d matrix;
  VdmDoubleArray doubles;
  EXPECT_TRUE(valueOf(point)->get(doubles) && doubles == VdmDoubleArray({1, 2, 3}));
  EXPECT_TRUE(valueOf(VdmDoubleArray{4, 5, 6})->get(point) && point == OdGePoint3d(4, 5, 6));
  EXPECT_FALSE(valueOf(VdmDoubleArray{1, 2, 3, 4})->get(point));
  EXPECT_FALSE(valueOf(VdmLongArray{1, 2, 3})->get(point));
  EXPECT_FALSE(valueOf(point)->get(matrix));
}

// What each concrete class answers while it has its default and after a change.
TEST(VdmPropertyDataMapping, FollowsTheTableOfBehaviours) {
  double variable = 1.0;
  int setterCalls = 0;
  const std::function<double()> getter = [&] { return variable; };
  const std::function<void(double)> setter = [&](double next) {
    variable = next;
    ++setterCalls;
  };
  const struct {
    VdmPropertyDataPtr value;
    bool isMapped, hasDefault;
    int setterCallsOfSet;
  } rows[] = {
      {VdmPropertyDataPtr(new VdmPropertyDataContainer<double>(1.0)), false, false, 0},
      {VdmPropertyDataPtr(new VdmPropertyDataMapping<double>(&variable)), true, false, 0},
      {VdmPropertyDataPtr(new VdmPropertyDataMappingWithDefault<double>(&variable, 1.0)), true,
       true, 0},
      {VdmPropertyDataPtr(new VdmPropertyDataMappingGetterSetter<double>(getter, setter)), true,
       false, 1},
      {VdmPropertyDataPtr(
           new VdmPropertyDataMappingGetterSetterWithDefault<double>(getter, setter, 1.0)),
       true, true, 1},
  };
  for (const auto& [value, isMapped, hasDefault, setterCallsOfSet] : rows) {
    SCOPED_TRACE(typeid(*value).name());
    variable = 1.0;
    setterCalls = 0;
    EXPECT_EQ(value->isMapped(), isMapped);
    EXPECT_EQ(value->isOutOfDate(), !hasDefault);
    EXPECT_TRUE(value->set(3.0));
    EXPECT_EQ(setterCalls, setterCallsOfSet);
    EXPECT_EQ(variable, isMapped ? 3.0 : 1.0);
    EXPECT_TRUE(value->isOutOfDate());
    EXPECT_EQ(value->reset(), hasDefault);
    double read = 0.0;
    EXPECT_TRUE(value->get(read));
    EXPECT_EQ(read, hasDefault ? 1.0 : 3.0);
    EXPECT_EQ(value->isOutOfDate(), !hasDefault);
  }
}

TEST(OdDbTypedId, OrdersByHandleAndNotByAddress) {
  OdDbIdRecord idRecords[2];
  idRecords[0].handle = 9;
  idRecords[1].handle = 3;
  const OdDbTypedId high{OdDbObjectId(&idRecords[0]), OdDb::kSoftPointerRef};
  const OdDbTypedId low{OdDbObjectId(&idRecords[1]), OdDb::kHardOwnershipRef};
  const OdDbTypedId lowSoft{OdDbObjectId(&idRecords[1]), OdDb::kSoftPointerRef};
  EXPECT_TRUE(low < high);
  EXPECT_TRUE(lowSoft < low);
  EXPECT_TRUE(OdDbTypedId() < lowSoft);
}

}  // namespace
