// Tests of single values: types, access, and the behaviour of the mappings.
#include "vdm_db/properties/vdm_property_data.h"

#include <gtest/gtest.h>

#include "vdm_db/properties/vdm_property_mapping.h"

namespace {

template <class T>
VdmPropertyDataPtr valueOf(const T& value) {
  return VdmPropertyData::create(value);
}

TEST(VdmPropertyData, ReadsAsItsOwnTypeOnly) {
  const VdmPropertyDataPtr value = valueOf(OdLong{1});
  bool flag = false;
  double real = 7.0;
  int number = 0;
  EXPECT_FALSE(value->get(flag));
  EXPECT_FALSE(flag);
  EXPECT_FALSE(value->get(real));
  EXPECT_EQ(real, 7.0);
  EXPECT_TRUE(value->get<int>(number));
  EXPECT_EQ(number, 1);
  EXPECT_FALSE(value->set(2.0));
  EXPECT_TRUE(value->set<OdLong>(5));
  EXPECT_TRUE(value->get(number));
  EXPECT_EQ(number, 5);
  EXPECT_EQ(value->type(), VdmPropertyType::kLong);
}

TEST(VdmPropertyData, TellsElementTypesApart) {
  const VdmPropertyDataPtr value = valueOf(VdmLongArray{1, 2});
  VdmDoubleArray doubles{9.0};
  std::map<OdString, OdLong> map;
  EXPECT_FALSE(value->get(doubles));
  EXPECT_EQ(doubles.size(), 1u);
  EXPECT_FALSE(value->get(map));
  EXPECT_FALSE(valueOf(std::map<OdString, double>())->get(map));
  EXPECT_TRUE(valueOf(std::map<OdString, OdLong>{{OdString("a"), 1}})->get(map));
  EXPECT_EQ(map.size(), 1u);
}

TEST(VdmPropertyData, SharesNestedValues) {
  const VdmPropertyDataPtr inner = valueOf(OdLong{1});
  const VdmPropertyDataPtr outer = valueOf(VdmPropertyArray{inner});
  VdmPropertyArray copy;
  ASSERT_TRUE(outer->get(copy));
  EXPECT_EQ(copy.getAt(0), inner);
}

TEST(VdmPropertyData, KeepsGeometryAsDoubles) {
  const OdGePoint3d point(1, 2, 3);
  OdGeMatrix3d matrix;
  matrix(0, 3) = 5.0;
  OdGePoint3d pointRead;
  OdGeMatrix3d matrixRead;
  VdmDoubleArray doubles;
  EXPECT_TRUE(valueOf(point)->get(doubles));
  EXPECT_TRUE((doubles == VdmDoubleArray{1, 2, 3}));
  EXPECT_TRUE(valueOf(point)->get(pointRead));
  EXPECT_EQ(pointRead, point);
  EXPECT_TRUE(valueOf(matrix)->get(matrixRead));
  EXPECT_EQ(matrixRead, matrix);
  EXPECT_FALSE(valueOf(VdmDoubleArray{1, 2, 3, 4})->get(pointRead));
  EXPECT_FALSE(valueOf(VdmLongArray{1, 2, 3})->get(pointRead));
  EXPECT_FALSE(valueOf(point)->get(matrixRead));
}

TEST(VdmPropertyData, AssignsAcrossContainersAndMappings) {
  OdLong variable = 1;
  const VdmPropertyDataPtr mapping(new VdmPropertyDataMapping<OdLong>(&variable));
  EXPECT_TRUE(mapping->assign(valueOf(OdLong{42})));
  EXPECT_EQ(variable, 42);
  EXPECT_FALSE(mapping->assign(valueOf(2.0)));
  EXPECT_FALSE(mapping->assign(VdmPropertyDataPtr()));
  EXPECT_EQ(variable, 42);
  const VdmPropertyDataPtr container = valueOf(OdLong{0});
  EXPECT_TRUE(container->assign(mapping));
  OdLong copied = 0;
  EXPECT_TRUE(container->get(copied));
  EXPECT_EQ(copied, 42);
}

// One row for each concrete class: what it answers while it has its default and after a change.
struct Variable {
  double value = 1.0;
  int setterCalls = 0;
  std::function<double()> getter() {
    return [this] { return value; };
  }
  std::function<void(double)> setter() {
    return [this](double next) {
      value = next;
      ++setterCalls;
    };
  }
};
struct MappingRow {
  const char* name;
  VdmPropertyData* (*make)(Variable&);
  bool isMapped;
  bool hasDefault;
  int setterCallsOfSet;
};

TEST(VdmPropertyDataMapping, FollowsTheTableOfBehaviours) {
  const MappingRow rows[] = {
      {"container",
       [](Variable&) -> VdmPropertyData* { return new VdmPropertyDataContainer<double>(1.0); },
       false, false, 0},
      {"mapping",
       [](Variable& v) -> VdmPropertyData* { return new VdmPropertyDataMapping<double>(&v.value); },
       true, false, 0},
      {"with default",
       [](Variable& v) -> VdmPropertyData* {
         return new VdmPropertyDataMappingWithDefault<double>(&v.value, 1.0);
       },
       true, true, 0},
      {"getter setter",
       [](Variable& v) -> VdmPropertyData* {
         return new VdmPropertyDataMappingGetterSetter<double>(v.getter(), v.setter());
       },
       true, false, 1},
      {"getter setter with default",
       [](Variable& v) -> VdmPropertyData* {
         return new VdmPropertyDataMappingGetterSetterWithDefault<double>(v.getter(), v.setter(),
                                                                          1.0);
       },
       true, true, 1},
  };
  for (const MappingRow& row : rows) {
    SCOPED_TRACE(row.name);
    Variable variable;
    const VdmPropertyDataPtr value(row.make(variable));
    EXPECT_EQ(value->isMapped(), row.isMapped);
    EXPECT_EQ(value->isOutOfDate(), !row.hasDefault);
    EXPECT_TRUE(value->set(3.0));
    EXPECT_EQ(variable.setterCalls, row.setterCallsOfSet);
    EXPECT_EQ(variable.value, row.isMapped ? 3.0 : 1.0);
    EXPECT_TRUE(value->isOutOfDate());
    EXPECT_EQ(value->reset(), row.hasDefault);
    double read = 0.0;
    EXPECT_TRUE(value->get(read));
    EXPECT_EQ(read, row.hasDefault ? 1.0 : 3.0);
    EXPECT_EQ(value->isOutOfDate(), !row.hasDefault);
  }
}

TEST(VdmPropertyDataMapping, RaisesForEmptyFunctionsWhenTheyAreNeeded) {
  const VdmPropertyDataPtr value(new VdmPropertyDataMappingGetterSetter<double>({}, {}));
  double read = 0.0;
  EXPECT_THROW((void)value->get(read), std::bad_function_call);
  EXPECT_THROW(value->updateMapped(), std::bad_function_call);
}

TEST(VdmPropertyDataObjectIdMapping, PairsTheVariableWithItsReferenceType) {
  OdDbStub stubs[2];
  const OdDbObjectId first(&stubs[0]);
  const OdDbObjectId second(&stubs[1]);
  OdDbObjectId variable = first;
  const VdmPropertyDataPtr value(
      new VdmPropertyDataObjectIdMapping(&variable, OdDb::kHardPointerRef));
  OdDbTypedId read;
  ASSERT_TRUE(value->get(read));
  EXPECT_EQ(read, OdDbTypedId(first, OdDb::kHardPointerRef));
  // The reference type of what is set gives way to the mapping's own.
  ASSERT_TRUE(value->set(OdDbTypedId(second, OdDb::kSoftPointerRef)));
  EXPECT_EQ(variable, second);
  ASSERT_TRUE(value->get(read));
  EXPECT_EQ(read, OdDbTypedId(second, OdDb::kHardPointerRef));
}

TEST(VdmPropertyDataObjectIdArrayMapping, RebuildsTheArray) {
  OdDbStub stubs[2];
  OdDbObjectIdArray variable{OdDbObjectId(&stubs[0])};
  const VdmPropertyDataPtr value(
      new VdmPropertyDataObjectIdArrayMapping(&variable, OdDb::kSoftOwnershipRef));
  VdmTypedIdArray read;
  ASSERT_TRUE(value->get(read));
  EXPECT_TRUE((read == VdmTypedIdArray{{OdDbObjectId(&stubs[0]), OdDb::kSoftOwnershipRef}}));
  read.append(OdDbTypedId(OdDbObjectId(&stubs[1]), OdDb::kHardPointerRef));
  ASSERT_TRUE(value->set(read));
  EXPECT_TRUE((variable == OdDbObjectIdArray{OdDbObjectId(&stubs[0]), OdDbObjectId(&stubs[1])}));
  EXPECT_TRUE(value->isMapped());
  EXPECT_FALSE(value->reset());
}

TEST(OdDbTypedId, OrdersByHandleAndNotByAddress) {
  OdDbStub stubs[2];
  stubs[0].handle = 9;
  stubs[1].handle = 3;
  const OdDbTypedId high{OdDbObjectId(&stubs[0]), OdDb::kSoftPointerRef};
  const OdDbTypedId low{OdDbObjectId(&stubs[1]), OdDb::kHardOwnershipRef};
  const OdDbTypedId lowSoft{OdDbObjectId(&stubs[1]), OdDb::kSoftPointerRef};
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_TRUE(lowSoft < low);
  EXPECT_TRUE(OdDbTypedId() < lowSoft);
  EXPECT_FALSE(low < low);
}

}  // namespace
