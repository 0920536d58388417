// Line-oriented text files: a file is a sequence of lines, a line a sequence of tokens between white space,
// with quotation marks around a token that holds some. The program's only way to text files.
//
// Line breaks and quotation marks inside a string are stored as "<br />" and "&#34;"; the escapes themselves
// are not escaped. Nothing here reports to the user: what can't be read is empty, 0 or false, what can't be
// written is dropped.
#pragma once

#include "foundation/MFile.h"
#include "foundation/MSafeFile.h"
#include "foundation/MString.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class MTextEncoding : std::uint8_t {
    Ansi = 1,    // a byte is the unit of the same value; no mark
    Utf16Le = 2, // mark FF FE
    Utf16Be = 3, // mark FE FF
    Utf8 = 4,    // mark EF BB BF
};

class MTextFile {
public:
    MString path;
    bool ok = true;  // false if the file couldn't be opened or its mark not written
    MFile file;      // read from
    MSafeFile out;   // written to
    MString pending; // the line being written
    bool writing;
    MTextEncoding encoding;
    int markLength = 0; // bytes

    // `encoding` is for writing; on reading the file's mark tells it, and a file without one is Ansi. `preload`
    // reads the file at once and closes it.
    MTextFile(const MString& path, bool writing, bool preload, MTextEncoding encoding,
              MLinks links = MLinks::Follow);
    MTextFile(const MTextFile&) = delete;
    MTextFile& operator=(const MTextFile&) = delete;
    // What was written takes the place of the old file from here on, which stays if any of it failed.
    ~MTextFile() { Place(); }
    // The same earlier. Whether all of it succeeded; `out` tells why not.
    bool Place();
    // Nothing is written from here on; the complete file is still to be put into its place.
    MSafeFile Take();

    // Reads and takes apart one line, ended by CR, LF, CR LF or the end of the file. False at the end; the
    // tokens stay then.
    bool NextLine();
    std::int32_t TokenCount() const { return static_cast<std::int32_t>(Tokens().size()); }
    // A token, empty if the index is out of range. `literalBackslashN` also turns the two characters \n into CR
    // LF.
    MString GetString(int index, bool literalBackslashN = false, bool unescape = true) const;
    std::int32_t GetInt(int index) const; // leading digits; 0 without any
    bool GetBool(int index) const;        // exactly "Y"
    // The whole line, unescaped, with its quotes and tabs.
    MString GetLine(bool literalBackslashN = false) const;
    // The same as it stands in the file, until the next line is read.
    std::u16string_view RawLine() const { return line; }
    // Whether a text has what unescaping could change.
    static bool MayHoldEscapes(std::u16string_view text);

    // Append a field to the line being written. Not while reading.
    void WriteInt(std::int32_t value);
    void WriteString(MString value);
    void WriteBool(bool value);
    // Writes the line out; a `text` that is not empty goes out in its place, as it stands.
    void EndLine(const MString& text = {});

    // A file's whole text without its mark, up to the first zero; empty if it can't be read.
    static MString ReadWholeFile(const MString& path);
    // Writes a text with its mark in one go. True at once, and nothing created, for an empty text.
    static bool WriteWholeFile(const MString& text, const MString& path, MTextEncoding encoding);
    // The same as a file that is still to be put into its place; also made for an empty text.
    static MSafeFile PrepareWholeFile(const MString& text, const MString& path, MTextEncoding encoding,
                                      MLinks links = MLinks::Follow);

private:
    std::vector<std::uint8_t> chunk; // read ahead from the file
    std::size_t chunkPosition = 0;
    std::string unwritten; // bytes that are not in the file yet
    std::uint64_t written = 0;
    std::u16string line; // the current line without CR and LF
    // Into `line`, once they are asked for: readers of whole lines need none.
    mutable std::vector<std::u16string_view> tokens;
    mutable bool tokenised = true;

    void OpenForWriting();
    void OpenForReading();
    bool NextByte(std::uint8_t& byte);
    bool NextUnit(char16_t& unit);
    void GiveBackUnit();
    const std::vector<std::u16string_view>& Tokens() const;
    void ReadUnits(char16_t unit);
    void TakePlainUnits(std::size_t longest);
    void Separate();
    void WriteUnits(std::u16string_view units);
    void Flush();
};
