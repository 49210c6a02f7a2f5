#include "archive/ExtractJob.h"

#include <algorithm>
#include <system_error>

#include "archive/ArMembers.h"
#include "archive/ExtractCommand.h"
#include "archive/LeftOut.h"
#include "archive/ListingLine.h"
#include "archive/ListingOutput.h"
#include "archive/NamesFile.h"
#include "platform/HeldName.h"
#include "runtime/DirExists.h"
#include "runtime/Pace.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

using runtime::ArchiveKind;
using runtime::Buttons;
using runtime::Icon;
using runtime::JobEnd;
using runtime::withoutSlash;

/// The first folder on a name's way, or the name itself, that is among `names`; nullptr: none is.
const std::string* coverOf(const std::set<std::string>& names, std::string_view name) {
  if (names.empty()) return nullptr;
  name = withoutSlash(name);
  for (std::size_t slash = name.find('/', 1);; slash = name.find('/', slash + 1)) {
    const auto found = names.find(std::string(name.substr(0, slash)));
    if (found != names.end()) return &*found;
    if (slash == name.npos) return nullptr;
  }
}

/// What the archive has of a member, for the question.
std::string inTarText(const std::optional<ArchiveEntry>& entry) {
  if (!entry) return "?";
  return std::string(entry->size) + " bytes, " + std::string(entry->dateTime);
}

std::string_view withoutLeadingDots(std::string_view name) {
  while (name.starts_with("./") || name.starts_with("../")) name.remove_prefix(name.find('/') + 1);
  return name;
}

}  // namespace

ExtractJob::ExtractJob(const runtime::Services& services, OverwriteAsker& asker, ListingProgress& progress,
                       ExtractRequest request)
    : services_(services), asker_(asker), progress_(progress), request_(std::move(request)) {}

Extraction ExtractJob::run() {
  Extraction end = request_.what == Extract::Quickly ? QuickExtract() : ExtractArchive();
  const bool atWork = end.end == JobEnd::Refused || end.end == JobEnd::Failed;
  if (atWork && stopped()) end = {JobEnd::Stopped, Focus::None, end.toolRan};
  if (end.end != JobEnd::Stopped) return end;
  removeEmptyFolder();
  services_.log.append(" Stopped: extracting " + request_.archivePath);
  return end;
}

/// One that this run made before it was stopped.
void ExtractJob::removeEmptyFolder() const {
  if (plan_.outFolder.empty() || folderStood_) return;
  const auto entries = services_.system.files.entries(plan_.outFolder);
  if (entries && entries->empty()) services_.system.files.deleteTree(plan_.outFolder);
}

Extraction ExtractJob::refuse(Focus focus) const {
  return {JobEnd::Refused, focus == Focus::None ? focus_ : focus, false};
}

bool ExtractJob::begin() {
  const CheckedArchive checked =
      checkArchive(services_, request_.archivePath, "Please select a Tar file to extract");
  focus_ = checked.focus;
  if (!checked.kind) return false;
  services_.cygwin.SetCygwinEnvironment();
  plan_.kind = *checked.kind;
  plan_.archivePath = request_.archivePath;
  return true;
}

bool ExtractJob::folderIsChosen() {
  focus_ = Focus::OutputFolder;
  plan_.outFolder = runtime::withTrailingBackslash(request_.outFolder);
  folderStood_ = services_.system.files.folderExists(plan_.outFolder);
  if (request_.outFolder != noFolderChosen) return true;
  services_.user.message("Please choose an output location", Buttons::Ok, Icon::Critical,
                         "Ouput not selected..");
  return false;
}

/// The folder stands afterwards and can be written, or the user has been asked or told.
bool ExtractJob::settleFolder() {
  const platform::Files& files = services_.system.files;
  if (!folderStood_) {
    if (services_.user.message(request_.outFolder + " does not exist, create it?", Buttons::OkCancel,
                               Icon::None, "Create folder?",
                               runtime::Consequence::MakesSomethingNew) != runtime::Answer::Ok)
      return false;
    if (stopped()) return false;
    std::string folder = request_.outFolder;
    runtime::DirExists(files, folder);
  }
  const int problem = files.writeProblem(plan_.outFolder);
  if (problem == 0) return true;
  const char* const what = files.folderExists(plan_.outFolder) ? "write into" : "create";
  services_.user.message("Error: Unable to " + std::string(what) + " folder " + plan_.outFolder + ": " +
                             std::generic_category().message(problem),
                         Buttons::Ok, Icon::Critical);
  return false;
}

/// What was left out of it is told by the log.
Extraction ExtractJob::nothingToExtract() const {
  if (stopped()) return refuse();
  services_.user.message("Error extracting package:\r\n" + plan_.archivePath + "\r\n\r\nNo files to extract",
                         Buttons::Ok, Icon::Information, "Unable To Extract");
  return {JobEnd::Refused, focus_, false, !excludes_.empty()};
}

Extraction ExtractJob::ExtractArchive() {
  if (!begin() || !folderIsChosen() || !settleFolder()) return refuse();
  focus_ = Focus::None;
  if (const JobEnd listed = settleTree(); listed != JobEnd::Done) return {listed, Focus::None, false};
  const bool all = request_.what == Extract::All;
  const std::vector<std::string> members = chooseMembers(*request_.tree, all);
  if (answer_ == OverwriteAnswer::Cancel) return refuse(Focus::OutputFolder);
  if (members.empty()) return answer_ == OverwriteAnswer::NothingAsked ? nothingToExtract() : refuse();
  plan_.members = members;
  if (all) passFewNames();
  return unpack();
}

/// What was ticked counts as it was at the click; an archive that was not listed then is listed now.
JobEnd ExtractJob::settleTree() {
  if (request_.tree) return JobEnd::Done;
  progress_.reading();
  Listing listing = listArchive(services_, plan_.kind, plan_.archivePath, progress_);
  progress_.listed(listing);
  request_.tree = std::move(listing.tree);
  return listing.end;
}

/// Everything is what tar extracts without any names, and it looks for each member through all that it is
/// given.
void ExtractJob::passFewNames() {
  if (answeredNo_ || memberList(plan_.members).size() <= longestNameList) return;
  plan_.members.clear();
  plan_.withWhatIsBelow = true;
}

/// What is extracted after the guard and the questions, in the order of the tree.
std::vector<std::string> ExtractJob::chooseMembers(const ArchiveTree& tree, bool all) {
  std::vector<Contribution> chosen = contributions(tree, all);
  std::set<std::string> asked;
  for (const Contribution& one : chosen) asked.insert(one.members.begin(), one.members.end());
  if (isTar()) asked = guardAgainst(membersOf(tree.listing()), asked);
  std::vector<std::string> members;
  runtime::Pace pace;
  for (Contribution& one : chosen) {
    // A name that is given twice is found once, and tar would miss the other.
    std::erase_if(one.members, [&asked](const std::string& name) { return asked.erase(name) == 0; });
    if (one.members.empty()) continue;
    if (mayExtract(tree.memberPath(one.node), inTarText(tree.entry(one.node))))
      members.insert(members.end(), one.members.begin(), one.members.end());
    if (answer_ == OverwriteAnswer::Cancel) return {};
    if (pace.due()) services_.user.letEventsRun();
  }
  return members;
}

/// Asks unless everything was agreed to or nothing is there. A stop is a Cancel.
bool ExtractJob::mayExtract(const std::string& member, const std::string& inTar) {
  if (stopped()) answer_ = OverwriteAnswer::Cancel;
  if (answer_ == OverwriteAnswer::Cancel) return false;
  if (answer_ == OverwriteAnswer::YesToAll) return true;
  const platform::Files& files = services_.system.files;
  OverwriteQuestion question;
  question.path = plan_.outFolder + member;
  std::replace(question.path.begin(), question.path.end(), '/', '\\');
  while (question.path.ends_with('\\')) question.path.pop_back();
  question.isFolder = files.folderExists(question.path);
  answer_ = OverwriteAnswer::Yes;
  if (!question.isFolder && !files.entryExists(question.path)) return true;
  question.size = files.fileSize(question.path).value_or(0);
  question.modified = files.modifiedTime(question.path);
  question.member = inTar;
  answer_ = asker_.ask(question);
  answeredNo_ = answeredNo_ || answer_ == OverwriteAnswer::No;
  return answer_ == OverwriteAnswer::Yes || answer_ == OverwriteAnswer::YesToAll;
}

/// Only what was asked for counts, with what lies below it. What is left of it: a folder of which every
/// member is left out is none that tar would find.
std::set<std::string> ExtractJob::guardAgainst(const std::vector<GuardedMember>& members,
                                               const std::set<std::string>& asked) {
  ExtractGuard guard(services_.system.drives, plan_.outFolder);
  for (const GuardedMember& member : members) guard.noteLink(member);
  std::vector<RefusedMember> refused;
  std::set<std::string> left;
  for (const GuardedMember& member : members) {
    const std::string* cover = coverOf(asked, member.name);
    for (const GuardedMember& reading : member.otherReadings)
      if (cover == nullptr) cover = coverOf(asked, reading.name);
    if (cover == nullptr) continue;
    if (auto verdict = guard.judge(member); !verdict.empty()) {
      std::move(verdict.begin(), verdict.end(), std::back_inserter(refused));
      continue;
    }
    left.insert(*cover);
    if (folderStood_) plan_.replaceable.push_back(member.name);
  }
  logLeftOut(services_.log, refused);
  for (const RefusedMember& one : refused) excludes_.insert(one.exclude);
  return left;
}

/// The members with their attributes, behind which no name can be taken for a remark. Asked for once a run.
/// nullptr: they could not be listed, which has been told.
const std::vector<GuardedMember>* ExtractJob::listedMembers() {
  if (members_) return &*members_;
  const runtime::ToolResult run = services_.api.RunCapture(
      services_.cygwin.cygwinBin(), listCommand(plan_.kind, plan_.archivePath), {}, listingManner());
  if (stopped() || isBad(run)) return nullptr;
  members_ = membersOf(run.text);
  return &*members_;
}

/// Tells why, when it is.
bool ExtractJob::isBad(const runtime::ToolResult& run) const {
  const platform::Files& files = services_.system.files;
  if (run.good() && (isTar() || arProblem(files, plan_.archivePath).empty())) return false;
  tellListingProblem(services_.user, *listingProblem(run, plan_.kind, plan_.archivePath, files));
  return true;
}

/// What stands between an archive and its names: remarks go to the log.
JobEnd ExtractJob::listNames() {
  const runtime::ToolResult run = services_.api.RunCapture(
      services_.cygwin.cygwinBin(), namesCommand(plan_.kind, plan_.archivePath), {}, listingManner());
  if (stopped()) return JobEnd::Stopped;
  if (!run.ended() && isBad(run)) return JobEnd::Failed;
  std::optional<std::set<std::string_view>> known;
  for (const std::string_view line : completeLines(run.text)) {
    const std::string name = isTar() ? heldName(line) : platform::holdName(line);
    bool remark = isTar() ? isRemark(line) : isArRemark(line);
    if (remark && isTar() && run.good()) {
      const auto* const members = listedMembers();
      if (members == nullptr) return JobEnd::Failed;
      if (!known) known.emplace();
      if (known->empty())
        for (const GuardedMember& member : *members) known->insert(member.name);
      remark = known->count(name) == 0;
    }
    if (remark)
      services_.log.append(std::string(line));
    else if (!line.empty())
      names_.push_back(name);
  }
  if (names_.empty()) {
    services_.user.message("Nothing to extract", Buttons::Ok, Icon::Information);
    return JobEnd::Refused;
  }
  return isBad(run) ? JobEnd::Failed : JobEnd::Done;
}

/// Links matter only where something may stand already; then the archive is asked about its own. False: it
/// could not be.
bool ExtractJob::guardNames() {
  std::set<std::string> asked;
  for (const std::string& name : names_) asked.emplace(withoutSlash(name));
  if (isTar() && folderStood_ && mayHoldLinks(services_.system.drives, plan_.outFolder)) {
    const auto* const members = listedMembers();
    if (members != nullptr) guardAgainst(*members, asked);
    return members != nullptr;
  }
  std::vector<GuardedMember> plain;
  for (const std::string& name : names_) plain.push_back({name, false, {}});
  guardAgainst(plain, asked);
  return true;
}

Extraction ExtractJob::QuickExtract() {
  if (!begin()) return refuse();
  if (!toolFound(services_, plan_.kind)) return refuse();
  if (const JobEnd listed = listNames(); listed != JobEnd::Done) return {listed, Focus::None, false};
  if (!folderIsChosen() || !settleFolder()) return refuse();
  if (!guardNames()) return {JobEnd::Failed, Focus::None, false};
  plan_.withWhatIsBelow = !folderStood_;
  if (!folderStood_ && isTar()) {
    progress_.showPercent(100);  // there is nothing to ask about
    return unpack();
  }
  plan_.members = keptNames();
  if (plan_.members.empty()) return refuse();
  passFewNames();
  return unpack();
}

std::vector<std::string> ExtractJob::keptNames() {
  std::vector<std::string> kept;
  std::set<std::string_view> seen;
  runtime::Pace pace;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    // tar looks for a file and for a folder of that name alike, and finds each once.
    if (coverOf(excludes_, names_[i]) == nullptr && seen.insert(withoutSlash(names_[i])).second) {
      const std::string_view plain = withoutLeadingDots(names_[i]);
      if (plain.empty() || mayExtract(names_[i], "?")) kept.push_back(names_[i]);
      if (answer_ == OverwriteAnswer::Cancel) return {};
    }
    if (pace.due() || i + 1 == names_.size()) progress_.showPercent(listingPercent(i, names_.size()));
  }
  return kept;
}

Extraction ExtractJob::unpack() {
  if (stopped()) return refuse();
  plan_.excludes.assign(excludes_.begin(), excludes_.end());
  if (!excludeOptions(plan_.excludes)) {
    services_.log.append(" Not extracted, too many members lead out of the output folder: " +
                         plan_.archivePath);
    return nothingToExtract();
  }
  services_.api.SetCurDir(services_.cygwin.cygwinBin());
  if (!toolFound(services_, plan_.kind)) return refuse();
  const runtime::ToolResult run = ExtractRun(services_, plan_).run();
  if (run.stopped) return {JobEnd::Stopped, Focus::None, true};
  if (!run.good()) return {JobEnd::Failed, Focus::None, true, true};
  return {excludes_.empty() ? JobEnd::Done : JobEnd::Remarks, Focus::None, true, !excludes_.empty()};
}

}  // namespace archive
