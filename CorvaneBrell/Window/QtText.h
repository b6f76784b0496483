// Between the core's UTF-8 and Qt's text.
#pragma once

#include <QString>
#include <QStringList>
#include <string>
#include <string_view>
#include <vector>

namespace brell {

inline QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QStringList qt(const std::vector<std::string>& texts) {
    QStringList list;
    for (const std::string& text : texts) list.append(qt(std::string_view(text)));
    return list;
}

inline std::string utf8(const QString& text) {
    return text.toStdString();
}

// For tool tips, which take a text for HTML when it looks like it.
inline QString plainTip(const QString& text) {
    constexpr qsizetype longest = 1000;
    if (text.isEmpty()) return text;
    return "<p>" + text.left(longest).toHtmlEscaped().replace('\n', "<br>") + "</p>";
}

// As long as a menu or a list has room for: of a longer text the beginning and the end.
inline QString inBrief(const QString& text, qsizetype longest) {
    if (text.size() <= longest) return text;
    return text.left(longest / 2) + "…" + text.right(longest - longest / 2 - 1);
}

// For buttons and menus, where "&" would otherwise underline a letter.
inline QString label(QString text) {
    return text.replace("&", "&&");
}

}  // namespace brell
