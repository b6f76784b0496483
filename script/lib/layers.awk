# Reads sources named as they stand in the repository and prints every include that points up, or sideways into
# another subsystem.
function layerOf(path,    i) {
    for (i = 1; i <= count; i++)
        if (index(path, prefix[i]) == 1) return i
    return 0
}

function rankOf(path) { return rank[layerOf(path)] }

function report(what) {
    printf "%s:%d: %s\n", FILENAME, FNR, what
    wrong = 1
}

# The first prefix that fits counts: what stands beside the folders puts a run together.
BEGIN {
    count = split("BrellCore/Support/ 1 BrellCore/Preferences/ 2 BrellCore/Catalog/ 3 BrellCore/Journal/ 4 " \
                  "BrellCore/Engine/ 5 BrellCore/Background/ 6 BrellCore/Review/ 7 CorvaneBrell/Platform/ 8 " \
                  "CorvaneBrell/SampleMac/ 9 CorvaneBrell/Headless/ 11 CorvaneBrell/Model/ 11 " \
                  "CorvaneBrell/Window/ 12 CorvaneBrell/Pictures/ 13 CorvaneBrell/main.cpp 13 CorvaneBrell/ 10",
                  words, " ") / 2
    for (i = 1; i <= count; i++) {
        prefix[i] = words[2 * i - 1]
        rank[i] = words[2 * i]
    }
}

/^[ \t]*#[ \t]*(include|import)[ \t]*"/ {
    split($0, quoted, "\"")
    included = quoted[2]
    if (!layerOf(included)) {
        if (included !~ /\.moc$/) report("\"" included "\" is in no layer; write it from the root of the repository")
    } else if (rankOf(included) > rankOf(FILENAME)) {
        report(prefix[layerOf(FILENAME)] " must not know " included)
    } else if (rankOf(included) == rankOf(FILENAME) && layerOf(included) != layerOf(FILENAME)) {
        report(prefix[layerOf(FILENAME)] " and its neighbour must not know each other: " included)
    }
}

/^[ \t]*#[ \t]*(include|import)[ \t]*<(Q[A-Z]|Qt|q[a-z]*\.h)/ && rankOf(FILENAME) < 12 {
    report("Qt has no place below the window: " $0)
}

END { exit wrong }
