// The program's text: UTF-16 code units, NUL-terminated, deep copies.
//
// An empty string has two legal forms, which every operation treats alike: no buffer at all ("null form"), and
// a buffer whose first unit is 0. So Chars() of an empty string may be null. No unit before `length` is 0.
// Lengths and indices are signed 32-bit; out-of-range indices are ignored or answered with '?'. Exhausted
// memory inside this class ends the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class MString {
public:
    char16_t* chars = nullptr; // owned
    std::int32_t length = 0;   // units before the terminator
    std::int32_t capacity = 0; // units the buffer holds, terminator included

    MString() = default;
    MString(const MString& other);
    MString(MString&& other) noexcept;
    MString(const char16_t* text);               // exact capacity; null or empty gives the null form
    MString(const char* text, int codePage = 0); // see AssignNarrow
    explicit MString(std::u16string_view text);  // cut at the first 0
    // The units `first` to `last`, inclusive. `last` below 0 or past the end means the last unit; a `first`
    // outside the text, or a count below 1, gives the null form.
    MString(const char16_t* text, std::int32_t first, std::int32_t last);
    explicit MString(std::int32_t value); // in decimal
    ~MString() { delete[] chars; }

    MString& operator=(const MString& other);
    MString& operator=(MString&& other) noexcept;
    MString& operator=(const char* text);
    // Code page 0: each byte becomes the unit of the same value. 65001: UTF-8, with U+FFFD for what is invalid.
    void AssignNarrow(const char* text, int codePage);

    std::int32_t Length() const { return length; }
    const char16_t* Chars() const { return chars; }
    bool IsEmpty() const { return length < 1; }
    std::u16string_view View() const;

    char16_t GetChar(std::int32_t index) const;      // '?' outside the text
    void SetChar(std::int32_t index, char16_t unit); // a unit of 0 cuts the text there
    // Room for `newCapacity` units (below 1: the null form). Without `keep` the text becomes empty.
    bool Reserve(std::int32_t newCapacity, bool keep);

    MString operator+(const MString& other) const;
    // Each byte is sign-extended here, so 0x80 becomes 0xFF80, unlike on every other narrow path.
    MString operator+(const char* text) const;
    friend MString operator+(const char* text, const MString& other) { return MString(text) + other; }
    MString& operator+=(const MString& other);
    MString& operator+=(char byte);
    MString& operator+=(const char* text);
    MString& operator+=(char16_t unit);

    bool Equals(const MString& other) const { return View() == other.View(); }
    bool Equals(const char16_t* text) const;
    // -1, 0 or 1, by unsigned code units.
    int Compare(const MString& other) const;
    // Only the sign means anything. Folds A to Z alone.
    int CompareNoCase(const MString& other) const;

    bool Contains(const MString& text) const; // false if either is empty
    bool Contains(char16_t unit) const;
    bool EndsWith(char16_t unit) const;

    // Upper case, without the dot; knows the query and the fragment of a URL. Texts below 3 units have none.
    MString GetExtension() const;

    void Truncate(std::int32_t count);
    void ToUpper(); // unit by unit, as by ToUpperUnit
    void RemoveChar(char16_t unit);
    void KeepBefore(const MString& find);
    void KeepAfter(const MString& find);
    // Replaces the first occurrence until there is none, so text that a replacement forms takes part. Does
    // nothing if `with` contains `find`, which would run for ever.
    void ReplaceAll(const MString& find, const MString& with);
    void ReplaceChar(char16_t from, char16_t to);
    void NormaliseLineEnds(const MString& with);

    // Decimal as by ParseInt; after a lower-case 'x' hexadecimal, where what is no digit counts as 0.
    std::int32_t ToInt() const;
    // Without a trailing ".0", and without a second one.
    MString WithoutTrailingZeros() const;

private:
    void Assign(std::u16string_view text);
    void Append(std::u16string_view text);
    void Release();
};

// Leading white space, an optional sign, digits up to the first other unit. Saturates at the 32-bit limits;
// null or no digits give 0.
std::int32_t ParseInt(const char16_t* text);

// The unit's simple upper or lower case mapping, when that is one unit too; otherwise the unit itself.
char16_t ToUpperUnit(char16_t unit);
char16_t ToLowerUnit(char16_t unit);

// A text as the system takes it for names and arguments (UTF-8), and back. Every MString survives the round
// trip, lone surrogates included.
std::string ToSystem(const MString& text);
MString FromSystem(std::string_view bytes);
