# The part of script/package that gathers the licence texts of what the bundle holds of others. To be sourced, after
# frame.sh.
# shellcheck shell=bash

: "${root:?}"

# The libraries that are part of the program itself.
linkedFormulas=(simdjson pugixml fmt utf8proc cli11)

# kegOf NAME: where Homebrew keeps what this library or framework in a bundle was copied from.
kegOf() {
    local place
    for place in "$(brew --prefix)"/opt/*/lib/"$1"; do
        if [ -e "$place" ]; then realpath "${place%/lib/*}" && return; fi
    done
    echo "package: no library of Homebrew's is named $1." >&2
    return 1
}

# kegs APP: one a line, of all that the bundle holds.
kegs() {
    local file formula
    for formula in "${linkedFormulas[@]}"; do realpath "$(brew --prefix)/opt/$formula"; done
    find "$1/Contents/Frameworks" -mindepth 1 -maxdepth 1 | while IFS= read -r file; do
        kegOf "${file##*/}" || return
    done
}

# licenseOf KEG: its texts. Those that Homebrew does not install are in cmake/Bundle/Licenses.
licenseOf() {
    local formula files
    formula=$(basename "$(dirname "$1")")
    files=$(find -L "$1" -maxdepth 1 -type f \( -iname 'licen[cs]e*' -o -iname 'copying*' -o -iname 'copyright*' \) | sort)
    case $formula in qt*) files=$root/cmake/Bundle/Licenses/Qt.txt ;; esac
    if [ -z "$files" ]; then
        echo "package: $1 holds no licence text of $formula." >&2
        return 1
    fi
    printf '%s\n\n%s %s\n\n' "$(printf '=%.0s' {1..80})" "$formula" "$(basename "$1")"
    while IFS= read -r file; do cat "$file" && echo; done <<<"$files"
}

# addLicenses APP: as one text that the Help menu opens.
addLicenses() {
    local app=$1 keg found
    found=$(kegs "$app") || return
    echo "Corvane Brell is built on the following, each under the licence that stands below its name." \
        >"$app/Contents/Resources/Licenses.txt"
    sort -u <<<"$found" | while IFS= read -r keg; do licenseOf "$keg" || return; done \
        >>"$app/Contents/Resources/Licenses.txt"
}
