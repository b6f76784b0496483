#include "CorvaneBrell/Window/PlaceRow.h"

#include <QApplication>
#include <QPushButton>

#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

PlaceRow::PlaceRow(QWidget* parent) : Row({}, Columns::control, parent), open_(actionButton(tr("Open"))) {
    open_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(open_, &QPushButton::clicked, this,
            [this] { emit asked(record_.place.screen, qt(record_.place.id)); });
    setControl(open_);
}

std::string PlaceRow::keyOf(const Record& record) {
    return std::string(rawValue(record.place.screen)) + " " + record.place.id;
}

void PlaceRow::setRecord(const Record& record) {
    setObjectName(qt(keyOf(record)));
    if (record == record_) return;
    record_ = record;
    const Place& place = record.place;
    const QString page = qt(brell::title(place.screen));
    setTitle(qt(place.title));
    setWhat(qt(place.what));
    mark(record.words);
    open_->setIcon(symbolIcon(symbol(place.screen)));
    setActionText(open_, tr("Open"));
    open_->setAccessibleName(place.id.empty() ? tr("Open the page %1").arg(page)
                                              : tr("Open %1 on the page %2").arg(title(), page));
}

// Not what the user is at.
bool PlaceRow::canShowAnother() const {
    return !isAncestorOf(QApplication::focusWidget());
}

}  // namespace brell
