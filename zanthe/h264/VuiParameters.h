// The video usability information of a sequence header.
#pragma once

#include <cstdint>
#include <optional>

#include "zanthe/h264/BitStreamReader.h"
#include "zanthe/h264/HrdParameters.h"

namespace Zanthe {

// vui_parameters() of ISO/IEC 14496-10, E.1.1, with its own names in its own order. An element that
// was not read is absent.
struct VuiParameters {
    std::optional<bool> aspect_ratio_info_present_flag;
    std::optional<std::uint8_t> aspect_ratio_idc;
    std::optional<std::uint16_t> sar_width;
    std::optional<std::uint16_t> sar_height;
    std::optional<bool> overscan_info_present_flag;
    std::optional<bool> overscan_appropriate_flag;
    std::optional<bool> video_signal_type_present_flag;
    std::optional<std::uint8_t> video_format;
    std::optional<bool> video_full_range_flag;
    std::optional<bool> colour_description_present_flag;
    std::optional<std::uint8_t> colour_primaries;
    std::optional<std::uint8_t> transfer_characteristics;
    std::optional<std::uint8_t> matrix_coefficients;
    std::optional<bool> chroma_loc_info_present_flag;
    std::optional<std::uint32_t> chroma_sample_loc_type_top_field;
    std::optional<std::uint32_t> chroma_sample_loc_type_bottom_field;
    std::optional<bool> timing_info_present_flag;
    std::optional<std::uint32_t> num_units_in_tick;
    std::optional<std::uint32_t> time_scale;
    std::optional<bool> fixed_frame_rate_flag;
    std::optional<bool> nal_hrd_parameters_present_flag;
    HrdParameters nal_hrd_parameters;
    std::optional<bool> vcl_hrd_parameters_present_flag;
    HrdParameters vcl_hrd_parameters;
    std::optional<bool> low_delay_hrd_flag;
    std::optional<bool> pic_struct_present_flag;
    std::optional<bool> bitstream_restriction_flag;
    std::optional<bool> motion_vectors_over_pic_boundaries_flag;
    std::optional<std::uint32_t> max_bytes_per_pic_denom;
    std::optional<std::uint32_t> max_bits_per_mb_denom;
    std::optional<std::uint32_t> log2_max_mv_length_horizontal;
    std::optional<std::uint32_t> log2_max_mv_length_vertical;
    std::optional<std::uint32_t> max_num_reorder_frames;
    std::optional<std::uint32_t> max_dec_frame_buffering;
};

// Throws what BitStreamReader throws.
VuiParameters ReadVuiParameters(BitStreamReader& bits);

} // namespace Zanthe
