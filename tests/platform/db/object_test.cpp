// Opens, notification and erasing of database objects.
#include "tests/platform/db/core_testing.h"

using testing::Test;
using Strings = std::vector<std::string>;

class OdDbObjectOpen : public CoreTest {};

TEST_F(OdDbObjectOpen, UpgradesNestAndEndWithTheLastPointer) {
  const OdDbObjectId id = addCell();
  {
    const TestCellPtr cell = open(id, OdDb::kForWrite);
    cell->upgradeOpen();
    cell->downgradeOpen();
    EXPECT_TRUE(cell->isWriteEnabled()) << "the write open outlives an inner pair";
    cell->downgradeOpen();
    EXPECT_FALSE(cell->isWriteEnabled());
  }
  open(id)->upgradeOpen();
  EXPECT_FALSE(open(id)->isWriteEnabled());
}

TEST_F(OdDbObjectOpen, NotifyRefusesWritesUntilUpgraded) {
  const OdDbObjectId id = addCell();
  const TestCellPtr writer = open(id, OdDb::kForWrite);
  {
    const TestCellPtr listener = open(id, OdDb::kForNotify);
    EXPECT_TRUE(listener->isNotifyEnabled());
    EXPECT_THROW(listener->setText(L"x"), OdError);
    EXPECT_TRUE(id.openObject(OdDb::kForWrite).isNull());
    listener->upgradeOpen();
    listener->setText(L"y");
    listener->downgradeOpen();
  }
  writer->setText(L"z");
  EXPECT_EQ(writer->text(), L"z");
}

TEST_F(OdDbObjectOpen, WhatCannotBeOpenedIsNullOrRaises) {
  const OdDbObjectId erased = addCell();
  open(erased, OdDb::kForWrite)->erase();
  EXPECT_TRUE(erased.openObject().isNull());
  EXPECT_FALSE(erased.openObject(OdDb::kForRead, /*openErased=*/true).isNull());
  EXPECT_TRUE(database->getOdDbObjectId(0xFFFF).isNull());
  const OdDbObjectId nobody = database->getOdDbObjectId(0xFFFF, /*createIfNotFound=*/true);
  EXPECT_FALSE(nobody.isValid());
  const std::vector<std::pair<OdDbObjectId, OdResult>> refused = {
      {OdDbObjectId::kNull, eNullObjectId}, {erased, eWasErased}, {nobody, eUnknownHandle}};
  for (const auto& [id, code] : refused) {
    EXPECT_EQ(raisedBy([&id = id] { (void)id.safeOpenObject(); }), code);
  }
}

TEST_F(OdDbObjectOpen, HandlesRiseAndAreNotGivenTwice) {
  const OdDbObjectId first = addCell();
  const TestCellPtr fixed = TestCell::createObject();
  database->addOdDbObject(fixed.get(), OdDbObjectId::kNull, OdDbHandle(0x5000));
  const OdDbObjectId after = addCell();
  EXPECT_EQ(static_cast<OdUInt64>(after.getHandle()), 0x5001u);
  const TestCellPtr again = TestCell::createObject();
  EXPECT_THROW(database->addOdDbObject(again.get(), OdDbObjectId::kNull, first.getHandle()),
               OdError);
  EXPECT_THROW(database->addOdDbObject(fixed.get()), OdError) << "already in the database";
  open(after, OdDb::kForWrite)->erase();
  EXPECT_GT(static_cast<OdUInt64>(addCell().getHandle()), 0x5001u);
}

class OdDbObjectReactors : public CoreTest {};

TEST_F(OdDbObjectReactors, HearOnceAtTheLastWriteCloseInOrderOfAttachment) {
  const OdDbObjectId watched = addCell();
  const OdDbObjectId second = addCell();
  const OdDbObjectId first = addCell();
  {
    const TestCellPtr cell = open(watched, OdDb::kForWrite);
    cell->addPersistentReactor(first);
    cell->addPersistentReactor(second);
    cell->addPersistentReactor(first);
  }
  TestCell::heard.clear();
  {
    const TestCellPtr outer = open(watched, OdDb::kForWrite);
    setText(watched, L"inner");
    outer->setText(L"outer");
    EXPECT_EQ(TestCell::heard, (Strings{"22 opened 20", "21 opened 20"}));
  }
  EXPECT_EQ(TestCell::heard,
            (Strings{"22 opened 20", "21 opened 20", "22 modified 20", "21 modified 20"}));
  EXPECT_EQ(open(watched)->getPersistentReactors().size(), 2u);
}

TEST_F(OdDbObjectReactors, ErasureIsToldAtOnceAndAThrowingReactorDoesNotLoseTheOthers) {
  struct Quiet : OdDbHostAppServices {
    void message(const OdString& line) override { lines.push_back(std::string(line.utf8())); }
    Strings lines;
  } quiet;
  database = quiet.createDatabase();
  const OdDbObjectId watched = addCell();
  const OdDbObjectId first = addCell();
  const OdDbObjectId second = addCell();
  {
    const TestCellPtr cell = open(watched, OdDb::kForWrite);
    cell->addPersistentReactor(first);
    cell->addPersistentReactor(second);
  }
  TestCell::heard.clear();
  TestCell::throwOnErase = true;
  {
    const TestCellPtr cell = open(watched, OdDb::kForWrite);
    EXPECT_EQ(cell->erase(), eOk);
    EXPECT_EQ(TestCell::heard, (Strings{"21 erased 20", "22 erased 20"}));
  }
  EXPECT_EQ(quiet.lines.size(), 2u);
  EXPECT_EQ(open(first, OdDb::kForWrite)->erase(), eOk);
  EXPECT_EQ(open(first, OdDb::kForWrite).isNull(), true);
  database = OdDbDatabasePtr();
}

TEST_F(OdDbObjectReactors, ExtendedDataIsKeptByApplication) {
  const OdDbObjectId id = addCell();
  const auto chainOf = [](const wchar_t* app, OdInt32 value) {
    OdResBufPtr chain = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(app));
    if (value != 0) chain->setNext(OdResBuf::newRb(OdResBuf::kDxfXdInteger32, value).get());
    return chain;
  };
  const TestCellPtr cell = open(id, OdDb::kForWrite);
  EXPECT_THROW(cell->setXData(chainOf(L"A", 1).get()), OdError) << "not registered";
  database->newRegApp(L"A");
  EXPECT_EQ(database->newRegApp(L"a"), database->newRegApp(L"A"));
  database->newRegApp(L"B");
  cell->setXData(chainOf(L"A", 1).get());
  cell->setXData(chainOf(L"B", 2).get());
  cell->setXData(chainOf(L"A", 3).get());
  EXPECT_EQ(cell->xData(L"A")->next()->getInt32(), 3);
  EXPECT_EQ(cell->xData(L"B")->next()->getInt32(), 2);
  cell->setXData(chainOf(L"B", 0).get());
  EXPECT_TRUE(cell->xData(L"B").isNull());
  EXPECT_FALSE(cell->xData(L"A").isNull());
}
