#include "CorvaneBrell/Platform/RunningApplications.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <map>

namespace brell {

namespace {

// A process number is given again to a later process; the record that AppKit keeps of an instance is not, so
// each gets a number of ours.
class SystemApplications final : public RunningApplications {
public:
    std::vector<Instance> running(const std::string& bundleIdentifier) override {
        std::erase_if(known_, [](const auto& entry) { return entry.second.terminated; });
        std::vector<Instance> instances;
        NSString* identifier = @(bundleIdentifier.c_str());
        if (!identifier) return instances;
        for (NSRunningApplication* application in
             [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier])
            if (!application.terminated) instances.push_back(numberOf(application));
        return instances;
    }

    void requestQuit(Instance instance) override {
        const auto found = known_.find(instance);
        if (found != known_.end()) [found->second terminate];
    }

    bool hasTerminated(Instance instance) override {
        const auto found = known_.find(instance);
        return found == known_.end() || found->second.terminated;
    }

    std::int64_t processNumber(Instance instance) override {
        const auto found = known_.find(instance);
        if (found == known_.end()) return 0;
        return std::max<std::int64_t>(found->second.processIdentifier, 0);  // -1 of one that has gone
    }

    void open(const std::string& path, std::function<void()> answered) override {
        NSURL* application = [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                                            isDirectory:YES
                                                          relativeToURL:nil];
        // The answer comes on a thread of the platform's. Its words do not count: the instance is looked
        // for.
        [NSWorkspace.sharedWorkspace openApplicationAtURL:application
                                            configuration:[NSWorkspaceOpenConfiguration configuration]
                                        completionHandler:^(NSRunningApplication*, NSError*) {
                                          dispatch_async(dispatch_get_main_queue(), ^{
                                            answered();
                                          });
                                        }];
    }

private:
    Instance numberOf(NSRunningApplication* application) {
        for (const auto& [number, instance] : known_)
            if ([instance isEqual:application]) return number;
        known_.emplace(++lastNumber_, application);
        return lastNumber_;
    }

    std::map<Instance, NSRunningApplication*> known_;
    Instance lastNumber_ = 0;
};

}  // namespace

std::unique_ptr<RunningApplications> systemApplications() {
    return std::make_unique<SystemApplications>();
}

}  // namespace brell
