// Text that wraps to the width it is given and is never cut: a word too long for a line is broken.
#pragma once

#include <QLabel>
#include <map>

namespace brell {

class Paragraph final : public QLabel {
    Q_OBJECT
public:
    enum class Look { body, secondary, title, heading, monospace };

    explicit Paragraph(const QString& text = {}, Look look = Look::body, QWidget* parent = nullptr);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent*) override;

private:
    QSizeF measured(int width) const;

    Look look_;
    // By width, of this text in this font: a layout asks again and again.
    mutable std::map<int, QSizeF> sizes_;
    mutable QString measuredText_;
    mutable QFont measuredFont_;
};

}  // namespace brell
