#!/bin/sh
# Corvane Brell restore script, written 2026-11-15T12:00:00Z.
# Run it in Terminal (sh restore.sh) to put back every setting Brell changed, newest change first.
# A preference is restored only if it still holds the value Brell wrote; arrays and keys Brell removed are restored unconditionally.
set -u
restore() { domain="$1"; key="$2"; expect="$3"; shift 3
  current="$(defaults read "$domain" "$key" 2>/dev/null)"
  if [ "$current" = "$expect" ]; then "$@"; else echo "skip $domain $key (now: ${current:-absent})"; fi; }

echo 'Nothing to restore: Brell has no active change on record.'

echo 'Done. Relaunch Finder and the Dock, or log out and back in, for every change to take effect.'
