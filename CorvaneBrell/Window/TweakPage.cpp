#include "CorvaneBrell/Window/TweakPage.h"

#include <QCheckBox>
#include <QPushButton>
#include <algorithm>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Symbol.h"
#include "CorvaneBrell/Window/TickBox.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

TweakPage::TweakPage(AppModel& model, Screen screen, QWidget* parent)
    : Page(qt(title(screen)), qt(purpose(screen)), parent),
      model_(model),
      screen_(screen),
      changedOnly_(new TickBox(tr("Changed only"))),
      showAll_(addEmptyAction(tr("Show All Settings"))),
      list_(new TweakList(model)) {
    changedOnly_->setMinimumHeight(28);
    auto* presets = actionButton(tr("Presets"), "sparkles");
    presets->setMenu(new PresetMenu(model, presets));
    presets->setAccessibleDescription(tr("Several settings at once; each is shown before it is changed"));
    tools()->addWidget(changedOnly_);
    tools()->addWidget(presets);
    content()->addWidget(list_);
    connect(changedOnly_, &QCheckBox::toggled, this, &TweakPage::changedOnlyAsked);
    connect(showAll_, &QPushButton::clicked, this, [this] { emit changedOnlyAsked(false); });
}

void TweakPage::setChangedOnly(bool changedOnly) {
    changedOnly_->setChecked(changedOnly);
}

void TweakPage::refresh(const Changes&) {
    std::vector<const Tweak*> tweaks = tweaksOf(model_, *group(screen_));
    if (changedOnly_->isChecked()) {
        const std::vector<std::string> changed = model_.changedTweaks();
        std::erase_if(tweaks, [&](const Tweak* tweak) {
            return std::find(changed.begin(), changed.end(), tweak->id) == changed.end();
        });
    }
    list_->show(tweaks);
    showAll_->setVisible(changedOnly_->isChecked());
    setEmptyState(!tweaks.empty() ? QString()
                  : changedOnly_->isChecked()
                      ? tr("Nothing on this page is changed by Brell.")
                      : tr("No setting of this page is offered on macOS %1.").arg(qt(model_.macOSVersion())));
}

}  // namespace brell
