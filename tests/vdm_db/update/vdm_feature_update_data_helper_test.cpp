// The helper of a pass: queues of tools, booleans, faces by marker.
#include "platform/base/error.h"
#include "tests/vdm_db/update/update_testing.h"

namespace {

using Face = VdmFeatureUpdateDataUtils::Face;
using SolidFace = VdmFeatureUpdateDataUtils::SolidFace;

class VdmFeatureUpdateDataHelperTest : public UpdateTest {
 protected:
  VdmFeatureUpdateDataHelperTest()
      : m_plate(addSolid(box(100.0, 60.0, 10.0))), m_data(nullptr), m_helper(m_data) {
    m_data.setObserver(&m_recorder);
    m_recorder.names[m_plate] = "plate";
  }
  OdDb3dSolidPtr drill(double x) const { return newSolid(cylinder(5.0, 40.0, {x, 30.0, -20.0})); }

  const OdDbObjectId m_plate;
  VdmFeatureUpdateData m_data;
  TestHelper m_helper;
};

TEST_F(VdmFeatureUpdateDataHelperTest, ToolsOfSeveralSourcesAreOneBoolean) {
  addTo(space(), newSolid(box(1.0, 1.0, 1.0)), L"RED");
  solid(m_plate, OdDb::kForWrite)->setLayer(L"RED");
  m_helper.appendSolidToSubtract(space(), m_plate, drill(20.0));
  m_helper.appendSolidToSubtract(m_plate, m_plate, drill(60.0));
  m_helper.appendSolidToSubtract(m_plate, m_plate, nullptr);
  EXPECT_TRUE(m_helper.hasSolidsModifications());
  EXPECT_TRUE(m_helper.subtractOperation());
  EXPECT_EQ(m_scene.numTools, 2u);
  EXPECT_EQ(m_recorder.lines, std::vector<std::string>{"cut plate by 2"});
  EXPECT_EQ(solid(m_plate)->body()->numFaces(), 8u);
  EXPECT_EQ(solid(m_plate)->layer(), L"RED");
  EXPECT_FALSE(m_helper.hasSolidsModifications());
  EXPECT_TRUE(m_helper.subtractOperation()) << "an empty queue";
  m_helper.appendSolidToUnite(space(), m_plate, newSolid(box(5.0, 5.0, 40.0)));
  EXPECT_TRUE(m_helper.unionOperation());
  EXPECT_GT(solid(m_plate)->body()->numFaces(), 8u);
}

TEST_F(VdmFeatureUpdateDataHelperTest, OtherOperationsAndOtherEntitiesAreRefused) {
  EXPECT_TRUE(m_helper.booleanOperation(OdDb::kBoolIntersect, m_helper.solidsToSubtract()));
  const OdDbObjectId reference = insert(addBlock(L"empty"), space());
  m_helper.appendSolidToSubtract(m_plate, reference, drill(20.0));
  EXPECT_FALSE(m_helper.booleanOperation(OdDb::kBoolIntersect, m_helper.solidsToSubtract()));
  EXPECT_TRUE(m_helper.hasSolidsModifications());
  takeAssertions();
  EXPECT_TRUE(m_helper.subtractOperation());
  EXPECT_EQ(takeAssertions().size(), 1u);
  m_scene.acceptsTools = false;
  m_helper.appendSolidToUnite(m_plate, m_plate, drill(20.0));
  EXPECT_TRUE(m_helper.unionOperation());
  EXPECT_TRUE(takeAssertions().empty());
  EXPECT_EQ(solid(m_plate)->body()->numFaces(), 6u);
}

TEST_F(VdmFeatureUpdateDataHelperTest, MarkersFollowTheirFirstNewOne) {
  std::map<int, Face> bases{{7, {5, 99}}, {8, {9, 98}}};
  std::map<int, OdArray<Face>> samples{{1, {Face{5, 0}, Face{13, 3}}}};
  m_helper.appendSubtrBaseFace(m_plate, bases);
  m_helper.appendSampleFeature(m_plate, samples);
  const VdmFeatureUpdateDataHelper::MarkerMap markers{{5, {21, 25}}, {9, {}}};
  m_helper.fillBaseFaceMapWithMarkers(m_plate, 7, markers);
  m_helper.fillBaseFaceMapWithMarkers(m_plate, 8, markers);
  m_helper.fillBaseFaceMapWithMarkers(m_plate, 6, markers);
  m_helper.fillSampleFeatureMapWithMarkers(m_plate, markers);
  const auto& base = *m_helper.subtrBaseFaceMap(m_plate);
  EXPECT_TRUE(base.at(7).matchedMarker == 21 && base.at(8).matchedMarker == 98);
  const OdArray<Face>& sample = m_helper.sampleFeatureFaces(m_plate)->at(1);
  EXPECT_TRUE(sample[0].matchedMarker == 21 && sample[1].matchedMarker == 3);
  EXPECT_EQ(m_helper.subtrBaseFaceMap(space()), nullptr);

  EXPECT_TRUE(!m_helper.hasBaseFace(m_plate) && m_helper.baseFaces(m_plate).isEmpty());
  for (int i = 0; i < 2; ++i) m_helper.setBaseFace(m_plate, facePath(m_plate, 1));
  EXPECT_EQ(m_helper.baseFaces(m_plate).size(), 2u);
}

TEST_F(VdmFeatureUpdateDataHelperTest, MatchingFacesTellWhichGo) {
  VdmMatchingFaces matching;
  for (const OdInt32 kind : {0, 1, 2, 3}) {
    matching.faces.append(SolidFace{facePath(m_plate, kind + 1), kind});
  }
  OdDbFullSubentPathArray paths;
  matching.fillFacesToRemove(paths);
  EXPECT_EQ(paths, (OdDbFullSubentPathArray{facePath(m_plate, 1), facePath(m_plate, 3)}));
  matching.hasBaseFrontFace = true;
  EXPECT_EQ(matching.baseFrontFace()->path, facePath(m_plate, 1));
  OdArray<SolidFace> faces;
  matching.fillFacesToRemove(faces);
  EXPECT_TRUE(faces.size() == 1 && faces[0].kind == 2);
  matching.faces.clear();
  EXPECT_THROW(static_cast<void>(matching.baseFrontFace()), OdError);
}

}  // namespace
