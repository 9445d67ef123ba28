#include "zanthe/h264/NalUnits.h"

#include <cstddef>

namespace Zanthe {

namespace {

// Whether 00 00 and `last` stand at `at`.
bool IsMark(const std::vector<unsigned char>& stream, std::size_t at, unsigned char last) {
    return at + 2 < stream.size() && stream[at] == 0 && stream[at + 1] == 0 &&
           stream[at + 2] == last;
}

} // namespace

std::vector<std::vector<unsigned char>> SplitNalUnits(const std::vector<unsigned char>& stream) {
    std::vector<std::vector<unsigned char>> units;
    std::size_t at = 0;
    while (at < stream.size()) {
        if (IsMark(stream, at, 1)) {
            units.emplace_back();
            at += 3;
        } else if (IsMark(stream, at, 3)) {
            if (!units.empty()) {
                units.back().insert(units.back().end(), 2, 0);
            }
            at += 3;
        } else {
            if (!units.empty()) {
                units.back().push_back(stream[at]);
            }
            ++at;
        }
    }
    return units;
}

} // namespace Zanthe
