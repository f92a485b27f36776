// Tests of deep cloning within one drawing.
#include <random>

#include "tests/platform/db/clone_testing.h"

namespace {

class OdDbClonerTest : public CloneTest {
 protected:
  [[nodiscard]] OdDbObjectId dictionary() const { return m_drawing->getNamedObjectsDictionaryId(); }

  OdResult deepClone(const OdDbObjectIdArray& ids, OdDbObjectId owner, bool defer = false) {
    return m_drawing->deepCloneObjects(ids, owner, *m_mapping, defer);
  }
  /// The tree of nodes as text: ids within the tree by their place in it, others by handle.
  static std::string dump(OdDbObjectId root) {
    std::map<OdDbObjectId, int> places;
    std::vector<OdDbObjectId> order{root};
    for (std::size_t i = 0; i < order.size(); ++i) {
      places.emplace(order[i], static_cast<int>(i));
      const OdDbObjectPtr object = order[i].safeOpenObject();
      for (const OdDbObjectId& id : CloneNode::of(object)->references[OdDb::kHardOwnershipRef]) {
        order.push_back(id);
      }
    }
    std::string text;
    for (const OdDbObjectId id : order) {
      const OdDbObjectPtr object = id.safeOpenObject();
      text += std::string(CloneNode::of(object)->text.utf8()) + ":";
      for (const OdDbObjectIdArray& ids : CloneNode::of(object)->references) {
        for (const OdDbObjectId& to : ids) {
          text += places.contains(to) ? " #" + std::to_string(places[to])
                                      : " " + std::to_string(OdUInt64{to.getHandle()});
        }
        text += ";";
      }
      const auto owner = places.find(object->ownerId());
      text += owner == places.end() ? "\n" : " in " + std::to_string(owner->second) + "\n";
    }
    return text;
  }

  OdDbDatabasePtr m_drawing = m_host.createDatabase();
  OdDbIdMappingPtr m_mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
};

TEST_F(OdDbClonerTest, RandomTreesEqualTheirSource) {
  std::mt19937 random(7);
  const OdDbObjectId outside = addRoot(m_drawing, L"outside");
  std::vector<OdDbObjectId> nodes{addRoot(m_drawing, L"tree")};
  for (OdUInt64 i = 0; i < 300; ++i) {
    nodes.push_back(addChild(nodes[random() % nodes.size()], L"child" + OdDbHandle(i).ascii()));
  }
  for (int i = 0; i < 600; ++i) {
    const auto type = random() % 2 == 0 ? OdDb::kSoftPointerRef : OdDb::kHardPointerRef;
    refer(nodes[random() % nodes.size()], type,
          i % 10 == 0 ? outside : nodes[random() % nodes.size()]);
  }
  const std::string before = dump(nodes[0]);
  ASSERT_EQ(deepClone({nodes[0]}, dictionary()), eOk);
  const OdDbObjectId clone = cloneOf(m_mapping, nodes[0]);
  EXPECT_NE(clone, nodes[0]);
  EXPECT_EQ(dump(clone), before);
  EXPECT_EQ(dump(nodes[0]), before);
  OdDbIdPair pair(nodes[5]);
  EXPECT_TRUE(m_mapping->compute(pair) && pair.isCloned() && !pair.isPrimary());
}

TEST_F(OdDbClonerTest, NothingIsClonedTwiceAndErasedObjectsAreLeftOut) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  const OdDbObjectId kept = addChild(root, L"kept");
  const OdDbObjectId erased = addChild(root, L"erased");
  erased.safeOpenObject(OdDb::kForWrite)->erase();
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  const OdDbObjectId clone = cloneOf(m_mapping, root);
  EXPECT_EQ(reference(clone, OdDb::kHardOwnershipRef, 0), cloneOf(m_mapping, kept));
  EXPECT_TRUE(reference(clone, OdDb::kHardOwnershipRef, 1).isNull());
  const OdUInt64 count = m_drawing->approxNumObjects();
  EXPECT_EQ(deepClone({root}, dictionary()), eOk);
  EXPECT_EQ(m_drawing->approxNumObjects(), count);
  EXPECT_EQ(deepClone({erased}, dictionary()), eWasErased);
  EXPECT_EQ(deepClone({OdDbObjectId()}, dictionary()), eNullObjectId);
}

TEST_F(OdDbClonerTest, ChainsAndCyclesOfOwnershipEnd) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  OdDbObjectId last = root;
  for (int i = 0; i < 10000; ++i) last = addChild(last, L"link");
  refer(last, OdDb::kHardOwnershipRef, root);
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  const OdDbObjectId clone = cloneOf(m_mapping, last);
  EXPECT_EQ(clone.ownerId(), cloneOf(m_mapping, last.ownerId()));
  EXPECT_EQ(reference(clone, OdDb::kHardOwnershipRef), cloneOf(m_mapping, root));
}

TEST_F(OdDbClonerTest, ExtensionDictionaryDataAndReactorsComeAlong) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  const OdDbObjectId child = addChild(root, L"child");
  const OdDbObjectId stranger = addRoot(m_drawing, L"stranger");
  m_drawing->newRegApp(L"TEST");
  {
    const CloneNodePtr object = open<CloneNode>(root, OdDb::kForWrite);
    object->addPersistentReactor(child);
    object->addPersistentReactor(stranger);
    const OdResBufPtr data = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(L"TEST"));
    const OdResBufPtr own = OdResBuf::newRb(OdResBuf::kDxfXdHandle, child.getHandle());
    data->setNext(own);
    own->setNext(OdResBuf::newRb(OdResBuf::kDxfXdHandle, stranger.getHandle()));
    object->setXData(data);
    const OdDbDictionaryPtr extension =
        open<OdDbDictionary>(object->createExtensionDictionary(), OdDb::kForWrite);
    extension->setAt(L"entry", CloneNode::createObject());
  }
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  const CloneNodePtr clone = node(cloneOf(m_mapping, root));
  const OdDbObjectId childClone = cloneOf(m_mapping, child);
  EXPECT_EQ(clone->getPersistentReactors(), (OdDbObjectIdArray{childClone, stranger}));
  EXPECT_EQ(clone->xData(L"TEST")->next()->getHandle(), childClone.getHandle());
  EXPECT_EQ(clone->xData(L"TEST")->last()->getHandle(), stranger.getHandle());
  EXPECT_EQ(node(root)->xData(L"TEST")->next()->getHandle(), child.getHandle());
  EXPECT_NE(clone->extensionDictionary(), node(root)->extensionDictionary());
  EXPECT_EQ(clone->extensionDictionary().ownerId(), clone->objectId());
  const OdDbObjectId entry = open<OdDbDictionary>(clone->extensionDictionary())->getAt(L"entry");
  ASSERT_FALSE(entry.isNull());
  EXPECT_EQ(entry.ownerId(), clone->extensionDictionary());
}

TEST_F(OdDbClonerTest, EntitiesAreAppendedInOrderAndBlocksLearnOfReferences) {
  const OdDbObjectId shown = addBlock(m_drawing, L"SHOWN");
  addLine(shown, 1);
  const OdDbObjectId from = addBlock(m_drawing, L"FROM");
  const OdDbObjectId to = addBlock(m_drawing, L"TO");
  const OdDbObjectId line = addLine(from, 2);
  const OdDbObjectId reference = addReference(from, shown);
  addLine(to, 3);
  ASSERT_EQ(deepClone({reference, line}, to), eOk);
  const OdDbObjectIdArray entities = open<OdDbBlockTableRecord>(to)->entityIds();
  ASSERT_EQ(entities.size(), 3u);
  EXPECT_EQ(entities[1], cloneOf(m_mapping, reference));
  EXPECT_EQ(entities[2], cloneOf(m_mapping, line));
  EXPECT_EQ(entities[1].ownerId(), to);
  EXPECT_EQ(open<OdDbBlockTableRecord>(shown)->getBlockReferenceIds(),
            (OdDbObjectIdArray{reference, entities[1]}));
}

TEST_F(OdDbClonerTest, ClonedBlocksGetFreeNamesAndTheirOwnContents) {
  const OdDbObjectId shown = addBlock(m_drawing, L"SHOWN");
  const OdDbObjectId block = addBlock(m_drawing, L"PART");
  const OdDbObjectId reference = addReference(block, shown);
  const OdDbObjectId anonymous = addBlock(m_drawing, L"*U");
  addReference(m_drawing->getModelSpaceId(), block);
  ASSERT_EQ(deepClone({block, anonymous}, m_drawing->getBlockTableId()), eOk);
  const OdDbBlockTableRecordPtr clone = open<OdDbBlockTableRecord>(cloneOf(m_mapping, block));
  EXPECT_EQ(clone->getName(), OdString(L"$0$PART"));
  EXPECT_EQ(clone->entityIds(), (OdDbObjectIdArray{cloneOf(m_mapping, reference)}));
  EXPECT_TRUE(clone->getBlockReferenceIds().isEmpty());
  EXPECT_EQ(open<OdDbBlockTableRecord>(shown)->getBlockReferenceIds().size(), 2u);
  EXPECT_EQ(open<OdDbBlockTableRecord>(cloneOf(m_mapping, anonymous))->getName(), OdString(L"*U2"));
  const OdDbIdMappingPtr again = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({block}, m_drawing->getBlockTableId(), *again), eOk);
  EXPECT_EQ(open<OdDbBlockTableRecord>(cloneOf(again, block))->getName(), OdString(L"$1$PART"));
}

TEST_F(OdDbClonerTest, AClonedLayoutBecomesAnAnonymousBlock) {
  const OdDbObjectId space = m_drawing->getModelSpaceId();
  addLine(space, 1);
  ASSERT_EQ(deepClone({space}, m_drawing->getBlockTableId()), eOk);
  const OdDbBlockTableRecordPtr clone = open<OdDbBlockTableRecord>(cloneOf(m_mapping, space));
  EXPECT_EQ(clone->getName(), OdString(L"*U1"));
  EXPECT_EQ(clone->entityIds().size(), 1u);
}

TEST_F(OdDbClonerTest, MappingsKeepFlagsAndTheOrderOfFirstAssignment) {
  const auto id = [this](OdUInt64 n) { return m_drawing->getOdDbObjectId(0x1000 + n, true); };
  m_mapping->assign(OdDbIdPair(id(3), id(30), true, true, false));
  m_mapping->assign(OdDbIdPair(id(1), id(10)));
  m_mapping->assign(OdDbIdPair(id(2), id(20)));
  m_mapping->assign(OdDbIdPair(id(3), id(31), true, false));
  EXPECT_TRUE(m_mapping->del(id(1)));
  EXPECT_FALSE(m_mapping->del(id(1)));
  m_mapping->assign(OdDbIdPair(id(1), id(11)));
  OdDbObjectIdArray values;
  OdDbIdPair pair;
  for (const OdDbIdMappingIterPtr it = m_mapping->newIterator(); !it->done(); it->next()) {
    EXPECT_TRUE(it->getMap(pair));
    values.append(pair.value());
  }
  EXPECT_EQ(values, (OdDbObjectIdArray{id(31), id(20), id(11)}));
  pair = OdDbIdPair(id(3));
  EXPECT_TRUE(m_mapping->compute(pair) && pair.isCloned() && !pair.isPrimary());
  EXPECT_TRUE(pair.isOwnerXlated());
  EXPECT_THROW(m_mapping->assign(OdDbIdPair()), OdError);
}

TEST_F(OdDbClonerTest, AFailureLeavesNoTrace) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  addChild(root, L"good");
  node(addChild(root, L"bad"))->failsToRead = true;
  const OdUInt64 count = m_drawing->approxNumObjects();
  const OdUInt32 entries = open<OdDbDictionary>(dictionary())->numEntries();
  EXPECT_EQ(deepClone({root}, dictionary()), eCorruptData);
  EXPECT_EQ(m_drawing->approxNumObjects(), count);
  EXPECT_EQ(open<OdDbDictionary>(dictionary())->numEntries(), entries);
  EXPECT_TRUE(m_mapping->newIterator()->done());
  EXPECT_EQ(m_drawing->numActiveTransactions(), 0u);
}

TEST_F(OdDbClonerTest, DeferredTranslationSeesClonesOfLaterCalls) {
  const OdDbObjectId first = addRoot(m_drawing, L"first");
  const OdDbObjectId second = addRoot(m_drawing, L"second");
  refer(first, OdDb::kSoftPointerRef, second);
  refer(second, OdDb::kSoftPointerRef, first);
  ASSERT_EQ(deepClone({first}, dictionary(), /*defer=*/true), eOk);
  EXPECT_EQ(reference(cloneOf(m_mapping, first), OdDb::kSoftPointerRef), second);
  ASSERT_EQ(deepClone({second}, dictionary()), eOk);
  EXPECT_EQ(reference(cloneOf(m_mapping, first), OdDb::kSoftPointerRef),
            cloneOf(m_mapping, second));
  EXPECT_EQ(reference(cloneOf(m_mapping, second), OdDb::kSoftPointerRef),
            cloneOf(m_mapping, first));
}

/// Notes what copies refer to when it hears of them.
class CopyWatch : public OdDbObjectReactor {
 public:
  std::vector<OdDbObjectId> seen;
  void copied(const OdDbObject*, const OdDbObject* clone) override {
    seen.push_back(static_cast<const CloneNode*>(clone)->references[OdDb::kSoftPointerRef][0]);
  }
};

TEST_F(OdDbClonerTest, ReactorsHearOfACopyOnceItIsWhole) {
  const OdDbObjectId first = addRoot(m_drawing, L"first");
  const OdDbObjectId second = addRoot(m_drawing, L"second");
  refer(first, OdDb::kSoftPointerRef, second);
  CopyWatch watch;
  node(first)->addReactor(&watch);
  ASSERT_EQ(deepClone({first}, dictionary(), /*defer=*/true), eOk);
  EXPECT_TRUE(watch.seen.empty());
  ASSERT_EQ(deepClone({second}, dictionary()), eOk);
  EXPECT_EQ(watch.seen, std::vector<OdDbObjectId>{cloneOf(m_mapping, second)});
  node(addChild(second, L"bad"))->failsToRead = true;
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  EXPECT_EQ(deepClone({first, second}, dictionary()), eCorruptData);
  EXPECT_EQ(watch.seen.size(), 1u) << "a copy that was taken back";
  node(first)->removeReactor(&watch);
}

TEST_F(OdDbClonerTest, ReplacingAnEntryByItselfChangesNothing) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  const OdDbObjectId child = addChild(root, L"child");
  const OdUInt64 count = m_drawing->approxNumObjects();
  m_mapping->setDuplicateRecordCloning(OdDb::kDrcReplace);
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  EXPECT_EQ(cloneOf(m_mapping, root), root);
  EXPECT_FALSE(child.isErased());
  EXPECT_EQ(reference(root, OdDb::kHardOwnershipRef), child);
  EXPECT_EQ(m_drawing->approxNumObjects(), count);
}

TEST_F(OdDbClonerTest, OwnedIdsOfAnotherDrawingAreLeftOut) {
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbObjectId foreign = addRoot(other, L"foreign");
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  refer(root, OdDb::kHardOwnershipRef, foreign);
  const OdUInt64 count = m_drawing->approxNumObjects();
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  EXPECT_TRUE(cloneOf(m_mapping, foreign).isNull());
  EXPECT_TRUE(reference(cloneOf(m_mapping, root), OdDb::kHardOwnershipRef).isNull());
  EXPECT_EQ(m_drawing->approxNumObjects(), count + 1);
}

}  // namespace
