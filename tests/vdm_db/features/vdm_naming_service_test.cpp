// Tests of names that number on, and of the look-ups of cloning.
#include <gtest/gtest.h>

#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/cloning/vdm_remapping_operation_bracket.h"
#include "vdm_db/drawing_utils/vdm_db_id_mapping.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/features/vdm_db_naming_policy_pe.h"
#include "vdm_db/features/vdm_naming_service.h"

namespace {

class ListedNames : public VdmNamingService {
 public:
  OdStringArray names;
  int builds = 0;

 protected:
  void cacheNames() override {
    ++builds;
    for (const OdString& name : names) cacheName(name);
  }
};

}  // namespace

TEST(VdmNamingServiceTest, SplitsNames) {
  struct Row {
    const wchar_t* name;
    wchar_t delimiter;
    const wchar_t* prefix;
    unsigned number;
  };
  const Row rows[] = {
      {L"Hole_12", L'_', L"Hole", 12},   {L"Hole12", L'_', L"Hole12", 0},
      {L"Hole_", L'_', L"Hole", 0},      {L"_123", L'_', L"", 123},
      {L"a_123456", L'_', L"a", 123456}, {L"a_1234567", L'_', L"a_1234567", 0},
      {L"Hole-3", L'-', L"Hole", 3},     {L"Hole_3", L'-', L"Hole_3", 0},
      {L"123", L'_', L"123", 0},         {L"", L'_', L"", 0},
  };
  for (const Row& row : rows) {
    OdString name = row.name;
    unsigned number = 99;
    VdmNamingService::trimSuffix(name, number, row.delimiter);
    EXPECT_EQ(name, OdString(row.prefix));
    EXPECT_EQ(number, row.number) << OdString(row.name).utf8();
  }
}

TEST(VdmNamingServiceTest, MakesNamesUnique) {
  struct Row {
    const wchar_t* used;
    unsigned start;
    const wchar_t* name;
    const wchar_t* unique;
  };
  const Row rows[] = {
      {L"x", 0, L"Hole", L"Hole"},          {L"x", 1, L"Hole", L"Hole_1"},
      {L"x", 1, L"Hole_5", L"Hole_1"},      {L"Hole_3", 0, L"Hole", L"Hole_4"},
      {L"Hole_3", 0, L"Hole_9", L"Hole_9"}, {L"Hole_3", 0, L"Hole_3", L"Hole_4"},
      {L"Hole", 0, L"Hole", L"Hole_1"},
  };
  for (const Row& row : rows) {
    ListedNames service;
    service.names = {row.used};
    service.setStartValue(row.start);
    OdString name = row.name;
    service.makeNameUnique(name);
    EXPECT_EQ(name, OdString(row.unique)) << OdString(row.name).utf8();
  }
  ListedNames full;
  full.names = {L"Hole_999999", L"Hole_1000000"};
  OdString name = L"Hole";
  full.makeNameUnique(name);
  EXPECT_EQ(name, L"Hole_1000001");
}

TEST(VdmNamingServiceTest, TheRecordIsBuiltOnceAndDroppedWhenToldTo) {
  ListedNames service;
  service.registerName(L"Hole_8");
  service.names = {L"Hole_3"};
  EXPECT_TRUE(service.checkNameCollision(L"Hole_2"));
  EXPECT_FALSE(service.checkNameCollision(L"Hole_4"));
  EXPECT_FALSE(service.checkNameCollision(L"Slot"));
  EXPECT_TRUE(service.checkInvalidateCacheNeed(L"Hole_3"));
  EXPECT_FALSE(service.checkInvalidateCacheNeed(L"Hole_2"));
  service.registerName(L"Hole_8");
  EXPECT_TRUE(service.checkNameCollision(L"Hole_8"));
  EXPECT_EQ(service.builds, 1);
  service.invalidateCache();
  EXPECT_FALSE(service.checkNameCollision(L"Hole_8"));
  EXPECT_EQ(service.builds, 2);
}

namespace {

class Policy : public OdRxObjectImpl<VdmDbNamingPolicyPE> {
 public:
  OdString displayName(const OdRxClass* cls) const override { return cls->name(); }
  OdString baseName(const OdRxClass*) const override { return L"Bore  "; }
};

}  // namespace

class VdmDbNamingPolicy : public FeatureTest {};

TEST_F(VdmDbNamingPolicy, NamesNewFeaturesAfterTheirClass) {
  VdmDbFeatureManager::desc()->addX(VdmDbNamingPolicyPE::desc(),
                                    OdRxObjectPtr(new Policy, kOdRxObjAttach));
  const auto nameOf = [this](const wchar_t* name, bool numberGiven, bool trim) {
    return hole(manager()->createFeatureData(HoleFeature::desc(), name, numberGiven, trim))->name();
  };
  EXPECT_EQ(nameOf(L"", false, true), OdString(L"Bore_1"));
  EXPECT_EQ(nameOf(L"", false, true), OdString(L"Bore_2"));
  EXPECT_EQ(nameOf(L"", false, false), OdString(L"Bore  _1"));
  EXPECT_EQ(nameOf(L"Pin", false, false), OdString(L"Pin"));
  EXPECT_EQ(nameOf(L"Pin", true, false), OdString(L"Pin_1"));
  const OdDbObjectId last = manager()->createFeatureData(HoleFeature::desc(), L"Pin", false, false);
  EXPECT_EQ(hole(last)->name(), OdString(L"Pin_2"));
  m_drawing->startUndoRecord();
  edit<VdmDbFeatureData>(last)->erase();
  EXPECT_EQ(nameOf(L"Pin", false, false), OdString(L"Pin_2"));
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(nameOf(L"Pin", false, false), OdString(L"Pin_3"));
  m_drawing->startUndoRecord();
  hole(last, OdDb::kForWrite)->setName(L"Nail");
  hole(manager(OdDb::kForRead)->featureIds()[6], OdDb::kForWrite)->setName(L"Screw");
  EXPECT_EQ(nameOf(L"Pin", false, false), OdString(L"Pin_2"));
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(nameOf(L"Pin", false, false), OdString(L"Pin_4"));
  const OdDbObjectId bore = manager(OdDb::kForRead)->featureIds()[1];
  hole(bore, OdDb::kForWrite)->setName(L"Bore_7");
  EXPECT_EQ(nameOf(L"Bore", false, false), OdString(L"Bore_8"));

  // A manager that takes features over names them on, too.
  const OdDbIdMappingPtr nothing = OdDbIdMapping::createObject();
  VdmDbReverseIdMapping reverse(*nothing);
  std::unordered_set<OdDbObjectId> merged;
  std::map<OdDbObjectId, OdDbObjectId> replaced;
  const auto other = VdmDbFeatureManager::getInstance(addBlock(m_drawing, L"A"), true);
  edit<VdmDbFeatureManager>(other)->createFeatureData(HoleFeature::desc(), L"Bore_9", false, false);
  edit<VdmDbFeatureManager>(other)->mergeManagers(manager(), *nothing, reverse, merged,
                                                  /*keepAll=*/true, replaced);
  EXPECT_EQ(hole(bore)->name(), OdString(L"Bore_11")) << "the second of them";
  VdmDbFeatureManager::desc()->delX(VdmDbNamingPolicyPE::desc());
}

TEST_F(VdmDbNamingPolicy, MappingsLookUpBothWays) {
  VdmDbIdMapping ids;
  EXPECT_TRUE(ids.find(m_carrier).isNull());
  EXPECT_TRUE(ids.add(m_carrier, m_other));
  EXPECT_FALSE(ids.add(m_carrier, m_features));
  EXPECT_EQ(ids.find(m_carrier), m_other);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  mapping->assign(OdDbIdPair(m_carrier, m_other, /*cloned=*/true));
  mapping->assign(OdDbIdPair(m_manager, m_features));
  const VdmDbReverseIdMapping reverse(*mapping);
  OdDbIdPair pair(m_modelSpace);
  EXPECT_FALSE(reverse.compute(m_carrier, pair));
  EXPECT_EQ(pair.value(), m_carrier);
  EXPECT_EQ(pair.key(), m_modelSpace);
  EXPECT_TRUE(reverse.compute(m_other, pair));
  EXPECT_EQ(pair.key(), m_carrier);
  EXPECT_TRUE(reverse.isCloned(m_other));
  EXPECT_FALSE(reverse.isCloned(m_features));
  EXPECT_TRUE(vdmu::VdmRemappingOperationBracket::create().isNull()) << "no module has the class";
}
