#!/usr/bin/env bash
# shellcheck disable=SC2016,SC2317
#
# script/verify-mac over sample Macs: one on which all is well, one on which things go wrong, one on which it is stopped.
# BRELL_PROGRAM and BRELL_STAND_INS say where the build has put what it needs.
. "$(dirname "$0")/testing.sh"

: "${BRELL_PROGRAM:?}" "${BRELL_STAND_INS:?}"
realProgram=$BRELL_PROGRAM
if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi # a flush of each file to a busy disk would take most of the time

# A Mac, and a folder of stand-ins for what this test changes; nothing is waited for.
makeMac() {
    export BRELL_SAMPLE_MAC=$PWD/mac DEFAULTS_FOLDER=$PWD/mac/Users/sam/Library/Preferences TMPDIR=$PWD
    export PATH=$BRELL_STAND_INS:$root/script/lib/mac-stand-ins:$PATH
    mkdir tools
    standIn sleep 'exit 0'
    export BRELL_STAND_INS=$PWD/tools:$BRELL_STAND_INS
    "$realProgram" --sample-mac="$PWD/mac" --status-json >/dev/null
    condition >before
}

# standIn NAME SCRIPT
standIn() { printf '#!/bin/sh\n%s\n' "$2" >"tools/$1" && chmod +x "tools/$1"; }

# programThat CASES: one that after it was itself does what the case of its words says; but not in a dry run.
programThat() {
    standIn corvane-brell "\"$realProgram\" \"\$@\"; status=\$?; case \" \$* \" in *--dry-run*) ;; $1 esac; exit \$status"
    export BRELL_PROGRAM=$PWD/tools/corvane-brell
}

verify() { "$root/script/verify-mac" --sample-mac "$PWD/mac" "$@" >said 2>&1; }

# All that verify-mac may have changed; not that launchd remembers to have been told of an agent.
condition() {
    local file
    for file in "$DEFAULTS_FOLDER"/*.plist; do
        defaults export "$(basename "$file" .plist)" - | sed -n "s|^	|${file##*/} |p"
    done
    ls -A mac/Users/sam/Library/LaunchAgents
    launchctl print gui/501
    launchctl print-disabled gui/501 | grep -v '"org.example.brell-verify.* => enabled'
    grep string mac/private/var/db/preference-marks.plist 2>/dev/null || true
}

unpackSeen() {
    local archive
    archive=$(sed -n 's/.*What was seen is in //p' said)
    tar -xzf "$archive" && rm "$archive"
}

expectAsBefore() {
    condition >after
    if ! diff before after; then cat said && fail "the Mac is not as before"; fi
}

testAllIsWellAndNothingOfTheUsersIsKept() {
    makeMac
    verify --yes --task-database || { cat said && fail "it failed"; }
    expectText '' "$(grep ^FAILED said || true)"
    expectText 2 "$(grep -c ^skipped said)"
    if [ "$(grep -c ^passed said)" -lt 28 ]; then cat said && fail "too few checks"; fi
    expectAsBefore
    expectText '' "$(ls -d brell-verify.* 2>/dev/null || true)"

    unpackSeen
    for file in results system brell launchctl mdutil sfltool; do [ -s "seen/$file.txt" ] || fail "no $file.txt"; done
    grep -q '^$ launchctl bootout gui/501/org.example.brell-verify.deaf$' seen/launchctl.txt
    if grep -rE "$PWD|duskwatch|clmv" seen; then fail "something of the user's is named"; fi
}

testWhatGoesWrongIsTold() {
    makeMac
    programThat '*" --restore-all "*) defaults write com.apple.finder ShowPathbar -bool false;;
        *--toggle-agent=*.slow*) launchctl enable gui/501/org.example.brell-verify.slow
            launchctl bootstrap gui/501 "$BRELL_SAMPLE_MAC/Users/sam/Library/LaunchAgents/org.example.brell-verify.slow.plist";;
        *" --apply-all "*) defaults write com.apple.dock autohide -string yes;;'
    standIn mdutil 'echo "Error: unknown indexing state."'
    if verify --yes; then cat said && fail "it did not fail"; fi
    unpackSeen
    if grep -r 'now: yes' seen; then fail "a value is named"; fi
    for line in \
        'What is applied is stored as the kind of value that it is: com.apple.dock autohide (Type is string)' \
        'Every value and its kind is as before: com.apple.finder ShowPathbar' \
        'restore.sh leaves alone what another program wrote: skip com.apple.dock autohide' \
        'An agent that takes 8 seconds to end is turned off: it is still loaded' \
        'mdutil says whether the startup volume is indexed: Error: unknown indexing state. '; do
        grep -qxF "FAILED   $line" said || { cat said && fail "it was not told: $line"; }
    done
    grep -qx 'passed   Everything is as it was before' said
    expectAsBefore
}

testStoppedInTheMiddleItPutsEverythingBack() {
    local point
    makeMac
    for point in '*" --apply-all "*' '*--toggle-agent=*' '*--quit-after-capture=*'; do
        programThat "$point) kill -TERM \$PPID;;"
        if verify --yes; then cat said && fail "it was not stopped"; fi
        grep -q '^Stopped; putting everything back.$' said
        expectAsBefore
    done
    programThat '*" --apply-all "*) kill -KILL $PPID;;'
    if verify --yes 2>/dev/null; then fail "it was not killed"; fi
    if diff before <(condition) >/dev/null; then fail "nothing was changed when it was killed"; fi
    verify --put-back brell-verify.*
    expectAsBefore
}

testItBeginsOnlyWhenItMay() {
    makeMac
    expectRefusal 'Nothing was done.' "$root/script/verify-mac" --sample-mac "$PWD/mac"
    expectRefusal 'unknown word --all' "$root/script/verify-mac" --all
    expectRefusal 'is no folder of a run' "$root/script/verify-mac" --put-back "$PWD"
    standIn pgrep 'exit 0'
    expectRefusal 'Corvane Brell is open' "$root/script/verify-mac" --yes --sample-mac "$PWD/mac"
    standIn id 'echo 0' && rm tools/pgrep
    expectRefusal 'does not run as root' "$root/script/verify-mac" --yes --sample-mac "$PWD/mac"
    standIn defaults 'exit 1' && rm tools/id
    expectRefusal 'does not run here' "$root/script/verify-mac" --yes --sample-mac "$PWD/mac"
    rm tools/defaults
    expectAsBefore
}

runTests
