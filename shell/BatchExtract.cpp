#include "shell/BatchExtract.h"

#include "archive/ExtractJob.h"
#include "platform/HeldName.h"
#include "shell/BatchTools.h"

namespace shell {
namespace {

/// Nothing may be replaced.
class BatchAsker : public archive::OverwriteAsker {
  archive::OverwriteAnswer ask(const archive::OverwriteQuestion& question) override {
    say(platform::shownName(question.path) + " already exists; --yes before -extract replaces it");
    return archive::OverwriteAnswer::Cancel;
  }
};

class Unwatched : public archive::ListingProgress {
  void showPercent(float) override {}
};

/// What is wrong with the record; empty when nothing is.
std::string problem(const platform::Files& files, const std::vector<std::string>& record) {
  if (record.size() < 4 || record[1].empty() || record[3].empty())
    return "-extract needs a folder, an archive and an output folder";
  if (record.size() > 4 && !record[4].empty())
    return "-extract takes one output folder, and nothing behind it: '" + platform::shownName(record[4]) +
           "'";
  if (!files.folderExists(record[1])) return "there is no folder " + platform::shownName(record[1]);
  if (!isPlainName(record[2]) || !files.fileExists(runtime::withTrailingBackslash(record[1]) + record[2]))
    return "no archive '" + platform::shownName(record[2]) + "' in " + platform::shownName(record[1]);
  return "";
}

}  // namespace

int batchExtract(Program& program, const std::vector<std::string>& record) {
  const platform::Busy::Scope busy(program.system.busy);
  const std::string wrong = problem(program.system.files, record);
  if (!wrong.empty()) {
    say(wrong);
    return 1;
  }
  prepareTools(program);
  BatchAsker asker;
  Unwatched progress;
  const std::string archivePath = runtime::withTrailingBackslash(record[1]) + record[2];
  archive::ExtractJob job(program.services(), asker, progress,
                          {archive::Extract::Quickly, archivePath, record[3]});
  if (job.run().end != runtime::JobEnd::Done || program.system.busy.stopRequested()) return 1;
  return print(program.system.drives.toHost(record[3]).value_or(record[3]) + '\n');
}

}  // namespace shell
