// Seams of hidden lines: engines, filters, shadows, scopes.
#include "vdm_db/drafting/vdm_db_ihlr.h"

#include "tests/support/model_testing.h"
#include "vdm_db/drafting/vdm_hlr_utils.h"

namespace {

class Engine : public VdmDbIHLR {
 public:
  void setFilter(VdmDbIHLRFilter*) override {}
  OdResult run(const OdDbObjectIdArray&, const OdGeMatrix3d&, std::vector<VdmHlrLine>&) override {
    return eOk;
  }
};
class Scope : public AutoDisableDraftingViewReactorDb {
 public:
  ~Scope() override { ++ended; }
  static int ended;
};
int Scope::ended = 0;

class VdmDbIHLRTest : public ModelTest {};

TEST_F(VdmDbIHLRTest, SeamsGiveWhatTheHostSetAndNothingWithoutIt) {
  EXPECT_FALSE(VdmDbIHLR::hasFactoryMethod());
  EXPECT_TRUE(VdmDbIHLR::getHLR().isNull());
  VdmDbIHLR::setFactoryMethod([] { return OdSharedPtr<VdmDbIHLR>(new Engine); });
  EXPECT_TRUE(VdmDbIHLR::hasFactoryMethod());
  EXPECT_FALSE(VdmDbIHLR::getHLR().isNull());
  VdmDbIHLR::setFactoryMethod(nullptr);
  EXPECT_TRUE(VdmDbIHLR::getHLR().isNull());

  const OdDbEntityPtr entity = open<OdDbEntity>(m_carrier);
  OdArray<OdDbEntityPtr> regions;
  EXPECT_EQ(VdmHlrUtils::makeShadowRegion(entity, OdGePlane(), regions), eModuleNotLoaded);
  VdmHlrUtils::setImplMakeShadowRegion(
      [](const OdDbEntityPtr& of, const OdGePlane&, OdArray<OdDbEntityPtr>& made) {
        made.append(of);
        return eOk;
      });
  EXPECT_EQ(VdmHlrUtils::makeShadowRegion(entity, OdGePlane(), regions), eOk);
  EXPECT_EQ(regions.size(), 1u);
  VdmHlrUtils::setImplMakeShadowRegion(nullptr);

  EXPECT_EQ(AutoDisableDraftingViewReactorDb::get(), nullptr);
  AutoDisableDraftingViewReactorDb::setImpl(
      []() -> std::shared_ptr<AutoDisableDraftingViewReactorDb> {
        return std::make_shared<Scope>();
      });
  EXPECT_NE(AutoDisableDraftingViewReactorDb::get(), nullptr);
  EXPECT_EQ(Scope::ended, 1);
  AutoDisableDraftingViewReactorDb::setImpl(nullptr);
}

TEST_F(VdmDbIHLRTest, FiltersLeaveOutWhatIsNoBodyInSight) {
  VdmOdaToAcisLayerFilter filter(nullptr);
  VdmOdaToAcisFilter inSight(nullptr);
  const OdDbEntityPtr entity = edit<OdDbEntity>(m_carrier);
  EXPECT_FALSE(filter.accept(nullptr));
  EXPECT_TRUE(filter.accept(entity));
  EXPECT_TRUE(filter.accept(OdDbLine::createObject())) << "on no layer";
  entity->setVisibility(OdDb::kInvisible);
  EXPECT_FALSE(filter.accept(entity) || inSight.accept(entity));
  entity->setVisibility(OdDb::kVisible);
  const std::pair<const wchar_t*, bool> layers[] = {{L"BIM_SUBTRACT", false}, {L"BIM_UNITE", false},
                                                    {L"VC_SUBTRACT", false},  {L"vc_unite", false},
                                                    {L"VC_UNITE_2", true},    {L"SUBTRACT", true}};
  for (const auto& [name, accepted] : layers) {
    entity->setLayer(addLayer(m_drawing, name));
    EXPECT_EQ(filter.accept(entity), accepted) << OdString(name).utf8();
    EXPECT_TRUE(inSight.accept(entity));
  }
}

}  // namespace
