#include "Tests/Support/FaultyStore.h"

namespace brell::testing {

void FaultyStore::goWrong(Fault fault, std::string call, int first, int last) {
    fault_ = fault;
    call_ = std::move(call);
    first_ = first;
    last_ = last;
    counted_ = 0;
}

bool FaultyStore::goesWrong(const std::string& call) {
    if (!call.starts_with(call_)) return false;
    ++counted_;
    return counted_ >= first_ && counted_ <= last_;
}

template <class Read>
auto FaultyStore::reading(const std::string& call, Read&& read) {
    if (goesWrong(call) && fault_ != Fault::ignores) throw StoreError(simulated(call));
    return read();
}

template <class Change>
void FaultyStore::changing(const std::string& call, Change&& change) {
    const bool wrong = goesWrong(call);
    if (!wrong || fault_ == Fault::forgets) change();
    if (wrong && fault_ != Fault::ignores) throw StoreError(simulated(call));
}

StoredValue FaultyStore::exactValue(const PrefKey& key) {
    return reading("exactValue " + key.rendered(), [&] { return base_.exactValue(key); });
}

StoredValue FaultyStore::effectiveValue(const PrefKey& key) {
    return reading("effectiveValue " + key.rendered(), [&] { return base_.effectiveValue(key); });
}

bool FaultyStore::hasByHostValue(const PrefKey& key) {
    return reading("hasByHostValue " + key.rendered(), [&] { return base_.hasByHostValue(key); });
}

bool FaultyStore::isForced(const PrefKey& key) {
    return reading("isForced " + key.rendered(), [&] { return base_.isForced(key); });
}

void FaultyStore::write(const PrefValue& value, const PrefKey& key) {
    changes.push_back("write " + key.rendered() + " = " + value.rendered());
    changing("write " + key.rendered(), [&] { base_.write(value, key); });
}

void FaultyStore::remove(const PrefKey& key) {
    changes.push_back("remove " + key.rendered());
    changing("remove " + key.rendered(), [&] { base_.remove(key); });
}

void FaultyStore::synchronize(const std::string& domain) {
    if (!changes.empty() && changes.back().find(" " + domain + " ") != std::string::npos)
        changes.back() += ", synchronized";
    else
        changes.push_back("synchronize " + domain);
    changing("synchronize " + domain, [&] { base_.synchronize(domain); });
}

}  // namespace brell::testing
