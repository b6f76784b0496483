#!/bin/sh
# Corvane Brell restore script, written 2026-11-15T12:00:00Z.
# Run it in Terminal (sh restore.sh) to put back every setting Brell changed, newest change first.
# A preference is restored only if it still holds the value Brell wrote; arrays and keys Brell removed are restored unconditionally.
set -u
restore() { domain="$1"; key="$2"; expect="$3"; shift 3
  current="$(defaults read "$domain" "$key" 2>/dev/null)"
  if [ "$current" = "$expect" ]; then "$@"; else echo "skip $domain $key (now: ${current:-absent})"; fi; }

# misc.always_show_scrollbars (applied 2026-11-15T12:00:00Z)
restore -g 'NSWindowResizeTime' '2' defaults write -g 'NSWindowResizeTime' -float 2.0
defaults write -g 'AppleLanguages' -array 'en-GB' 'it'
# dock.position (reset to default 2026-11-15T11:00:00Z)
defaults write 'com.apple.dock' 'orientation' -string 'it'\''s left'
# dock.autohide (applied 2026-11-15T11:00:00Z)
restore 'com.apple.dock' 'autohide' '1' defaults delete 'com.apple.dock' 'autohide'
# agent:org.example.sync (applied 2026-11-15T10:00:00Z)
# agent:org.example.sync (applied 2026-11-15T10:00:00Z)
launchctl disable "gui/$(id -u)/"'org.example.sync'
launchctl bootstrap "gui/$(id -u)" '/Users/o'\''hara/Sync.plist' 2>/dev/null || true

echo 'Done. Relaunch Finder and the Dock, or log out and back in, for every change to take effect.'
