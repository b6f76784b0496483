#include "CorvaneBrell/Platform/Symbols.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>

namespace brell {

namespace {

NSBitmapImageRep* emptyPicture(int side, CGFloat points) {
    NSBitmapImageRep* picture = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                                        pixelsWide:side
                                                                        pixelsHigh:side
                                                                     bitsPerSample:8
                                                                   samplesPerPixel:4
                                                                          hasAlpha:YES
                                                                          isPlanar:NO
                                                                    colorSpaceName:NSDeviceRGBColorSpace
                                                                       bytesPerRow:0
                                                                      bitsPerPixel:0];
    picture.size = NSMakeSize(points, points);
    return picture;
}

// In the middle of the square, made smaller where it is wider or higher than that.
NSRect placeOf(NSSize symbol, CGFloat points) {
    const CGFloat scale = std::min({CGFloat{1}, points / symbol.width, points / symbol.height});
    const NSSize size = NSMakeSize(symbol.width * scale, symbol.height * scale);
    return NSMakeRect((points - size.width) / 2, (points - size.height) / 2, size.width, size.height);
}

void draw(NSImage* symbol, NSBitmapImageRep* picture, CGFloat points) {
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithBitmapImageRep:picture];
    [symbol drawInRect:placeOf(symbol.size, points)
              fromRect:NSZeroRect
             operation:NSCompositingOperationSourceOver
              fraction:1];
    [NSGraphicsContext restoreGraphicsState];
}

// The last of each pixel's four bytes.
std::vector<std::uint8_t> coverageOf(NSBitmapImageRep* picture, int side) {
    std::vector<std::uint8_t> coverage;
    for (int y = 0; y < side; ++y) {
        const unsigned char* row = picture.bitmapData + y * picture.bytesPerRow;
        for (int x = 0; x < side; ++x) coverage.push_back(row[4 * x + 3]);
    }
    return coverage;
}

}  // namespace

std::optional<SymbolImage> systemSymbol(const std::string& name, int points, double scale) {
    const int side = static_cast<int>(std::lround(points * scale));
    NSString* text = @(name.c_str());
    if (!text || side <= 0) return std::nullopt;
    NSImageSymbolConfiguration* size =
        [NSImageSymbolConfiguration configurationWithPointSize:points weight:NSFontWeightRegular];
    NSImage* symbol = [[NSImage imageWithSystemSymbolName:text
                                 accessibilityDescription:nil] imageWithSymbolConfiguration:size];
    NSBitmapImageRep* picture = emptyPicture(side, points);
    if (!symbol || !picture) return std::nullopt;
    draw(symbol, picture, points);
    return SymbolImage{side, coverageOf(picture, side)};
}

}  // namespace brell
