// Facts in two columns: what it is called, and what it is.
#pragma once

#include <QGridLayout>
#include <QWidget>

namespace brell {

class FactList final : public QWidget {
    Q_OBJECT
public:
    explicit FactList(QWidget* parent = nullptr);
    // On one line, and cut where it is long; a text that is not shown as it is can be copied. Empty texts
    // are left out.
    void add(const QString& name, const QString& text);

private:
    QGridLayout* grid_;
};

}  // namespace brell
