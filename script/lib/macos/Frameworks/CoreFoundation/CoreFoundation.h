// The part of CoreFoundation that the user defaults need.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifndef __clang__  // g++ knows nothing of nullability
#define _Nullable
#define _Null_unspecified
#endif
#pragma clang assume_nonnull begin

extern "C" {

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef uint32_t CFStringEncoding;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFData* CFDataRef;
typedef struct __CFError* CFErrorRef;

extern const CFAllocatorRef kCFAllocatorDefault;
CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFStringRef _Nullable CFCopyTypeIDDescription(CFTypeID type);
CFTypeID CFStringGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
CFTypeID CFDataGetTypeID(void);
CFTypeID CFDateGetTypeID(void);
CFTypeID CFArrayGetTypeID(void);
CFTypeID CFDictionaryGetTypeID(void);

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
CFStringRef _Null_unspecified CFStringCreateWithBytes(CFAllocatorRef _Nullable allocator, const UInt8* bytes,
                                                      CFIndex count, CFStringEncoding encoding,
                                                      Boolean isExternalRepresentation);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);

CFDataRef _Null_unspecified CFDataCreate(CFAllocatorRef _Nullable allocator, const UInt8* bytes,
                                         CFIndex count);
const UInt8* _Null_unspecified CFDataGetBytePtr(CFDataRef data);
CFIndex CFDataGetLength(CFDataRef data);

typedef enum CFPropertyListFormat : CFIndex {
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200
} CFPropertyListFormat;
enum : CFOptionFlags { kCFPropertyListImmutable = 0 };
CFDataRef _Nullable CFPropertyListCreateData(CFAllocatorRef _Nullable allocator, CFPropertyListRef object,
                                             CFPropertyListFormat format, CFOptionFlags options,
                                             CFErrorRef _Nullable* _Nullable error);
CFPropertyListRef _Nullable CFPropertyListCreateWithData(CFAllocatorRef _Nullable allocator, CFDataRef data,
                                                         CFOptionFlags options,
                                                         CFPropertyListFormat* _Nullable format,
                                                         CFErrorRef _Nullable* _Nullable error);

extern const CFStringRef kCFPreferencesAnyApplication;
extern const CFStringRef kCFPreferencesAnyHost;
extern const CFStringRef kCFPreferencesCurrentHost;
extern const CFStringRef kCFPreferencesCurrentUser;
CFPropertyListRef _Nullable CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application);
CFPropertyListRef _Nullable CFPreferencesCopyValue(CFStringRef key, CFStringRef application, CFStringRef user,
                                                   CFStringRef host);
CFArrayRef _Nullable CFPreferencesCopyKeyList(CFStringRef application, CFStringRef user, CFStringRef host);
void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef _Nullable value, CFStringRef application,
                           CFStringRef user, CFStringRef host);
Boolean CFPreferencesAppValueIsForced(CFStringRef key, CFStringRef application);
Boolean CFPreferencesSynchronize(CFStringRef application, CFStringRef user, CFStringRef host);

}  // extern "C"

#pragma clang assume_nonnull end
