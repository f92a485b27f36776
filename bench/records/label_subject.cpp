// The peer: the application framework of Open CASCADE, attributes by id, 100 records a parent
// label.
#include <fcntl.h>
#include <unistd.h>
#include <BinDrivers.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Standard_GUID.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDF_ChildIterator.hxx>
#include <TDF_CopyLabel.hxx>
#include <TDF_Label.hxx>
#include <TDataStd_AsciiString.hxx>
#include <TDataStd_Integer.hxx>
#include <TDataStd_Real.hxx>
#include <TDataStd_RealArray.hxx>
#include <TDocStd_Application.hxx>
#include <TDocStd_Document.hxx>

#include <stdexcept>
#include <vector>

#include "bench/records/record_values.h"
#include "bench/records/subject.h"

namespace {

constexpr std::size_t kRecordsPerParent = 100;

Standard_GUID keyId(std::size_t key) {
  const std::string number = std::to_string(10 + key);
  return Standard_GUID(("5b6b7f00-0000-11d1-8b3a-0000000000" + number).c_str());
}

void makeDurable(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY);
  if (file < 0 || ::fsync(file) != 0) throw std::runtime_error("cannot sync " + path);
  ::close(file);
}

class LabelSubject : public RecordSubject {
 public:
  LabelSubject() : m_application(new TDocStd_Application) {
    Message::DefaultMessenger()->ChangePrinters().Clear();
    BinDrivers::DefineFormat(m_application);
    for (std::size_t i = 0; i < RecordValues::kKeys.size(); ++i) m_ids.push_back(keyId(i));
    m_application->NewDocument("BinOcaf", m_document);
    m_document->SetUndoLimit(1000000000);
  }

  void create(std::size_t count) override {
    m_document->NewCommand();
    for (std::size_t i = 0; i < count; ++i) fill(recordLabel(i, /*create=*/true), i);
    m_document->CommitCommand();
    m_count = count;
  }

  double lookUp(std::size_t record) override {
    Handle(TDataStd_Real) value;
    recordLabel(record, /*create=*/false).FindAttribute(m_ids[3], value);
    return value->Get();
  }

  void write(std::size_t record, double value) override {
    m_document->NewCommand();
    Handle(TDataStd_Real) mass;
    recordLabel(record, /*create=*/false).FindAttribute(m_ids[3], mass);
    mass->Set(value);
    m_document->CommitCommand();
  }

  void undo() override { m_document->Undo(); }
  void redo() override { m_document->Redo(); }

  void saveAs(const std::string& path) override {
    if (m_application->SaveAs(m_document, TCollection_ExtendedString(path.c_str())) != PCDM_SS_OK) {
      throw std::runtime_error("cannot save " + path);
    }
    m_path = path;
    makeDurable(path);
  }

  void save() override {
    if (m_application->Save(m_document) != PCDM_SS_OK) {
      throw std::runtime_error("cannot save " + m_path);
    }
    makeDurable(m_path);
  }

  void load(const std::string& path) override {
    if (m_application->Open(TCollection_ExtendedString(path.c_str()), m_document) != PCDM_RS_OK) {
      throw std::runtime_error("cannot open " + path);
    }
    m_document->SetUndoLimit(1000000000);
  }

  double openFirst(const std::string& path, std::size_t record) override {
    load(path);
    return lookUp(record);
  }

  void cloneAll() override {
    m_document->NewCommand();
    TDF_CopyLabel copy(m_document->Main().FindChild(1), m_document->Main().FindChild(2));
    copy.Perform();
    if (!copy.IsDone()) throw std::runtime_error("cannot copy the labels");
    m_document->CommitCommand();
  }

 private:
  // Finding a child walks the list of its siblings, so the parents are kept at hand: the best that
  // a user of labels can do.
  const TDF_Label& parentLabel(std::size_t number, bool create) {
    while (m_parents.size() <= number) {
      m_parents.push_back(m_document->Main().FindChild(1, create).FindChild(
          static_cast<int>(m_parents.size()) + 1, create));
    }
    return m_parents[number];
  }

  TDF_Label recordLabel(std::size_t record, bool create) {
    return parentLabel(record / kRecordsPerParent, create)
        .FindChild(static_cast<int>(record % kRecordsPerParent) + 1, create);
  }

  void fill(const TDF_Label& label, std::size_t index) {
    const RecordValues values(index);
    TDataStd_AsciiString::Set(label, m_ids[0], values.description.c_str());
    TDataStd_Real::Set(label, m_ids[1], values.height);
    TDataStd_Real::Set(label, m_ids[2], values.length);
    TDataStd_Real::Set(label, m_ids[3], values.mass);
    TDataStd_AsciiString::Set(label, m_ids[4], values.material.c_str());
    TDataStd_AsciiString::Set(label, m_ids[5], values.name.c_str());
    TDataStd_AsciiString::Set(label, m_ids[6], values.partNumber.c_str());
    const Handle(TDataStd_RealArray) profile =
        TDataStd_RealArray::Set(label, m_ids[7], 0, static_cast<int>(values.profile.size()) - 1);
    for (std::size_t i = 0; i < values.profile.size(); ++i) {
      profile->SetValue(static_cast<int>(i), values.profile[i]);
    }
    TDataStd_Integer::Set(label, m_ids[8], values.quantity);
    TDataStd_Integer::Set(label, m_ids[9], values.revision);
    TDataStd_Integer::Set(label, m_ids[10], values.visible ? 1 : 0);
    TDataStd_Real::Set(label, m_ids[11], values.width);
  }

  Handle(TDocStd_Application) m_application;
  Handle(TDocStd_Document) m_document;
  std::vector<Standard_GUID> m_ids;
  std::vector<TDF_Label> m_parents;
  std::string m_path;
  std::size_t m_count = 0;
};

}  // namespace

std::unique_ptr<RecordSubject> makeLabelSubject() { return std::make_unique<LabelSubject>(); }
