# What the tests of the scripts share. To be sourced, by a script whose tests are its functions named test...; it ends
# with runTests.
# shellcheck shell=bash
. "$(dirname "${BASH_SOURCE[0]}")/../../script/lib/frame.sh"
export LC_ALL=C # else the sed of macOS refuses bytes that are no text, and each Mac has its own order

# fail SENTENCE: ends the test.
fail() {
    echo "$1" >&2
    exit 1
}

# expectRefusal WORDS COMMAND...: it fails, and says these words.
expectRefusal() {
    local sentence=$1 said
    shift
    if said=$("$@" 2>&1); then fail "$* did not refuse; it said: $said"; fi
    case $said in *"$sentence"*) ;; *) fail "$* did not say \"$sentence\" but: $said" ;; esac
}

# expectText EXPECTED ACTUAL
expectText() { if [ "$1" != "$2" ]; then fail "Expected: $1"$'\n'"Actual:   $2"; fi; }

# Each in a process of its own, in a folder of its own, as the scripts run: the first error ends it.
runTests() {
    local test failed=0 folder
    for test in $(declare -F | sed -n 's/^declare -f \(test.*\)/\1/p'); do
        folder=$(mktemp -d) && folder=$(cd "$folder" && pwd -P)
        (set -euo pipefail && cd "$folder" && "$test" </dev/null)
        # shellcheck disable=SC2181
        if [ $? -ne 0 ]; then
            echo "FAILED  $test"
            failed=1
        else
            echo "passed  $test"
        fi
        rm -rf "$folder"
    done
    exit $failed
}
