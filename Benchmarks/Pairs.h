// Compares an operation of ours with the bare work that it can't do without. The two run in turn, so that
// whatever else the machine does meanwhile falls on both.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
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
    double ratio = 0;                   // median of the ratios within the pairs
    double ratioFrom = 0, ratioTo = 0;  // where that median lies with 95 % confidence
    bool operator==(const PairFigures&) const = default;
};

inline double medianOf(const std::vector<double>& sorted) {
    return sorted[sorted.size() / 2];
}

// How many places the bounds of the median's 95 % interval lie from the middle of so many sorted values: half
// of them fall on either side of the true median, as coins do.
inline std::size_t intervalReach(std::size_t count) {
    const auto reach = static_cast<std::size_t>(std::ceil(1.96 * std::sqrt(static_cast<double>(count)) / 2));
    return std::min(reach, count / 2);
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
    for (auto* values : {&oursTimes, &bareTimes, &ratios}) std::sort(values->begin(), values->end());
    const std::size_t middle = ratios.size() / 2, reach = intervalReach(ratios.size());
    return {medianOf(oursTimes), medianOf(bareTimes), medianOf(ratios), ratios[middle - reach],
            ratios[middle + reach]};
}

inline std::string readable(double microseconds) {
    const bool isLong = microseconds >= 1000;
    char text[32];
    std::snprintf(text, sizeof text, isLong ? "%.2f ms" : "%.2f us",
                  isLong ? microseconds / 1000 : microseconds);
    return text;
}

// The comparisons of one program, a line of script/bench's table each; its main returns exitStatus().
class PairReport {
public:
    template <typename Ours, typename Bare>
    void compare(const PairPlan& plan, Ours ours, Bare bare) {
        const PairFigures figures = measurePairs(plan, std::move(ours), std::move(bare));
        std::printf("%-42s %6.2f  %5.2f to %5.2f  %7.2f  %10s  %10s%s\n", plan.name.c_str(), figures.ratio,
                    figures.ratioFrom, figures.ratioTo, plan.limit, readable(figures.ours).c_str(),
                    readable(figures.bare).c_str(), verdict(figures, plan.limit));
        std::fflush(stdout);
        missed_ = missed_ || isMissed(figures, plan.limit);
    }

    // A figure that nothing is compared with.
    void check(const std::string& name, double microseconds, double limit) {
        const bool isOver = microseconds > limit;
        std::printf("%-42s %39s  %10s%s\n", name.c_str(), readable(limit).c_str(),
                    readable(microseconds).c_str(), isOver ? "  MISSED" : "");
        std::fflush(stdout);
        missed_ = missed_ || isOver;
    }

    // 1 when a ratio missed its limit by more than noise: its whole interval lies above.
    int exitStatus() const { return missed_ ? 1 : 0; }

private:
    static bool isMissed(const PairFigures& figures, double limit) { return figures.ratioFrom > limit; }
    static const char* verdict(const PairFigures& figures, double limit) {
        if (isMissed(figures, limit)) return "  MISSED";
        return figures.ratioTo > limit ? "  unsure" : "";  // the machine is too busy to tell
    }

    bool missed_ = false;
};

// The exit status of a benchmark, once the comparisons are in the report; 2 when they could not be made.
template <typename Comparisons>
int measured(Comparisons compare) try {
    PairReport report;
    compare(report);
    return report.exitStatus();
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}

}  // namespace brell
