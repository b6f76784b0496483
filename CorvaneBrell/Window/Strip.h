// The strip at the foot of the window: what concerns no page alone, in a place of its own that is always
// there, so that whatever is told there moves nothing else.
#pragma once

#include <QTimer>
#include <QWidget>
#include <chrono>
#include <map>
#include <optional>
#include <vector>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/NoticeText.h"

class QHBoxLayout;
class QPushButton;

namespace brell {

class StripLine;

// Two lines. The upper one is for what stays until it is dealt with: the most urgent of it, and how many more
// there are. The lower one is for what passes: what is being done, and for some seconds what was done.
class Strip final : public QWidget {
    Q_OBJECT
public:
    // The model must outlive the strip.
    explicit Strip(AppModel& model, QWidget* parent = nullptr);

    // To be called when the model's state has changed.
    void refresh();
    // How long it tells what was done; for tests, which have a time of their own.
    void setStay(std::chrono::milliseconds stay) { stay_ = stay; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    StripLine* line(NoticeKind kind);
    void addActions(StripLine& line, NoticeKind kind);
    void dismiss();
    void showStanding();
    void showPassing();
    void hearNews();
    void forgetWhatWasDone();
    void put(QHBoxLayout* place, StripLine*& shown, const Notice* notice);

    AppModel& model_;
    QHBoxLayout* upper_;
    QHBoxLayout* lower_;
    QPushButton* more_;
    std::map<NoticeKind, StripLine*> lines_;  // made when they are first shown; each has buttons of its own
    std::vector<QPushButton*> recover_;
    StripLine* standing_ = nullptr;
    StripLine* passing_ = nullptr;
    std::vector<Notice> notices_;  // that stand and were not dismissed
    std::size_t first_ = 0;        // of them, in the upper line
    std::vector<Notice> dismissed_;
    std::vector<Notice> done_;    // as they were last heard of
    std::optional<Notice> told_;  // what was done, while it is told
    bool changeIsUnderWay_ = false;
    QTimer patience_;  // what is done sooner needs no words
    bool wasBusy_ = false;
    QTimer staying_;
    std::chrono::milliseconds stay_{6000};
};

}  // namespace brell
