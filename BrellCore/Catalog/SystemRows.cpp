#include "BrellCore/Catalog/CatalogTable.h"

namespace brell::CatalogTable {

std::vector<Row> screenshots(const std::string& screenshotFolder) {
    return {
        {.id = "shot.folder",
         .title = "Where screenshots are saved",
         .writes = {write(Domains::screencapture, "location", screenshotFolder)},
         .kind = FolderKind{},
         .confirmedOn26 = true,
         .what =
             "Screenshots are saved to the folder you pick instead of the Desktop. The folder must exist.",
         .searchWords = "screenshot location directory desktop clutter path screen capture grab"},
        {.id = "shot.jpg",
         .title = "Save screenshots as JPEG",
         .writes = {write(Domains::screencapture, "type", "jpg", "png")},
         .confirmedOn26 = true,
         .what = "Smaller files; PNG is the default and keeps exact pixels.",
         .searchWords = "screenshot format png jpg jpeg file type smaller size screen capture grab"},
        {.id = "shot.no_shadow",
         .title = "No shadow around window screenshots",
         .writes = {write(Domains::screencapture, "disable-shadow", true, false)},
         .confirmedOn26 = true,
         .what =
             "Screenshots of a single window no longer include the drop shadow and its transparent margin.",
         .searchWords = "screenshot border margin drop shadow screen capture grab"},
        {.id = "shot.no_thumbnail",
         .title = "No floating thumbnail after a screenshot",
         .writes = {write(Domains::screencapture, "show-thumbnail", false, true)},
         .confirmedOn26 = true,
         .what = "The small preview in the corner is skipped and the file is saved right away.",
         .searchWords = "screenshot preview corner popup delay screen capture grab"},
        {.id = "shot.date_in_name",
         .title = "Date and time in the file name",
         .writes = {write(Domains::screencapture, "include-date", true, true)},
         .confirmedOn26 = true,
         .what = "Screenshot files are named with the date and time they were taken.",
         .searchWords = "screenshot timestamp filename naming screen capture grab"},
        {.id = "shot.cursor",
         .title = "Include the pointer in screenshots",
         .writes = {write(Domains::screencapture, "showsCursor", true, false)},
         .confirmedOn26 = true,
         .what = "The mouse pointer appears in screenshots.",
         .searchWords = "screenshot mouse arrow show screen capture grab"},
    };
}

std::vector<Row> misc() {
    return {
        {.id = "misc.no_crash_dialog",
         .title = "No dialog when an app crashes",
         .writes = {write(Domains::crashReporter, "DialogType", "none")},
         .risk = Risk::medium,
         .confirmedOn26 = true,
         .what = "The \"quit unexpectedly\" dialog is not shown; the report is still written.",
         .riskNote = "You will not be told when an app crashes.",
         .searchWords = "report quit unexpectedly problem error message alert"},
        {.id = "misc.no_timemachine_offer",
         .title = "Do not offer new disks for Time Machine",
         .writes = {write(Domains::timeMachine, "DoNotOfferNewDisksForBackup", true, false)},
         .confirmedOn26 = true,
         .what = "Plugging in a new disk no longer asks whether to use it for backups.",
         .searchWords = "backup back up external disk drive usb ask prompt stick"},
        {.id = "misc.always_show_scrollbars",
         .title = "Always show scroll bars",
         .writes = {write(globalDomain, "AppleShowScrollBars", "Always", "Automatic")},
         .effect = EffectClass::nextAppLaunch,
         .what = "Scroll bars stay visible instead of appearing only while you scroll (the same setting as "
                 "Appearance > Show scroll bars: Always).",
         .searchWords = "scrollbar scrolling disappear hidden visible slider"},
    };
}

std::vector<Row> privacy() {
    return {
        {.id = "priv.no_personalized_ads",
         .title = "No personalized Apple ads",
         .writes = {write(Domains::adLib, "allowApplePersonalizedAdvertising", false, true)},
         .risk = Risk::experimental,
         .confirmedOn26 = true,
         .what = "Apple's own ads (App Store, News, Stocks) stop using your activity to target you.",
         .searchWords = "advertising advertisement tracking targeted personalised app store"},
    };
}

}  // namespace brell::CatalogTable
