// Pieces that the families of commands share.
#include "host/cli/command_parts.h"

namespace cli {

CLI::App* addCommand(CLI::App& parent, CommandRun& line, const char* name, const char* purpose,
                     const std::string& example) {
  CLI::App* command = parent.add_subcommand(name, purpose);
  command->footer("Example:\n  " + example);
  command->add_flag("--json", line.settings.json, "print JSON");
  command->add_flag("--no-modules", line.settings.noModules,
                    "do not load the modules; their objects stay proxies");
  command
      ->add_option("--module", line.settings.modulePath,
                   "file or folder of the module, instead of the one beside the program")
      ->envname("VDM_MODULE_PATH")
      ->type_name("PATH");
  command
      ->add_option("--keep-failed", line.settings.keepFailed,
                   "folder for what a failing operation of the modeller worked on")
      ->type_name("DIR");
  command
      ->add_option("--wait", line.settings.waitSeconds,
                   "how long a save waits for programs that read the drawing, and reading for a "
                   "save")
      ->check(CLI::Range(0.0, 86400.0))
      ->envname("VDM_WAIT")
      ->type_name("SECONDS");
  return command;
}

void addInput(CLI::App* command, std::string& path, const char* name, const char* purpose) {
  command->add_option(name, path, purpose)->required()->type_name("");
}

void addForce(CLI::App* command, OutputFile& output) {
  command->add_flag("--force", output.force, "replace an existing output");
}

CLI::Option* addOutput(CLI::App* command, OutputFile& output, const char* purpose) {
  addForce(command, output);
  return command->add_option("-o,--output", output.path, purpose)->type_name("OUT");
}

}  // namespace cli
