#include "CorvaneBrell/Platform/RunningApplications.h"

namespace brell {

namespace {

class NoApplications final : public RunningApplications {
public:
    std::vector<Instance> running(const std::string&) override { return {}; }
    void requestQuit(Instance) override {}
    bool hasTerminated(Instance) override { return true; }
    std::int64_t processNumber(Instance) override { return 0; }
    void open(const std::string&, std::function<void()> answered) override { answered(); }
};

}  // namespace

std::unique_ptr<RunningApplications> systemApplications() {
    return std::make_unique<NoApplications>();
}

}  // namespace brell
