// Says what a preset came to.
#pragma once

#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Window/Sheet.h"

namespace brell {

// There is nothing to answer: every way out of it only closes it.
class PresetResultSheet final : public Sheet {
    Q_OBJECT
public:
    PresetResultSheet(QWidget* window, const PresetReport& report);
};

}  // namespace brell
