#pragma once

#include "platform/System.h"
#include "runtime/CygwinEnvironment.h"
#include "runtime/Settings.h"
#include "runtime/UserInterface.h"
#include "runtime/modAPI.h"

namespace runtime {

/// What windows and jobs work with, lent by the program for its whole life.
struct Services {
  platform::System system;
  modAPI& api;
  CygwinEnvironment& cygwin;
  UserInterface& user;
  Log& log;
  Settings& settings;
};

}  // namespace runtime
