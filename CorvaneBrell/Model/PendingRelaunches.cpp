#include "CorvaneBrell/Model/PendingRelaunches.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/FileLock.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// One text a tweak: "dock.autohide@312=false". No tweak's id holds the signs.
PrefKey pendingKey() {
    return {std::string(NeverTouch::ownLabel), "relaunch.pending"};
}

// A list that can't be read counts as empty.
PendingRelaunches keptIn(PreferenceStore& ownStore) try {
    PendingRelaunches pending;
    const StoredValue stored = ownStore.exactValue(pendingKey());
    const auto* texts = stored.value ? stored.value->as<PrefValue::StringArray>() : nullptr;
    if (!texts) return {};
    for (const std::string& text : *texts) {
        const std::size_t at = text.find('@'), sign = text.find('=', at);
        if (sign == std::string::npos) continue;
        const std::int64_t process = std::strtoll(text.c_str() + at + 1, nullptr, 10);
        pending.emplace(text.substr(0, at), PendingRelaunch{text.substr(sign + 1), process});
    }
    return pending;
} catch (const StoreError&) {
    return {};
}

void keep(const PendingRelaunches& pending, PreferenceStore& ownStore) {
    PrefValue::StringArray texts;
    for (const auto& [tweakID, one] : pending)
        texts.push_back(fmt::format("{}@{}={}", tweakID, one.process, one.before));
    ownStore.put(texts.empty() ? StoredValue::absent() : StoredValue(std::move(texts)), pendingKey());
    ownStore.synchronize(pendingKey().domain);
}

// A change is noted all the same where there can be no lock.
std::optional<FileLock> lockFor(const std::optional<fs::path>& file) try {
    constexpr std::chrono::seconds patience(2);  // others hold it for one writing
    return file ? FileLock::acquire(*file, patience) : std::nullopt;
} catch (const std::exception&) {
    return std::nullopt;
}

bool needsRelaunch(EffectClass effect) {
    return effect == EffectClass::finderRelaunch || effect == EffectClass::dockRelaunch;
}

}  // namespace

std::string renderedTogether(const std::vector<StoredValue>& values) {
    std::vector<std::string> texts;
    for (const StoredValue& value : values) texts.push_back(value.rendered());
    return join(texts, "; ");
}

std::set<EffectClass> pendingEffects(const PendingRelaunches& pending, const TweakCatalog& catalog) {
    std::set<EffectClass> effects;
    for (const auto& [tweakID, one] : pending)
        if (const Tweak* tweak = catalog.tweak(tweakID)) effects.insert(tweak->effect);
    return effects;
}

void noteChange(PendingRelaunches& pending, const ChangedKeys& change, const TweakCatalog& catalog,
                const ProcessOf& processOf) {
    for (const auto& [tweakID, before] : change.before) {
        const Tweak* tweak = catalog.tweak(tweakID);
        if (tweak && needsRelaunch(tweak->effect))
            pending.emplace(tweakID, PendingRelaunch{before, processOf(tweak->effect)});
    }
    std::erase_if(pending, [&](const auto& one) {
        const auto now = change.now.find(one.first);
        return now != change.now.end() && now->second == one.second.before;
    });
}

void dropShown(PendingRelaunches& pending, const TweakCatalog& catalog, const ProcessOf& processOf) {
    std::erase_if(pending, [&](const auto& one) {
        const Tweak* tweak = catalog.tweak(one.first);
        if (!tweak) return true;
        const std::int64_t process = processOf(tweak->effect);
        return process != 0 && process != one.second.process;
    });
}

void dropBack(PendingRelaunches& pending, const TweakStatuses& statuses, const TweakStatusErrors& errors) {
    std::erase_if(pending, [&](const auto& one) {
        if (errors.contains(one.first)) return false;
        const auto status = statuses.find(one.first);
        return status == statuses.end() || renderedTogether(status->second.exact) == one.second.before;
    });
}

void dropEffect(PendingRelaunches& pending, const TweakCatalog& catalog, EffectClass effect) {
    std::erase_if(pending, [&](const auto& one) {
        const Tweak* tweak = catalog.tweak(one.first);
        return tweak && tweak->effect == effect;
    });
}

std::pair<PendingRelaunches, std::string> updatePendingRelaunches(
    PreferenceStore& ownStore, const std::optional<fs::path>& lock,
    const std::function<void(PendingRelaunches&)>& change) {
    const PendingRelaunches before = keptIn(ownStore);
    PendingRelaunches pending = before;
    change(pending);
    if (pending == before) return {pending, ""};
    const std::optional<FileLock> held = lockFor(lock);
    pending = keptIn(ownStore);  // another run may have written since
    change(pending);
    try {
        keep(pending, ownStore);
    } catch (const StoreError& error) {
        return {pending, error.what()};
    }
    return {pending, ""};
}

}  // namespace brell
