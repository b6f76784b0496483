#include "CorvaneBrell/Window/Sheets/PresetResultSheet.h"

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"

namespace brell {

PresetResultSheet::PresetResultSheet(QWidget* window, const PresetReport& report)
    : Sheet(tr("The preset was applied"), tr("Every change is in the journal and can be undone."), window) {
    auto* text = new SelectableText(tr("What the preset came to"));
    text->setPlainText(qt(report.lines).join("\n\n"));
    content()->addWidget(text);
    addCancel(tr("Done"));
}

}  // namespace brell
