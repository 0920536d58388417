// UTF-8 to UTF-16 and back, and the pair that turns a text into the system's bytes.
#pragma once

#include "foundation/MString.h"

#include <string>
#include <string_view>

enum class MLoneSurrogates {
    Replace, // U+FFFD, as text files want it
    Keep,    // three bytes of their own, so that any text survives the way out and back
};

// Bytes that are not UTF-8 become U+FFFD, one for each.
std::u16string DecodeUtf8(std::string_view bytes, MLoneSurrogates surrogates);
std::string EncodeUtf8(std::u16string_view units, MLoneSurrogates surrogates);

// A text as the system takes it for names and arguments (UTF-8), and back. Every MString survives the round
// trip, lone surrogates included.
std::string ToSystem(const MString& text);
MString FromSystem(std::string_view bytes);
