#!/usr/bin/env bash
# drive-window.sh PROGRAM DIR
#
# Opens the window over a plain sample Mac in DIR, on the X server of DISPLAY, and drives it with real key presses:
# finds a setting by another word for it, switches it on, undoes it. The preference file is read each time.
set -euo pipefail

program=$1
folder=$2
mac=$folder/mac
file=$mac/Users/sam/Library/Preferences/com.apple.finder.plist

# The folder must be there: a sample Mac that the window makes itself has a past, and asks about it.
"$(dirname "$program")/corvane-brell" --status-json --sample-mac "$mac" >"$folder/status.json"
cp "$file" "$folder/before.plist"

hasEnded() { ! kill -0 "$window" 2>/dev/null; }
isOn() { tr -d '\n\t' <"$file" | grep -q '<key>AppleShowAllFiles</key><true/>'; }
isAsBefore() { cmp -s "$file" "$folder/before.plist"; }

# waitUntil SENTENCE COMMAND...: for at most ten seconds.
waitUntil() {
    local sentence=$1 tries=0
    shift
    until "$@"; do
        tries=$((tries + 1))
        if [ "$tries" -gt 100 ]; then
            echo "Not seen within ten seconds: $sentence" >&2
            exit 1
        fi
        sleep 0.1
    done
    echo "Seen: $sentence"
}

"$program" --sample-mac "$mac" --open-group journal &
window=$!
trap 'kill "$window" 2>/dev/null || true' EXIT
isOpen() { xdotool search --onlyvisible --name "Corvane Brell" >/dev/null 2>&1; }
waitUntil "the window is open" isOpen
id=$(xdotool search --onlyvisible --name "Corvane Brell" | tail -n 1)
xdotool windowfocus --sync "$id" || true  # without a window manager nobody else gives it
press() { xdotool key --clearmodifiers "$@"; }

press ctrl+f
xdotool type --clearmodifiers "dotfiles"
press Down   # into the results: the switch of the first row
press space
waitUntil "the space bar shows hidden files" isOn
press ctrl+z
waitUntil "the file is as it was, byte for byte" isAsBefore
press ctrl+q
waitUntil "the window has closed" hasEnded
