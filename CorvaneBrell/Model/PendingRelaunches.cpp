#include "CorvaneBrell/Model/PendingRelaunches.h"

#include <fmt/format.h>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

// One text a tweak: "dock.autohide=false". No tweak's id holds the sign.
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
    for (const std::string& text : *texts)
        if (const std::size_t sign = text.find('='); sign != std::string::npos)
            pending.emplace(text.substr(0, sign), text.substr(sign + 1));
    return pending;
} catch (const StoreError&) {
    return {};
}

void writePendingRelaunches(const KeptRelaunches& pending, PreferenceStore& ownStore) {
    if (pending == readPendingRelaunches(ownStore)) return;
    PrefValue::StringArray texts;
    for (const auto& [tweakID, before] : pending) texts.push_back(fmt::format("{}={}", tweakID, before));
    ownStore.put(texts.empty() ? StoredValue::absent() : StoredValue(std::move(texts)), pendingKey());
    ownStore.synchronize(pendingKey().domain);
}

}  // namespace brell
