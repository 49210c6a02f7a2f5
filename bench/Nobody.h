#pragma once

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "runtime/UserInterface.h"

namespace bench {

/// Whoever would sit in front of a bench: a message ends it.
class Nobody : public runtime::UserInterface {
 public:
  runtime::Answer message(const std::string& text, runtime::Buttons, runtime::Icon, const std::string&,
                          runtime::Consequence) override {
    std::fprintf(stderr, "%s\n", text.c_str());
    std::exit(2);
  }
  void showCommand(const std::string&, const std::string&, const std::string&) override {}
  void letEventsRun() override { QApplication::processEvents(); }
  void consoleOutput(std::string_view) override {}
  void consoleOpened(const runtime::VisibleRun&) override {}
  void consoleClosed() override {}
};

class LastLine : public runtime::Log {
 public:
  void append(const std::string& text) override { last = text; }
  std::size_t size() const override { return 0; }
  std::string since(std::size_t) const override { return {}; }
  std::string last;
};

}  // namespace bench
