// Objects and small verbs for the tests of cloning, external references and auditing.
#pragma once

#include <map>
#include <vector>

#include "platform/cloning/id_mapping.h"
#include "platform/db/layer_table.h"
#include "platform/entities/block_reference.h"
#include "tests/platform_db/db_testing.h"

/// An object with a value and any number of references of each type. It neither lists nor loses
/// anything by itself: what it holds is what it files.
class CloneNode : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(CloneNode)

  OdString text;
  OdDbObjectIdArray references[4];  // by OdDb::ReferenceType
  bool failsToRead = false;         // filed; a copy of it cannot be read

  static const CloneNode* of(const OdDbObjectPtr& object) {
    return static_cast<const CloneNode*>(object.get());
  }

  void dwgOutFields(OdDbDwgFiler* filer) const override {
    OdDbObject::dwgOutFields(filer);
    filer->wrString(text);
    filer->wrBool(failsToRead);
    for (int type = 0; type < 4; ++type) {
      const OdDbObjectIdArray& ids = references[type];
      filer->wrInt32(static_cast<OdInt32>(ids.size()));
      for (const OdDbObjectId& id : ids) filer->wrId(static_cast<OdDb::ReferenceType>(type), id);
    }
  }

  OdResult dwgInFields(OdDbDwgFiler* filer) override {
    const OdResult result = OdDbObject::dwgInFields(filer);
    if (result != eOk) return result;
    text = filer->rdString();
    failsToRead = filer->rdBool();
    for (int type = 0; type < 4; ++type) {
      references[type].clear();
      for (OdUInt32 count = filer->rdCount(); count > 0; --count) {
        references[type].append(filer->rdId(static_cast<OdDb::ReferenceType>(type)));
      }
    }
    const bool cloning = filer->filerType() == OdDbDwgFiler::kDeepCloneFiler ||
                         filer->filerType() == OdDbDwgFiler::kWblockCloneFiler;
    return failsToRead && cloning ? eCorruptData : eOk;
  }
};
using CloneNodePtr = OdSmartPtr<CloneNode>;

/// A host with drawings, and verbs for making nodes in them.
class CloneTest : public DbTest {
 protected:
  static void SetUpTestSuite() {
    DbTest::SetUpTestSuite();
    CloneNode::rxInit();
  }
  static void TearDownTestSuite() {
    CloneNode::rxUninit();
    DbTest::TearDownTestSuite();
  }

  static CloneNodePtr node(OdDbObjectId id) { return open<CloneNode>(id); }

  /// A node in the named objects dictionary.
  static OdDbObjectId addRoot(OdDbDatabase* drawing, const wchar_t* name) {
    const OdDbDictionaryPtr root =
        open<OdDbDictionary>(drawing->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    const CloneNodePtr made = CloneNode::createObject();
    made->text = name;
    return root->setAt(name, made);
  }
  /// A node that `owner` owns hard.
  static OdDbObjectId addChild(OdDbObjectId owner, const OdString& text) {
    const CloneNodePtr made = CloneNode::createObject();
    made->text = text;
    const OdDbObjectId id = owner.originalDatabase()->addOdDbObject(made, owner);
    refer(owner, OdDb::kHardOwnershipRef, id);
    return id;
  }
  static void refer(OdDbObjectId from, OdDb::ReferenceType type, OdDbObjectId to) {
    const CloneNodePtr object = open<CloneNode>(from, OdDb::kForWrite);
    object->assertWriteEnabled();
    object->references[type].append(to);
  }
  static OdDbObjectId addBlock(OdDbDatabase* drawing, const wchar_t* name) {
    const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    return open<OdDbBlockTable>(drawing->getBlockTableId(), OdDb::kForWrite)->add(block);
  }
  static OdDbObjectId addLayer(OdDbDatabase* drawing, const wchar_t* name, OdUInt16 color = 7) {
    const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(name);
    layer->setColor(OdCmColor::fromIndex(color));
    return open<OdDbLayerTable>(drawing->getLayerTableId(), OdDb::kForWrite)->add(layer);
  }
  /// A line from the origin along X.
  static OdDbObjectId addLine(OdDbObjectId block, double length, OdDbObjectId layer = {}) {
    const OdDbLinePtr line = OdDbLine::createObject();
    line->setEndPoint(OdGePoint3d(length, 0, 0));
    if (!layer.isNull()) line->setLayer(layer);
    return open<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(line);
  }
  static double length(OdDbObjectId line) { return open<OdDbLine>(line)->endPoint().x; }
  static OdDbObjectId addReference(OdDbObjectId owner, OdDbObjectId block) {
    const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    reference->setBlockTableRecord(block);
    return open<OdDbBlockTableRecord>(owner, OdDb::kForWrite)->appendOdDbEntity(reference);
  }
  static OdDbObjectId reference(OdDbObjectId from, OdDb::ReferenceType type, OdUInt32 index = 0) {
    return CloneNode::of(from.safeOpenObject())->references[type].getAt(index);
  }
  static OdDbObjectId cloneOf(const OdDbIdMappingPtr& mapping, OdDbObjectId source) {
    OdDbIdPair pair(source);
    return mapping->compute(pair) ? pair.value() : OdDbObjectId::kNull;
  }
};
