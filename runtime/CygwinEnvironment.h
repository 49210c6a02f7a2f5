#pragma once

#include <optional>
#include <string>

#include "platform/System.h"
#include "platform/SystemInfo.h"
#include "runtime/UserInterface.h"
#include "runtime/modAPI.h"

namespace runtime {

/// "95", "98", "3.51", "4.0", "2000", "NT" (exactly 5.1), "Failed", or empty for every other version and a
/// failed query.
std::string GetOSVersion(const std::optional<platform::SystemVersion>& version);

/// Where the tools are and what their children inherit.
class CygwinEnvironment {
 public:
  CygwinEnvironment(platform::System system, modAPI& api, UserInterface& user, std::string exePath);

  void AddDotToPath();
  void FindCygwinRoot();
  void CheckCygwinTools();
  void SetCygwinEnvironment();

  const std::string& cygwinRoot() const { return cygwinRoot_; }  ///< trailing backslash
  const std::string& cygwinBin() const {
    return cygwinBin_;
  }  ///< trailing backslash; empty until tools are found
  const std::string& GetEXEPath() const { return exePath_; }  ///< the program's folder, trailing backslash

 private:
  bool toolStarts(const std::string& bin, const std::string& tool);
  bool rootWorks(const std::string& root);
  platform::System system_;
  modAPI& api_;
  UserInterface& user_;
  std::string exePath_;
  std::string cygwinRoot_;
  std::string cygwinBin_;
};

}  // namespace runtime
