// Content below a title that opens it: closed at first, and made when it is opened.
#pragma once

#include <QWidget>
#include <functional>

class QAbstractButton;

namespace brell {

class Disclosure final : public QWidget {
    Q_OBJECT
public:
    // The name tells this one from others with the same title.
    Disclosure(const QString& title, const QString& name, std::function<QWidget*()> make,
               QWidget* parent = nullptr);

    bool isOpen() const { return content_ && !content_->isHidden(); }
    void setOpen(bool open);

private:
    std::function<QWidget*()> make_;
    QAbstractButton* button_;
    QWidget* content_ = nullptr;
};

}  // namespace brell
