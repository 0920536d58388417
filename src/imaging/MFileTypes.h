// File extensions sorted into named categories. What asks are the opener of links, whether a link is a web
// page, and the file dialogs, for what they offer.
#pragma once

#include "foundation/MString.h"
#include "foundation/MVector.h"

#include <array>
#include <cstdint>

class MFileTypes {
public:
    static constexpr std::int32_t CategoryCount = 21;

    // In upper case, without dots; sorted once BuildFileTypes is through.
    std::array<MVector<MString>, CategoryCount> Extensions;

    // Fills the table; run once, at program start. False without memory.
    bool BuildFileTypes();
    // Turned to upper case, and added at the end of its category if it is new there. Pictures and videos go
    // into the category of both as well. EPS is no picture file here. Does nothing for a category that doesn't
    // exist.
    void AddExtension(std::int32_t category, MString extension);
    // Whether a file of this extension is opened in a browser; `extension` as MString::GetExtension gives it.
    bool IsWebPage(const MString& extension) const;
    // Whether it is that of a picture which can be read.
    bool IsPicture(const MString& extension) const;

    // "Text files" and so on; "?" for any number outside 0 to 20.
    static const char* GetTypeName(std::int32_t category);

private:
    bool Holds(std::int32_t category, const MString& extension) const;
    void AddPictureExtensions();
};

extern MFileTypes FileTypes;
