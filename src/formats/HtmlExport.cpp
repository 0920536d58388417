// The web page: the packed picture, a script with the font's numbers, a page that shows the font, and the files
// of the program's own that they need. An element whose font-family is the font's name is redrawn with the
// picture.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/ExportFiles.h"
#include "formats/MTextFile.h"
#include "formats/SiblingPath.h"
#include "formats/WebFont.h"
#include "foundation/MFolders.h"
#include "foundation/MNumbers.h"
#include "foundation/Product.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// More than this many pixels are too much for older phones and tablets. It is the area that counts.
constexpr std::uint64_t safeArea = 2048ULL * 1024;

constexpr const char* jQueryAddress = "https://code.jquery.com/jquery-1.10.1.min.js";
constexpr const char* runTime = "lettrino-1.0.js";

// Lines of a generated file, each ended by CR LF.
class Lines {
public:
    MString text;

    void Add(std::initializer_list<MString> parts) {
        for (const MString& part : parts)
            text += part;
        text += "\r\n";
    }
};

MString Number(std::int64_t value) {
    return MString(static_cast<std::int32_t>(value));
}

MString List(std::initializer_list<std::int64_t> values) {
    MString list("[");
    for (const std::int64_t value : values) {
        if (list.length > 1) list += ',';
        list += Number(value);
    }
    return list + "]";
}

MString GlyphList(const MColourFont& font) {
    MString list;
    for (const auto& glyph : font.Glyphs) {
        if (!glyph) continue;
        if (!list.IsEmpty()) list += ',';
        list += List({glyph->Character, glyph->X, glyph->Y, glyph->Width, glyph->Height, glyph->SpacingBefore,
                      glyph->SpacingAfter});
    }
    return list;
}

// Pairs of amount 0 are left out, but the comma goes by the place in the whole list: where the first pairs are
// left out, the array starts with a stray one. Readers of such scripts rely on their being written so.
MString KerningList(const MColourFont& font) {
    MString list;
    for (std::int32_t i = 0; i < font.Kerning.count; ++i) {
        const MKerningPair& pair = font.Kerning.data[i];
        if (pair.Amount == 0) continue;
        if (i > 0) list += ',';
        list += List({pair.Left, pair.Right, pair.Amount});
    }
    return list;
}

// What each element of the page is asked when the page is ready, and when its size changes.
void AddHandler(Lines& script, const MString& font, const char* event, const char* call) {
    script.Add({"$(window).", event, "(function(){"});
    script.Add({" $('*').each(function(){"});
    script.Add({"  var f=$(this).css('font-family');"});
    script.Add({"  if(f=='", font, "'){"});
    script.Add({"   ", call, "($(this),", font, ");"});
    script.Add({"  }"});
    script.Add({" });"});
    script.Add({"});"});
}

MString Script(const MColourFont& font, const MString& name, const MString& pictureName) {
    Lines script;
    script.Add({ScriptHeader()});
    script.Add({});
    script.Add({"var ", name, " = new Array();"});
    script.Add({name, "['Bitmap']=\"", pictureName,
                "\"; //The path of the bitmap relative to the file that includes this JS file"});
    script.Add({name, "['GlyphHeight']=", List({Settings->GlyphHeight}), ";"});
    script.Add({name, "['Baseline']=", List({font.Baseline}), ";"});
    script.Add({name, "['CapHeight']=", List({font.CapHeight}), ";"});
    script.Add({name, "['Resolution']=", List({font.Picture.Width, font.Picture.Height}), ";"});
    script.Add({name, "['SpaceWidth']=", Number(font.SpaceWidth), ";"});
    script.Add({name, "['Glyph']=[", GlyphList(font), "];"});
    script.Add({name, "['Kerning']=[", KerningList(font), "];"});
    script.Add({});
    AddHandler(script, name, "ready", "LT_ToColourFont");
    script.Add({});
    AddHandler(script, name, "resize", "LT_Resize");
    return script.text;
}

MString MinimalPage(const MColourFont& font, const MString& name) {
    // In most fonts the capitals are 70 percent of the font size.
    const auto fontSize = static_cast<float>(static_cast<double>(font.CapHeight) / 0.7);
    const std::int32_t lineHeight = ToInteger(Settings->GlyphHeight * 1.1);
    Lines page;
    page.Add({"<!DOCTYPE html>"});
    page.Add({"<html>"});
    page.Add({"<head>"});
    page.Add({"<title>Lettrino Demo</title>"});
    page.Add({"<meta http-equiv='Content-Type' content='text/html; charset=utf-8' />"});
    page.Add({"<script src='", jQueryAddress, "'></script>"});
    page.Add({"<script src='", runTime, "'></script>"});
    page.Add({"<script src='", name, ".js'></script>"});
    page.Add({"</head>"});
    page.Add({"<body>"});
    page.Add({"<h1 id='LT_Header' style='font-family:", name,
              "; font-size:", Number(ToInteger(std::round(fontSize))), "px; line-height:", Number(lineHeight),
              "px; letter-spacing:0px; margin:0; padding:0;'>Render Colour Fonts With Lettrino</h1>"});
    page.Add({"<p>This page has been generated by <a href='", ProductPage, "'>Lettrino</a></p>"});
    page.Add({"</body>"});
    page.Add({"</html>"});
    return page.text;
}

MString MediaFile(const char* name) {
    return GetProgramFolder() + "/Media/www/" + name;
}

constexpr std::array tryFiles{"colourpicker.png", "try.css", "try.js"};

// A file that is there already with the same bytes is left alone.
bool SameBytes(const MString& a, const MString& b) {
    MFile first(a, false, true);
    MFile second(b, false, true);
    return first.inMemory && second.inMemory && std::ranges::equal(first.buffer, second.buffer);
}

// Nothing for a file that doesn't come with the program, and for one that needs no copy.
std::optional<MSafeFile> CopyOfMedia(const char* name, const MString& target) {
    if (!FileExists(MediaFile(name)) || SameBytes(MediaFile(name), target)) return std::nullopt;
    MFile source(MediaFile(name), false, true);
    MSafeFile copy(target, MLinks::StayInFolder);
    if (source.buffer.count > 0)
        copy.WriteAt(0, source.buffer.data, static_cast<std::size_t>(source.buffer.count));
    return copy;
}

std::vector<const char*> MediaNames(bool minimal) {
    std::vector<const char*> names{runTime};
    if (!minimal) names.insert(names.end(), tryFiles.begin(), tryFiles.end());
    return names;
}

void CopyMedia(const MString& folder, bool minimal, MWriteFailures* failures) {
    std::vector<MSafeFile> copies;
    for (const char* name : MediaNames(minimal)) {
        if (auto copy = CopyOfMedia(name, folder + "/" + name)) copies.push_back(std::move(*copy));
    }
    PlaceAll(copies, failures);
}

// Without the page that comes with the program the text is empty, and then an earlier page stays.
MString TryPage(const MString& name) {
    MString page = MTextFile::ReadWholeFile(MediaFile("try.html"));
    page.ReplaceAll("[font]", name);
    return page;
}

bool UserAcceptsSize(const MColourFont& font) {
    if (std::uint64_t{font.Picture.Width} * font.Picture.Height <= safeArea) return true;
    const MString warning =
        "WARNING: the picture containing the glyphs of your font is too big for Safari on older "
        "versions of iOS devices including iPads, iPods and iPhones.\n\n"
        "Try limiting your texture to 2048 x 1024.\n\n"
        "You can do this by using a smaller glyph height: choose Edit > Change Glyph Height...";
    return Desktop::ShowMessage(font.Owner, warning, ProductName, Desktop::Buttons::OkCancel,
                                Desktop::Icon::Warning) == Desktop::Answer::Ok;
}

} // namespace

MString ScriptHeader() {
    return "/* JS file generated by Lettrino: " + ProductPage + " */";
}

MString WebFontName(const MString& path) {
    MString name = FileNameOf(path);
    name.KeepBefore(".");
    return name;
}

bool IsHarmlessWebName(const MString& path) {
    constexpr std::string_view signs = "_-$.";
    const MString name = FileNameOf(path); // the script names the picture with all of it
    return std::ranges::all_of(name.View(), [&](char16_t unit) {
        const auto written = static_cast<unsigned char>(unit & 0xFF); // what is left of it in the files
        const char byte = static_cast<char>(written);
        // Browsers read a NUL as a character that stands for a fault, and no more.
        return written > 127 || written == 0 || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= 'a' && byte <= 'z') || signs.find(byte) != std::string_view::npos;
    });
}

std::vector<MString> PagePaths(const MString& path, bool minimal) {
    std::vector<MString> paths;
    for (const char* extension : {"html", "js", "png"})
        paths.push_back(SiblingPath(path, extension));
    for (const char* name : MediaNames(minimal)) {
        const MString target = FolderOf(path) + "/" + name;
        if (FileExists(MediaFile(name)) && !SameBytes(MediaFile(name), target)) paths.push_back(target);
    }
    return paths;
}

bool MColourFont::ExportHtml(const MString& path, bool minimal, MWriteFailures* failures) {
    if (!Picture.IsValid() || !UserAcceptsSize(*this)) return false;
    const MString name = WebFontName(path);
    // Only the last extension is replaced, while the name ends at the first dot: with a dot in the name the
    // page looks for files that are not there.
    const MString picturePath = SiblingPath(path, "png");
    const MString page = minimal ? MinimalPage(*this, name) : TryPage(name);
    const auto prepare = [](const MString& text, const MString& target) {
        return MTextFile::PrepareWholeFile(text, target, MTextEncoding::Ansi, MLinks::StayInFolder);
    };
    CopyMedia(FolderOf(path), minimal, failures);

    // These belong together: a picture of one font with the numbers of another would be of no use.
    std::vector<MSafeFile> files;
    files.push_back(Picture.PrepareSave(picturePath, FormatNone, MLinks::StayInFolder));
    files.push_back(prepare(Script(*this, name, FileNameOf(picturePath)), SiblingPath(path, "js")));
    if (!page.IsEmpty()) files.push_back(prepare(page, SiblingPath(path, "html")));
    const auto finished = std::ranges::count_if(files, [](MSafeFile& file) { return file.Finish(); });
    if (finished == std::ssize(files)) return PlaceAll(files, failures) == files.size();
    for (const MSafeFile& file : files) {
        if (failures && !file.Ok()) failures->push_back({file.Path(), file.Failure()});
    }
    return false;
}
