#include "CorvaneBrell/Window/Switch.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPainterPath>

#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

// Qt's own would move the switch without asking anybody.
class SwitchAccessible final : public QAccessibleWidget {
public:
    explicit SwitchAccessible(Switch* toggle) : QAccessibleWidget(toggle, QAccessible::CheckBox) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = toggle()->isChecked();
        state.checkStateMixed = !toggle()->isKnown();
        return state;
    }
    QStringList actionNames() const override { return {toggleAction(), pressAction(), setFocusAction()}; }
    void doAction(const QString& action) override {
        if (action == toggleAction() || action == pressAction())
            toggle()->click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    Switch* toggle() const { return static_cast<Switch*>(widget()); }
};

QAccessibleInterface* accessibleSwitch(const QString&, QObject* object) {
    auto* toggle = qobject_cast<Switch*>(object);
    return toggle ? new SwitchAccessible(toggle) : nullptr;
}

constexpr int focusMargin = 3;

QSize trackSize() {
    return {widthFor(7, 56), heightFor(4, 24)};
}

}  // namespace

Switch::Switch(QWidget* parent) : QAbstractButton(parent) {
    static const bool known = (QAccessible::installFactory(accessibleSwitch), true);
    Q_UNUSED(known);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setContentsMargins(focusMargin, focusMargin, focusMargin, focusMargin);
}

QSize Switch::sizeHint() const {
    return trackSize() + QSize(2 * focusMargin, 2 * focusMargin);
}

void Switch::setPosition(std::optional<bool> on) {
    setChecked(on.value_or(false));
    if (isKnown_ == on.has_value()) return;
    isKnown_ = on.has_value();
    QAccessible::State changed;
    changed.checkStateMixed = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
    update();
}

void Switch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QSizeF size = trackSize();
    const QRectF track(QPointF(focusMargin, (height() - size.height()) / 2.0), size);
    const double radius = track.height() / 2;
    const bool filled = isChecked() && isEnabled();
    const QColor edge = isEnabled() ? Appearance::outline(palette()) : Appearance::hairline(palette());

    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), 2));
        painter.drawRoundedRect(track.adjusted(-2, -2, 2, 2), radius + 2, radius + 2);
    }
    painter.setPen(filled ? Qt::NoPen : QPen(edge, 1.2));
    painter.setBrush(filled ? palette().color(QPalette::Active, QPalette::Highlight)
                            : palette().color(QPalette::Active, QPalette::Window));
    painter.drawRoundedRect(track.adjusted(0.6, 0.6, -0.6, -0.6), radius, radius);

    QRectF knob(0, 0, track.height() - 8, track.height() - 8);
    knob.moveCenter(!isKnown_     ? track.center()
                    : isChecked() ? QPointF(track.right() - radius, track.center().y())
                                  : QPointF(track.left() + radius, track.center().y()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(filled ? palette().color(QPalette::Active, QPalette::HighlightedText) : edge);
    painter.drawEllipse(knob);
    if (isKnown_) paintWords(painter, track, filled);
}

void Switch::paintWords(QPainter& painter, const QRectF& track, bool filled) const {
    painter.setPen(filled        ? palette().color(QPalette::Active, QPalette::HighlightedText)
                   : isEnabled() ? palette().color(QPalette::Active, QPalette::WindowText)
                                 : Appearance::secondaryText(palette()));
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    painter.setFont(small);
    const QRectF words =
        isChecked() ? track.adjusted(8, 0, -track.height(), 0) : track.adjusted(track.height(), 0, -8, 0);
    painter.drawText(words, Qt::AlignCenter, isChecked() ? tr("On") : tr("Off"));
}

}  // namespace brell
