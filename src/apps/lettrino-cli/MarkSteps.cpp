#include "apps/lettrino-cli/MarkSteps.h"

#include "document/CopyFont.h"

namespace {

const char* const noMemory = "there is not enough memory for another font";

StepResult Mark(Run& run, const std::string& name) {
    Marked marked{run.choices, nullptr};
    if (run.font) {
        marked.font = std::make_unique<MColourFont>(nullptr);
        if (!CopyFont(*run.font, *marked.font)) return StepFailure{{}, noMemory};
    }
    run.marks[name] = std::move(marked);
    return {};
}

StepResult Back(Run& run, const std::string& name) {
    const auto found = run.marks.find(name);
    if (found == run.marks.end()) return StepFailure{{}, "nothing was marked as '" + name + "' before"};
    const Marked& marked = found->second;
    run.choices = marked.choices;
    run.font.reset();
    CurrentFont = nullptr;
    if (!marked.font) return {};
    MColourFont& font = run.FontOrNew();
    if (!CopyFont(*marked.font, font) || !font.Repack()) return StepFailure{{}, noMemory};
    return {};
}

} // namespace

std::optional<StepAction> PrepareMark(StepArguments arguments) {
    return [name = arguments[0]](Run& run) { return Mark(run, name); };
}

std::optional<StepAction> PrepareBack(StepArguments arguments) {
    return [name = arguments[0]](Run& run) { return Back(run, name); };
}
