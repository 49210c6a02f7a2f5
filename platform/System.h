#pragma once

#include <string>

#include "platform/Busy.h"
#include "platform/DriveTable.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/Registry.h"

namespace platform {

/// All that the platform gives the program, made once in main() and handed down by reference.
struct System {
  DriveTable& drives;
  Files& files;
  Environment& environment;
  Registry& registry;
  UserSettings& settings;
  CommandRunner& runner;
  Busy& busy;
};

}  // namespace platform
