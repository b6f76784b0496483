// Leads a user out of Brell: what is still changed, the proof that nothing is, what to keep, and then Brell's
// own files to the Trash. Each step can be the last.
#pragma once

#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class LeavingSheet final : public RequestSheet {
    Q_OBJECT
public:
    LeavingSheet(AppModel& model, QWidget* window, const LeavingRequest& request);

private:
    void showActive(const LeavingRequest& request);
    void showProof(const LeavingRequest& request);
    void showWhatGoes(const LeavingRequest& request);
    QWidget* filesToKeep();
};

// Every way out of it closes the window: a Brell that has left changes nothing any more.
class LeavingReportSheet final : public Sheet {
    Q_OBJECT
public:
    LeavingReportSheet(QWidget* window, const LeavingReport& report);
};

}  // namespace brell
