#include "CorvaneBrell/Window/Sheets/Sheets.h"

#include "CorvaneBrell/Window/SheetPresenter.h"

namespace brell {

Sheet* makeSheet(AppModel& model, QWidget* window, const SheetRequest& request) {
    return std::visit([&](const auto& asked) { return sheetFor(model, window, asked); }, request);
}

}  // namespace brell
