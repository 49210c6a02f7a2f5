#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/System.h"
#include "runtime/CygwinEnvironment.h"
#include "runtime/Selection.h"
#include "runtime/Services.h"
#include "runtime/Settings.h"
#include "runtime/modAPI.h"
#include "shell/LogText.h"
#include "shell/PackOptions.h"

namespace shell {

/// The host's side of the program, made first: drives, files, environment, registry, processes.
struct Host {
  Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  std::string programFolder;  ///< Windows form, trailing backslash
  std::string callerFolder;   ///< where the program was started, Windows form; empty: that folder is gone
  platform::DriveTable drives;
  platform::Files files;
  platform::Environment environment;
  platform::Registry registry;
  platform::UserSettings userSettings;
  platform::HostCommandRunner runner;
  platform::Busy busy;
  std::optional<platform::Confinement> confinement;

  void confineTools();  ///< before the first tool runs; finds out what the system offers for it

  platform::System system() { return {drives, files, environment, registry, userSettings, runner, busy}; }
};

/// The program-wide values, one object made in main() and handed down by reference.
struct Program {
  Program(platform::System host, std::string exePath, runtime::UserInterface& whoever);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  platform::System system;
  runtime::UserInterface& user;
  LogText log;
  runtime::Settings settings;
  runtime::modAPI api;
  runtime::CygwinEnvironment cygwin;
  bool isAdmin = true;
  runtime::Selection selection;
  std::string confinementNote;  ///< what tools are not kept from, for the log; empty: nothing is missing
  PackOptions packOptions;      ///< of a quick pack
  int exitStatus = 0;           ///< of a run that ends by itself: 1 when it was refused or has failed

  runtime::Services services() { return {system, api, cygwin, user, log, settings}; }
};

}  // namespace shell
