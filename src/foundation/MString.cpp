#include "foundation/MString.h"

#include "foundation/MUtf8.h"

#include <glib.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

namespace {

using View = std::u16string_view;

constexpr bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

View UpToZero(const char16_t* text) {
    return text ? View(text) : View();
}

std::int32_t ToLength(std::size_t size) {
    return static_cast<std::int32_t>(size);
}

constexpr char16_t FoldAscii(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

// The mapping of one code unit, or the unit itself where the mapping does not fit one unit.
char16_t OneUnit(gunichar mapped, char16_t unit) {
    return mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : unit;
}

// Replaces the leftmost occurrence until there is none, in one walk. Whatever stands before the walk holds no
// occurrence, so the next one to be completed is the leftmost; a replacement goes back to the text still to
// come, since it may form an occurrence with what stands on either side.
std::u16string ReplaceUntilNone(View text, View find, View with) {
    std::u16string done;
    std::u16string toCome(text.rbegin(), text.rend());
    while (!toCome.empty()) {
        done.push_back(toCome.back());
        toCome.pop_back();
        if (done.back() == find.back() && done.ends_with(find)) {
            done.resize(done.size() - find.size());
            toCome.append(with.rbegin(), with.rend());
        }
    }
    return done;
}

} // namespace

char16_t ToUpperUnit(char16_t unit) {
    if (unit < 128) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
    return OneUnit(g_unichar_toupper(unit), unit);
}

char16_t ToLowerUnit(char16_t unit) {
    if (unit < 128) return FoldAscii(unit);
    return OneUnit(g_unichar_tolower(unit), unit);
}

MString::MString(const MString& other) {
    if (!other.IsEmpty()) Assign(other.View());
}

MString::MString(MString&& other) noexcept
    : chars(std::exchange(other.chars, nullptr)), length(std::exchange(other.length, 0)),
      capacity(std::exchange(other.capacity, 0)) {}

MString::MString(const char16_t* text) : MString(UpToZero(text)) {}

MString::MString(std::u16string_view text) {
    Assign(text.substr(0, text.find(u'\0')));
}

MString::MString(const char* text, int codePage) {
    AssignNarrow(text, codePage);
}

MString::MString(const char16_t* text, std::int32_t first, std::int32_t last) {
    const ::View whole = UpToZero(text);
    const std::int32_t size = ToLength(whole.size());
    if (first < 0 || first >= size) return;
    if (last < 0 || last >= size) last = size - 1;
    if (last < first) return;
    Assign(whole.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first) + 1));
}

MString::MString(std::int32_t value) {
    constexpr std::int32_t room = 25; // whatever the number
    Reserve(room, false);
    *this = std::to_string(value).c_str();
}

MString& MString::operator=(const MString& other) {
    if (this == &other) return *this;
    if (other.IsEmpty()) {
        Release();
        return *this;
    }
    Reserve(other.length + 1, false);
    std::ranges::copy(other.View(), chars);
    length = other.length;
    chars[length] = 0;
    return *this;
}

MString& MString::operator=(MString&& other) noexcept {
    if (chars != other.chars) {
        delete[] chars;
        chars = std::exchange(other.chars, nullptr);
        length = std::exchange(other.length, 0);
        capacity = std::exchange(other.capacity, 0);
    }
    return *this;
}

MString& MString::operator=(const char* text) {
    AssignNarrow(text, 0);
    return *this;
}

void MString::AssignNarrow(const char* text, int codePage) {
    const std::string_view bytes = text ? std::string_view(text) : std::string_view();
    if (bytes.empty()) {
        Release();
        return;
    }
    if (codePage == 0) {
        Reserve(ToLength(bytes.size()) + 1, false);
        std::ranges::transform(bytes, chars, [](char byte) { return static_cast<unsigned char>(byte); });
        length = ToLength(bytes.size());
        chars[length] = 0;
        return;
    }
    const std::u16string units = DecodeUtf8(bytes, MLoneSurrogates::Replace);
    Reserve(std::max(2 * ToLength(bytes.size()), ToLength(units.size()) + 1), false);
    std::ranges::copy(units, chars);
    length = ToLength(units.size());
    chars[length] = 0;
}

std::u16string_view MString::View() const {
    return length < 1 ? std::u16string_view() : std::u16string_view(chars, static_cast<std::size_t>(length));
}

char16_t MString::GetChar(std::int32_t index) const {
    return index < 0 || index >= length ? u'?' : chars[index];
}

void MString::SetChar(std::int32_t index, char16_t unit) {
    if (index < 0 || index >= length) return;
    chars[index] = unit;
    if (unit == 0) length = index;
}

bool MString::Reserve(std::int32_t newCapacity, bool keep) {
    if (newCapacity < 1) {
        Release();
        return true;
    }
    if (newCapacity <= capacity) {
        if (!keep && chars) {
            chars[0] = 0;
            length = 0;
        }
        return true;
    }
    const std::int64_t doubled = 2 * std::int64_t{capacity};
    newCapacity = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(doubled, newCapacity, std::numeric_limits<std::int32_t>::max()));
    auto* const fresh = new char16_t[static_cast<std::size_t>(newCapacity)];
    if (!keep) length = 0;
    std::ranges::copy(View(), fresh);
    fresh[length] = 0;
    delete[] chars;
    chars = fresh;
    capacity = newCapacity;
    return true;
}

MString MString::operator+(const MString& other) const {
    MString sum;
    if (other.IsEmpty()) {
        sum = *this;
        return sum;
    }
    sum.Reserve(length + other.length + 1, false);
    sum.Append(View());
    sum.Append(other.View());
    return sum;
}

MString MString::operator+(const char* text) const {
    std::u16string units;
    if (text) {
        std::ranges::transform(std::string_view(text), std::back_inserter(units),
                               [](char byte) { return static_cast<char16_t>(static_cast<signed char>(byte)); });
    }
    return *this + MString(units);
}

MString& MString::operator+=(const MString& other) {
    if (this == &other) return *this += MString(other);
    Append(other.View());
    return *this;
}

MString& MString::operator+=(char byte) {
    return *this += static_cast<char16_t>(static_cast<unsigned char>(byte));
}

MString& MString::operator+=(const char* text) {
    return *this += MString(text);
}

MString& MString::operator+=(char16_t unit) {
    if (unit != 0) Append(::View(&unit, 1));
    return *this;
}

bool MString::Equals(const char16_t* text) const {
    return View() == UpToZero(text);
}

int MString::Compare(const MString& other) const {
    return Sign(View().compare(other.View()));
}

int MString::CompareNoCase(const MString& other) const {
    return std::ranges::lexicographical_compare(View(), other.View(), {}, FoldAscii, FoldAscii)   ? -1
           : std::ranges::lexicographical_compare(other.View(), View(), {}, FoldAscii, FoldAscii) ? 1
                                                                                                  : 0;
}

bool MString::Contains(const MString& text) const {
    return !IsEmpty() && !text.IsEmpty() && View().find(text.View()) != ::View::npos;
}

bool MString::Contains(char16_t unit) const {
    return View().find(unit) != ::View::npos;
}

bool MString::EndsWith(char16_t unit) const {
    return !IsEmpty() && chars[length - 1] == unit;
}

MString MString::GetExtension() const {
    const ::View text = View();
    if (length < 3 || text.back() == u'/') return {};
    // From the query on, a dot is no longer that of a name.
    const std::size_t dot = text.rfind(u'.', text.find(u'?'));
    if (dot == ::View::npos) return {};
    MString extension{text.substr(dot + 1)};
    extension.ToUpper();
    extension.KeepBefore(u"?");
    if (extension.Contains(u'/') || extension.Contains(u'\\')) return {};
    extension.KeepBefore(u"#");
    return extension;
}

void MString::Truncate(std::int32_t count) {
    if (count < 1) {
        Release();
    } else {
        SetChar(count, 0);
    }
}

void MString::ToUpper() {
    std::ranges::transform(View(), chars, ToUpperUnit);
}

void MString::RemoveChar(char16_t unit) {
    if (IsEmpty()) return;
    length = static_cast<std::int32_t>(std::remove(chars, chars + length, unit) - chars);
    chars[length] = 0;
}

void MString::KeepBefore(const MString& find) {
    if (!Contains(find)) return;
    SetChar(ToLength(View().find(find.View())), 0);
}

void MString::KeepAfter(const MString& find) {
    if (!Contains(find)) return;
    *this = MString(View().substr(View().find(find.View()) + find.View().size()));
}

void MString::ReplaceAll(const MString& find, const MString& with) {
    if (!Contains(find) || with.Contains(find)) return;
    Assign(ReplaceUntilNone(View(), find.View(), with.View()));
}

void MString::ReplaceChar(char16_t from, char16_t to) {
    if (IsEmpty()) return;
    std::replace(chars, chars + length, from, to);
    if (to == 0) length = ToLength(::View(chars).size());
}

void MString::NormaliseLineEnds(const MString& with) {
    for (const char16_t* lineEnd : {u"\r\n", u"\n", u"\r"})
        ReplaceAll(lineEnd, with);
}

std::int32_t MString::ToInt() const {
    if (IsEmpty()) return 0;
    if (chars[0] != u'x') return ParseInt(chars);
    std::uint32_t value = 0;
    for (const char16_t unit : View().substr(1)) {
        value *= 16;
        if (IsDigit(unit)) value += static_cast<std::uint32_t>(unit - u'0');
        if (unit >= u'A' && unit <= u'F') value += static_cast<std::uint32_t>(unit - u'A' + 10);
        if (unit >= u'a' && unit <= u'f') value += static_cast<std::uint32_t>(unit - u'a' + 10);
    }
    return static_cast<std::int32_t>(value);
}

MString MString::WithoutTrailingZeros() const {
    ::View text = View();
    for (int i = 0; i < 2 && text.ends_with(u".0"); ++i)
        text.remove_suffix(2);
    return MString(text);
}

// Exactly as long as the text needs; nothing of the old buffer stays.
void MString::Assign(std::u16string_view text) {
    if (text.empty() && !chars) return;
    const std::size_t newCapacity = text.size() + 1;
    auto* const fresh = new char16_t[newCapacity];
    std::ranges::copy(text, fresh);
    fresh[text.size()] = 0;
    delete[] chars;
    chars = fresh;
    length = ToLength(text.size());
    capacity = ToLength(newCapacity);
}

void MString::Append(std::u16string_view text) {
    if (text.empty()) return;
    const std::int32_t newLength = length + ToLength(text.size());
    Reserve(newLength + 1, true);
    std::ranges::copy(text, chars + length);
    length = newLength;
    chars[length] = 0;
}

void MString::Release() {
    delete[] std::exchange(chars, nullptr);
    length = 0;
    capacity = 0;
}

std::int32_t ParseInt(const char16_t* text) {
    if (!text) return 0;
    const auto isSpace = [](char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); };
    while (isSpace(*text))
        ++text;
    const bool negative = *text == u'-';
    if (negative || *text == u'+') ++text;
    constexpr std::int64_t beyond = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    std::int64_t value = 0;
    for (; IsDigit(*text); ++text)
        value = std::min(value * 10 + (*text - u'0'), beyond);
    return static_cast<std::int32_t>(negative ? -value : std::min(value, beyond - 1));
}

std::string ToSystem(const MString& text) {
    return EncodeUtf8(text.View(), MLoneSurrogates::Keep);
}

MString FromSystem(std::string_view bytes) {
    return MString(DecodeUtf8(bytes, MLoneSurrogates::Keep));
}
