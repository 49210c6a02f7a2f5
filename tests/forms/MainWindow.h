#pragma once

#include "platform/HeldName.h"
#include "shell/ui/frmMain.h"
#include "tests/forms/Forms.h"

namespace tests {

constexpr const char* settingsKey = "SOFTWARE\\Halvoren Inc\\Pakrune";

/// A main window over a disk of its own; `load` starts it as the arguments say.
class MainTest : public testworld::World {
 protected:
  MainTest() {
    write("pkg/a.txt");
    write("pkg/b c.txt");
    write("pkg/.hidden");
    write("pkg/sub/x");
    for (const char* name : {"PAKRUNE_WINVER", "PAKRUNE_ADMIN"}) unsetenv(name);
    person_.onEvents = [this] {
      QApplication::processEvents();
      if (meanwhile_) meanwhile_();
    };
  }
  ~MainTest() override {
    for (const char* name : {"PAKRUNE_WINVER", "PAKRUNE_ADMIN"}) unsetenv(name);
  }

  std::string textOf(const std::vector<std::string>& arguments) const {
    const auto toWindows = [this](std::string_view path) {
      return platform::typedPath(drives_, path, "C:\\");
    };
    return shell::readArguments(arguments, toWindows, platform::holdName).text;
  }
  bool load(const std::vector<std::string>& arguments) {
    const bool goesOn = window_.Load(shell::parseCommandLine(textOf(arguments)));
    QApplication::processEvents();
    return goesOn;
  }
  template <typename Widget = QWidget>
  Widget* find(const char* name) {
    Widget* const found = window_.findChild<Widget*>(name);
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  QAction* action(const char* name) { return find<QAction>(name); }
  std::string logText() { return find<QPlainTextEdit>("txtLog")->toPlainText().toStdString(); }
  std::vector<std::string> selected() const { return program_object_.selection.selectedPaths; }
  /// Acts on the next modal window once it is filled.
  void onFilledModal(const std::function<void(QWidget&)>& act) {
    onNextModal<QWidget>([this, act](QWidget& modal) {
      busy_.held() ? QTimer::singleShot(5, &window_, [this, act] { onFilledModal(act); }) : act(modal);
    });
  }
  void storeFirstRun() {
    registry_.write(platform::Hive::LocalMachine, settingsKey, "FirstRun", {platform::ValueType::Text, "1"});
  }

  std::function<void()> meanwhile_;
  Pickers pickers_;
  shell::Program program_object_{system_, program_, person_};
  shell::frmMain window_{program_object_, pickers_};
};

}  // namespace tests
