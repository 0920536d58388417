// MString in test output and comparisons.
#pragma once

#include "foundation/MUtf8.h"

#include <ostream>
#include <string>

inline void PrintTo(const MString& text, std::ostream* out) {
    *out << '"' << ToSystem(text) << '"';
}

inline bool operator==(const MString& a, const MString& b) {
    return a.Equals(b);
}

// The narrow form, for comparisons with literals.
inline std::string Narrow(const MString& text) {
    return ToSystem(text);
}
