// The rows from which the catalog is built: one function a group, its tweaks in display order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BrellCore/Catalog/Tweak.h"
#include "BrellCore/Catalog/TweakCatalog.h"

namespace brell::CatalogTable {

// The words and values that one tweak needs; everything else follows from it and its group.
struct Row {
    std::string_view id;
    std::string_view title;
    std::vector<Write> writes;
    TweakKind kind = ToggleKind{};
    std::optional<EffectClass> effect = std::nullopt;  // when it is not the one of the group
    Risk risk = Risk::low;
    bool confirmedOn26 = false;  // true only when its effect was seen there
    std::string_view what;
    std::string_view riskNote = {};
    std::string_view searchWords;  // what people call it who do not know its title
};

// The default is what macOS does without the key; leave it out when that is not known.
inline Write write(std::string_view domain, std::string_view name, PrefValue target,
                   std::optional<PrefValue> systemDefault = std::nullopt) {
    return {{std::string(domain), std::string(name)}, std::move(target), std::move(systemDefault)};
}

std::vector<Row> finder(const std::string& homeFileURL);
std::vector<Row> dock();
std::vector<Row> missionControl();
std::vector<Row> animations();
std::vector<Row> keyboardText();
std::vector<Row> panelsDocuments();
std::vector<Row> screenshots(const std::string& screenshotFolder);
std::vector<Row> misc();
std::vector<Row> privacy();

}  // namespace brell::CatalogTable
