// MString in test output.
#pragma once

#include "foundation/MString.h"

#include <ostream>
#include <string>
#include <string_view>

inline void PrintTo(const MString& text, std::ostream* out) {
    *out << '"' << ToSystem(text) << '"';
}

// The narrow form, for comparisons with literals.
inline std::string Narrow(const MString& text) {
    return ToSystem(text);
}

inline std::string ReplaceAll(std::string text, std::string_view find, std::string_view with) {
    for (std::size_t at = 0; (at = text.find(find, at)) != std::string::npos; at += with.size())
        text.replace(at, find.size(), with);
    return text;
}
