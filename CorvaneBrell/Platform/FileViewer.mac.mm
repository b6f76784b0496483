#include "CorvaneBrell/Platform/FileViewer.h"

#import <AppKit/AppKit.h>

namespace brell {

bool selectInFileViewer(const std::filesystem::path& file) {
    NSURL* place = [NSURL fileURLWithFileSystemRepresentation:file.c_str() isDirectory:NO relativeToURL:nil];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:[NSArray arrayWithObject:place]];
    return true;
}

}  // namespace brell
