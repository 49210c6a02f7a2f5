#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ChildProcess.h"
#include "platform/Confinement.h"
#include "platform/DriveTable.h"
#include "platform/Environment.h"

namespace platform {

struct ChildSettings;

constexpr int notStarted = -1;

/// What a run came to: what a capture collected, and how it ended: `notStarted`, 128 + n for death by signal
/// n (also of one that `step` ended), otherwise the tool's own status.
struct RunResult {
  std::string text;  ///< bytes, NULs and invalid UTF-8 included; empty for a visible run
  int status = notStarted;
  int systemError = 0;      ///< errno of a failed start
  bool pipeFailed = false;  ///< no pipe could be made (systemError says why)
  bool stopped = false;     ///< `step` ended it
};

/// A command line as the tools see it: blanks separate, double quotes group and vanish, nothing is
/// globbed and no shell is involved.
std::vector<std::string> splitCommandLine(std::string_view commandLine);

/// What holds for a run besides its command.
struct RunManner {
  std::optional<MayChange> mayChange = {};  ///< confined to it, as far as the system can; none: not confined
  std::string tarOptions = {};              ///< further ones for the environment
  /// The command of the capture that will come next, in the same folders and manner: begun already now, so
  /// that two processors work. Any other one comes instead: then it is ended. For tools that only look.
  std::string next = {};
};

struct StartRequest {
  std::string commandLine;    ///< one text, tool name first
  std::string workingFolder;  ///< Windows form; the child's
  std::string toolFolder;     ///< Windows form, may be empty; where the tools are, a step of the look-up
  RunManner manner = {};
};

/// Receives output as it arrives (visible runs), also what a tool still wrote while it was ended.
using OutputSink = std::function<void(std::string_view)>;
/// Called about every 20 ms while a run waits or its output flows. Returning false ends the tool and all that
/// it started.
using WaitStep = std::function<bool()>;

/// Starts programs. Arguments `/cygdrive/X/...` (also behind an option's "=") become host paths, held
/// characters the real ones.
class CommandRunner {
 public:
  virtual ~CommandRunner() = default;
  /// stdout and stderr through one pipe, in arrival order; ends at the end of output (a background child that
  /// keeps the pipe open is waited for). stdin is /dev/null. `step` may be empty.
  virtual RunResult capture(const StartRequest& request, const WaitStep& step = {}) = 0;
  /// A visible run: output goes to `sink` as it comes; ends when the tool itself ends.
  virtual RunResult runVisible(const StartRequest& request, const OutputSink& sink, const WaitStep& step) = 0;
};

/// The look-up of a first word, Windows form: the program's own folder, the tools' folder, PATH without ".";
/// a word without an extension is also tried with ".exe", folder by folder. The current folder and the
/// child's working folder may be the user's and are never looked in. A word with a folder part is taken as it
/// stands.
class HostCommandRunner : public CommandRunner {
 public:
  HostCommandRunner(const DriveTable& drives, const Environment& environment, std::string programFolder);
  ~HostCommandRunner() override { endNext(); }
  /// From now on tools are confined as their runs say; lent for as long as this object lives.
  void confine(const Confinement& confinement) { confinement_ = &confinement; }

  RunResult capture(const StartRequest& request, const WaitStep& step = {}) override;
  RunResult runVisible(const StartRequest& request, const OutputSink& sink, const WaitStep& step) override;
  /// The host path; a file that cannot be executed only where there is no other. nullopt: not found.
  std::optional<std::string> findProgram(std::string_view word, std::string_view toolFolder) const;

 private:
  struct Begun {
    Begun(StartRequest what, ChildProcess running) : request(std::move(what)), child(std::move(running)) {}
    StartRequest request;
    ChildProcess child;
  };
  std::optional<ChildProcess> start(const StartRequest& request, RunResult& result) const;
  void endNext();
  std::optional<ChildProcess> startOrTake(const StartRequest& request, RunResult& result);
  bool launched(ChildSettings& settings, const MayChange& mayChange) const;
  const DriveTable& drives_;
  const Environment& environment_;
  std::string programFolder_;
  const Confinement* confinement_ = nullptr;
  std::optional<Begun> next_;
};

}  // namespace platform
