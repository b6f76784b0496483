// A button that opens a pane of System Settings.
#pragma once

#include <QPushButton>
#include <string_view>

namespace brell {

// The way is how one gets there by hand, "General, then Login Items": it is told where the system can't open
// the pane.
QPushButton* paneButton(std::string_view link, const QString& way);

}  // namespace brell
