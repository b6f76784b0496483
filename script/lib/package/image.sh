# The part of script/package that signs the bundle, makes the disk image and has it notarised. To be sourced.
# shellcheck shell=bash

# signBundle APP IDENTITY [WORD...]: from the inside out, each with these words of codesign; the bundle itself also with
# those of the array appWords.
appWords=()
signBundle() {
    local app=$1 identity=$2 file
    shift 2
    { machineCode "$app" | grep -vxF "$(program "$app")"; find "$app/Contents/Frameworks" -name '*.framework'; } |
        while IFS= read -r file; do codesign --force --sign "$identity" "$@" "$file" || return; done || return
    codesign --force --sign "$identity" "$@" ${appWords[@]+"${appWords[@]}"} "$app"
}

# isHardened APP: whether its signature asks for the hardened runtime; it is printed.
isHardened() {
    local said
    said=$(codesign --display --verbose=2 "$1" 2>&1)
    echo "$said" >&2
    grep -q 'flags=.*runtime' <<<"$said"
}

# createImage FOLDER IMAGE: a program that looks at the new volume can keep hdiutil from it for a moment.
createImage() {
    local try said
    for try in 1 2 3 4 5; do
        said=$(hdiutil create -volname "Corvane Brell" -srcfolder "$1" -format UDZO -ov "$2" 2>&1) && return
        case $said in *"Resource busy"*) sleep $((try * 2)) ;; *) break ;; esac
    done
    printf '%s\n' "$said" >&2
    return 1
}

# notarize IMAGE PROFILE: waits for Apple's answer, which notarytool's exit status does not tell.
notarize() {
    local answer id status
    answer=$(mktemp "${TMPDIR:-/tmp}/brell.XXXXXX")
    xcrun notarytool submit "$1" --keychain-profile "$2" --wait --output-format json >"$answer" || cat "$answer" >&2
    id=$(plutil -extract id raw "$answer") || id=
    status=$(plutil -extract status raw "$answer") || status="no answer"
    rm -f "$answer"
    if [ "$status" = Accepted ]; then
        xcrun stapler staple "$1"
        return
    fi
    echo "package: Apple's notary says: $status." >&2
    if [ -n "$id" ]; then xcrun notarytool log "$id" --keychain-profile "$2" >&2; fi
    return 1
}
