// One list of fields gives the bytes of a record and the groups of its text.
#include "platform/db/field_list.h"

#include <functional>

#include "platform/db/block_table_record.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/material.h"
#include "platform/entities/block_reference.h"
#include "platform/entities/viewport.h"
#include "platform/filer/dxf_text_filer.h"
#include "platform/filer/file_filer.h"
#include "tests/platform/db/db_testing.h"

namespace {

class FieldListTest : public DbTest {
 protected:
  static std::string groupsOf(const OdDbObject* object) {
    OdDbTextDxfFiler filer;
    object->dxfOutFields(&filer);
    return filer.text();
  }
  /// The stored record, two hexadecimal digits a byte.
  static std::string bytesOf(const OdDbObject* object) {
    return bytesOf([object](OdDbDwgFiler& filer) { object->dwgOutFields(&filer); });
  }
  static std::string bytesOf(const std::function<void(OdDbDwgFiler&)>& write) {
    OdDbFileWriter writer(nullptr);
    write(writer);
    std::vector<OdUInt8> record;
    writer.assemble(record);
    std::string text;
    for (const OdUInt8 byte : record) {
      for (const int digit : {byte >> 4, byte & 15}) text += "0123456789ABCDEF"[digit];
    }
    return text;
  }
  static OdResult readGroups(OdDbObject* object, const std::string& text) {
    OdDbTextDxfFiler filer(text, nullptr);
    return object->dxfInFields(&filer);
  }
};

TEST_F(FieldListTest, ALineHasTheGroupsOfItsListAfterThoseOfEveryEntity) {
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setStartPoint({1, 2, 3});
  line->setEndPoint({4, 5, 6.5});
  line->setColorIndex(3);
  const std::string text = groupsOf(line);
  EXPECT_EQ(text,
            "100\nOdDbEntity\n340\n0\n420\n-1023213568\n341\n0\n370\n-1\n280\n0\n347\n0\n"
            "100\nOdDbLine\n10\n1\n20\n2\n30\n3\n11\n4\n21\n5\n31\n6.5\n210\n0\n220\n0\n230\n1\n");
  const OdDbLinePtr copy = OdDbLine::createObject();
  ASSERT_EQ(readGroups(copy, text), eOk);
  EXPECT_EQ(groupsOf(copy), text);
}

TEST_F(FieldListTest, GroupsComeInAnyOrderAndUnknownOnesArePassed) {
  const OdDbLinePtr line = OdDbLine::createObject();
  ASSERT_EQ(readGroups(line, "100\nOdDbEntity\n370\n25\n100\nOdDbLine\n21\n8\n1\nunknown\n11\n7\n"),
            eOk);
  EXPECT_EQ(line->endPoint(), OdGePoint3d(7, 8, 0));
  EXPECT_EQ(line->lineWeight(), OdDb::kLnWt025);
}

TEST_F(FieldListTest, BadGroupsAreRefused) {
  const std::string entity = "100\nOdDbEntity\n";
  for (const std::string& text :
       {std::string(), std::string("100\nOdDbLine\n"), entity, entity + "10\n1\n",
        entity + "370\n500\n100\nOdDbLine\n", entity + "280\n2\n100\nOdDbLine\n",
        entity + "420\n0\n100\nOdDbLine\n", entity + "100\nOdDbLine\n210\n1\n"}) {
    EXPECT_EQ(readGroups(OdDbLine::createObject(), text), eCorruptData) << text;
  }
}

TEST_F(FieldListTest, EveryListedFieldComesBackFromBothForms) {
  const OdDbViewportPtr viewport = OdDbViewport::createObject();
  viewport->setCenterPoint({1, 2, 3});
  viewport->setWidth(4);
  viewport->setHeight(5);
  viewport->setViewTarget({6, 7, 8});
  viewport->setViewDirection({9, 10, 11});
  viewport->setViewCenter({12, 13});
  viewport->setViewHeight(14);
  viewport->setTwistAngle(0.5);
  viewport->setNumber(15);
  viewport->setOn(false);
  viewport->setVisibility(OdDb::kInvisible);
  const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(L"Walls");
  layer->setColor(OdCmColor::fromRGB(1, 2, 3));
  layer->setIsLocked(true);
  layer->setLineWeight(OdDb::kLnWt025);
  const OdDbMaterialPtr material = OdDbMaterial::createObject();
  material->setName(L"steel");
  material->setDescription(L"dull");
  material->setDiffuse(OdCmColor::fromRGB(9, 8, 7));
  material->setOpacity(0.25);
  material->setShininess(0.75);
  const OdDbLinetypeTableRecordPtr linetype = OdDbLinetypeTableRecord::createObject();
  linetype->setComments(L"dash and dot");
  linetype->setDashes({2.5, -1, 0, -1});
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setBlockTransform(OdGeMatrix3d::translation({1, 2, 3}) *
                               OdGeMatrix3d::rotation(0.5, OdGeVector3d::kZAxis) *
                               OdGeMatrix3d::scaling(2));
  const OdDbBlockReferencePtr sheared = OdDbBlockReference::createObject();
  OdGeMatrix3d shear;
  shear(0, 1) = 0.25;
  ASSERT_EQ(sheared->setBlockTransform(shear), eOk);
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(L"plate");
  block->setOrigin({1, 2, 3});
  block->setComments(L"bought");
  block->setPathName(L"plate.vdm");
  block->setBlockInsertUnits(OdDb::kUnitsMillimeters);
  for (const OdDbObjectPtr& object :
       {OdDbObjectPtr(viewport), OdDbObjectPtr(layer), OdDbObjectPtr(material),
        OdDbObjectPtr(linetype), OdDbObjectPtr(reference), OdDbObjectPtr(sheared),
        OdDbObjectPtr(block)}) {
    SCOPED_TRACE(object->isA()->name().utf8());
    const std::string text = groupsOf(object);
    const OdDbObjectPtr fromGroups = OdDbObject::cast(object->isA()->create());
    ASSERT_NE(groupsOf(fromGroups), text);
    ASSERT_EQ(readGroups(fromGroups, text), eOk);
    EXPECT_EQ(groupsOf(fromGroups), text);
    const OdDbObjectPtr fromBytes = OdDbObject::cast(object->isA()->create());
    fromBytes->copyFrom(object);
    EXPECT_EQ(groupsOf(fromBytes), text);
  }
}

// One primitive after the other, as the records are described.
TEST_F(FieldListTest, RecordsWithListsAndPlacementsKeepTheirStoredOrder) {
  const OdDbLinetypeTableRecordPtr linetype = OdDbLinetypeTableRecord::createObject();
  linetype->setComments(L"dash");
  linetype->setDashes({2.5, -1});
  EXPECT_EQ(bytesOf(linetype), bytesOf([&](OdDbDwgFiler& filer) {
              linetype->OdDbSymbolTableRecord::dwgOutFields(&filer);
              filer.wrUInt8(1);
              filer.wrString(L"dash");
              filer.wrInt32(2);
              for (const double dash : {2.5, -1.0}) filer.wrDouble(dash);
            }));
  const OdDbObjectId block = addBlock(L"PART");
  const OdDbObjectId line = DbTest::addLine(block);
  const OdDbObjectId id = addReference(m_database->getModelSpaceId(), block);
  OdGeMatrix3d shear;
  shear(0, 1) = 0.25;
  for (const bool isExact : {false, true}) {
    const OdDbBlockReferencePtr reference = edit<OdDbBlockReference>(id);
    if (isExact) reference->setBlockTransform(shear);
    EXPECT_EQ(bytesOf(reference), bytesOf([&](OdDbDwgFiler& filer) {
                reference->OdDbEntity::dwgOutFields(&filer);
                filer.wrUInt8(1);
                filer.wrHardPointerId(block);
                filer.wrPoint3d(reference->position());
                filer.wrScale3d(reference->scaleFactors());
                filer.wrDouble(reference->rotation());
                filer.wrVector3d(reference->normal());
                filer.wrBool(isExact);
                for (int i = 0; isExact && i < 12; ++i) filer.wrDouble(shear.getElements()[i]);
              }));
  }
  const OdDbBlockTableRecordPtr record = edit<OdDbBlockTableRecord>(block);
  record->setOrigin({1, 2, 3});
  record->setComments(L"bought");
  record->setBlockInsertUnits(OdDb::kUnitsInches);
  EXPECT_EQ(bytesOf(record), bytesOf([&](OdDbDwgFiler& filer) {
              record->OdDbSymbolTableRecord::dwgOutFields(&filer);
              filer.wrUInt8(1);
              filer.wrPoint3d({1, 2, 3});
              filer.wrInt32(OdDb::kUnitsInches);
              filer.wrString(L"bought");
              filer.wrString(OdString());
              filer.wrBool(false);
              filer.wrUInt8(OdDb::kXrfNotAnXref);
              filer.wrInt32(1);
              filer.wrHardOwnershipId(line);
              filer.wrInt32(1);
              filer.wrSoftPointerId(id);
            }));
}

TEST_F(FieldListTest, ListsAndPlacementsOfGroupsReplaceWhatWasThere) {
  const OdDbLinetypeTableRecordPtr linetype = OdDbLinetypeTableRecord::createObject();
  linetype->setDashes({1, -1});
  const std::string text = groupsOf(linetype);
  for (int round = 0; round < 2; ++round) ASSERT_EQ(readGroups(linetype, text), eOk);
  EXPECT_EQ(linetype->dashes(), (OdDbDashArray{1, -1}));
  std::string tooMany = text;
  for (OdUInt32 i = 0; i < OdDbLinetypeTableRecord::kMaxDashes - 1; ++i) tooMany += "49\n1\n";
  EXPECT_EQ(readGroups(linetype, tooMany), eCorruptData);
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  const std::string plain = groupsOf(reference);
  OdGeMatrix3d shear;
  shear(0, 1) = 0.25;
  reference->setBlockTransform(shear);
  ASSERT_EQ(readGroups(reference, plain), eOk);
  EXPECT_EQ(reference->blockTransform(), OdGeMatrix3d::kIdentity);
  EXPECT_EQ(readGroups(reference, plain + "42\n0\n"), eCorruptData);
}

TEST_F(FieldListTest, ABlockNamesItsEntitiesInOrderAndWhatShowsIt) {
  const OdDbDatabasePtr drawing = m_host.createDatabase();
  const OdDbObjectId block = addBlock(drawing, L"PART");
  const OdDbObjectId first = DbTest::addLine(block), erased = DbTest::addLine(block),
                     last = DbTest::addLine(block);
  const OdDbObjectId reference = addReference(drawing->getModelSpaceId(), block);
  edit<OdDbEntity>(erased)->erase();
  const OdDbBlockTableRecordPtr record = open<OdDbBlockTableRecord>(block);
  const std::string text = groupsOf(record);
  const auto group = [](const char* code, const OdDbObjectId& id) {
    return std::string(code) + "\n" + std::string(id.getHandle().ascii().utf8()) + "\n";
  };
  const std::string lists = group("360", first) + group("360", last) + group("331", reference);
  ASSERT_GE(text.size(), lists.size());
  EXPECT_EQ(text.substr(text.size() - lists.size()), lists);
}

}  // namespace
