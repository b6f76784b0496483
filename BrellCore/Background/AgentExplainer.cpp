#include "BrellCore/Background/AgentExplainer.h"

#include <algorithm>

#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

using AgentExplainer::Rule;

constexpr std::string_view nobodyKnows =
    "Nothing else depends on it as far as Brell can tell; the program above no longer runs at login.";

std::vector<Rule> makeRules() {
    using AgentExplainer::updater;
    return {
        updater({"com.google.keystone", "com.google.GoogleUpdater"}, {"EQHXZ8M8AV"},
                "Google apps (Chrome, Drive)"),
        updater({"com.microsoft.update", "com.microsoft.autoupdate",
                 "com.microsoft.OneDriveStandaloneUpdater", "com.microsoft.OneDriveUpdater"},
                {"UBF8T346G9"}, "Microsoft apps (Office, OneDrive)"),
        updater({"com.adobe.ARMDC", "com.adobe.AdobeCreativeCloud", "com.adobe.acc"}, {"JQ525L2MZD"},
                "Adobe apps"),
        updater({"us.zoom.updater"}, {"BJ4HAAB9B3"}, "Zoom"),
        updater({"ai.perplexity.CometUpdater"}, {}, "Comet (Perplexity)"),
        updater({"com.teamviewer.UninstallerWatcher", "com.teamviewer.UninstallerHelper"}, {}, "TeamViewer"),
        {{"com.spotify.client.startuphelper"},
         {},
         {"Spotify", "Starts Spotify at login.", "Spotify no longer opens by itself at login.", Risk::low,
          false}},
        {{"com.dropbox."},
         {},
         {"Dropbox", "Keeps Dropbox syncing in the background.", "Dropbox stops syncing until you open it.",
          Risk::low, false}},
        {{"homebrew.mxcl."},
         {},
         {"Homebrew service", "A service installed with `brew services` (a database, a web server, …).",
          "That service stops and no longer starts at login; apps that rely on it will fail to connect.",
          Risk::medium, false}},
        {{"pm2.", "com.PM2", "com.pm2"},
         {},
         {"pm2", "The pm2 process manager, which keeps Node.js programs running.",
          "Every program pm2 manages stops and no longer starts at login.", Risk::medium, false}},
        {{"com.deepseek.dsh"},
         {},
         {"DeepSeek dsh", "A background helper of the DeepSeek dsh tool.",
          "The dsh web service is no longer available until started by hand.", Risk::low, false}},
        {{"ai.openclaw."},
         {},
         {"OpenClaw", "The OpenClaw gateway service.", "OpenClaw's gateway stops.", Risk::low, false}},
        {{"com.openai."},
         {},
         {"ChatGPT", "A helper of the ChatGPT desktop app.",
          "The ChatGPT helper no longer starts at login; the app itself still works.", Risk::low, false}},
        {{"com.facebook.archon"},
         {},
         {"Messenger (Facebook)", "Helpers of the Facebook Messenger app.",
          "Messenger no longer opens or updates by itself.", Risk::low, false}},
        {{"com.surfshark.", "com.nordvpn.", "com.expressvpn.", "io.netbird.", "netbird"},
         {},
         {"VPN client", "Keeps the VPN client available in the background.",
          "The VPN does not connect by itself at login.", Risk::medium, false}},
        {{"com.malwarebytes.", "com.bitdefender.", "com.sophos.", "com.kaspersky.", "com.avast.",
          "com.eset."},
         {},
         {"Security software", "Part of a security product.",
          "Protection may stop; turning it off weakens security.", Risk::medium, true}},
        {{"com.cloudflare.cloudflared"},
         {},
         {"cloudflared", "A Cloudflare tunnel.",
          "The tunnel closes; anything reached through it becomes unavailable.", Risk::medium, false}},
    };
}

bool knows(const Rule& rule, std::string_view label, const std::optional<std::string>& teamID) {
    const auto startsLabel = [&](std::string_view prefix) { return label.starts_with(prefix); };
    const auto isTeam = [&](std::string_view team) { return teamID && *teamID == team; };
    return std::any_of(rule.labelPrefixes.begin(), rule.labelPrefixes.end(), startsLabel) ||
           std::any_of(rule.teamIDs.begin(), rule.teamIDs.end(), isTeam);
}

std::string_view lastComponent(std::string_view path) {
    const std::size_t end = path.find_last_not_of('/');
    path = path.substr(0, end == std::string_view::npos ? 0 : end + 1);
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// Of a program inside an application, the application's.
std::string programName(std::string_view executable) {
    const std::string_view name = lastComponent(executable.substr(0, executable.find(".app/")));
    return name.empty() ? "Unknown" : excerpt(name);
}

}  // namespace

Rule AgentExplainer::updater(std::vector<std::string_view> labelPrefixes,
                             std::vector<std::string_view> teamIDs, std::string app) {
    std::string what = "Checks for and installs updates of " + app + ".";
    std::string stops = "Keeps " + app + " up to date; turning it off stops security fixes.";
    return {std::move(labelPrefixes),
            std::move(teamIDs),
            {std::move(app), std::move(what), std::move(stops), Risk::medium, true}};
}

const std::vector<Rule>& AgentExplainer::rules() {
    static const std::vector<Rule> all = makeRules();
    return all;
}

AgentExplanation AgentExplainer::explain(std::string_view label, const std::optional<std::string>& teamID,
                                         const std::optional<std::string>& executable) {
    for (const Rule& rule : rules())
        if (knows(rule, label, teamID)) return rule.explanation;
    AgentExplanation generic{excerpt(label), "A background item with no program listed.",
                             std::string(nobodyKnows), Risk::low, false};
    if (executable) {
        generic.app = programName(*executable);
        generic.what = "Runs " + generic.app + ".";
    } else if (label.empty()) {
        generic.app = "Unknown";
    }
    return generic;
}

}  // namespace brell
