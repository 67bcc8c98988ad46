# Finds lines of prose that later edits left too long or too short: in pages, and in comments on lines of their own. A
# line is too long beyond 120 columns, and torn when the next line's first word and nine columns more would fit behind
# it. Tables, examples and what is no prose do not count. Run by scripts/lint with the files as arguments.

function complain(line, what) {
    print FILENAME ":" line ": " what
    status = 1
}

FNR == 1 {
    before = ""
    isFenced = 0
    isPage = FILENAME ~ /\.md$/
    mark = FILENAME ~ /\.(h|cpp|c)$/ ? "^ *(//|\\*|/\\*)" : "^ *#"
}
{
    indent = ""
    text = $0
    if (isPage) {
        if (text ~ /^```/) {
            isFenced = !isFenced
        }
        if (isFenced || text ~ /^(```|    |[|#<!])/) {
            before = ""
            next
        }
    } else if (match(text, mark)) {
        indent = substr(text, 1, RLENGTH)
        text = substr(text, RLENGTH + 1)
    } else {
        before = ""
        next
    }
    if (length($0) > 120) {
        complain(FNR, "longer than 120 columns")
    }
    if (!isPage && text !~ /^ [^ ]/ || text ~ /NOLINT|clang-format|shellcheck|SPDX/) {
        before = ""
        next
    }
    split(text, words)
    isContinued = before != "" && indent == indentBefore && words[1] != "" && words[1] !~ /^(-|[0-9]+\.|Usage:)$/
    if (isContinued && length(before) + 1 + length(words[1]) <= 110) {
        complain(FNR - 1, "torn: \"" words[1] "\" of the next line fits behind it")
    }
    before = words[1] == "" ? "" : $0
    indentBefore = indent
}

END {
    exit status
}
