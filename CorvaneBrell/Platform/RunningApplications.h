// The applications that run for the user: seeing them, asking them to quit, opening them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brell {

// Main thread only. Nothing here blocks or raises: what does not happen is seen by looking again.
class RunningApplications {
public:
    using Instance = std::int64_t;  // never given to a second instance

    virtual ~RunningApplications() = default;

    virtual std::vector<Instance> running(const std::string& bundleIdentifier) = 0;
    // The ordinary quit request, the one behind the Quit menu item. Never a forced end.
    virtual void requestQuit(Instance instance) = 0;
    virtual bool hasTerminated(Instance instance) = 0;
    // The system's number of it, the same in every run of this program while the instance runs; 0 of one that
    // does not.
    virtual std::int64_t processNumber(Instance instance) = 0;
    // Asks for the application at this path. answered is called once, on the main thread, when the platform
    // has answered, whatever it said; it may come before open returns. It may be let go of on another thread.
    virtual void open(const std::string& path, std::function<void()> answered) = 0;
};

// Those of the user who runs the program. Off macOS there are none: nothing runs, and an opening is answered
// at once.
std::unique_ptr<RunningApplications> systemApplications();

}  // namespace brell
