// The part of AppKit, and of what comes with it, that the seams under Platform need.
#pragma once

#include <stddef.h>

// Three of the many macros that come with it, by <AssertMacros.h>: no function of these names can be called
// behind it.
#define check(assertion) _Static_assert(0, "a macro of macOS's")
#define require(assertion, label) _Static_assert(0, "a macro of macOS's")
#define verify(assertion) _Static_assert(0, "a macro of macOS's")

#pragma clang assume_nonnull begin

typedef signed char BOOL;
#define YES __objc_yes
#define NO __objc_no
#define nil ((id)0)

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double CGFloat;
typedef struct CGSize {
    CGFloat width, height;
} NSSize;
typedef struct CGPoint {
    CGFloat x, y;
} NSPoint;
typedef struct CGRect {
    NSPoint origin;
    NSSize size;
} NSRect;
extern "C" {
extern const NSRect NSZeroRect;
NSSize NSMakeSize(CGFloat width, CGFloat height);
NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height);

typedef struct dispatch_queue_s* dispatch_queue_t;
dispatch_queue_t dispatch_get_main_queue(void);
void dispatch_async(dispatch_queue_t queue, void (^block)(void));
}

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)alloc;
- (instancetype)init;
@end

@interface NSString : NSObject
+ (nullable instancetype)stringWithUTF8String:(const char*)text;
@property(nullable, readonly) const char* UTF8String;
@property(readonly, copy) NSString* stringByDeletingPathExtension;
@end

@interface NSError : NSObject
@end

@interface NSURL : NSObject
+ (nullable instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isFolder
                                relativeToURL:(nullable NSURL*)base;
@property(nullable, readonly, copy) NSString* lastPathComponent;
@end

typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable* _Nullable itemsPtr;
    unsigned long* _Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@interface NSArray<ObjectType> : NSObject
+ (instancetype)arrayWithObject:(ObjectType)object;
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

@interface NSRunningApplication : NSObject
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier;
@property(readonly, getter=isTerminated) BOOL terminated;
@property(readonly) pid_t processIdentifier;
- (BOOL)terminate;
@end

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end

// Both handlers are called on a queue of the system's.
@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)identifier;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)files;
- (void)openURL:(NSURL*)url
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:
        (nullable void (^)(NSRunningApplication* _Nullable application, NSError* _Nullable error))handler;
- (void)openApplicationAtURL:(NSURL*)url
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(nullable void (^)(NSRunningApplication* _Nullable application,
                                                NSError* _Nullable error))handler;
@end

typedef CGFloat NSFontWeight;
extern "C" const NSFontWeight NSFontWeightRegular;
typedef NSString* NSColorSpaceName;
extern "C" const NSColorSpaceName NSDeviceRGBColorSpace;
typedef enum NSCompositingOperation : NSUInteger {
    NSCompositingOperationSourceOver = 2
} NSCompositingOperation;

@interface NSImageSymbolConfiguration : NSObject
+ (instancetype)configurationWithPointSize:(CGFloat)points weight:(NSFontWeight)weight;
@end

@interface NSImage : NSObject
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description;
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration;
@property NSSize size;
- (void)drawInRect:(NSRect)place
          fromRect:(NSRect)part
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)opacity;
@end

@interface NSImageRep : NSObject
@property NSSize size;
@end

@interface NSBitmapImageRep : NSImageRep
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bits
                                  samplesPerPixel:(NSInteger)samples
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)planar
                                   colorSpaceName:(NSColorSpaceName)space
                                      bytesPerRow:(NSInteger)rowBytes
                                     bitsPerPixel:(NSInteger)pixelBits;
@property(nullable, readonly) unsigned char* bitmapData;
@property(readonly) NSInteger bytesPerRow;
@end

@interface NSGraphicsContext : NSObject
@property(class, nullable, strong) NSGraphicsContext* currentContext;
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)picture;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

#pragma clang assume_nonnull end
