# Turns the plain comments of a header into those that Doxygen reads.

# The comment at the top of a file is about the file.
/SPDX-License-Identifier/ {
    sub(/^\/\/ .*/, "/// \\file")
    sub(/^\/\* .*/, "/** \\file")
    print
    next
}

# A comment on lines of its own is about what follows, up to the next comment or blank line. Doxygen gives it to the
# first line alone; below, each further function, constant and macro gets it again.
/^ *\/\/( |$)/ {
    sub(/\/\//, "///")
    comment = (isComment ? comment : "") $0 "\n"
    isComment = 1
    print
    next
}

# A comment at the end of a line is about what stands before it.
/[;,]  *\/\/ / {
    sub(/\/\/ /, "///< ")
    comment = ""
}

isOpen {
    isOpen = !/;$/
    print
    next
}

/^ *(inline const |#define )|^ *[A-Za-z_].*\(.*[,;]$/ && !/~|operator|= delete|= default/ {
    printf "%s", isComment ? "" : comment
    isComment = 0
    isOpen = /^ *#/ ? 0 : !/;$/
    print
    next
}

{
    sub(/^ *\/\* /, "&\001")
    sub(/\/\* \001/, "/** ")
    comment = ""
    isComment = 0
    print
}
