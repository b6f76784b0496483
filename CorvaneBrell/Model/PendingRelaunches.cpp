#include "CorvaneBrell/Model/PendingRelaunches.h"

#include <fmt/format.h>

#include <cstdlib>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

// One text a tweak: "dock.autohide@312=false". No tweak's id holds the signs.
PrefKey pendingKey() {
    return {std::string(NeverTouch::ownLabel), "relaunch.pending"};
}

}  // namespace

std::string renderedTogether(const std::vector<StoredValue>& values) {
    std::vector<std::string> texts;
    for (const StoredValue& value : values) texts.push_back(value.rendered());
    return join(texts, "; ");
}

KeptRelaunches readPendingRelaunches(PreferenceStore& ownStore) try {
    KeptRelaunches pending;
    const StoredValue stored = ownStore.exactValue(pendingKey());
    const auto* texts = stored.value ? stored.value->as<PrefValue::StringArray>() : nullptr;
    if (!texts) return {};
    for (const std::string& text : *texts) {
        const std::size_t at = text.find('@'), sign = text.find('=', at);
        if (sign == std::string::npos) continue;
        const std::int64_t process = std::strtoll(text.c_str() + at + 1, nullptr, 10);
        pending.emplace(text.substr(0, at), KeptRelaunch{text.substr(sign + 1), process});
    }
    return pending;
} catch (const StoreError&) {
    return {};
}

void writePendingRelaunches(const KeptRelaunches& pending, PreferenceStore& ownStore) {
    if (pending == readPendingRelaunches(ownStore)) return;
    PrefValue::StringArray texts;
    for (const auto& [tweakID, kept] : pending)
        texts.push_back(fmt::format("{}@{}={}", tweakID, kept.process, kept.before));
    ownStore.put(texts.empty() ? StoredValue::absent() : StoredValue(std::move(texts)), pendingKey());
    ownStore.synchronize(pendingKey().domain);
}

}  // namespace brell
