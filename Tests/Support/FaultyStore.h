// A preference store in front of another one, that notes every call and goes wrong when it is told to.
#pragma once

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell::testing {

enum class Fault {
    refuses,  // raises an error and does nothing
    forgets,  // does what was asked, then raises an error all the same
    ignores,  // says that it did what was asked, and did not; readings are not affected
};

// For one thread.
class FaultyStore final : public PreferenceStore {
public:
    static constexpr int forever = std::numeric_limits<int>::max();

    explicit FaultyStore(PreferenceStore& base) : base_(base) {}

    // Of the calls from now on whose text starts like this, those from first to last (counted from 1) go
    // wrong. The text is the operation's name and the key, or the domain.
    void goWrong(Fault fault, std::string call, int first = 1, int last = forever) {
        fault_ = fault;
        call_ = std::move(call);
        first_ = first;
        last_ = last;
        counted_ = 0;
    }
    void heal() { goWrong(Fault::refuses, {}, forever, 0); }
    int counted() const { return counted_; }  // such calls since then

    // The calls that change something, in their order: "write DOMAIN KEY = VALUE", "remove DOMAIN KEY". One
    // that is synchronized next ends in ", synchronized"; what else is, is a "synchronize DOMAIN" of its own.
    std::vector<std::string> changes;

    std::function<void()> meanwhile;  // done by others while a change goes wrong

    static StoreFailure simulated(const std::string& call) {
        return StoreIo{"Simulated failure: " + call + "."};
    }

    const DomainSet& allowedDomains() const override { return base_.allowedDomains(); }
    std::vector<std::string> keys(const std::string& domain) override { return base_.keys(domain); }
    StoredValue exactValue(const PrefKey& key) override {
        reading("exactValue " + key.rendered());
        return base_.exactValue(key);
    }
    StoredValue effectiveValue(const PrefKey& key) override {
        reading("effectiveValue " + key.rendered());
        return base_.effectiveValue(key);
    }
    bool hasByHostValue(const PrefKey& key) override {
        reading("hasByHostValue " + key.rendered());
        return base_.hasByHostValue(key);
    }
    bool isForced(const PrefKey& key) override {
        reading("isForced " + key.rendered());
        return base_.isForced(key);
    }
    void write(const PrefValue& value, const PrefKey& key) override {
        changes.push_back("write " + key.rendered() + " = " + value.rendered());
        changing("write " + key.rendered(), [&] { base_.write(value, key); });
    }
    void remove(const PrefKey& key) override {
        changes.push_back("remove " + key.rendered());
        changing("remove " + key.rendered(), [&] { base_.remove(key); });
    }
    void synchronize(const std::string& domain) override {
        if (!changes.empty() && changes.back().find(" " + domain + " ") != std::string::npos)
            changes.back() += ", synchronized";
        else
            changes.push_back("synchronize " + domain);
        changing("synchronize " + domain, [&] { base_.synchronize(domain); });
    }
    void removeLeftovers() noexcept override { base_.removeLeftovers(); }

private:
    bool goesWrong(const std::string& call) {
        if (!call.starts_with(call_)) return false;
        ++counted_;
        return counted_ >= first_ && counted_ <= last_;
    }

    void reading(const std::string& call) {
        if (goesWrong(call) && fault_ != Fault::ignores) throw StoreError(simulated(call));
    }

    template <class Change>
    void changing(const std::string& call, Change&& change) {
        const bool isWrong = goesWrong(call);
        if (isWrong && meanwhile) meanwhile();
        if (!isWrong || fault_ == Fault::forgets) change();
        if (isWrong && fault_ != Fault::ignores) throw StoreError(simulated(call));
    }

    PreferenceStore& base_;
    Fault fault_ = Fault::refuses;
    std::string call_;
    int first_ = forever, last_ = 0;
    int counted_ = 0;
};

}  // namespace brell::testing
