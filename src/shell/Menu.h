// The menu of the main window, as data.
#pragma once

#include <array>
#include <cstdint>
#include <span>

enum class CommandId : std::uint16_t {
    OrderingInformation = 32816,
    New = 32825,
    Open = 32827,
    SaveAs = 32828,
    ExportHtml = 32838,
    ExportSingleFiles = 32841,
    ImportPhotofont = 32855,
    ExportCubes = 32856,
    Exit = 32857,
    AddCharacters = 32858,
    AddPicture = 32859,
    KerningEditor = 32862,
    SetBackgroundColour = 32865,
    EnterLicenseKeys = 32866,
    UserGuide = 32867,
    About = 32868,
    GlyphsEditor = 32872,
    ChangeGlyphHeight = 32873,
    RemoveNonAscii = 32875,
    TrimVertically = 32877,
    ImportHtml = 32880,
    Community = 32882,
    ExportGameFont = 32890,
    ImportGameFont = 32891,
    OpticalKerning = 32892,
    ExportWebFont = 32893,
    AddSheet = 32894,
};

struct MenuItem {
    const char* text = ""; // empty for a separator
    const char* key = "";  // as it is shown; empty for none
    CommandId command{};
};

struct Menu {
    const char* title;
    std::span<const MenuItem> items;
};

inline constexpr MenuItem menuSeparator{};

inline constexpr std::array fileItems{
    MenuItem{"New...", "F2", CommandId::New},
    MenuItem{"Open...", "Ctrl+O", CommandId::Open},
    MenuItem{"Save as...", "Ctrl+S", CommandId::SaveAs},
    menuSeparator,
    MenuItem{"Import HTML...", "", CommandId::ImportHtml},
    MenuItem{"Import photofont...", "", CommandId::ImportPhotofont},
    MenuItem{"Import game font...", "", CommandId::ImportGameFont},
    menuSeparator,
    MenuItem{"Export as HTML...", "", CommandId::ExportHtml},
    MenuItem{"Export as single files...", "", CommandId::ExportSingleFiles},
    MenuItem{"Export as cubes...", "", CommandId::ExportCubes},
    MenuItem{"Export as game font...", "", CommandId::ExportGameFont},
    MenuItem{"Export as web font...", "", CommandId::ExportWebFont},
    menuSeparator,
    MenuItem{"Exit", "", CommandId::Exit},
};

inline constexpr std::array editItems{
    MenuItem{"Add/change characters...", "F3", CommandId::AddCharacters},
    MenuItem{"Add/change picture...", "F4", CommandId::AddPicture},
    MenuItem{"Add picture sheet...", "", CommandId::AddSheet},
    MenuItem{"Glyphs editor...", "F5", CommandId::GlyphsEditor},
    MenuItem{"Kerning editor...", "F6", CommandId::KerningEditor},
    MenuItem{"Optical kerning...", "", CommandId::OpticalKerning},
    MenuItem{"Change glyph height...", "F7", CommandId::ChangeGlyphHeight},
    menuSeparator,
    MenuItem{"Remove non-ASCII characters", "", CommandId::RemoveNonAscii},
    MenuItem{"Trim vertically", "", CommandId::TrimVertically},
};

inline constexpr std::array settingsItems{
    MenuItem{"Set background colour...", "", CommandId::SetBackgroundColour},
    MenuItem{"Enter license keys...", "", CommandId::EnterLicenseKeys},
};

inline constexpr std::array helpItems{
    MenuItem{"User guide", "F1", CommandId::UserGuide},
    MenuItem{"Community", "", CommandId::Community},
    menuSeparator,
    MenuItem{"Ordering information...", "", CommandId::OrderingInformation},
    MenuItem{"About Lettrino", "", CommandId::About},
};

inline constexpr std::array menus{
    Menu{"FILE", fileItems},
    Menu{"EDIT", editItems},
    Menu{"SETTINGS", settingsItems},
    Menu{"HELP", helpItems},
};
