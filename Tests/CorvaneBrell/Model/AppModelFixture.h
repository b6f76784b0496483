// A model over a sample Mac of the test's own, with the test in place of the user and the main loop.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <sstream>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "Tests/Support/FakeMainLoop.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

class AppModelTest : public ::testing::Test {
protected:
    AppModelTest() : sample(folder.path / "mac") { options.sampleMac = folder.path / "mac"; }

    // Opens the model as the application does, and waits until it has read everything.
    std::unique_ptr<AppModel> openModel() {
        auto model = std::make_unique<AppModel>(options, loop, applications, out);
        model->setObserver([this](Topic topic) { ++announced[topic]; });
        settle(*model);
        return model;
    }

    // Until nothing runs beside the main thread any more.
    void settle(const AppModel& model) {
        ASSERT_TRUE(loop.waitFor([&] { return !model.isBusy(); }, std::chrono::seconds(60)));
    }

    // For one call of the model: the wait for what it leads to comes with it.
    struct Settled {
        AppModelTest& test;
        AppModel& model;
        AppModel* operator->() const { return &model; }
        ~Settled() { test.settle(model); }
    };
    Settled settled(AppModel& model) { return {*this, model}; }

    const TweakStatus& status(const AppModel& model, const std::string& tweakID) const {
        return model.state().statuses.find(tweakID)->second;
    }

    std::map<std::string, PlistFileStore::Values> preferences() const {
        return sample.openPreferences()->snapshot();
    }

    static std::set<EffectClass> waiting(const AppModel& model) {
        return pendingEffects(model.state().pendingRelaunches, model.catalog());
    }

    // Another tool, behind our back.
    void writeFromOutside(const PrefKey& key, const PrefValue& value) {
        sample.openPreferences()->write(value, key);
    }

    TemporaryFolder folder;
    SampleMac sample;
    LaunchOptions options;
    FakeMainLoop loop;
    SimulatedApplications applications{loop};
    std::ostringstream out;
    std::map<Topic, int> announced;
};

}  // namespace brell::testing
