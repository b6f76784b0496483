#include "CorvaneBrell/SampleMac/SimulatedApplications.h"

#include <algorithm>

namespace brell {

SimulatedApplications::SimulatedApplications(MainLoop& loop)
    : loop_(loop),
      applications_{{"com.apple.dock", "/System/Library/CoreServices/Dock.app", {}},
                    {"com.apple.finder", "/System/Library/CoreServices/Finder.app", {}}} {
    for (const Application& application : applications_) launchAnother(application.bundleIdentifier);
}

std::vector<RunningApplications::Instance> SimulatedApplications::running(
    const std::string& bundleIdentifier) {
    std::vector<Instance> instances;
    for (const Process& process : processes_)
        if (process.bundleIdentifier == bundleIdentifier && process.appearsAt <= loop_.now() &&
            !hasTerminated(process.id))
            instances.push_back(process.id);
    return instances;
}

void SimulatedApplications::requestQuit(Instance instance) {
    for (Process& process : processes_) {
        if (process.id != instance) continue;
        requests.push_back("quit " + process.bundleIdentifier);
        for (const Application& application : applications_)
            if (application.bundleIdentifier == process.bundleIdentifier && application.behaviour.quitsAfter)
                process.goneAt = loop_.now() + *application.behaviour.quitsAfter;
    }
}

bool SimulatedApplications::hasTerminated(Instance instance) {
    const auto found = std::find_if(processes_.begin(), processes_.end(),
                                    [instance](const Process& process) { return process.id == instance; });
    return found == processes_.end() || (found->goneAt && *found->goneAt <= loop_.now());
}

void SimulatedApplications::open(const std::string& path, std::function<void()> answered) {
    requests.push_back("open " + path);
    for (const Application& application : applications_)
        if (application.path == path && application.behaviour.appearsAfter &&
            !runsOrIsComing(application.bundleIdentifier))
            start(application.bundleIdentifier, *application.behaviour.appearsAfter);
    loop_.callAfter(answersAfter_, std::move(answered));
}

void SimulatedApplications::setBehaviour(const std::string& bundleIdentifier,
                                         ApplicationBehaviour behaviour) {
    for (Application& application : applications_)
        if (application.bundleIdentifier == bundleIdentifier) application.behaviour = behaviour;
}

void SimulatedApplications::launchAnother(const std::string& bundleIdentifier) {
    start(bundleIdentifier, std::chrono::milliseconds(0));
}

void SimulatedApplications::endAll(const std::string& bundleIdentifier) {
    for (Process& process : processes_)
        if (process.bundleIdentifier == bundleIdentifier) process.goneAt = loop_.now();
}

void SimulatedApplications::start(const std::string& bundleIdentifier, std::chrono::milliseconds delay) {
    processes_.push_back({++lastInstance_, bundleIdentifier, loop_.now() + delay, std::nullopt});
}

bool SimulatedApplications::runsOrIsComing(const std::string& bundleIdentifier) const {
    return std::any_of(processes_.begin(), processes_.end(), [&](const Process& process) {
        return process.bundleIdentifier == bundleIdentifier &&
               (!process.goneAt || *process.goneAt > loop_.now());
    });
}

}  // namespace brell
