// Feature classes of another library than the module.
#include "tests/vdm_db/features/feature_testing.h"

VDM_DEFINE_FEATURE_CLASS(HoleFeature, VdmFeature, L"HoleFeature")
OD_RX_DEFINE_DB(TellingReactor, VdmDbFeatureReactor, L"TellingReactor", 33, 55, 0,
                L"TELLINGREACTOR", L"tests")

int HoleFeature::edition = 1;
bool HoleFeature::required = true;
std::vector<std::pair<int, int>> HoleFeature::asked;
int TellingReactor::calls = 0;
bool TellingReactor::sound = true;

bool HoleFeature::isRequiredDependency(int mask, int tag) {
  asked.emplace_back(mask, tag);
  return required;
}

FeatureTest::FeatureTest() {
  HoleFeature::edition = 1;
  HoleFeature::required = true;
  HoleFeature::asked.clear();
  TellingReactor::calls = 0;
  TellingReactor::sound = true;
  m_features = VdmDbFeatureManager::getInstance(m_modelSpace, /*create=*/true);
}

void FeatureTest::refer(OdDbObjectId feature, std::initializer_list<Group> groups) const {
  OdArray<VdmFeatureGroupFaces> all;
  for (const Group& group : groups) {
    OdDbFullSubentPathArray paths;
    for (const int index : group.faces) paths.append(face(m_carrier, index));
    all.append(VdmFeatureGroupFaces(group.mask, paths, group.tag));
  }
  feature.openAs<VdmFeature>(OdDb::kForWrite)->init(all);
}

void FeatureTest::reopenWith(std::initializer_list<OdDbObjectId*> ids) {
  std::vector<OdDbHandle> handles;
  for (const OdDbObjectId* id : ids) handles.push_back(id->getHandle());
  const OdDbHandle manager = m_features.getHandle();
  reopen();
  m_features = m_drawing->getOdDbObjectId(manager);
  auto handle = handles.begin();
  for (OdDbObjectId* id : ids) *id = m_drawing->getOdDbObjectId(*handle++);
}
