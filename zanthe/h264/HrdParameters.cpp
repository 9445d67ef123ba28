#include "zanthe/h264/HrdParameters.h"

namespace Zanthe {

HrdParameters ReadHrdParameters(BitStreamReader& bits) {
    const auto bits8 = [&bits](int count) { return static_cast<std::uint8_t>(bits.ReadBits(count)); };
    HrdParameters hrd;
    hrd.cpb_cnt_minus1 = bits.ReadUnsignedExpGolomb();
    hrd.bit_rate_scale = bits8(4);
    hrd.cpb_size_scale = bits8(4);
    // The count is one more than what is written, which 32 bits may not hold.
    const std::uint64_t count = std::uint64_t{*hrd.cpb_cnt_minus1} + 1;
    for (std::uint64_t i = 0; i < count; ++i) {
        hrd.bit_rate_value_minus1.push_back(bits.ReadUnsignedExpGolomb());
        hrd.cpb_size_value_minus1.push_back(bits.ReadUnsignedExpGolomb());
        hrd.cbr_flag.push_back(bits.ReadFlag());
    }
    hrd.initial_cpb_removal_delay_length_minus1 = bits8(5);
    hrd.cpb_removal_delay_length_minus1 = bits8(5);
    hrd.dpb_output_delay_length_minus1 = bits8(5);
    hrd.time_offset_length = bits8(5);
    return hrd;
}

} // namespace Zanthe
