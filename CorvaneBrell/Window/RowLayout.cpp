#include "CorvaneBrell/Window/RowLayout.h"

#include <QWidget>
#include <algorithm>

#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

constexpr QMargins padding(16, 11, 10, 11);
constexpr int wayBackWidth = 28, arrowWidth = 28;
constexpr int gap = 6, wordsGap = 14, lineGap = 2;
constexpr int notesGap = 4;  // where a badge stands beside the notes, and is higher than they are

// Of a control that is one line of its row.
int highestLine() {
    return heightFor(24, 40);
}

// In a row that is less wide the words would wrap too often beside the badge.
int narrow() {
    return widthFor(92, 700);
}

QRect& at(std::array<QRect, RowLayout::parts>& places, RowLayout::Part part) {
    return places[static_cast<std::size_t>(part)];
}

// Of this height, its middle where the others have theirs.
int inTheMiddle(int top, int room, int height) {
    return top + (room - height) / 2;
}

}  // namespace

RowLayout::RowLayout(QWidget* row) : QLayout(row) {
    setContentsMargins(padding);
}

RowLayout::~RowLayout() = default;

void RowLayout::put(Part part, QWidget* widget) {
    auto& place = items_[static_cast<std::size_t>(part)];
    if (place) delete place->widget();
    place.reset();
    if (widget) {
        addChildWidget(widget);
        place = std::make_unique<QWidgetItemV2>(widget);
    }
    invalidate();
}

void RowLayout::put(Part part, QLayout* layout) {
    addChildLayout(layout);
    items_[static_cast<std::size_t>(part)].reset(layout);
    invalidate();
}

int RowLayout::count() const {
    return static_cast<int>(
        std::count_if(items_.begin(), items_.end(), [](const auto& item) { return item != nullptr; }));
}

QLayoutItem* RowLayout::itemAt(int place) const {
    for (const auto& item : items_)
        if (item && place-- == 0) return item.get();
    return nullptr;
}

// Also called for a widget that is deleted.
QLayoutItem* RowLayout::takeAt(int place) {
    for (auto& item : items_)
        if (item && place-- == 0) {
            invalidate();
            return item.release();
        }
    return nullptr;
}

int RowLayout::heightOf(Part part, int width) const {
    const QLayoutItem* shown = item(part);
    if (!shown || shown->isEmpty()) return 0;
    return shown->hasHeightForWidth() ? shown->heightForWidth(width) : shown->sizeHint().height();
}

int RowLayout::controlWidth() {
    return widthFor(20, 166);
}

int RowLayout::controlWidthNeeded() const {
    const QLayoutItem* control = item(Part::control);
    return std::max(controlWidth(), control && !control->isEmpty() ? control->minimumSize().width() : 0);
}

// From the right edge to the left; gives where the columns begin.
int RowLayout::placeColumns(Places& places, int right) const {
    at(places, Part::arrow) = {right - arrowWidth, 0, arrowWidth, heightOf(Part::arrow, arrowWidth)};
    const int controlRight = right - arrowWidth - gap, room = controlWidthNeeded();
    const QLayoutItem* control = item(Part::control);
    if (control && !control->isEmpty()) {
        const int width = std::min(control->maximumSize().width(), room);
        const int margin = control->widget()->contentsMargins().right();  // beyond what is seen of it
        at(places, Part::control) = {controlRight - width + margin, 0, width, heightOf(Part::control, width)};
    }
    if (badgeRoom_.isEmpty()) return controlRight - (control ? room + wordsGap : 0);
    const int wayBackLeft = controlRight - room - gap - wayBackWidth;
    at(places, Part::wayBack) = {wayBackLeft, 0, wayBackWidth, heightOf(Part::wayBack, wayBackWidth)};
    return wayBackLeft - gap;
}

// Everything has its middle on one line.
int RowLayout::placeWide(Places& places, int left, int columnsLeft) const {
    int wordsRight = columnsLeft;
    if (!badgeRoom_.isEmpty()) {
        const QLayoutItem* badge = item(Part::badge);
        const int width = badge ? std::min(badge->sizeHint().width(), badgeRoom_.width()) : 0;
        at(places, Part::badge) = {columnsLeft - width, 0, width, badgeRoom_.height()};
        wordsRight = columnsLeft - badgeRoom_.width() - wordsGap;
    }
    const int width = std::max(wordsRight - left, 1);
    int block = 0;
    for (const Part part : {Part::title, Part::words, Part::notes})
        if (const int height = heightOf(part, width)) {
            at(places, part) = {left, block, width, height};
            block += height + lineGap;
        }
    const int height = std::max({block - lineGap, at(places, Part::control).height(), arrowWidth});
    for (const Part part : {Part::title, Part::words, Part::notes})
        at(places, part).translate(0, inTheMiddle(padding.top(), height, block - lineGap));
    for (const Part part : {Part::badge, Part::wayBack, Part::control, Part::arrow})
        at(places, part).moveTop(inTheMiddle(padding.top(), height, at(places, part).height()));
    return padding.top() + height;
}

// From the words to the columns; a title that is too long for that goes on to a small control, and its way
// back stands between the two, so that it wraps alike with and without one.
int RowLayout::roomOfTitle(Places& places, int left, int columnsLeft) const {
    const int usual = std::max(columnsLeft - left, 1);
    const int most = at(places, Part::control).left() - gap - wayBackWidth - gap - left;
    if (most <= usual || heightOf(Part::title, most) == heightOf(Part::title, usual)) return usual;
    at(places, Part::wayBack).moveLeft(left + most + gap);
    return most;
}

// The title beside the control, the words and the notes below both, and the badge at the right end of the
// last of these lines; beside a control of several lines they all stay at the left.
int RowLayout::placeNarrow(Places& places, int left, int columnsLeft, int right) const {
    const int beside = std::max(columnsLeft - left, 1), whole = right - arrowWidth - gap - left;
    const int control = at(places, Part::control).height();
    const int titleRoom = roomOfTitle(places, left, columnsLeft), title = heightOf(Part::title, titleRoom);
    const bool isHigh = control > highestLine();
    const int head = isHigh ? title : std::max({title, control, arrowWidth});
    at(places, Part::title) = {left, inTheMiddle(padding.top(), head, title), titleRoom, title};
    for (const Part part : {Part::wayBack, Part::control, Part::arrow})
        at(places, part)
            .moveTop(inTheMiddle(padding.top(), isHigh ? control : head, at(places, part).height()));
    const int wordsTop = padding.top() + head + (isHigh ? lineGap : 0);
    // What a high control leaves beside it is for the words; the badge stands below it.
    if (!isHigh) return placeFoot(places, left, wordsTop, whole - badgeRoom_.width() - wordsGap, whole);
    const int bottom = std::max(placeFoot(places, left, wordsTop, beside, beside),
                                padding.top() + control + lineGap + badgeRoom_.height());
    at(places, Part::badge).moveBottomRight({left + whole - 1, bottom - 1 + lineGap});
    return bottom;
}

// The words have the whole width where notes stand below them, and else leave room for the badge, too.
int RowLayout::placeFoot(Places& places, int left, int top, int lastLine, int whole) const {
    const int notes = heightOf(Part::notes, lastLine), width = notes > 0 ? whole : lastLine;
    const int words = heightOf(Part::words, width);
    at(places, Part::words) = {left, top, width, words};
    if (notes > 0) at(places, Part::notes) = {left, top + words + notesGap, lastLine, notes};
    const int line = badgeRoom_.height() - 4;  // the last one, in the middle of which the badge has its own
    const int bottom = top + std::max(words + (notes > 0 ? notesGap + notes : 0), line);
    const int badgeTop = inTheMiddle(bottom - line, line, badgeRoom_.height());
    if (const QLayoutItem* badge = item(Part::badge)) {
        const int own = std::min(badge->sizeHint().width(), badgeRoom_.width());
        at(places, Part::badge) = {left + whole - own, badgeTop, own, badgeRoom_.height()};
    }
    return badgeTop + badgeRoom_.height();
}

int RowLayout::arranged(Places& places, int width) const {
    const int left = padding.left(), right = width - padding.right();
    const int columnsLeft = placeColumns(places, right);
    int bottom = !badgeRoom_.isEmpty() && width < narrow() ? placeNarrow(places, left, columnsLeft, right)
                                                           : placeWide(places, left, columnsLeft);
    if (const int details = heightOf(Part::details, right - left)) {
        at(places, Part::details) = {left, bottom + padding.bottom(), right - left, details};
        bottom += padding.bottom() + details;
    }
    return bottom + padding.bottom();
}

int RowLayout::heightForWidth(int width) const {
    Places places;
    return arranged(places, width);
}

QSize RowLayout::sizeHint() const {
    return {narrow(), heightForWidth(narrow())};
}

QSize RowLayout::minimumSize() const {
    constexpr int leastWords = 120;
    Places places;
    const int columns = -placeColumns(places, 0);
    return {padding.left() + leastWords + columns + padding.right(),
            arrowWidth + padding.top() + padding.bottom()};
}

void RowLayout::setGeometry(const QRect& place) {
    QLayout::setGeometry(place);
    Places places;
    arranged(places, place.width());
    for (std::size_t i = 0; i < parts; ++i)
        if (items_[i] && !items_[i]->isEmpty()) items_[i]->setGeometry(places[i].translated(place.topLeft()));
}

}  // namespace brell
