// The settings file: one line for each key, the key first and then its values. It is read at the start and
// written at the end of the program, and at no other time.

#include "document/MSettings.h"
#include "formats/MTextFile.h"
#include "foundation/MFolders.h"
#include "foundation/Product.h"
#include "shell/MergeSettings.h"

#include <array>
#include <optional>
#include <string_view>

namespace {

constexpr std::size_t firstCode = 33;

// The line of one key, as it is read and as it is written.
struct Field {
    std::u16string_view key;
    void (*read)(const MTextFile& file, MSettings& settings);
    void (*write)(MTextFile& file, const MSettings& settings);
};

template<auto Member>
constexpr Field NumberField(std::u16string_view key) {
    return {key,
            [](const MTextFile& file, MSettings& settings) {
                settings.*Member = static_cast<std::decay_t<decltype(settings.*Member)>>(file.GetInt(1));
            },
            [](MTextFile& file, const MSettings& settings) {
                file.WriteInt(static_cast<std::int32_t>(settings.*Member));
            }};
}

template<auto Member>
constexpr Field BoolField(std::u16string_view key) {
    return {key, [](const MTextFile& file, MSettings& settings) { settings.*Member = file.GetBool(1); },
            [](MTextFile& file, const MSettings& settings) { file.WriteBool(settings.*Member); }};
}

template<auto Member>
constexpr Field TextField(std::u16string_view key) {
    return {key, [](const MTextFile& file, MSettings& settings) { settings.*Member = file.GetString(1); },
            [](MTextFile& file, const MSettings& settings) { file.WriteString(settings.*Member); }};
}

// Red, green and blue; opaque.
template<auto Member>
constexpr Field ColourField(std::u16string_view key) {
    return {key,
            [](const MTextFile& file, MSettings& settings) {
                const auto channel = [&](int index) { return static_cast<std::uint8_t>(file.GetInt(index)); };
                settings.*Member = MColour(channel(1), channel(2), channel(3));
            },
            [](MTextFile& file, const MSettings& settings) {
                const MColour& colour = settings.*Member;
                for (const std::uint8_t channel : {colour.r, colour.g, colour.b})
                    file.WriteInt(channel);
            }};
}

// The padding and the spacings share a line.
constexpr std::array pictureAmounts{&MSettings::PaddingTop, &MSettings::PaddingBottom,
                                    &MSettings::SpacingBefore, &MSettings::SpacingAfter};

constexpr Field paddingField{u"Padding",
                             [](const MTextFile& file, MSettings& settings) {
                                 int index = 0;
                                 for (const auto amount : pictureAmounts)
                                     settings.*amount = file.GetInt(++index);
                             },
                             [](MTextFile& file, const MSettings& settings) {
                                 for (const auto amount : pictureAmounts)
                                     file.WriteInt(settings.*amount);
                             }};

constexpr Field windowField{
    u"WindowRect",
    [](const MTextFile& file, MSettings& settings) {
        settings.FileWindowRect = {file.GetInt(1), file.GetInt(2), file.GetInt(3), file.GetInt(4)};
        settings.WindowRect = settings.FileWindowRect;
        settings.ClampWindowRect();
    },
    [](MTextFile& file, const MSettings& settings) {
        // A window that was left where it opened keeps the place it had, though this screen may be too small
        // for it.
        MSettings opened;
        opened.WindowRect = settings.FileWindowRect;
        opened.ClampWindowRect();
        const Desktop::Rect& rect =
            opened.WindowRect == settings.WindowRect && !settings.FileWindowRect.IsEmpty()
                ? settings.FileWindowRect
                : settings.WindowRect;
        for (const std::int32_t edge : {rect.left, rect.top, rect.right, rect.bottom})
            file.WriteInt(edge);
    }};

constexpr Field keysField{u"Keys",
                          [](const MTextFile& file, MSettings& settings) {
                              int index = 0;
                              for (MString& key : settings.Keys)
                                  key = file.GetString(++index);
                          },
                          [](MTextFile& file, const MSettings& settings) {
                              for (const MString& key : settings.Keys)
                                  file.WriteString(key);
                          }};

constexpr Field gameFontField{u"GameFont",
                              [](const MTextFile& file, MSettings& settings) {
                                  MGameFontChoices& choices = settings.GameFont;
                                  choices.Engine = file.GetString(1);
                                  choices.Form = file.GetString(2);
                                  choices.Gap = file.GetInt(3);
                                  choices.PageSize = file.GetString(4);
                                  choices.Largest = file.GetInt(5);
                                  choices.Bleed = file.GetInt(6);
                              },
                              [](MTextFile& file, const MSettings& settings) {
                                  const MGameFontChoices& choices = settings.GameFont;
                                  file.WriteString(choices.Engine);
                                  file.WriteString(choices.Form);
                                  file.WriteInt(choices.Gap);
                                  file.WriteString(choices.PageSize);
                                  file.WriteInt(choices.Largest);
                                  file.WriteInt(choices.Bleed);
                              }};

constexpr std::array firstFields{
    ColourField<&MSettings::BackgroundColour>(u"BackgroundColour"),
    TextField<&MSettings::FontName>(u"FontName"),
    NumberField<&MSettings::Weight>(u"Weight"),
    BoolField<&MSettings::Italic>(u"Italic"),
    BoolField<&MSettings::ColourFont>(u"ColourFont"),
    ColourField<&MSettings::Colour>(u"Colour"),
    NumberField<&MSettings::GlyphHeight>(u"GlyphHeight"),
    NumberField<&MSettings::Char>(u"Char"),
    paddingField,
    BoolField<&MSettings::Trim>(u"Trim"),
    TextField<&MSettings::LetterCubesNames>(u"LetterCubesNames"),
};

constexpr Field opticalKerningField{u"OpticalKerning",
                                    [](const MTextFile& file, MSettings& settings) {
                                        settings.KerningText = file.GetString(1);
                                        settings.KerningStrength = file.GetInt(2);
                                    },
                                    [](MTextFile& file, const MSettings& settings) {
                                        file.WriteString(settings.KerningText);
                                        file.WriteInt(settings.KerningStrength);
                                    }};

// "Path" or "S" with a number.
MString NumberedKey(const char* name, std::size_t number) {
    return MString(name) + MString(static_cast<std::int32_t>(number));
}

bool ReadField(const Field& field, const MTextFile& file, const MString& key, MSettings& settings) {
    if (key.View() != field.key) return false;
    field.read(file, settings);
    return true;
}

void WriteField(const Field& field, MTextFile& file, const MSettings& settings) {
    file.WriteString(MString(field.key));
    field.write(file, settings);
    file.EndLine();
}

// The number of a key "Path" or "S" within these bounds.
std::optional<std::size_t> NumberOf(const MString& key, const char* name, std::size_t first, std::size_t end) {
    const MString digits(key.Chars(), MString(name).Length(), -1);
    const std::int32_t number = ParseInt(digits.Chars());
    if (number < static_cast<std::int32_t>(first) || number >= static_cast<std::int32_t>(end))
        return std::nullopt;
    const auto index = static_cast<std::size_t>(number);
    return key.Equals(NumberedKey(name, index)) ? std::optional(index) : std::nullopt;
}

void ReadNumbered(const MTextFile& file, const MString& key, MSettings& settings) {
    if (const auto code = NumberOf(key, "S", firstCode, settings.Selected.size())) {
        settings.Selected[*code] = file.GetBool(1) ? 1 : 0;
    } else if (const auto kind = NumberOf(key, "Path", 0, PathKinds)) {
        // The temporary folder is always that of the defaults.
        if (static_cast<MPathKind>(*kind) != MPathKind::Temporary) settings.Paths[*kind] = file.GetString(1);
    }
}

void ReadLine(const MTextFile& file, MSettings& settings) {
    const MString key = file.GetString(0);
    for (const Field& field : firstFields) {
        if (ReadField(field, file, key, settings)) return;
    }
    for (const Field* const field : {&windowField, &keysField, &opticalKerningField, &gameFontField}) {
        if (ReadField(*field, file, key, settings)) return;
    }
    ReadNumbered(file, key, settings);
}

// False if the file can't be opened.
bool ReadLines(const MString& path, MSettings& settings) {
    MTextFile file(path, false, true, MTextEncoding::Utf16Le);
    if (!file.ok) return false;
    while (file.NextLine())
        ReadLine(file, settings);
    return true;
}

} // namespace

MString MSettings::SettingsFilePath() {
    return JoinPath(GetAppDataFolder(MakerName, ProductName), ProductName + ".txt");
}

void MSettings::Load() {
    const MString path = SettingsFilePath();
    if (FileExists(path)) {
        FileRead = ReadLines(path, *this);
        if (!FileRead) return;
    }
    Start = std::make_shared<const MSettings>(*this);
}

void MSettings::Save() const {
    const MString path = SettingsFilePath();
    MSettings merged(*this);
    if (FileExists(path)) {
        // What has come since a start without a file is another window's.
        MSettings theirs = Start ? *Start : *this;
        const bool read = Start && ReadLines(path, theirs);
        if (read) MergeSettings(merged, *Start, theirs);
        if (!FileRead && !read) return;
    }
    merged.Write(path);
}

void MSettings::Write(const MString& path) const {
    MTextFile file(path, true, false, MTextEncoding::Utf16Le);
    const auto tell = [](const MString& text) {
        Desktop::ShowMessage(nullptr, text, ProductName, Desktop::Buttons::Ok, Desktop::Icon::Error);
    };
    if (!file.ok) {
        tell("Could not open:\n\n\"" + path + "\"");
        return;
    }
    for (const Field& field : firstFields)
        WriteField(field, file, *this);
    for (std::size_t kind = 0; kind < PathKinds; ++kind) {
        if (kind >= FirstPathKinds && Paths[kind].IsEmpty()) continue;
        file.WriteString(NumberedKey("Path", kind));
        file.WriteString(Paths[kind]);
        file.EndLine();
    }
    for (std::size_t code = firstCode; code < Selected.size(); ++code) {
        file.WriteString(NumberedKey("S", code));
        file.WriteBool(Selected[code] != 0);
        file.EndLine();
    }
    WriteField(windowField, file, *this);
    if (!Keys[0].IsEmpty()) WriteField(keysField, file, *this);
    // Only what was changed: who never uses these has a file as it always was.
    const MSettings defaults;
    if (!KerningText.Equals(defaults.KerningText) || KerningStrength != defaults.KerningStrength)
        WriteField(opticalKerningField, file, *this);
    if (!(GameFont == MGameFontChoices())) WriteField(gameFontField, file, *this);
    if (!file.Place()) tell("Could not write:\n\n\"" + path + "\"\n\n" + file.out.Failure());
}
