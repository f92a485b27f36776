// A modeller behind a wall: the same results, and every kind of death of one operation only.
#include "platform/modeler_wall/walled_modeler.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "tests/support/faulty_modeler.h"
#include "tests/support/modeler_testing.h"
#include "tests/support/test_folder.h"

namespace {

using Kind = OdModelerBooleanKind;

class WalledModelerTest : public ModelerTest {
 protected:
  WalledModelerTest() { install({.budget = {.seconds = 1, .bytes = OdUInt64{256} << 20U}}); }

  void install(OdWallSettings settings, bool spoilsHistories = false) {
    settings.onFailure = [this](const OdWallFailure& failure) { m_failures.push_back(failure); };
    auto faulty = std::make_shared<FaultyModeler>(odCreateOcctModeler(), spoilsHistories);
    odSetModeler(odCreateWalledModeler(std::move(faulty), std::move(settings)));
  }
  static OdStatus tryCylinder(double radius) {
    OdModelerBodyPtr result;
    OdStatus status = odModeler().cylinder(radius, 10.0, result);
    EXPECT_EQ(status.ok(), result != nullptr);
    return status;
  }
  /// How many bodies were handed over to the worker, or read in it.
  static int numRead() {
    OdModelerBodyPtr result;
    return std::stoi(std::string(odModeler().sphere(1.0, result).text.utf8()));
  }

  std::vector<OdWallFailure> m_failures;
};

/// The processes whose parent is `parent`.
std::vector<pid_t> childrenOf(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const pid_t process = std::atoi(entry.path().filename().c_str());
    if (process == 0) continue;
    std::string text;
    std::getline(std::ifstream(entry.path() / "stat"), text);  // "process (name) state parent ..."
    const std::size_t name = text.rfind(')');
    if (name != std::string::npos && std::atoi(text.c_str() + name + 4) == parent) {
      children.push_back(process);
    }
  }
  return children;
}

/// The mappings of this process that others may share.
long numSharedMappings() {
  std::ifstream maps("/proc/self/maps");
  return std::count_if(std::istream_iterator<std::string>(maps), {},
                       [](const std::string& word) { return word == "rw-s"; });
}

/// Everything that a chain of operations gives.
struct Outcome {
  std::map<OdUInt32, std::vector<OdUInt32>> faces;
  double volume = 0.0;
  std::size_t triangles = 0;
};

class SameOutcome : public WalledModelerTest {
 protected:
  static Outcome play() {
    Outcome outcome;
    OdModelerHistory history;
    OdModelerBodyPtr body = plateWithHole();
    body = combine(Kind::kUnite, body, {cylinder(5.0, 30.0, {10.0, 10.0, 0.0})}, &history);
    const std::vector<OdUInt32> edges{body->face(faceTowards(*body, OdGeVector3d::kXAxis)).edges};
    body =
        made([&](auto& result) { return odModeler().fillet(body, edges, 2.0, result, nullptr); });
    OdUInt32 wall = 1;
    while (!body->face(wall).inward) ++wall;
    body = made([&](auto& result) {
      return odModeler().removeFaces(body, std::vector<OdUInt32>{wall}, result, nullptr);
    });
    EXPECT_TRUE(body->check().ok());
    const auto mesh = made<OdModelerMesh>([&](auto& m) { return body->tessellate({}, m); });
    for (const OdModelerFaceMesh& face : mesh.faces) outcome.triangles += face.triangles.size();
    outcome.faces = history.faceMarkers(0);
    outcome.volume = body->massProperties().volume;
    return outcome;
  }
};

TEST_F(SameOutcome, AsWithoutTheWall) {
  const Outcome walled = play();
  odSetModeler(odCreateOcctModeler());
  const Outcome plain = play();
  EXPECT_EQ(walled.faces, plain.faces);
  EXPECT_EQ(walled.triangles, plain.triangles);
  EXPECT_NEAR(walled.volume, plain.volume, 1e-9 * plain.volume);
  EXPECT_GT(plain.triangles, 0U);
  EXPECT_FALSE(plain.faces.empty());
}

TEST_F(SameOutcome, AProfileAndAnAssemblyArriveWhole) {
  OdModelerProfile profile;
  profile.outer = {{{0.0, 0.0}}, {{20.0, 0.0}}, {{20.0, 10.0}}, {{0.0, 10.0}}};
  profile.holes = {{{{4.0, 5.0}, 1.0}, {{6.0, 5.0}, 1.0}}};
  const OdModelerBodyPtr swept = made([&](auto& result) {
    return odModeler().extrude(profile, {0.0, 0.0, 3.0}, result);
  });
  const double expected = 3.0 * (200.0 - std::numbers::pi);
  EXPECT_NEAR(swept->massProperties().volume, expected, 1e-6);

  const TestFolder folder;
  const OdString file = OdString::fromUtf8((folder.path() / "swept.stp").string());
  OdModelerAssembly assembly;
  assembly.products.push_back({L"outer", L"outer", {}, {{1, OdGeMatrix3d(), L"first", {}}}});
  assembly.products.push_back({L"inner", L"inner", {colored(swept, {255, 0, 0}, L"swept")}, {}});
  assembly.products[1].layers = {L"thin"};
  assembly.roots.push_back({0, OdGeMatrix3d(), L"root", {}});
  assembly.sourceUnit = {L"inches", 25.4};
  assembly.header.timeStamp = L"2026-01-31T12:00:00";
  ASSERT_TRUE(odModeler().exportStep(file, assembly).ok());
  const auto read =
      made<OdModelerAssembly>([&](auto& a) { return odModeler().importStep(file, a); });
  ASSERT_EQ(read.products.size(), 2U);
  ASSERT_EQ(read.products[1].bodies.size(), 1U);
  EXPECT_EQ(read.products[1].name, OdString(L"inner"));
  EXPECT_EQ(read.products[1].bodies[0]->attributes().color, (OdModelerColor{255, 0, 0}));
  EXPECT_NEAR(read.products[1].bodies[0]->massProperties().volume, expected, 1e-6);
  EXPECT_EQ(read.products[1].layerOf(0), OdString(L"thin"));
  EXPECT_EQ(read.sourceUnit.millimetres, 25.4);
  EXPECT_EQ(read.header.timeStamp, assembly.header.timeStamp);
  OdModelerAssembly none;
  EXPECT_EQ(odModeler().importStep(file, {L"no encoding", false}, none).code, eInvalidInput);
}

TEST_F(WalledModelerTest, EveryDeathFailsOneOperationAndNothingElse) {
  struct Row {
    double radius;
    const char* text;
  };
  std::vector<Row> rows{{fault::kCrash, "cylinder: it crashed (segmentation fault)"},
                        {fault::kLoop, "cylinder: it did not end within 1 s of processor time"},
                        {fault::kExit, "cylinder: it ended by itself with code 7"}};
#if !defined(__SANITIZE_ADDRESS__)
  rows.push_back({fault::kEatMemory, "out of memory"});
#endif
  const OdModelerBodyPtr plate = plateWithHole();
  const OdModelerBodyPtr tool = cylinder(5.0, 30.0, {10.0, 10.0, 0.0});
  for (const Row& row : rows) {
    m_failures.clear();
    const OdStatus status = tryCylinder(row.radius);
    EXPECT_NE(status.text.utf8().find(row.text), std::string_view::npos) << status.text.utf8();
    ASSERT_EQ(m_failures.size(), 1U);
    EXPECT_EQ(m_failures[0].operation, OdString(L"cylinder"));
    // The bodies from before are as good as ever.
    const OdModelerBodyPtr both = combine(Kind::kUnite, plate, {tool});
    EXPECT_TRUE(both->check().ok());
    EXPECT_GT(both->massProperties().volume, plate->massProperties().volume);
  }
}

TEST_F(WalledModelerTest, AWorkerThatWaitsForeverIsKilled) {
  install({.budget = {}, .clockSeconds = 1});
  const OdStatus status = tryCylinder(fault::kWait);
  EXPECT_EQ(status.text, OdString(L"cylinder: it did not end within 1 s"));
}

TEST_F(WalledModelerTest, AStoppedProcessIsWaitedForNoLongerThanTheClock) {
  install({.budget = {}, .clockSeconds = 1});
  const OdModelerBodyPtr plate = box(10.0, 10.0, 10.0);
  const pid_t keeper = childrenOf(getpid()).at(0);
  ASSERT_EQ(kill(childrenOf(keeper).at(0), SIGSTOP), 0);
  // More than a channel takes up while its other end does not read.
  const std::vector<OdUInt32> faces(1'000'000, 1);
  OdModelerBodyPtr result;
  EXPECT_EQ(odModeler().removeFaces(plate, faces, result, nullptr).text,
            OdString(L"removal of faces: it did not end within 1 s"));
  EXPECT_TRUE(plate->check().ok());  // in a new worker
  EXPECT_FALSE(tryCylinder(fault::kExit).ok());
  ASSERT_EQ(kill(keeper, SIGSTOP), 0);
  for (int tries = 0; tries < 2; ++tries) {
    const OdString text = plate->check().text;
    EXPECT_NE(text.utf8().find("its keeper died or does not answer"), std::string_view::npos);
  }
  EXPECT_TRUE(childrenOf(getpid()).empty());
}

TEST_F(WalledModelerTest, AWallThatCannotBeMadeLeavesNothing) {
  const long before = numSharedMappings();
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  const rlimit none{0, files.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  EXPECT_THROW((void)odCreateWalledModeler(odCreateOcctModeler()), OdError);
  setrlimit(RLIMIT_NOFILE, &files);
  EXPECT_EQ(numSharedMappings(), before);
  EXPECT_GT(before, 0);
}

TEST_F(WalledModelerTest, ABodyIsHandedOverOnceByItsContent) {
  const OdModelerBodyPtr plate = plateWithHole();
  const OdModelerBodyPtr tool = cylinder(5.0, 30.0, {10.0, 10.0, -10.0});
  const int before = numRead();
  const OdModelerBodyPtr cut = combine(Kind::kSubtract, plate, {tool});
  // The plate was made by the worker; the tool was moved here.
  EXPECT_EQ(numRead() - before, 1);
  (void)combine(Kind::kUnite, cut, {tool});
  (void)combine(Kind::kSubtract, bodyOf(bytesOf(cut)), {box(9.0, 9.0, 9.0)});
  EXPECT_EQ(numRead() - before, 1);
  (void)tryCylinder(fault::kCrash);
  (void)combine(Kind::kUnite, cut, {tool});
  EXPECT_EQ(numRead(), 2);  // a new worker has neither
}

TEST_F(WalledModelerTest, TheWorkerKeepsNoMoreThanItMay) {
  install({.budget = {}, .keptBytes = 1});
  const OdModelerBodyPtr plate = plateWithHole();
  const OdModelerBodyPtr tool = cylinder(5.0, 30.0, {10.0, 10.0, -10.0});
  const OdModelerBodyPtr other = cylinder(6.0, 30.0, {30.0, 10.0, -10.0});
  for (int round = 1; round <= 3; ++round) {
    EXPECT_TRUE(combine(Kind::kSubtract, plate, {tool, other})->check().ok());
    EXPECT_TRUE(combine(Kind::kIntersect, other, {plate})->check().ok());
  }
}

TEST_F(WalledModelerTest, AnAnswerThatDoesNotFitIsNotTaken) {
  install({}, /*spoilsHistories=*/true);
  const OdModelerBodyPtr plate = box(10.0, 10.0, 10.0);
  const std::vector<OdModelerBodyPtr> tools{cylinder(2.0, 20.0, {5.0, 5.0, -5.0})};
  OdModelerBodyPtr result;
  OdModelerHistory history;
  const OdStatus status = odModeler().boolean(Kind::kSubtract, plate, tools, result, &history);
  EXPECT_EQ(status.code, eModelerError);
  EXPECT_NE(status.text.utf8().find("boolean: the worker's answer is not sound"),
            std::string_view::npos);
  EXPECT_EQ(result, nullptr);
  EXPECT_TRUE(history.inputs.empty());
  EXPECT_TRUE(odModeler().boolean(Kind::kSubtract, plate, tools, result, nullptr).ok());
}

TEST_F(WalledModelerTest, ThreadsTakeTurns) {
  const OdModelerBodyPtr plate = box(100.0, 100.0, 10.0);
  std::vector<double> volumes(4);
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < volumes.size(); ++i) {
      threads.emplace_back([&plate, &volumes, i] {
        const double radius = 1.0 + static_cast<double>(i);
        const OdModelerBodyPtr tool = cylinder(radius, 30.0, {50.0, 50.0, -10.0});
        if (i == 2) (void)tryCylinder(fault::kCrash);
        volumes[i] = combine(Kind::kSubtract, plate, {tool})->massProperties().volume;
      });
    }
  }
  for (std::size_t i = 0; i < volumes.size(); ++i) {
    const double radius = 1.0 + static_cast<double>(i);
    EXPECT_NEAR(volumes[i], 1e5 - 10.0 * std::numbers::pi * radius * radius, 1e-4);
  }
}

TEST_F(WalledModelerTest, BodiesOutliveTheWall) {
  const OdModelerBodyPtr plate = plateWithHole();
  odSetModeler(odCreateOcctModeler());
  EXPECT_TRUE(plate->check().ok());
  EXPECT_NEAR(plate->massProperties().volume, 6e4 - 640.0 * std::numbers::pi, 1e-4);
  EXPECT_NE(made<OdModelerMesh>([&](auto& m) { return plate->tessellate({}, m); }).faces.size(),
            0U);
}

TEST(WallWorker, EndsWithItsHost) {
  const pid_t host = fork();
  ASSERT_GE(host, 0);
  if (host == 0) {
    setpgid(0, 0);
    const auto modeler = odCreateWalledModeler(odCreateOcctModeler());
    OdModelerBodyPtr made;
    if (!modeler->box(1.0, 1.0, 1.0, made).ok()) _exit(1);
    raise(SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(host, &status, 0), host);
  ASSERT_TRUE(WIFSIGNALED(status));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (kill(-host, 0) == 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(kill(-host, 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

}  // namespace
