#pragma once

#include <string_view>

namespace platform::desktop {

enum class BoxIcon { None, Critical, Information, Exclamation };
enum class BoxButtons { Ok, OkCancel, YesNo };
enum class BoxAnswer { Ok, Cancel, Yes, No };

/// Shows a box over the active window and waits for its answer. Both texts are plain and inner. Escape and
/// the close box answer OK where that is the only button, Cancel, or No. An explanation, plain and inner too,
/// stands below the text. Enter agrees, unless the refusal is preset. A text that the screen has no room for
/// is scrolled; of its lines the first 500 are shown.
BoxAnswer messageBox(std::string_view text, std::string_view title, BoxIcon icon, BoxButtons buttons,
                     std::string_view explanation = {}, bool refusalPreset = false);

}  // namespace platform::desktop
