// Tests of layers, viewports and how entities are shown.
#include "vdm_db/drawing_utils/vdm_display_utils.h"

#include <numbers>

#include "platform/db/layer_table.h"
#include "tests/support/reference_testing.h"

namespace {

using VdmDisplayUtilsTest = ReferenceTest;

TEST_F(VdmDisplayUtilsTest, PaperPointsGoToTheWorldPointsThatAreSeen) {
  OdGeMatrix3d matrix;
  const OdDbViewportPtr viewport = OdDbViewport::createObject();
  viewport->setCenterPoint(OdGePoint3d(100, 50, 0));
  viewport->setHeight(20);
  viewport->setViewHeight(200);  // one unit of paper shows ten
  viewport->setViewTarget(OdGePoint3d(1, 2, 3));
  viewport->setViewCenter(OdGePoint2d(7, 8));
  ASSERT_TRUE(vdmu::getPaperDcsToWcsMatrix(viewport, matrix));
  EXPECT_TRUE((matrix * OdGePoint3d(101, 50, 0)).isEqualTo(OdGePoint3d(18, 10, 3)));
  // From the front: paper X is world X, paper Y is world Z.
  viewport->setViewDirection(OdGeVector3d(0, -5, 0));
  ASSERT_TRUE(vdmu::getPaperDcsToWcsMatrix(viewport, matrix));
  EXPECT_TRUE((matrix * OdGePoint3d(100, 50, 0)).isEqualTo(OdGePoint3d(8, 2, 11)));
  // The display's X axis, turned by minus a quarter, points down.
  viewport->setTwistAngle(std::numbers::pi / 2);
  ASSERT_TRUE(vdmu::getPaperDcsToWcsMatrix(viewport, matrix));
  EXPECT_TRUE((matrix * OdGeVector3d(1, 0, 0)).isEqualTo(OdGeVector3d(0, 0, -10)));
}

TEST_F(VdmDisplayUtilsTest, LayerOfSubtractedSolids) {
  const OdDbObjectId id = vdmu::getVCSubtractLayer(m_drawing);
  {
    const auto layer = edit<OdDbLayerTableRecord>(id);
    EXPECT_EQ(layer->getName(), L"VC_SUBTRACT");
    EXPECT_TRUE(layer->isFrozen() && layer->isHidden());
    EXPECT_EQ(layer->color(), OdCmColor::fromRGB(255, 0, 0));
    layer->setIsFrozen(false);
  }
  EXPECT_EQ(vdmu::getVCSubtractLayer(m_drawing), id);
  EXPECT_FALSE(open<OdDbLayerTableRecord>(id)->isFrozen()) << "it stays as it is";
  EXPECT_TRUE(vdmu::getVCSubtractLayer(nullptr).isNull());
}

}  // namespace
