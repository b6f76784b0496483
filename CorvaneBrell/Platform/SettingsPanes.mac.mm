#include "CorvaneBrell/Platform/SettingsPanes.h"

#import <AppKit/AppKit.h>

namespace brell {

namespace {

// Nothing for a link that opens something else, or that is no link.
NSURL* paneURL(const std::string& link) {
    if (!link.starts_with("x-apple.systempreferences:")) return nil;
    NSString* text = @(link.c_str());
    return text ? [NSURL URLWithString:text] : nil;
}

}  // namespace

void openSettingsPane(const std::string& link, std::function<void(bool opened)> answered) {
    NSURL* pane = paneURL(link);
    if (!pane) return answered(false);
    // The answer comes on a thread of the platform's.
    [NSWorkspace.sharedWorkspace openURL:pane
                           configuration:[NSWorkspaceOpenConfiguration configuration]
                       completionHandler:^(NSRunningApplication*, NSError* error) {
                         const bool opened = error == nil;
                         dispatch_async(dispatch_get_main_queue(), ^{
                           answered(opened);
                         });
                       }];
}

}  // namespace brell
