#pragma once

#include <string>

#include "download/SerialSettings.h"
#include "runtime/Services.h"

namespace download {

/// What is sent, how, and by which loader. Paths are Windows paths.
struct LoaderRun {
  std::string path;
  SerialSettings settings;
  std::string loaderPath;
};

enum class LoaderStart {
  NotTried,  ///< there was no loader
  Started,   ///< it goes on by itself, in a console of its own
  NoFile,    ///< a box said so
  PortBusy,  ///< or cannot be opened for another reason, which the log has
  Failed,    ///< a box said why
};

/// The command text that is started: the command processor with the quoted loader, then a pause.
std::string loaderCommand(const LoaderRun& run);

/// Checks the file and the port and starts the loader in the file's folder, which becomes the current folder.
/// `timeOfDay`: now, as the system writes it, for the log.
LoaderStart startLoader(const runtime::Services& services, const LoaderRun& run,
                        const std::string& timeOfDay);

}  // namespace download
