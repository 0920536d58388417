// Which items of a HEIF file are made of which others (ISO/IEC 14496-12, 8.11.12). The decoder follows such
// references without end: one that leads back to its start costs all memory, and a few that each name the next
// twice all time.
#pragma once

#include <cstdint>
#include <span>

// Whether decoding any item takes a bounded number of others: no reference leads back, none goes deep, and no
// item is made of more parts, parts of parts included, than a grid has at most.
bool ReferencesEnd(std::span<const std::uint8_t> file);
