// A small stand-in for macOS's `defaults`, over the property-list files in the folder $DEFAULTS_FOLDER: read,
// read-type, write and delete of one key, export of a domain. It prints what the real one prints and fails
// where the real one fails. What is written with -currentHost is only marked as set for the host, on the
// sample Mac in the folder $BRELL_SAMPLE_MAC.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "BrellCore/Preferences/PlistFileStore.h"
#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/PropertyList.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"

namespace fs = std::filesystem;

using namespace brell;
using Words = std::vector<std::string>;

namespace {

int fail(const std::string& message) {
    std::cerr << message << '\n';
    return 1;
}

// As numbers describe themselves there: the fewest digits that read back as the same number.
std::string described(double number) {
    std::array<char, 64> text;
    for (const int digits : {15, 16, 17}) {
        std::snprintf(text.data(), text.size(), "%.*g", digits, number);
        if (std::strtod(text.data(), nullptr) == number) break;
    }
    return text.data();
}

std::string described(const PrefValue& value) {
    if (const auto* flag = value.as<bool>()) return *flag ? "1" : "0";
    if (const auto* integer = value.as<std::int64_t>()) return std::to_string(*integer);
    if (const auto* real = value.as<double>()) return described(*real);
    if (const auto* text = value.as<std::string>()) return *text;
    std::string text = "(\n";
    for (const std::string& element : *value.as<PrefValue::StringArray>())
        text += "    \"" + element + "\",\n";
    return text + ")";
}

std::string typeWord(const PrefValue& value) {
    if (value.as<bool>()) return "boolean";
    if (value.as<std::int64_t>()) return "integer";
    if (value.as<double>()) return "float";
    return value.as<std::string>() ? "string" : "array";
}

std::optional<PrefValue> typed(const std::string& type, const Words& values) {
    if (type == "-array") return PrefValue(values);
    if (type.starts_with("<"))
        return PrefValue::fromPropertyList(readPropertyList("<plist version=\"1.0\">" + type + "</plist>"));
    if (values.size() != 1) return std::nullopt;
    const std::string& text = values[0];
    if (type == "-string") return PrefValue(text);
    if (type == "-bool" && (text == "true" || text == "false")) return PrefValue(text == "true");
    if (type == "-int")
        if (const auto integer = parseInteger(text)) return PrefValue(*integer);
    if (type == "-float")
        if (const auto real = parseReal(text)) return PrefValue(*real);
    return std::nullopt;
}

int exportDomain(const fs::path& file) {
    const auto contents = readFile(file, 1 << 20);
    std::cout << writeXmlPropertyList(contents ? readPropertyList(contents->bytes)
                                               : PlistValue{PlistDictionary()});
    return 0;
}

int valueForHost(const std::string& action, const PrefKey& key) {
    const char* mac = std::getenv("BRELL_SAMPLE_MAC");
    if (!mac) return fail("no sample Mac");
    PreferenceMarks marks = readPreferenceMarks(mac).value_or(PreferenceMarks());
    if (std::erase(marks.byHost, key) == 0 && action != "write") return fail("does not exist");
    if (action != "delete") marks.byHost.push_back(key);
    writePreferenceMarks(mac, marks);
    return 0;
}

int run(const Words& words) {
    const char* folder = std::getenv("DEFAULTS_FOLDER");
    if (!folder || words.size() < 3)
        return fail("usage: defaults read|read-type|write|delete|export DOMAIN KEY [-TYPE VALUE...]");
    if (words[0] == "export") return exportDomain(PlistFileStore::fileOf(folder, words[1]));
    if (words[0] == "-currentHost") return valueForHost(words[1], {words[2], words.at(3)});
    const PrefKey key{words[1] == "-g" ? std::string(globalDomain) : words[1], words[2]};
    PlistFileStore store(folder, {key.domain});
    const StoredValue stored = store.exactValue(key);

    if (words[0] == "write") {
        const auto value =
            words.size() < 4 ? std::nullopt : typed(words[3], Words(words.begin() + 4, words.end()));
        if (!value) return fail("Rep argument is not understood");
        store.write(*value, key);
        return 0;
    }
    if (stored.isAbsent())
        return fail("The domain/default pair of (" + key.domain + ", " + key.name + ") does not exist");
    if (words[0] == "delete") store.remove(key);
    if (words[0] == "read-type") std::cout << "Type is " << typeWord(*stored.value) << '\n';
    if (words[0] == "read") std::cout << described(*stored.value) << '\n';
    return 0;
}

}  // namespace

int main(int argc, char** argv) try {
    return run(Words(argv + 1, argv + argc));
} catch (const std::exception& error) {
    return fail(error.what());
}
