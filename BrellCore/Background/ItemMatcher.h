// Finds the registered background item that is the same thing as a launchd job.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "BrellCore/Background/BTMDump.h"
#include "BrellCore/Background/LaunchAgentReader.h"

namespace brell {

// Each item is handed out once. The items must outlive the matcher.
class ItemMatcher {
public:
    ItemMatcher(const std::vector<const BTMItem*>& items, std::uint32_t uid);

    // The first item that is left and has the record's label as its identifier, its file as its URL or its
    // label as its bundle identifier; nullptr when there is none.
    const BTMItem* take(const LaunchAgentRecord& record);

    bool isTaken(std::size_t index) const { return taken_[index]; }

private:
    // The items that have a key, chained in their order. The keys stand elsewhere.
    class Index {
    public:
        explicit Index(std::size_t items) : next_(items, none) { first_.reserve(items); }
        void addInFront(std::string_view key, std::size_t item);
        // none when all that have the key were taken.
        std::size_t firstLeft(std::string_view key, const std::vector<bool>& taken);

    private:
        std::unordered_map<std::string_view, std::size_t> first_;  // that may be left
        std::vector<std::size_t> next_;
    };
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    const std::vector<const BTMItem*>& items_;
    std::string uid_;
    std::vector<std::optional<std::string>> paths_;  // of the items' URLs
    std::vector<bool> taken_;
    Index byIdentifier_;
    Index byPath_;
    Index byBundle_;
};

}  // namespace brell
