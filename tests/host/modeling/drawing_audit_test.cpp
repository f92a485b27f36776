// The audit of drawings in memory. What it finds in files, code by code, is tested through the
// command.
#include "host/modeling/drawing_audit.h"

#include <algorithm>
#include <set>

#include "platform/db/dictionary.h"
#include "platform/db/xrecord.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/test_folder.h"

using namespace vdm_host;

namespace {

class DrawingAuditTest : public ModelingTest {
 protected:
  DrawingAuditTest() { put(hole(L"H", 20.0), 100.0, 100.0); }

  OdDbObjectId addDictionary(const wchar_t* name) {
    const auto root =
        m_database->getNamedObjectsDictionaryId().safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
    return root->setAt(name, OdDbDictionary::createObject());
  }
  static void setOwner(const OdDbObjectId& id, const OdDbObjectId& owner) {
    id.safeOpenObject(OdDb::kForWrite)->setOwnerId(owner);
  }
  std::set<std::string> codes(AuditMode mode) {
    std::set<std::string> codes;
    for (const DrawingFinding& finding : auditDrawing(m_database, mode).findings) {
      codes.insert(std::string(finding.code.utf8()));
      EXPECT_EQ(finding.mended, mode == AuditMode::kFix) << finding.text.utf8();
    }
    return codes;
  }

  const TestFolder m_folder;
  const std::set<std::string> m_none;
};

TEST_F(DrawingAuditTest, SoundDrawingsHaveNoFindings) {
  const auto before = snapshot();
  EXPECT_EQ(codes(AuditMode::kLook), m_none);
  EXPECT_EQ(codes(AuditMode::kFix), m_none);
  EXPECT_TRUE(snapshot() == before);

  const OdStatus saved = m_database->saveAs(m_folder.odFile("a.vdm"));
  ASSERT_TRUE(succeeded(saved));
  addDictionary(L"new");
  EXPECT_EQ(codes(AuditMode::kLook), m_none) << "what is not saved yet is no fault of the file";
}

TEST_F(DrawingAuditTest, WhatIsNotSavedYetIsSeenAndMended) {
  const OdDbObjectId nowhere = m_database->getOdDbObjectId(0x7777, /*createIfNotFound=*/true);
  const OdDbObjectId first = addDictionary(L"first");
  const OdDbObjectId second = addDictionary(L"second");
  setOwner(first, second);
  setOwner(second, first);
  m_plate.safeOpenObject(OdDb::kForWrite)->addPersistentReactor(nowhere);
  const OdDbObjectId stray = m_database->addOdDbObject(OdDbXrecord::createObject(), nowhere);
  const OdResBufPtr chain = OdResBuf::newRb(340);
  chain->setObjectId(nowhere);
  stray.safeOpenAs<OdDbXrecord>(OdDb::kForWrite)->setFromRbChain(chain);
  const std::set<std::string> expected = {"dangling-reactor", "dangling-reference", "owner-cycle",
                                          "owner-missing"};
  const auto before = snapshot();
  EXPECT_TRUE(std::ranges::includes(codes(AuditMode::kLook), expected));
  EXPECT_TRUE(snapshot() == before) << "looking changed the drawing";
  EXPECT_TRUE(std::ranges::includes(codes(AuditMode::kFix), expected));
  EXPECT_EQ(codes(AuditMode::kLook), m_none);
}

}  // namespace
