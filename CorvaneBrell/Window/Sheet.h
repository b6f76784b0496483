// The frame of every sheet: a title, an explanation, content that scrolls, and its buttons. It belongs to the
// window and never waits in a loop of its own; Cancel is the default key unless the sheet says otherwise.
#pragma once

#include <QDialog>
#include <QPushButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Window/Appearance.h"

namespace brell {

class Sheet : public QDialog {
    Q_OBJECT
public:
    Sheet(const QString& title, const QString& explanation, QWidget* window);

    QVBoxLayout* content() { return content_; }
    // Buttons stand in a line at the bottom, Cancel first. Cancelling rejects the sheet, as the Escape key
    // and the close box do.
    QPushButton* addCancel(const QString& text = tr("Cancel"));
    QPushButton* addButton(const QString& text);
    void addButton(QPushButton* button);
    // At the other end of the line: it neither goes on nor leaves.
    QPushButton* addAside(const QString& text);

    // A sentence that stays in sight above the buttons while the content scrolls.
    void addFootnote(const QString& text, const QString& symbol = "info.circle", Tone tone = Tone::plain);

    // Called when something else is known and the question is still the same. Moves none of the buttons.
    virtual void refresh() {}

    // A block of lines in the content, of commands or keys: to read, select and copy.
    void addLines(const QString& name, const QStringList& lines);

private:
    QVBoxLayout* content_;
    QVBoxLayout* footnotes_;
    QHBoxLayout* buttons_;
};

}  // namespace brell
