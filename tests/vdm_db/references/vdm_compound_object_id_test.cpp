// Tests of stored paths: building, resolving through external references, order, filing.
#include "vdm_db/references/vdm_compound_object_id.h"

#include "platform/cloning/xref_man.h"
#include "tests/support/reference_testing.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

std::string kindsOf(const VdmCompoundObjectId& id) {
  std::string kinds;
  for (const VdmCompoundObjectId::Element& element : id.elements()) {
    kinds += static_cast<char>('0' + element.kind);
  }
  return kinds;
}

/// Model space shows OUTER, which shows the external drawing PART, which holds a carrier.
class VdmCompoundObjectIdTest : public ReferenceTest {
 protected:
  VdmCompoundObjectIdTest() {
    m_carrierHandle = writePart("part.vdm");
    m_xref = attach(m_drawing, "part.vdm", L"PART");
    const OdDbObjectId outer = addBlock(m_drawing, L"OUTER");
    m_inner = addReference(outer, m_xref);
    m_top = addReference(m_modelSpace, outer);
    m_line = addLine(outer);
    const OdDbDatabase* part = open<OdDbBlockTableRecord>(m_xref)->xrefDatabase();
    m_path.setFullPath({m_top, m_inner, part->getOdDbObjectId(m_carrierHandle)}, false);
  }

  /// The same drawing, freshly read, with nothing loaded.
  void reopen() {
    const OdDbObjectId carrier = addCarrier(m_modelSpace, m_path);
    ASSERT_TRUE(m_drawing->saveAs(path("host.vdm")).ok());
    const OdDbHandle handles[] = {carrier.getHandle(), m_xref.getHandle(), m_inner.getHandle()};
    m_drawing = nullptr;
    m_drawing = read("host.vdm");
    m_path = open<PathCarrier>(m_drawing->getOdDbObjectId(handles[0]))->path;
    m_xref = m_drawing->getOdDbObjectId(handles[1]);
    m_inner = m_drawing->getOdDbObjectId(handles[2]);
  }

  OdDbHandle m_carrierHandle;
  OdDbObjectId m_xref, m_top, m_inner, m_line;
  VdmCompoundObjectId m_path;
};

TEST_F(VdmCompoundObjectIdTest, IdsOfOtherDrawingsAreKeptAsHandles) {
  EXPECT_EQ(kindsOf(m_path), "112");
  EXPECT_EQ(m_path.getHandle(2), m_carrierHandle);
  EXPECT_EQ(m_path.getPathPrefix(), OdDbObjectIdArray({m_top, m_inner}));
  EXPECT_EQ(vdmu::strCompoundObjectId(m_path),
            vdmu::strObjectIdArray({m_top, m_inner}, false) + L" | " + m_carrierHandle.ascii());
  m_path.setFullPath({m_top, m_line, m_inner, m_line}, false);
  m_path.setFullPath({m_inner, m_inner}, true);  // the front only
  EXPECT_EQ(m_path.getPathPrefix(), OdDbObjectIdArray({m_inner, m_inner, m_inner, m_line}));
}

TEST_F(VdmCompoundObjectIdTest, ExternalReferencesOfReadOnlyDrawingsResolveToo) {
  const OdDbHandle handles[] = {m_top.getHandle(), m_inner.getHandle()};
  reopen();
  const OdDbDatabasePtr assembly = m_host.createDatabase();
  const OdDbObjectId block = attach(assembly, "host.vdm", L"HOST");
  const OdDbDatabase* host = open<OdDbBlockTableRecord>(block)->xrefDatabase();
  ASSERT_TRUE(host->isReadOnly());
  OdDbObjectIdArray ids{addReference(assembly->getModelSpaceId(), block)};
  EXPECT_EQ(vdmu::makeIdArray({handles[0], handles[1], m_carrierHandle}, ids, false),
            vdmu::ePathOk);
  EXPECT_EQ(ids.size(), 4u);
}

TEST_F(VdmCompoundObjectIdTest, UnreferencedAndUnloadedDrawingsLeaveThePrefix) {
  OdDbObjectIdArray ids;
  EXPECT_EQ(OdDbXRefMan::unload(edit<OdDbBlockTableRecord>(m_xref)), eOk);
  EXPECT_EQ(m_path.getFullPathEx(ids, false), vdmu::ePathInvalid);
  EXPECT_EQ(ids, OdDbObjectIdArray({m_top, m_inner}));
  EXPECT_EQ(m_assertions.size(), 1u);
  EXPECT_EQ(OdDbXRefMan::load(edit<OdDbBlockTableRecord>(m_xref)), eOk);
  reopen();
  ASSERT_EQ(edit<OdDbBlockReference>(m_inner)->erase(), eOk);
  EXPECT_EQ(m_path.getFullPathEx(ids, /*openErased=*/true), vdmu::ePathXrefUnreferenced);
  EXPECT_EQ(ids.size(), 2u);
  EXPECT_EQ(m_assertions.size(), 1u);
}

TEST_F(VdmCompoundObjectIdTest, OrderGoesBySizeThenFromTheLeafUp) {
  const OdDbDatabasePtr other = m_host.createDatabase();
  const auto pathOf = [](const OdDbObjectIdArray& ids) {
    VdmCompoundObjectId path;
    path.setFullPath(ids, false);
    return path;
  };
  const OdDbObjectId zero = m_drawing->getLayerZeroId();
  const VdmCompoundObjectId rising[] = {
      pathOf({}),
      pathOf({m_line}),
      pathOf({m_line, zero}),  // the leaf decides
      pathOf({zero, m_line}),
      pathOf({m_line, m_line}),
      pathOf({zero, zero, zero}),
      pathOf({zero, zero, other->getLayerZeroId()}),  // the same handle, kept as one
  };
  for (std::size_t i = 0; i < std::size(rising); ++i) {
    for (std::size_t j = 0; j < std::size(rising); ++j) {
      EXPECT_EQ(rising[i].compareTo(rising[j]), i < j ? -1 : i > j ? 1 : 0) << i << ' ' << j;
    }
  }
}

TEST_F(VdmCompoundObjectIdTest, EveryCutRecordIsRefusedAndLeavesNoPath) {
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler writer(OdDbDwgFiler::kCopyFiler, buffer);
  VdmCompoundObjectId().dwgOutFields(&writer, nullptr);
  EXPECT_EQ(buffer.bytes, std::vector<OdUInt8>{0});
  buffer.clear();
  m_path.dwgOutFields(&writer, nullptr);
  for (std::size_t end = 0; end <= buffer.bytes.size(); ++end) {
    OdDbMemoryFiler reader(OdDbDwgFiler::kCopyFiler, buffer);
    reader.startReading(0, 0, end);
    VdmCompoundObjectId back = m_path;
    const OdResult raised = raisedBy([&] { EXPECT_EQ(back.dwgInFields(&reader, 0), eOk); });
    EXPECT_EQ(raised == eOk, end == buffer.bytes.size());
    EXPECT_EQ(back.compareTo(raised == eOk ? m_path : VdmCompoundObjectId()), 0);
  }
}

TEST_F(VdmCompoundObjectIdTest, ReadingTakesOtherKindsAndRefusesOtherRecords) {
  VdmCompoundObjectId path;
  const auto readBack = [&path](const wchar_t* marker, OdInt32 count) {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler writer(OdDbDwgFiler::kCopyFiler, buffer);
    writer.wrBool(true);
    writer.wrString(marker);
    writer.wrInt16(77);
    writer.wrInt32(count);
    writer.wrInt8(9);
    writer.wrInt8(5);
    writer.wrDbHandle(OdDbHandle(0x2A));
    MemoryReader reader(buffer);
    return raisedBy([&] { path.dwgInFields(&reader, 0); });
  };
  ASSERT_EQ(readBack(L"AcDbImpBlockRefPathObjectId", 1), eOk);
  EXPECT_EQ(kindsOf(path), "2");
  EXPECT_EQ(path.elements()[0].flag, 9);
  EXPECT_EQ(path.getHandle(0), OdDbHandle(0x2A));
  EXPECT_TRUE(path.topId().isNull());
  EXPECT_EQ(readBack(L"AcDbOther", 1), eCorruptData);
  EXPECT_EQ(readBack(L"AcDbImpBlockRefPathObjectId", -1), eCorruptData);
  EXPECT_EQ(readBack(L"AcDbImpBlockRefPathObjectId", 0x7FFFFFFF), eCorruptData);
  OdDbFilerBuffer nothing;
  MemoryReader reader(nothing);
  EXPECT_EQ(path.dwgInFields(&reader, -1), eNotApplicable);
}

TEST_F(VdmCompoundObjectIdTest, CloningTranslatesTheIdsAndKeepsSideStrings) {
  m_path.setSideStrings({OdString(L"side")});
  const OdDbObjectId carrier = addCarrier(m_modelSpace, m_path);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  const OdDbObjectId copies = addBlock(m_drawing, L"COPIES");
  ASSERT_EQ(m_drawing->deepCloneObjects({carrier, m_top}, copies, *mapping), eOk);
  const VdmCompoundObjectId cloned = open<PathCarrier>(vdmu::findClone(*mapping, carrier))->path;
  const OdDbObjectId top = vdmu::findClone(*mapping, m_top);
  EXPECT_EQ(cloned.getPathPrefix(), OdDbObjectIdArray({top, m_inner}));
  EXPECT_EQ(cloned.getHandle(0), top.getHandle());
  EXPECT_EQ(kindsOf(cloned), "112");
  EXPECT_EQ(cloned.sideStrings(), OdArray<OdString>({OdString(L"side")}));
}

}  // namespace
