// Text to read, select and copy; as high as it needs to be.
#pragma once

#include <QTextEdit>
#include <map>

namespace brell {

class SelectableText final : public QTextEdit {
    Q_OBJECT
public:
    enum class Look { body, monospace };

    // The name is what assistive technology calls the text.
    explicit SelectableText(const QString& name, Look look = Look::body, QWidget* parent = nullptr);

    // Each line by itself: one that wraps goes on further to the right.
    void setLines(const QStringList& lines);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {80, fontMetrics().height() + 2}; }

protected:
    void wheelEvent(QWheelEvent* event) override;  // belongs to the page around it
    void changeEvent(QEvent* event) override;

private:
    void measureAgain();

    mutable std::map<int, int> heights_;  // by width: a layout asks again and again
};

}  // namespace brell
