# The part of script/verify-mac that tries user defaults. To be sourced, after results.sh.
# shellcheck shell=bash disable=SC2154

domains='NSGlobalDomain com.apple.AdLib com.apple.CrashReporter com.apple.Spotlight com.apple.TimeMachine
com.apple.desktopservices com.apple.dock com.apple.finder com.apple.screencapture'

# copyDomains FOLDER: each as defaults exports it, types and all; one without any value may not exist.
copyDomains() {
    local name
    mkdir -p "$1"
    for name in $domains; do
        defaults export "$name" - >"$1/$name.plist" 2>"$work/answer" || grep -q 'not exist' "$work/answer" || return
    done
}

# findKeys: what Brell would write on this Mac, and nothing else is ever put back: a line "DOMAIN<tab>KEY" each, in the
# file keys.
findKeys() {
    local journal=$work/dry-run # where a dry run was, no change is made
    brell --dry-run --apply-all
    sed -n 's/^dry-run: would write \([^ ]*\) \([^ ]*\) = .*/\1	\2/p' "$work/said" | sort -u >"$work/keys"
    [ -s "$work/keys" ] || return
    if cut -f 1 "$work/keys" | grep -vxF "$(tr ' ' '\n' <<<"$domains")" >>"$seen/brell.txt"; then return 1; fi
}

writes() { grep -qxF "$1	$2" "$work/keys"; }

# valuesIn FOLDER: of these keys in a copy: "DOMAIN<tab>KEY<tab>VALUE", the value as in the XML, its line feeds as \001.
valuesIn() {
    local name
    for name in $domains; do
        awk -v OFS='\t' -v domain="$name" '
            function flush() { if (key != "") print domain, key, value; key = value = "" }
            /^\t<key>.*<\/key>$/ { flush(); key = $0; gsub(/^\t<key>|<\/key>$/, "", key); next }
            /^<\/dict>$/ { flush() }
            key != "" && value == "" { sub(/^\t/, ""); value = $0; next }
            key != "" { value = value "\001" $0 }' "$1/$name.plist"
    done | awk -F '\t' 'NR == FNR { known[$1 FS $2]; next } ($1 FS $2) in known' "$work/keys" - | sort
}

# changedSince FOLDER: the keys that now hold another value than in the copy, or another kind: "DOMAIN KEY" a line.
changedSince() {
    copyDomains "$work/now"
    valuesIn "$1" >"$work/then.values"
    valuesIn "$work/now" >"$work/now.values"
    diff "$work/then.values" "$work/now.values" | sed -n 's/^[<>] //p' | cut -f 1,2 | tr '\t' ' ' | sort -u
}

# inOneLine: what is read, as an enumeration.
inOneLine() { paste -s -d , - | sed 's/,/, /g'; }

# putBackKeys: each key as it was, by defaults itself.
putBackKeys() {
    local name key value
    changedSince "$work/before" | while read -r name key; do
        value=$(valuesIn "$work/before" | awk -F '\t' -v d="$name" -v k="$key" '$1 == d && $2 == k { print $3 }')
        if [ -z "$value" ]; then
            defaults delete "$name" "$key"
        else
            defaults write "$name" "$key" "$(printf '%s' "$value" | tr '\001' '\n')"
        fi
    done >/dev/null 2>&1
}

# The value per host and the lock on a file that a check may have left.
putBackMarks() {
    if [ -e "$work/host" ]; then defaults -currentHost delete com.apple.dock tilesize && rm "$work/host"; fi
    if [ -e "$work/locked" ]; then chflags nouchg "$(cat "$work/locked")" && rm "$work/locked"; fi
}

putBack() {
    removeAgents
    putBackMarks
    putBackKeys
    [ -z "$(leftOver)" ]
}

# leftOver: a line for each thing that is not as it was before.
leftOver() {
    changedSince "$work/before"
    loadedAgents
    cat "$work/host" "$work/locked" 2>/dev/null || true
}

# journaled: "DOMAIN KEY TYPE" of each value that is applied now, as the journal says.
journaled() {
    awk -F '"' '
        $2 == "status" { applied = $4 == "applied" }
        $2 == "domain" { domain = $4 }
        $2 == "key" { key = $4 }
        $2 == "original" || $2 == "written" { side = $2 }
        $2 == "type" && side == "written" && applied { print domain, key, $4 }' "$journal/journal.json"
}

# wrongTypes: a line for each value that defaults does not call what the journal does.
wrongTypes() {
    local name key type found
    journaled | while read -r name key type; do
        case $type in
            bool) type=boolean ;;
            int) type=integer ;;
            double) type=float ;;
            stringArray) type=array ;;
        esac
        found=$(defaults read-type "$name" "$key" 2>&1)
        if [ "$found" != "Type is $type" ]; then echo "$name $key ($found)"; fi
    done
}

# notRestored: why the program did not say that it restored everything.
notRestored() { if ! brell --restore-all; then said '^(failed|still active|error)' | head -n 1; fi; }

runRestoreScript() {
    sh "$journal/restore.sh" >"$work/said" 2>&1
    keep '$ sh restore.sh' ''
}

tryEverySetting() {
    brell --apply-all
    conclude "Every setting is applied, or refused with a reason" \
        "$(said '^(applied|refused|warning:) ' >/dev/null || echo 'nothing was'; grep -vE '^(applied|refused|warning:) ' "$work/said")"
    said '^refused' | while read -r _ id why; do skip "Applying ${id%:}" "$why"; done
    conclude "What is applied is stored as the kind of value that it is" "$(wrongTypes | inOneLine)"
    conclude "The program puts everything back" "$(notRestored)"
    conclude "Every value and its kind is as before" "$(changedSince "$work/before" | inOneLine)"
}

# stateOf ID: as the program prints it.
stateOf() {
    brell --status-json
    awk -F '"' -v id="$1" '$2 == "id" { mine = $4 == id } $2 == "state" && mine { print $4 }' "$work/said"
}

mark=$(printf '\357\273\277') # U+FEFF

plant() {
    defaults write com.apple.dock autohide-delay -int 0
    defaults write NSGlobalDomain NSWindowResizeTime '<real>0.15</real>'
    defaults write com.apple.screencapture type -string "${mark}png"
    copyDomains "$work/planted"
}

# expectPlanted WAY: that the keys with hard values, and then all others, are as planted; but the one that another
# program wrote.
expectPlanted() {
    local changed
    changed=$(changedSince "$work/planted" | grep -vxF 'com.apple.dock tilesize')
    conclude "$1 puts back a whole number where Brell wrote a decimal one" "$(grep autohide-delay <<<"$changed")"
    conclude "$1 puts back 0.15 to the last digit" "$(grep NSWindowResizeTime <<<"$changed")"
    if [ "$(defaults read com.apple.screencapture type)" = png ] && ! grep -q "<string>$mark" "$work/planted/com.apple.screencapture.plist"; then
        skip "$1 puts back text that begins with U+FEFF" "defaults itself does not keep it"
    else
        conclude "$1 puts back text that begins with U+FEFF" "$(grep 'screencapture type' <<<"$changed")"
    fi
    conclude "$1 puts back everything else" \
        "$(grep -vE 'autohide-delay|NSWindowResizeTime|screencapture type' <<<"$changed" | inOneLine)"
}

tryHardValues() {
    if ! writes com.apple.dock autohide-delay || ! writes com.apple.dock tilesize ||
        ! writes NSGlobalDomain NSWindowResizeTime || ! writes com.apple.screencapture type; then
        skip "Values that are hard to put back come back" "Brell may not write one of their keys on this Mac"
        return
    fi
    plant
    brell --apply-all
    conclude "A decimal number replaces a whole one" "$(wrongTypes | grep autohide-delay)"
    defaults write com.apple.dock tilesize -int 99
    conclude "What another program writes is noticed" \
        "$(stateOf dock.size | grep -v '^changedOutsideBrell' | sed 's/^/it is said to be /')"
    runRestoreScript
    conclude "restore.sh leaves alone what another program wrote" \
        "$(said 'skip com.apple.dock tilesize .now: 99' >/dev/null || echo 'it did not say so'; said '^skip' | grep -v tilesize | sed 's/ (now: .*//')"
    expectPlanted restore.sh
    conclude "The program puts back, once told to, what another program changed" \
        "$(notRestored; changedSince "$work/planted" | grep tilesize)"
    brell --apply-all
    notRestored >/dev/null
    expectPlanted "The program"
}

tryValuePerHost() {
    local what="A setting with a value per host is refused"
    if ! writes com.apple.dock tilesize || defaults -currentHost read com.apple.dock tilesize >/dev/null 2>&1; then
        skip "$what" "the size of the Dock already has one here" && return
    fi
    echo "the value per host of com.apple.dock tilesize" >"$work/host"
    defaults -currentHost write com.apple.dock tilesize -int 40
    brell --quit-after-capture=dock.size
    conclude "$what" "$(said '^refused dock.size: .* per host' >/dev/null || cat "$work/said")"
    putBackMarks
}

tryLockedFile() {
    local what="A locked preference file is told of and nothing is claimed" file=$home/Library/Preferences/com.apple.screencapture.plist
    if [ -n "$mac" ]; then skip "$what" "only a Mac locks files like that" && return; fi
    if [ ! -f "$file" ]; then skip "$what" "there is none for screenshots" && return; fi
    echo "$file" >"$work/locked"
    chflags uchg "$file"
    brell --apply-all
    conclude "$what" "$(
        said "^warning: .*com.apple.screencapture.plist is locked" >/dev/null || echo 'there is no warning'
        said '^applied shot\.' | head -n 1
    )"
    putBackMarks
    notRestored >/dev/null
}
