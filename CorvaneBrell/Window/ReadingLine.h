// What is being read beside the main thread, and how far it is.
#pragma once

#include <QTimer>
#include <QWidget>
#include <optional>

#include "CorvaneBrell/Model/AppState.h"
#include "CorvaneBrell/Window/Paragraph.h"

namespace brell {

class ReadingLine final : public QWidget {
    Q_OBJECT
public:
    explicit ReadingLine(QWidget* parent = nullptr);
    // Hides when nothing is being read. What is done sooner than it could be read about is not shown.
    void setActivity(const std::optional<Activity>& activity);

private:
    Paragraph* words_;
    QTimer patience_;
};

}  // namespace brell
