#include "archive/ui/frmGetOutFolder.h"

#include "platform/HeldName.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/InputBox.h"
#include "ui_frmGetOutFolder.h"

namespace archive {
namespace {

using platform::desktop::connectHandler;

constexpr const char* badName =
    "Folder name cannot contain any of the following characters:\r\\ / : * ? \" < > |";

}  // namespace

bool isFolderName(const std::string& name) {
  return platform::releaseName(name).find_first_of("\\/:*?\"<>|") == std::string::npos;
}

frmGetOutFolder::frmGetOutFolder(runtime::Services services, const std::string& startFolder, QWidget* parent)
    : QDialog(parent), services_(services), ui_(std::make_unique<Ui::frmGetOutFolder>()) {
  ui_->setupUi(this);
  platform::Busy& running = services_.system.busy;
  ui_->Drive1->setDrives(services_.system.drives);
  ui_->dirList->setDrives(services_.system.drives, running);
  if (ui_->dirList->setPath(startFolder))
    ui_->Drive1->setDrive(startFolder);
  else
    Drive1_Change();
  connectHandler(ui_->Drive1, &platform::desktop::DriveList::driveChanged, this, running,
                 &frmGetOutFolder::Drive1_Change);
  connectHandler(ui_->cmdNewFolder, &QPushButton::clicked, this, running,
                 &frmGetOutFolder::cmdNewFolder_Click);
  connectHandler(ui_->cmdOK, &QPushButton::clicked, this, running, &frmGetOutFolder::cmdOK_Click);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmGetOutFolder::~frmGetOutFolder() = default;

std::string frmGetOutFolder::GetDirListPath() const {
  return runtime::withTrailingBackslash(ui_->dirList->path());
}

void frmGetOutFolder::Drive1_Change() { ui_->dirList->setPath(ui_->Drive1->drive() + "\\"); }

void frmGetOutFolder::cmdNewFolder_Click() {
  while (true) {
    const auto name = platform::desktop::inputBox("Create New Folder", "Enter new folder name");
    if (!name || name->empty()) return;
    if (isFolderName(*name)) {
      const std::string path = GetDirListPath() + *name;
      if (!services_.system.files.entryExists(path)) services_.system.files.createFolder(path);
      return ui_->dirList->refresh();
    }
    if (services_.user.message(badName, runtime::Buttons::OkCancel, runtime::Icon::None,
                               "Folder Name Error..") != runtime::Answer::Ok)
      return;
  }
}

void frmGetOutFolder::cmdOK_Click() {
  chosen_ = ui_->dirList->path();
  accept();
}

}  // namespace archive
