#include "archive/Extractor.h"

#include <algorithm>

#include "archive/ExtractCommand.h"
#include "archive/ListingLine.h"
#include "archive/NamesFile.h"
#include "platform/HeldName.h"
#include "runtime/DirExists.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

using runtime::ArchiveKind;
using runtime::Buttons;
using runtime::Icon;
using runtime::withoutSlash;

constexpr std::size_t mostReported = 20;

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

const char* reasonText(LeftOut reason) {
  switch (reason) {
    case LeftOut::OtherHome:
      return " Not extracted, it belongs to another home on the terminal: ";
    case LeftOut::Outside:
      return " Not extracted, its name leads out of the output folder: ";
    case LeftOut::BelowLink:
      return " Not extracted, it lies below a link: ";
    case LeftOut::HardLinkOut:
      return " Not extracted, it is a hard link to something outside the output folder: ";
  }
  return "";
}

/// Size and time from an entry's properties: what stands behind the words of their first two lines.
std::string inTarText(const std::string& tag) {
  constexpr std::size_t behindSize = 22;
  constexpr std::size_t behindModified = 19;
  const std::size_t first = tag.find('\r');
  const std::size_t second = first == std::string::npos ? first : tag.find('\r', first + 1);
  if (second == std::string::npos || first < behindSize || second - first - 1 < behindModified) return "?";
  return tag.substr(behindSize, first - behindSize) + ", " +
         tag.substr(first + 1 + behindModified, second - first - 1 - behindModified);
}

std::string_view withoutLeadingDots(std::string_view name) {
  while (name.starts_with("./") || name.starts_with("../")) name.remove_prefix(name.find('/') + 1);
  return name;
}

}  // namespace

Extractor::Extractor(const runtime::Services& services, OverwriteAsker& asker)
    : services_(services), asker_(asker) {}

ExtractResult Extractor::refuse(Focus focus) { return {false, false, focus == Focus::None ? focus_ : focus}; }

bool Extractor::begin(const std::string& archivePath) {
  plan_ = {};
  excludes_.clear();
  members_.reset();
  answer_ = OverwriteAnswer::NothingAsked;
  answeredNo_ = false;
  const CheckedArchive checked = checkArchive(services_, archivePath, "Please select a Tar file to extract");
  focus_ = checked.focus;
  if (!checked.kind) return false;
  services_.cygwin.SetCygwinEnvironment();
  plan_.kind = *checked.kind;
  plan_.archivePath = archivePath;
  return true;
}

bool Extractor::folderIsChosen(const std::string& outFolder) {
  focus_ = Focus::OutputFolder;
  plan_.outFolder = runtime::withTrailingBackslash(outFolder);
  if (outFolder != noFolderChosen) return true;
  services_.user.message("Please choose an output location", Buttons::Ok, Icon::Critical,
                         "Ouput not selected..");
  return false;
}

/// The folder stands afterwards, or the user has been asked or told.
bool Extractor::settleFolder(const std::string& outFolder) {
  const platform::Files& files = services_.system.files;
  if (files.folderExists(plan_.outFolder)) return true;
  if (services_.user.message(outFolder + " does not exist, create it?", Buttons::OkCancel, Icon::None,
                             "Create folder?",
                             runtime::Consequence::MakesSomethingNew) != runtime::Answer::Ok)
    return false;
  std::string folder = outFolder;
  runtime::DirExists(files, folder);
  if (files.folderExists(plan_.outFolder)) return true;
  services_.user.message("Error: Unable to create folder " + plan_.outFolder, Buttons::Ok, Icon::Critical);
  return false;
}

ExtractResult Extractor::nothingToExtract() {
  services_.user.message("Error extracting package:\r\n" + plan_.archivePath + "\r\n\r\nNo files to extract",
                         Buttons::Ok, Icon::Information, "Unable To Extract");
  return refuse();
}

ExtractResult Extractor::ExtractArchive(const std::string& archivePath, const std::string& outFolder,
                                        bool all, const TreeSource& source) {
  if (!begin(archivePath)) return refuse();
  if (!folderIsChosen(outFolder) || !settleFolder(outFolder)) return refuse();
  focus_ = Focus::None;
  const ArchiveTree* tree = source();
  if (tree == nullptr) return refuse();
  const std::vector<std::string> members = chooseMembers(*tree, all);
  if (answer_ == OverwriteAnswer::Cancel) return refuse(Focus::OutputFolder);
  if (members.empty()) return answer_ == OverwriteAnswer::NothingAsked ? nothingToExtract() : refuse();
  plan_.members = members;
  if (all) passFewNames();
  return run();
}

/// Everything is what tar extracts without any names, and it looks for each member through all that it is
/// given.
void Extractor::passFewNames() {
  if (answeredNo_ || memberList(plan_.members).size() <= longestNameList) return;
  plan_.members.clear();
  plan_.withWhatIsBelow = true;
}

/// What is extracted after the guard and the questions, in the order of the tree.
std::vector<std::string> Extractor::chooseMembers(const ArchiveTree& tree, bool all) {
  std::vector<Contribution> chosen = contributions(tree, all);
  std::set<std::string> asked;
  for (const Contribution& one : chosen) asked.insert(one.members.begin(), one.members.end());
  const bool tar = plan_.kind != ArchiveKind::Ipk;
  if (tar) asked = guardAgainst(membersOf(tree.listing()), asked);
  std::vector<std::string> members;
  Pace pace;
  for (Contribution& one : chosen) {
    // A name that is given twice is found once, and tar would miss the other.
    std::erase_if(one.members, [&asked](const std::string& name) { return asked.erase(name) == 0; });
    if (one.members.empty()) continue;
    if (mayExtract(tree.memberPath(one.node), inTarText(tree.tag(one.node))))
      members.insert(members.end(), one.members.begin(), one.members.end());
    if (answer_ == OverwriteAnswer::Cancel) return {};
    if (pace.due()) services_.user.letEventsRun();
  }
  return members;
}

/// Asks unless everything was agreed to or nothing is there.
bool Extractor::mayExtract(const std::string& member, const std::string& inTar) {
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
std::set<std::string> Extractor::guardAgainst(const std::vector<GuardedMember>& members,
                                              const std::set<std::string>& asked) {
  ExtractGuard guard(services_.system.drives, plan_.outFolder);
  for (const GuardedMember& member : members) guard.noteLink(member);
  std::vector<RefusedMember> refused;
  std::set<std::string> left;
  for (const GuardedMember& member : members) {
    const std::string* const cover = coverOf(asked, member.name);
    if (cover == nullptr) continue;
    if (auto one = guard.judge(member))
      refused.push_back(std::move(*one));
    else
      left.insert(*cover);
  }
  logLeftOut(refused);
  for (const RefusedMember& one : refused) excludes_.insert(one.exclude);
  return left;
}

void Extractor::logLeftOut(const std::vector<RefusedMember>& refused) {
  std::size_t reported = 0;
  bool otherHome = false;
  for (const RefusedMember& one : refused) {
    const bool again = one.reason == LeftOut::OtherHome && otherHome;
    otherHome = otherHome || one.reason == LeftOut::OtherHome;
    if (again) continue;
    if (++reported > mostReported) break;
    services_.log.append(reasonText(one.reason) +
                         (one.reason == LeftOut::OtherHome ? one.exclude : one.member));
  }
  if (reported > mostReported)
    services_.log.append(" Not extracted either: more members that lead out of the output folder");
}

/// The members with their attributes, behind which no name can be taken for a remark. Asked for once a run.
const std::vector<GuardedMember>& Extractor::listedMembers() {
  if (!members_)
    members_ = membersOf(
        services_.api.RunCapture(services_.cygwin.cygwinBin(), listCommand(plan_.kind, plan_.archivePath))
            .text);
  return *members_;
}

/// What stands between an archive and its names: remarks go to the log.
std::vector<std::string> Extractor::listedNames() {
  const std::string output =
      services_.api.RunCapture(services_.cygwin.cygwinBin(), namesCommand(plan_.kind, plan_.archivePath))
          .text;
  const bool tar = plan_.kind != ArchiveKind::Ipk;
  std::optional<std::set<std::string_view>> known;
  std::vector<std::string> names;
  for (const std::string_view line : completeLines(output)) {
    const std::string name = tar ? heldName(line) : platform::holdName(line);
    bool remark = tar ? isRemark(line) : isArRemark(line);
    if (remark && tar) {
      if (!known) {
        known.emplace();
        for (const GuardedMember& member : listedMembers()) known->insert(member.name);
      }
      remark = known->count(name) == 0;
    }
    if (remark)
      services_.log.append(std::string(line));
    else if (!line.empty())
      names.push_back(name);
  }
  return names;
}

/// Links matter only where something may stand already; then the archive is asked about its own.
void Extractor::guardNames(const std::vector<std::string>& names, bool folderStands) {
  const bool tar = plan_.kind != ArchiveKind::Ipk;
  std::set<std::string> asked;
  for (const std::string& name : names) asked.emplace(withoutSlash(name));
  if (tar && folderStands && mayHoldLinks(services_.system.drives, plan_.outFolder)) {
    guardAgainst(listedMembers(), asked);
    return;
  }
  std::vector<GuardedMember> plain;
  for (const std::string& name : names) plain.push_back({name, false, {}});
  guardAgainst(plain, asked);
}

ExtractResult Extractor::QuickExtract(const std::string& archivePath, const std::string& outFolder,
                                      ListingProgress& progress) {
  if (!begin(archivePath)) return refuse();
  if (!toolFound(services_, plan_.kind)) return refuse();
  const std::vector<std::string> names = listedNames();
  if (names.empty()) {
    services_.user.message("Nothing to extract", Buttons::Ok, Icon::Information);
    return refuse();
  }
  if (!folderIsChosen(outFolder)) return refuse();
  const bool folderStands = services_.system.files.folderExists(plan_.outFolder);
  if (!settleFolder(outFolder)) return refuse();
  guardNames(names, folderStands);
  plan_.withWhatIsBelow = !folderStands;
  if (!folderStands && plan_.kind != ArchiveKind::Ipk) {
    progress.showPercent(100);  // there is nothing to ask about
    return progress.cancelled() ? refuse() : run();
  }
  plan_.members = keptNames(names, progress);
  if (plan_.members.empty()) return refuse();
  passFewNames();
  return run();
}

std::vector<std::string> Extractor::keptNames(const std::vector<std::string>& names,
                                              ListingProgress& progress) {
  std::vector<std::string> kept;
  std::set<std::string_view> seen;
  Pace pace;
  for (std::size_t i = 0; i < names.size(); ++i) {
    // tar looks for a file and for a folder of that name alike, and finds each once.
    if (coverOf(excludes_, names[i]) == nullptr && seen.insert(withoutSlash(names[i])).second) {
      const std::string_view plain = withoutLeadingDots(names[i]);
      if (plain.empty() || mayExtract(names[i], "?")) kept.push_back(names[i]);
      if (answer_ == OverwriteAnswer::Cancel) return {};
    }
    if (pace.due() || i + 1 == names.size()) progress.showPercent(listingPercent(i, names.size()));
    if (progress.cancelled()) return {};
  }
  return kept;
}

ExtractResult Extractor::run() {
  plan_.excludes.assign(excludes_.begin(), excludes_.end());
  if (!excludeOptions(plan_.excludes)) {
    services_.log.append(" Not extracted, too many members lead out of the output folder: " +
                         plan_.archivePath);
    return nothingToExtract();
  }
  services_.api.SetCurDir(services_.cygwin.cygwinBin());
  if (!toolFound(services_, plan_.kind)) return refuse();
  const int status = ExtractJob(services_, plan_).run();
  return {true, status == 0 && excludes_.empty(), Focus::None};
}

}  // namespace archive
