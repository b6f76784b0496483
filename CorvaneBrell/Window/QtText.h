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

// For buttons and menus, where "&" would otherwise underline a letter.
inline QString label(QString text) {
    return text.replace("&", "&&");
}

}  // namespace brell
