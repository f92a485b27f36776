// The command line of `vdm batch`: a table of its options.
#include "host/cli/command_line_batch.h"

namespace cli {

namespace {

struct TextRow {
  const char* name;
  std::string BatchOptions::*text;
  const char* type;
  const char* help;
};
constexpr TextRow kTexts[] = {
    {"--export", &BatchOptions::exportTo, "PATH",
     "STEP file of each row, such as 'parts/{row}.step'"},
    {"--render", &BatchOptions::renderTo, "PATH",
     "picture or model of each row, such as '{number}.png'; .png, .svg or .glb"},
    {"--size", &BatchOptions::size, "WxH", "of these pictures in pixels"},
    {"--view", &BatchOptions::view, "VIEW",
     "where the eye is: iso, top, bottom, front, back, right, left or x,y,z"},
    {"--density", &BatchOptions::density, "TEXT",
     "parameter or value, such as '7.85 g/cm^3', for the masses; the parameter density by default"},
    {"--results", &BatchOptions::results, "DIR",
     "folder of finished rows, from which a batch continues; NAME.batch beside the drawing by "
     "default"},
    {"--block", &BatchOptions::block, "NAME", "block that is meant; model space by default"},
    {"--table", &BatchOptions::table, "NAME", "name of the table where there are several"},
};

struct FlagRow {
  const char* name;
  bool BatchOptions::*flag;
  const char* help;
};
constexpr FlagRow kFlags[] = {
    {"--fresh", &BatchOptions::fresh, "compute each row from the drawing, none from its neighbour"},
    {"--retry", &BatchOptions::retry, "compute rows again that are not sound"},
    {"--force", &BatchOptions::force, "replace existing outputs"},
};

}  // namespace

void addBatch(CLI::App& app, CommandRun& line, BatchOptions& options) {
  CLI::App* command = addCommand(
      app, line, "batch",
      "Compute all rows of a table, or a sweep of parameters: files, pictures and a report; exit "
      "code 3 when a row is not sound",
      "vdm batch plate.vdm --rows all --export 'parts/{row}.step' --report table.csv\n"
      "  vdm batch plate.vdm --rows d=6..12:0.5 --rows n=2,4 --sheet variants.png --jobs 2");
  addInput(command, options.input);
  command
      ->add_option("--rows", options.rows,
                   "all, names, S..XL, or a sweep d=6..12:0.5 or d=6,8; several are combined")
      ->allow_extra_args(false)
      ->type_name("ROWS");
  command->add_option("--set", options.sets, "name=expression for all rows")
      ->allow_extra_args(false)
      ->type_name("TEXT");
  for (const TextRow& row : kTexts) {
    command->add_option(row.name, options.*row.text, row.help)->type_name(row.type);
  }
  command->add_option("--report", options.report.path, "table of all rows, .csv or .json")
      ->type_name("OUT");
  command->add_option("--sheet", options.sheet.path, "one .png with small pictures of all rows")
      ->type_name("OUT");
  constexpr unsigned kMostJobs = 1024;
  command
      ->add_option("--jobs", options.jobs,
                   "rows that are computed at a time; one for each processor by default")
      ->check(CLI::Range(1U, kMostJobs))
      ->type_name("NUMBER");
  command->add_option("--timeout", options.timeout, "time for a row, 0 for any")
      ->check(CLI::Range(0.0, 1e7))
      ->capture_default_str()
      ->type_name("SECONDS");
  command->add_option("--memory", options.memory, "memory of a process that computes, 0 for any")
      ->check(CLI::Range(0.0, 1e9))
      ->capture_default_str()
      ->type_name("MiB");
  for (const FlagRow& row : kFlags) command->add_flag(row.name, options.*row.flag, row.help);
  command->callback([&line, &options] {
    options.report.force = options.sheet.force = options.force;
    line.run = [&line, &options] { return runBatch(line.settings, options); };
  });
}

}  // namespace cli
