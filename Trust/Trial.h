// The points at which things are tried, and how one worker goes through its share of them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "Trust/Verdict.h"

namespace brell::trust {

// Takes every n-th point, so that a sample and a worker's share are spread over everything there is.
class Share {
public:
    Share(std::size_t stride, std::size_t offset) : stride_(stride), offset_(offset) {}
    bool takes() { return next_++ % stride_ == offset_; }
    std::size_t seen() const { return next_; }  // points there are, taken or not

private:
    const std::size_t stride_;
    const std::size_t offset_;
    std::size_t next_ = 0;
};

// Told of every point that was tried: where, and what was wrong there.
using Report = std::function<void(const std::string& point, const Faults& faults)>;

// Something that may happen at the n-th step of an operation; gives what is wrong afterwards.
struct Mishap {
    std::string name;
    std::function<Faults(std::size_t n)> attempt;
};

// Goes through the mishaps of each of so many steps, and tries those of the share.
inline void tryAtEach(const std::string& step, std::size_t steps, const std::vector<Mishap>& mishaps,
                      Share& share, const Report& report) {
    for (std::size_t n = 0; n < steps; ++n)
        for (const Mishap& mishap : mishaps)
            if (share.takes())
                report(
                    step + " " + std::to_string(n + 1) + " of " + std::to_string(steps) + ": " + mishap.name,
                    mishap.attempt(n));
}

// Each goes through all points of the scene that the stage has prepared, and tries those of the share.
void tryCrashes(const Stage& stage, const Scene& scene, Share& share, const Report& report);
void tryPowerCuts(const Stage& stage, const Scene& scene, Share& share, const Report& report);
void tryFileFaults(const Stage& stage, const Scene& scene, Share& share, const Report& report);
void tryRemovals(const Stage& stage, const Scene& scene, Share& share, const Report& report);
void tryCommandFaults(const Stage& stage, const Scene& scene, Share& share, const Report& report);

}  // namespace brell::trust
