#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform::desktop {

/// Asks for one line over the active window. `text` stands in the field, selected. nullopt: cancelled.
std::optional<std::string> inputBox(std::string_view title, std::string_view prompt,
                                    std::string_view text = {});

}  // namespace platform::desktop
