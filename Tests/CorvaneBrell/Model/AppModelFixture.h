// A model over a sample Mac, with the test in place of the user and the main loop.
#pragma once

#include <memory>
#include <sstream>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "Tests/CorvaneBrell/SampleMacFixture.h"
#include "Tests/Support/FakeMainLoop.h"

namespace brell::testing {

class AppModelTest : public SampleMacTest {
protected:
    // Opens the model as the application does, and waits until it has read everything.
    AppModel& open() {
        model = std::make_unique<AppModel>(options, loop, applications, out);
        model->setObserver([this](Topic topic) { ++announced[topic]; });
        settle();
        return *model;
    }

    // Until nothing runs beside the main thread any more.
    void settle() {
        ASSERT_TRUE(loop.waitFor([&] { return !model->isBusy(); }, std::chrono::seconds(60)));
    }

    // For one call of the model: the wait for what it leads to comes with it.
    struct Settled {
        AppModelTest& test;
        AppModel* operator->() const { return test.model.get(); }
        ~Settled() { test.settle(); }
    };
    Settled settled() { return {*this}; }

    void apply(const std::vector<const char*>& tweakIDs) {
        for (const char* id : tweakIDs) settled()->apply(id);
    }

    const AppState& state() const { return model->state(); }
    std::string error() const { return state().errorMessage.value_or(""); }

    FakeMainLoop loop;
    SimulatedApplications applications{loop};
    std::ostringstream out;
    std::map<Topic, int> announced;
    std::unique_ptr<AppModel> model;
};

}  // namespace brell::testing
