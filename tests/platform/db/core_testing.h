// A small filed class and the verbs that tests of the database core speak in.
#pragma once

#include <vector>

#include "tests/platform/db/db_testing.h"
#include "tests/support/dump_drawing.h"

/// A number with partial undo, a text with whole-state undo, and references. As a reactor it notes
/// what it hears.
class TestCell : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(TestCell)

  void setText(const OdString& text) {
    assertWriteEnabled();
    m_text = text;
  }
  void setNumber(OdInt32 number) {
    assertWriteEnabled(/*autoUndo=*/false);
    if (OdDbDwgFiler* filer = beginPartialUndo(desc())) filer->wrInt32(m_number);
    m_number = number;
  }
  /// The same, without a beginPartialUndo().
  void setNumberAlone(OdInt32 number) {
    assertWriteEnabled(/*autoUndo=*/false);
    if (OdDbDwgFiler* filer = undoFiler()) filer->wrInt32(m_number);
    m_number = number;
  }
  void own(const OdDbObjectId& id) {
    assertWriteEnabled();
    m_owned.append(id);
  }
  [[nodiscard]] const OdString& text() const {
    assertReadEnabled();
    return m_text;
  }
  [[nodiscard]] OdInt32 number() const {
    assertReadEnabled();
    return m_number;
  }

  OdResult dwgInFields(OdDbDwgFiler* filer) override {
    const OdResult result = OdDbObject::dwgInFields(filer);
    if (result != eOk) return result;
    if (raisesInUndo && filer->filerType() == OdDbDwgFiler::kUndoFiler) throw OdError(eCorruptData);
    m_number = filer->rdInt32();
    m_text = filer->rdString();
    m_owned.clear();
    for (OdUInt32 count = filer->rdCount(); count > 0; --count) {
      m_owned.append(filer->rdHardOwnershipId());
    }
    return eOk;
  }
  void dwgOutFields(OdDbDwgFiler* filer) const override {
    OdDbObject::dwgOutFields(filer);
    filer->wrInt32(m_number);
    filer->wrString(m_text);
    filer->wrInt32(static_cast<OdInt32>(m_owned.size()));
    for (const OdDbObjectId& id : m_owned) filer->wrHardOwnershipId(id);
  }
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override {
    if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
    if (raisesInUndo) throw OdError(eCorruptData);
    setNumber(filer->rdInt32());
  }

  void modified(const OdDbObject* object) override { hear("modified", object); }
  void openedForModify(const OdDbObject* object) override { hear("opened", object); }
  void erased(const OdDbObject* object, bool erasing) override {
    hear(erasing ? "erased" : "unerased", object);
    if (throwOnErase) throw OdError(eGeneralFailure);
  }

  static std::vector<std::string> heard;  ///< by all cells, in order: "<cell> <event> <object>"
  static bool throwOnErase;
  static bool raisesInUndo;

 private:
  void hear(const char* event, const OdDbObject* object) const {
    heard.push_back(std::string(getDbHandle().ascii().utf8()) + " " + event + " " +
                    std::string(object->getDbHandle().ascii().utf8()));
  }

  OdInt32 m_number = 0;
  OdString m_text;
  OdDbObjectIdArray m_owned;
};
using TestCellPtr = OdSmartPtr<TestCell>;

class CoreTest : public RegisteredClass<TestCell>, public testing::Test {
 protected:
  void SetUp() override;

  OdDbObjectId addCell(const wchar_t* text = L"");
  static TestCellPtr open(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.openAs<TestCell>(mode);
  }
  static void setNumber(OdDbObjectId id, OdInt32 number) {
    open(id, OdDb::kForWrite)->setNumber(number);
  }
  static void setText(OdDbObjectId id, const wchar_t* text) {
    open(id, OdDb::kForWrite)->setText(text);
  }

  OdDbHostAppServices services;
  OdDbDatabasePtr database;
};
