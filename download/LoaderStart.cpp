#include "download/LoaderStart.h"

#include "platform/PortUse.h"
#include "platform/SerialPorts.h"
#include "platform/StartProgram.h"

namespace download {
namespace {

constexpr const char* noDevice = "there is no serial device";

/// Why not is told by the log: the dialog about it has one text for all reasons.
bool portIsFree(const runtime::Services& services, int comPort) {
  const auto port =
      platform::SerialPorts(services.system.environment, services.system.registry).port(comPort);
  const platform::PortState state =
      port ? platform::portState(port->device) : platform::PortState{platform::PortUse::NoSuchPort, noDevice};
  services.user.letEventsRun();
  if (state.use == platform::PortUse::Free) return true;
  services.log.append(" COM" + std::to_string(comPort) +
                      " cannot be used: " + (port ? port->device + ": " : "") + state.reason);
  return false;
}

}  // namespace

std::string loaderCommand(const LoaderRun& run) {
  return std::string("cmd.exe ") + (run.settings.keepOpen ? "/k" : "/c") + " \"\"" + run.loaderPath +
         "\" -p " + std::to_string(run.settings.comPort) + " -b " + run.settings.baudRate + " -i \"" +
         runtime::GetFileName(run.path) + "\"\" & pause";
}

LoaderStart startLoader(const runtime::Services& services, const LoaderRun& run,
                        const std::string& timeOfDay) {
  if (!services.system.files.fileExists(run.path)) {
    services.user.message("Invalid file: " + run.path, runtime::Buttons::Ok, runtime::Icon::Critical,
                          "Download Error");
    return LoaderStart::NoFile;
  }
  if (!portIsFree(services, run.settings.comPort)) return LoaderStart::PortBusy;
  services.api.SetCurDir(runtime::getFilePath(run.path));
  const std::string problem = platform::startProgram(
      services.system.drives, services.system.environment,
      {loaderCommand(run), services.api.currentFolder(), services.cygwin.GetEXEPath()});
  if (!problem.empty()) {
    services.user.message("Error: Unable to send file to device.\r" + problem, runtime::Buttons::Ok,
                          runtime::Icon::Critical);
    return LoaderStart::Failed;
  }
  services.log.append(timeOfDay + " Initiated " + runtime::GetFileName(run.path) + " download on COM port " +
                      std::to_string(run.settings.comPort));
  return LoaderStart::Started;
}

}  // namespace download
