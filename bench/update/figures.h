// The measured figures of update passes and persistent references, as rows.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "bench/naming/stopwatch.h"

/// One figure: ours and its peer in the same run, in one unit. The ratio is peer / ours.
struct Figure {
  std::string name;
  std::string peerName;
  double ours = 0.0;
  double peer = 0.0;
  const char* unit = "";
};

struct FigureOptions {
  std::vector<std::size_t> features = {1000, 10000, 100000};
  std::vector<std::size_t> cuts = {100, 300};
  std::vector<std::size_t> inserts = {25, 100, 400, 1000};
  std::vector<std::size_t> holes = {10, 100, 400, 1000};
  std::size_t rounds = 15;
  bool peers = true;  ///< moves, resolve: the peers too; by far the most of the time
};

/// Plates with many holes: one is moved; the pass against the modeller's own time, the edit against
/// healing and cutting that one hole with the modeller alone, which looks at the whole body.
std::vector<Figure> measureMoves(const FigureOptions& options);
/// Passes in which features have nothing to do, and listing features, against a function solver.
std::vector<Figure> measureIdlePasses(const FigureOptions& options);
/// References brought up to date and resolved after a cut, against the labels' solve.
std::vector<Figure> measureResolving(const FigureOptions& options);

/// The check of a cut's outcome against the cut, on plates of 300 to 635 faces and on the parts in
/// the folder VDM_STEP_DIR.
std::vector<Figure> measureChecks(const FigureOptions& options);

/// A small hole cut into plates of 300 to 3,000 faces and into the parts in the folder
/// VDM_STEP_DIR: by the faces that it concerns, against the same cut of the whole body.
std::vector<Figure> measureCuts(const FigureOptions& options);

/// The reach of a tool at its place against the cut that it makes there, on plates of 300 and 635
/// faces: in the open, where boxes decide, and in a slit, where a boolean does.
std::vector<Figure> measureFits(const FigureOptions& options);

/// Many inserts as one pass: on one plate against one cut with all tools by the modeller alone, and
/// into 100 solids against the cuts alone.
std::vector<Figure> measureScripts(const FigureOptions& options);

/// A cut behind the wall of platform/modeler_wall against the same cut without it, on plates of 300
/// and 700 faces and on the parts in the folder VDM_STEP_DIR.
std::vector<Figure> measureWall(const FigureOptions& options);

/// Seconds that a call takes, by the clock.
template <class Call>
double secondsOf(Call call) {
  const auto begin = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Seconds of processor time that a call takes.
template <class Call>
double workOf(Call call) {
  const naming_bench::Stopwatch watch;
  call();
  return watch.seconds();
}

inline double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}
