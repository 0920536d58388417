#include "platform/headless/Headless.h"

namespace Headless {

Script script;
Record record;

void Reset() {
    script = {};
    record = {};
}

namespace {

std::int32_t progressPercent = 0;
MString progressText;

template<typename T>
T Take(std::deque<T>& queue, T otherwise) {
    if (queue.empty()) return otherwise;
    T first = queue.front();
    queue.pop_front();
    return first;
}

} // namespace
} // namespace Headless

namespace Desktop {

using Headless::record;
using Headless::script;

Answer ShowMessage(WindowHandle, const MString& text, const MString& caption, Buttons buttons, Icon icon) {
    record.messages.push_back({text, caption, buttons, icon});
    const bool hasYes = buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel;
    return Headless::Take(script.answers, hasYes ? Answer::Yes : Answer::Ok);
}

MString ShowFileDialog(WindowHandle, FileDialog& dialog, const MString&) {
    record.fileDialogs.push_back(dialog);
    return Headless::Take(script.files, MString());
}

bool ChooseColour(WindowHandle, MColour& colour) {
    record.colourDialogs.push_back(colour);
    const auto chosen = Headless::Take(script.colours, std::optional<MColour>());
    if (chosen) colour = *chosen;
    return chosen.has_value();
}

bool RunDialog(WindowHandle, DialogId id) {
    record.dialogs.push_back(id);
    const auto found = script.dialogs.find(id);
    return found != script.dialogs.end() && found->second();
}

void OpenInBrowser(const MString& url) {
    record.urls.push_back(url);
}

WindowHandle OpenMainWindow(const MString& title, const Rect& frame) {
    static char window = 0;
    if (!script.opensMainWindow) return nullptr;
    record.mainWindows.push_back(frame);
    record.titles.push_back(title);
    return reinterpret_cast<WindowHandle>(&window);
}

std::int32_t EarlierWindows() {
    return script.earlierWindows;
}

int RunMessageLoop() {
    return script.messageLoop ? script.messageLoop() : 0;
}

Rect ClientRect(WindowHandle) {
    return script.client;
}

MString WindowTitle(WindowHandle) {
    return record.titles.empty() ? MString() : record.titles.back();
}

void SetWindowTitle(WindowHandle, const MString& title) {
    record.titles.push_back(title);
}

void CloseWindow(WindowHandle) {
    ++record.closedWindows;
}

MColour ButtonColour() {
    return script.buttonColour;
}

bool OpenProgress(WindowHandle) {
    return true;
}

void SetProgressPercent(std::int32_t percent) {
    Headless::progressPercent = percent;
    record.progressPercents.push_back(percent);
    if (script.onProgress) script.onProgress(percent, Headless::progressText);
}

void SetProgressText(const MString& text) {
    Headless::progressText = text;
    record.progressTexts.push_back(text);
    if (script.onProgress) script.onProgress(Headless::progressPercent, text);
}

void CloseProgress() {
    if (script.onProgress) script.onProgress(-1, Headless::progressText);
}

Rect PrimaryScreen() {
    return script.primaryScreen;
}

Rect VirtualScreen() {
    return script.virtualScreen;
}

void Present(WindowHandle window, const Rect& area, const PaintImage& image) {
    const auto bytes = static_cast<std::size_t>(image.width) * 4;
    Headless::Painting painting{window, area, image.width, image.height, {}};
    for (std::int32_t y = 0; y < image.height; ++y) {
        const std::uint8_t* const row = image.pixels + static_cast<std::ptrdiff_t>(y) * image.stride;
        painting.pixels.insert(painting.pixels.end(), row, row + bytes);
    }
    record.paintings.push_back(std::move(painting));
}

} // namespace Desktop
