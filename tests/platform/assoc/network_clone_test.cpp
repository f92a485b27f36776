// Networks and variables under deep clone and wblock clone.
#include <set>

#include "platform/cloning/id_mapping.h"
#include "platform/db/audit_info.h"
#include "tests/platform/assoc/network_testing.h"

namespace {

class NetworkClone : public NetworkTest {
 protected:
  static OdDbObjectId cloneOf(const OdDbIdMappingPtr& mapping, OdDbObjectId source) {
    OdDbIdPair pair(source);
    return mapping->compute(pair) ? pair.value() : OdDbObjectId::kNull;
  }
  static std::set<std::string> names(OdDbObjectId network) {
    std::set<std::string> all;
    for (const OdDbObjectId& id : open<OdDbAssocNetwork>(network)->getActions()) {
      all.insert(name(id) + " = " + expression(id));
    }
    return all;
  }
  /// Audit finds nothing, and every dependency of the network leads into it.
  static void expectSound(OdDbObjectId network) {
    OdDbAuditInfo info;
    network.originalDatabase()->audit(&info);
    EXPECT_EQ(info.numErrors(), 0U) << (info.lines().isEmpty() ? "" : info.lines()[0].utf8());
    for (const OdDbObjectId& id : open<OdDbAssocNetwork>(network)->getActions()) {
      EXPECT_EQ(id.ownerId(), network);
      for (const OdDbObjectId read : used(id)) EXPECT_EQ(read.ownerId(), network);
      for (const OdDbObjectId user : users(id)) EXPECT_EQ(user.ownerId(), network);
    }
  }

  OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
};

TEST_F(NetworkClone, BlockTakesItsNetworkAlong) {
  const OdDbObjectId block = addBlock(drawing, L"part");
  const OdDbObjectId source = networkOf(block);
  const OdDbObjectId a = add(source, L"a", L"2");
  const OdDbObjectId b = add(source, L"b", L"a * 3");
  ASSERT_EQ(evaluate(source), eOk);
  ASSERT_EQ(drawing->deepCloneObjects({block}, drawing->getBlockTableId(), *mapping), eOk);
  const OdDbObjectId clone = cloneOf(mapping, source);
  EXPECT_EQ(names(clone), names(source));
  expectSound(clone);
  EXPECT_EQ(open<OdDbAssocAction>(cloneOf(mapping, b))->objectThatOwnsNetworkInstance(),
            cloneOf(mapping, block));
  EXPECT_EQ(setValue(cloneOf(mapping, a), 5), eOk);
  ASSERT_EQ(evaluate(clone), eOk);
  EXPECT_DOUBLE_EQ(value(cloneOf(mapping, b)), 15.0);
  EXPECT_DOUBLE_EQ(value(b), 6.0);
  EXPECT_EQ(status(source), kAssocUpToDate);
}

// A swap: the clone of `b` becomes b_1 and that of `b_1` b_1_1, so texts change at once.
TEST_F(NetworkClone, VariablesComeWithTheirDefinitionsUnderFreeNames) {
  const OdDbObjectId source = networkOf(addBlock(drawing, L"from"));
  const OdDbObjectId target = networkOf(addBlock(drawing, L"to"));
  add(source, L"b", L"2");
  add(source, L"b_1", L"b + 1");
  const OdDbObjectId c = add(source, L"c", L"b * 10 + B_1");
  add(source, L"unused", L"0");
  add(target, L"b", L"100");
  ASSERT_EQ(evaluate(target), eOk);
  const OdDbObjectId block = open<OdDbAssocNetwork>(target)->objectThatOwnsNetworkInstance();
  ASSERT_EQ(drawing->deepCloneObjects({c}, block, *mapping), eOk);
  const OdDbObjectId clone = cloneOf(mapping, c);
  ASSERT_EQ(clone.ownerId(), target);
  EXPECT_EQ(open<OdDbAssocNetwork>(target)->getActions().size(), 4U);
  expectSound(target);
  expectSound(source);
  ASSERT_EQ(evaluate(target), eOk);
  EXPECT_DOUBLE_EQ(value(clone), 23.0);
  EXPECT_EQ(setValue(used(clone)[0], 4), eOk);
  ASSERT_EQ(evaluate(target), eOk);
  EXPECT_DOUBLE_EQ(value(clone), 45.0);
  EXPECT_EQ(set(clone, OdString(expression(clone)) + L" + 0"), "")
      << "the text has the names of the clones";
  ASSERT_EQ(evaluate(target), eOk);
  EXPECT_DOUBLE_EQ(value(clone), 45.0);

  // Within its own network a copy reads what the original reads.
  mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(drawing->deepCloneObjects({c}, source, *mapping), eOk);
  EXPECT_EQ(name(cloneOf(mapping, c)), "c_1");
  EXPECT_EQ(used(cloneOf(mapping, c)), used(c));
  expectSound(source);
}

TEST_F(NetworkClone, ExchangedIdsTakeTheirLinksAlong) {
  const OdDbObjectId other = networkOf(addBlock(drawing, L"other"));
  const OdDbObjectId a = add(L"a", L"2");
  const OdDbObjectId b = add(L"b", L"a + 1");
  const OdDbObjectId c = add(other, L"a", L"5");
  const OdDbObjectId d = add(other, L"d", L"a + 1");
  ASSERT_EQ(evaluate(), eOk);
  ASSERT_EQ(evaluate(other), eOk);
  drawing->startUndoRecord();
  edit<OdDbAssocVariable>(a)->swapIdWith(c);
  EXPECT_DOUBLE_EQ(value(a), 5.0);
  expectSound(network);
  expectSound(other);
  EXPECT_EQ(setValue(a, 7), eOk);
  EXPECT_DOUBLE_EQ(evaluated(b), 8.0);
  ASSERT_EQ(drawing->undo(), eOk);
  EXPECT_DOUBLE_EQ(value(a), 2.0);
  EXPECT_EQ(setValue(c, 10), eOk);
  ASSERT_EQ(evaluate(other), eOk);
  EXPECT_DOUBLE_EQ(value(d), 11.0);
  EXPECT_DOUBLE_EQ(value(b), 3.0);
}

TEST_F(NetworkClone, OtherDrawingsGetDefinitionsOfAnyDepth) {
  OdDbObjectId last = add(L"v0", L"1 mm");
  for (int i = 1; i < 20000; ++i) {
    last = add(OdString().format(L"v%d", i), OdString().format(L"v%d + 1", i - 1));
  }
  ASSERT_EQ(evaluate(), eOk);
  const OdDbDatabasePtr other = host.createDatabase();
  other->setINSUNITS(OdDb::kUnitsMillimeters);
  ASSERT_EQ(
      drawing->wblockCloneObjects({last}, other->getModelSpaceId(), *mapping, OdDb::kDrcIgnore),
      eOk);
  const OdDbObjectId clone = cloneOf(mapping, last);
  const OdDbObjectId target = clone.ownerId();
  EXPECT_EQ(open<OdDbAssocNetwork>(target)->getActions().size(), 20000U);
  expectSound(target);
  const OdDbObjectId first = open<OdDbAssocNetwork>(target)->variableNamed(L"v0");
  EXPECT_EQ(setValue(first, 11), eOk);
  ASSERT_EQ(evaluate(target), eOk);
  EXPECT_DOUBLE_EQ(value(clone), 20010.0);

  const OdDbDatabasePtr copy = other->wblock(other->getModelSpaceId());
  EXPECT_EQ(OdDbAssocNetwork::getInstanceFromObject(copy->getModelSpaceId(), false)
                .openAs<OdDbAssocNetwork>()
                ->getActions()
                .size(),
            20000U);
}

}  // namespace
