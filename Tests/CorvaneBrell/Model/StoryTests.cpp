// Stories of a user and of everybody else on a sample Mac. A line after ">" is the user's, by the names of
// the model's functions; one after "$" is run by the system's shell in the user's home. Everything that is
// then different, of the Mac as of what the window shows, has to be what was written down below it.

#include <fmt/format.h>

#include <iterator>
#include <regex>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Model/ShownLoginItem.h"
#include "CorvaneBrell/Model/TweakRowState.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Shell.h"

namespace brell::testing {

namespace {

using Facts = std::map<std::string, std::string>;

template <class Items, class Say>
Texts each(const Items& items, Say say) {
    Texts texts;
    for (const auto& item : items) texts.push_back(say(item));
    return texts;
}

std::string lines(std::initializer_list<Texts> parts) {
    std::string text;
    for (const Texts& part : parts)
        for (const std::string& line : part)
            text += (text.empty() ? "" : "\n    ") + std::regex_replace(line, std::regex("\n"), " / ");
    return text;
}

struct SheetWords {
    const TweakCatalog& catalog;

    Texts said(const std::vector<DriftedEntry>& entries) const {
        return each(entries, [&](const DriftedEntry& one) {
            return "changed outside: " + entryTitle(one.entry, catalog) + ": " + one.words;
        });
    }
    std::string operator()(const RecoveryRequest& request) const {
        const auto title = [&](const JournalEntry& entry) { return entryTitle(entry, catalog); };
        const auto commands = [](const auto& one) {
            const auto& [run, refusal] = one.second;
            return fmt::format("{}{}", fmt::join(run, "; "), refusal ? "; not run: " + *refusal : "");
        };
        return lines(
            {{"Recovery"}, each(request.entries, title), each(request.commands, commands), request.failures});
    }
    std::string operator()(const DriftRequest& request) const {
        const auto& next = request.pendingAfterDrift;
        return lines({{request.title()},
                      said(request.entries),
                      {std::to_string(request.others.size()) + " others"},
                      next ? Texts{"then " + next->tweak.title} : Texts()});
    }
    std::string operator()(const RestoreRequest& request) const {
        const auto words = [](const RestoreStep& step) {
            return step.title + ": " + step.words + " (" + fmt::format("{}", fmt::join(step.lines, "; ")) +
                   ")";
        };
        return lines({{request.title}, each(request.steps, words), said(request.changes.entries)});
    }
    std::string operator()(const AgentConfirmRequest& request) const {
        return lines({{request.title, request.explanation()}, request.commands, request.refusals});
    }
    std::string operator()(const RebuildRequest& request) const {
        const auto words = [](const RebuildRequest::Change& one) { return one.title + ": " + one.state; };
        return lines({request.facts, each(request.active, words)});
    }
    std::string operator()(const LeavingRequest& request) const {
        const auto words = [](const LeavingRequest::Change& one) { return one.title + ": " + one.words; };
        return lines({{"Leaving"},
                      each(request.active, words),
                      request.proof ? Texts{request.proof->words} : Texts(),
                      request.keys,
                      {std::string(request.isProved() ? "proved" : "not proved") +
                       (request.mayGoToTrash() ? ", to the Trash" : ", nothing goes to the Trash")}});
    }
    std::string operator()(const RelaunchRequest& request) const {
        const auto name = [](Relauncher::Target target) { return std::string(rawValue(target)); };
        return lines({{"Relaunch"}, each(request.targets, name)});
    }
    std::string operator()(const PresetRequest& request) const {
        return lines({{"Preset"}, request.plan.toApply(), {"unknown:"}, request.plan.unknown});
    }
    template <class Report>
        requires requires(Report report) { report.lines; }
    std::string operator()(const Report& report) const {
        return lines({report.lines});
    }
    template <class Request>
    std::string operator()(const Request&) const {
        return std::is_same_v<Request, TaskListRequest> ? "Task list" : "Another question";
    }
};

class StoryTest : public AppModelTest, public ::testing::WithParamInterface<const char*> {
protected:
    // Everything in force, by what it is called.
    Facts facts() const {
        Facts all = preferenceFacts();
        for (const Tweak& tweak : model->catalog().all()) {
            const TweakRowState row = tweakRowState(*model, tweak);
            all["row " + tweak.id] = lines({{row.now + (row.badge ? ", " + row.badge->text : "")},
                                            row.reason.empty() ? Texts() : Texts{row.reason}});
        }
        const SheetWords words{model->catalog()};
        if (const auto sheet = sheetRequest(state(), {})) all["sheet"] = std::visit(words, *sheet);
        if (!state().drifted.empty()) all["drifted"] = lines({words.said(state().drifted)});
        for (const auto& agent : state().driftedAgents)
            all["drifted " + agent.entry.tweakID] =
                lines({agent.lines, agent.refusal ? Texts{"refused: " + *agent.refusal} : Texts()});
        all["active"] = lines({model->changedTweaks()});
        for (const Screen screen : allCases<Screen>())
            if (const auto count = model->changedCount(screen))
                all["changes of " + std::string(rawValue(screen))] = std::to_string(count);
        if (const auto* next = state().undo.next())
            all["undo"] = next->name + ", " + std::to_string(state().undo.size()) + " in all";
        const auto saying = [](const Notice& notice) { return notice.words; };
        all["notices"] =
            lines({each(standingNotices(state(), model->catalog(), model->whyNothingReal()), saying)});
        all["done"] = lines({each(doneNotices(state()), saying)});
        if (const auto& error = state().startupError)
            all["unopened"] = *error + (state().isJournalDamaged ? " (damaged)" : "");
        if (isLocked(state())) all["locked"] = "yes";
        if (!state().volumes.empty()) all["volumes"] = std::to_string(state().volumes.size());
        for (const std::string card : {"camera", "microphone"})
            if (model->reviewedDate(card))
                all["reviewed " + card] = fmt::format("{} in this run", state().reviewedTick);
        addLoginItems(all);
        std::erase_if(all, [](const auto& fact) { return fact.second.empty(); });
        return all;
    }
    Facts preferenceFacts() const try {
        Facts all;
        const Preferences now = preferences();
        for (const auto& [domain, values] : now)
            for (const auto& [key, value] : values) all[domain + " " + key] = value.rendered();
        if (now != original) all["preferences"] = "changed";
        return all;
    } catch (const StoreError& error) {
        return {{"preferences", error.what()}};
    }
    void addLoginItems(Facts& all) const {
        const std::array names{"unknown", "hidden", "offered", "read"};
        all["task list"] = names[static_cast<std::size_t>(state().taskList)] +
                           std::string(model->ownPreferences().readsTaskList() ? ", allowed" : "");
        Texts off, arrived;
        std::size_t listed = 0;
        const ShownLoginItems shown(state());
        for (const LoginItemRow& row : state().loginItems) {
            const std::string name = row.record ? row.record->label().value_or(row.id) : row.id;
            const ShownLoginItem item = shown.of(row);
            if (item.change)
                all["item " + row.id] = item.isInForce() ? "in force" : item.refusal.value_or("");
            if (!row.isOn) off.push_back(name);
            if (state().seenItems.isNew(row)) arrived.push_back(name);
            listed += row.btm.has_value();
        }
        all["login items"] =
            fmt::format("{}, {} of them in the task list", state().loginItems.size(), listed);
        all["login items that are off"] = lines({off});
        all["login items that are new"] = lines({arrived});
    }

    Uuid idOf(const std::string& tweakID) const {
        for (const JournalEntry& entry : state().entries)
            if (entry.tweakID == tweakID) return entry.id;
        throw std::out_of_range(tweakID);
    }
    std::string rowOf(const std::string& label) const {
        for (const LoginItemRow& row : state().loginItems)
            if (row.record && row.record->label() == label) return row.id;
        throw std::out_of_range(label);
    }

    std::vector<Uuid> idsOf(const Texts& names) const {
        std::vector<Uuid> ids;
        for (const std::string& one : names) ids.push_back(idOf(one));
        return ids;
    }
    std::set<Uuid> ticked(const Texts& names) const {
        const auto ids = idsOf(names);
        return {ids.begin(), ids.end()};
    }
    void openAgain(bool isDryRun) {
        options.dryRun = isDryRun;
        open();
    }
    void crash(const std::string& tweakID) {
        Dependencies crashed(options, out);
        breakOff(crashed.engine, *crashed.catalog.tweak(tweakID));
    }
    void confirmLeaving(const fs::path& to) {
        model->confirmLeaving([to](const fs::path& taken) {
            if (to.filename() == "full") throw std::runtime_error("it is full");
            fs::rename(taken, to);
        });
    }

    // A function of the model and what it is given; entries by the ids of their tweaks, login items by
    // labels.
    void act(const std::string& verb, const Texts& given) {
        using Plain = void (AppModel::*)();
        static const std::map<std::string, Plain> plain{{"refreshAll", &AppModel::refreshAll},
                                                        {"refreshShown", &AppModel::refreshShown},
                                                        {"lookAgain", &AppModel::lookAgain},
                                                        {"askRestoreAll", &AppModel::askRestoreAll},
                                                        {"undoLast", &AppModel::undoLast},
                                                        {"askRecovery", &AppModel::askRecovery},
                                                        {"deferRecovery", &AppModel::deferRecovery},
                                                        {"askRebuild", &AppModel::askRebuild},
                                                        {"confirmRebuild", &AppModel::confirmRebuild},
                                                        {"askLeaving", &AppModel::askLeaving},
                                                        {"askRelaunch", &AppModel::askRelaunch},
                                                        {"confirmRelaunch", &AppModel::confirmRelaunch},
                                                        {"cancelRelaunch", &AppModel::cancelRelaunch},
                                                        {"confirmAgents", &AppModel::confirmAgents},
                                                        {"cancelAgents", &AppModel::cancelAgents},
                                                        {"loadLoginItems", &AppModel::loadLoginItems},
                                                        {"loadVolumes", &AppModel::loadVolumes},
                                                        {"askTaskList", &AppModel::askTaskList},
                                                        {"confirmTaskList", &AppModel::confirmTaskList},
                                                        {"cancelTaskList", &AppModel::cancelTaskList},
                                                        {"confirmPreset", &AppModel::confirmPreset},
                                                        {"dismissUpdate", &AppModel::dismissUpdate},
                                                        {"keepMacOS", &AppModel::keepMacOS}};
        if (const auto found = plain.find(verb); found != plain.end()) return (model.get()->*found->second)();
        const std::string first = given.empty() ? "" : given[0], second = given.size() < 2 ? "" : given[1];
        const ApplicationBehaviour never{std::nullopt, {}};
        const std::map<std::string, std::function<void()>> others{
            {"open", [&] { openAgain(first == "dry"); }},
            {"crash", [&] { crash(first); }},
            {"recover", [&] { model->recover(state().recoveryCommands); }},
            {"apply", [&] { model->apply(first); }},
            {"applyValue", [&] { model->apply(first, std::vector<PrefValue>{second}); }},
            {"applyChoice", [&] { model->applyChoice(first, second); }},
            {"restore", [&] { model->restore(first); }},
            {"dismissError", [&] { model->dismiss(&AppState::errorMessage); }},
            {"dismissNews", [&] { model->dismiss(&AppState::scriptNews); }},
            {"turnOff", [&] { model->turnOff(first); }},
            {"useSystemDefault", [&] { model->useSystemDefault(first); }},
            {"askRestore", [&] { model->askRestore(idOf(first)); }},
            {"askUndoSince", [&] { model->askUndoSince(idOf(first)); }},
            {"applyAgain", [&] { model->applyAgain(idsOf(given)); }},
            {"confirmRestore", [&] { model->confirmRestore(ticked(given)); }},
            {"confirmDrift", [&] { model->confirmDrift(ticked(given)); }},
            {"show", [&] { model->show(fromRawValue<Screen>(first).value()); }},
            {"askAgentsOff", [&] { model->askAgents({rowOf(first)}, false); }},
            {"askAgentsOn", [&] { model->askAgents({rowOf(first)}, true); }},
            {"importPreset", [&] { model->importPreset(sample.home() / first); }},
            {"markReviewed", [&] { model->markReviewed(first); }},
            {"keepWindowPlace", [&] { model->ownPreferences().keepWindowPlace(WindowPlace()); }},
            {"confirmLeaving", [&] { confirmLeaving(sample.home() / first); }},
            {"keepTheirs", [&] { model->keepTheirs(idsOf(given)); }},
            {"saveRestoreScript", [&] { model->saveRestoreScript(sample.home() / first); }},
            {"wait", [&] { loop.advance(std::chrono::seconds(std::stoi(first))); }},
            {"neverQuits", [&] { applications.setBehaviour(first, never); }},
            {"crashes", [&] { applications.endAll(first); }},
            {"starts", [&] { applications.launchAnother(first); }}};
        others.at(verb)();
    }

    // In a shell: what is printed there, and the status where something failed.
    std::string elsewhere(const std::string& line) const {
        const Finished finished = runLine("cd; { " + line + "; } 2>&1",
                                          {{"HOME", sample.home()},
                                           {"JOURNAL", Journal::defaultDirectory(sample.home())},
                                           {"LAUNCHD", SimulatedLaunchd::stateFile(sample.systemRoot())},
                                           {"TASKS", SampleContents::taskDumpFile(sample.systemRoot())},
                                           {"BRELL_SAMPLE_MAC", sample.systemRoot()},
                                           {"DEFAULTS_FOLDER", sample.preferences()},
                                           {"PATH", BRELL_STAND_INS ":" + std::string(std::getenv("PATH"))}});
        return finished.output + (finished.status == 0 ? "" : "[" + std::to_string(finished.status) + "]\n");
    }
    // One line of the story. After "&" only what is under way is told, and it is not waited for.
    std::string tell(const std::string& line) {
        if (line.starts_with("$ ")) {
            const std::string printed = elsewhere(line.substr(2));
            return printed + news();
        }
        std::istringstream stream(line.substr(2));
        const std::vector words(std::istream_iterator<std::string>(stream), {});
        const bool isAtOnce = words.back() == "&";
        act(words[0], {words.begin() + 1, words.end() - isAtOnce});
        const auto underWay = state().taskListActivity ? state().taskListActivity : activityOf(state());
        if (isAtOnce) return activityText(underWay.value()) + "\n";
        settle();
        return news();
    }
    std::string news() {
        Facts now = facts();
        std::string told = out.str();  // of a dry run
        out.str("");
        for (const auto& [name, value] : now)
            if (const auto before = last.find(name); before == last.end() || before->second != value)
                told += name + ": " + value + "\n";
        for (const auto& [name, value] : last)
            if (!now.contains(name)) told += name + ": gone\n";
        last = std::move(now);
        static const std::regex day(
            "20[0-9]{2}-[0-9]{2}-[0-9]{2}(-[0-9]{6})?(-[0-9]+)?|[0-9]+ [A-Z][a-z]+ 20[0-9]{2}");
        return std::regex_replace(withoutRoot(told), day, "DAY");
    }

    const Preferences original = preferences();
    Facts last;
};

}  // namespace

TEST_P(StoryTest, GoesAsItWasWrittenDown) {
    const std::string expected = testing::sample(fs::path("Stories") / GetParam());
    std::istringstream story(expected);
    std::string told;
    open();
    last = facts();
    for (std::string line; std::getline(story, line);)
        if (line.starts_with("> ") || line.starts_with("$ ")) told += line + "\n" + tell(line);
    EXPECT_EQ(told, expected);
}

INSTANTIATE_TEST_SUITE_P(Model, StoryTest,
                         ::testing::Values("agents-again.txt", "agents.txt", "already-back.txt",
                                           "another-mac.txt", "changes.txt", "choices.txt", "crash.txt",
                                           "leaving.txt", "login-items.txt", "lost-journal.txt",
                                           "new-macos.txt", "nothing-to-leave.txt", "other-pages.txt",
                                           "presets.txt", "rebuilding.txt", "refused-agent.txt",
                                           "relaunching.txt", "restoring.txt", "task-list.txt",
                                           "their-values.txt", "undoing-choices.txt", "undoing.txt",
                                           "unreadable-journal.txt"));

}  // namespace brell::testing
