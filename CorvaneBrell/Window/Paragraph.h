// Text that wraps to the width it is given and is not cut: a word too long for a line is broken. Always plain
// text.
#pragma once

#include <QLabel>
#include <QStringList>
#include <map>

namespace brell {

class Paragraph final : public QLabel {
    Q_OBJECT
public:
    enum class Look { body, bodySmall, secondary, small, title, heading, rowTitle, monospace };
    // Longer ones take too long to lay out: they come from outside, and are cut.
    static constexpr qsizetype longest = 2000;

    explicit Paragraph(const QString& text = {}, Look look = Look::body, QWidget* parent = nullptr);

    // Hides QLabel's, which decides about a text's format and is never told of the length.
    void setText(const QString& text);
    // Marks these words where they begin a word of the text.
    void mark(const QStringList& words);
    const QStringList& marks() const { return marks_; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent*) override;

private:
    bool isQuiet() const {
        return look_ == Look::secondary || look_ == Look::small || look_ == Look::monospace;
    }
    QSizeF measured(int width) const;
    int overhang() const;

    Look look_;
    QStringList marks_;
    // By width, of this text in this font: a layout asks again and again.
    mutable std::map<int, QSizeF> sizes_;
    mutable QString measuredText_;
    mutable QFont measuredFont_;
};

}  // namespace brell
