# The part of script/package that makes the bundle work on other Macs than the one it was built on, and sees to it that
# it does. To be sourced. A bundle is named without links in its path.
# shellcheck shell=bash

# isMachineCode FILE: by its first bytes, for one processor or for several.
isMachineCode() {
    case $(head -c 4 "$1" | od -An -tx1 | tr -d ' \n') in
        cffaedfe | cefaedfe | feedfacf | feedface | cafebabe | cafebabf) ;;
        *) return 1 ;;
    esac
}

# machineCode APP: every program, library and plug-in in it, one a line. Modes and names tell nothing: Homebrew's
# libraries can't be executed, and those of frameworks have no ending.
machineCode() {
    find "$1/Contents" -type f | sort | while IFS= read -r file; do
        if isMachineCode "$file"; then printf '%s\n' "$file"; fi
    done
}

program() { echo "$1/Contents/MacOS/CorvaneBrell"; }

# loads WHAT FILE: what its load commands say, one a line: its rpaths, the libraries it "needs", the "oldest" macOS.
loads() {
    otool -l "$2" | awk -v what="$1" '
        function said() { sub(/^ *[a-z]+ /, ""); sub(/ \(offset [0-9]+\)$/, ""); return $0 }
        $1 == "cmd" { command = $2 }
        what == "rpaths" && command == "LC_RPATH" && $1 == "path" { print said() }
        what == "needs" && command ~ /_DYLIB$/ && command != "LC_ID_DYLIB" && $1 == "name" { print said() }
        what == "oldest" && command == "LC_BUILD_VERSION" && $1 == "minos" { print $2 }
        what == "oldest" && command == "LC_VERSION_MIN_MACOSX" && $1 == "version" { print $2 }'
}

# expanded APP FILE PATH: the path as it is meant in this file of the bundle, without "." and "..".
expanded() {
    local path=$3
    case $path in
        @executable_path*) path=$1/Contents/MacOS${path#@executable_path} ;;
        @loader_path*) path=$(dirname "$2")${path#@loader_path} ;;
    esac
    echo "$path" | awk -F / '{
        for (i = 2; i <= NF; ++i)
            if ($i == "..") { if (count) --count } else if ($i != "" && $i != ".") part[++count] = $i
        for (i = 1; i <= count; ++i) printf "/%s", part[i]
        print ""
    }'
}

# strayRpaths APP FILE: those of this file that lead out of the bundle.
strayRpaths() {
    loads rpaths "$2" | while IFS= read -r rpath; do
        case $(expanded "$1" "$2" "$rpath")/ in "$1"/*) ;; *) printf '%s\n' "$rpath" ;; esac
    done
}

# holds APP FILE NAME: whether the bundle has what this file of it needs under this name, or the system has.
holds() {
    local app=$1 file=$2 name=$3 place rpath from
    case $name in
        /usr/lib/* | /System/*) return ;;
        @rpath/*)
            for from in "$file" "$(program "$app")"; do
                while IFS= read -r rpath; do
                    if holds "$app" "$from" "$rpath/${name#@rpath/}"; then return; fi
                done < <(loads rpaths "$from")
            done
            return 1
            ;;
    esac
    place=$(realpath "$(expanded "$app" "$file" "$name")" 2>/dev/null) || return
    case $place in "$app"/Contents/*) [ -f "$place" ] ;; *) return 1 ;; esac
}

# leadsOutside APP: a line for each thing that only the Mac that made the bundle can give it.
leadsOutside() {
    local app=$1 file name rpath
    machineCode "$app" | while IFS= read -r file; do
        strayRpaths "$app" "$file" | while IFS= read -r rpath; do
            echo "${file#"$app"/} looks for libraries in $rpath"
        done
        loads needs "$file" | while IFS= read -r name; do
            if ! holds "$app" "$file" "$name"; then echo "${file#"$app"/} needs $name"; fi
        done
    done
}

# tooNew APP VERSION: a line for each file that needs a newer macOS than this one.
tooNew() {
    local file oldest
    machineCode "$1" | while IFS= read -r file; do
        loads oldest "$file" | while IFS= read -r oldest; do
            if [ "$(printf '%s\n' "$2" "$oldest" | sort -V | tail -n 1)" != "$2" ]; then
                echo "${file#"$1"/} needs macOS $oldest, and the bundle promises $2"
            fi
        done
    done
}

# gatherLibraries APP: copies Qt, its plug-ins and every library into it. macdeployqt ends with 0 whatever happened,
# and leaves rpaths of Homebrew's and of the build tree.
gatherLibraries() {
    local app=$1 said file rpath
    said=$(macdeployqt "$app" "-libpath=$(brew --prefix)/lib" 2>&1) || { echo "$said" >&2 && return 1; }
    if grep 'ERROR:' <<<"$said" >&2; then return 1; fi
    chmod -R u+w "$app"
    machineCode "$app" | while IFS= read -r file; do
        strayRpaths "$app" "$file" | while IFS= read -r rpath; do
            install_name_tool -delete_rpath "$rpath" "$file"
        done
    done
    if ! loads rpaths "$(program "$app")" | grep -qxF '@executable_path/../Frameworks'; then
        install_name_tool -add_rpath '@executable_path/../Frameworks' "$(program "$app")"
    fi
}

# checkBundle APP: refuses one that does not hold all it needs, or does not run where it promises to.
checkBundle() {
    local app=$1 wrong
    plutil -lint "$app/Contents/Info.plist" >/dev/null || return
    wrong=$(leadsOutside "$app" && tooNew "$app" "$(plutil -extract LSMinimumSystemVersion raw "$app/Contents/Info.plist")")
    if [ -z "$wrong" ]; then return; fi
    printf 'package: the bundle would work only on this Mac:\n%s\n' "$wrong" >&2
    return 1
}

# staysUp PROGRAM LOG: whether it still runs some seconds after it was started; what it says goes to LOG.
staysUp() {
    local pid status=0
    "$1" >"$2" 2>&1 </dev/null &
    pid=$!
    sleep 5
    kill "$pid" 2>/dev/null || status=1
    wait "$pid" 2>/dev/null || true
    if [ "$status" -ne 0 ]; then
        { tail -n 20 "$2" && echo "package: the finished program ends as soon as it is started."; } >&2
    fi
    return "$status"
}

# checkLoaded APP LOG: refuses a program that loaded anything but what is in the bundle or part of macOS, by what dyld
# said in LOG.
checkLoaded() {
    local loaded
    loaded=$(sed -n -e 's|/MacOS/\.\./|/|' -e 's/^dyld\[[0-9]*\]: <[^>]*> //p' "$2")
    if ! grep -qF "$1/Contents/Frameworks/" <<<"$loaded"; then
        echo "package: dyld did not say what the program loaded." >&2
        return 1
    fi
    loaded=$(grep -vE '^(/usr/lib|/System|/Library)/' <<<"$loaded" | grep -vF "$1/Contents/" || true)
    if [ -z "$loaded" ]; then return; fi
    printf 'package: the program loads what other Macs do not have:\n%s\n' "$loaded" >&2
    return 1
}
