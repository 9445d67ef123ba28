// The parameters of a hypothetical reference decoder, as a sequence header holds them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "zanthe/h264/BitStreamReader.h"

namespace Zanthe {

// hrd_parameters() of ISO/IEC 14496-10, E.1.2, with its own names in its own order. An element that
// was not read is absent.
struct HrdParameters {
    std::optional<std::uint32_t> cpb_cnt_minus1;
    std::optional<std::uint8_t> bit_rate_scale;
    std::optional<std::uint8_t> cpb_size_scale;
    std::vector<std::uint32_t> bit_rate_value_minus1;
    std::vector<std::uint32_t> cpb_size_value_minus1;
    std::vector<bool> cbr_flag;
    std::optional<std::uint8_t> initial_cpb_removal_delay_length_minus1;
    std::optional<std::uint8_t> cpb_removal_delay_length_minus1;
    std::optional<std::uint8_t> dpb_output_delay_length_minus1;
    std::optional<std::uint8_t> time_offset_length;
};

// Throws what BitStreamReader throws. The lists are bounded by the data alone: each of their
// entries takes bits.
HrdParameters ReadHrdParameters(BitStreamReader& bits);

} // namespace Zanthe
