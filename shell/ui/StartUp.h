#pragma once

#include "shell/CommandLine.h"
#include "shell/ui/frmMain.h"

namespace shell {

/// What loading the main window does, in its order: folder, privileges, tools, permission test, and what the
/// command line asks for. A step that fails is skipped. The locks are released however it ends, and the
/// window is then shown unless the program ends.
class StartUp {
 public:
  explicit StartUp(frmMain& window) : window_(window), program_(window.program()) {}

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

  frmMain& window_;
  Program& program_;
};

}  // namespace shell
