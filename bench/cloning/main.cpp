// Measures copies of blocks with their models: lines, and as many constraints with references to
// two lines each, into a block that has managers already. The peer in the
// same run is a copy of the lines alone, for what the drawing itself costs.
//
//   vdm_bench_cloning [<number of constraints>...]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/line.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"
#include "vdm_db/cloning/vdm_model_cloning.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"

namespace {

constexpr int kRounds = 7;

OdDbObjectId addBlock(OdDbDatabase* drawing, const std::string& name) {
  const OdDbBlockTablePtr table =
      drawing->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(OdString(name));
  return table->add(block);
}

void constrain(OdDbObjectId block, OdDbObjectId a, OdDbObjectId b, const OdString& name) {
  VdmExtendedPathArray arguments;
  for (const OdDbObjectId& id : {a, b}) {
    VdmExtendedPath argument;
    argument.path = OdDbFullSubentPath(id, OdDbSubentId());
    arguments.append(argument);
  }
  VdmConstraintManagerServices services;
  VdmDbConstraintManager::getInstance(block, /*create=*/true)
      .safeOpenAs<VdmDbConstraintManager>(OdDb::kForWrite)
      ->addConstraint(1, arguments, services, name, /*flag=*/false);
}

void fill(OdDbObjectId block, int count) {
  std::vector<OdDbObjectId> lines;
  {
    const OdDbBlockTableRecordPtr record = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    for (int i = 0; i <= count; ++i) {
      const OdDbLinePtr line = OdDbLine::createObject();
      line->setStartPoint(OdGePoint3d(i, 0, 0));
      line->setEndPoint(OdGePoint3d(i, 1, 0));
      lines.push_back(record->appendOdDbEntity(line));
    }
  }
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    constrain(block, lines[at], lines[at + 1], OdString("D_" + std::to_string(i)));
  }
}

template <class Call>
double microsecondsOf(const Call& call) {
  std::vector<double> times;
  for (int round = 0; round < kRounds; ++round) {
    const auto begin = std::chrono::steady_clock::now();
    call(round);
    const std::chrono::duration<double, std::micro> spent =
        std::chrono::steady_clock::now() - begin;
    times.push_back(spent.count());
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

void measure(int count) {
  OdDbHostAppServices host;
  const OdDbDatabasePtr drawing = host.createDatabase();
  const OdDbObjectId source = addBlock(drawing, "SOURCE");
  fill(source, count);
  const auto target = [&](const std::string& name) {
    const OdDbObjectId block = addBlock(drawing, name);
    fill(block, 1);
    return block;
  };
  const double whole = microsecondsOf([&](int round) {
    OdSmartPtr<OdDbIdMapping> mapping;
    (void)vdmu::cloneBlockWithModel(source, target("W" + std::to_string(round)), mapping);
  });
  const double entities = microsecondsOf([&](int round) {
    OdSmartPtr<OdDbIdMapping> mapping;
    (void)vdmu::cloneBlock(source, target("E" + std::to_string(round)), false, mapping, nullptr);
  });
  std::printf(
      "%8d constraints: %7.2f us each with the model, %6.2f us each line alone, ratio %.1f\n",
      count, whole / count, entities / count, whole / entities);
}

}  // namespace

int main(int argc, char** argv) {
  odrxInitialize();
  oddbInitialize();
  odrxDynamicLinker()->loadModule(OdString(VDM_MODULE_FILE));
  std::vector<int> counts;
  for (int i = 1; i < argc; ++i) counts.push_back(std::atoi(argv[i]));
  if (counts.empty()) counts = {1000, 3000, 10000};
  for (const int count : counts) {
    if (count > 0) measure(count);
  }
  odrxDynamicLinker()->unloadModule(OdString(VDM_MODULE_FILE));
  oddbUninitialize();
  odrxUninitialize();
  return 0;
}
