# The part of script/verify-mac that tells and keeps what was seen. To be sourced, after frame.sh.
# shellcheck shell=bash disable=SC2154

# tell VERDICT SENTENCE [WHY]
tell() { printf '%-8s %s%s\n' "$1" "$2" "${3:+: $3}" | tee -a "$seen/results.txt"; }

# conclude SENTENCE [WHY]: it holds, or does not for this reason.
conclude() { if [ -z "${2-}" ]; then tell passed "$1"; else tell FAILED "$1" "$2"; fi; }

skip() { tell skipped "$1" "$2"; }

# brell WORD...: the program, over the journal in the folder journal. What it says is in the file said.
brell() {
    local status=0
    "$program" ${mac:+"--sample-mac=$mac"} "--journal-directory=$journal" "$@" >"$work/said" 2>&1 </dev/null || status=$?
    keep "$ corvane-brell $*" "(exit status $status)"
    return $status
}

# keep COMMAND END: what the command said, between these lines; but no value of the user's.
keep() {
    {
        echo "$1"
        grep -vE '^      "|"effective"' "$work/said" | sed 's/ (now: .*//'
        echo "$2"
    } >>"$seen/brell.txt"
}

# said PATTERN: the lines of what the program said last that match.
said() { grep -E "$1" "$work/said"; }

describeSystem() {
    {
        sw_vers
        uname -m
        "$program" --version
    } >"$seen/system.txt" 2>&1
}

tryIndexStatus() {
    local what="mdutil says whether the startup volume is indexed"
    mdutil -s / >"$seen/mdutil.txt" 2>&1 </dev/null
    if grep -qE 'Indexing (enabled|disabled)\.' "$seen/mdutil.txt"; then
        conclude "$what"
    else
        conclude "$what" "$(head -n 2 "$seen/mdutil.txt" | tr '\n' ' ')"
    fi
}

# The list itself names what the user has installed, so only its size is kept.
tryTaskDatabase() {
    local what="sfltool gives the list of background items" status=0 started=$SECONDS
    if [ "$database" = no ]; then skip "$what" "not asked for with --task-database" && return; fi
    sfltool dumpbtm >"$work/items" 2>"$work/said" </dev/null || status=$?
    echo "exit status $status after $((SECONDS - started)) s, $(grep -c 'UUID:' "$work/items") items" >"$seen/sfltool.txt"
    if [ "$status" -eq 0 ]; then conclude "$what"; else conclude "$what" "$(tail -n 1 "$work/said")"; fi
}

askAboutPassword() {
    local what="macOS asked for no password" answer
    if [ "$sure" = yes ] || [ ! -t 0 ]; then skip "$what" "nobody was there to say" && return; fi
    printf 'Did macOS ask for a password meanwhile? [y/N] '
    read -r answer || answer=
    case $answer in
        [yY]*) conclude "$what" "it did$([ "$database" = no ] || echo ", and --task-database may be why")" ;;
        *) conclude "$what" ;;
    esac
}

# replaced TEXT WORD: what makes sed put the word in the place of this text, where no letter or digit goes on.
replaced() {
    local text
    text=$(printf '%s' "$1" | sed 's/[][\.*^$|]/\\&/g')
    printf 's|^%s|%s|; s|\([^A-Za-z0-9]\)%s$|\\1%s|; s|\([^A-Za-z0-9]\)%s\([^A-Za-z0-9]\)|\\1%s\\2|g\n' \
        "$text" "$2" "$text" "$2" "$text" "$2"
}

# Takes the user's name and folders out of what was seen, packs it and ends.
finish() {
    local file archive status=0
    for file in "$seen"/*; do
        sed -e "$(replaced "$work" WORK)" -e "$(replaced "$home" HOME)" -e "$(replaced "$root" SOURCE)" \
            -e "$(replaced "$(id -un)" USER)" -e "$(replaced "$(hostname)" HOST)" "$file" >"$work/clean"
        mv "$work/clean" "$file"
    done
    if grep -q '^FAILED' "$seen/results.txt"; then status=1; fi
    archive=$root/build/verify-mac/seen-$(date +%Y%m%d-%H%M%S).tar.gz
    mkdir -p "$(dirname "$archive")" && tar -C "$work" -czf "$archive" seen
    printf '%s passed, %s failed, %s skipped. What was seen is in %s\n' "$(grep -c ^passed "$seen/results.txt")" \
        "$(grep -c ^FAILED "$seen/results.txt")" "$(grep -c ^skipped "$seen/results.txt")" "$archive"
    if [ -z "$(leftOver)" ]; then rm -rf "$work"; fi
    exit $status
}
