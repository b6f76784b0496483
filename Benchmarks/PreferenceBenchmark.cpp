// One key of a preference file: read while the file is the one that was read before, and written.
#include <cstdio>
#include <stdexcept>

#include "Benchmarks/Bare.h"
#include "Benchmarks/Pairs.h"
#include "BrellCore/Preferences/PlistFileStore.h"

namespace {

using namespace brell;

const std::string domain = "com.apple.dock";

// As many keys as a lived-in Dock has.
void fill(PlistFileStore& store) {
    for (int i = 0; i < 40; ++i) store.write(PrefValue(i), {domain, "setting-" + std::to_string(i)});
}

void compareReading(PairReport& report, PlistFileStore& store, const std::string& file) {
    const PrefKey key{domain, "setting-7"};
    report.compare(
        {.name = "read a key of an unchanged file", .limit = 3, .callsPerMeasurement = 2000},
        [&] {
            if (store.exactValue(key).isAbsent()) throw std::runtime_error("the key is gone");
        },
        [&] { bare::stat(file); });
}

void compareWriting(PairReport& report, PlistFileStore& store, const std::string& file) {
    const PrefKey key{domain, "setting-7"};
    int value = 10;
    const auto write = [&] { store.write(PrefValue(value = 29 - value), key); };  // as many digits each time
    write();
    const std::string bytes = bare::read(file);
    const bare::ScratchFolder folder;
    const std::string temporary = folder.path / ".com.apple.dock.plist.tmp",
                      target = folder.path / "com.apple.dock.plist";
    report.compare({.name = "write a key", .limit = 1.4, .pairs = 201, .callsPerMeasurement = 20}, write,
                   [&] { bare::replace(temporary, target, bytes); });
}

}  // namespace

int main() {
    return measured([](PairReport& report) {
        const bare::ScratchFolder folder;
        PlistFileStore store(folder.path, {domain});
        fill(store);
        const std::string file = folder.path / (domain + ".plist");
        compareReading(report, store, file);
        compareWriting(report, store, file);
    });
}
