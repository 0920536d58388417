// The one document of the program: up to 223 glyphs, three metrics, the kerning pairs, and the one picture that
// all glyphs are packed into. The glyph height is not here: it is MSettings::GlyphHeight.
//
// The members stand in the folders whose business they are: packing and edits in document/, rendering in
// glyphs/, files in formats/, the preview in shell/.
#pragma once

#include "document/MGlyph.h"
#include "foundation/MVector.h"
#include "platform/Desktop.h"

#include <array>
#include <cstdint>
#include <memory>

// Two glyphs' amount, added to the advance between them; negative moves the right one closer. No other pair of
// a font has the same two characters.
struct MKerningPair {
    std::uint32_t Left;
    std::uint32_t Right;
    std::int32_t Amount; // pixels

    friend bool operator==(const MKerningPair&, const MKerningPair&) = default;
};

// Characters below this have no glyph and take no kerning; the space is one of them.
inline constexpr std::int32_t FirstCharacter = 33;

constexpr bool TakesKerning(std::int32_t left, std::uint32_t right) {
    return left >= FirstCharacter && right >= static_cast<std::uint32_t>(FirstCharacter);
}

class MColourFont {
public:
    // As many as there are codes from 33 to 255, but a slot is a place and not a character: any 16-bit code
    // takes any slot, and the table may have holes.
    static constexpr std::size_t SlotCount = 223;

    Desktop::WindowHandle Owner = nullptr; // not owned
    std::int32_t Baseline = 0;             // pixel rows under the letter "A"; 0: not measured yet
    std::int32_t CapHeight = 0;            // pixel rows of the letter "A"; 0: not measured yet
    std::int32_t SpaceWidth = 0;           // advance of the space, which has no glyph; pixels
    // The order of the slots is that of packing, of the font file and of all exports.
    std::array<std::unique_ptr<MGlyph>, SlotCount> Glyphs;
    MPicture Picture;                  // format 7, owned; the glyphs as the last Repack placed them
    std::uint64_t PictureRevision = 0; // another one for each Repack of any font
    std::int32_t PictureWidth = 0;
    std::int32_t PictureHeight = 0;
    MVector<MKerningPair> Kerning; // in no guaranteed order

    // SpaceWidth is half the glyph height of the settings.
    explicit MColourFont(Desktop::WindowHandle owner);
    MColourFont(const MColourFont&) = delete;
    MColourFont& operator=(const MColourFont&) = delete;
    ~MColourFont() { Clear(); }

    // Destroys the glyphs, the pairs and the picture's pixels; the metrics and the recorded sizes stay.
    void Clear();

    MGlyph* GetGlyph(char16_t character) const;           // null if there is none
    MGlyph* GetGlyphByIndex(std::uint32_t index) const;   // counting filled slots only
    std::int32_t GetGlyphIndex(char16_t character) const; // -1 if there is none
    std::int32_t GlyphCount() const;
    std::int32_t MaxGlyphWidth() const;  // 0 without glyphs
    std::int32_t MaxGlyphHeight() const; // 0 without glyphs
    // The slot for a new glyph of this character: that of an earlier one, which is destroyed (its pairs stay),
    // else the first empty one, else -1.
    std::int32_t ClaimSlot(char16_t character);
    // Destroys the glyph, leaving a hole, and removes every pair that names the character.
    void RemoveGlyph(char16_t character);
    // Ascending by code, all holes at the end.
    void SortGlyphs();

    // Replaces or appends, amount 0 included. False for a side below 33 (the space takes no kerning) and when
    // memory is exhausted, which loses the whole list.
    bool SetKerning(std::int32_t left, std::uint32_t right, std::int32_t amount);
    void ChangeKerning(char16_t left, std::uint32_t right, std::int32_t amount); // an existing pair only
    MKerningPair* FindKerning(char16_t left, std::uint32_t right) const;         // null if there is none
    std::int32_t KerningCount() const { return Kerning.count; }
    void ClearKerning() { Kerning.Clear(); }
    // Ascending; pairs of equal amount keep their order.
    void SortKerningByAmount();
    // Replaces all pairs by measured ones: for each two glyphs of one height the amount that lets their ink
    // touch in the row where it is closest. No pair where it touches already, or where they share no inked row.
    void GenerateKerning();

    // Renders the characters selected in the settings. False only if none is selected. The caller repacks.
    bool GenerateSelectedCharacters();
    // Makes a glyph from a picture, scaled with the padding of the settings to their glyph height, keeping its
    // proportions; `trim` removes empty columns. For "A" it measures the metrics anew. False if the file is no
    // picture, a padding is negative, or the slots are full; an earlier glyph of the character may be gone
    // then.
    bool AddPictureGlyph(char16_t character, const MString& path, std::int32_t spacingBefore,
                         std::int32_t spacingAfter, bool trim);
    // The same from a picture in memory, of any format, which stays the caller's.
    bool AddPictureGlyph(char16_t character, const MPicture& picture, std::int32_t spacingBefore,
                         std::int32_t spacingAfter, bool trim);
    // Writes the settings' glyph height and makes SpaceWidth half of it.
    void SetGlyphHeight(std::int32_t height);
    // Finds the size of the packed picture, places every glyph and copies it there. False without memory for
    // it: the places stay as they were, and there is no picture.
    bool Repack();

    // Repaints the owner, which shows the packed picture centred, shrunk if it doesn't fit and never enlarged,
    // on the background colour; and its title, with the number of glyphs and the size of the picture. Does
    // nothing without an owner, and for a minimised one.
    void Draw() const;

    // Multiplies the metrics, the glyphs with their spacings, and the kerning, each as a 32-bit float truncated
    // toward zero. The settings' glyph height is the caller's to set.
    void Scale(float factor);
    // Removes the rows that are empty in all glyphs, at the top and at the bottom. Glyph height and baseline go
    // down with them; a font without glyphs loses 10000 rows on either side.
    void TrimVertically();
    // RemoveGlyph for every character from 128 on.
    void RemoveNonAscii();

    // A texture font: a text file with the extension sm beside a PNG of the same name; whatever extension
    // `path` has is replaced. False only if there is no packed picture; what could not be written is added to
    // `failures`, and the old font stays whole then.
    bool Save(const MString& path, MWriteFailures* failures = nullptr);
    // Into a document that was cleared. The PNG is sought beside the file, then in ../Textures, then by asking.
    // False if there is no such file or picture, or the header is wrong; what was read until then stays.
    bool Load(const MString& path);
    // A web page beside its script, picture and run-time script. A `minimal` page shows one line; the other
    // lets its reader try the font. False without a packed picture, if the user shrinks from its size, or if
    // the page or the script can't be written. What could not be written is added to `failures`, as by the next
    // exports.
    bool ExportHtml(const MString& path, bool minimal, MWriteFailures* failures = nullptr);
    // A script that ExportHtml wrote, into a document that was cleared. The PNG is sought beside it, then by
    // asking. False if there is no such file or picture; true even for another first line, after a message.
    bool ImportJavascript(const MString& path);
    // The nets of letter cubes with which the names of the settings can be spelt: `path`, cut before its first
    // dot, with the number of each cube and ".png". Tells the statistics and asks first. False if the font
    // lacks a capital or a letter of a name, after a message; for an empty list; and if the user says no.
    bool ExportLetterCubes(const MString& path, MWriteFailures* failures = nullptr);
    // One PNG for each glyph, named C and its code, into the folder of `path`. True if at least one was
    // written.
    bool ExportSingleFiles(const MString& path, MWriteFailures* failures = nullptr);
};

// The current document, or null.
extern MColourFont* CurrentFont;
