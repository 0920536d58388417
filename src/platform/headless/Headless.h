// The seam without a display. What the desktop would answer is set beforehand; what was asked is recorded.
#pragma once

#include "platform/Desktop.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Headless {

struct Message {
    MString text;
    MString caption;
    Desktop::Buttons buttons;
    Desktop::Icon icon;
};

struct Painting {
    Desktop::WindowHandle window;
    Desktop::Rect area;
    std::int32_t width;
    std::int32_t height;
    std::vector<std::uint8_t> pixels; // blue, green, red, alpha; rows without gaps
};

struct Script {
    std::deque<Desktop::Answer> answers; // taken in order; when they run out: Yes, or Ok where there is no Yes
    std::deque<MString> files;           // taken in order; when they run out: cancelled
    std::deque<std::optional<MColour>> colours; // taken in order; none, and when they run out: cancelled
    // What a person does in a dialog, and whether it ends with OK. One without an entry is cancelled.
    std::map<Desktop::DialogId, std::function<bool()>> dialogs;
    std::function<int()> messageLoop; // what happens between the opening of the window and its end
    bool opensMainWindow = true;
    std::int32_t earlierWindows = 0;
    Desktop::Rect client{0, 0, 640, 360}; // of every window
    MColour buttonColour{240, 240, 240};
    Desktop::Rect primaryScreen{0, 0, 1920, 1080};
    Desktop::Rect virtualScreen{0, 0, 1920, 1080};
    // Follows the progress window, for whoever shows it in another way: percent and text on each change, and a
    // percent of -1 when it closes.
    std::function<void(std::int32_t percent, const MString& text)> onProgress;
};

struct Record {
    std::vector<Message> messages;
    std::vector<Desktop::FileDialog> fileDialogs;
    std::vector<MColour> colourDialogs; // the colours they started with
    std::vector<Desktop::DialogId> dialogs;
    std::vector<MString> urls;
    std::vector<Desktop::Rect> mainWindows; // where they were opened
    std::vector<MString> titles;            // as they were set
    std::int32_t closedWindows = 0;
    std::vector<std::int32_t> progressPercents;
    std::vector<MString> progressTexts;
    std::vector<Painting> paintings;
};

extern Script script;
extern Record record;

// Forgets the script and the record.
void Reset();

} // namespace Headless
