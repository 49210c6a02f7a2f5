#include "runtime/MissingTool.h"

namespace runtime {

void tellToolMissing(UserInterface& user, const std::string& tool, const std::string& title) {
  user.message("Error: Unable to locate '" + tool + "'.\r\nTry reinstalling Pakrune or Cygwin", Buttons::Ok,
               Icon::Critical, title);
}

bool toolFound(const Services& services, const std::string& tool, const std::string& title) {
  if (services.api.ProbeTool(withTrailingBackslash(services.cygwin.cygwinBin()) + tool)) return true;
  tellToolMissing(services.user, tool, title);
  return false;
}

}  // namespace runtime
