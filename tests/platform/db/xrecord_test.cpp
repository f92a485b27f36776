// Xrecords: chains, ids by code, filing in both forms.
#include "platform/db/xrecord.h"

#include "platform/filer/dxf_text_filer.h"
#include "platform/filer/id_filer.h"
#include "tests/platform/db/db_testing.h"

namespace {

class OdDbXrecordTest : public DbTest {
 protected:
  OdResBufPtr makeChain() {
    const OdResBufPtr chain = OdResBuf::newRb(1, OdString(L"\u00E4 text\nof two lines"));
    OdResBuf* tail = chain;
    tail = tail->setNext(OdResBuf::newRb(10, OdGePoint3d(0.1, -2e300, 3)));
    tail = tail->setNext(OdResBuf::newRb(40, 0.1 + 0.2));
    tail = tail->setNext(OdResBuf::newRb(70, -3));
    tail = tail->setNext(OdResBuf::newRb(90, 70000));
    tail = tail->setNext(OdResBuf::newRb(160, 5));
    tail = tail->setNext(OdResBuf::newRb(290, 1));
    tail = tail->setNext(OdResBuf::newRb(320, OdDbHandle(0x1F)));
    tail = tail->setNext(OdResBuf::newRb(330, m_database->getModelSpaceId()));
    tail = tail->setNext(OdResBuf::newRb(340, m_database->getLayerZeroId()));
    for (const OdUInt32 size : {3u, 127u, 300u}) {
      const OdResBufPtr bytes = OdResBuf::newRb(310);
      OdBinaryData data;
      for (OdUInt32 i = 0; i < size; ++i) data.append(static_cast<OdUInt8>(i * 7));
      bytes->setBinaryChunk(data);
      tail = tail->setNext(bytes);
    }
    return chain;
  }
  static void expectEqual(const OdResBufPtr& left, const OdResBufPtr& right) {
    OdResBufPtr a = left;
    OdResBufPtr b = right;
    for (; !a.isNull() && !b.isNull(); a = a->next(), b = b->next()) {
      EXPECT_TRUE(a->valueEquals(*b)) << "code " << a->restype() << " and " << b->restype();
    }
    EXPECT_TRUE(a.isNull() && b.isNull()) << "chains of different lengths";
  }
};

TEST_F(OdDbXrecordTest, KeepsACopyOfItsChain) {
  const OdDbXrecordPtr record = OdDbXrecord::createObject();
  const OdResBufPtr chain = makeChain();
  ASSERT_EQ(record->setFromRbChain(chain), eOk);
  chain->setString("changed");
  record->rbChain()->setString("changed, too");
  expectEqual(record->rbChain(), makeChain());
  for (const int bad : {0, 100, 1000, 1071, 85, -5}) {
    EXPECT_EQ(record->setFromRbChain(OdResBuf::newRb(bad)), eInvalidInput) << "code " << bad;
  }
  expectEqual(record->rbChain(), makeChain());
  ASSERT_EQ(record->setFromRbChain(nullptr), eOk);
  EXPECT_TRUE(record->rbChain().isNull());
}

TEST_F(OdDbXrecordTest, FilesIdsAsTheirCodesSay) {
  const OdDbXrecordPtr record = OdDbXrecord::createObject();
  ASSERT_EQ(record->setFromRbChain(makeChain()), eOk);
  OdDbIdFiler filer;
  record->dwgOutFields(&filer);
  ASSERT_EQ(filer.ids().size(), 2u);
  EXPECT_EQ(filer.ids()[0].type, OdDb::kSoftPointerRef);
  EXPECT_EQ(filer.ids()[1].type, OdDb::kHardPointerRef);
  EXPECT_EQ(OdResBuf::referenceOf(350), OdDb::kSoftOwnershipRef);
  EXPECT_EQ(OdResBuf::referenceOf(369), OdDb::kHardOwnershipRef);
}

TEST_F(OdDbXrecordTest, ReadsBackFromBytesAndGroupsAndUndo) {
  const OdDbObjectId id = rootDictionary()->setAt("x", OdDbXrecord::createObject());
  m_database->startUndoRecord();
  const std::string before = stateOf(id);
  ASSERT_EQ(edit<OdDbXrecord>(id)->setFromRbChain(makeChain()), eOk);
  edit<OdDbXrecord>(id)->setMergeStyle(OdDb::kDrcReplace);
  expectTruncationsFail(id);

  const OdDbXrecordPtr copy = OdDbXrecord::createObject();
  copy->copyFrom(open<OdDbXrecord>(id));
  expectEqual(copy->rbChain(), makeChain());

  OdDbTextDxfFiler out;
  open<OdDbXrecord>(id)->dxfOutFields(&out);
  OdDbTextDxfFiler in(
      out.text(), nullptr,
      [](void* database, const OdDbHandle& handle) {
        return static_cast<OdDbDatabase*>(database)->getOdDbObjectId(handle);
      },
      m_database.get());
  const OdDbXrecordPtr read = OdDbXrecord::createObject();
  ASSERT_EQ(read->dxfInFields(&in), eOk);
  expectEqual(read->rbChain(), makeChain());
  EXPECT_EQ(read->mergeStyle(), OdDb::kDrcReplace);
  expectUndone(id, before);
}

}  // namespace
