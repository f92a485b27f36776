// Tests of bags and objects that are kept beside other objects of a drawing.
#include "vdm_db/properties/vdm_db_extension_data.h"

#include <gtest/gtest.h>

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/host_app_services.h"
#include "platform/db/xrecord.h"
#include "platform/filer/memory_filer.h"
#include "tests/support/module_testing.h"
#include "tests/support/status_testing.h"
#include "tests/vdm_db/properties/property_testing.h"
#include "vdm_db/properties/vdm_serialized_object.h"

using namespace property_testing;

namespace {

// A drawing with one object to hang data on.
class VdmDbExtensionDataTest : public virtual VdmModule, public testing::Test {
 protected:
  void SetUp() override {
    m_database = m_services.createDatabase();
    m_host = addHost("host");
    m_database->startUndoRecord();
  }
  OdDbObjectId addHost(const char* name) {
    const OdDbDictionaryPtr root =
        m_database->getNamedObjectsDictionaryId().safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
    const OdDbXrecordPtr host = OdDbXrecord::createObject();
    return root->setAt(name, host.get());
  }
  OdDbObjectPtr open(OdDb::OpenMode mode = OdDb::kForRead) { return m_host.safeOpenObject(mode); }
  void write(const VdmProperties& bag) { bag.writeToDbObject(open(OdDb::kForWrite).get()); }
  bool read(VdmProperties& bag) { return bag.readFromDbObject(open().get()); }
  void expectKept(const VdmProperties& bag) {
    VdmProperties back;
    ASSERT_TRUE(read(back));
    EXPECT_EQ(flatOf(back), flatOf(bag));
  }
  // Bytes of the extended data; -1 without any, 0 when the first record stands alone.
  int chunkSize() {
    const OdResBufPtr chain = open()->xData(L"VDM_DB");
    if (chain.isNull()) return -1;
    return chain->next().isNull() ? 0 : static_cast<int>(chain->next()->getBinaryChunk().size());
  }
  bool hasFallback() {
    const OdDbDictionaryPtr dictionary = open()->extensionDictionary().openAs<OdDbDictionary>();
    return !dictionary.isNull() && dictionary->has(L"VDM_DB");
  }
  // A bag whose flat form has exactly this size: 12 bytes go to the entry around the blob.
  static VdmProperties bagOfSize(std::size_t size) {
    VdmProperties bag;
    bag.setProperty(L"b", VdmBlob(size - 12, 'x'));
    return bag;
  }

  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_database;
  OdDbObjectId m_host;
};

TEST_F(VdmDbExtensionDataTest, KeepsBagsBySize) {
  for (const std::size_t size : {100u, 15999u, 16000u, 100000u}) {
    SCOPED_TRACE(size);
    const VdmProperties bag = bagOfSize(size);
    ASSERT_EQ(flatOf(bag).size(), size);
    write(VdmProperties());
    write(bag);
    EXPECT_EQ(chunkSize() > 0, size < 16000);
    EXPECT_EQ(hasFallback(), size >= 16000);
    expectKept(bag);
  }
  write(VdmProperties());
  EXPECT_FALSE(hasFallback());
  EXPECT_LT(chunkSize(), 0);
  EXPECT_TRUE(open()->extensionDictionary().isErased());
}

TEST_F(VdmDbExtensionDataTest, RefusesToLeaveAFallbackThatIsOpen) {
  write(bagOfSize(20000));
  {
    const OdDbDictionaryPtr dictionary = open()->extensionDictionary().openAs<OdDbDictionary>();
    const OdDbObjectPtr reader = dictionary->getAt(L"VDM_DB", OdDb::kForNotify);
    ASSERT_FALSE(reader.isNull());
    EXPECT_THROW(write(VdmProperties()), OdError);
  }
  expectKept(bagOfSize(20000));
}

TEST_F(VdmDbExtensionDataTest, UndoesBothFormsAndPrefersExtendedData) {
  write(bagOfSize(50));
  m_database->startUndoRecord();
  write(bagOfSize(20000));
  ASSERT_EQ(m_database->undo(), eOk);
  expectKept(bagOfSize(50));
  EXPECT_FALSE(hasFallback());
  ASSERT_EQ(m_database->redo(), eOk);
  expectKept(bagOfSize(20000));
  write(bagOfSize(50));
  EXPECT_TRUE(hasFallback());
  VdmProperties unreadable;
  unreadable.setProperty(L"text", OdString(L'x', 32768));
  EXPECT_THROW(write(unreadable), OdError);
  expectKept(bagOfSize(50));
}

TEST_F(VdmDbExtensionDataTest, CopiesBlobsByteForByte) {
  VdmProperties bag = bagOfSize(20000);
  bag.setProperty(L"h", m_host.getHandle());
  write(bag);
  OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  ASSERT_EQ(m_database->deepCloneObjects({m_host}, open()->ownerId(), *mapping), eOk);
  OdDbIdPair pair(m_host);
  ASSERT_TRUE(mapping->compute(pair));
  m_host = pair.value();
  expectKept(bag);
}

TEST_F(VdmDbExtensionDataTest, AnswersDamageWithFalse) {
  m_database->newRegApp(L"VDM_DB");
  for (const char* hex : {"01 00 00 00 01 00 61 05", "02 00 00 00 01 00 61 05 01 00", "01"}) {
    const OdResBufPtr chain = OdResBuf::newRb(1001, OdString("VDM_DB"));
    VdmFlatFiler filer;
    filer.clear();
    const std::vector<char> bytes = bytesOf(hex);
    filer.wrBytes(bytes.data(), static_cast<OdUInt32>(bytes.size()));
    filer.appendToResBuf(chain.get());
    open(OdDb::kForWrite)->setXData(chain.get());
    VdmProperties back;
    EXPECT_FALSE(read(back)) << hex;
  }
}

// ---- Erased ids

TEST_F(VdmDbExtensionDataTest, LeavesErasedIdsOutOfFilesOnly) {
  const OdDbObjectId erased = addHost("erased");
  ASSERT_EQ(erased.safeOpenObject(OdDb::kForWrite)->erase(), eOk);
  VdmProperties bag(VdmProperties::kDropErasedIds);
  bag.setProperty(L"ids", OdDbObjectIdArray{erased, m_host, OdDbObjectId()}, OdDb::kSoftPointerRef);
  bag.setProperty(L"one", erased, OdDb::kHardPointerRef);
  for (const bool isFile : {true, false}) {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(isFile ? OdDbDwgFiler::kFileFiler : OdDbDwgFiler::kCopyFiler, buffer);
    bag.dwgOutFields(&filer);
    filer.startReading(0, 0);
    VdmProperties read;
    ASSERT_EQ(read.dwgInFields(&filer), eOk);
    OdDbObjectIdArray ids;
    OdDbTypedId one;
    EXPECT_TRUE(read.getProperty(L"ids", ids) && read.getProperty(L"one", one));
    EXPECT_EQ(ids.size(), isFile ? 2u : 3u);
    EXPECT_EQ(ids.contains(erased), !isFile);
    EXPECT_EQ(one, OdDbTypedId(isFile ? OdDbObjectId() : erased, OdDb::kHardPointerRef));
  }
}

// ---- Serialised objects

TEST_F(VdmDbExtensionDataTest, RebuildsASerialisedObjectApartFromTheBag) {
  const OdDbXrecordPtr source = OdDbXrecord::createObject();
  EXPECT_THROW(
      VdmWriteSerializedObject(OdDbDictionary::desc(), source.get(), open(OdDb::kForWrite).get()),
      OdError);
  EXPECT_FALSE(hasFallback());
  EXPECT_THROW(VdmWriteSerializedObject(OdDbXrecord::desc(), source.get(), open().get()), OdError);
  write(bagOfSize(20000));
  ASSERT_EQ(source->setFromRbChain(OdResBuf::newRb(70, 5).get()), eOk);
  VdmWriteSerializedObject(OdDbXrecord::desc(), source.get(), open(OdDb::kForWrite).get());
  write(VdmProperties());
  for (OdRxClass* asked : {OdDbXrecord::desc(), OdDbObject::desc()}) {
    const OdDbXrecordPtr back = OdDbXrecord::cast(VdmReadSerializedObject(asked, open().get()));
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back->database(), nullptr);
    EXPECT_TRUE(back->rbChain()->valueEquals(*source->rbChain()));
  }
  for (const std::size_t size : {std::size_t{32767}, std::size_t{32768}}) {
    const OdDbXrecordPtr longer = OdDbXrecord::createObject();
    const OdResBufPtr text = OdResBuf::newRb(1, OdString(std::string(size, 'x')));
    ASSERT_EQ(longer->setFromRbChain(text), eOk);
    const auto keep = [&] {
      VdmWriteSerializedObject(OdDbXrecord::desc(), longer.get(), open(OdDb::kForWrite).get());
    };
    EXPECT_EQ(raisedBy(keep), size > 32767 ? eLimitExceeded : eOk);
    const OdDbXrecordPtr back = VdmReadSerializedObject(OdDbXrecord::desc(), open().get());
    ASSERT_FALSE(back.isNull()) << "what was there is kept";
    EXPECT_EQ(back->rbChain()->getString().getLength(), 32767);
  }
  EXPECT_TRUE(VdmReadSerializedObject(L"NoSuchClass", open().get()).isNull());
  EXPECT_TRUE(VdmReadSerializedObject(VdmDbExtensionData::desc(), open().get()).isNull());
  write(bagOfSize(20000));
  VdmWriteSerializedObject(OdDbXrecord::desc(), nullptr, open(OdDb::kForWrite).get());
  EXPECT_TRUE(VdmReadSerializedObject(OdDbXrecord::desc(), open().get()).isNull());
  expectKept(bagOfSize(20000));
}

}  // namespace
