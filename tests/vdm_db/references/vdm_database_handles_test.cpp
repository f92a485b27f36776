// Tests of the names of objects that outlive their drawings.
#include "vdm_db/references/vdm_database_handles.h"

#include "tests/support/reference_testing.h"

namespace {

using VdmDatabaseHandlesTest = ReferenceTest;
using Pair = std::pair<OdDbHandle, OdDbHandle>;

TEST_F(VdmDatabaseHandlesTest, NamesLeadBackToTheirObjectsWhileTheyAreOpen) {
  OdDbDatabasePtr other = m_host.createDatabase();
  const Pair a = vdmu::make_handle(m_modelSpace);
  const Pair b = vdmu::make_handle(other->getModelSpaceId());
  EXPECT_EQ(a.second, m_modelSpace.getHandle());
  EXPECT_NE(a.first, b.first);
  for (int round = 0; round < 2; ++round) {  // from the maps and from the last look-up
    EXPECT_EQ(vdmu::objectId(a), m_modelSpace);
    EXPECT_EQ(vdmu::objectId(b), other->getModelSpaceId());
  }
  other = nullptr;
  EXPECT_TRUE(vdmu::objectId(b).isNull());
  other = m_host.createDatabase();
  EXPECT_NE(vdmu::make_handle(other->getModelSpaceId()).first, b.first);
  EXPECT_TRUE(vdmu::objectId(b).isNull());
}

TEST_F(VdmDatabaseHandlesTest, WhatNamesNothingIsNull) {
  const Pair known = vdmu::make_handle(m_modelSpace);
  const Pair unknown(OdDbHandle(known.first + 1), known.second);
  EXPECT_TRUE(vdmu::objectId(unknown).isNull());
  EXPECT_TRUE(vdmu::objectId({known.first, OdDbHandle(0xFFFFF)}).isNull());
  // The number that was asked for too early is the next one to be given out.
  const OdDbDatabasePtr next = m_host.createDatabase();
  EXPECT_EQ(vdmu::make_handle(next->getModelSpaceId()), unknown);
  EXPECT_EQ(vdmu::objectId(unknown), next->getModelSpaceId());
}

}  // namespace
