// The web page: the packed picture, a script with the font's numbers, a page that shows the font, and the files
// of the program's own that they need. An element whose font-family is the font's name is redrawn with the
// picture.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/MTextFile.h"
#include "formats/SiblingPath.h"
#include "formats/WebFont.h"
#include "foundation/MFolders.h"
#include "foundation/MNumbers.h"
#include "foundation/Product.h"

#include <cmath>
#include <filesystem>
#include <initializer_list>

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

// Over an earlier file. A copy that fails is not told.
void CopyMedia(const char* name, const MString& target) {
    const auto source = FindExisting(MediaFile(name));
    if (!source) return;
    std::error_code error;
    std::filesystem::copy_file(*source, ToSystemPath(target), std::filesystem::copy_options::overwrite_existing,
                               error);
}

void WriteTryPage(const MString& folder, const MString& htmlPath, const MString& name) {
    for (const char* file : {"colourpicker.png", "try.css", "try.js"})
        CopyMedia(file, folder + "/" + file);
    CopyMedia("try.html", htmlPath);
    MString page = MTextFile::ReadWholeFile(MediaFile("try.html"));
    page.ReplaceAll("[font]", name);
    MTextFile::WriteWholeFile(page, htmlPath, MTextEncoding::Ansi);
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
    MString name = path.GetFileName();
    name.KeepBefore(".");
    return name;
}

bool MColourFont::ExportHtml(const MString& path, bool minimal) {
    if (!Picture.IsValid() || !UserAcceptsSize(*this)) return false;
    const MString name = WebFontName(path);
    const MString folder = path.GetFolder();
    // Only the last extension is replaced, while the name ends at the first dot: with a dot in the name the
    // page looks for files that are not there.
    const MString htmlPath = SiblingPath(path, "html");
    const MString picturePath = SiblingPath(path, "png");

    Picture.Save(picturePath);
    CopyMedia(runTime, folder + "/" + runTime);
    if (minimal) {
        if (!MTextFile::WriteWholeFile(MinimalPage(*this, name), htmlPath, MTextEncoding::Ansi)) return false;
    } else {
        WriteTryPage(folder, htmlPath, name);
    }
    return MTextFile::WriteWholeFile(Script(*this, name, picturePath.GetFileName()), SiblingPath(path, "js"),
                                     MTextEncoding::Ansi);
}
