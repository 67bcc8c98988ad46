# What Doxygen reads of a page. Doxygen knows neither the names by which headings are linked on GitHub nor links to what
# is no page, and it turns tabs into spaces. Hence each heading gets a label made of page and heading, which links to it
# take, and which Doxygen misses where there is no such heading. Links to folders and the like become plain text, but
# Doxygen misses those to what is not there. Tabs in examples become a stand-in, which scripts/docs turns back.

BEGIN {
    top = ENVIRON["PWD"] "/"
    page = fromTop(ARGV[1])
    folder = page
    sub(/[^\/]*$/, "", folder)
}

function fromTop(path) {
    return index(path, top) == 1 ? substr(path, length(top) + 1) : path
}

function label(path, heading) {
    heading = tolower(heading)
    gsub(/[^a-z0-9 _-]/, "", heading)
    gsub(/ /, "-", heading)
    gsub(/[^A-Za-z0-9]/, "-", path)
    return path "-" heading
}

# The path of a link's target from the top of the tree.
function resolved(target, path) {
    path = target == "" ? page : folder target
    while (sub(/[^\/]+\/\.\.\//, "", path)) {
    }
    return path
}

function relinked(text, result, words, target, parts) {
    result = ""
    while (match(text, /!?\[[^]]*\]\([^)]*\)/)) {
        result = result substr(text, 1, RSTART - 1)
        words = substr(text, RSTART, RLENGTH)
        text = substr(text, RSTART + RLENGTH)
        target = words
        sub(/^[^(]*\(/, "", target)
        sub(/\)$/, "", target)
        if (words ~ /^!/ || target ~ /:/) {
            result = result words
            continue
        }
        sub(/\(.*/, "", words)
        if (split(target, parts, "#") == 2) {
            result = result words "(#" label(resolved(parts[1]), parts[2]) ")"
        } else if (target ~ /\.md$/) {
            result = result words "(" target ")"
        } else if (system("test -e \"" resolved(target) "\"") == 0) {
            gsub(/^\[|\]$/, "", words)
            result = result words
        } else {
            result = result words "(#no-such-file-" target ")"
        }
    }
    return result text
}

/^```/ {
    isCode = !isCode
}
isCode || /^    / {
    gsub(/\t/, "\356\200\211")
    print
    next
}
/^##+ / {
    heading = $0
    sub(/^#+ /, "", heading)
    print relinked($0) " {#" label(page, heading) "}"
    next
}
{
    print relinked($0)
}
