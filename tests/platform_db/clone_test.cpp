// Tests of deep cloning within one drawing.
#include <random>

#include "clone_testing.h"
#include "platform/db/deep_clone.h"

namespace {

class OdDbClonerTest : public CloneTest {
 protected:
  OdDbObjectId dictionary() const { return m_drawing->getNamedObjectsDictionaryId(); }

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
      for (const double value : CloneNode::of(object)->values) text += std::to_string(value) + ",";
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
    node(nodes.back())->values.assign(random() % 5, 0.25 * static_cast<double>(i));
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

TEST_F(OdDbClonerTest, HooksFindTheClonesOfWhatTheirObjectOwns) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  const OdDbObjectId child = addChild(root, L"child");
  addChild(child, L"grandchild");
  addChild(root, L"second");
  OdUInt32 seen = 0;
  node(root)->clonesSeen = &seen;
  node(child)->clonesSeen = &seen;
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  EXPECT_EQ(seen, 3u);
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

/// Pairs in a plain map, behind those of another mapping.
class LayeredMapping : public OdDbIdMapping {
 public:
  explicit LayeredMapping(OdDbIdMapping& base) : m_base(base) {}
  void assign(const OdDbIdPair& pair) override { m_pairs[pair.key()] = pair; }
  bool compute(OdDbIdPair& pair) const override {
    const auto found = m_pairs.find(pair.key());
    if (found == m_pairs.end()) return m_base.compute(pair);
    pair = found->second;
    return true;
  }
  bool change(const OdDbIdPair& pair) override {
    if (!m_pairs.contains(pair.key())) return false;
    assign(pair);
    return true;
  }
  bool del(const OdDbObjectId& key) override { return m_pairs.erase(key) == 1; }
  OdDbIdMappingIterPtr newIterator() override { return m_base.newIterator(); }

 private:
  OdDbIdMapping& m_base;
  std::map<OdDbObjectId, OdDbIdPair> m_pairs;
};

TEST_F(OdDbClonerTest, DerivedMappingsServeAsWell) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  const OdDbObjectId from = addRoot(m_drawing, L"from");
  const OdDbObjectId to = addRoot(m_drawing, L"to");
  refer(root, OdDb::kSoftPointerRef, from);
  m_mapping->assign(OdDbIdPair(from, to));
  OdStaticRxObject<LayeredMapping> layered(*m_mapping);
  ASSERT_EQ(m_drawing->deepCloneObjects({root}, dictionary(), layered), eOk);
  OdDbIdPair pair(root);
  ASSERT_TRUE(layered.compute(pair));
  EXPECT_EQ(reference(pair.value(), OdDb::kSoftPointerRef), to);
  EXPECT_TRUE(cloneOf(m_mapping, root).isNull());
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

TEST_F(OdDbClonerTest, UndoTakesClonesBackAndRedoBringsThemWithTheirIds) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  refer(root, OdDb::kSoftPointerRef, addChild(root, L"child"));
  m_drawing->startUndoRecord();
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  const OdDbObjectId clone = cloneOf(m_mapping, root);
  const std::string state = dump(clone);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_TRUE(clone.isErased());
  EXPECT_TRUE(open<OdDbDictionary>(dictionary())->nameAt(clone).isEmpty());
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_EQ(dump(clone), state);
  EXPECT_EQ(open<OdDbDictionary>(dictionary())->nameAt(clone), OdString(L"$0$root"));
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

TEST_F(OdDbClonerTest, OneObjectClonedDirectlyIsTranslatedOnRequest) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  refer(root, OdDb::kSoftPointerRef, addChild(root, L"child"));
  {
    const OdDbObjectPtr owner = dictionary().safeOpenObject();
    EXPECT_FALSE(node(root)->deepClone(*m_mapping, owner).isNull());
    EXPECT_TRUE(node(root)->deepClone(*m_mapping, owner).isNull());
  }
  const OdDbObjectId clone = cloneOf(m_mapping, root);
  OdDbCloner::translateIds(*m_mapping, OdDbDwgFiler::kDeepCloneFiler);
  EXPECT_EQ(reference(clone, OdDb::kSoftPointerRef), reference(clone, OdDb::kHardOwnershipRef));
  EXPECT_EQ(reference(clone, OdDb::kSoftPointerRef).ownerId(), clone);
}

TEST_F(OdDbClonerTest, ObserversHearOfEveryClone) {
  struct Watcher : OdStaticRxObject<OdDbDatabaseReactor> {
    void objectAppended(const OdDbDatabase*, const OdDbObject* object) override {
      texts.push_back(std::string(static_cast<const CloneNode*>(object)->text.utf8()));
    }
    std::vector<std::string> texts;
  } watcher;
  struct Reactor : OdDbObjectReactor {
    void copied(const OdDbObject* object, const OdDbObject* clone) override {
      source = object->objectId();
      made = clone->objectId();
    }
    OdDbObjectId source, made;
  } reactor;
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  addChild(root, L"child");
  node(root)->addReactor(&reactor);
  m_drawing->addReactor(&watcher);
  ASSERT_EQ(deepClone({root}, dictionary()), eOk);
  m_drawing->removeReactor(&watcher);
  node(root)->removeReactor(&reactor);
  EXPECT_EQ(watcher.texts, (std::vector<std::string>{"root", "child"}));
  EXPECT_EQ(reactor.source, root);
  EXPECT_EQ(reactor.made, cloneOf(m_mapping, root));
}

}  // namespace
