#include "CorvaneBrell/Model/Relauncher.h"

#include <algorithm>

namespace brell::Relauncher {

namespace {

using namespace std::chrono_literals;

// The messages below name the first two.
constexpr auto quitLimit = 5s;
constexpr auto reopenLimit = 10s;
constexpr auto pause = 200ms;

struct OutcomeFacts {
    std::string_view message;
    bool isDone;
};
constexpr std::array<OutcomeFacts, 6> outcomeFacts{{
    {"relaunched.", true},
    {"was not running; it has been opened.", true},
    {"was not running and could not be opened within 10 seconds. Open it from the Finder's Go menu or log "
     "out and back in.",
     false},
    {"did not quit within 5 seconds. Brell never forces a quit; try again later or log out and back in.",
     false},
    {"quit but did not reopen within 10 seconds. Open it from the Finder's Go menu or log out and back in.",
     false},
    {"would be relaunched (dry run).", true},
}};

const OutcomeFacts& facts(Outcome outcome) {
    return outcomeFacts[static_cast<std::size_t>(outcome)];
}

std::string withEveryWordCapitalised(std::string_view words) {
    std::string text(words);
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((i == 0 || text[i - 1] == ' ') && text[i] >= 'a' && text[i] <= 'z')
            text[i] = static_cast<char>(text[i] - 'a' + 'A');
    return text;
}

}  // namespace

std::vector<Target> targetsFor(const std::set<EffectClass>& effects) {
    std::vector<Target> targets;
    for (const Target target : allCases<Target>())
        if (effects.contains(facts(target).effectClass)) targets.push_back(target);
    return targets;
}

std::string_view message(Outcome outcome) {
    return facts(outcome).message;
}

bool isDone(Outcome outcome) {
    return facts(outcome).isDone;
}

std::string line(Target target, Outcome outcome) {
    return withEveryWordCapitalised(facts(target).name) + " " + std::string(message(outcome));
}

// Lives as long as its handle: the loop and the platform only hold weak references, so what they call later
// finds it gone.
class Running : public std::enable_shared_from_this<Running> {
public:
    Running(Target target, bool dryRun, RunningApplications& apps, MainLoop& loop,
            std::function<void(Outcome)> done)
        : bundleIdentifier_(facts(target).bundleIdentifier),
          path_(facts(target).path),
          dryRun_(dryRun),
          apps_(apps),
          loop_(loop),
          done_(std::move(done)) {}

    void begin() {
        if (dryRun_) return finish(Outcome::dryRun);
        instances_ = apps_.running(bundleIdentifier_);
        if (instances_.empty()) return open(Outcome::openedNotRunning, Outcome::openFailed);
        for (const auto instance : instances_) apps_.requestQuit(instance);
        deadline_ = loop_.now() + quitLimit;
        awaitQuit();
    }

    std::function<void()> step(void (Running::*next)()) {
        return [weak = weak_from_this(), next] {
            if (const auto alive = weak.lock()) ((*alive).*next)();
        };
    }

private:
    void awaitQuit() {
        const bool gone = std::all_of(instances_.begin(), instances_.end(),
                                      [this](auto instance) { return apps_.hasTerminated(instance); });
        if (gone) return open(Outcome::relaunched, Outcome::didNotReopen);
        if (loop_.now() >= deadline_) return finish(Outcome::didNotQuit);
        loop_.callAfter(pause, step(&Running::awaitQuit));
    }

    void open(Outcome appeared, Outcome stayedAway) {
        appeared_ = appeared;
        stayedAway_ = stayedAway;
        apps_.open(path_, step(&Running::answered));
    }

    void answered() {
        deadline_ = loop_.now() + reopenLimit;
        awaitAppearance();
    }

    void awaitAppearance() {
        if (!apps_.running(bundleIdentifier_).empty()) return finish(appeared_);
        if (loop_.now() >= deadline_) return finish(stayedAway_);
        loop_.callAfter(pause, step(&Running::awaitAppearance));
    }

    void finish(Outcome outcome) { done_(outcome); }

    const std::string bundleIdentifier_;
    const std::string path_;
    const bool dryRun_;
    RunningApplications& apps_;
    MainLoop& loop_;
    const std::function<void(Outcome)> done_;
    std::vector<RunningApplications::Instance> instances_;
    AwakeClock::time_point deadline_;
    Outcome appeared_{}, stayedAway_{};
};

Handle relaunch(Target target, bool dryRun, RunningApplications& apps, MainLoop& loop,
                std::function<void(Outcome)> done) {
    auto running = std::make_shared<Running>(target, dryRun, apps, loop, std::move(done));
    loop.post(running->step(&Running::begin));  // not now: the caller has no handle yet
    return running;
}

}  // namespace brell::Relauncher
