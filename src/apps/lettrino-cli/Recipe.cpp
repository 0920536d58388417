#include "apps/lettrino-cli/Recipe.h"

#include "apps/lettrino-cli/Words.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace fs = std::filesystem;

const Step StepsOfFile{"--steps", "FILE", 1, "does the steps of a file, one to a line; docs/recipes.md",
                       nullptr};

namespace {

constexpr std::string_view blanks = " \t";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

const Step* StepNamed(const std::string& name) {
    const std::span<const Step> all = AllSteps();
    const auto found = std::ranges::find(all, name, &Step::name);
    return found == all.end() ? nullptr : &*found;
}

class Reader {
public:
    explicit Reader(const fs::path& path) : folder(fs::absolute(path).parent_path()), name(path.string()) {
        recipe.files.push_back(fs::absolute(path));
    }

    Recipe recipe;

    // Why the line is none; nothing if it is one.
    std::optional<std::string> Take(std::string_view line, std::size_t number) {
        line = Trimmed(line);
        if (line.empty() || line.front() == '#') return std::nullopt;
        const std::size_t end = std::min(line.find_first_of(blanks), line.size());
        std::string word(line.substr(0, end));
        if (!word.starts_with("--")) word.insert(0, "--");
        if (word == StepsOfFile.name) return "a recipe takes in no other";
        const Step* const step = StepNamed(word);
        if (!step) return "there is no step " + word;
        auto arguments = Split(*step, Trimmed(line.substr(end)));
        if (!arguments)
            return std::string(word) + " takes " + (step->argumentCount == 0 ? "nothing" : step->arguments);
        for (std::string& argument : *arguments) {
            if (step->readsText) break;
            if (auto failure = Fill(argument)) return failure;
        }
        recipe.calls.push_back({step, std::move(*arguments), folder, name + ":" + std::to_string(number)});
        return std::nullopt;
    }

private:
    fs::path folder;
    std::string name;

    static std::optional<std::vector<std::string>> Split(const Step& step, std::string_view rest) {
        if (step.argumentCount == 0) {
            if (!rest.empty()) return std::nullopt;
            return std::vector<std::string>();
        }
        if (step.argumentCount == 1) {
            if (rest.empty() && !step.argumentOptional) return std::nullopt;
            return std::vector{std::string(Unquoted(rest))};
        }
        if (rest.starts_with('"')) {
            const std::size_t quote = rest.find('"', 1);
            if (quote == std::string_view::npos) return std::nullopt;
            return Pair(rest.substr(0, quote + 1), rest.substr(quote + 1));
        }
        const std::size_t blank = rest.find_last_of(blanks);
        if (blank == std::string_view::npos) return std::nullopt;
        return Pair(rest.substr(0, blank), rest.substr(blank));
    }

    static std::optional<std::vector<std::string>> Pair(std::string_view first, std::string_view second) {
        first = Unquoted(Trimmed(first));
        second = Unquoted(Trimmed(second));
        if (second.empty()) return std::nullopt;
        return std::vector{std::string(first), std::string(second)};
    }

    static std::string_view Unquoted(std::string_view text) {
        const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
        return quoted ? text.substr(1, text.size() - 2) : text;
    }

    std::optional<std::string> Fill(std::string& argument) {
        if (!argument.starts_with('@')) return std::nullopt;
        argument.erase(0, 1);
        if (argument.starts_with('@')) return std::nullopt;
        const fs::path file = folder / argument;
        recipe.files.push_back(file);
        auto text = ReadSmallText(file);
        if (!text) return argument + " can't be read";
        while (text->ends_with('\n'))
            text->pop_back();
        argument = std::move(*text);
        return std::nullopt;
    }
};

} // namespace

std::variant<Recipe, NoRecipe> ReadRecipe(const std::string& file) {
    const auto text = ReadSmallText(file);
    if (!text) {
        std::error_code error; // an empty name has no full one
        return NoRecipe{file + ": there is no such file of steps, or it is larger than 1 MB",
                        {fs::absolute(file, error)}};
    }
    Reader reader(file);
    std::size_t number = 0;
    for (std::size_t at = 0; at < text->size();) {
        const std::size_t end = std::min(text->find('\n', at), text->size());
        const std::string_view line = std::string_view(*text).substr(at, end - at);
        if (auto failure = reader.Take(line, ++number))
            return NoRecipe{file + ":" + std::to_string(number) + ": " + *failure, reader.recipe.files};
        at = end + 1;
    }
    return std::move(reader.recipe);
}
