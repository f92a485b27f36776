// Passes in which no feature has anything to do, and listing features. The peer is the function
// mechanism of Open CASCADE: one function a feature, with two arguments; a pass asks the driver of
// each whether it must be executed.
#include <Standard_GUID.hxx>
#include <TDF_Data.hxx>
#include <TDF_Label.hxx>
#include <TDF_LabelList.hxx>
#include <TDF_TagSource.hxx>
#include <TFunction_DoubleMapIteratorOfDoubleMapOfIntegerLabel.hxx>
#include <TFunction_Driver.hxx>
#include <TFunction_DriverTable.hxx>
#include <TFunction_Function.hxx>
#include <TFunction_IFunction.hxx>
#include <TFunction_Logbook.hxx>
#include <TFunction_Scope.hxx>
#include <functional>
#include <memory>
#include <stdexcept>

#include "bench/update/component_drawing.h"
#include "bench/update/figures.h"
#include "host/modeling/component_feature.h"
#include "host/modeling/insertion.h"
#include "platform/db/database_reactor.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_update_context.h"
#include "vdm_db/update/vdm_update_observer.h"

namespace {

const Standard_GUID kDriver("6f1c2a10-0000-4d1e-9a11-000000000001");

/// Due when one of its two arguments changed.
class HoleDriver : public TFunction_Driver {
 public:
  void Arguments(TDF_LabelList& labels) const override {
    labels.Append(Label().FindChild(1));
    labels.Append(Label().FindChild(2));
  }
  Standard_Boolean MustExecute(const Handle(TFunction_Logbook) & log) const override {
    TDF_LabelList labels;
    Arguments(labels);
    for (const TDF_Label& label : labels) {
      if (log->IsModified(label)) return Standard_True;
    }
    return log->IsModified(Label());
  }
  Standard_Integer Execute(Handle(TFunction_Logbook) &) const override { return 0; }
};

/// A document of functions.
class FunctionDocument {
 public:
  explicit FunctionDocument(std::size_t count) : m_data(new TDF_Data) {
    TFunction_DriverTable::Get()->AddDriver(kDriver, new HoleDriver);
    const TDF_Label root = m_data->Root();
    m_log = TFunction_Logbook::Set(root);
    m_scope = TFunction_Scope::Set(root);
    const TDF_Label parent = TDF_TagSource::NewChild(root);
    for (std::size_t i = 0; i < count; ++i) {
      const TDF_Label label = TDF_TagSource::NewChild(parent);
      (void)label.FindChild(1);
      (void)label.FindChild(2);
      TFunction_IFunction::NewFunction(label, kDriver);
      m_labels.push_back(label);
    }
    m_log->SetTouched(root.FindChild(1000000));
  }

  /// Functions that are due.
  std::size_t pass() {
    std::size_t due = 0;
    for (const TDF_Label& label : m_labels) {
      const Handle(TFunction_Driver) driver = TFunction_IFunction(label).GetDriver();
      driver->Init(label);
      if (driver->MustExecute(m_log)) ++due;
    }
    return due;
  }
  /// Labels of the functions of one driver, by the scope's list.
  std::size_t list() {
    std::vector<TDF_Label> found;
    TFunction_DoubleMapIteratorOfDoubleMapOfIntegerLabel it(m_scope->GetFunctions());
    for (; it.More(); it.Next()) {
      Handle(TFunction_Function) function;
      if (it.Value().FindAttribute(TFunction_Function::GetID(), function) &&
          function->GetDriverGUID() == kDriver) {
        found.push_back(it.Value());
      }
    }
    return found.size();
  }

 private:
  Handle(TDF_Data) m_data;
  Handle(TFunction_Logbook) m_log;
  Handle(TFunction_Scope) m_scope;
  std::vector<TDF_Label> m_labels;
};

/// Counts carriers of features that are opened for write.
class CarrierCounter : public OdRxObjectImpl<OdDbDatabaseReactor> {
 public:
  std::size_t count = 0;
  void objectOpenedForModify(const OdDbDatabase*, const OdDbObject* object) override {
    if (object->isKindOf(VdmDbFeatureData::desc())) ++count;
  }
};

/// Settled component features, a hundred at each plate: nothing is cut, so that there can be many.
void addSettledFeatures(ComponentDrawing& drawing, std::size_t count) {
  constexpr std::size_t kPerPlate = 100;
  const OdUInt32 top = drawing.topFace();
  OdDbObjectId plate = drawing.plate;
  vdm_host::ComponentTools tools;
  for (std::size_t i = 0; i < count; ++i) {
    if (i != 0 && i % kPerPlate == 0) plate = drawing.addPlate();
    OdDbObjectId insert;
    OdDbObjectId feature;
    const auto place = static_cast<double>(i % kPerPlate);
    auto placement = drawing.at(place, place, top);
    placement.solid = plate;
    placement.name = OdString(("h" + std::to_string(i)).c_str());
    const vdm_host::ComponentInsert insertion{drawing.hole, placement};
    vdm_host::InsertionPlace where;
    OdStatus status = vdm_host::placeInsertion(insertion, tools, where);
    if (status.ok()) {
      status = vdm_host::makeInsertion(drawing.database, insertion, where, insert, feature);
    }
    if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
    const auto component = VdmComponentFeature::cast(VdmFeature::open(feature));
    const OdDbObjectId reactor = component->insertReactorId();
    reactor.safeOpenAs<VdmDbInsertReactor>(OdDb::kForWrite)->setChanged(false);
  }
}

/// Wants to hear of each feature that is skipped: a pass with it looks at all of them.
class SkippedCounter : public VdmUpdateObserver {
 public:
  std::size_t count = 0;
  void featureSkipped(const OdDbObjectId&) override { ++count; }
};

/// A pass in which every feature is looked at, and none is due.
void visitAll(const VdmDbFeatureManagerPtr& manager, const VdmDependenciesReplacementMap& map) {
  SkippedCounter counter;
  VdmUpdateContext context;
  context.replacementMap = &map;
  context.observer = &counter;
  (void)manager->updateFeatures(context);
  if (counter.count != manager->featureIds().size()) throw std::logic_error("a feature is due");
}

/// A pass that has an edit of one feature to take in, and nothing that is due.
void passAfterEdit(const VdmDbFeatureManagerPtr& manager,
                   const VdmDependenciesReplacementMap& map) {
  manager->featureIds()[0].safeOpenObject(OdDb::kForWrite)->assertWriteEnabled();
  EPostprocessingOperationType post{};
  (void)manager->updateFeatures(map, false, false, post);
}

/// Proves that the counter hears of a carrier.
void tryOut(const CarrierCounter& counter, const OdDbObjectId& feature) {
  const std::size_t before = counter.count;
  feature.safeOpenObject(OdDb::kForWrite)->assertWriteEnabled();
  if (counter.count != before + 1) throw std::logic_error("the counter is deaf");
}

void measureOne(std::size_t count, std::size_t rounds, std::vector<Figure>& figures) {
  ComponentDrawing drawing(300.0, 300.0, 10.0);
  drawing.database->disableUndoRecording(true);
  addSettledFeatures(drawing, count);
  FunctionDocument functions(count);
  const OdDbObjectId managerId =
      VdmDbFeatureManager::getInstance(drawing.database->getModelSpaceId(), false);
  const auto manager = managerId.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite);
  // Something happened, but to nothing that a feature refers to.
  VdmDependenciesReplacementMap map;
  map.addTransformedObject(drawing.hole, OdGeMatrix3d::translation({1.0, 0.0, 0.0}), false);

  const VdmDependenciesReplacementMap noMap;
  EPostprocessingOperationType post{};
  const double first = workOf([&] { (void)manager->updateFeatures(map, false, false, post); });

  CarrierCounter counter;
  drawing.database->addReactor(&counter);
  struct Row {
    const char* name;
    const char* peerName;
    double scale;  ///< of seconds
    const char* unit;
    std::function<void()> ours;
    std::function<void()> peer;
    std::vector<double> times{};  ///< after the peers' work, which has filled the caches
    std::vector<double> again{};  ///< right after that
    std::vector<double> peerTimes{};
  };
  const double perFeature = 1e9 / static_cast<double>(count);
  const std::function<void()> askAll = [&] {
    if (functions.pass() != 0) throw std::logic_error("a function is due");
  };
  Row rows[] = {
      {"pass, nothing due, something moved", "functions asked whether due", 1e6, "us",
       [&] { (void)manager->updateFeatures(map, false, false, post); }, askAll},
      {"pass, nothing due, empty map", "functions asked whether due", 1e6, "us",
       [&] { (void)manager->updateFeatures(noMap, true, true, post); }, askAll},
      {"pass, all features looked at", "functions asked whether due", perFeature, "ns/feature",
       [&] { visitAll(manager, map); }, askAll},
      {"getFeatures(class)", "functions of a driver listed", perFeature, "ns/feature",
       [&] {
         const auto found = manager->getFeatures({VdmComponentFeature::desc()});
         if (found.size() != count) throw std::logic_error("a feature is missing");
       },
       [&] {
         if (functions.list() != count) throw std::logic_error("a function is missing");
       }},
  };
  for (std::size_t round = 0; round < rounds; ++round) {
    for (Row& row : rows) {
      row.times.push_back(row.scale * workOf(row.ours));
      row.again.push_back(row.scale * workOf(row.ours));
      row.peerTimes.push_back(row.scale * workOf(row.peer));
    }
  }
  const std::size_t opened = counter.count;
  tryOut(counter, manager->featureIds()[0]);
  drawing.database->removeReactor(&counter);
  std::vector<double> edited;
  for (std::size_t round = 0; round < rounds; ++round) {
    edited.push_back(1e6 * workOf([&] { passAfterEdit(manager, map); }));
  }

  const std::string number = ", " + std::to_string(count) + " features";
  for (const Row& row : rows) {
    figures.push_back(
        {row.name + number, row.peerName, medianOf(row.times), medianOf(row.peerTimes), row.unit});
    figures.push_back({"  right after that, again", "", medianOf(row.again), 0.0, row.unit});
  }
  figures.push_back({"edit of one, pass, nothing due" + number, "", medianOf(edited), 0.0, "us"});
  figures.push_back(
      {"first pass of a drawing" + number, "", perFeature * first, 0.0, "ns/feature"});
  figures.push_back({"carriers opened for write in those passes", "", static_cast<double>(opened),
                     0.0, "carriers"});
}

}  // namespace

std::vector<Figure> measureIdlePasses(const FigureOptions& options) {
  std::vector<Figure> figures;
  for (const std::size_t count : options.features) measureOne(count, options.rounds, figures);
  return figures;
}
