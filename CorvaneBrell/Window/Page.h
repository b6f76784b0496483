// The frame of every page: a title, one line of purpose, tools beside them, and a column of content that
// scrolls.
#pragma once

#include <QBoxLayout>
#include <QScrollArea>
#include <QWidget>
#include <set>

#include "CorvaneBrell/Model/AppState.h"
#include "CorvaneBrell/Window/Paragraph.h"

class QPushButton;

namespace brell {

using Changes = std::set<Topic>;

// Made when it is first shown.
class Page : public QWidget {
    Q_OBJECT
public:
    Page(const QString& title, const QString& purpose, QWidget* parent = nullptr);

    // Shows what the model says now. changed holds what has changed since the last call;
    // the first call names every one. Called only while the page is shown, on the main thread.
    virtual void refresh(const Changes& changed) = 0;

    // Brings the row of this name into sight, opened and with the focus. False where there is none.
    bool lead(const QString& name);

    QScrollArea* scrollArea() const { return scroll_; }

protected:
    QHBoxLayout* tools() { return tools_; }
    // Below the title, where it stays while the content scrolls. At most one.
    void setHeadLine(QWidget* line);
    QVBoxLayout* content() { return content_; }

    // Shows this sentence, with its reason, instead of content; an empty one hides it. The button is shown
    // with the sentence and only then; its text says what it does. Call it before the first setEmptyState.
    void setEmptyState(const QString& sentence);
    QPushButton* addEmptyAction(const QString& text);

    void resizeEvent(QResizeEvent* event) override;

private:
    void alignColumn();

    QVBoxLayout* headColumn_;
    QHBoxLayout* tools_;
    QVBoxLayout* content_;
    QScrollArea* scroll_;
    QVBoxLayout* rows_;
    QHBoxLayout* line_;
    QWidget* empty_;
    Paragraph* emptyText_;
    QVBoxLayout* emptyColumn_;
};

// The column in which pages, and what is told beside them, have their content.
namespace PageColumn {
inline constexpr int margin = 24;
int widest();  // with the margins
// In the middle of the parent, which gets a layout for it.
QWidget* in(QWidget* parent);
}  // namespace PageColumn

// A heading between the cards of a page.
Paragraph* sectionHeading(const QString& text);
// A push button as pages, bars and details use it.
QPushButton* actionButton(const QString& text, const QString& symbol = {});
// Other words for one, with room for them.
void setActionText(QPushButton* button, const QString& text);

}  // namespace brell
