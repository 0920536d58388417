#include "imaging/codecs/MHeifReferences.h"

#include "imaging/codecs/MCodec.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t mostParts = 65536; // a grid of 256 by 256
constexpr int deepest = 16;

std::uint64_t BigEndian(Bytes bytes, std::size_t offset, std::size_t count) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes.subspan(offset, count))
        value = value << 8 | byte;
    return value;
}

class References {
public:
    // A file that names every part once has no more of them than bytes; only boxes that lie within one another
    // could have this read more.
    explicit References(std::size_t fileBytes) : unread(fileBytes) {}

    // The boxes behind the header of a reference box, up to the first that is none.
    void AddAll(Bytes boxes, std::size_t idBytes) {
        constexpr std::size_t header = 8;
        while (boxes.size() >= header) {
            const std::uint64_t size = BigEndian(boxes, 0, 4);
            if (size < header || size > boxes.size() || !Take(header)) return;
            const Bytes box = boxes.first(static_cast<std::size_t>(size));
            // A derived picture names its parts; an auxiliary one, the alpha of another, is decoded with that.
            if (StartsWith(box.subspan(4), "dimg")) Add(box.subspan(header), idBytes, false);
            if (StartsWith(box.subspan(4), "auxl")) Add(box.subspan(header), idBytes, true);
            boxes = boxes.subspan(box.size());
        }
    }

    bool End() {
        return !overlap && std::ranges::all_of(
                               parts, [this](const auto& item) { return Count(item.first, 0) <= mostParts; });
    }

private:
    static constexpr std::uint32_t tooMany = mostParts + 1;

    std::size_t unread; // bytes
    bool overlap = false;
    std::map<std::uint64_t, std::vector<std::uint64_t>> parts; // of each item
    std::map<std::uint64_t, std::uint32_t> counts;             // of those that were counted

    bool Take(std::size_t bytes) {
        overlap |= bytes > unread;
        unread -= std::min(bytes, unread);
        return !overlap;
    }

    void Add(Bytes box, std::size_t idBytes, bool backwards) {
        if (box.size() < idBytes + 2) return;
        const std::uint64_t from = BigEndian(box, 0, idBytes);
        const auto count = static_cast<std::size_t>(BigEndian(box, idBytes, 2));
        const Bytes ids = box.subspan(idBytes + 2);
        for (std::size_t i = 0; i < count && (i + 1) * idBytes <= ids.size() && Take(idBytes); ++i) {
            const std::uint64_t to = BigEndian(ids, i * idBytes, idBytes);
            backwards ? parts[to].push_back(from) : parts[from].push_back(to);
        }
    }

    // How many items decoding this one takes. An item that is being counted has too many, since it leads back.
    std::uint32_t Count(std::uint64_t item, int depth) {
        if (depth > deepest) return tooMany;
        const auto [known, isNew] = counts.try_emplace(item, tooMany);
        if (!isNew) return known->second;
        std::uint32_t count = 1;
        if (const auto found = parts.find(item); found != parts.end()) {
            for (const std::uint64_t part : found->second)
                count = std::min(count + Count(part, depth + 1), tooMany);
        }
        return counts[item] = count;
    }
};

} // namespace

bool ReferencesEnd(Bytes file) {
    constexpr std::string_view name = "iref";
    References references(file.size());
    // Wherever a box of this name may stand; its own size doesn't matter.
    for (Bytes rest = file;;) {
        const auto found = std::search(rest.begin(), rest.end(), name.begin(), name.end());
        rest = rest.subspan(static_cast<std::size_t>(found - rest.begin()));
        constexpr std::size_t header = name.size() + 4; // with version and flags
        if (rest.size() < header) break;
        references.AddAll(rest.subspan(header), rest[name.size()] == 0 ? 2 : 4);
        rest = rest.subspan(name.size());
    }
    if (references.End()) return true;
    ReportCodec("HEIF", "pictures that are made of one another");
    return false;
}
