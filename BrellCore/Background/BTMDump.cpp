#include "BrellCore/Background/BTMDump.h"

#include <algorithm>
#include <array>
#include <utility>

#include "BrellCore/Support/Lines.h"
#include "BrellCore/Support/Numbers.h"

namespace brell {

namespace {

constexpr std::string_view sectionPrefix = "Records for UID ";
constexpr std::string_view embeddedPrefix = "Embedded Item Identifiers";
constexpr std::string_view digits = "0123456789";

constexpr std::array<std::pair<std::string_view, BTMItemType>, 8> typeWords{{
    {"app", BTMItemType::app},
    {"login item", BTMItemType::loginItem},
    {"legacy agent", BTMItemType::legacyAgent},
    {"legacy daemon", BTMItemType::legacyDaemon},
    {"developer", BTMItemType::developer},
    {"dock tile", BTMItemType::dockTile},
    {"quicklook", BTMItemType::quicklook},
    {"spotlight", BTMItemType::spotlight},
}};

// The number behind the word is the database's own and differs between systems.
BTMItemType itemType(std::string_view value) {
    const std::string_view word = stripped(value.substr(0, value.find('(')));
    for (const auto& [text, type] : typeWords)
        if (text == word) return type;
    return BTMItemType::other;
}

struct Disposition {
    bool enabled = false;
    bool allowed = true;
};

// Flags between brackets: [enabled, allowed, visible, notified] (0xb)
Disposition disposition(std::string_view value) {
    Disposition flags;
    const std::size_t open = value.find('[');
    const std::size_t close = value.find(']');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return flags;
    std::string_view rest = value.substr(open + 1, close - open - 1);
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        const std::string_view flag = stripped(rest.substr(0, comma));
        if (flag == "enabled") flags.enabled = true;
        if (flag == "disallowed") flags.allowed = false;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return flags;
}

// "#1: 16.com.example.tool"
bool isEmbeddedIdentifier(std::string_view line) {
    const std::size_t colon = line.find_first_not_of(digits, 1);
    return line.starts_with('#') && colon > 1 && colon < line.size() - 1 && line[colon] == ':';
}

std::optional<std::int64_t> sectionUser(std::string_view line) {
    const std::string_view rest = stripped(line.substr(sectionPrefix.size()));
    return parseInteger(rest.substr(0, rest.find_first_of(" \t\v\f\r")));
}

// At most so many items stand before the next section. Room for them is made at once: letting it grow would
// take half the time of reading a large dump.
std::size_t mostItemsIn(std::string_view rest) {
    constexpr std::size_t leastItemBytes = std::string_view("#:\nIdentifier:x\n").size();
    rest = rest.substr(0, rest.find(sectionPrefix));
    std::size_t signs = 0;
    for (std::size_t at = rest.find('#'); at != std::string_view::npos; at = rest.find('#', at + 1)) ++signs;
    return std::min(signs, rest.size() / leastItemBytes);
}

void set(std::optional<std::string>& text, std::string_view value) {
    if (value == "(null)")
        text.reset();
    else
        text = value;
}

class Parser {
public:
    explicit Parser(std::string_view text) : end_(text.data() + text.size()) {}

    void take(std::string_view line) {
        line = stripped(line);
        if (line.starts_with(sectionPrefix))
            openSection(line);
        else if (isItemHeader(line))
            openItem();
        else if (item_)
            takeItemLine(line);
    }

    std::optional<BTMDump> finish() {
        finishItem();
        return seenSection_ ? std::optional(std::move(dump_)) : std::nullopt;
    }

private:
    void openSection(std::string_view line) {
        finishItem();
        seenSection_ = true;
        const auto uid = sectionUser(line);
        section_ = uid ? &dump_.sections[*uid] : nullptr;
        if (!section_ || !section_->empty()) return;
        const char* const behind = line.data() + line.size();
        section_->reserve(mostItemsIn({behind, static_cast<std::size_t>(end_ - behind)}));
    }

    void openItem() {
        finishItem();
        item_ = section_ ? &section_->emplace_back() : &(nobodys_ = {});
    }

    void finishItem() {
        if (item_ && section_ && item_->id.empty()) section_->pop_back();
        item_ = nullptr;
        inEmbedded_ = false;
    }

    // "#12:". In a list of embedded identifiers one of these may end in a colon, too.
    bool isItemHeader(std::string_view line) const {
        return line.starts_with('#') && line.ends_with(':') && !(inEmbedded_ && isEmbeddedIdentifier(line));
    }

    void takeItemLine(std::string_view line) {
        if (line.starts_with(embeddedPrefix)) {
            inEmbedded_ = true;
            return;
        }
        const auto field = splitAtFirst(line, ":");
        if (!field) return;
        if (!line.starts_with('#'))
            takeField(field->key, field->value);
        else if (inEmbedded_ && !field->value.empty() && field->value != "(null)")
            item_->embeddedIdentifiers.emplace_back(field->value);
    }

    void takeField(std::string_view key, std::string_view value) {
        if (key == "Identifier") {
            item_->id = value == "(null)" ? std::string_view() : value;
        } else if (key == "Type") {
            item_->type = itemType(value);
        } else if (key == "Disposition") {
            const Disposition flags = disposition(value);
            item_->enabled = flags.enabled;
            item_->allowed = flags.allowed;
        } else {
            for (const auto& [name, member] : textFields)
                if (name == key) return set((*item_).*member, value);
        }
    }

    using TextMember = std::optional<std::string> BTMItem::*;
    static constexpr std::array<std::pair<std::string_view, TextMember>, 6> textFields{{
        {"Name", &BTMItem::name},
        {"Developer Name", &BTMItem::developer},
        {"Team Identifier", &BTMItem::teamID},
        {"Bundle Identifier", &BTMItem::bundleID},
        {"URL", &BTMItem::url},
        {"Parent Identifier", &BTMItem::parentID},
    }};

    const char* end_;  // of the whole text
    BTMDump dump_;
    bool seenSection_ = false;
    std::vector<BTMItem>* section_ = nullptr;  // of dump_; nullptr: what follows belongs to nobody
    BTMItem* item_ = nullptr;                  // the last of section_, or nobodys_
    BTMItem nobodys_;
    bool inEmbedded_ = false;
};

}  // namespace

std::string_view BTMItem::strippedIdentifier() const {
    const std::string_view whole = id;
    const std::size_t dot = whole.find_first_not_of(digits);
    const bool numbered = dot != 0 && dot != std::string_view::npos && whole[dot] == '.';
    return numbered ? whole.substr(dot + 1) : whole;
}

const std::vector<BTMItem>& BTMDump::items(std::int64_t uid) const {
    static const std::vector<BTMItem> none;
    const auto found = sections.find(uid);
    return found == sections.end() ? none : found->second;
}

std::vector<BTMItem> BTMDump::systemItems() const {
    std::vector<BTMItem> system = items(-2);
    system.insert(system.end(), items(0).begin(), items(0).end());
    return system;
}

std::optional<BTMDump> BTMDumpParser::parse(std::string_view text) {
    Parser parser(text);
    forEachLine(text, [&](std::string_view line) { parser.take(line); });
    return parser.finish();
}

}  // namespace brell
