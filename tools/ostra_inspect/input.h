// SPDX-License-Identifier: Apache-2.0
//
// Where a subcommand's input comes from: its arguments, a file or standard input; and hexadecimal in the spellings that
// logs, debuggers and dumps use.

#ifndef TOOLS_INPUT_H
#define TOOLS_INPUT_H

#include <stdexcept>
#include <string>
#include <vector>

// What cannot be read, told in one line.
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// All bytes of the file; "-" is standard input.
std::string ReadFile(const std::string &path);

// A text: of the file that is named, of standard input when none is, or the argument itself when it begins with "{" and
// no file is called so.
std::string ReadText(const std::string &argument);

// Bytes: of the file that the one argument names, of standard input when there is none, or the arguments themselves in
// hexadecimal. A file that holds nothing but printable characters is hexadecimal too, unless isRaw.
std::string ReadBytes(const std::vector<std::string> &arguments, bool isRaw);

// The bytes of a hexadecimal text: digits in pairs with or without gaps, commas, colons, "0x", "\x", braces and quotes;
// or the columns of hexdump -C, xxd or od -t x1.
std::string FromHex(const std::string &text);

#endif  // TOOLS_INPUT_H
