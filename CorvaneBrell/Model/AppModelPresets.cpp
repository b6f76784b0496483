// Presets: shown with what each of their tweaks would change, then applied.

#include <stdexcept>

#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/AppModel.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::size_t mostPresetBytes = 1024 * 1024;

std::string leftOut(const std::vector<std::string>& ids, std::string_view reason) {
    return "Left out, because " + std::string(reason) + ": " + firstNames(ids) + ".";
}

}  // namespace

void AppModel::askPreset(const Preset& preset) {
    set(&AppState::presetRequest, PresetRequest{Uuid::random(), planPreset(preset, presetSurroundings())},
        Property::presetRequest);
}

void AppModel::importPreset(const fs::path& file) {
    runCounted(
        questions_, questionsUnderWay_,
        [this, file] {
            const auto contents = readFile(file, mostPresetBytes);
            if (!contents) throw std::runtime_error("There is no file " + file.string() + ".");
            DecodedPreset decoded = PresetFile::decode(contents->bytes, catalog());
            PresetFile::checkName(decoded.preset.name);
            return decoded;
        },
        [this](const JobResult<DecodedPreset>& decoded) {
            if (!decoded.value) return fail(decoded.error);
            if (state_.presetRequest) return;  // read while another was: the open one is answered first
            PresetPlan plan = planPreset(decoded.value->preset, presetSurroundings());
            plan.unknown.insert(plan.unknown.end(), decoded.value->unknown.begin(),
                                decoded.value->unknown.end());
            set(&AppState::presetRequest, PresetRequest{Uuid::random(), std::move(plan)},
                Property::presetRequest);
        });
}

void AppModel::cancelPreset() {
    set(&AppState::presetRequest, std::nullopt, Property::presetRequest);
}

void AppModel::confirmPreset() {
    if (!state_.presetRequest) return;
    const PresetPlan plan = state_.presetRequest->plan;
    cancelPreset();
    set(&AppState::presetReport, {}, Property::presetReport);  // of an earlier one
    change("Applying " + plan.preset.name, plan.toApply(), [this, plan] {
        Change made;
        made.name = plan.preset.name;
        const std::vector<std::string> ids = plan.toApply();
        for (const std::string& id : ids) {
            if (changes_.isEnding()) break;
            reportProgress("Applying " + plan.preset.name, made.made.size(), ids.size());
            const Tweak& tweak = *catalog().tweak(id);
            try {
                made.made.push_back(deps_->engine.apply(tweak));
            } catch (const EngineError& error) {
                made.report.push_back(tweak.title + ": " + error.what());
            }
        }
        made.report.insert(made.report.begin(), std::to_string(made.made.size()) + " of " +
                                                    std::to_string(ids.size()) + " changes were made.");
        if (!plan.unknown.empty())
            made.report.push_back(leftOut(plan.unknown, "this version of Brell does not know them"));
        if (!plan.experimental.empty())
            made.report.push_back(
                leftOut(plan.experimental, "experimental tweaks are never applied by a preset"));
        return made;
    });
}

}  // namespace brell
