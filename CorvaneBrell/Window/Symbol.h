// The small pictures beside words: the system's own where it has them, else ours; always in the colours of
// the palette of the moment.
#pragma once

#include <QIcon>
#include <QVersionNumber>
#include <QWidget>
#include <string>
#include <string_view>

#include "CorvaneBrell/Window/Appearance.h"

namespace brell {

// The names are those of the system's symbols: "folder", "lock". One without a picture stays empty.
QIcon symbolIcon(std::string_view name, Tone tone = Tone::plain);

// The size in points that an engine of icons is asked for: before version 6.8 the toolkit asks in pixels of
// the screen, from then on in points.
QSize askedPoints(const QSize& asked, double scale, const QVersionNumber& toolkit);

// One symbol by itself. Says nothing to assistive technology: the words beside it do.
class SymbolView final : public QWidget {
    Q_OBJECT
public:
    explicit SymbolView(std::string_view name, Tone tone = Tone::plain, int points = 16,
                        QWidget* parent = nullptr);
    void setSymbol(std::string_view name, Tone tone);

    QSize sizeHint() const override { return {points_, points_}; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    std::string name_;
    Tone tone_;
    int points_;
};

}  // namespace brell
