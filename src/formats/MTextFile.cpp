#include "formats/MTextFile.h"

#include "foundation/MUtf8.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace {

constexpr std::size_t chunkBytes = 65536;

// A line longer than this loses the rest, as if memory were exhausted for it.
std::size_t LongestLine() {
    return std::min(MemoryLimit() / 4, std::size_t{1} << 26);
}

constexpr std::u16string_view blanks = u"\t\n\r ";

std::span<const std::uint8_t> MarkOf(MTextEncoding encoding) {
    static constexpr std::array<std::uint8_t, 2> utf16Le{0xFF, 0xFE};
    static constexpr std::array<std::uint8_t, 2> utf16Be{0xFE, 0xFF};
    static constexpr std::array<std::uint8_t, 3> utf8{0xEF, 0xBB, 0xBF};
    switch (encoding) {
    case MTextEncoding::Utf16Le: return utf16Le;
    case MTextEncoding::Utf16Be: return utf16Be;
    case MTextEncoding::Utf8: return utf8;
    case MTextEncoding::Ansi: break;
    }
    return {};
}

// The encoding that the start of a file tells.
MTextEncoding EncodingOf(std::span<const std::uint8_t> start) {
    for (const auto encoding : {MTextEncoding::Utf16Le, MTextEncoding::Utf16Be, MTextEncoding::Utf8}) {
        const auto mark = MarkOf(encoding);
        if (start.size() >= mark.size() && std::ranges::equal(mark, start.first(mark.size()))) return encoding;
    }
    return MTextEncoding::Ansi;
}

void AppendBytes(std::string& bytes, std::u16string_view units, MTextEncoding encoding) {
    if (encoding == MTextEncoding::Utf8) {
        bytes += EncodeUtf8(units, MLoneSurrogates::Replace);
        return;
    }
    for (const char16_t unit : units) {
        const auto low = static_cast<char>(unit & 0xFF);
        const auto high = static_cast<char>(unit >> 8);
        if (encoding == MTextEncoding::Utf16Be) bytes.push_back(high);
        bytes.push_back(low);
        if (encoding == MTextEncoding::Utf16Le) bytes.push_back(high);
    }
}

std::u16string FromBytes(std::string_view bytes, MTextEncoding encoding) {
    if (encoding == MTextEncoding::Utf8) return DecodeUtf8(bytes, MLoneSurrogates::Replace);
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    std::u16string units;
    if (encoding == MTextEncoding::Ansi) {
        for (std::size_t i = 0; i < bytes.size(); ++i)
            units.push_back(byteAt(i));
        return units;
    }
    const std::size_t low = encoding == MTextEncoding::Utf16Le ? 0 : 1;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        units.push_back(static_cast<char16_t>(byteAt(i + low) | byteAt(i + 1 - low) << 8));
    }
    return units;
}

void Unescape(MString& text, bool literalBackslashN) {
    if (!MTextFile::MayHoldEscapes(text.View())) return;
    text.ReplaceAll("<NEW LINE>", "\r\n");
    text.ReplaceAll("<QUOTE>", "\"");
    text.ReplaceAll("<br />", "\r\n");
    text.ReplaceAll("&#34;", "\"");
    if (literalBackslashN) text.ReplaceAll("\\n", "\r\n");
}

} // namespace

MTextFile::MTextFile(const MString& filePath, bool forWriting, bool preload, MTextEncoding fileEncoding,
                     MLinks links)
    : path(filePath), file(forWriting ? MString() : filePath, false, preload), writing(forWriting),
      encoding(fileEncoding) {
    if (writing) {
        out = MSafeFile(path, links);
        ok = out.Ok();
        if (ok) OpenForWriting();
    } else {
        ok = file.ok != 0;
        if (ok) OpenForReading();
    }
}

void MTextFile::OpenForWriting() {
    if (encoding < MTextEncoding::Ansi || encoding > MTextEncoding::Utf8) {
        ok = false;
        return;
    }
    const auto mark = MarkOf(encoding);
    markLength = static_cast<int>(mark.size());
    unwritten.append(mark.begin(), mark.end());
}

void MTextFile::OpenForReading() {
    chunk.resize(chunkBytes);
    chunk.resize(file.ReadSome(chunk.data(), chunkBytes));
    encoding = EncodingOf(chunk);
    markLength = static_cast<int>(MarkOf(encoding).size());
    chunkPosition = static_cast<std::size_t>(markLength);
}

bool MTextFile::NextByte(std::uint8_t& byte) {
    if (chunkPosition == chunk.size()) {
        // One unit of the old chunk stays in front, so that it can be given back.
        const std::size_t kept = std::min<std::size_t>(chunk.size(), 2);
        std::copy(chunk.end() - static_cast<std::ptrdiff_t>(kept), chunk.end(), chunk.begin());
        chunk.resize(kept + chunkBytes);
        chunk.resize(kept + file.ReadSome(chunk.data() + kept, chunkBytes));
        chunkPosition = kept;
        if (chunk.size() == kept) return false;
    }
    byte = chunk[chunkPosition++];
    return true;
}

bool MTextFile::NextUnit(char16_t& unit) {
    std::uint8_t first = 0;
    std::uint8_t second = 0;
    if (!NextByte(first)) return false;
    unit = first;
    if (encoding != MTextEncoding::Utf16Le && encoding != MTextEncoding::Utf16Be) return true;
    if (!NextByte(second)) return false;
    unit =
        static_cast<char16_t>(encoding == MTextEncoding::Utf16Le ? first | second << 8 : first << 8 | second);
    return true;
}

void MTextFile::GiveBackUnit() {
    const bool twoBytes = encoding == MTextEncoding::Utf16Le || encoding == MTextEncoding::Utf16Be;
    chunkPosition -= twoBytes ? 2 : 1;
}

bool MTextFile::NextLine() {
    if (!ok || writing) return false;
    char16_t unit = 0;
    if (!NextUnit(unit)) return false;
    ReadUnits(unit);
    if (encoding == MTextEncoding::Utf8) {
        line = DecodeUtf8(std::string(line.begin(), line.end()), MLoneSurrogates::Replace);
    }
    // A line is text up to the first zero, as everywhere in the program.
    line.resize(std::min(line.size(), line.find(u'\0')));
    tokenised = false;
    return true;
}

bool MTextFile::MayHoldEscapes(std::u16string_view text) {
    bool found = false; // no early end: the loop is wide
    for (const char16_t unit : text)
        found |= unit == u'<' || unit == u'&' || unit == u'\\';
    return found;
}

// Reads the rest of a line that starts with this unit, without its end.
void MTextFile::ReadUnits(char16_t unit) {
    const std::size_t longest = LongestLine();
    line.clear();
    do {
        if (unit == u'\n') break;
        if (unit == u'\r') {
            if (NextUnit(unit) && unit != u'\n') GiveBackUnit();
            break;
        }
        if (line.size() < longest) line.push_back(unit);
        TakePlainUnits(longest);
    } while (NextUnit(unit));
}

// What is at hand of a line of single bytes, up to its end.
void MTextFile::TakePlainUnits(std::size_t longest) {
    if (markLength == 2) return;
    const auto start = chunk.begin() + static_cast<std::ptrdiff_t>(chunkPosition);
    const auto end =
        std::find_if(start, chunk.end(), [](std::uint8_t byte) { return byte == '\n' || byte == '\r'; });
    const auto room = static_cast<std::ptrdiff_t>(longest - line.size());
    line.insert(line.end(), start, start + std::min(end - start, room));
    chunkPosition = static_cast<std::size_t>(end - chunk.begin());
}

const std::vector<std::u16string_view>& MTextFile::Tokens() const {
    if (tokenised) return tokens;
    tokenised = true;
    tokens.clear();
    std::u16string_view rest = line;
    for (;;) {
        rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(blanks)));
        if (rest.empty()) break;
        const bool quoted = rest.front() == u'"';
        if (quoted) rest.remove_prefix(1);
        if (rest.empty()) break;
        const std::size_t end = std::min(rest.size(), quoted ? rest.find(u'"') : rest.find_first_of(blanks));
        tokens.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(rest.size(), quoted ? end + 1 : end));
    }
    return tokens;
}

MString MTextFile::GetString(int index, bool literalBackslashN, bool unescape) const {
    if (index < 0 || index >= TokenCount()) return {};
    MString token(Tokens()[static_cast<std::size_t>(index)]);
    if (unescape) Unescape(token, literalBackslashN);
    return token;
}

std::int32_t MTextFile::GetInt(int index) const {
    return ParseInt(GetString(index, false, false).Chars());
}

bool MTextFile::GetBool(int index) const {
    return GetString(index, false, false).Equals(u"Y");
}

MString MTextFile::GetLine(bool literalBackslashN) const {
    MString text{std::u16string_view(line)};
    Unescape(text, literalBackslashN);
    return text;
}

void MTextFile::Separate() {
    if (!pending.IsEmpty()) pending += '\t';
}

void MTextFile::WriteInt(std::int32_t value) {
    if (!writing) return;
    Separate();
    pending += MString(value);
}

void MTextFile::WriteBool(bool value) {
    if (!writing) return;
    Separate();
    pending += value ? 'Y' : 'N';
}

void MTextFile::WriteString(MString value) {
    if (!writing) return;
    value.NormaliseLineEnds("<br />");
    value.ReplaceAll("\"", "&#34;");
    if (value.IsEmpty()) {
        // With its tab also at the start of a line: the reader skips it, so the empty first field still counts.
        pending += "\t\"\"";
        return;
    }
    if (value.Equals(u"\t")) {
        pending += '\t'; // an empty column, which the reader doesn't see
        return;
    }
    Separate();
    const bool quote = value.Contains(u' ') || value.Contains(u'\t');
    if (quote) pending += '"';
    pending += value;
    if (quote) pending += '"';
}

void MTextFile::EndLine(const MString& text) {
    if (!writing) return;
    if (!text.IsEmpty()) pending = text;
    pending += "\r\n";
    WriteUnits(pending.View());
    pending.Truncate(0);
}

void MTextFile::WriteUnits(std::u16string_view units) {
    if (!ok) return;
    AppendBytes(unwritten, units, encoding);
    if (unwritten.size() >= chunkBytes) Flush();
}

// A full disk is told by `out`.
void MTextFile::Flush() {
    if (!unwritten.empty() && out.WriteAt(written, unwritten.data(), unwritten.size()))
        written += unwritten.size();
    unwritten.clear();
}

MSafeFile MTextFile::Take() {
    if (ok) Flush();
    ok = false;
    return std::move(out);
}

bool MTextFile::Place() {
    if (!writing || !ok) return false;
    Flush();
    ok = false;
    return out.Place();
}

MString MTextFile::ReadWholeFile(const MString& path) {
    if (path.IsEmpty()) return {};
    MTextFile text(path, false, false, MTextEncoding::Ansi);
    if (!text.ok) return {};
    const std::int64_t length = text.file.GetSize() - text.markLength;
    if (length < 1 || length > static_cast<std::int64_t>(LongestLine())) return {};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    if (!text.file.Seek(text.markLength)) return {};
    if (!text.file.Read(bytes.data(), static_cast<std::uint32_t>(length))) return {};
    return MString(std::u16string_view(FromBytes(bytes, text.encoding)));
}

bool MTextFile::WriteWholeFile(const MString& text, const MString& path, MTextEncoding encoding) {
    if (text.IsEmpty()) return true;
    return PrepareWholeFile(text, path, encoding).Place();
}

MSafeFile MTextFile::PrepareWholeFile(const MString& text, const MString& path, MTextEncoding encoding,
                                      MLinks links) {
    MTextFile file(path, true, false, encoding, links);
    file.WriteUnits(text.View());
    return file.Take();
}
