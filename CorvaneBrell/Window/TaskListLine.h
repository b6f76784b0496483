// The login items page's words about macOS's own list of background items while it is not shown, and the
// button that leads to it.
#pragma once

#include <QWidget>

class QPushButton;

namespace brell {

class AppModel;
class Paragraph;

class TaskListLine final : public QWidget {
    Q_OBJECT
public:
    // The model must outlive it.
    explicit TaskListLine(AppModel& model, QWidget* parent = nullptr);

    void refresh();

private:
    AppModel& model_;
    Paragraph* words_;
    QPushButton* button_;
};

}  // namespace brell
