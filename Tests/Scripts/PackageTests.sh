#!/usr/bin/env bash
# shellcheck disable=SC2016,SC2317
#
# What script/package makes of bundles, images and answers that are not as they should be, over stand-ins for the tools
# of macOS. A stand-in for a Mach-O file is its first bytes and then what otool says of it.
. "$(dirname "$0")/testing.sh"
. "$root/script/lib/package/bundle.sh"
. "$root/script/lib/package/licenses.sh"
. "$root/script/lib/package/image.sh"
. "$root/script/lib/hardening.sh"

otool() { echo "$2:" && tail -n +2 "$2"; }
install_name_tool() {
    if [ -z "$(find "$3" -perm -u+w)" ]; then return 1; fi
    case $1 in
        -delete_rpath) sed -i.old "\\|path $2 (offset|d" "$3" && rm "$3.old" ;;
        -add_rpath) rpath "$2" >>"$3" ;;
    esac
}
plutil() { # of property lists and JSON, with a line a member
    case $1 in
        -lint) grep -q '^</plist>' "$2" ;;
        -extract)
            sed -n -e "s/.*\"$2\": \"\([^\"]*\)\".*/\1/p" \
                -e "/<key>$2</{n" -e 's/.*<string>\(.*\)<.*/\1/p' -e '}' "$4" | grep .
            ;;
    esac
}
brew() { echo "$PWD/homebrew"; }
deeds() { cat deeds 2>/dev/null || true; }
sleep() { echo "sleep $1" >>deeds; }
codesign() { echo "codesign $*" | sed "s|$PWD/||" >>deeds; }

needs() { printf 'Load command 12\n          cmd LC_LOAD_DYLIB\n         name %s (offset 24)\n' "$@"; }
rpath() { printf 'Load command 17\n          cmd LC_RPATH\n      cmdsize 40\n         path %s (offset 12)\n' "$@"; }
oldest() {
    printf 'Load command 9\n      cmd LC_BUILD_VERSION\n    minos %s\n      sdk 26.0\n  version 1115.7.3\n' "$1"
}
identified() { printf 'Load command 4\n          cmd LC_ID_DYLIB\n         name %s (offset 24)\n' "$1"; }

# machO FILE: made of what is read.
machO() {
    mkdir -p "$(dirname "$1")"
    { printf '\317\372\355\376\n' && cat; } >"$1"
}

# A bundle with a library, a framework, a plug-in and a picture, which works everywhere.
makeBundle() {
    app=$PWD/Test.app
    qt=$app/Contents/Frameworks/QtCore.framework/Versions/A/QtCore
    { rpath @executable_path/../Frameworks && needs @rpath/QtCore.framework/Versions/A/QtCore /usr/lib/libc++.1.dylib &&
        needs @executable_path/../Frameworks/libfmt.11.dylib && oldest 15.0; } | machO "$app/Contents/MacOS/CorvaneBrell"
    { identified /opt/homebrew/lib/QtCore && needs @rpath/libfmt.11.dylib /System/Library/Frameworks/AppKit &&
        oldest 14.0; } | machO "$qt"
    oldest 13.0 | machO "$app/Contents/Frameworks/libfmt.11.dylib"
    { rpath '@loader_path/../../Frameworks' && needs @rpath/QtCore.framework/Versions/A/QtCore && oldest 15.0; } |
        machO "$app/Contents/PlugIns/platforms/cocoa.dylib"
    mkdir "$app/Contents/Resources" && echo '/opt/homebrew' >"$app/Contents/Resources/picture.svg"
    chmod 444 "$qt"
    printf '<plist>\n<key>LSMinimumSystemVersion</key>\n<string>15.0</string>\n</plist>\n' >"$app/Contents/Info.plist"
}

testABundleThatHoldsAllItNeedsIsTaken() {
    makeBundle
    expectText 4 "$(machineCode "$app" | wc -l | tr -d ' ')"
    checkBundle "$app"
}

testWhatOnlyThisMacHasIsRefused() {
    local planted
    while IFS='|' read -r file planted words; do
        makeBundle && chmod -R u+w "$app"
        eval "$planted" >>"$app/Contents/$file"
        expectRefusal "$words" checkBundle "$app"
        rm -r "$app"
    done <<'END'
MacOS/CorvaneBrell|rpath /Users/me/build/shipping|MacOS/CorvaneBrell looks for libraries in /Users/me/build/shipping
PlugIns/platforms/cocoa.dylib|rpath @loader_path/../../../../lib|cocoa.dylib looks for libraries in @loader_path/../../../../lib
Frameworks/QtCore.framework/Versions/A/QtCore|needs /opt/homebrew/opt/icu4c/lib/libicu.dylib|QtCore needs /opt/homebrew/opt/icu4c
Frameworks/QtCore.framework/Versions/A/QtCore|needs @rpath/libgone.dylib|QtCore needs @rpath/libgone.dylib
Frameworks/libfmt.11.dylib|needs @loader_path/libgone.dylib|libfmt.11.dylib needs @loader_path/libgone.dylib
Frameworks/libfmt.11.dylib|oldest 26.0|libfmt.11.dylib needs macOS 26.0, and the bundle promises 15.0
Frameworks/libfmt.11.dylib|printf '\ncmd LC_VERSION_MIN_MACOSX\n  version 15.1\n'|needs macOS 15.1
END
    makeBundle
    ln -sf "$root/README.md" "$app/Contents/Frameworks/libfmt.11.dylib"
    expectRefusal 'needs @rpath/libfmt.11.dylib' checkBundle "$app"
}

testGatheringTakesOutWhatLeadsAway() {
    makeBundle
    { needs @rpath/QtCore.framework/Versions/A/QtCore && rpath /Users/me/build "$PWD/homebrew/lib" && oldest 15.0; } |
        machO "$app/Contents/MacOS/CorvaneBrell"
    chmod u+w "$qt" && rpath /opt/homebrew/lib >>"$qt" && chmod 444 "$qt"
    macdeployqt() { echo "macdeployqt ${*#"$PWD"/}" | sed "s|$PWD|.|" >deeds; }
    expectRefusal 'looks for libraries in /Users/me/build' checkBundle "$app"
    gatherLibraries "$app"
    expectText "macdeployqt Test.app -libpath=./homebrew/lib" "$(deeds)"
    expectText @executable_path/../Frameworks "$(loads rpaths "$(program "$app")")"
    checkBundle "$app"
}

testWhatMacdeployqtDoesNotFindIsRefused() {
    makeBundle
    macdeployqt() { echo 'ERROR: Cannot resolve rpath "@rpath/QtDBus.framework/Versions/A/QtDBus"'; }
    expectRefusal 'Cannot resolve rpath' gatherLibraries "$app"
}

testTheFinishedProgramIsTried() {
    local log=$PWD/log
    sleep() { command sleep 0.2; }
    printf '#!/bin/sh\necho "$DYLD_PRINT_LIBRARIES"\nexec sleep 9\n' >stays
    printf '#!/bin/sh\necho "dyld: Library not loaded"\nexit 134\n' >ends
    chmod +x stays ends
    DYLD_PRINT_LIBRARIES=1 staysUp ./stays "$log"
    expectText 1 "$(cat "$log")"
    expectRefusal 'Library not loaded' staysUp ./ends "$log"

    printf 'dyld[7]: <AB-1> %s\n' /A.app/Contents/Frameworks/QtCore /usr/lib/libc++.1.dylib >"$log"
    checkLoaded /A.app "$log"
    echo 'dyld[7]: <AB-2> /opt/homebrew/Cellar/icu4c/78/lib/libicu.dylib' >>"$log"
    expectRefusal 'do not have:'$'\n''/opt/homebrew/Cellar' checkLoaded /A.app "$log"
    echo 'the variable was not heeded' >"$log"
    expectRefusal 'dyld did not say' checkLoaded /A.app "$log"
}

testTheBundleIsSignedFromTheInsideOut() {
    makeBundle
    appWords=(--entitlements e)
    signBundle "$app" - --options runtime
    expectText 'Contents/Frameworks/QtCore.framework/Versions/A/QtCore
Contents/Frameworks/libfmt.11.dylib
Contents/PlugIns/platforms/cocoa.dylib
Contents/Frameworks/QtCore.framework' "$(deeds | sed -n 's|^codesign --force --sign - --options runtime Test.app/||p')"
    expectText 'codesign --force --sign - --options runtime --entitlements e Test.app' "$(deeds | tail -n 1)"
    codesign() { echo 'CodeDirectory v=20500 size=1 flags=0x10002(adhoc,runtime) hashes=1+2' >&2; }
    isHardened "$app"
    codesign() { echo 'CodeDirectory v=20500 size=1 flags=0x2(adhoc) hashes=1+2' >&2; }
    expectRefusal 'flags=0x2(adhoc)' isHardened "$app"
}

testABusyImageIsTriedAgainAndAnyOtherFailureIsNot() {
    hdiutil() {
        echo "hdiutil $1" >>deeds
        if [ "$(grep -c hdiutil deeds)" -lt 3 ]; then echo 'hdiutil: create failed - Resource busy' >&2 && return 1; fi
    }
    createImage stage image.dmg
    expectText 3 "$(grep -c hdiutil deeds)"
    rm deeds
    hdiutil() { echo hdiutil >>deeds && echo 'hdiutil: create failed - Resource busy' >&2 && return 1; }
    expectRefusal 'Resource busy' createImage stage image.dmg
    expectText 5 "$(grep -c hdiutil deeds)"
    rm deeds
    hdiutil() { echo hdiutil >>deeds && echo 'hdiutil: create failed - No space left on device' >&2 && return 1; }
    expectRefusal 'No space left' createImage stage image.dmg
    expectText hdiutil "$(deeds)"
}

testOnlyWhatTheNotaryAcceptedIsStapled() {
    xcrun() {
        echo "xcrun $1 $2 $3" >>deeds
        case $2 in
            submit) printf '%s\n' "$verdict" && [ -n "$verdict" ] ;;
            log) echo 'The binary is not signed.' ;;
        esac
    }
    verdict='{"id": "7f-1", "message": "Processing complete", "status": "Accepted"}'
    notarize image.dmg me
    expectText 'xcrun stapler staple image.dmg' "$(deeds | tail -n 1)"
    rm deeds
    verdict='{"id": "7f-2", "message": "Processing complete", "status": "Invalid"}'
    expectRefusal "notary says: Invalid."$'\n'"The binary is not signed." notarize image.dmg me
    expectText 'xcrun notarytool log 7f-2' "$(deeds | tail -n 1)"
    verdict=
    expectRefusal 'notary says: no answer.' notarize image.dmg me
    if grep -q stapler deeds; then fail "something was stapled"; fi
}

testEveryLibraryBringsItsLicense() {
    local formula
    makeBundle
    for formula in "${linkedFormulas[@]}" qtbase; do
        mkdir -p "homebrew/Cellar/$formula/1.0/lib" homebrew/opt
        echo "as $formula says" >"homebrew/Cellar/$formula/1.0/LICENSE.md"
        ln -s "../Cellar/$formula/1.0" "homebrew/opt/$formula"
    done
    touch homebrew/opt/fmt/lib/libfmt.11.dylib
    mkdir homebrew/opt/qtbase/lib/QtCore.framework
    addLicenses "$app"
    expectText 1 "$(grep -c 'as fmt says' "$app/Contents/Resources/Licenses.txt")"
    grep -qF 'GNU LESSER GENERAL PUBLIC LICENSE' "$app/Contents/Resources/Licenses.txt"
    rm homebrew/opt/fmt/LICENSE.md
    expectRefusal 'holds no licence text of fmt' addLicenses "$app"
    touch "$app/Contents/Frameworks/libnew.dylib"
    expectRefusal 'no library of Homebrew'"'"'s is named libnew.dylib' addLicenses "$app"
}

# The library has all of it, as those of the system have, and can't speak for the program.
testHardeningIsMissedWhereItWasTakenOut() {
    if [ "$(uname -s)-$(uname -m)" != Linux-x86_64 ]; then return; fi
    local hard=(-O2 -w -fPIE -fstack-protector-strong -fstack-clash-protection -fcf-protection
        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -D_GLIBCXX_ASSERTIONS)
    echo '#include <string.h>
        int library(char* s, char* t) { char own[64]; strcpy(own, s); strcpy(own, t); return own[1]; }' >library.c
    echo '#include <cstring>
        #include <vector>
        extern "C" int library(char*, char*);
        int main(int count, char** words) {
            std::vector<int> many(count);
            char name[64], page[20000];
            std::strcpy(name, words[0]);
            std::memset(page, count, sizeof page);
            return many[count - 1] + library(name, page);
        }' >own.cpp
    cc "${hard[@]}" -c library.c
    expectMissing() {
        c++ -std=c++20 "${hard[@]}" -Wl,-z,relro,-z,now own.cpp library.o "${@:2}" -o own
        expectText "$1" "$(missingHardening own)"
    }
    expectMissing '' -pie
    expectMissing 'a place in memory that changes' -no-pie
    expectMissing "tables of addresses that can't be written" -pie -Wl,-z,norelro
    expectMissing 'addresses that are bound at the start' -pie -Wl,-z,lazy
    expectMissing 'stack protection' -pie -fno-stack-protector
    expectMissing 'functions that know how large a buffer is' -pie -U_FORTIFY_SOURCE
    expectMissing 'the checks of the C++ library' -pie -U_GLIBCXX_ASSERTIONS
    expectMissing 'control-flow protection' -pie -fcf-protection=none
    expectMissing 'stack-clash protection' -pie -fno-stack-clash-protection
}

runTests
