// Fonts for tests: the installed ones by their files, and those that a test builds.
#pragma once

#include "TemporaryFolder.h"
#include "Text.h"
#include "platform/text/MSystemFonts.h"

#include <fontconfig/fontconfig.h>

#include <string>
#include <string_view>

inline std::string FontPath(std::string_view name) {
    const std::string folder = name.starts_with("DejaVu") ? "dejavu/" : "liberation/";
    return "/usr/share/fonts/truetype/" + folder + std::string(name) + ".ttf";
}

// Files that are fonts of this program for as long as the object lives.
class AddedFonts : public TemporaryFolder {
public:
    ~AddedFonts() { FcConfigAppFontClear(nullptr); }

    bool Add(const char* name, const std::string& bytes) const { return AddFontFile(Write(name, bytes)); }
};
