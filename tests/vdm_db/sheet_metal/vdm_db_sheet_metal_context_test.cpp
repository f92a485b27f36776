// Sheet-metal contexts: place, stored form, bend tables.
#include "platform/cloning/id_mapping.h"
#include "tests/vdm_db/sheet_metal/sheet_metal_testing.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_external_pe.h"

namespace {

// A bend table with dies, as long as `hasTable` says so.
class BendTables : public OdRxObjectImpl<VdmDbSheetMetalContextPE> {
 public:
  bool hasTable = true;
  std::string loaded;

  OdResult loadBendTable(const VdmDbSheetMetalContext*, const OdString& path) override {
    loaded = path.utf8();
    return eCorruptData;
  }
  OdResult getBendTable(OdArray<OdString>& cells) override {
    cells.append(L"cell");
    return eOk;
  }
  OdResult getBendDeduction(const VdmDbSheetMetalContext*, double, double, double&) override {
    return eOk;
  }
  OdResult getDieWidths(const VdmDbSheetMetalContext*, OdArray<double>& widths) override {
    for (const double width : {16.0, 6.0, 10.0}) widths.append(width);
    return eOk;
  }
  bool hasBendTable(const VdmDbSheetMetalContext*) override { return hasTable; }
  bool updateRecognition(OdDbObject*, const OdDbObjectIdArray&) override { return false; }
  bool updateUnfolding(OdDbObject*, const OdDbObjectIdArray&) override { return false; }
  bool updateGeometry(OdDbObject*, const OdDbObjectIdArray&) override { return false; }
  bool isSheetMetal(const VdmDbSheetMetalContext*, const OdDbObjectId&) override { return false; }
  OdResult unfold(const VdmDbSheetMetalContext*, const OdDbObjectId&, OdDbObjectIdArray&) override {
    return eOk;
  }
};

class VdmDbSheetMetalContextTest : public SheetMetalTest {};

TEST_F(VdmDbSheetMetalContextTest, ABlockHasOneContextThatItsManagerOwns) {
  EXPECT_EQ(Sheet::getInstance(m_modelSpace, true), m_context);
  EXPECT_EQ(Sheet::getInstance(m_modelSpace, false), m_context);
  const OdDbObjectId manager = VdmDbFeatureManager::getInstance(m_modelSpace, false);
  EXPECT_EQ(sheet()->featureManager(), manager);
  const OdDbObjectId feature =
      edit<VdmDbFeatureManager>(manager)->createFeatureData(VdmFeature::desc(), L"F", false, false);
  EXPECT_EQ(Sheet::openInstance(feature.openAs<VdmFeature>().get())->objectId(), m_context);
  EXPECT_TRUE(Sheet::openInstance(nullptr).isNull());

  const OdDbObjectId block = addBlock(m_drawing, L"B");
  const std::string before = wholeState();
  EXPECT_TRUE(Sheet::getInstance(block, false).isNull());
  EXPECT_TRUE(Sheet::getInstance(OdDbObjectId::kNull, true).isNull());
  EXPECT_EQ(wholeState(), before);
  expectUndoable([&] { (void)Sheet::getInstance(block, true); });
  EXPECT_EQ(Sheet::getInstance(block, false).openAs<Sheet>()->featureManager(),
            VdmDbFeatureManager::getInstance(block, false));

  EXPECT_EQ(edit<VdmDbFeatureManager>(manager)->deleteSheetMetalContext(), eOk);
  EXPECT_TRUE(Sheet::getInstance(m_modelSpace, false).isNull());
  EXPECT_NE(Sheet::getInstance(m_modelSpace, true), m_context);
}

TEST_F(VdmDbSheetMetalContextTest, OptionsOfACloneAreItsOwn) {
  editSheet()->optionForWriteTab().setSlotNumber(8);
  editSheet()->optionForWriteMiter().setExtensionAbsoluteValue(0.5);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({m_modelSpace}, m_drawing->getBlockTableId(), *mapping),
            eOk);
  OdDbIdPair pair(m_context);
  ASSERT_TRUE(mapping->compute(pair));
  EXPECT_EQ(valuesOf(*open<Sheet>(pair.value())), values());
  edit<Sheet>(pair.value())->optionForWriteTab().setSlotNumber(9);
  EXPECT_EQ(sheet()->optionForReadTab().slotNumber(), 8);
  // The relation of the miter's extension has no place in the drawing.
  using Relation = VdmRelationToThicknessType;
  EXPECT_EQ(sheet()->optionForReadMiter().extensionType(), Relation::kAbsolute);
  reopenSheet();
  EXPECT_EQ(sheet()->optionForReadMiter().extensionType(), Relation::kRatio);
  EXPECT_EQ(sheet()->optionForReadMiter().extensionRatio(), 0.5);
}

// ---- Stored form

// A record: the base's part, the number of properties, then what `properties` writes.
OdResult readRecord(Sheet& context, int count,
                    const std::function<void(OdDbDwgFiler&)>& properties) {
  VersionedFiler filer(OdDbDwgFiler::kCopyFiler, 33);
  Sheet::createObject()->OdDbObject::dwgOutFields(&filer);
  filer.wrInt32(count);
  properties(filer);
  return context.dwgInFields(&filer.rewound());
}

void writeKey(OdDbDwgFiler& filer, const wchar_t* key, OdInt8 type) {
  filer.wrString(key);
  filer.wrInt8(type);
}

TEST_F(VdmDbSheetMetalContextTest, RecordsOfAnyAgeAreRead) {
  SheetValues expected = newSheet();
  expected["Thickness"] = 4.5;
  expected["TabParameters.slotNumber"] = 7;
  expected["Later"] = std::string("kept");
  for (const int version : {-1, 0, 1, 2}) {  // -1: none
    SheetPtr read = Sheet::createObject();
    const auto write = [&](OdDbDwgFiler& filer) {
      if (version >= 0) writeKey(filer, L"_ver", 6), filer.wrInt8(static_cast<OdInt8>(version));
      writeKey(filer, L"Later", 2), filer.wrString(L"kept");
      writeKey(filer, L"TabParameters.slotNumber", 3), filer.wrInt32(7);
      writeKey(filer, L"Thickness", 4), filer.wrDouble(4.5);
    };
    EXPECT_EQ(readRecord(*read, version >= 0 ? 4 : 3, write), version > 1 ? 1 : eOk);
    EXPECT_EQ(valuesOf(*read), version > 1 ? newSheet() : expected) << version;
  }
  const SheetPtr read = Sheet::createObject();
  const auto wrongType = [](OdDbDwgFiler& filer) {
    writeKey(filer, L"Thickness", 3);
    filer.wrInt32(4);
  };
  EXPECT_EQ(readRecord(*read, 1, wrongType), eCorruptData);
  EXPECT_EQ(valuesOf(*read), newSheet());
}

TEST_F(VdmDbSheetMetalContextTest, ARecordThatEndsTooEarlyIsRefused) {
  OdDbFilerBuffer whole;
  OdDbMemoryFiler writer(OdDbDwgFiler::kCopyFiler, whole);
  sheet()->dwgOutFields(&writer);
  for (OdUInt32 size = 0; size < whole.bytes.size(); ++size) {
    OdDbFilerBuffer cut = whole;
    cut.bytes.resize(size);
    MemoryReader reader(cut);
    OdResult result = eOk;
    const OdResult raised = raisedBy([&] { result = Sheet::createObject()->dwgInFields(&reader); });
    ASSERT_NE(raised == eOk ? result : raised, eOk) << size << " of " << whole.bytes.size();
  }
}

// ---- Bend tables of the host

TEST_F(VdmDbSheetMetalContextTest, BendTablesComeOfTheHost) {
  OdArray<OdString> cells;
  OdArray<double> widths{1.0};
  EXPECT_EQ(sheet()->loadBendTable(cells), 417);
  EXPECT_EQ(sheet()->getAvailableDieWidths(widths), 417);
  EXPECT_TRUE(widths.isEmpty());
  EXPECT_EQ(Sheet::createObject()->loadBendTable(cells), 417);

  const OdSmartPtr<BendTables> host(new BendTables, kOdRxObjAttach);
  Sheet::desc()->addX(VdmDbSheetMetalContextPE::desc(), host);
  reopenSheet();
  editSheet()->optionForWriteUnfolding().setBendTableRelativePath(L"steel.csv");
  EXPECT_EQ(sheet()->loadBendTable(cells), eCorruptData) << "what the host says";
  EXPECT_TRUE(host->loaded.empty()) << "no such file";
  cells.clear();
  writeBytes(m_folder.file("steel.csv"), "");
  EXPECT_EQ(sheet()->loadBendTable(cells), eCorruptData);
  EXPECT_EQ(host->loaded, m_folder.file("steel.csv"));
  EXPECT_EQ(cells, OdArray<OdString>{L"cell"});
  EXPECT_EQ(sheet()->getAvailableDieWidths(widths), eOk);
  EXPECT_EQ(widths, (OdArray<double>{6.0, 10.0, 16.0}));
  host->hasTable = false;
  EXPECT_EQ(sheet()->getAvailableDieWidths(widths), 417);
  Sheet::desc()->delX(VdmDbSheetMetalContextPE::desc());
  EXPECT_TRUE(VdmDbSheetMetalContextExternalPE::getFrom(Sheet::desc()).isNull());
}

}  // namespace
