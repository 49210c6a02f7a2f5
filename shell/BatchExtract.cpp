#include "shell/BatchExtract.h"

#include <iostream>

#include "archive/ExtractJob.h"
#include "platform/HeldName.h"
#include "shell/BatchTools.h"

namespace shell {
namespace {

/// All may be replaced, or nothing.
class BatchAsker : public archive::OverwriteAsker {
 public:
  explicit BatchAsker(bool yes) : yes_(yes) {}
  archive::OverwriteAnswer ask(const archive::OverwriteQuestion& question) override {
    if (yes_) return archive::OverwriteAnswer::YesToAll;
    say(platform::shownName(question.path) + " already exists; --yes before -extract replaces it");
    return archive::OverwriteAnswer::Cancel;
  }

 private:
  bool yes_;
};

class Unwatched : public archive::ListingProgress {
  void showPercent(float) override {}
};

/// What is wrong with the record; empty when nothing is.
std::string problem(const platform::Files& files, const std::vector<std::string>& record) {
  if (record.size() < 4) return "-extract needs a folder, an archive and an output folder";
  if (!files.folderExists(record[1])) return "there is no folder " + platform::shownName(record[1]);
  if (!isPlainName(record[2]) || !files.fileExists(runtime::withTrailingBackslash(record[1]) + record[2]))
    return "no archive '" + platform::shownName(record[2]) + "' in " + platform::shownName(record[1]);
  return "";
}

}  // namespace

int batchExtract(Program& program, const std::vector<std::string>& record, bool yes) {
  const platform::Busy::Scope busy(program.system.busy);
  const std::string wrong = problem(program.system.files, record);
  if (!wrong.empty()) {
    say(wrong);
    return 1;
  }
  prepareTools(program);
  BatchAsker asker(yes);
  Unwatched progress;
  const std::string archivePath = runtime::withTrailingBackslash(record[1]) + record[2];
  archive::ExtractJob job(program.services(), asker, progress,
                          {archive::Extract::Quickly, archivePath, record[3]});
  if (job.run().end != runtime::JobEnd::Done || program.system.busy.stopRequested()) return 1;
  std::cout << program.system.drives.toHost(record[3]).value_or(record[3]) << '\n' << std::flush;
  return std::cout.good() ? 0 : 1;
}

}  // namespace shell
