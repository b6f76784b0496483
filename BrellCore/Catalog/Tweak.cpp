#include "BrellCore/Catalog/Tweak.h"

#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

template <class Enum>
using TextsOf = std::array<std::string_view, enumTexts<Enum>.size()>;

constexpr TextsOf<TweakGroup> groupTitles{
    "Finder",      "Dock", "Mission Control", "Animations", "Keyboard & Text", "Panels & Documents",
    "Screenshots", "Misc", "Privacy",         "Spotlight"};

constexpr TextsOf<EffectClass> effectLabels{
    "Immediately", "The next time each app is opened",
    "After Finder is relaunched (Brell offers to do it; open Finder windows close and reopen)",
    "After the Dock is relaunched (Brell offers to do it; the Dock disappears for a second)"};

constexpr TextsOf<Risk> riskLabels{"Low", "Medium", "Experimental"};

constexpr std::string_view experimentalAddition =
    ": no visible effect has been confirmed on every macOS version yet; excluded from presets";

constexpr std::string_view undoText =
    "Turn it off (the switch, the \"macOS default\" choice, or \"Restore previous location\"): Brell writes "
    "the original value it saved back, or removes the key when there was none.";

constexpr TextsOf<EffectClass> undoAdditions{
    "", " Apps already open keep the old behaviour until they are reopened.",
    " Brell offers to relaunch Finder again so the change disappears.",
    " Brell offers to relaunch the Dock again so the change disappears."};

template <class Enum>
std::string_view textOf(const TextsOf<Enum>& texts, Enum value) {
    return texts[static_cast<std::size_t>(value)];
}

std::string rendered(const std::vector<PrefValue>& values) {
    std::vector<std::string> texts;
    for (const PrefValue& value : values) texts.push_back(value.rendered());
    return join(texts, ", ");
}

std::vector<PrefValue> targetsOf(const std::vector<Write>& writes) {
    std::vector<PrefValue> targets;
    for (const Write& write : writes) targets.push_back(write.target);
    return targets;
}

struct ValueText {
    const std::vector<Write>& writes;

    std::string operator()(const ToggleKind&) const { return rendered(targetsOf(writes)); }
    std::string operator()(const FolderKind&) const { return "the folder you pick"; }
    std::string operator()(const ChoiceKind& kind) const {
        std::vector<std::string> parts;
        for (const Choice& choice : kind.choices)
            parts.push_back(choice.title + ": " + rendered(choice.values));
        parts.push_back("macOS default: the key is removed");
        return join(parts, "; ");
    }
};

std::string riskText(Risk risk, std::string_view note) {
    std::string text(label(risk));
    if (risk == Risk::experimental) text += experimentalAddition;
    if (!note.empty()) text.append(". ").append(note);
    return text;
}

}  // namespace

std::string_view title(TweakGroup group) {
    return textOf(groupTitles, group);
}
std::string_view label(EffectClass effect) {
    return textOf(effectLabels, effect);
}
std::string_view label(Risk risk) {
    return textOf(riskLabels, risk);
}

std::set<std::string> Tweak::domains() const {
    std::set<std::string> domains;
    for (const Write& write : writes) domains.insert(write.key.domain);
    return domains;
}

std::vector<PrefValue> Tweak::targets() const {
    return targetsOf(writes);
}

std::string Tweak::renderedWrites() const {
    std::vector<std::string> texts;
    for (const Write& write : writes) texts.push_back(write.rendered());
    return join(texts, "; ");
}

Explanation explain(const std::vector<Write>& writes, const TweakKind& kind, EffectClass effect, Risk risk,
                    std::string what, std::string_view riskNote) {
    return {.what = std::move(what),
            .value = std::visit(ValueText{writes}, kind),
            .takesEffect = std::string(label(effect)),
            .risk = riskText(risk, riskNote),
            .undo = std::string(undoText).append(textOf(undoAdditions, effect))};
}

}  // namespace brell
