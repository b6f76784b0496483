// Any bytes either are refused with a reason or are a journal; and a journal saved entry by entry reads back
// the same, each entry that did not change with its text to the byte.
#include <algorithm>
#include <cstdint>

#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Journal/JournalText.h"
#include "Fuzz/Checks.h"

namespace {

using namespace brell;
using namespace brell::fuzz;

void checkSavedAnew(const JournalText& journal) {
    if (journal.entries().empty()) return;
    JournalText anew;
    for (const JournalEntry& entry : journal.entries()) anew.take(anew.changed(entry));
    require(JournalText::read(padded(anew.text())).entries() == journal.entries());
}

// The entry at this place with another outcome, or a new one behind the last.
JournalEntry changedEntry(const JournalText& journal, std::size_t place) {
    JournalEntry entry{};
    if (place < journal.entries().size()) entry = journal.entries()[place];
    entry.status = EntryStatus::failed;
    entry.failure = "It was \"changed\".\n";
    return entry;
}

void checkOthersKeepTheirText(const JournalText& journal, std::size_t place) {
    JournalText changed = journal;
    JournalText::Change change = changed.changed(changedEntry(journal, place));
    const std::size_t at = change.index;
    changed.take(std::move(change));
    const JournalText back = JournalText::read(padded(changed.text()));

    require(isJson(changed.text()));
    require(back.entries() == changed.entries());
    require(back.entries().size() == std::max(journal.entries().size(), at + 1));
    for (std::size_t i = 0; i < back.entries().size(); ++i) {
        require(back.textOf(i) == changed.textOf(i));
        if (i == at) continue;
        require(back.entries()[i] == journal.entries()[i]);
        require(back.textOf(i) == journal.textOf(i));
    }
}

}  // namespace

// A refusal of what was saved escapes, and is a finding too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    JournalText journal;
    try {
        journal = JournalText::read(padded(bytes));
    } catch (const JournalError& newer) {
        require(isReason(newer.failure().text));
        return 0;
    } catch (const std::runtime_error& damage) {
        require(isReason(damage.what()));
        return 0;
    }
    require(isJson(bytes));
    checkSavedAnew(journal);
    checkOthersKeepTheirText(journal, size % (journal.entries().size() + 1));
    return 0;
}
