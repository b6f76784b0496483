# The part of script/verify-mac that tries LaunchAgents, with some of its own. To be sourced, after results.sh.
# shellcheck shell=bash disable=SC2154

labels=org.example.brell-verify

fileOf() { echo "$agents/$1.plist"; }

isLoaded() { launchctl print "$domain/$1" >/dev/null 2>&1; }
isDisabled() { grep -qE "\"$1\" => (disabled|true)" <<<"$(launchctl print-disabled "$domain" 2>/dev/null)"; }

# loadedAgents: those of ours that are there in any way.
loadedAgents() {
    local name
    for name in plain slow deaf; do
        if isLoaded "$labels.$name" || [ -e "$(fileOf "$labels.$name")" ]; then echo "$labels.$name"; fi
    done
}

# waitUntilGone LABEL: for at most 40 seconds; launchd ends what does not go by itself before that.
waitUntilGone() {
    local tries=0
    while isLoaded "$1" && [ $((tries += 1)) -le 40 ]; do sleep 1; done
    ! isLoaded "$1"
}

# What launchd keeps of an agent that is gone is that it may run; no command takes that out.
removeAgents() {
    local name label
    for name in plain slow deaf; do
        label=$labels.$name
        if isLoaded "$label"; then launchctl bootout "$domain/$label" >/dev/null 2>&1; fi
        rm -f "$(fileOf "$label")"
        if isDisabled "$label"; then launchctl enable "$domain/$label" >/dev/null 2>&1; fi
    done
    for name in plain slow deaf; do waitUntilGone "$labels.$name"; done
    rm -f "$agents/$labels.renamed.plist"
    if [ -e "$work/noFolder" ]; then rmdir "$agents" 2>/dev/null; fi
}

# addAgent LABEL SCRIPT: loaded, as after a login. launchd waits 20 seconds before it ends one by force.
addAgent() {
    if [ ! -d "$agents" ]; then mkdir -p "$agents" && touch "$work/noFolder"; fi
    cat >"$(fileOf "$1")" <<END
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Label</key>
	<string>$1</string>
	<key>ProgramArguments</key>
	<array>
		<string>/bin/sh</string>
		<string>-c</string>
		<string>$2</string>
	</array>
	<key>RunAtLoad</key>
	<true/>
	<key>ExitTimeOut</key>
	<integer>20</integer>
</dict>
</plist>
END
    answer bootstrap "$domain" "$(fileOf "$1")"
    sleep 1 # or a shell that has just been started has no trap yet
}

# answer WORD...: what launchctl says and how long it takes, kept to become a sample; of others' agents nothing.
answer() {
    local status=0 started=$SECONDS
    launchctl "$@" >"$work/answer" 2>&1 </dev/null || status=$?
    {
        echo "$ launchctl $*"
        if [ "$1" = print-disabled ]; then grep -E "^	[a-z{}]|$labels" "$work/answer"; else cat "$work/answer"; fi
        echo "(exit status $status after $((SECONDS - started)) s)"
    } >>"$seen/launchctl.txt"
    return $status
}

# notOff LABEL: why an agent does not count as turned off. One that does not go in time may be reported so, when an
# active change still says how to put it back.
notOff() {
    if brell "--toggle-agent=$1"; then
        if isLoaded "$1"; then echo "it is still loaded"; fi
        if ! isDisabled "$1"; then echo "it would come back at the next login"; fi
    elif ! said "^refused $1: .*\.\$" >/dev/null; then
        echo "no sentence says why not"
    elif ! grep -qF "$1" "$journal/restore.sh"; then
        echo "no way back is kept after \"$(said '^refused' | cut -d : -f 2-)\""
    elif ! waitUntilGone "$1"; then
        echo "it never went"
    fi
}

# notBack LABEL: why it is not as it was before it was turned off.
notBack() {
    notRestored
    if ! isLoaded "$1"; then echo "it is not loaded"; fi
    if isDisabled "$1"; then echo "it is still turned off"; fi
}

# tryAgent NAME SENTENCE SCRIPT
tryAgent() {
    local label=$labels.$1
    addAgent "$label" "$3"
    if ! isLoaded "$label"; then conclude "$2 is loaded" "launchctl says: $(tail -n 2 "$seen/launchctl.txt" | head -n 1)" && return; fi
    answer print "$domain/$label"
    conclude "$2 is turned off" "$(notOff "$label" | head -n 1)"
    answer print "$domain/$label"
    answer print-disabled "$domain"
    conclude "$2 comes back" "$(notBack "$label" | head -n 1)"
    answer bootout "$domain/$label"
    answer print "$domain/$label"
    waitUntilGone "$label" || true
    rm "$(fileOf "$label")"
}

# notAllowedAgain LABEL: why an agent without a file is not as it can be: on at the next login of whoever brings one.
notAllowedAgain() {
    brell --restore-all || echo "restoring failed"
    if ! said "^restored .*$1.*\.\$" >/dev/null; then echo "no sentence says that its file is gone"; fi
    if isLoaded "$1"; then echo "it is loaded without a file"; fi
    if isDisabled "$1"; then echo "it is still turned off"; fi
}

# An agent whose file has another name, or is gone, when it is to come back.
tryMissingFile() {
    local label=$labels.plain file renamed=$agents/$labels.renamed.plist
    file=$(fileOf "$label")
    addAgent "$label" 'exec sleep 3600'
    brell "--toggle-agent=$label"
    mv "$file" "$renamed"
    conclude "An agent whose file is renamed comes back" "$(notBack "$label" | head -n 1)"
    launchctl bootout "$domain/$label" >/dev/null 2>&1
    waitUntilGone "$label" || true
    rm "$renamed"

    addAgent "$label" 'exec sleep 3600'
    brell "--toggle-agent=$label"
    rm "$file"
    conclude "An agent whose file is removed is allowed again" "$(notAllowedAgain "$label" | head -n 1)"
}
