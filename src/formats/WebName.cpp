#include "formats/WebName.h"

#include "formats/SiblingPath.h"
#include "formats/WebFont.h"
#include "foundation/MFolders.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace {

// ECMAScript 2024, 12.7.2: the words that no variable can have outside of strict mode.
constexpr std::array<std::string_view, 36> reservedWords{
    "break", "case",   "catch", "class",      "const",   "continue", "debugger", "default", "delete",
    "do",    "else",   "enum",  "export",     "extends", "false",    "finally",  "for",     "function",
    "if",    "import", "in",    "instanceof", "new",     "null",     "return",   "super",   "switch",
    "this",  "throw",  "true",  "try",        "typeof",  "var",      "void",     "while",   "with"};

// What a script of a page can't make a variable of its own: each property of the window of Chromium 156 and
// Firefox 153 was tried.
constexpr std::array<std::string_view, 36> windowProperties{"Infinity",
                                                            "NaN",
                                                            "caches",
                                                            "closed",
                                                            "cookieStore",
                                                            "crashReport",
                                                            "credentialless",
                                                            "crossOriginIsolated",
                                                            "crypto",
                                                            "customElements",
                                                            "document",
                                                            "documentPictureInPicture",
                                                            "fence",
                                                            "frameElement",
                                                            "fullScreen",
                                                            "history",
                                                            "indexedDB",
                                                            "isSecureContext",
                                                            "launchQueue",
                                                            "localStorage",
                                                            "location",
                                                            "mozInnerScreenX",
                                                            "mozInnerScreenY",
                                                            "name",
                                                            "navigator",
                                                            "originAgentCluster",
                                                            "sessionStorage",
                                                            "speechSynthesis",
                                                            "status",
                                                            "styleMedia",
                                                            "top",
                                                            "trustedTypes",
                                                            "undefined",
                                                            "window",
                                                            "LT_Resize",
                                                            "LT_ToColourFont"};

// What the run-time script and jQuery work with; a variable of the same name takes it from them.
constexpr std::array<std::string_view, 36> globals{"Array",
                                                   "ArrayBuffer",
                                                   "Boolean",
                                                   "CSS",
                                                   "DataView",
                                                   "Date",
                                                   "Document",
                                                   "Error",
                                                   "FontFace",
                                                   "Function",
                                                   "HTMLElement",
                                                   "Image",
                                                   "JSON",
                                                   "Map",
                                                   "Math",
                                                   "MutationObserver",
                                                   "Node",
                                                   "Number",
                                                   "Object",
                                                   "Promise",
                                                   "RegExp",
                                                   "Set",
                                                   "String",
                                                   "Symbol",
                                                   "TextEncoder",
                                                   "URL",
                                                   "Uint8Array",
                                                   "WeakMap",
                                                   "atob",
                                                   "console",
                                                   "getComputedStyle",
                                                   "jQuery",
                                                   "parseFloat",
                                                   "parseInt",
                                                   "performance",
                                                   "setTimeout"};

// CSS Fonts 4, 2.1, and CSS Cascade 5, 7.3: what is no family of one's own as a word without quotation marks.
// The case doesn't count.
constexpr std::array<std::string_view, 12> styleWords{"cursive",   "default", "emoji",   "fangsong",
                                                      "fantasy",   "inherit", "initial", "math",
                                                      "monospace", "revert",  "serif",   "unset"};

bool IsOneOf(std::string_view name, std::span<const std::string_view> words) {
    return std::ranges::find(words, name) != words.end();
}

std::string InLowerCase(std::string name) {
    std::ranges::transform(name, name.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return name;
}

} // namespace

std::string_view WebNameTrouble(const MString& path) {
    const MString whole = WebFontName(path);
    if (std::ranges::any_of(FileNameOf(path).View(), [](char16_t unit) { return unit > 126; }))
        return "has letters beyond ASCII, which the page's bytes can't hold";
    const std::string name(whole.View().begin(), whole.View().end());
    if (name.find('$') != std::string::npos) return "has a \"$\", which no name in a style sheet can have";
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    if (name.empty() || isDigit(name.front()) ||
        !std::ranges::all_of(name, [&](char c) { return isLetter(c) || isDigit(c); }))
        return "is no name that a script can use";
    if (!FileNameOf(SiblingPath(path, "js")).Equals(whole + ".js"))
        return "ends at its first dot for the page, and the files have all of it";
    if (IsOneOf(name, reservedWords)) return "is a word of the script language";
    if (IsOneOf(name, windowProperties)) return "belongs to the browser's window, and no script can take it";
    if (IsOneOf(name, globals)) return "is what the page's other scripts work with";
    const std::string lower = InLowerCase(name);
    if (IsOneOf(lower, styleWords)) return "means something else in style sheets";
    if (lower == "colourpicker") return "is that of another picture of the page";
    return {};
}
