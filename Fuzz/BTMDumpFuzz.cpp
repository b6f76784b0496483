// Any bytes give a dump or none; and a dump printed in the tool's form reads back the same.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "BrellCore/Background/BTMDump.h"
#include "BrellCore/Background/JobPath.h"

namespace {

using namespace brell;

// In the order of the types.
constexpr std::array<std::string_view, 9> typeWords{"app",           "login item", "legacy agent",
                                                    "legacy daemon", "developer",  "dock tile",
                                                    "quicklook",     "spotlight",  "curated"};

std::string field(std::string_view key, const std::optional<std::string>& value) {
    return std::string(key) + ": " + value.value_or("(null)") + "\n";
}

std::string printed(const BTMItem& item) {
    std::string text = " #1:\n";
    text += field("Name", item.name) + field("Developer Name", item.developer);
    text += field("Team Identifier", item.teamID);
    text += "Type: " + std::string(typeWords[static_cast<std::size_t>(item.type)]) + " (0x2)\n";
    text += "Disposition: [" + std::string(item.enabled ? "enabled" : "disabled") +
            (item.allowed ? ", allowed" : ", disallowed") + "] (0x3)\n";
    text += field("Identifier", item.id) + field("Bundle Identifier", item.bundleID);
    text += field("URL", item.url) + field("Parent Identifier", item.parentID);
    text += "Embedded Item Identifiers:\n";
    for (const std::string& identifier : item.embeddedIdentifiers) text += "#1: " + identifier + "\n";
    return text;
}

std::string printed(const BTMDump& dump) {
    std::string text;
    for (const auto& [uid, items] : dump.sections) {
        text += "Records for UID " + std::to_string(uid) + " : 0\n";
        for (const BTMItem& item : items) text += printed(item);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto dump = BTMDumpParser::parse({reinterpret_cast<const char*>(data), size});
    if (!dump) return 0;
    if (BTMDumpParser::parse(printed(*dump)).value_or(BTMDump{}) != *dump) std::abort();
    for (const BTMItem& item : dump->systemItems()) {
        const auto path = pathOfItemUrl(item.url.value_or(""));
        if (item.id.empty() || (path && standardizedPath(*path) != *path)) std::abort();
    }
    return 0;
}
