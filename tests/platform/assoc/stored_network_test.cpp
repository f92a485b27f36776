// Networks in files: saved and opened, damaged, in both forms.
#include <array>

#include "platform/db/audit_info.h"
#include "platform/filer/memory_filer.h"
#include "tests/platform/assoc/network_testing.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/dxf_testing.h"
#include "tests/support/stored_page.h"

namespace {

class StoredNetwork : public NetworkTest {
 protected:
  OdDbObjectId named(const wchar_t* name) {
    return open<OdDbAssocNetwork>(network)->variableNamed(name);
  }
  /// Makes a dependency lead elsewhere, as a damaged file may.
  static void misdirect(OdDbObjectId dependency, OdDbObjectId object) {
    const OdDbObjectPtr damaged = dependency.safeOpenObject(OdDb::kForWrite);
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, buffer, damaged->database());
    std::array ends{object, dependency.ownerId()};
    damaged->dwgOutFields(&filer);
    filer.setIdTranslator(
        [](void* to, OdDbObjectId id, OdDb::ReferenceType) {
          const bool isVariable = id.objectClass() == OdDbAssocVariable::desc();
          return isVariable && id != static_cast<OdDbObjectId*>(to)[1]
                     ? static_cast<OdDbObjectId*>(to)[0]
                     : id;
        },
        ends.data());
    filer.startReading(0, 0);
    damaged->assertWriteEnabled();
    EXPECT_EQ(damaged->dwgInFields(&filer), eOk);
  }
  OdUInt32 auditFindings(bool fixes = false) {
    OdDbAuditInfo info(fixes);
    drawing->audit(&info);
    return info.numErrors();
  }
};

TEST_F(StoredNetwork, ComesBackWithValuesMarksAndLinks) {
  const OdDbObjectId a = add(L"a", L"1 in");
  add(L"b", L"a * 2");
  add(L"c", L"b + 1");
  const OdDbObjectId gone = add(L"gone", L"3");
  add(L"d", L"gone + 1");
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_EQ(set(a, L"2 in"), "");
  EXPECT_EQ(edit<OdDbAssocVariable>(gone)->erase(), eOk);
  const std::string before = dumpDrawing(drawing, DumpScope::kInFile);
  reopen();
  EXPECT_EQ(firstDifference(before, dumpDrawing(drawing, DumpScope::kInFile)), "");
  EXPECT_EQ(status(named(L"a")), kAssocChangedDirectly);
  EXPECT_EQ(status(named(L"c")), kAssocChangedTransitively);
  EXPECT_EQ(status(named(L"d")), kAssocUnresolved);
  EXPECT_EQ(users(named(L"a")), (std::vector{named(L"b")}));
  EXPECT_EQ(auditFindings(), 1U) << "an unresolved expression";
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_DOUBLE_EQ(value(named(L"c")), 102.6);
  reopen();
  EXPECT_EQ(status(network), kAssocUpToDate);
  EXPECT_EQ(drawing->pageOut(0) > 0, true);
  EXPECT_DOUBLE_EQ(value(named(L"c")), 102.6);
}

TEST_F(StoredNetwork, DamageEndsInStatusesNotInLoops) {
  add(L"a", L"1");
  const OdDbObjectId b = add(L"b", L"a + 1");
  const OdDbObjectId c = add(L"c", L"b + 1");
  add(L"d", L"c + 1");
  ASSERT_EQ(evaluate(), eOk);
  misdirect(dependencies(b)[0], c);  // b and c depend on each other
  reopen();
  EXPECT_GT(auditFindings(), 0U);
  ASSERT_EQ(evaluate(), eOk);
  const OdDbObjectId broken = named(L"b");
  EXPECT_EQ(status(broken), kAssocUnresolved);
  EXPECT_EQ(status(named(L"d")), kAssocFailedToEvaluate);
  EXPECT_EQ(set(broken, L"a * 3"), "") << "a new expression mends it";
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_DOUBLE_EQ(value(named(L"d")), 5.0);
  EXPECT_EQ(auditFindings(), 0U);
}

TEST_F(StoredNetwork, BothFormsCarryEveryField) {
  const OdDbObjectId a = add(L"a", L"1");
  const OdDbObjectId b = add(L"b", L"a + 1");
  EXPECT_EQ(edit<OdDbAssocVariable>(a)->setValue(OdDbEvalVariant::init(OdInt32{7})), eOk);
  const OdDbObjectId text = add(L"text");
  EXPECT_EQ(edit<OdDbAssocVariable>(text)->setValue(OdDbEvalVariant::init(L"M6")), eOk);
  for (const OdDbObjectId id : {network, a, b, text, dependencies(b)[0]}) {
    const OdDbObjectPtr source = id.safeOpenObject();
    const OdDbObjectPtr copy = source->isA()->create();
    ASSERT_EQ(readGroups(*copy, groupsOf(*source), drawing), eOk) << source->isA()->name().utf8();
    EXPECT_EQ(groupsOf(*copy), groupsOf(*source));
  }
}

TEST_F(StoredNetwork, ItsPageHasTheBytesThatAreWritten) {
  drawing = host.createDatabase();
  drawing->setINSUNITS(OdDb::kUnitsMillimeters);
  network = networkOf(drawing->getModelSpaceId());
  const OdDbObjectId width = add(L"width", L"1 in");
  const OdDbObjectId half = add(L"half", L"width / 2");
  ASSERT_EQ(evaluate(), eOk);
  std::vector<std::string> records;
  for (const OdDbObjectId id : {network, width, half, dependencies(half)[0]}) {
    records.push_back(storedRecordOf(*id.safeOpenObject()));
  }
  EXPECT_EQ(storedRecordsOf(VDM_NETWORK_PAGE, "A network in bytes"), records);
}

}  // namespace
