#pragma once

#include <optional>

#include "shell/CommandLine.h"
#include "shell/ui/frmMain.h"

namespace shell {

/// What loading the main window does, in its order: folder, privileges, tools, permission test, and what the
/// command line asks for. A step that fails is skipped. It holds the gate, except where it opens a window to
/// work in. The locks are released however it ends, and the window is then shown unless the program ends.
class StartUp {
 public:
  explicit StartUp(frmMain& window)
      : window_(window), program_(window.program()), busy_(std::in_place, program_.system.busy) {}

  /// False: the program ends.
  bool run(const CommandLine& commandLine);

 private:
  bool dispatch(const CommandLine& commandLine);
  void enterProgramFolder();
  void checkPrivileges();
  void prepareTools();
  void normalTail();
  bool act(const CommandLine& commandLine);
  bool openArchiveView(const CommandLine& commandLine);
  bool quickExtract(const CommandLine& commandLine);
  bool pack(const CommandLine& commandLine);
  bool quickPackSelection(const CommandLine& commandLine);
  bool permissions(const CommandLine& commandLine);
  bool paths(const CommandLine& commandLine);
  void selectNamed(const CommandLine& commandLine);
  bool selectArchive(const CommandLine& commandLine);
  void takeSelection();
  bool showWindow();
  bool ends() const { return window_.ended() || program_.system.busy.endRequested(); }
  void begin(void (frmMain::*action)());

  frmMain& window_;
  Program& program_;
  std::optional<platform::Busy::Scope> busy_;
};

}  // namespace shell
