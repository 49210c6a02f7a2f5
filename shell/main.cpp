#include <QApplication>
#include <cstdlib>
#include <iostream>

#include "platform/HeldName.h"
#include "platform/Signals.h"
#include "platform/StandardStreams.h"
#include "platform/desktop/DisplayCheck.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/ProgramStyle.h"
#include "shell/BatchExtract.h"
#include "shell/BatchPack.h"
#include "shell/BatchTools.h"
#include "shell/BatchUser.h"
#include "shell/CommandLine.h"
#include "shell/ui/DesktopUser.h"
#include "shell/ui/HelpKey.h"
#include "shell/ui/frmMain.h"

namespace {

using shell::CommandLine;
using shell::Form;

constexpr int failed = 1;
constexpr int signalled = 128;  // plus the signal's number, as shells report it

constexpr const char* usage =
    "Usage: pakrune [OPTION]... [SWITCH FOLDER NAME...]\n"
    "       pakrune [PATH...]\n"
    "\n"
    "  -d FOLDER                      open FOLDER\n"
    "  -open FOLDER ARCHIVE           show what an archive holds\n"
    "  -pack FOLDER NAME...           select entries and open the archive dialog\n"
    "  -perms FOLDER NAME...          select entries to set their permissions\n"
    "  -qpack FOLDER NAME...          pack entries with the default settings, no dialog\n"
    "  -extract FOLDER ARCHIVE DEST   extract a whole archive into DEST, no dialog\n"
    "\n"
    "  --batch    before -qpack or -extract: no windows, messages on standard error (also\n"
    "             without a display)\n"
    "  --yes      before the switch: agree to what would replace something\n"
    "  --help, --version\n"
    "\n"
    "Before -qpack, instead of the archive dialog's defaults:\n"
    "  --output PATH        the archive; its extension decides the compression\n"
    "  --owner NAME|NUMBER  owner of every member (usr1 without it); keep: as on disk\n"
    "  --group NUMBER       likewise (1 without it); keep: as on disk\n"
    "  --time SECONDS       time of every member, since 1970; without it SOURCE_DATE_EPOCH, where that is "
    "set\n"
    "  --umask OCTAL        bits that are taken out of every member's mode\n"
    "\n"
    "Folders and paths may be native or Windows paths. Exit status of -qpack and -extract:\n"
    "0 done, 1 refused or failed, 128 + n ended by signal n.\n";

bool isSet(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

bool hasDisplay() { return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM"); }

shell::HostArguments argumentsOf(const shell::Host& host, int argc, char** argv) {
  const auto translate = [&host](std::string_view text) {
    return platform::typedPath(host.drives, text, host.callerFolder);
  };
  return shell::readArguments({argv + 1, argv + argc}, translate, platform::holdName);
}

bool isQuiet(Form form) { return form == Form::QuickPack || form == Form::Extract; }

int runBatch(shell::Host& host, const CommandLine& commandLine, const shell::HostArguments& arguments) {
  const bool yes = arguments.yes;
  host.confineTools();
  shell::BatchUser user(yes);
  shell::Program program(host.system(), host.programFolder, user);
  program.packOptions = arguments.pack;
  program.log.setOnEntry([](const std::string& entry) { std::cerr << platform::shownName(entry) << '\n'; });
  const platform::Busy::Scope job(host.busy);
  return commandLine.form == Form::QuickPack ? shell::batchPack(program, commandLine.fields, yes)
                                             : shell::batchExtract(program, commandLine.fields);
}

/// Qt gets the program's name only, so that a file called "-style" is none of its options.
int runWindows(shell::Host& host, const CommandLine& commandLine, const shell::HostArguments& arguments,
               char* name) {
  int one = 1;
  char* names[] = {name, nullptr};
  QApplication application(one, names);
  QApplication::setApplicationName(QString::fromLatin1(runtime::programTitle));
  platform::desktop::dressApplication();
  QApplication::setQuitOnLastWindowClosed(false);
  host.confineTools();
  shell::DesktopUser user(host.busy, arguments.yes && isQuiet(commandLine.form));
  shell::Program program(host.system(), host.programFolder, user);
  program.packOptions = arguments.pack;
  program.confinementNote = host.confinement->missing();
  platform::desktop::DesktopFilePickers pickers(host.drives);
  const shell::HelpKey helpKey(program);
  platform::desktop::Gate gate(host.busy);
  shell::frmMain window(program, pickers);
  QObject::connect(&gate, &platform::desktop::Gate::endWanted, &window, &shell::frmMain::endProgram);
  return window.Load(commandLine) ? QApplication::exec() : program.exitStatus;
}

int refuse(const std::string& why) {
  shell::say(why);
  return failed;
}

int run(shell::Host& host, const shell::HostArguments& arguments, char* name) {
  if (!arguments.unknown.empty())
    return refuse("there is no option " + arguments.unknown + "; --help lists them");
  const CommandLine commandLine = shell::parseCommandLine(arguments.text);
  const bool quiet = isQuiet(commandLine.form);
  if (arguments.batch && !quiet) return refuse("--batch stands before -qpack or -extract only");
  if (arguments.pack.any() && commandLine.form != Form::QuickPack)
    return refuse("--output, --owner, --group, --time and --umask stand before -qpack only");
  const bool windows = !arguments.batch && hasDisplay() && (!quiet || platform::desktop::displayOpens(name));
  if (windows) return runWindows(host, commandLine, arguments, name);
  if (!quiet) return refuse("no display; without one only -qpack, -extract, --help and --version work");
  if (!arguments.problem.empty()) return refuse(arguments.problem);
  return runBatch(host, commandLine, arguments);
}

}  // namespace

int main(int argc, char** argv) {
  platform::openStandardStreams();
  platform::catchEndSignals();
  shell::Host host;
  const shell::HostArguments arguments = argumentsOf(host, argc, argv);
  if (arguments.help || arguments.version)
    return shell::print(arguments.help ? usage : "pakrune " PAKRUNE_VERSION "\n");
  const int status = run(host, arguments, argv[0]);
  const int signal = platform::endSignal();
  return signal == 0 ? status : signalled + signal;
}
