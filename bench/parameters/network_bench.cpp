// Edits and evaluates networks of variables, beside a peer parser in the same run.
//
//   vdm_bench_networks [rounds]
//
// Rows show medians of the rounds: microseconds of processor time for each variable that is
// touched, or for each call, and bytes of memory. The peer of an evaluation is the parser's own
// evaluation of the same text.
#include <malloc.h>
#include <muParser.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/naming/stopwatch.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/runtime/runtime_init.h"

namespace {

enum class Shape { kChain, kFan };

double medianOf(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

template <class Call>
double microsecondsOf(Call call) {
  const naming_bench::Stopwatch watch;
  call();
  return watch.seconds() * 1e6;
}

void check(bool holds, const char* what) {
  if (holds) return;
  std::printf("failed: %s\n", what);
  std::exit(1);
}

double bytesInUse() { return static_cast<double>(mallinfo2().uordblks); }

/// A drawing with one network.
class Subject {
 public:
  Subject()
      : m_drawing(m_host.createDatabase()),
        m_network(OdDbAssocNetwork::getInstanceFromObject(m_drawing->getModelSpaceId(), true)) {}

  OdDbObjectId add(const std::string& name, const std::string& text) {
    const OdDbAssocVariablePtr variable = OdDbAssocVariable::createObject();
    const OdDbObjectId id = m_drawing->addOdDbObject(variable, m_network);
    check(network()->addAction(id) == eOk, "addAction");
    check(variable->setName(OdString(name), false) == eOk, "setName");
    check(variable->setExpression(OdString(text)) == eOk, "setExpression");
    return id;
  }
  [[nodiscard]] OdDbAssocNetworkPtr network() const {
    return m_network.openAs<OdDbAssocNetwork>(OdDb::kForWrite);
  }
  void evaluate() const { check(network()->evaluate(nullptr) == eOk, "evaluate"); }
  void step() const { m_drawing->startUndoRecord(); }
  void forgetSteps() const { m_drawing->clearUndo(); }
  void keepNoSteps() const { m_drawing->disableUndoRecording(true); }

 private:
  OdDbHostAppServices m_host;
  OdDbDatabasePtr m_drawing;
  OdDbObjectId m_network;
};

OdDbAssocVariablePtr edit(OdDbObjectId id) { return id.openAs<OdDbAssocVariable>(OdDb::kForWrite); }

void measureOneChange(Shape shape, int count, int rounds) {
  const Subject subject;
  Subject& made = const_cast<Subject&>(subject);
  const OdDbObjectId first = made.add("v0", "1");
  OdDbObjectId last = first;
  for (int i = 1; i < count; ++i) {
    const int read = shape == Shape::kChain ? i - 1 : 0;
    last = made.add("v" + std::to_string(i), "v" + std::to_string(read) + " + 1");
  }
  subject.evaluate();
  subject.forgetSteps();
  std::vector<double> changes, idles;
  for (int round = 0; round < rounds; ++round) {
    subject.step();
    changes.push_back(microsecondsOf([&] {
      check(edit(first)->setValue(OdDbEvalVariant::init(round + 2.0)) == eOk, "setValue");
      subject.evaluate();
    }));
    idles.push_back(microsecondsOf([&] { subject.evaluate(); }));
    const double expected = round + 2.0 + (shape == Shape::kChain ? count - 1 : 1);
    check(edit(last)->numericValue() == expected, "value");
    subject.forgetSteps();
  }
  std::printf("%-5s %7d variables   one changed %7.3f us each   nothing changed %7.3f us\n",
              shape == Shape::kChain ? "chain" : "fan", count, medianOf(changes) / count,
              medianOf(idles));
}

constexpr const char* kTexts[] = {"width * height + depth * pitch - number",
                                  "(width + 2 * pitch) * (height - depth) / (number + 1)"};
constexpr const char* kNames[] = {"width", "height", "depth", "pitch", "number"};

void addFive(Subject& subject) {
  int value = 3;
  for (const char* name : kNames) subject.add(name, std::to_string(++value));
}

void measureExpression(int rounds) {
  constexpr int kCount = 20000;
  constexpr int kReaders = 2000;
  Subject subject;
  addFive(subject);
  std::vector<OdDbObjectId> readers;
  for (int i = 0; i < kReaders; ++i) readers.push_back(subject.add("r" + std::to_string(i), "0"));
  subject.evaluate();
  mu::Parser peer;
  double values[] = {4, 5, 6, 7, 8};
  for (std::size_t i = 0; i < std::size(kNames); ++i) peer.DefineVar(kNames[i], &values[i]);
  double sink = 0.0;
  std::vector<double> first, again, compiles, evaluations, peerEvaluations;
  for (int round = 0; round < rounds; ++round) {
    const auto setAll = [&](const OdString& text) {
      for (const OdDbObjectId id : readers) check(edit(id)->setExpression(text) == eOk, "set");
    };
    setAll(L"0");
    subject.evaluate();
    subject.forgetSteps();
    subject.step();
    first.push_back(microsecondsOf([&] { setAll(kTexts[0]); }) / kReaders);
    subject.step();
    again.push_back(microsecondsOf([&] { setAll(kTexts[1]); }) / kReaders);
    subject.evaluate();
    compiles.push_back(microsecondsOf([&] {
                         for (int i = 0; i < kCount; ++i) {
                           peer.SetExpr(kTexts[i % 2]);
                           sink += peer.Eval();
                         }
                       }) /
                       kCount);
    peer.SetExpr(kTexts[1]);
    peerEvaluations.push_back(microsecondsOf([&] {
                                for (int i = 0; i < 100 * kCount; ++i) sink += peer.Eval();
                              }) /
                              (100.0 * kCount));
    const OdDbObjectId width = subject.network()->variableNamed(L"width");
    const auto change = [&](double value) {
      subject.step();
      check(edit(width)->setValue(OdDbEvalVariant::init(value)) == eOk, "setValue");
      subject.evaluate();
    };
    change(round + 8.5);
    evaluations.push_back(microsecondsOf([&] { change(round + 9.0); }) / kReaders);
  }
  std::printf(
      "set five names: %.2f us with new dependencies, %.2f us with the same ones   peer "
      "compiles in %.2f us\n",
      medianOf(first), medianOf(again), medianOf(compiles));
  std::printf(
      "evaluate five names in a pass: %.3f us, marks and undo included   peer's parser "
      "alone %.3f us\n",
      medianOf(evaluations), medianOf(peerEvaluations));
  check(sink != 0.125, "sink");
}

void measureMemory(const char* name, const char* text) {
  constexpr int kCount = 20000;
  Subject subject;
  addFive(subject);
  subject.keepNoSteps();  // steps of undo are no part of a variable
  const double before = bytesInUse();
  for (int i = 0; i < kCount; ++i) subject.add("r" + std::to_string(i), text);
  subject.evaluate();
  std::printf("memory: %s, all objects included: %.0f bytes a variable\n", name,
              (bytesInUse() - before) / kCount);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 15;
  oddbInitialize();
  for (const Shape shape : {Shape::kChain, Shape::kFan}) {
    for (const int count : {1000, 10000, 100000}) measureOneChange(shape, count, rounds);
  }
  measureExpression(rounds);
  measureMemory("one name", "width + 1");
  measureMemory("five names", kTexts[1]);
  oddbUninitialize();
}
