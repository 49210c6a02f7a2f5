#pragma once

#include "archive/ExtractJob.h"
#include "tests/OnDisk.h"

namespace tests {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using archive::Extraction;
using archive::OverwriteAnswer;
using testworld::has;

/// Gives its answers in order, the last one again and again.
class Script : public archive::OverwriteAsker {
 public:
  OverwriteAnswer ask(const archive::OverwriteQuestion& question) override {
    if (meanwhile) meanwhile();
    asked.push_back(question.path + (question.isFolder ? "|folder|" : "|file|") + question.member);
    const OverwriteAnswer answer = answers.front();
    if (answers.size() > 1) answers.erase(answers.begin());
    return answer;
  }
  std::vector<OverwriteAnswer> answers = {OverwriteAnswer::Cancel};
  std::vector<std::string> asked;
  std::function<void()> meanwhile;
};

class Unwatched : public archive::ListingProgress {
 public:
  void showPercent(float value) override {
    percent = value;
    if (meanwhile) meanwhile();
  }
  std::function<void(std::size_t)> unpacking(std::size_t count) override {
    members = count;
    return {};
  }
  std::function<void()> meanwhile;
  float percent = -1;
  std::size_t members = 0;
};

/// A world with an output folder C:\out and a folder "outside" of it.
class ExtractWorld : public testworld::World {
 protected:
  ExtractWorld() {
    findTools();
    fs::create_directory(host("outside"));
    write("outside/kept", "old");
  }

  Extraction extract(archive::ExtractRequest request) {
    const platform::Busy::Scope busy(busy_);
    return archive::ExtractJob(services(), script_, progress_, std::move(request)).run();
  }
  Extraction quick(const std::string& archive, const std::string& out = "C:\\out") {
    return extract({archive::Extract::Quickly, "C:\\" + archive, out});
  }
  /// Extracts from a listing, as the frame does; `unchecked` are members that were unchecked.
  Extraction fromTree(const std::string& archive, bool all = true, const Texts& unchecked = {}) {
    const std::string path = "C:\\" + archive;
    tree_ = archive::ListingJob(services(), path, progress_).run().tree;
    if (tree_.nodeCount() == 0) return extract({archive::Extract::All, path, "C:\\out"});
    for (archive::NodeId node = 1; node <= tree_.nodeCount(); ++node)
      if (std::count(unchecked.begin(), unchecked.end(), tree_.memberPath(node)) > 0)
        tree_.setChecked(node, false);
    return extract({all ? archive::Extract::All : archive::Extract::Selected, path, "C:\\out", tree_});
  }
  /// A script in a tool's place; "real" is the tool itself.
  void fakeTool(const std::string& name, const std::string& script) const {
    tool(name + (name == "gzip" ? "" : ".exe"), "real=/usr/bin/" + name + "\n" + script);
  }
  /// An ipk of these files of the folder "in".
  void writePackage(const std::string& files) const {
    output("cd " + host("in") + " && ar -q ../p.ipk " + files + " 2>/dev/null");
  }
  /// Asks for a stop once a fake tool has told that it is at work.
  void stopWhenAtWork() {
    person_.onEvents = [this] {
      if (fs::exists(root_ + "/at-work")) busy_.requestStop();
    };
  }
  void emptyOut() const {
    fs::remove_all(host("out"));
    fs::create_directory(host("out"));
  }
  /// Behind a name: "/" of a folder, "|" of a pipe, "%" of a device, the mode where it gives rights.
  static std::string mark(const fs::directory_entry& entry) {
    if (entry.is_symlink()) return "";
    if (entry.is_directory()) return "/";
    if (entry.is_fifo()) return "|";
    if (entry.is_character_file()) return "%";
    const unsigned mode = tests::modeOf(entry.path());
    return mode < 01000 ? "" : '(' + output("printf %o " + std::to_string(mode)) + ')';
  }
  /// What stands in the output folder, sorted, with a mark and a blank behind each.
  std::string contents(const std::string& folder = "out") const {
    Texts names;
    for (const auto& entry : fs::recursive_directory_iterator(host(folder)))
      names.push_back(entry.path().lexically_relative(host(folder)).string() + mark(entry));
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += name + ' ';
    return text;
  }
  testing::AssertionResult logged(const std::string& text) const { return has(log_.all, text); }
  bool told(const std::string& text) const {
    return std::count(person_.told.begin(), person_.told.end(), text) == 1;
  }
  void expectNothingOutside() const {
    EXPECT_EQ(contents("outside"), "kept ");
    EXPECT_EQ(bytes("outside/kept"), "old");
    EXPECT_FALSE(fs::exists(host("up")) || fs::exists("/pakrune-absolute"));
  }

  Script script_;
  Unwatched progress_;
  archive::ArchiveTree tree_;
};

}  // namespace tests
