#include "archive/ExtractJob.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "archive/ArMembers.h"
#include "archive/ExtractCommand.h"
#include "archive/ExtractPackage.h"
#include "archive/LeftOut.h"
#include "archive/ListingLine.h"
#include "archive/ListingOutput.h"
#include "archive/NamesFile.h"
#include "archive/TarEnd.h"
#include "platform/CompressorWords.h"
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

/// What the archive has of a member, for the question.
std::string inTarText(const std::optional<ArchiveEntry>& entry) {
  if (!entry) return "?";
  return std::string(entry->size) + " bytes, " + std::string(entry->dateTime);
}

std::vector<GuardedMember> unadorned(const std::vector<std::string>& names) {
  std::vector<GuardedMember> members;
  for (const std::string& name : names) members.push_back({name});
  return members;
}

/// Of an ipk's listing.
std::vector<GuardedMember> packageMembers(std::string_view listing) {
  std::vector<std::string> names;
  for (const std::string_view line : completeLines(listing))
    if (!line.empty() && !isArRemark(line)) names.push_back(platform::holdName(line));
  return unadorned(names);
}

std::string_view withoutLeadingDots(std::string_view name) {
  while (name.starts_with("./") || name.starts_with("../")) name.remove_prefix(name.find('/') + 1);
  return name;
}

}  // namespace

ExtractJob::ExtractJob(const runtime::Services& services, OverwriteAsker& asker, ListingProgress& progress,
                       ExtractRequest request)
    : services_(services), asker_(asker), progress_(progress), request_(std::move(request)) {
  if (request_.shownAs.empty()) request_.shownAs = request_.archivePath;
}

Extraction ExtractJob::run() {
  Extraction end = request_.what == Extract::Quickly ? QuickExtract() : ExtractArchive();
  const bool atWork = end.end == JobEnd::Refused || end.end == JobEnd::Failed;
  if (atWork && stopped()) end = {JobEnd::Stopped, Focus::None, end.toolRan};
  if (end.end != JobEnd::Stopped) return end;
  removeEmptyFolder();
  services_.log.append(" Stopped: extracting " + request_.shownAs);
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
  plan_.shownAs = request_.shownAs;
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
  int unmade = 0;
  if (!folderStood_) {
    if (services_.user.message(request_.outFolder + " does not exist, create it?", Buttons::OkCancel,
                               Icon::None, "Create folder?",
                               runtime::Consequence::MakesSomethingNew) != runtime::Answer::Ok)
      return false;
    if (stopped()) return false;
    std::string folder = request_.outFolder;
    unmade = runtime::DirExists(files, folder);
  }
  int problem = files.writeProblem(plan_.outFolder);
  if (problem == ENOENT && unmade != 0) problem = unmade;  // the reason, not what came of it
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
  services_.user.message("Error extracting package:\r\n" + plan_.shownAs + "\r\n\r\nNo files to extract",
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
  if (isTar())
    for (const std::string& member : members) plan_.count += below_[member];
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
/// given. What ar is not to bring is left out afterwards.
void ExtractJob::passFewNames() {
  if (memberList(plan_.members).size() <= longestNameList) return;
  if (!isTar() && !plan_.wholly) plan_.wholly.emplace();
  if (answeredNo_ || !isTar()) return;
  plan_.members.clear();
  plan_.withWhatIsBelow = true;
}

/// What is extracted after the guard and the questions, in the order of the tree.
std::vector<std::string> ExtractJob::chooseMembers(const ArchiveTree& tree, bool all) {
  std::vector<Contribution> chosen = contributions(tree, all);
  Names asked;
  for (const Contribution& one : chosen) asked.insert(one.members.begin(), one.members.end());
  asked = guardAgainst(isTar() ? membersOf(tree.listing()) : packageMembers(tree.listing()), asked);
  std::vector<std::string> members;
  runtime::Pace pace;
  for (Contribution& one : chosen) {
    // A name that is given twice is found once, and tar would miss the other.
    std::erase_if(one.members, [&asked](const std::string& name) { return asked.erase(name) == 0; });
    if (one.members.empty()) continue;
    if (tree.text(one.node).empty())  // absolute names have no folder in common
      std::erase_if(one.members, [this](const std::string& name) { return !mayExtract(name, "?"); });
    else if (!mayExtract(tree.memberPath(one.node), inTarText(tree.entry(one.node))))
      one.members.clear();
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
  const std::size_t below = std::min(member.find_first_not_of('/'), member.size());
  question.path = plan_.outFolder + runtime::withBackslashes(member.substr(below));
  while (question.path.ends_with('\\')) question.path.pop_back();
  answer_ = OverwriteAnswer::Yes;
  if (!standing_.at(question.path)) return true;
  question.isFolder = files.folderExists(question.path);
  question.size = files.fileSize(question.path).value_or(0);
  question.modified = files.modifiedTime(question.path);
  question.member = inTar;
  answer_ = services_.user.agrees() ? OverwriteAnswer::YesToAll : asker_.ask(question);
  standing_.forget();
  answeredNo_ = answeredNo_ || answer_ == OverwriteAnswer::No;
  return answer_ == OverwriteAnswer::Yes || answer_ == OverwriteAnswer::YesToAll;
}

/// Only what was asked for counts, with what lies below it. What is left of it: a folder of which every
/// member is left out is none that tar would find.
Names ExtractJob::guardAgainst(const std::vector<GuardedMember>& members, const Names& asked,
                               std::vector<RefusedMember> refused) {
  ExtractGuard guard(services_.system.drives, plan_.outFolder);
  Verdict verdict = judgeAsked(guard, members, asked);
  refused.insert(refused.end(), verdict.refused.begin(), verdict.refused.end());
  if (!isTar())
    for (const std::string& name : verdict.absolute)
      refused.push_back({name, LeftOut::Outside, std::string(withoutSlash(name))});
  logLeftOut(services_.log, refused);
  if (isTar()) logAbsolute(services_.log, verdict.absolute);
  for (const RefusedMember& one : refused) excludes_.insert(one.exclude);
  if (folderStood_) {
    plan_.replaceable = std::move(verdict.kept);
    plan_.spared = std::move(verdict.outFolders);
  }
  plan_.likeRemarks = std::move(verdict.likeRemarks);
  if (!isTar()) plan_.wholly = unpackedWholly(members);
  below_ = std::move(verdict.below);
  Names left;
  for (const auto& [name, count] : below_) left.insert(name);
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
  labels_ = volumeLabels(run.text);
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
        for (const GuardedMember& member : *members) {
          known->insert(member.name);
          for (const GuardedMember& reading : member.otherReadings) known->insert(reading.name);
        }
      remark = known->count(name) == 0;
    }
    if (!remark && !line.empty()) names_.push_back(name);
    if (remark && line != platform::tarEndMissing)  // the end of the job tells that
      services_.log.append(std::string(line));
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
  Names asked;
  for (const std::string& name : names_) asked.emplace(withoutSlash(name));
  const bool mayMeetLinks = folderStood_ && mayHoldLinks(services_.system.drives, plan_.outFolder);
  if (!isTar() || (!members_ && !mayMeetLinks)) {
    guardAgainst(unadorned(names_), asked);
    return true;
  }
  if (listedMembers() == nullptr) return false;
  std::vector<RefusedMember> refused;
  for (const std::string& name : settleReadings(*members_, names_))
    if (labels_.count(name) == 0)
      refused.push_back({name, LeftOut::Unlisted, std::string(withoutSlash(name))});
  guardAgainst(*members_, asked, std::move(refused));
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
    plan_.count = countAll();
    progress_.showPercent(100);  // there is nothing to ask about
    return unpack();
  }
  plan_.members = keptNames();
  if (plan_.members.empty()) return refuse();
  if (isTar()) plan_.count = plan_.members.size();
  passFewNames();
  return unpack();
}

/// What is left of everything.
std::size_t ExtractJob::countAll() const {
  return static_cast<std::size_t>(std::count_if(names_.begin(), names_.end(), [this](const auto& name) {
    return coverOf(excludes_, name) == nullptr;
  }));
}

std::vector<std::string> ExtractJob::keptNames() {
  std::vector<std::string> kept;
  std::set<std::string_view> seen;
  runtime::Pace pace;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    // tar looks for a file and for a folder of that name alike, and finds each once.
    if (coverOf(excludes_, names_[i]) == nullptr && seen.insert(withoutSlash(names_[i])).second) {
      const std::string_view plain = withoutLeadingDots(names_[i]);
      const bool outFolder = plain.find_first_not_of('/') == plain.npos;
      if (outFolder || mayExtract(names_[i], "?")) kept.push_back(names_[i]);
      if (answer_ == OverwriteAnswer::Cancel) return {};
    }
    if (pace.due() || i + 1 == names_.size()) progress_.showPercent(listingPercent(i, names_.size()));
  }
  return kept;
}

Extraction ExtractJob::unpack() {
  if (stopped()) return refuse();
  plan_.excludes.assign(excludes_.begin(), excludes_.end());
  services_.api.SetCurDir(services_.cygwin.cygwinBin());
  if (!toolFound(services_, plan_.kind)) return refuse();
  plan_.counted = progress_.unpacking(plan_.count);
  const runtime::ToolResult run = ExtractRun(services_, plan_).run();
  if (run.stopped) return {JobEnd::Stopped, Focus::None, true};
  if (!run.good()) return {JobEnd::Failed, Focus::None, true, true};
  const bool cut = plan_.kind == ArchiveKind::Tar ? lacksEnd(services_.system.files, plan_.archivePath)
                                                  : isTar() && saysEndIsMissing(run.text);
  if (cut) services_.log.append(" Its end is missing, and perhaps more: " + plan_.shownAs);
  const bool whole = excludes_.empty() && !cut;
  return {whole ? JobEnd::Done : JobEnd::Remarks, Focus::None, true, !whole};
}

}  // namespace archive
