// Text in pages.
#pragma once

#include <string>
#include <string_view>

// Between tags, or between the double quotation marks of an attribute.
std::string Markup(std::string_view text);

// As a part of an address, bytes that it can't have escaped (RFC 3986, 2.1), "/" too.
std::string Address(std::string_view text);
