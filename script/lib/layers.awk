# Reads sources named as they stand in the repository and prints every include that points up, or sideways into
# another subsystem, and every cycle of files or of folders.
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

# A header and the sources that belong to it are one unit, whatever the system or the configuration.
function unitOf(path) {
    sub(/(\.(mac|linux|shipping|development))?\.(h|cpp|mm)$/, "", path)
    return path
}

# A program's main file stands above the folder it lies in.
function folderOf(path) {
    if (path !~ /[Mm]ain\.cpp$/) sub(/\/[^\/]*$/, "", path)
    return path
}

function isHeader(path) { return path ~ /\.h$/ }

function connect(graph, from, to) {
    if (from != to && !((graph, from, to) in connected)) {
        connected[graph, from, to] = 1
        edges[graph, from, ++degree[graph, from]] = to
        if (degree[graph, from] == 1) nodes[graph, ++size[graph]] = from
    }
}

# Whether headers alone lead from one unit to another.
function reaches(from, to, seen,    i) {
    if (from == to) return 1
    if (from in seen) return 0
    seen[from] = 1
    for (i = 1; i <= degree["headers", from]; i++)
        if (reaches(edges["headers", from, i], to, seen)) return 1
    return 0
}

# Walks on from a node; `trail` leads to it. Prints the first cycle it meets.
function walk(graph, node, trail,    i, cycle) {
    state[graph, node] = "open"
    for (i = 1; i <= degree[graph, node] && !found[graph]; i++) {
        if (state[graph, edges[graph, node, i]] == "open") {
            cycle = substr(trail, index(trail, " " edges[graph, node, i] " ") + 1) node " "
            gsub(/ /, " -> ", cycle)
            print "a cycle of " graph ": " cycle edges[graph, node, i]
            found[graph] = wrong = 1
        } else if (state[graph, edges[graph, node, i]] == "")
            walk(graph, edges[graph, node, i], trail node " ")
    }
    state[graph, node] = "done"
}

function findCycle(graph,    i) {
    for (i = 1; i <= size[graph]; i++)
        if (state[graph, nodes[graph, i]] == "") walk(graph, nodes[graph, i], " ")
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
    connect("folders", folderOf(FILENAME), folderOf(included))
    if (isHeader(FILENAME)) connect("headers", unitOf(FILENAME), unitOf(included))
    else connect("sources", unitOf(FILENAME), unitOf(included))
}

/^[ \t]*#[ \t]*(include|import)[ \t]*<(Q[A-Z]|Qt|q[a-z]*\.h)/ && rankOf(FILENAME) < 12 {
    report("Qt has no place below the window: " $0)
}

# A source may include a header that is built on its own, such as one that its parts share.
END {
    for (i = 1; i <= size["headers"]; i++)
        for (j = 1; j <= degree["headers", nodes["headers", i]]; j++)
            connect("files", nodes["headers", i], edges["headers", nodes["headers", i], j])
    for (i = 1; i <= size["sources"]; i++)
        for (j = 1; j <= degree["sources", nodes["sources", i]]; j++) {
            split("", seen)
            if (!reaches(edges["sources", nodes["sources", i], j], nodes["sources", i], seen))
                connect("files", nodes["sources", i], edges["sources", nodes["sources", i], j])
        }
    findCycle("files")
    findCycle("folders")
    exit wrong
}
