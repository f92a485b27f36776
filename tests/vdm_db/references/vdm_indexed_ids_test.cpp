// Tests of lists of ids: look-up and undo records, against a plain list.
#include "vdm_db/references/vdm_indexed_ids.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "platform/filer/memory_filer.h"
#include "tests/support/test_seed.h"

namespace {

using Plain = std::vector<OdDbObjectId>;

/// A list that records each edit, beside the states that it had.
class VdmIndexedIdsTest : public testing::Test {
 protected:
  OdDbObjectId id(std::size_t number) { return OdDbObjectId(&m_records[number]); }
  Plain present() const { return {m_list.ids().begin(), m_list.ids().end()}; }
  void expectLookUp() {
    const Plain listed = present();
    for (std::size_t i = 0; i < m_records.size(); ++i) {
      const bool isListed = std::find(listed.begin(), listed.end(), id(i)) != listed.end();
      ASSERT_EQ(m_list.contains(id(i)), isListed) << i;
    }
  }
  OdDbObjectIdArray choose(std::mt19937& random) {
    OdDbObjectIdArray ids;
    for (auto n = random() % 6; n > 0; --n) ids.append(id(random() % m_records.size()));
    return ids;
  }

  std::array<OdDbIdRecord, 60> m_records;
  VdmIndexedIds m_list;
};

TEST_F(VdmIndexedIdsTest, FollowsAPlainListThroughEditsAndTheirUndo) {
  std::mt19937 random(freshSeed());
  std::vector<OdDbFilerBuffer> records;
  std::vector<Plain> states;
  for (int step = 0; step < 400; ++step) {
    const Plain before = present();
    const OdDbObjectIdArray ids = choose(random);
    OdDbFilerBuffer record;
    OdDbMemoryFiler undo(OdDbDwgFiler::kUndoFiler, record);
    Plain expected = before;
    if (random() % 2 == 0 || before.size() < 16) {
      for (const OdDbObjectId& each : ids)
        if (std::find(expected.begin(), expected.end(), each) == expected.end())
          expected.push_back(each);
      m_list.append(m_list.notListed(ids), &undo);
    } else {
      std::erase_if(expected, [&](const OdDbObjectId& each) { return ids.contains(each); });
      m_list.takeOut(m_list.positionsOf(ids), &undo);
    }
    ASSERT_EQ(present(), expected) << "step " << step;
    expectLookUp();
    if (record.bytes.empty()) continue;
    states.push_back(before);
    records.push_back(std::move(record));
  }
  for (; !records.empty(); records.pop_back(), states.pop_back()) {
    const Plain after = present();
    OdDbFilerBuffer redo;
    OdDbMemoryFiler undo(OdDbDwgFiler::kUndoFiler, records.back());
    OdDbMemoryFiler inverse(OdDbDwgFiler::kUndoFiler, redo);
    undo.startReading(0, 0);
    m_list.applyUndo(&undo, &inverse);
    ASSERT_EQ(present(), states.back());
    expectLookUp();
    // The record that undoing made brings the edit back.
    OdDbFilerBuffer again;
    OdDbMemoryFiler backwards(OdDbDwgFiler::kUndoFiler, again);
    inverse.startReading(0, 0);
    m_list.applyUndo(&inverse, &backwards);
    ASSERT_EQ(present(), after);
    backwards.startReading(0, 0);
    m_list.applyUndo(&backwards, nullptr);
    ASSERT_EQ(present(), states.back());
  }
}

// What a file drops between an edit and its undo.
TEST_F(VdmIndexedIdsTest, WhatComesBackFindsItsPlaceInAListThatLostOthers) {
  std::mt19937 random(freshSeed());
  const auto placeIn = [](const Plain& list, const OdDbObjectId& wanted) {
    return std::find(list.begin(), list.end(), wanted) - list.begin();
  };
  for (int round = 0; round < 300; ++round) {
    const std::size_t count = 1 + random() % m_records.size();
    m_list.array().clear();
    for (std::size_t i = 0; i < count; ++i) m_list.array().append(id(i));
    m_list.replaced();
    const Plain before = present();
    std::vector<bool> isTaken(count), isDropped(count);
    OdDbObjectIdArray taken;
    for (std::size_t i = 0; i < count; ++i) {
      isTaken[i] = random() % 3 == 0;
      isDropped[i] = !isTaken[i] && random() % 4 == 0;
      if (isTaken[i]) taken.append(id(i));
    }
    OdDbFilerBuffer record;
    OdDbMemoryFiler undo(OdDbDwgFiler::kUndoFiler, record);
    m_list.takeOut(m_list.positionsOf(taken), &undo);
    Plain kept = present();
    std::erase_if(kept, [&](const OdDbObjectId& each) {
      return isDropped[std::size_t(placeIn(before, each))];
    });
    m_list.array().assign(kept.data(), kept.data() + kept.size());
    m_list.replaced();
    undo.startReading(0, 0);
    m_list.applyUndo(&undo, nullptr);
    Plain expected = before;
    std::erase_if(expected, [&](const OdDbObjectId& each) {
      return isDropped[std::size_t(placeIn(before, each))];
    });
    const Plain after = present();
    ASSERT_TRUE(std::is_permutation(after.begin(), after.end(), expected.begin(), expected.end()));
    for (std::size_t i = 0; i + 1 < count; ++i) {
      if (isDropped[i] || isDropped[i + 1]) continue;
      ASSERT_LT(placeIn(after, id(i)), placeIn(after, id(i + 1))) << "round " << round;
    }
    expectLookUp();
  }
}

TEST_F(VdmIndexedIdsTest, AnEditThatAFileHasForgottenIsNothingToTakeBack) {
  OdDbFilerBuffer record;
  OdDbMemoryFiler undo(OdDbDwgFiler::kUndoFiler, record);
  for (std::size_t i = 0; i < 20; ++i) m_list.append({id(i)}, i == 19 ? &undo : nullptr);
  m_list.array().clear();
  m_list.array().append(id(3));
  m_list.replaced();
  undo.startReading(0, 0);
  m_list.applyUndo(&undo, nullptr);
  EXPECT_EQ(present(), Plain{id(3)});
}

TEST_F(VdmIndexedIdsTest, OfRepeatedIdsTheLastAreTaken) {
  for (const std::size_t i : {1u, 2u, 1u, 3u, 1u}) m_list.array().append(id(i));
  for (std::size_t i = 10; i < 30; ++i) m_list.array().append(id(i));
  m_list.replaced();
  EXPECT_TRUE(m_list.contains(id(1)));
  const Plain before = present();
  OdDbFilerBuffer record, redo;
  OdDbMemoryFiler undo(OdDbDwgFiler::kUndoFiler, record);
  OdDbMemoryFiler inverse(OdDbDwgFiler::kUndoFiler, redo);
  m_list.takeOut(m_list.lastPositionsOf({id(1), id(1)}), &undo);
  const Plain after = present();
  EXPECT_EQ(m_list.ids()[0], id(1));
  EXPECT_EQ(m_list.ids()[2], id(3));
  EXPECT_TRUE(m_list.contains(id(1)));
  undo.startReading(0, 0);
  m_list.applyUndo(&undo, &inverse);
  EXPECT_EQ(present(), before);
  inverse.startReading(0, 0);
  m_list.applyUndo(&inverse, nullptr);
  EXPECT_EQ(present(), after);
}

}  // namespace
