# Turns the plain comments of a header into those that Doxygen reads.

# The comment at the top of a file is about the file.
s#^// SPDX-License-Identifier.*#/// \\file#
s#^/\* SPDX-License-Identifier.*#/** \\file#

# A comment on lines of its own is about what follows, one at the end of a line about what stands before it.
s#^\( *\)//\( \|$\)#\1///\2#
s#^\( *\)/\* #\1/** #
\#^ *//#! s#\([;,]  *\)// #\1///< #
