// The parts of a window as a reader meets them: what is visible, and the words on it.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <stdexcept>

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

class WindowReader {
protected:
    // The visible widgets of a kind, below the window or a part of it.
    template <class Widget>
    static std::vector<Widget*> visible(const QWidget& in) {
        std::vector<Widget*> widgets;
        for (Widget* widget : in.findChildren<Widget*>())
            if (widget->isVisibleTo(&in)) widgets.push_back(widget);
        return widgets;
    }

    // Everything that can be read in this part of the window.
    static QString words(const QWidget& part) {
        QStringList texts;
        for (const QLabel* text : visible<QLabel>(part)) texts << text->text();
        for (const SelectableText* text : visible<SelectableText>(part)) texts << text->toPlainText();
        return texts.join('\n');
    }

    // Every one of these can be read in this part of the window.
    static void expectWords(const QWidget& part, const QStringList& texts) {
        for (const QString& text : texts)
            EXPECT_TRUE(words(part).contains(text)) << utf8(text + " is not in\n" + words(part));
    }

    // The sample's lines with a plus can be read there, those with a minus cannot; a bar ends a line.
    static void expectSample(const QWidget& part, const std::string& name) {
        for (const Texts& line : sampleRows("Words/" + name + ".txt")) {
            const QString text = qt(line.at(1)).replace(" | ", "\n");
            EXPECT_EQ(words(part).contains(text), line[0] == "+") << utf8(text + " in\n" + words(part));
        }
    }

    // The visible button with this text, or with this accessible name.
    static QAbstractButton& button(const QWidget& in, const QString& text) {
        for (QAbstractButton* button : visible<QAbstractButton>(in))
            if (button->text() == text || button->accessibleName() == text) return *button;
        throw std::runtime_error("there is no button " + utf8(text));
    }

    template <class Dialog>
    static Dialog& opened() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<Dialog*>(widget); dialog && dialog->isVisible()) return *dialog;
        throw std::runtime_error("no such dialog is open");
    }

    static std::string nameOf(const QWidget* widget) {
        return widget->metaObject()->className() + (" \"" + utf8(widget->accessibleName()) + "\"");
    }
};

}  // namespace brell::testing
