#pragma once

// The texts that follow the language as data: a folder of .txt files, read and checked. The
// compiler turns them into constants; nothing is read when the program runs.
//
// Grammar: languages.txt names the languages, one code a line, in the order of their numbers. Every
// other file holds entries: a name at the left edge, and below it, 4 spaces in, one line for each
// language, CODE "text", or a single `all "text"` for all of them. "#" begins a comment. Escapes:
// \" \\ \r \n \0 and \_ for the blank at which no line breaks. {NAME} stands for another entry's
// text in the same language, which inserts none itself.

#include "design.h"

#include <string>
#include <string_view>
#include <vector>

namespace velmora::formc {

struct TextEntry {
    std::string name;
    std::string file;                  // "messages.txt"
    int line = 0;                      // from 1
    std::vector<std::u16string> texts; // one for each language, with what they insert
};

// A fault in a file of the folder, at a line (from 1).
struct TextFault {
    std::string file;
    int line = 0;
    std::string text;
};

struct TextFile {
    std::string name;
    std::string content; // UTF-8
};

struct TextTable {
    std::vector<std::string> languages;
    std::vector<TextEntry> entries; // by file name, then in the order of the lines
    std::vector<TextFault> faults;  // empty when the folder is good

    // Null for a name that no entry has.
    const TextEntry *find(std::string_view name) const;
};

// Never throws for what the texts hold: all faults are listed.
TextTable parseTexts(const std::vector<TextFile> &files);

// The .txt files of a folder. Throws std::runtime_error when it cannot be read.
TextTable readTexts(const std::string &folder);

// The skin with the texts that a design may name.
Skin withTexts(Skin skin, const TextTable &table);

// Every entry as a constant, and what names the languages.
std::string writeTexts(const TextTable &table);

struct MessageCode {
    std::string header;
    std::string source;
};

// The class whose variables are the entries of messages.txt, and the rows that fill them.
MessageCode writeMessages(const TextTable &table);

} // namespace velmora::formc
