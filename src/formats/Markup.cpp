#include "formats/Markup.h"

#include <array>
#include <cstdio>

namespace {

bool StandsInAddresses(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("-_.").find(c) != std::string_view::npos;
}

} // namespace

std::string Markup(std::string_view text) {
    std::string markup;
    for (const char c : text) {
        if (c == '&')
            markup += "&amp;";
        else if (c == '<')
            markup += "&lt;";
        else if (c == '>')
            markup += "&gt;";
        else if (c == '"')
            markup += "&quot;";
        else
            markup += c;
    }
    return markup;
}

std::string Address(std::string_view text) {
    std::string address;
    for (const char c : text) {
        std::array<char, 4> escaped{};
        std::snprintf(escaped.data(), escaped.size(), "%%%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(c)));
        address += StandsInAddresses(c) ? std::string(1, c) : escaped.data();
    }
    return address;
}
