#include "CorvaneBrell/Window/Sheets/PresetResultSheet.h"

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"

namespace brell {

PresetResultSheet::PresetResultSheet(QWidget* window, const PresetReport& report)
    : Sheet(tr("What the preset came to"), tr("Every change is in the journal and can be undone."), window) {
    auto* text = new SelectableText(tr("Result"));
    text->setPlainText(qt(report.lines).join("\n\n"));
    content()->addWidget(text);
    addCancel(tr("Done"));
}

}  // namespace brell
