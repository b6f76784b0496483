// The panes of System Settings, each opened by its link.
#pragma once

#include <functional>
#include <string>

namespace brell {

// Asks the system to show the pane of this link: "x-apple.systempreferences:..."; a link of another kind is
// never opened. Main thread only; does not wait. answered is called once, on the main thread, with whether
// the system took the request; it may come before this returns. It may be let go of
// on another thread. Off macOS the answer is always false.
void openSettingsPane(const std::string& link, std::function<void(bool opened)> answered);

}  // namespace brell
