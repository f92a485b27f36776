// The command line of `vdm`: what it takes, and what runs for it.
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <csignal>
#include <memory>
#include <new>
#include <sstream>
#include <vector>

#include "host/cli/audit_command.h"
#include "host/cli/cli_error.h"
#include "host/cli/clone_command.h"
#include "host/cli/command_line_batch.h"
#include "host/cli/command_line_model.h"
#include "host/cli/command_parts.h"
#include "host/cli/compact_command.h"
#include "host/cli/dump_command.h"
#include "host/cli/export_command.h"
#include "host/cli/import_command.h"
#include "host/cli/info_command.h"
#include "host/cli/inspect_command.h"
#include "host/cli/new_command.h"
#include "host/cli/property_text.h"
#include "host/cli/props_command.h"
#include "host/cli/recover_command.h"
#include "host/cli/text_output.h"
#include "host/cli/tree_command.h"
#include "platform/base/error.h"
#include "platform/base/work_note.h"

namespace cli {

namespace {

/// All options of all commands, and the one command that was named.
struct CommandLine : CommandRun {
  NewOptions newDrawing;
  ImportOptions importStep;
  InfoOptions info;
  InspectOptions inspect;
  TreeOptions tree;
  PropsOptions props;
  std::string propsValue;
  std::string propsJsonValue;
  ExportOptions exportStep;
  AuditOptions audit;
  RecoverOptions recover;
  DumpOptions dump;
  CloneOptions clone;
  OutputFile cloneOutput;
  CompactOptions compact;
  ModelCommandLine model;
  BatchOptions batch;
};

/// Help texts that fit the width of all human output.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() { column_width(kColumn); }

  std::string make_option_desc(const CLI::Option* option) const override {
    return lines(CLI::Formatter::make_option_desc(option));
  }
  std::string make_subcommand(const CLI::App* command) const override {
    std::ostringstream out;
    CLI::detail::format_help(out, command->get_name(), lines(command->get_description()), kColumn);
    return out.str();
  }

 private:
  static constexpr std::size_t kColumn = 22;

  static std::string lines(const std::string& text) {
    std::string out = wrapped(text, "", kTextWidth - kColumn);
    if (!out.empty()) out.pop_back();
    return out;
  }
};

void addNew(CLI::App& app, CommandLine& line) {
  CLI::App* command =
      addCommand(app, line, "new", "Create an empty drawing", "vdm new bracket.vdm --units mm");
  addInput(command, line.newDrawing.output.path, "OUT", "drawing to create");
  command->add_option("--units", line.newDrawing.units, "length unit: mm, cm, m, in, ft, ...")
      ->capture_default_str()
      ->type_name("UNITS");
  addForce(command, line.newDrawing.output);
  setAction(command, line, runNew, line.newDrawing);
}

void addImport(CLI::App& app, CommandLine& line) {
  CLI::App* command =
      addCommand(app, line, "import",
                 "Turn a STEP file into a drawing; exit code 3 when the file is incomplete",
                 "vdm import bracket.step -o bracket.vdm");
  addInput(command, line.importStep.input, "IN", "STEP file");
  addOutput(command, line.importStep.output, "drawing to create")->required();
  command->add_flag("--curves", line.importStep.curves, "take over wireframe and curves, too");
  command->add_flag("--annotations", line.importStep.annotations,
                    "take over drawn dimensions and notes, on the layer Annotations");
  command
      ->add_option("--encoding", line.importStep.encoding,
                   "encoding of the file's names: GBK, Shift_JIS, windows-1252, ...; found out "
                   "where it is not given")
      ->type_name("NAME");
  setAction(command, line, runImport, line.importStep);
}

void addReaders(CLI::App& app, CommandLine& line) {
  CLI::App* info =
      addCommand(app, line, "info", "Show what a drawing holds", "vdm info bracket.vdm --json");
  addInput(info, line.info.input);
  setAction(info, line, runInfo, line.info);

  CLI::App* tree =
      addCommand(app, line, "tree", "Show the product structure of a drawing", "vdm tree pump.vdm");
  addInput(tree, line.tree.input);
  setAction(tree, line, runTree, line.tree);

  CLI::App* dump = addCommand(app, line, "dump", "Print every object as text that can be compared",
                              "vdm dump before.vdm > before.txt");
  addInput(dump, line.dump.input);
  setAction(dump, line, runDump, line.dump);
}

/// A command that looks into the solids of a drawing.
CLI::App* addInspector(CLI::App& app, CommandLine& line, const char* name, const char* purpose,
                       const char* example,
                       int (*action)(const SessionSettings&, const InspectOptions&)) {
  CLI::App* command = addCommand(app, line, name, purpose, example);
  addInput(command, line.inspect.input);
  command
      ->add_option("SOLID", line.inspect.solid, "solid, a name or handle; all of them by default")
      ->type_name("");
  setAction(command, line, action, line.inspect);
  return command;
}

void addInspectors(CLI::App& app, CommandLine& line) {
  CLI::App* selecting[] = {
      addInspector(app, line, "faces", "List faces with kind, size, place and names",
                   "vdm faces plate.vdm --where 'plane & normal=z & highest'", runFaces),
      addInspector(app, line, "edges", "List edges with kind, size, place and names",
                   "vdm edges plate.vdm --where 'of top & convex'", runEdges),
      addInspector(app, line, "vertices", "List vertices with their places and names",
                   "vdm vertices plate.vdm --where 'near 10,20,0'", runVertices)};
  for (CLI::App* command : selecting) {
    command->add_option("--where", line.inspect.where, "selector: show only what it chooses")
        ->type_name("SELECTOR");
  }
  CLI::App* holes =
      addInspector(app, line, "holes", "Recognise holes, slots and pockets with sizes and patterns",
                   "vdm holes plate.vdm --csv", runHoles);
  holes->add_flag("--csv", line.inspect.csv, "print comma-separated values");
}

using PropsAction = int (*)(const SessionSettings&, const PropsOptions&);

CLI::App* addPropsAction(CLI::App& props, CommandLine& line, const char* name, const char* purpose,
                         const char* example, PropsAction action, bool withKey) {
  CLI::App* command = addCommand(props, line, name, purpose, example);
  addInput(command, line.props.input);
  addInput(command, line.props.handle, "HANDLE", "object, in hexadecimal");
  if (withKey) addInput(command, line.props.key, "KEY", "name of the property");
  setAction(command, line, action, line.props);
  return command;
}

void addProps(CLI::App& app, CommandLine& line) {
  CLI::App* props = app.add_subcommand("props", "List, get, set or remove properties of an object");
  props->require_subcommand(1);
  props->footer("Example:\n  vdm props set bracket.vdm 21 material S235JR");
  addPropsAction(*props, line, "list", "List the properties of an object",
                 "vdm props list bracket.vdm 21", runPropsList, /*withKey=*/false);
  addPropsAction(*props, line, "get", "Print the value of a property",
                 "vdm props get bracket.vdm 21 material", runPropsGet, /*withKey=*/true);
  CLI::App* set = addPropsAction(
      *props, line, "set", "Set a property; a present one keeps its type",
      "vdm props set bracket.vdm 21 holes '[4.5, 6]' --type array:double\n"
      "  vdm props set bracket.vdm 21 stock --json-value '{\"type\": \"long\", \"value\": 12}'\n"
      "  vdm props set bracket.vdm 21 label -- -odd-text-",
      runPropsSet, /*withKey=*/true);
  set->add_option("VALUE", line.propsValue,
                  "value: text, or JSON for arrays and maps; after -- when it begins with a dash")
      ->type_name("");
  set->add_option("--type", line.props.type, std::string("type of a new property: ") + kTypeHelp)
      ->type_name("TYPE");
  set->add_option("--json-value", line.propsJsonValue,
                  "typed value: {\"type\": .., \"of\": .., \"key\": .., \"value\": ..}")
      ->type_name("JSON");
  set->callback([&line, set] {
    if (set->count("VALUE") != 0) line.props.value = line.propsValue;
    if (set->count("--json-value") != 0) line.props.jsonValue = line.propsJsonValue;
    line.run = [&line] { return runPropsSet(line.settings, line.props); };
  });
  addPropsAction(*props, line, "remove", "Remove a property",
                 "vdm props remove bracket.vdm 21 material", runPropsRemove, /*withKey=*/true);
}

void addExport(CLI::App& app, CommandLine& line) {
  CLI::App* command = addCommand(app, line, "export", "Write model space as a STEP file",
                                 "vdm export bracket.vdm -o bracket.step");
  addInput(command, line.exportStep.input);
  addOutput(command, line.exportStep.output, "STEP file to write")->required();
  command->add_flag("--reproducible", line.exportStep.reproducible,
                    "no date in the file: the same drawing gives the same bytes");
  setAction(command, line, runExport, line.exportStep);
}

void addKeepers(CLI::App& app, CommandLine& line) {
  CLI::App* audit =
      addCommand(app, line, "audit", "Check a drawing; exit code 3 when findings remain",
                 "vdm audit bracket.vdm --fix");
  addInput(audit, line.audit.input);
  audit->add_flag("--fix", line.audit.fix, "mend what can be mended and save");
  audit->add_flag("--sarif", line.audit.sarif, "print the findings as SARIF 2.1.0");
  setAction(audit, line, runAudit, line.audit);

  CLI::App* recover = addCommand(app, line, "recover",
                                 "Save what is intact in a damaged drawing; exit code 3 when "
                                 "something is lost",
                                 "vdm recover damaged.vdm -o rescued.vdm");
  addInput(recover, line.recover.input, "FILE", "damaged drawing");
  addOutput(recover, line.recover.output, "drawing to create")->required();
  setAction(recover, line, runRecover, line.recover);

  CLI::App* compact = addCommand(app, line, "compact", "Free unused space of a drawing file",
                                 "vdm compact bracket.vdm");
  addInput(compact, line.compact.input);
  setAction(compact, line, runCompact, line.compact);
}

void addClone(CLI::App& app, CommandLine& line) {
  CLI::App* command = addCommand(app, line, "clone",
                                 "Copy a block or an entity, in its drawing or into another one",
                                 "vdm clone pump.vdm 2A --into library.vdm --name impeller");
  addInput(command, line.clone.input);
  addInput(command, line.clone.handle, "HANDLE", "block or entity, in hexadecimal");
  command->add_option("--into", line.clone.into, "drawing that receives the copy")
      ->type_name("OTHER");
  command->add_option("--name", line.clone.name, "name of the copied block")->type_name("NEW");
  command->add_flag("--with-features", line.clone.withFeatures,
                    "an entity takes its names and components along; blocks always do");
  const CLI::Option* output =
      addOutput(command, line.cloneOutput, "save the result here instead of in place");
  command->callback([&line, output] {
    if (output->count() != 0) line.clone.output = line.cloneOutput;
    line.run = [&line] { return runClone(line.settings, line.clone); };
  });
}

/// One line out of the parser's message.
std::string usageLine(const CLI::ParseError& error) {
  std::string text = error.what();
  while (!text.empty() && (text.back() == '\n' || text.back() == '.')) text.pop_back();
  if (text.size() > 1 && std::isupper(static_cast<unsigned char>(text[1])) == 0) {
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  }
  return text + ", see --help";
}

bool isCommand(const CLI::App& app, const std::string& name) {
  const auto isNamed = [&name](const CLI::App* command) { return command->get_name() == name; };
  return !app.get_subcommands(isNamed).empty();
}

int parseAndRun(CLI::App& app, CommandLine& line, int argc, char** argv) {
  if (argc > 1 && argv[1][0] != '-' && !isCommand(app, argv[1])) {
    throw CliError("'" + std::string(argv[1]) + "' is no command of vdm, see --help", kWrongUsage);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success&) {
    throw;
  } catch (const CLI::ParseError& error) {
    throw CliError(usageLine(error), kWrongUsage);
  }
  return line.run();
}

/// Whether a file was written before whatever went wrong.
bool hasWritten() {
  const OdWorkBoard* board = odWorkBoard();
  return board != nullptr && board->written;
}

/// The exit code of the work; errors become one line on standard error.
template <class Work>
int outcomeOf(const Work& work, const CLI::App& app) {
  int code = kCouldNot;
  try {
    return work();
  } catch (const CLI::Success& asked) {
    return app.exit(asked);
  } catch (const CliError& error) {
    printError(error.what());
    code = error.code();
  } catch (const OdError& error) {
    printError(error.description().utf8());
  } catch (const std::bad_alloc&) {
    printError("out of memory");
  } catch (const std::exception& error) {
    printError(error.what());
  }
  return hasWritten() ? kWritten : code;
}

/// What could not be read is not absent: no command that met such a thing ends with kDone.
int withReadFaults(int code, const std::vector<std::string>& faults) {
  constexpr std::size_t kShownFaults = 20;
  for (std::size_t i = 0; i < std::min(faults.size(), kShownFaults); ++i) {
    printError("unreadable: " + faults[i]);
  }
  if (faults.size() > kShownFaults) {
    printError("unreadable: " + std::to_string(faults.size() - kShownFaults) + " more");
  }
  return code == kDone ? kNotSound : code;
}

/// Shows the output. A command that only reads ends like any filter when its reader went away; one
/// that wrote a file must say that it did.
int showOutcome(int code) {
  try {
    if (showOutput() == Shown::kAll) return code;
    if (!hasWritten()) {
      std::signal(SIGPIPE, SIG_DFL);
      std::raise(SIGPIPE);
    }
    printError("a file was written, but standard output cannot be: its reader is gone");
  } catch (const CliError& error) {
    printError(hasWritten() ? std::string("a file was written, but ") + error.what()
                            : std::string(error.what()));
    if (!hasWritten()) return kCouldNot;
  }
  return kWritten;
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // showOutcome() decides
  CommandLine line;
  CLI::App app("Drawings with solid parts that remember: properties, structure, history.", "vdm");
  app.footer(
      "Exit code: 0 done, 1 could not, 2 wrong usage, 3 done but something is not sound,\n"
      "4 a file was written, but what follows could not be done.\n"
      "Example:\n  vdm import bracket.step -o bracket.vdm");
  app.formatter(std::make_shared<HelpFormatter>());
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("vdm ") + VDM_VERSION);
  addNew(app, line);
  addImport(app, line);
  addReaders(app, line);
  addInspectors(app, line);
  addProps(app, line);
  addExport(app, line);
  addKeepers(app, line);
  addClone(app, line);
  addModelCommands(app, line, line.model);
  addBatch(app, line, line.batch);
  std::vector<std::string> readFaults;
  line.settings.readFaults = &readFaults;
  const int code = outcomeOf([&] { return parseAndRun(app, line, argc, argv); }, app);
  return showOutcome(readFaults.empty() ? code : withReadFaults(code, readFaults));
}

}  // namespace cli
