#include "BrellCore/Catalog/CatalogTable.h"

namespace brell::CatalogTable {

std::vector<Row> screenshots(const std::string& screenshotFolder) {
    return {
        {.id = "shot.folder",
         .title = "Where screenshots are saved",
         .writes = {write(Domains::screencapture, "location", screenshotFolder)},
         .kind = FolderKind{},
         .what =
             "Screenshots are saved to the folder you pick instead of the Desktop. The folder must exist."},
        {.id = "shot.jpg",
         .title = "Save screenshots as JPEG",
         .writes = {write(Domains::screencapture, "type", "jpg", "png")},
         .what = "Smaller files; PNG is the default and keeps exact pixels."},
        {.id = "shot.no_shadow",
         .title = "No shadow around window screenshots",
         .writes = {write(Domains::screencapture, "disable-shadow", true, false)},
         .what =
             "Screenshots of a single window no longer include the drop shadow and its transparent margin."},
        {.id = "shot.no_thumbnail",
         .title = "No floating thumbnail after a screenshot",
         .writes = {write(Domains::screencapture, "show-thumbnail", false, true)},
         .what = "The small preview in the corner is skipped and the file is saved right away."},
        {.id = "shot.date_in_name",
         .title = "Date and time in the file name",
         .writes = {write(Domains::screencapture, "include-date", true, true)},
         .what = "Screenshot files are named with the date and time they were taken."},
        {.id = "shot.cursor",
         .title = "Include the pointer in screenshots",
         .writes = {write(Domains::screencapture, "showsCursor", true, false)},
         .what = "The mouse pointer appears in screenshots."},
    };
}

std::vector<Row> misc() {
    return {
        {.id = "misc.no_crash_dialog",
         .title = "No dialog when an app crashes",
         .writes = {write(Domains::crashReporter, "DialogType", "none")},
         .risk = Risk::medium,
         .what = "The \"quit unexpectedly\" dialog is not shown; the report is still written.",
         .riskNote = "You will not be told when an app crashes."},
        {.id = "misc.no_timemachine_offer",
         .title = "Do not offer new disks for Time Machine",
         .writes = {write(Domains::timeMachine, "DoNotOfferNewDisksForBackup", true, false)},
         .what = "Plugging in a new disk no longer asks whether to use it for backups."},
        {.id = "misc.always_show_scrollbars",
         .title = "Always show scroll bars",
         .writes = {write(globalDomain, "AppleShowScrollBars", "Always", "Automatic")},
         .effect = EffectClass::nextAppLaunch,
         .confirmedOn26 = false,
         .what = "Scroll bars stay visible instead of appearing only while you scroll (the same setting as "
                 "Appearance > Show scroll bars: Always)."},
    };
}

std::vector<Row> privacy() {
    return {
        {.id = "priv.no_personalized_ads",
         .title = "No personalized Apple ads",
         .writes = {write(Domains::adLib, "allowApplePersonalizedAdvertising", false, true)},
         .risk = Risk::experimental,
         .what = "Apple's own ads (App Store, News, Stocks) stop using your activity to target you."},
    };
}

}  // namespace brell::CatalogTable
