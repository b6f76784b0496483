// What is being read beside the main thread, and how far it is.
#pragma once

#include <QWidget>
#include <optional>

#include "CorvaneBrell/Model/AppState.h"
#include "CorvaneBrell/Window/Paragraph.h"

namespace brell {

class ReadingLine final : public QWidget {
    Q_OBJECT
public:
    explicit ReadingLine(QWidget* parent = nullptr);
    // Hides when nothing is being read.
    void setActivity(const std::optional<Activity>& activity);

private:
    Paragraph* words_;
};

}  // namespace brell
