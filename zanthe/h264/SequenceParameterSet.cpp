#include "zanthe/h264/SequenceParameterSet.h"

#include <algorithm>
#include <array>

namespace Zanthe {

namespace {

constexpr std::uint32_t Chroma444 = 3;

// The profiles whose headers tell of chroma, depth and scaling.
bool HasChromaInfo(std::uint8_t profile) {
    constexpr std::array<std::uint8_t, 13> profiles = {44,  83,  86,  100, 110, 118, 122,
                                                       128, 134, 135, 138, 139, 244};
    return std::find(profiles.begin(), profiles.end(), profile) != profiles.end();
}

// One step a group of elements, in the order of the table.
class SequenceParameterSetReader {
public:
    explicit SequenceParameterSetReader(BitStreamReader& bits)
        : m_bits(bits) {}

    SequenceParameterSet Read() {
        ReadProfile();
        if (HasChromaInfo(*m_set.profile_idc)) {
            ReadChromaInfo();
        }
        m_set.log2_max_frame_num_minus4 = m_bits.ReadUnsignedExpGolomb();
        ReadPictureOrder();
        ReadFrameSize();
        ReadCropping();
        m_set.vui_parameters_present_flag = m_bits.ReadFlag();
        if (*m_set.vui_parameters_present_flag) {
            m_set.vui_parameters = ReadVuiParameters(m_bits);
        }
        return m_set;
    }

private:
    std::uint8_t Bits8(int count = 8) { return static_cast<std::uint8_t>(m_bits.ReadBits(count)); }

    void ReadProfile() {
        m_set.profile_idc = Bits8();
        m_set.constraint_set0_flag = m_bits.ReadFlag();
        m_set.constraint_set1_flag = m_bits.ReadFlag();
        m_set.constraint_set2_flag = m_bits.ReadFlag();
        m_set.constraint_set3_flag = m_bits.ReadFlag();
        m_set.constraint_set4_flag = m_bits.ReadFlag();
        m_set.constraint_set5_flag = m_bits.ReadFlag();
        m_set.reserved_zero_2bits = Bits8(2);
        m_set.level_idc = Bits8();
        m_set.seq_parameter_set_id = m_bits.ReadUnsignedExpGolomb();
    }

    void ReadChromaInfo() {
        m_set.chroma_format_idc = m_bits.ReadUnsignedExpGolomb();
        if (m_set.chroma_format_idc == Chroma444) {
            m_set.separate_colour_plane_flag = m_bits.ReadFlag();
        }
        m_set.bit_depth_luma_minus8 = m_bits.ReadUnsignedExpGolomb();
        m_set.bit_depth_chroma_minus8 = m_bits.ReadUnsignedExpGolomb();
        m_set.qpprime_y_zero_transform_bypass_flag = m_bits.ReadFlag();
        m_set.seq_scaling_matrix_present_flag = m_bits.ReadFlag();
        if (*m_set.seq_scaling_matrix_present_flag) {
            SkipScalingMatrix();
        }
    }

    void SkipScalingMatrix() {
        constexpr int smallLists = 6;
        const int lists = m_set.chroma_format_idc == Chroma444 ? 12 : 8;
        for (int i = 0; i < lists; ++i) {
            const bool present = m_bits.ReadFlag();
            m_set.seq_scaling_list_present_flag.push_back(present);
            if (present) {
                SkipScalingList(i < smallLists ? 16 : 64);
            }
        }
    }

    void SkipScalingList(int entries) {
        for (int i = 0; i < entries; ++i) {
            m_bits.ReadUnsignedExpGolomb();
        }
    }

    void ReadPictureOrder() {
        m_set.pic_order_cnt_type = m_bits.ReadUnsignedExpGolomb();
        if (m_set.pic_order_cnt_type == 0U) {
            m_set.log2_max_pic_order_cnt_lsb_minus4 = m_bits.ReadUnsignedExpGolomb();
        } else if (m_set.pic_order_cnt_type == 1U) {
            ReadPictureOrderCycle();
        }
    }

    // Bounded by the data: each entry takes a bit at least.
    void ReadPictureOrderCycle() {
        m_set.delta_pic_order_always_zero_flag = m_bits.ReadFlag();
        m_set.offset_for_non_ref_pic = m_bits.ReadSignedExpGolomb();
        m_set.offset_for_top_to_bottom_field = m_bits.ReadSignedExpGolomb();
        m_set.num_ref_frames_in_pic_order_cnt_cycle = m_bits.ReadUnsignedExpGolomb();
        for (std::uint32_t i = 0; i < *m_set.num_ref_frames_in_pic_order_cnt_cycle; ++i) {
            m_set.offset_for_ref_frame.push_back(m_bits.ReadSignedExpGolomb());
        }
    }

    void ReadFrameSize() {
        m_set.max_num_ref_frames = m_bits.ReadUnsignedExpGolomb();
        m_set.gaps_in_frame_num_value_allowed_flag = m_bits.ReadFlag();
        m_set.pic_width_in_mbs_minus1 = m_bits.ReadUnsignedExpGolomb();
        m_set.pic_height_in_map_units_minus1 = m_bits.ReadUnsignedExpGolomb();
        m_set.frame_mbs_only_flag = m_bits.ReadFlag();
        if (!*m_set.frame_mbs_only_flag) {
            m_set.mb_adaptive_frame_field_flag = m_bits.ReadFlag();
        }
        m_set.direct_8x8_inference_flag = m_bits.ReadFlag();
    }

    void ReadCropping() {
        m_set.frame_cropping_flag = m_bits.ReadFlag();
        if (*m_set.frame_cropping_flag) {
            m_set.frame_crop_left_offset = m_bits.ReadUnsignedExpGolomb();
            m_set.frame_crop_right_offset = m_bits.ReadUnsignedExpGolomb();
            m_set.frame_crop_top_offset = m_bits.ReadUnsignedExpGolomb();
            m_set.frame_crop_bottom_offset = m_bits.ReadUnsignedExpGolomb();
        }
    }

    BitStreamReader& m_bits;
    SequenceParameterSet m_set;
};

} // namespace

SequenceParameterSet ReadSequenceParameterSet(BitStreamReader& bits) {
    return SequenceParameterSetReader(bits).Read();
}

} // namespace Zanthe
