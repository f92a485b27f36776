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

}  // namespace
