#include "shell/HelpPages.h"

#include <algorithm>

namespace shell {
namespace {

struct Row {
  std::string_view window;
  std::string_view page;
};

constexpr Row pages[] = {
    {"frmMain", "browsing.html"},
    {"frmRightClick", "menu.html"},
    {"frmView", "menu.html"},
    {"frmShowFiles", "menu.html"},
    {"frmProperties", "menu.html#properties"},
    {"frmPattern", "browsing.html#filter"},
    {"frmPermissions", "permissions.html"},
    {"frmPreview", "permissions.html#preview"},
    {"frmPermsError", "troubleshooting.html#permissions"},
    {"frmOwner", "owner.html"},
    {"Dialog", "troubleshooting.html#permissions"},
    {"frmTar", "packing.html"},
    {"frameUntar", "archives.html"},
    {"frmGetOutFolder", "archives.html#folder"},
    {"frmOverwriteFile", "archives.html#overwrite"},
    {"frmQuickExtract", "batch.html"},
    {"frmNetloader", "network.html"},
    {"frmWDXOptions", "serial.html"},
    {"frmPortErr", "serial.html#busy"},
    {"frmOptions", "options.html"},
    {"frmAbout", helpContents},
};

}  // namespace

std::string_view helpPage(const std::vector<std::string>& windows) {
  for (const std::string& window : windows) {
    const auto* const row = std::ranges::find(pages, window, &Row::window);
    if (row != std::end(pages)) return row->page;
  }
  return helpContents;
}

}  // namespace shell
