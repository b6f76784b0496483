// How often a job tells of its progress: as fast as it goes it would keep the main thread busy with nothing
// else.
#pragma once

#include <chrono>
#include <string>

namespace brell {

// For one thread.
class NewsPace {
public:
    // True at the beginning of something else, and then every tenth of a second.
    bool isDue(const std::string& what) {
        const auto now = std::chrono::steady_clock::now();
        if (what == what_ && now - last_ < pause) return false;
        what_ = what;
        last_ = now;
        return true;
    }

private:
    static constexpr std::chrono::milliseconds pause{100};
    std::string what_;
    std::chrono::steady_clock::time_point last_;
};

}  // namespace brell
