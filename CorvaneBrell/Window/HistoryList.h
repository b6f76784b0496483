// The fate of every change, newest first and by day, as far back as the user wants to see.
#pragma once

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/HistoryRow.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class HistoryList final : public QWidget {
    Q_OBJECT
public:
    // The model must outlive the list.
    explicit HistoryList(AppModel& model, QWidget* parent = nullptr);
    void refresh();

private:
    void showFirst();

    AppModel& model_;
    ChoiceBox* range_;
    Paragraph* nothing_;
    RecordList<HistoryRow>* events_;
};

}  // namespace brell
