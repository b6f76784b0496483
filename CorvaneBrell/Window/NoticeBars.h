// The bars above the pages: everything that concerns no page alone.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "CorvaneBrell/Model/AppModel.h"

class QPushButton;

namespace brell {

class NoticeBar;

// Hidden as a whole while there is nothing to say.
class NoticeBars final : public QWidget {
    Q_OBJECT
public:
    // The model must outlive the bars.
    explicit NoticeBars(AppModel& model, QWidget* parent = nullptr);

    // To be called when the model's state has changed.
    void refresh();

private:
    void addBars();
    NoticeBar* added(NoticeBar* bar);
    QPushButton* addDismissal(NoticeBar* bar, std::function<void()> dismiss);
    void refreshErrors();
    void refreshRelaunch();
    void refreshActivity();
    void refreshProof();

    AppModel& model_;
    NoticeBar* startupError_;
    NoticeBar* safety_;
    NoticeBar* dryRun_;
    NoticeBar* interrupted_;
    NoticeBar* recoveryFailures_;
    NoticeBar* error_;
    NoticeBar* relaunch_;
    NoticeBar* relaunchReport_;
    NoticeBar* activity_;
    NoticeBar* proof_;
    NoticeBar* incompleteProof_;
    QPushButton* recover_;
    std::vector<NoticeBar*> bars_;
    QTimer patience_;                                     // what is done sooner needs no words
    const std::optional<Activity>* waitedFor_ = nullptr;  // in the state; what is being done began already
    std::optional<std::string> readReport_;
    std::optional<UndoProof> readProof_;
    bool isProofOld_ = false;
};

}  // namespace brell
