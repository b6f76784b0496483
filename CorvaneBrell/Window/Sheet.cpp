#include "CorvaneBrell/Window/Sheet.h"

#include <QScrollArea>
#include <QScrollBar>

#include "CorvaneBrell/Window/GrowingCard.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/ScrolledContent.h"
#include "CorvaneBrell/Window/TabOrder.h"
#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

constexpr int margin = 22;

int sheetWidth() {
    return widthFor(66, 600);
}

// As high as its content, up to a limit; then it scrolls.
class FittingScrollArea final : public QScrollArea {
public:
    FittingScrollArea() {
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    }
    QSize sizeHint() const override {
        const int width = sheetWidth() - 2 * margin;
        return {width, heightForWidth(width)};
    }
    QSize minimumSizeHint() const override { return {200, std::min(sizeHint().height(), 80)}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override {
        QLayout* layout = widget()->layout();
        layout->activate();  // so that it knows what was added since it was asked last
        return std::clamp(layout->totalHeightForWidth(width), 0, highest);
    }

private:
    static constexpr int highest = 340;
};

}  // namespace

Sheet::Sheet(const QString& title, const QString& explanation, QWidget* window)
    : QDialog(window), content_(new QVBoxLayout), footnotes_(new QVBoxLayout), buttons_(new QHBoxLayout) {
    setWindowModality(Qt::WindowModal);
    setWindowFlag(Qt::Sheet);
    setWindowTitle(inBrief(title, 120));
    setAccessibleDescription(explanation);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, 20, margin, 16);
    column->setSpacing(12);
    column->addWidget(new Paragraph(title, Paragraph::Look::heading));
    if (!explanation.isEmpty()) column->addWidget(new Paragraph(explanation, Paragraph::Look::secondary));

    auto* holder = new ScrolledContent;
    auto* inner = new QVBoxLayout(holder);
    inner->setContentsMargins(0, 0, 0, 0);
    content_->setSpacing(10);
    inner->addLayout(content_);
    inner->addStretch(1);
    auto* scroll = new FittingScrollArea;
    scroll->setWidget(holder);
    connect(scroll->verticalScrollBar(), &QScrollBar::rangeChanged, inner, [inner](int, int most) {
        constexpr int room = 8;  // between the cards and the scroll bar
        inner->setContentsMargins(0, 0, most > 0 ? room : 0, 0);
    });
    holder->setAutoFillBackground(false);
    scroll->viewport()->setAutoFillBackground(false);
    column->addWidget(scroll, 1);
    new TabOrder(this, holder);

    buttons_->setSpacing(8);
    buttons_->addStretch(1);
    column->addLayout(footnotes_);
    column->addLayout(buttons_);
    setMinimumWidth(sheetWidth());
}

QPushButton* Sheet::addCancel(const QString& text) {
    QPushButton* button = addButton(text);
    button->setDefault(true);
    button->setFocus();
    connect(button, &QPushButton::clicked, this, &QDialog::reject);
    return button;
}

QPushButton* Sheet::addButton(const QString& text) {
    auto* button = actionButton(text);
    addButton(button);
    return button;
}

void Sheet::addButton(QPushButton* button) {
    buttons_->addWidget(button);
}

QPushButton* Sheet::addAside(const QString& text) {
    auto* button = actionButton(text);
    buttons_->insertWidget(0, button);
    return button;
}

void Sheet::addFootnote(const QString& text, const QString& symbol, Tone tone) {
    footnotes_->addWidget(symbolLine(symbol, tone, text, this));
}

void Sheet::addLines(const QString& name, const QStringList& lines) {
    content_->addWidget(lineCard(name, lines, this));
}

}  // namespace brell
