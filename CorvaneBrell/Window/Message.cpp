#include "CorvaneBrell/Window/Message.h"

#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Sheet.h"

namespace brell {

namespace {

class Message final : public Sheet {
public:
    Message(const QString& title, const QString& text, QWidget* window) : Sheet(title, {}, window) {
        constexpr qsizetype readable = 4000;  // more takes too long to lay out
        constexpr qsizetype quicklySelected = 200;
        auto* words = new SelectableText(title);
        words->setPlainText(text.size() <= readable ? text : text.left(readable) + "…");
        content()->addWidget(words);
        if (text.size() > quicklySelected) addButton(copyButton(tr("Copy"), title, [text] { return text; }));
        addCancel(tr("OK"));
    }
};

}  // namespace

void tell(QWidget* over, const QString& title, const QString& text) {
    auto* message = new Message(title, text, over->window());
    message->setAttribute(Qt::WA_DeleteOnClose);
    message->open();
}

}  // namespace brell
