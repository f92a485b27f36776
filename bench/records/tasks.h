// The measured tasks, as rows.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "bench/records/subject.h"

/// What one run of a task is given and what it found.
struct TaskContext {
  RecordSubject& subject;
  std::size_t count;       ///< records in the document
  std::string path;        ///< a file of its own for the run
  std::string loadedPath;  ///< a file with `count` records of the same subject
};

struct TaskRow {
  const char* name;
  const char* unit;  ///< "ns/record", "ms", "bytes/record"
  bool needsFile;    ///< `loadedPath` must exist
  double (*run)(TaskContext& context);
};

std::span<const TaskRow> taskRows();

/// Bare SQLite: one durable single-row update of a table of `count` rows, in microseconds.
double bareSqliteCommit(const std::string& path, std::size_t count);
