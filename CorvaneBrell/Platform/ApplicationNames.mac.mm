#include "CorvaneBrell/Platform/ApplicationNames.h"

#import <AppKit/AppKit.h>

namespace brell {

// The bundle is not looked into: it may lie where macOS asks the user first.
std::optional<std::string> applicationName(const std::string& bundleIdentifier) {
    @autoreleasepool {
        NSString* identifier = @(bundleIdentifier.c_str());
        if (!identifier) return std::nullopt;
        NSURL* bundle = [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier];
        const char* name = bundle.lastPathComponent.stringByDeletingPathExtension.UTF8String;
        return name ? std::optional<std::string>(name) : std::nullopt;
    }
}

}  // namespace brell
