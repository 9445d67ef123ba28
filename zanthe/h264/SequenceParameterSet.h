// The sequence parameter set of an H.264 stream.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "zanthe/h264/BitStreamReader.h"
#include "zanthe/h264/VuiParameters.h"

namespace Zanthe {

// seq_parameter_set_data() of ISO/IEC 14496-10, 7.3.2.1.1, with its own names in its own order. An
// element that was not read is absent. Only the colour is put to use so far; the rest is there so
// that the reading stays a transcription of the standard's table.
struct SequenceParameterSet {
    std::optional<std::uint8_t> profile_idc;
    std::optional<bool> constraint_set0_flag;
    std::optional<bool> constraint_set1_flag;
    std::optional<bool> constraint_set2_flag;
    std::optional<bool> constraint_set3_flag;
    std::optional<bool> constraint_set4_flag;
    std::optional<bool> constraint_set5_flag;
    std::optional<std::uint8_t> reserved_zero_2bits;
    std::optional<std::uint8_t> level_idc;
    std::optional<std::uint32_t> seq_parameter_set_id;
    std::optional<std::uint32_t> chroma_format_idc;
    std::optional<bool> separate_colour_plane_flag;
    std::optional<std::uint32_t> bit_depth_luma_minus8;
    std::optional<std::uint32_t> bit_depth_chroma_minus8;
    std::optional<bool> qpprime_y_zero_transform_bypass_flag;
    std::optional<bool> seq_scaling_matrix_present_flag;
    std::vector<bool> seq_scaling_list_present_flag;
    std::optional<std::uint32_t> log2_max_frame_num_minus4;
    std::optional<std::uint32_t> pic_order_cnt_type;
    std::optional<std::uint32_t> log2_max_pic_order_cnt_lsb_minus4;
    std::optional<bool> delta_pic_order_always_zero_flag;
    std::optional<std::int32_t> offset_for_non_ref_pic;
    std::optional<std::int32_t> offset_for_top_to_bottom_field;
    std::optional<std::uint32_t> num_ref_frames_in_pic_order_cnt_cycle;
    std::vector<std::int32_t> offset_for_ref_frame;
    std::optional<std::uint32_t> max_num_ref_frames;
    std::optional<bool> gaps_in_frame_num_value_allowed_flag;
    std::optional<std::uint32_t> pic_width_in_mbs_minus1;
    std::optional<std::uint32_t> pic_height_in_map_units_minus1;
    std::optional<bool> frame_mbs_only_flag;
    std::optional<bool> mb_adaptive_frame_field_flag;
    std::optional<bool> direct_8x8_inference_flag;
    std::optional<bool> frame_cropping_flag;
    std::optional<std::uint32_t> frame_crop_left_offset;
    std::optional<std::uint32_t> frame_crop_right_offset;
    std::optional<std::uint32_t> frame_crop_top_offset;
    std::optional<std::uint32_t> frame_crop_bottom_offset;
    std::optional<bool> vui_parameters_present_flag;
    VuiParameters vui_parameters;
};

// Reads from behind the unit's header byte on. Throws what BitStreamReader throws.
//
// Scaling lists are skipped in full, 16 or 64 codes each, also where a delta would end one early;
// what follows such a list is then read from the wrong place.
SequenceParameterSet ReadSequenceParameterSet(BitStreamReader& bits);

} // namespace Zanthe
