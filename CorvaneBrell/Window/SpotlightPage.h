// The page of Spotlight's indexing, volume by volume.
#pragma once

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/RecordList.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

class TweakList;

class VolumeRow final : public Row {
    Q_OBJECT
public:
    using Record = VolumeIndexStatus;

    explicit VolumeRow(QWidget* parent = nullptr) : Row({}, Columns::stateAndControl, parent) {}
    static const std::string& keyOf(const Record& volume) { return volume.volume; }
    void setRecord(const Record& volume);
};

class SpotlightPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit SpotlightPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    AppModel& model_;
    TweakList* tweaks_;
    RecordList<VolumeRow>* volumes_;
};

}  // namespace brell
