#!/usr/bin/env bash
# shellcheck disable=SC2317
#
# What script/lib/layers.awk lets pass and what it refuses, over sources made up here.
. "$(dirname "$0")/testing.sh"

model=CorvaneBrell/Model

# makeSource PATH INCLUDED...
makeSource() {
    mkdir -p "$(dirname "$1")"
    printf '#include "%s"\n' "${@:2}" >"$1"
}
check() { find . -type f | sed 's|^\./||' | sort | xargs awk -f "$root/script/lib/layers.awk"; }

# Arrows that point one way, parts that are built on the header of their whole, and a program above all.
makeHouse() {
    makeSource BrellCore/Support/Text.h BrellCore/Support/Other.h
    makeSource CorvaneBrell/Model/State.h BrellCore/Support/Text.h
    makeSource CorvaneBrell/Model/StateParts.h CorvaneBrell/Model/State.h
    makeSource CorvaneBrell/Model/State.linux.cpp CorvaneBrell/Model/State.h CorvaneBrell/Model/StateParts.h
    makeSource CorvaneBrell/Window/Page.h CorvaneBrell/Model/State.h
    makeSource CorvaneBrell/Window/Rows/Row.h CorvaneBrell/Window/Page.h
    makeSource CorvaneBrell/main.cpp CorvaneBrell/Window/Page.h CorvaneBrell/Model/State.h
}

testArrowsOneWayPass() {
    makeHouse
    expectText "" "$(check)"
}

testFilesThatIncludeEachOtherAroundACornerAreRefused() {
    makeHouse
    makeSource CorvaneBrell/Model/Words.h CorvaneBrell/Model/State.h
    makeSource CorvaneBrell/Model/Proof.cpp CorvaneBrell/Model/Words.h
    makeSource CorvaneBrell/Model/State.mac.cpp CorvaneBrell/Model/Proof.h
    expectRefusal "a cycle of files: $model/State -> $model/Proof -> $model/Words -> $model/State" check
}

testFoldersThatIncludeEachOtherAreRefused() {
    makeHouse
    makeSource CorvaneBrell/Window/Window.cpp CorvaneBrell/Window/Rows/Row.h
    expectRefusal "a cycle of folders: CorvaneBrell/Window -> CorvaneBrell/Window/Rows -> CorvaneBrell/Window" check
}

testWhatPointsUpIsRefused() {
    makeHouse
    makeSource BrellCore/Support/Text.cpp BrellCore/Support/Text.h CorvaneBrell/Model/State.h
    expectRefusal "BrellCore/Support/Text.cpp:2: BrellCore/Support/ must not know $model/State.h" check
}

runTests
