// Compares an operation of ours with the bare work that it can't do without. The two run in turn, so that
// whatever else the machine does meanwhile falls on both.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace brell {

// One comparison and the limit it is held to.
struct PairPlan {
    std::string name;
    double limit = 1;                       // of ours over bare
    int pairs = 41;                         // odd: the median is then one that was measured
    int callsPerMeasurement = 1;            // more where one call is too short for the clock
    std::function<void()> prepare = [] {};  // before every measurement, outside it
};

struct PairFigures {
    double ours = 0;  // medians, in microseconds a call
    double bare = 0;
    double ratio = 0;  // median of the ratios within the pairs
    bool operator==(const PairFigures&) const = default;
};

inline double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Callable>
double microsecondsPerCall(int calls, Callable& callable) {
    const auto started = std::chrono::steady_clock::now();
    for (int call = 0; call < calls; ++call) callable();
    const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - started;
    return taken.count() / calls;
}

// Each callable is run once before, unmeasured. Which one of a pair comes first changes from pair to pair.
template <typename Ours, typename Bare>
PairFigures measurePairs(const PairPlan& plan, Ours ours, Bare bare) {
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    std::vector<double> ratios;
    const auto take = [&](std::vector<double>& times, auto& callable) {
        plan.prepare();
        times.push_back(microsecondsPerCall(plan.callsPerMeasurement, callable));
    };
    const auto takeOurs = [&] { take(oursTimes, ours); };
    const auto takeBare = [&] { take(bareTimes, bare); };

    plan.prepare();
    ours();
    plan.prepare();
    bare();
    for (int pair = 0; pair < plan.pairs; ++pair) {
        const bool oursFirst = pair % 2 == 0;
        if (oursFirst) takeOurs();
        takeBare();
        if (!oursFirst) takeOurs();
        ratios.push_back(oursTimes.back() / bareTimes.back());
    }
    return {medianOf(oursTimes), medianOf(bareTimes), medianOf(ratios)};
}

// The comparisons of one program; its main returns exitStatus().
class PairReport {
public:
    template <typename Ours, typename Bare>
    void compare(const PairPlan& plan, Ours ours, Bare bare) {
        const PairFigures figures = measurePairs(plan, std::move(ours), std::move(bare));
        std::printf("%-44s ratio %6.2f (limit %5.2f)  ours %10.2f us  bare %10.2f us\n", plan.name.c_str(),
                    figures.ratio, plan.limit, figures.ours, figures.bare);
        std::fflush(stdout);
        if (figures.ratio > plan.limit * noiseAllowance) missed_ = true;
    }

    // 1 when a ratio missed its limit by more than two runs on one machine differ.
    int exitStatus() const { return missed_ ? 1 : 0; }

private:
    static constexpr double noiseAllowance = 1.10;
    bool missed_ = false;
};

}  // namespace brell
