// Measures copies of blocks with their models: lines, a constraint with a reference to each of
// them, and a variable for each constraint, every second one with an expression over the variable
// before. They come into a block that has a model already, so that names are taken. Beside it, in
// the same run, the lines alone, and labels with the records of bench/records that their own
// relocating copy takes along.
//
//   vdm_bench_cloning [<number of constraints>...]
//
// Rows show medians of the rounds, in microseconds of processor time for each constraint, reference
// and variable, three for each line of the block.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/naming/stopwatch.h"
#include "bench/records/subject.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/line.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"
#include "tests/support/plain_solver.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/cloning/vdm_model_cloning.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace {

constexpr int kRounds = 5;
constexpr OdLong kDimension = 10;  // a type that the solver gives a value

void check(bool holds, const char* what) {
  if (holds) return;
  std::printf("failed: %s\n", what);
  std::exit(1);
}

template <class Call>
double microsecondsOf(const Call& call) {
  const naming_bench::Stopwatch watch;
  call();
  return watch.seconds() * 1e6;
}

double medianOf(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

OdDbObjectId addBlock(OdDbDatabase* drawing, const std::string& name) {
  const OdDbBlockTablePtr table =
      drawing->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(OdString(name));
  return table->add(block);
}

void constrain(OdDbObjectId block, OdDbObjectId entity, const std::string& name,
               const std::string& expression) {
  VdmExtendedPathArray arguments;
  VdmExtendedPath argument;
  argument.path = OdDbFullSubentPath(entity, OdDbSubentId());
  arguments.append(argument);
  VdmConstraintManagerServices services;
  const auto manager = VdmDbConstraintManager::getInstance(block, /*create=*/true)
                           .safeOpenAs<VdmDbConstraintManager>(OdDb::kForWrite);
  const VdmConstraintPtr made =
      manager->addConstraint(kDimension, arguments, services, OdString(name), /*flag=*/false);
  check(manager->setConstraintExpression(made, OdString(expression)) == eOk, "expression");
}

void fill(OdDbObjectId block, int count) {
  std::vector<OdDbObjectId> lines;
  {
    const OdDbBlockTableRecordPtr record = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    for (int i = 0; i < count; ++i) {
      const OdDbLinePtr line = OdDbLine::createObject();
      line->setStartPoint(OdGePoint3d(i, 0, 0));
      line->setEndPoint(OdGePoint3d(i, 1, 0));
      lines.push_back(record->appendOdDbEntity(line));
    }
  }
  for (int i = 0; i < count; ++i) {
    const std::string before = "D_" + std::to_string(i - 1);
    constrain(block, lines[static_cast<std::size_t>(i)], "D_" + std::to_string(i),
              i % 2 == 0 ? "10" : before + " * 2");
  }
}

/// The copy has everything, and its expressions lead to the copy.
void checkCopy(OdDbObjectId target, OdDbIdMapping& mapping, int count) {
  OdArray<OdDbIdPair> references;
  vdmu::getClonedObjectsByExactType(mapping, VdmDbObjectDependency::desc(), references);
  check(references.size() == static_cast<OdUInt32>(count), "references");
  const auto manager = VdmDbConstraintManager::getInstance(target, /*create=*/false)
                           .safeOpenAs<VdmDbConstraintManager>();
  check(manager->constraintsCount() == static_cast<OdUInt32>(count) + 1, "constraints");
  const OdDbObjectIdArray variables = vdmu::getAssocActions(target);
  check(variables.size() == static_cast<OdUInt32>(count) + 1, "variables");
  const auto last = variables.last().safeOpenAs<OdDbAssocVariable>();
  OdDbObjectIdArray dependencies;
  check(last->getDependencies(true, true, dependencies) == eOk && dependencies.size() == 1,
        "dependencies");
  check(last->numericValue() == 20.0, "value");
}

double copiedWithLabels(int count) {
  const std::unique_ptr<RecordSubject> labels = makeLabelSubject();
  labels->create(static_cast<std::size_t>(count));
  return microsecondsOf([&] { labels->cloneAll(); });
}

void measure(int count) {
  OdDbHostAppServices host;
  const OdDbDatabasePtr drawing = host.createDatabase();
  const OdDbObjectId source = addBlock(drawing, "SOURCE");
  fill(source, count);
  std::vector<double> whole, entities, peer;
  for (int round = 0; round < kRounds; ++round) {
    const OdDbObjectId target = addBlock(drawing, "W" + std::to_string(round));
    fill(target, 1);
    OdSmartPtr<OdDbIdMapping> mapping;
    drawing->clearUndo();
    drawing->startUndoRecord();
    whole.push_back(microsecondsOf([&] {
      check(vdmu::cloneBlockWithModel(source, target, mapping) == eOk, "cloneBlockWithModel");
    }));
    checkCopy(target, *mapping, count);
    mapping = nullptr;
    const OdDbObjectId bare = addBlock(drawing, "E" + std::to_string(round));
    entities.push_back(microsecondsOf([&] {
      check(vdmu::cloneBlock(source, bare, /*deferXlation=*/false, mapping, nullptr) == eOk,
            "cloneBlock");
    }));
    mapping = nullptr;
    peer.push_back(copiedWithLabels(count));
  }
  const double ours = medianOf(whole) / (3.0 * count);
  const double theirs = medianOf(peer) / count;
  std::printf(
      "%8d constraints: %6.2f us a thing   a line alone %5.2f us   a record of labels %6.2f us   "
      "%.1f times as fast\n",
      count, ours, medianOf(entities) / count, theirs, theirs / ours);
}

}  // namespace

int main(int argc, char** argv) {
  odrxInitialize();
  oddbInitialize();
  odrxDynamicLinker()->loadModule(OdString(VDM_MODULE_FILE));
  std::vector<int> counts;
  for (int i = 1; i < argc; ++i) counts.push_back(std::atoi(argv[i]));
  if (counts.empty()) counts = {1000, 10000, 100000};
  {
    PlainSolver solver;
    VdmDbConstraintManager::desc()->addX(VdmDbConstraintManagerPE::desc(), &solver);
    for (const int count : counts) {
      if (count > 1) measure(count - count % 2);
    }
    VdmDbConstraintManager::desc()->delX(VdmDbConstraintManagerPE::desc());
  }
  odrxDynamicLinker()->unloadModule(OdString(VDM_MODULE_FILE));
  oddbUninitialize();
  odrxUninitialize();
  return 0;
}
