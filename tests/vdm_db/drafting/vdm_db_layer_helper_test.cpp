// Layers of drawing views: what they inherit, line types and colours of visual styles.
#include "vdm_db/drafting/vdm_db_layer_helper.h"

#include "platform/db/dictionary.h"
#include "platform/db/linetype_file.h"
#include "platform/db/linetype_table.h"
#include "platform/db/visual_style.h"
#include "tests/support/model_testing.h"
#include "vdm_db/drafting/vdm_db_istandard_line_type_loader.h"

namespace {

using Helper = VdmDbLayerHelper;
using LayerPtr = OdDbLayerTableRecordPtr;

class VdmDbLayerHelperTest : public ModelTest {
 protected:
  using ModelTest::addLayer;
  // A layer with settings that no new layer has.
  OdDbObjectId addOldLayer(const wchar_t* name) {
    const OdDbObjectId id = addLayer(m_drawing, name, 3);
    const LayerPtr layer = edit<OdDbLayerTableRecord>(id);
    layer->setLinetypeObjectId(lineType(L"ByLayer"));
    layer->setLineWeight(OdDb::kLnWt025);
    layer->setIsPlottable(false);
    layer->setIsHidden(true);
    layer->setIsOff(true);
    layer->setIsFrozen(true);
    layer->setIsLocked(true);
    return id;
  }
  void addStyle(const wchar_t* name, const OdGiEdgeStyle& edges) {
    const OdDbVisualStylePtr style = OdDbVisualStyle::createObject();
    style->setEdgeStyle(edges);
    edit<OdDbDictionary>(m_drawing->getVisualStyleDictionaryId())->setAt(name, style);
  }
  OdDbObjectId getLayer(int type, const wchar_t* name, const wchar_t* style = L"") {
    return m_helper.getLayer(static_cast<Helper::Type>(type), name, style, m_created);
  }
  // Everything but the name.
  static std::string settingsOf(OdDbObjectId id) {
    const LayerPtr layer = open<OdDbLayerTableRecord>(id);
    std::string text;
    for (const int value :
         {static_cast<int>(layer->color().colorIndex()), static_cast<int>(layer->lineWeight()),
          static_cast<int>(layer->isPlottable()), static_cast<int>(layer->isHidden()),
          static_cast<int>(layer->isOff()), static_cast<int>(layer->isFrozen()),
          static_cast<int>(layer->isLocked())}) {
      text += std::to_string(value) + " ";
    }
    return text + nameOf(layer->linetypeObjectId());
  }
  static std::string nameOf(OdDbObjectId id) {
    return id.isNull() ? "none" : std::string(open<OdDbSymbolTableRecord>(id)->getName().utf8());
  }
  OdDbObjectId layer(const wchar_t* name) const {
    return open<OdDbLayerTable>(m_drawing->getLayerTableId())->getAt(name);
  }
  OdDbObjectId lineType(const wchar_t* name) const {
    return open<OdDbLinetypeTable>(m_drawing->getLinetypeTableId())->getAt(name);
  }

  Helper m_helper{m_drawing};
  bool m_created = false;
};

constexpr const char* kNewSettings = "7 -3 1 0 0 0 0 Continuous";
constexpr const char* kOldSettings = "3 25 0 1 1 1 1 ByLayer";

TEST_F(VdmDbLayerHelperTest, NewLayersTakeOverWhatOlderOnesHad) {
  EXPECT_EQ(settingsOf(getLayer(2, L"VM_Visible")), kNewSettings);
  EXPECT_TRUE(m_created);
  edit<OdDbLayerTableRecord>(layer(L"VM_Visible"))->erase();
  addOldLayer(L"VM_Ortho_Visible");
  addOldLayer(L"VM_Ortho_Hidden");
  const std::tuple<int, const wchar_t*, bool> rows[] = {
      {2, L"VM_Visible", true},           {3, L"VM_Hidden", true},
      {7, L"VM_Tangent_Visible", true},   {8, L"VM_Tangent_Hidden", true},
      {14, L"VM_Thread_Visible", true},   {15, L"VM_Thread_Hidden", true},
      {9, L"VM_Trailing_Visible", false}, {4, L"VM_Hatching", false}};
  for (const auto& [type, name, inherits] : rows) {
    SCOPED_TRACE(type);
    OdDbObjectId made;
    expectUndoable([this, &made, t = type, n = name] { made = getLayer(t, n); });
    EXPECT_TRUE(m_created);
    EXPECT_EQ(settingsOf(made), inherits ? kOldSettings : kNewSettings);
    edit<OdDbLayerTableRecord>(made)->setColor(OdCmColor::fromIndex(9));
    const std::string before = wholeState();
    EXPECT_EQ(getLayer(type, name, L"any"), made);
    EXPECT_FALSE(m_created);
    EXPECT_EQ(wholeState(), before) << "a layer that is there stays";
  }
  // Each from its own older layer.
  edit<OdDbLayerTableRecord>(layer(L"VM_Ortho_Visible"))->setColor(OdCmColor::fromIndex(5));
  edit<OdDbLayerTableRecord>(layer(L"VM_Hidden"))->erase();
  edit<OdDbLayerTableRecord>(layer(L"VM_Visible"))->erase();
  EXPECT_EQ(open<OdDbLayerTableRecord>(getLayer(2, L"VM_Visible"))->color().colorIndex(), 5);
  EXPECT_EQ(open<OdDbLayerTableRecord>(getLayer(3, L"VM_Hidden"))->color().colorIndex(), 3);

  const std::string before = wholeState();
  EXPECT_EQ(m_helper.copyLayerSettings(L"0", L"absent"), eKeyNotFound);
  EXPECT_EQ(m_helper.copyLayerSettings(L"absent", L"0"), eKeyNotFound);
  EXPECT_EQ(m_helper.copyLayerSettings(L"0", L"0"), eOk);
  EXPECT_EQ(wholeState(), before);
}

TEST_F(VdmDbLayerHelperTest, TheOlderTrailingLayerBecomesTheTwoPresentOnes) {
  const wchar_t* const names[] = {L"VM_Trailing_Visible", L"VM_Trailing_Hidden"};
  for (const int first : {0, 1}) {
    const OdDbObjectId old = addOldLayer(L"VC_TRAILING_LINES");
    edit<OdDbEntity>(m_carrier)->setLayer(old);
    m_drawing->startUndoRecord();
    const OdDbObjectId made = getLayer(first == 0 ? 9 : 10, names[first]);
    EXPECT_TRUE(m_created);
    EXPECT_EQ(made, layer(names[first]));
    (void)getLayer(first == 0 ? 10 : 9, names[1 - first]);
    EXPECT_TRUE(layer(L"VC_TRAILING_LINES").isNull());
    EXPECT_EQ(settingsOf(layer(names[0])), kOldSettings);
    EXPECT_EQ(settingsOf(layer(names[1])), kOldSettings);
    EXPECT_NE(layer(names[0]), layer(names[1]));
    EXPECT_EQ(open<OdDbEntity>(m_carrier)->layer(), OdString(names[0])) << "entities come along";
    ASSERT_EQ(m_drawing->undo(), eOk);
    EXPECT_EQ(layer(L"VC_TRAILING_LINES"), old);
    edit<OdDbLayerTableRecord>(old)->setIsLocked(false);
    edit<OdDbEntity>(m_carrier)->setLayer(OdString(L"0"));
    edit<OdDbLayerTableRecord>(old)->erase();
  }
  // One of the present layers is there: the older one is erased, and its entities move.
  (void)getLayer(9, names[0]);
  const OdDbObjectId old = addOldLayer(L"VC_TRAILING_LINES");
  edit<OdDbEntity>(m_carrier)->setLayer(old);
  OdDbObjectId made;
  expectUndoable([&] { made = getLayer(10, names[1]); });
  EXPECT_EQ(settingsOf(made), kOldSettings);
  EXPECT_TRUE(old.isErased() && layer(L"VC_TRAILING_LINES").isNull());
  EXPECT_EQ(open<OdDbEntity>(m_carrier)->layer(), OdString(names[0]));
  EXPECT_EQ(settingsOf(layer(names[0])), kNewSettings);
}

TEST_F(VdmDbLayerHelperTest, LineTypesComeOfTheStyleWhereTheDrawingCanHaveThem) {
  const char* const byNumber[] = {"Continuous", "Continuous", "DASHED",   "HIDDEN2",
                                  "DASHED2",    "DASHED",     "DASHEDX2", "DEMO",
                                  "DEMO",       "HIDDENX2",   "HIDDEN",   "DOTX2"};
  const auto chosen = [this](int type, const wchar_t* style) {
    return nameOf(m_helper.getLineTypeFromVisualStyle(static_cast<Helper::Type>(type), style));
  };
  OdGiEdgeStyle edges;
  edges.obscuredLinetype = OdGiEdgeStyle::kDashed;
  addStyle(L"Dashed", edges);
  EXPECT_TRUE(m_helper.getLineType(L"HIDDEN2").isNull()) << "no loader";
  EXPECT_EQ(chosen(3, L"Dashed"), "Continuous");
  {
    VdmDbFileLineTypeLoader loader;
    VdmDbIStandardLineTypeLoader::setInstance(&loader);
    for (int number = 0; number < 12; ++number) {
      edges.obscuredLinetype = static_cast<OdGiEdgeStyle::LineType>(number);
      const OdString name(("S" + std::to_string(number)).c_str());
      addStyle(name, edges);
      for (const int type : {3, 5, 8}) EXPECT_EQ(chosen(type, name), byNumber[number]);
      for (const int type : {2, 7, 15}) EXPECT_EQ(chosen(type, name), "Continuous");
    }
    EXPECT_EQ(chosen(15, L""), "HIDDEN2");
    EXPECT_EQ(chosen(15, L"absent"), "HIDDEN2");
    EXPECT_EQ(chosen(3, L""), "Continuous");
    EXPECT_EQ(
        nameOf(
            open<OdDbLayerTableRecord>(getLayer(3, L"VM_Hidden", L"Dashed"))->linetypeObjectId()),
        "DASHED");
    EXPECT_EQ(loader.load(m_drawing, L"no such"), eKeyNotFound);
    EXPECT_EQ(loader.load(m_drawing, L"*"), eKeyNotFound);
    EXPECT_EQ(VdmDbFileLineTypeLoader(L"/no/such.lin").load(m_drawing, L"DOT"), eFileNotFound);
  }
  EXPECT_EQ(VdmDbIStandardLineTypeLoader::getInstance(), nullptr) << "a dead loader is off";
  EXPECT_TRUE(m_helper.getLineType(L"PHANTOM").isNull());
}

TEST_F(VdmDbLayerHelperTest, ColoursComeOfTheStyle) {
  const auto color = [this](int type, const wchar_t* style) {
    return m_helper.getColorFromVisualStyle(static_cast<Helper::Type>(type), style);
  };
  OdGiEdgeStyle edges;
  edges.edgeColor = OdCmColor::fromRGB(1, 2, 3);
  edges.obscuredColor = OdCmColor::fromIndex(4);
  addStyle(L"Both", edges);
  edges.obscuredColor = OdCmColor(OdCmColor::kNone);
  addStyle(L"NoObscured", edges);
  edges.edgeColor = OdCmColor(OdCmColor::kByLayer);
  addStyle(L"NoColour", edges);
  for (const int type : {3, 5, 8, 15}) EXPECT_EQ(color(type, L"Both"), OdCmColor::fromIndex(4));
  for (const int type : {2, 7, 14}) EXPECT_EQ(color(type, L"Both"), OdCmColor::fromRGB(1, 2, 3));
  EXPECT_EQ(color(3, L"NoObscured"), OdCmColor::fromRGB(1, 2, 3));
  EXPECT_EQ(color(2, L"NoColour"), OdCmColor::fromIndex(7));
  EXPECT_EQ(color(2, L"absent"), OdCmColor::fromIndex(7));
  const OdDbObjectId made = getLayer(2, L"VM_Visible", L"Both");
  EXPECT_EQ(open<OdDbLayerTableRecord>(made)->color(), OdCmColor::fromRGB(1, 2, 3));

  Helper nowhere(nullptr);
  EXPECT_TRUE(nowhere.getLayer(Helper::kVisible, L"VM_Visible", L"", m_created).isNull());
  EXPECT_TRUE(nowhere.getLineTypeFromVisualStyle(Helper::kHidden, L"Both").isNull());
  EXPECT_NE(nowhere.copyLayerSettings(L"0", L"0"), eOk);
}

}  // namespace
