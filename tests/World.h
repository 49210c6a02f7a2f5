#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "runtime/Services.h"

namespace testworld {

namespace fs = std::filesystem;

/// Answers every question alike and keeps what it was told, as "title|text".
class Person : public runtime::UserInterface {
 public:
  runtime::Answer message(const std::string& text, runtime::Buttons buttons, runtime::Icon,
                          const std::string& title, runtime::Consequence) override {
    told.push_back(title + "|" + text);
    if (onMessage) onMessage();
    if (buttons == runtime::Buttons::YesNo) return agrees ? runtime::Answer::Yes : runtime::Answer::No;
    return agrees ? runtime::Answer::Ok : runtime::Answer::Cancel;
  }
  void explainedMessage(const std::string& text, const std::string& explanation, runtime::Icon icon,
                        const std::string& title) override {
    explained = explanation;
    message(text, runtime::Buttons::Ok, icon, title, runtime::Consequence::Nothing);
  }
  void showCommand(const std::string& title, const std::string&, const std::string& text) override {
    told.push_back(title + "|" + text);
  }
  void letEventsRun() override {
    ++yields;
    if (onEvents) onEvents();
  }
  void consoleOutput(std::string_view) override {}
  void consoleOpened(const runtime::VisibleRun& run) override {
    consoles.push_back(run.title);
    if (onOpened) onOpened();
  }
  void consoleClosed() override {
    if (onClosed) onClosed();
  }

  bool keepsConsole() const override { return readsConsole; }

  std::function<void()> onMessage, onEvents, onOpened, onClosed;
  bool readsConsole = false;
  bool agrees = true;
  int yields = 0;
  std::vector<std::string> told;
  std::string explained;  // by the last message that was
  std::vector<std::string> consoles;
};

class Lines : public runtime::Log {
 public:
  void append(const std::string& text) override { all += text + "\n"; }
  std::size_t size() const override { return all.size(); }
  std::string since(std::size_t place) const override { return all.substr(place); }
  std::string all;
};

/// Whether it stands somewhere in the text, which a failure shows.
inline testing::AssertionResult has(const std::string& text, const std::string& part) {
  if (text.find(part) != text.npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "no \"" << part << "\" in: " << text;
}

/// A drive C: ("disk"), a program folder with links to real tools ("prog/bin"), and a temporary folder
/// ("tmp"), all below a folder of its own.
class World : public testing::Test {
 protected:
  World() {
    for (const char* folder : {"disk", "prog/bin", "tmp"}) fs::create_directories(root_ + "/" + folder);
    for (const char* tool : {"tar", "chmod", "ls", "find", "ar"}) link(tool, std::string(tool) + ".exe");
    for (const char* tool : {"cp", "gzip", "bzip2"}) link(tool, tool);
    setenv("TMPDIR", (root_ + "/tmp").c_str(), 1);
  }
  ~World() override {
    unsetenv("TMPDIR");
    fs::remove_all(root_);
  }

  void findTools() {
    cygwin_.AddDotToPath();
    cygwin_.FindCygwinRoot();
    cygwin_.CheckCygwinTools();
  }
  /// A program that was built beside the tests.
  static std::string built(const std::string& name) {
    return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / name;
  }
  /// Puts a shell script in the place of a tool.
  void tool(const std::string& name, const std::string& script) const {
    const std::string file = root_ + "/prog/bin/" + name;
    fs::remove(file);
    std::ofstream(file) << "#!/bin/sh\n" << script << "\n";
    fs::permissions(file, fs::perms(0755));
  }
  std::string host(const std::string& name) const { return root_ + "/disk/" + name; }
  void write(const std::string& name, const std::string& text = "text") const {
    fs::create_directories(fs::path(host(name)).parent_path());
    std::ofstream(host(name), std::ios::binary) << text;
  }
  /// PREFIX0, PREFIX1 ..
  static std::vector<std::string> numbered(const std::string& prefix, int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.push_back(prefix + std::to_string(i));
    return names;
  }
  std::string bytes(const std::string& name) const {
    std::ifstream file(host(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static std::string output(const std::string& command) {
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    for (int c = 0; (c = fgetc(pipe)) != EOF;) text += static_cast<char>(c);
    return pclose(pipe) == 0 ? text : "failed: " + text;
  }
  /// Words of a script that keep what printf makes of `words`, as a whole.
  std::string keep(const std::string& words) const {
    return "printf " + words + " >'" + root_ + "/new' && mv '" + root_ + "/new' '" + root_ + "/kept'";
  }
  /// What a program that goes on by itself has kept, once it has.
  std::string kept() const {
    for (int i = 0; i < 2000 && !fs::exists(root_ + "/kept"); ++i) usleep(10'000);
    return output("cat '" + root_ + "/kept' && rm '" + root_ + "/kept'");
  }
  runtime::Services services() { return {system_, api_, cygwin_, person_, log_, stored_}; }

  void link(const std::string& tool, const std::string& name) const {
    fs::create_symlink("/usr/bin/" + tool, root_ + "/prog/bin/" + name);
  }

  static std::string newFolder() {
    std::string name = fs::temp_directory_path() / "pakrune-test-XXXXXX";
    return mkdtemp(name.data());
  }

  std::string root_ = newFolder();
  platform::DriveTable drives_{{{'C', root_ + "/disk"}, {'Z', "/"}}};
  platform::Files files_{drives_};
  platform::Environment environment_{drives_, environ};
  platform::Registry registry_{root_ + "/registry.txt", root_ + "/site.txt"};
  platform::UserSettings userSettings_{registry_};
  std::string program_ = drives_.toWindows(root_ + "/prog") + "\\";
  platform::HostCommandRunner commands_{drives_, environment_, program_};
  platform::Busy busy_;
  platform::System system_{drives_, files_, environment_, registry_, userSettings_, commands_, busy_};
  Person person_;
  Lines log_;
  runtime::Settings stored_{registry_, userSettings_, log_};
  runtime::modAPI api_{system_, person_};
  runtime::CygwinEnvironment cygwin_{system_, api_, person_, program_};
};

}  // namespace testworld
