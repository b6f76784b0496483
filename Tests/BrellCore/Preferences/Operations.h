// Everything that a preference store does with a key.
#pragma once

#include <functional>
#include <vector>

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell::testing {

inline std::vector<std::function<void()>> operationsOn(PreferenceStore& store, const PrefKey& key) {
    return {[&, key] { store.exactValue(key); },         [&, key] { store.effectiveValue(key); },
            [&, key] { store.hasByHostValue(key); },     [&, key] { store.isForced(key); },
            [&, key] { store.write(true, key); },        [&, key] { store.remove(key); },
            [&, key] { store.synchronize(key.domain); }, [&, key] { store.put(StoredValue(), key); }};
}

}  // namespace brell::testing
