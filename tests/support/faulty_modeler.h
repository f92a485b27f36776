// A modeller that dies, loops, eats memory or answers wrongly when a test asks for it.
#pragma once

#include <unistd.h>

#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/failing_modeler.h"

/// What a cylinder of a radius does; any other radius makes a cylinder.
namespace fault {
inline constexpr double kCrash = 666.0;
inline constexpr double kLoop = 667.0;
inline constexpr double kEatMemory = 668.0;
inline constexpr double kExit = 669.0;
inline constexpr double kWait = 670.0;
/// A boolean crashes on a tool whose box is as wide.
inline constexpr double kCrashingTool = 13.25;
}  // namespace fault

/// Faults come with the radius of a cylinder. A sphere fails and says in its text how many bodies
/// were read from bytes so far. A boolean's history is spoilt on request.
class FaultyModeler : public FailingModeler {
 public:
  explicit FaultyModeler(std::shared_ptr<OdModeler> modeler, bool spoilsHistories = false)
      : FailingModeler(std::move(modeler)), m_spoilsHistories(spoilsHistories) {}

  OdStatus cylinder(double radius, double height, OdModelerBodyPtr& result) override {
    if (radius == fault::kCrash) raise(SIGSEGV);
    if (radius == fault::kLoop) loop();
    if (radius == fault::kEatMemory) eatMemory();
    if (radius == fault::kExit) _exit(7);
    if (radius == fault::kWait) pause();
    return FailingModeler::cylinder(radius, height, result);
  }
  OdStatus sphere(double /*radius*/, OdModelerBodyPtr& /*result*/) override {
    OdStatus status{eNotApplicable, {}};
    status.text.format(L"%d", m_numRead);
    return status;
  }
  OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result) override {
    ++m_numRead;
    return FailingModeler::deserialise(bytes, result);
  }
  OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                   std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                   OdModelerHistory* history) override {
    for (const OdModelerBodyPtr& tool : tools) {
      if (std::abs(tool->extents().diagonal().x - fault::kCrashingTool) < 1e-3) raise(SIGSEGV);
    }
    OdStatus status = FailingModeler::boolean(kind, base, tools, result, history);
    if (m_spoilsHistories && history != nullptr) history->inputs[0].faces[0].images = {12345};
    return status;
  }

 private:
  static void loop() {
    for (std::atomic<unsigned> turns = 0;; ++turns) {
    }
  }
  static void eatMemory() {
    std::vector<std::vector<char>> pieces;
    for (;;) pieces.emplace_back(std::size_t{1} << 24U, 'x');
  }

  bool m_spoilsHistories;
  int m_numRead = 0;
};
