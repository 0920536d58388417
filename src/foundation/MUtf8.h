// UTF-8 to UTF-16 and back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

enum class MLoneSurrogates {
    Replace, // U+FFFD, as text files want it
    Keep,    // three bytes of their own, so that any text survives the way out and back
};

// Bytes that are not UTF-8 become U+FFFD, one for each.
std::u16string DecodeUtf8(std::string_view bytes, MLoneSurrogates surrogates);
std::string EncodeUtf8(std::u16string_view units, MLoneSurrogates surrogates);

// As messages name a character: "U+0041".
std::string CodePointText(std::uint32_t code);
