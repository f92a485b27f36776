// Computes rows of a batch, one after the other, in a process of its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/cli/batch_plan.h"
#include "host/cli/opened_drawing.h"
#include "platform/base/work_note.h"
#include "platform/db/trial.h"

namespace cli {

// The words of a record's "status".
inline constexpr const char* kRowSound = "sound";
inline constexpr const char* kRowNotSound = "not sound";  ///< done, with losses
inline constexpr const char* kRowFailed = "failed";       ///< refused: it has no figures
inline constexpr const char* kRowDied = "died";           ///< it cost a process its life

/// Has the drawing open and takes it from row to row, in memory only. What did not change between
/// two rows is not computed again.
///
/// A row hands the drawing on only when it left everything in order: all features applied, no
/// reference lost, split, merged or ambiguous, and none made that the drawing does not have.
/// Otherwise the next row would inherit what is not its own, and begins with the drawing as it is
/// in the file. So does one row of many, since the way back there takes memory.
class BatchRowComputer {
 public:
  BatchRowComputer(const SessionSettings& settings, const BatchOptions& options,
                   const BatchPlan& plan);
  ~BatchRowComputer();

  /// Computes a row, writes its files and then its record. Raises what keeps a record from being
  /// written, and CliError when memory ran out that other rows may have used up: the row is to be
  /// computed in another process.
  void compute(std::size_t row);

 private:
  struct Result;
  void open();
  void takeBack();
  void computeInto(const BatchRow& row, Result& result);
  void apply(const BatchRow& row, Result& result);
  void measure(Result& result);
  void writeFiles(const BatchRow& row, Result& result);

  SessionSettings m_settings;
  const BatchOptions& m_options;
  const BatchPlan& m_plan;
  std::vector<std::string> m_readFaults;
  OdWorkLimit m_limit;
  bool m_isFresh = true;                     // no row was computed before
  std::unique_ptr<OpenedDrawing> m_drawing;  // null: the next row opens it
  std::unique_ptr<OdDbTrial> m_trial;        // the changes of the rows since
  int m_rowsInTrial = 0;
  std::vector<OdDbObjectId> m_references;  // of the drawing as it is in the file
};

}  // namespace cli
