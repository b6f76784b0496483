# What the scripts share: where things are, how a preset is built, how a command is kept quiet. To be sourced.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)

# The comment at the top of a script is its help.
showHelp() { awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "$0"; }

# refuse SENTENCE: how a script answers words it can't take.
refuse() {
    echo "${0##*/}: $1 Try $0 --help." >&2
    exit 2
}

# quietly COMMAND...: its output appears, on standard error, only when it fails.
quietly() {
    local log status=0
    log=$(mktemp "${TMPDIR:-/tmp}/brell.XXXXXX")
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if [ "$status" -ne 0 ]; then cat "$log" >&2; fi
    rm -f "$log"
    return "$status"
}

cores() { getconf _NPROCESSORS_ONLN 2>/dev/null || echo 2; }

# llvmTool NAME: the release that the sources are checked with, or else the one at hand.
llvmTool() {
    local candidate
    for candidate in "$1-16" "$1" "/opt/homebrew/opt/llvm/bin/$1" "/usr/local/opt/llvm/bin/$1"; do
        if command -v "$candidate" >/dev/null; then
            echo "$candidate"
            return
        fi
    done
    echo "$1 is missing: script/bootstrap --check installs it." >&2
    return 1
}

# sourceFiles PATTERN...: every file of ours whose name matches, also those git does not know yet.
sourceFiles() {
    (
        cd "$root" || exit
        if ! git ls-files --cached --others --exclude-standard -- "$@" 2>/dev/null; then
            local pattern
            for pattern in "$@"; do find . -path ./build -prune -o -path "./$pattern" -type f -print; done |
                sed 's|^\./||'
        fi
    ) | sort -u | while IFS= read -r file; do
        if [ -f "$root/$file" ]; then printf '%s\n' "$file"; fi
    done
}

# configurePreset PRESET [CMAKE-WORD...]: only when something that the build can't notice itself has changed: the
# presets, or where the tree stands. Both leave old settings in the cache.
configurePreset() {
    local preset=$1 folder=$root/build/$1 fresh=()
    shift
    if [ "$folder/.configured" -nt "$root/CMakePresets.json" ] && [ -f "$folder/build.ninja" ] &&
        grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
        return
    fi
    if [ -f "$folder/CMakeCache.txt" ]; then fresh=(--fresh); fi
    if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=ccache; fi
    (cd "$root" && cmake --preset "$preset" ${fresh[@]+"${fresh[@]}"} "$@") || return
    touch "$folder/.configured"
}

# buildPreset PRESET [TARGET...]: configures where needed and builds; one at a time in one folder.
buildPreset() {
    local preset=$1 folder=$root/build/$1 targets=() words=()
    shift
    if [ $# -gt 0 ]; then targets=(--target "$@"); fi
    if [ "$preset" = fuzz ]; then
        words=(-DCMAKE_CXX_COMPILER="$(llvmTool clang++)") || return
    fi
    mkdir -p "$folder"
    (
        if command -v flock >/dev/null; then
            exec 9>"$folder/.lock"
            flock 9
        fi
        configurePreset "$preset" ${words[@]+"${words[@]}"} &&
            cmake --build "$folder" --parallel "$(cores)" ${targets[@]+"${targets[@]}"} -- --quiet
    )
}

# Newer kernels scatter memory more widely than the sanitizers of these compilers allow for.
withoutScatter() {
    if setarch "$(uname -m)" -R true 2>/dev/null; then setarch "$(uname -m)" -R "$@"; else "$@"; fi
}

# The fuzz targets that were built, by name.
fuzzTargets() { find "$root/build/fuzz/Fuzz" -maxdepth 1 -type f -perm -u+x -exec basename {} \; | sort; }
