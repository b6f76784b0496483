#include "CorvaneBrell/Window/SpotlightPage.h"

#include "CorvaneBrell/Window/PaneButton.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

namespace {

RowBadge badgeOf(const VolumeIndexStatus& volume) {
    if (!volume.indexing) return {QObject::tr("Not known"), "questionmark.circle", Tone::caution, {}};
    if (*volume.indexing) return {QObject::tr("Indexing on"), "checkmark.circle", Tone::positive, {}};
    return {QObject::tr("Indexing off"), "minus.circle", Tone::plain, {}};
}

}  // namespace

void VolumeRow::setRecord(const Record& volume) {
    const bool isStartup = volume.volume == "/";
    const qsizetype name = qt(volume.volume).lastIndexOf('/') + 1;
    setTitle(isStartup ? tr("Startup volume") : qt(volume.volume).mid(name));
    setWhat(qt(volume.volume));
    setBadge(badgeOf(volume));
    if (volume.indexing) return setNotice({});
    setNotice(volume.raw.empty() ? tr("Spotlight gave no answer for this volume.")
                                 : tr("Spotlight answers: %1").arg(qt(volume.raw)));
}

SpotlightPage::SpotlightPage(AppModel& model, QWidget* parent)
    : Page(qt(title(Screen::spotlight)), qt(purpose(Screen::spotlight)), parent),
      model_(model),
      tweaks_(new TweakList(model)),
      volumes_(new RecordList<VolumeRow>(tr("Volumes"), [] { return new VolumeRow; })) {
    tweaks_->show(tweaksOf(model, TweakGroup::spotlight));
    auto* again = actionButton(tr("Refresh"), "arrow.clockwise");
    again->setAccessibleName(tr("Refresh the state of the volumes"));
    connect(again, &QPushButton::clicked, this, [this] { model_.loadVolumes(); });
    tools()->addWidget(again);
    tools()->addWidget(paneButton(*settingsLink(Screen::spotlight), tr("Spotlight")));
    content()->addWidget(tweaks_);
    content()->addWidget(volumes_);
    connect(volumes_, &RowColumn::moreWanted, this, [this] { refresh({Topic::volumes}); });
    model_.loadVolumes();
}

void SpotlightPage::refresh(const Changes& changed) {
    const std::vector<VolumeIndexStatus>& volumes = model_.state().volumes;
    tweaks_->refresh();
    if (changed.contains(Topic::volumes)) {
        const std::size_t shown = std::min(volumes.size(), volumes_->limit());
        volumes_->setRecords({volumes.begin(), volumes.begin() + static_cast<std::ptrdiff_t>(shown)},
                             volumes.size());
    }
    // There is always the startup volume.
    setEmptyState(volumes.empty() ? tr("Spotlight is being asked about each volume.") : QString());
}

}  // namespace brell
