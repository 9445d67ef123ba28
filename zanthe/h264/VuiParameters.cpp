#include "zanthe/h264/VuiParameters.h"

namespace Zanthe {

namespace {

// One step a group of elements that a flag of its own leads in.
class VuiReader {
public:
    explicit VuiReader(BitStreamReader& bits)
        : m_bits(bits) {}

    VuiParameters Read() {
        ReadAspectRatio();
        ReadOverscan();
        ReadSignalType();
        ReadChromaLocation();
        ReadTiming();
        ReadDecoderModels();
        m_vui.pic_struct_present_flag = m_bits.ReadFlag();
        ReadRestriction();
        return m_vui;
    }

private:
    // Reads the flag of a group; whether the group follows.
    bool Leads(std::optional<bool>& flag) {
        flag = m_bits.ReadFlag();
        return *flag;
    }

    std::uint8_t Bits8(int count = 8) { return static_cast<std::uint8_t>(m_bits.ReadBits(count)); }

    std::uint16_t Bits16() { return static_cast<std::uint16_t>(m_bits.ReadBits(16)); }

    std::uint32_t Bits32() { return static_cast<std::uint32_t>(m_bits.ReadBits(32)); }

    void ReadAspectRatio() {
        constexpr std::uint8_t extendedSar = 255;
        if (!Leads(m_vui.aspect_ratio_info_present_flag)) {
            return;
        }
        m_vui.aspect_ratio_idc = Bits8();
        if (m_vui.aspect_ratio_idc == extendedSar) {
            m_vui.sar_width = Bits16();
            m_vui.sar_height = Bits16();
        }
    }

    void ReadOverscan() {
        if (Leads(m_vui.overscan_info_present_flag)) {
            m_vui.overscan_appropriate_flag = m_bits.ReadFlag();
        }
    }

    void ReadSignalType() {
        if (!Leads(m_vui.video_signal_type_present_flag)) {
            return;
        }
        m_vui.video_format = Bits8(3);
        m_vui.video_full_range_flag = m_bits.ReadFlag();
        if (Leads(m_vui.colour_description_present_flag)) {
            m_vui.colour_primaries = Bits8();
            m_vui.transfer_characteristics = Bits8();
            m_vui.matrix_coefficients = Bits8();
        }
    }

    void ReadChromaLocation() {
        if (Leads(m_vui.chroma_loc_info_present_flag)) {
            m_vui.chroma_sample_loc_type_top_field = m_bits.ReadUnsignedExpGolomb();
            m_vui.chroma_sample_loc_type_bottom_field = m_bits.ReadUnsignedExpGolomb();
        }
    }

    void ReadTiming() {
        if (Leads(m_vui.timing_info_present_flag)) {
            m_vui.num_units_in_tick = Bits32();
            m_vui.time_scale = Bits32();
            m_vui.fixed_frame_rate_flag = m_bits.ReadFlag();
        }
    }

    void ReadDecoderModels() {
        const bool nal = Leads(m_vui.nal_hrd_parameters_present_flag);
        if (nal) {
            m_vui.nal_hrd_parameters = ReadHrdParameters(m_bits);
        }
        const bool vcl = Leads(m_vui.vcl_hrd_parameters_present_flag);
        if (vcl) {
            m_vui.vcl_hrd_parameters = ReadHrdParameters(m_bits);
        }
        if (nal || vcl) {
            m_vui.low_delay_hrd_flag = m_bits.ReadFlag();
        }
    }

    void ReadRestriction() {
        if (!Leads(m_vui.bitstream_restriction_flag)) {
            return;
        }
        m_vui.motion_vectors_over_pic_boundaries_flag = m_bits.ReadFlag();
        m_vui.max_bytes_per_pic_denom = m_bits.ReadUnsignedExpGolomb();
        m_vui.max_bits_per_mb_denom = m_bits.ReadUnsignedExpGolomb();
        m_vui.log2_max_mv_length_horizontal = m_bits.ReadUnsignedExpGolomb();
        m_vui.log2_max_mv_length_vertical = m_bits.ReadUnsignedExpGolomb();
        m_vui.max_num_reorder_frames = m_bits.ReadUnsignedExpGolomb();
        m_vui.max_dec_frame_buffering = m_bits.ReadUnsignedExpGolomb();
    }

    BitStreamReader& m_bits;
    VuiParameters m_vui;
};

} // namespace

VuiParameters ReadVuiParameters(BitStreamReader& bits) {
    return VuiReader(bits).Read();
}

} // namespace Zanthe
