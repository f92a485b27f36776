// One list of fields gives the bytes of a record and the groups of its text.
#include "platform/db/field_list.h"

#include "platform/db/layer_table.h"
#include "platform/db/material.h"
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
    OdDbFileWriter writer(nullptr);
    object->dwgOutFields(&writer);
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
  for (const OdDbObjectPtr& object :
       {OdDbObjectPtr(viewport), OdDbObjectPtr(layer), OdDbObjectPtr(material)}) {
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

}  // namespace
