// The content of a scroll area: as high as its texts are at the width of the moment, and no higher.
#pragma once

#include <QWidget>

namespace brell {

// Texts ask for the height they would have at a comfortable width. A scroll area that took that for the
// least one would leave room below, and show a scroll bar where everything fits.
class ScrolledContent final : public QWidget {
public:
    QSize minimumSizeHint() const override { return {QWidget::minimumSizeHint().width(), 0}; }
};

}  // namespace brell
