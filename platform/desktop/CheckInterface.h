#pragma once

namespace platform::desktop {

/// From now on `Toggle` and `Press` of an assistive tool click check boxes and option buttons, so that their
/// handlers act; Qt's own only turns the tick. To be called before anything asks about such a control; again
/// does nothing.
void makeTogglesClicks();

}  // namespace platform::desktop
