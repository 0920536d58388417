// What a user does in the editors, on a full font: 223 glyphs of height 512 and 40,000 pairs. Each shall be
// answered within a tenth of a second; "bounds" counts how many of those it takes.

#include "document/MSettings.h"
#include "editors/MGlyphEditor.h"
#include "editors/MKerningEditor.h"
#include "editors/MOpticalKerningEditor.h"
#include "platform/headless/Headless.h"

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

constexpr double bound = 0.1; // seconds
constexpr Desktop::Rect list{820, 8, 880, 540};
constexpr Desktop::Rect field{890, 8, 940, 30};

class FullFont {
public:
    MSettings settings;
    MColourFont font{(Settings = &settings, nullptr)};

    FullFont() {
        for (std::uint16_t c = 33; c <= 255; ++c) {
            auto glyph = std::make_unique<MGlyph>(c, 300 + c % 200, 512, 1, 1, false);
            glyph->Picture.Fill(MColour(static_cast<std::uint8_t>(c), 0, 0, 200));
            font.Glyphs[static_cast<std::size_t>(font.ClaimSlot(static_cast<char16_t>(c)))] = std::move(glyph);
        }
        if (!font.Kerning.Resize(40000, false)) return;
        for (std::uint32_t i = 0; i < 40000; ++i)
            font.Kerning.data[i] = {33 + i / 200, 33 + i % 200, -static_cast<std::int32_t>(i % 90)};
    }
    ~FullFont() { Settings = nullptr; }
};

template<typename Editor>
void OpenWindow(Editor& editor) {
    static char window;
    editor.Window = reinterpret_cast<Desktop::WindowHandle>(&window);
    editor.Area = Editor::AreaBeside(list, field);
}

template<typename Work>
void Measure(benchmark::State& state, Work work) {
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        work();
        Headless::record.paintings.clear();
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.counters["bounds"] = taken.count() / static_cast<double>(state.iterations()) / bound;
}

void OpenGlyphEditor(benchmark::State& state) {
    FullFont full;
    Measure(state, [&] {
        MGlyphEditor editor(full.font);
        OpenWindow(editor);
        editor.DrawPreview();
    });
}

void OpenKerningEditor(benchmark::State& state) {
    FullFont full;
    Measure(state, [&] {
        MKerningEditor editor(full.font);
        OpenWindow(editor);
        editor.Paint();
    });
}

template<void (*Work)(MGlyphEditor&, std::int32_t)>
void InGlyphEditor(benchmark::State& state) {
    FullFont full;
    MGlyphEditor editor(full.font);
    OpenWindow(editor);
    std::int32_t turn = 0;
    Measure(state, [&] { Work(editor, ++turn); });
}

void ShowGlyph(MGlyphEditor& editor, std::int32_t turn) {
    editor.SelectionChanged(turn % 223);
}
void TypeSpacing(MGlyphEditor& editor, std::int32_t turn) {
    editor.SpacingBeforeChanged(MString(turn % 50));
}
void DragBaseline(MGlyphEditor& editor, std::int32_t turn) {
    editor.Mouse({300, 400 + turn % 100}, false, true);
}

template<void (*Work)(MKerningEditor&, std::int32_t)>
void InKerningEditor(benchmark::State& state) {
    FullFont full;
    MKerningEditor editor(full.font);
    OpenWindow(editor);
    std::int32_t turn = 0;
    Measure(state, [&] { Work(editor, ++turn); });
}

void ShowPair(MKerningEditor& editor, std::int32_t turn) {
    editor.SelectionChanged(40000 - 1 - turn % 1000); // the last ones are found last
}
void TypeLeft(MKerningEditor& editor, std::int32_t turn) {
    editor.LeftChanged(turn % 2 ? "A" : "B");
}
// Each adds a pair, of a character without a glyph.
void TypeNewPair(MKerningEditor& editor, std::int32_t turn) {
    const auto character = static_cast<char16_t>(300 + turn % 60000);
    editor.RightChanged(MString(std::u16string_view(&character, 1)));
}
void TypeAmount(MKerningEditor& editor, std::int32_t turn) {
    editor.AmountChanged(MString(turn % 100));
}
void ClearAndCancel(MKerningEditor& editor, std::int32_t) {
    editor.Clear();
    editor.Cancel();
}

// A line of 42 characters in a preview of 800 by 380 pixels; each key is painted. Its own bound is half of the
// others'.
template<void (*Work)(MOpticalKerningEditor&, std::int32_t)>
void InOpticalKerning(benchmark::State& state) {
    FullFont full;
    MOpticalKerningEditor editor(full.font);
    static char window;
    editor.Window = reinterpret_cast<Desktop::WindowHandle>(&window);
    editor.Area = {8, 40, 808, 420};
    std::int32_t turn = 0;
    Measure(state, [&] {
        Work(editor, ++turn);
        editor.Paint();
    });
    state.counters["bounds"] = state.counters["bounds"] * 2;
}

void TypeText(MOpticalKerningEditor& editor, std::int32_t turn) {
    editor.TextChanged(turn % 2 ? "Hamburgefonstiv AVATAR Tomorrow, Type 1984"
                                : "Hamburgefonstiv AVATAR Tomorrow, Type 1985");
}
void NudgePair(MOpticalKerningEditor& editor, std::int32_t turn) {
    if (editor.Gap < 0) editor.MoveGap(1);
    editor.Nudge(turn % 2 ? 1 : -1);
}

} // namespace

BENCHMARK(InOpticalKerning<TypeText>)->Unit(benchmark::kMillisecond);
BENCHMARK(InOpticalKerning<NudgePair>)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenGlyphEditor)->Unit(benchmark::kMillisecond);
BENCHMARK(InGlyphEditor<ShowGlyph>)->Unit(benchmark::kMillisecond);
BENCHMARK(InGlyphEditor<TypeSpacing>)->Unit(benchmark::kMillisecond);
BENCHMARK(InGlyphEditor<DragBaseline>)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenKerningEditor)->Unit(benchmark::kMillisecond);
BENCHMARK(InKerningEditor<ShowPair>)->Unit(benchmark::kMillisecond);
BENCHMARK(InKerningEditor<TypeLeft>)->Unit(benchmark::kMillisecond);
BENCHMARK(InKerningEditor<TypeNewPair>)->Iterations(200)->Unit(benchmark::kMillisecond);
BENCHMARK(InKerningEditor<TypeAmount>)->Unit(benchmark::kMillisecond);
BENCHMARK(InKerningEditor<ClearAndCancel>)->Unit(benchmark::kMillisecond);
