// Measures records in drawings against records in labels. Each measurement runs in a fresh process;
// the two subjects take turns, and the table shows the median of each and their ratio.
//
//   vdm_bench_records [--count N] [--rounds R] [--folder DIR] [--only TASK]
//   vdm_bench_records --flat [--rounds R] [--folder DIR]    (drawings alone, 1,000 to 1,000,000)
//   vdm_bench_records --readers [--count N] [--rounds R] [--folder DIR]    (one read transaction
//                                                            against one for each read)
//   vdm_bench_records run SUBJECT TASK COUNT PATH LOADED    (one measurement, for the above)
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/records/tasks.h"

namespace {

struct Options {
  std::size_t count = 100000;
  int rounds = 3;
  std::string folder = ".";
  std::string only;
};

struct SubjectRow {
  const char* name;
  const char* extension;
  std::unique_ptr<RecordSubject> (*make)();
};
using SubjectPair = std::array<SubjectRow, 2>;  // what is measured, and its peer
constexpr SubjectPair kSubjects = {
    {{"drawing", ".vdm", makeDrawingSubject}, {"labels", ".cbf", makeLabelSubject}}};
constexpr SubjectPair kReaders = {
    {{"one", ".vdm", [] { return makeReadingSubject(/*holdsOneState=*/true); }},
     {"each", ".vdm", [] { return makeReadingSubject(/*holdsOneState=*/false); }}}};

int runOne(char** arguments) {
  const std::string subjectName = arguments[0];
  const std::string taskName = arguments[1];
  const std::size_t count = std::stoul(arguments[2]);
  for (const SubjectRow& row : {kSubjects[0], kSubjects[1], kReaders[0], kReaders[1]}) {
    if (subjectName != row.name) continue;
    const std::unique_ptr<RecordSubject> subject = row.make();
    TaskContext context{*subject, count, arguments[3], arguments[4]};
    if (taskName == "prepare") {
      subject->create(count);
      subject->saveAs(context.loadedPath);
      std::printf("0\n");
      return 0;
    }
    for (const TaskRow& task : taskRows()) {
      if (taskName != task.name) continue;
      std::printf("%.9g\n", task.run(context));
      std::fflush(stdout);
      std::_Exit(0);  // taking the document apart is not measured
    }
  }
  throw std::runtime_error("unknown subject or task: " + subjectName + " " + taskName);
}

/// One measurement in a process of its own.
double measure(const Options& options, const SubjectRow& row, const char* task) {
  const char* subject = row.name;
  const std::string base = options.folder + "/bench_" + subject;
  const std::string path = base + "_run" + row.extension;
  const std::string loaded = base + "_" + std::to_string(options.count) + row.extension;
  std::filesystem::remove(path);
  std::array<int, 2> channel{};
  if (pipe(channel.data()) != 0) throw std::runtime_error("no pipe");
  const std::string count = std::to_string(options.count);
  const pid_t child = fork();
  if (child == 0) {
    dup2(channel[1], STDOUT_FILENO);
    close(channel[0]);
    execl("/proc/self/exe", "vdm_bench_records", "run", subject, task, count.c_str(), path.c_str(),
          loaded.c_str(), nullptr);
    _exit(127);
  }
  close(channel[1]);
  std::string output;
  std::array<char, 256> chunk{};
  for (ssize_t size = 0; (size = read(channel[0], chunk.data(), chunk.size())) > 0;) {
    output.append(chunk.data(), static_cast<std::size_t>(size));
  }
  close(channel[0]);
  int status = 0;
  waitpid(child, &status, 0);
  std::filesystem::remove(path);
  if (status != 0 || output.empty()) {
    throw std::runtime_error(std::string(subject) + " failed at " + task);
  }
  return std::stod(output);
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void measureRow(const Options& options, const SubjectPair& subjects, const TaskRow& task) {
  std::map<std::string, std::vector<double>> found;
  for (int round = 0; round < options.rounds; ++round) {
    for (const SubjectRow& subject : subjects) {
      found[subject.name].push_back(measure(options, subject, task.name));
    }
  }
  const double ours = medianOf(found[subjects[0].name]);
  const double peer = medianOf(found[subjects[1].name]);
  std::printf("%-15s %12.4g %12.4g   %-13s %8.2f\n", task.name, ours, peer, task.unit, peer / ours);
  std::fflush(stdout);
}

void measurePair(const Options& options, const SubjectPair& subjects,
                 const std::function<bool(const std::string&)>& isAsked) {
  std::printf("%zu records, medians of %d rounds\n", options.count, options.rounds);
  std::printf("%-15s %12s %12s   %-13s %8s\n", "task", subjects[0].name, subjects[1].name, "unit",
              "ratio");
  for (const SubjectRow& subject : subjects) measure(options, subject, "prepare");
  for (const TaskRow& task : taskRows()) {
    if (isAsked(task.name)) measureRow(options, subjects, task);
  }
}

void measureAll(const Options& options) {
  measurePair(options, kSubjects, [&options](const std::string& task) {
    return options.only.empty() || options.only == task;
  });
}

void measureReaders(const Options& options) {
  measurePair(options, kReaders,
              [](const std::string& task) { return task == "open-first" || task == "load-all"; });
}

/// Cost per record of drawings alone, by size: what should stay flat.
void measureFlat(Options options) {
  constexpr std::array<const char*, 10> kShown = {"create",     "look-up", "write",    "undo",
                                                  "redo",       "clone",   "save-all", "load-all",
                                                  "open-first", "save-100"};
  constexpr std::array<std::size_t, 4> kCounts = {1000, 10000, 100000, 1000000};
  std::printf("%-12s", "task");
  for (const std::size_t count : kCounts) std::printf(" %12zu", count);
  std::printf("   unit\n");
  for (const TaskRow& task : taskRows()) {
    if (std::find(kShown.begin(), kShown.end(), std::string(task.name)) == kShown.end()) continue;
    const bool perRecord =
        std::string(task.name) == "save-all" || std::string(task.name) == "load-all";
    std::printf("%-12s", task.name);
    for (const std::size_t count : kCounts) {
      options.count = count;
      if (task.needsFile) measure(options, kSubjects[0], "prepare");
      std::vector<double> found;
      for (int round = 0; round < options.rounds; ++round) {
        found.push_back(measure(options, kSubjects[0], task.name));
      }
      const double value = medianOf(found);
      std::printf(" %12.4g", perRecord ? value * 1e6 / static_cast<double>(count) : value);
      std::fflush(stdout);
    }
    std::printf("   %s\n", perRecord ? "ns/record" : task.unit);
  }
}

Options parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string name = argv[i];
    if (name == "--count") options.count = std::stoul(argv[i + 1]);
    if (name == "--rounds") options.rounds = std::stoi(argv[i + 1]);
    if (name == "--folder") options.folder = argv[i + 1];
    if (name == "--only") options.only = argv[i + 1];
  }
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 7 && std::strcmp(argv[1], "run") == 0) return runOne(argv + 2);
    if (argc > 1 && std::strcmp(argv[1], "--flat") == 0) {
      measureFlat(parse(argc - 1, argv + 1));
    } else if (argc > 1 && std::strcmp(argv[1], "--readers") == 0) {
      measureReaders(parse(argc - 1, argv + 1));
    } else {
      measureAll(parse(argc, argv));
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vdm_bench_records: %s\n", error.what());
    return 1;
  }
}
