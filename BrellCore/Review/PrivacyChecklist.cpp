#include "BrellCore/Review/PrivacyChecklist.h"

#include <array>
#include <cmath>

namespace brell {

namespace {

constexpr std::string_view paneLink =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?";
constexpr std::string_view keyPrefix = "privacy.reviewed.";

// The years 1 to 9999; beyond them a stored number is no date of a review.
constexpr double earliestSecond = -62135596800.0;
constexpr double latestSecond = 253402300799.0;

struct Row {
    std::string_view id;
    std::string_view title;
    std::string_view anchor;
    std::string_view meaning;
    std::string_view whoNeedsIt;
    std::string_view whatToLookFor;
};

constexpr std::array<Row, 10> rows{{
    {"location", "Location Services", "Privacy_LocationServices",
     "Lets an app read where the Mac is, from Wi-Fi and network data.",
     "Maps and weather apps, \"find my\" tools, apps that show local results or set the time zone.",
     "Apps with no connection to place (a text editor, a calculator); an app marked as used recently that "
     "you do not use; system services you do not need."},
    {"full_disk_access", "Full Disk Access", "Privacy_AllFiles",
     "Lets an app read protected data of every app: Mail, Messages, Safari history, backups. The strongest "
     "file permission.",
     "Backup and cleanup tools, antivirus, terminal apps and developer tools you chose to trust.",
     "Any app you do not recognise; helpers of apps you deleted; anything not from a vendor you know."},
    {"accessibility", "Accessibility", "Privacy_Accessibility",
     "Lets an app control other apps: read the screen's controls, click, type.",
     "Window managers, text expanders, password managers, remote-control and automation tools.",
     "Apps that have no reason to drive other apps; anything left from a trial or a removed tool."},
    {"screen_recording", "Screen Recording", "Privacy_ScreenCapture",
     "Lets an app see what is on screen, including other apps' windows.",
     "Screen recorders, video-call and sharing apps, screenshot tools.",
     "An app that is not a recorder or a call app; one you only used once."},
    {"camera", "Camera", "Privacy_Camera", "Lets an app use the camera. A green light shows while it is on.",
     "Video calls, photo and video apps, scanners.",
     "Apps you never use with video; a long list of old call apps."},
    {"microphone", "Microphone", "Privacy_Microphone",
     "Lets an app record sound. An orange dot shows while it is on.",
     "Calls, recorders, dictation, music and podcast tools.",
     "Apps with no sound features; old conferencing tools."},
    {"input_monitoring", "Input Monitoring", "Privacy_ListenEvent",
     "Lets an app see every key you press and every mouse movement, even when it is in the background.",
     "Keyboard remappers, gaming peripherals' software, accessibility tools.",
     "Anything that is not an input tool. Treat an unknown entry as sensitive: it can read what you type."},
    {"automation", "Automation", "Privacy_Automation",
     "Lets an app send commands to other apps (for example to control Finder or Mail).",
     "Scripting and productivity tools, backup tools that talk to Mail or Finder.",
     "An app controlling an app it has no reason to; a long list under one app."},
    {"analytics", "Analytics & Improvements", "Privacy_Analytics",
     "Whether the Mac and apps share diagnostic and usage data with Apple and developers.",
     "Nobody needs it to use the Mac; it is a choice.",
     "The switches for sharing analytics, app analytics and crash data; whether you want them on."},
    {"advertising", "Apple Advertising", "Privacy_Advertising",
     "Whether Apple uses your data to personalise the ads it shows (App Store, News).",
     "Nobody needs it to use the Mac.",
     "The \"Personalized Ads\" switch. Brell can also turn it off for you, from this page."},
}};

std::vector<PrivacyCard> makeCards() {
    std::vector<PrivacyCard> cards;
    for (const Row& row : rows)
        cards.push_back({row.id, row.title, row.meaning, row.whoNeedsIt, row.whatToLookFor,
                         std::string(paneLink) + std::string(row.anchor), false});
    return cards;
}

std::string keyOf(std::string_view id) {
    return std::string(keyPrefix) + std::string(id);
}

}  // namespace

KeyedNumbers::~KeyedNumbers() = default;

const std::vector<PrivacyCard>& PrivacyChecklist::cards() {
    static const std::vector<PrivacyCard> all = makeCards();
    return all;
}

void ReviewedDates::markReviewed(std::string_view id, TimeStamp date) {
    defaults.setNumber(keyOf(id), static_cast<double>(date.time_since_epoch().count()));
}

std::optional<TimeStamp> ReviewedDates::date(std::string_view id) const {
    const auto seconds = defaults.number(keyOf(id));
    if (!seconds || !(*seconds >= earliestSecond && *seconds <= latestSecond)) return std::nullopt;
    return TimeStamp(std::chrono::seconds(static_cast<std::int64_t>(std::floor(*seconds))));
}

}  // namespace brell
