#include "imaging/MFileTypes.h"

#include "imaging/codecs/MCodec.h"

#include <algorithm>
#include <string_view>

MFileTypes FileTypes;

namespace {

constexpr std::int32_t videos = 9;
constexpr std::int32_t pictures = 14;
constexpr std::int32_t serverScripts = 15;
constexpr std::int32_t picturesAndVideos = 20;

struct Category {
    const char* name;
    std::string_view extensions;
};

constexpr std::array<Category, MFileTypes::CategoryCount> categories = {{
    {"Text files", "TXT"},
    {"Showmarquee show files", "SQ"},
    {"Showmarquee playlists", "SQPL"},
    {"Showmarquee presets", "SP"},
    {"Showmarquee colour fonts", "SM"},
    {"Showmarquee uncompiled effects", "SMX"},
    {"Showmarquee effects", "CFX"},
    {"Cube map files", "DDS"},
    {"(Animated) GIF files", "GIF"},
    {"Video files",
     "ASF AVI MPG MPEG VOB QT WMV MOV FLV 3GP OGG OGM OGV OGA MP4 DIVX GIF WEBM MKV MKA M4V HDMOV TS "
     "M2TS M2T MTS BDMV MPLS"},
    {"Vector files", "EPS"},
    {"Audio files", "MP3 WAV MID WMA M4A AAC OPUS"},
    {"XML files", "XML"},
    {"3D model files", "OBJ X"},
    {"Picture files", "TGA DDS"}, // and what the codecs add
    {"Server scripts", "HTML HTM PHP JSP ASP ASPX"},
    {"Video capture devices", ""},
    {"QR code", ""},
    {"Dynamic colourmaps", ""},
    {"Dynamic cubemaps", ""},
    {"Picture and video files", ""}, // all of both
}};

// Calls `action` for each run of capital letters and digits.
template<typename Action>
void ForEachWord(std::u16string_view text, const Action& action) {
    const auto isPart = [](char16_t unit) {
        return (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9');
    };
    while (!text.empty()) {
        const auto length = static_cast<std::size_t>(std::ranges::find_if_not(text, isPart) - text.begin());
        if (length > 0) action(MString(text.substr(0, length)));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
}

} // namespace

bool MFileTypes::BuildFileTypes() {
    for (std::int32_t i = 0; i < CategoryCount; ++i) {
        const std::string_view extensions = categories[static_cast<std::size_t>(i)].extensions;
        ForEachWord(std::u16string(extensions.begin(), extensions.end()),
                    [&](const MString& extension) { AddExtension(i, extension); });
    }
    AddPictureExtensions();
    for (auto& extensions : Extensions) {
        std::ranges::sort(extensions, [](const MString& a, const MString& b) { return a.Compare(b) < 0; });
    }
    return std::ranges::all_of(std::array{pictures, serverScripts, picturesAndVideos}, [&](std::int32_t i) {
        return Extensions[static_cast<std::size_t>(i)].count > 0;
    });
}

void MFileTypes::AddPictureExtensions() {
    std::u16string extensions;
    for (const MCodec& codec : Codecs()) {
        extensions.append(codec.extensions.begin(), codec.extensions.end());
        extensions += u',';
    }
    MString list(extensions);
    list.ToUpper();
    ForEachWord(list.View(), [&](const MString& extension) { AddExtension(pictures, extension); });
}

void MFileTypes::AddExtension(std::int32_t category, MString extension) {
    if (category < 0 || category >= CategoryCount) return;
    extension.ToUpper();
    if (category == pictures && extension.Equals(u"EPS")) return;
    auto& extensions = Extensions[static_cast<std::size_t>(category)];
    if (!Holds(category, extension) && extensions.Resize(extensions.count + 1, true)) {
        extensions.data[extensions.count - 1] = extension;
    }
    if (category == videos || category == pictures) AddExtension(picturesAndVideos, extension);
}

bool MFileTypes::Holds(std::int32_t category, const MString& extension) const {
    return std::ranges::any_of(Extensions[static_cast<std::size_t>(category)],
                               [&](const MString& known) { return known.Equals(extension); });
}

bool MFileTypes::IsWebPage(const MString& extension) const {
    for (const char16_t* other : {u"EPS", u"PNG", u"SM"}) {
        if (extension.Equals(other)) return false;
    }
    return Holds(serverScripts, extension);
}

const char* MFileTypes::GetTypeName(std::int32_t category) {
    const bool known = category >= 0 && category < CategoryCount;
    return known ? categories[static_cast<std::size_t>(category)].name : "?";
}
