// The running applications of the sample Mac: the Dock and Finder, each as quick or as stubborn as wanted.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Support/AwakeClock.h"
#include "CorvaneBrell/Platform/MainLoop.h"
#include "CorvaneBrell/Platform/RunningApplications.h"

namespace brell {

// How long an app takes to go after a quit request and to appear after it was opened; nothing for never.
struct ApplicationBehaviour {
    std::optional<std::chrono::milliseconds> quitsAfter{0};
    std::optional<std::chrono::milliseconds> appearsAfter{0};
};

// Main thread only. Time is the loop's, which must outlive the object.
class SimulatedApplications final : public RunningApplications {
public:
    explicit SimulatedApplications(MainLoop& loop);

    std::vector<Instance> running(const std::string& bundleIdentifier) override;
    void requestQuit(Instance instance) override;
    bool hasTerminated(Instance instance) override;
    std::int64_t processNumber(Instance instance) override { return hasTerminated(instance) ? 0 : instance; }
    // A path of no application is answered like any other, and nothing appears.
    void open(const std::string& path, std::function<void()> answered) override;

    // From now on.
    void setBehaviour(const std::string& bundleIdentifier, ApplicationBehaviour behaviour);
    void setAnswersAfter(std::chrono::milliseconds delay) { answersAfter_ = delay; }
    void launchAnother(const std::string& bundleIdentifier);
    void endAll(const std::string& bundleIdentifier);  // as in a crash

    // The requests so far, in order: "quit com.apple.dock", "open /System/Library/CoreServices/Dock.app".
    std::vector<std::string> requests;

private:
    using Moment = AwakeClock::time_point;
    struct Process {
        Instance id;
        std::string bundleIdentifier;
        Moment appearsAt;
        std::optional<Moment> goneAt;
    };
    struct Application {
        std::string bundleIdentifier;
        std::string path;
        ApplicationBehaviour behaviour;
    };

    void start(const std::string& bundleIdentifier, std::chrono::milliseconds delay);
    bool runsOrIsComing(const std::string& bundleIdentifier) const;

    MainLoop& loop_;
    std::chrono::milliseconds answersAfter_{0};
    Instance lastInstance_ = 100;
    std::vector<Application> applications_;
    std::vector<Process> processes_;
};

}  // namespace brell
