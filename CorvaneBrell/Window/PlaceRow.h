// A finding of a search that stands on another page, with a button that leads there.
#pragma once

#include "CorvaneBrell/Model/TweakSearch.h"
#include "CorvaneBrell/Window/Row.h"

class QPushButton;

namespace brell {

struct FoundPlace {
    Place place;
    QStringList words;  // that were searched for
    bool operator==(const FoundPlace&) const = default;
};

class PlaceRow final : public Row {
    Q_OBJECT
public:
    using Record = FoundPlace;

    explicit PlaceRow(QWidget* parent = nullptr);
    static std::string keyOf(const Record& record);
    void setRecord(const Record& record);
    bool canShowAnother() const;

signals:
    void asked(Screen screen, const QString& id);

private:
    Record record_;
    QPushButton* open_;
};

}  // namespace brell
