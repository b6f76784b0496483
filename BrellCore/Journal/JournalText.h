// The text of the journal file, and the entries in it. An entry that does not change keeps its text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class JournalText {
    // Where an entry's JSON text stands in the whole.
    struct Span {
        std::size_t begin;
        std::size_t length;
    };
    class Composer;

public:
    static constexpr std::int64_t formatVersion = 1;              // written, and the highest that is read
    static constexpr std::size_t mostBytes = 1024 * 1024 * 1024;  // of a file that is read

    // The text with one entry, new or changed: for the file first, and then for take().
    struct Change {
        std::string text;
        std::vector<Span> spans;
        std::size_t index;  // the entry's
        JournalEntry entry;
    };

    // Raises JournalError (cannotRead) for a newer format; for all else that is no journal
    // std::runtime_error, which says why on one line, without a final stop. The text has simdjson's padding
    // behind it.
    static JournalText read(std::string text);
    // The whole text for these entries. Raises JsonWriteError for a value that JSON can't carry.
    static std::string of(const std::vector<JournalEntry>& entries);

    const std::string& text() const { return text_; }
    const std::vector<JournalEntry>& entries() const { return entries_; }  // in the order of the text
    std::string_view textOf(std::size_t index) const;                      // one entry's, as it stands

    // Raises JsonWriteError for a value that JSON can't carry.
    Change changed(const JournalEntry& entry) const;
    // Of a change of this very text.
    void take(Change change);

    // Puts those entries of an older text that are active and not known here, as they stand there, before all
    // others: they were known earlier.
    void keepActiveOf(const JournalText& older);

private:
    void parse();

    std::string text_;
    std::vector<JournalEntry> entries_;
    std::vector<Span> spans_;  // one for each entry
};

}  // namespace brell
