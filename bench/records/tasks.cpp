// The measured tasks.
#include "bench/records/tasks.h"

#include <malloc.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

#include "bench/records/record_values.h"

namespace {

constexpr std::size_t kLookUps = 2000000;
constexpr std::size_t kWrites = 4000;
constexpr std::size_t kChangedBeforeSave = 100;
constexpr int kDurableSaves = 30;

using Clock = std::chrono::steady_clock;

double nanosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

/// Runs `work` and gives the nanoseconds it took, divided by `operations`.
template <class Work>
double timed(std::size_t operations, Work&& work) {
  const Clock::time_point start = Clock::now();
  work();
  return nanosecondsSince(start) / static_cast<double>(operations);
}

double residentBytes() {
  std::ifstream status("/proc/self/statm");
  double pages = 0;
  double residentPages = 0;
  status >> pages >> residentPages;
  return residentPages * 4096;
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

double create(TaskContext& context) {
  return timed(context.count, [&] { context.subject.create(context.count); });
}

double lookUp(TaskContext& context) {
  context.subject.create(context.count);
  RandomIndex warm(context.count);
  double sum = 0;
  for (std::size_t i = 0; i < context.count; ++i) sum += context.subject.lookUp(warm.next());
  RandomIndex index(context.count);
  const double result = timed(kLookUps, [&] {
    for (std::size_t i = 0; i < kLookUps; ++i) sum += context.subject.lookUp(index.next());
  });
  if (sum == 0) std::puts("no values");
  return result;
}

void writeAll(TaskContext& context, std::size_t writes = kWrites) {
  RandomIndex index(context.count);
  for (std::size_t i = 0; i < writes; ++i) {
    context.subject.write(index.next(), static_cast<double>(i) + 0.5);
  }
}

// A few writes go ahead of the measured ones, as in any session.
double write(TaskContext& context) {
  context.subject.create(context.count);
  writeAll(context, kWrites / 4);
  return timed(kWrites, [&] { writeAll(context); });
}

double undo(TaskContext& context) {
  context.subject.create(context.count);
  writeAll(context);
  return timed(kWrites, [&] {
    for (std::size_t i = 0; i < kWrites; ++i) context.subject.undo();
  });
}

double redo(TaskContext& context) {
  context.subject.create(context.count);
  writeAll(context);
  for (std::size_t i = 0; i < kWrites; ++i) context.subject.undo();
  return timed(kWrites, [&] {
    for (std::size_t i = 0; i < kWrites; ++i) context.subject.redo();
  });
}

double saveAll(TaskContext& context) {
  context.subject.create(context.count);
  return timed(1, [&] { context.subject.saveAs(context.path); }) / 1e6;
}

double load(TaskContext& context) {
  return timed(1, [&] { context.subject.load(context.loadedPath); }) / 1e6;
}

double openFirst(TaskContext& context) {
  return timed(1, [&] { context.subject.openFirst(context.loadedPath, context.count / 2); }) / 1e6;
}

double saveChanges(TaskContext& context) {
  context.subject.create(context.count);
  context.subject.saveAs(context.path);
  RandomIndex index(context.count);
  for (std::size_t i = 0; i < kChangedBeforeSave; ++i) {
    context.subject.write(index.next(), static_cast<double>(i));
  }
  return timed(1, [&] { context.subject.save(); }) / 1e6;
}

double saveOne(TaskContext& context) {
  context.subject.create(context.count);
  context.subject.saveAs(context.path);
  RandomIndex index(context.count);
  std::vector<double> costs;
  for (int i = 0; i < kDurableSaves; ++i) {
    context.subject.write(index.next(), i + 0.25);
    costs.push_back(timed(1, [&] { context.subject.save(); }) / 1e3);
  }
  return median(std::move(costs));
}

double bareCommit(TaskContext& context) { return bareSqliteCommit(context.path, context.count); }

double clone(TaskContext& context) {
  context.subject.create(context.count);
  return timed(context.count, [&] { context.subject.cloneAll(); });
}

double memory(TaskContext& context) {
  const double before = residentBytes();
  context.subject.load(context.loadedPath);
  malloc_trim(0);
  return (residentBytes() - before) / static_cast<double>(context.count);
}

double memoryCreated(TaskContext& context) {
  const double before = residentBytes();
  context.subject.create(context.count);
  return (residentBytes() - before) / static_cast<double>(context.count);
}

double diskSize(TaskContext& context) {
  return static_cast<double>(std::filesystem::file_size(context.loadedPath)) /
         static_cast<double>(context.count);
}

constexpr std::array<TaskRow, 15> kTasks = {{
    {"create", "ns/record", false, create},
    {"look-up", "ns", false, lookUp},
    {"write", "ns", false, write},
    {"undo", "ns", false, undo},
    {"redo", "ns", false, redo},
    {"save-all", "ms", false, saveAll},
    {"load-all", "ms", true, load},
    {"open-first", "ms", true, openFirst},
    {"save-100", "ms", false, saveChanges},
    {"save-1", "us", false, saveOne},
    {"bare-commit", "us", false, bareCommit},
    {"clone", "ns/record", false, clone},
    {"memory-loaded", "bytes/record", true, memory},
    {"memory-created", "bytes/record", false, memoryCreated},
    {"disk", "bytes/record", true, diskSize},
}};

}  // namespace

std::span<const TaskRow> taskRows() { return kTasks; }
