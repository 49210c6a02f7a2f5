#pragma once

namespace platform::desktop {

/// Whether windows can be shown. A display that is named but cannot be opened would end the program, so this
/// is tried in a child. Before any thread or window is made.
bool displayOpens(char* programName);

}  // namespace platform::desktop
