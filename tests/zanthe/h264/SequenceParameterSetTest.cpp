#include "zanthe/h264/SequenceParameterSet.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/zanthe/h264/ParameterSets.h"

namespace Zanthe {
namespace {

SequenceParameterSet Parse(const Blob& unit) {
    BitStreamReader bits(unit);
    bits.ReadBits(8);
    return ReadSequenceParameterSet(bits);
}

TEST(SequenceParameterSet, TheBaselineProfileHasNoChromaInfo) {
    const SequenceParameterSet set = Parse(ParameterSet());
    EXPECT_EQ(set.profile_idc, 66);
    EXPECT_EQ(set.level_idc, 30);
    EXPECT_EQ(set.constraint_set5_flag, false);
    EXPECT_EQ(set.chroma_format_idc, std::nullopt);
    EXPECT_EQ(set.seq_scaling_matrix_present_flag, std::nullopt);
    EXPECT_EQ(set.pic_order_cnt_type, 2U);
    EXPECT_EQ(set.log2_max_pic_order_cnt_lsb_minus4, std::nullopt);
    EXPECT_EQ(set.pic_width_in_mbs_minus1, 39U);
    EXPECT_EQ(set.pic_height_in_map_units_minus1, 29U);
    EXPECT_EQ(set.mb_adaptive_frame_field_flag, std::nullopt);
    EXPECT_EQ(set.frame_crop_left_offset, std::nullopt);
    EXPECT_EQ(set.vui_parameters_present_flag, false);
    EXPECT_EQ(set.vui_parameters.aspect_ratio_info_present_flag, std::nullopt);
}

TEST(SequenceParameterSet, FieldsAndCropping) {
    SetOptions options;
    options.interlaced = true;
    options.cropped = true;
    const SequenceParameterSet set = Parse(ParameterSet(options));
    EXPECT_EQ(set.frame_mbs_only_flag, false);
    EXPECT_EQ(set.mb_adaptive_frame_field_flag, true);
    EXPECT_EQ(set.frame_crop_left_offset, 1U);
    EXPECT_EQ(set.frame_crop_bottom_offset, 4U);
}

TEST(SequenceParameterSet, PictureOrderTypes) {
    SetOptions options;
    options.pictureOrder = [](BitWriter& bits) { bits.Unsigned(0).Unsigned(6); };
    EXPECT_EQ(Parse(ParameterSet(options)).log2_max_pic_order_cnt_lsb_minus4, 6U);
    options.pictureOrder = [](BitWriter& bits) {
        bits.Unsigned(1).Flag(true).Signed(-3).Signed(4).Unsigned(2).Signed(-5).Signed(6);
    };
    const SequenceParameterSet set = Parse(ParameterSet(options));
    EXPECT_EQ(set.delta_pic_order_always_zero_flag, true);
    EXPECT_EQ(set.offset_for_non_ref_pic, -3);
    EXPECT_EQ(set.offset_for_top_to_bottom_field, 4);
    EXPECT_EQ(set.offset_for_ref_frame, (std::vector<std::int32_t>{-5, 6}));
    EXPECT_EQ(set.pic_width_in_mbs_minus1, 39U);
}

TEST(SequenceParameterSet, ChromaInfoBelongsToThirteenProfiles) {
    for (int profile = 0; profile < 256; ++profile) {
        const bool has = profile == 44 || profile == 83 || profile == 86 || profile == 100 ||
                         profile == 110 || profile == 118 || profile == 122 || profile == 128 ||
                         profile == 134 || profile == 135 || profile == 138 || profile == 139 ||
                         profile == 244;
        SetOptions options;
        options.profile = static_cast<std::uint8_t>(profile);
        if (has) {
            options.chromaInfo = [](BitWriter& bits) {
                bits.Unsigned(1).Unsigned(2).Unsigned(3).Flag(true).Flag(false);
            };
        }
        const SequenceParameterSet set = Parse(ParameterSet(options));
        EXPECT_EQ(set.chroma_format_idc.has_value(), has) << profile;
        EXPECT_EQ(set.pic_width_in_mbs_minus1, 39U) << profile;
    }
}

enum class Present { Every, EverySecond };

// Chroma info with a matrix of `lists` scaling lists; each present one is full.
std::function<void(BitWriter&)> ScalingMatrix(std::uint32_t chromaFormat, int lists,
                                              Present which) {
    return [=](BitWriter& bits) {
        bits.Unsigned(chromaFormat);
        if (chromaFormat == 3) {
            bits.Flag(true);
        }
        bits.Unsigned(0).Unsigned(0).Flag(false).Flag(true);
        for (int i = 0; i < lists; ++i) {
            const bool present = which == Present::Every || i % 2 == 1;
            bits.Flag(present);
            for (int entry = 0; present && entry < (i < 6 ? 16 : 64); ++entry) {
                bits.Signed(entry % 3 - 1);
            }
        }
    };
}

TEST(SequenceParameterSet, ScalingListsAreSkippedInFull) {
    SetOptions options;
    options.profile = 100;
    for (const Present which : {Present::Every, Present::EverySecond}) {
        options.chromaInfo = ScalingMatrix(1, 8, which);
        const SequenceParameterSet set = Parse(ParameterSet(options));
        EXPECT_EQ(set.seq_scaling_list_present_flag.size(), 8U);
        EXPECT_EQ(set.separate_colour_plane_flag, std::nullopt);
        EXPECT_EQ(set.pic_width_in_mbs_minus1, 39U);
    }
}

TEST(SequenceParameterSet, FullChromaHasTwelveScalingLists) {
    SetOptions options;
    options.profile = 244;
    for (const Present which : {Present::Every, Present::EverySecond}) {
        options.chromaInfo = ScalingMatrix(3, 12, which);
        const SequenceParameterSet set = Parse(ParameterSet(options));
        EXPECT_EQ(set.seq_scaling_list_present_flag.size(), 12U);
        EXPECT_EQ(set.separate_colour_plane_flag, true);
        EXPECT_EQ(set.pic_width_in_mbs_minus1, 39U);
    }
}

// A delta that ends a list early is not heeded, so what follows is read from the wrong place.
TEST(SequenceParameterSet, AListThatEndsEarlyIsNotUnderstood) {
    SetOptions options;
    options.profile = 100;
    options.chromaInfo = [](BitWriter& bits) {
        bits.Unsigned(1).Unsigned(0).Unsigned(0).Flag(false).Flag(true);
        bits.Flag(true).Signed(-8); // the next scale is 0: the list ends
        bits.Bits(0, 7);
    };
    try {
        EXPECT_NE(Parse(ParameterSet(options)).pic_width_in_mbs_minus1, 39U);
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "invalid read index in BitStreamReader::BitAt");
    }
}

void WriteHrd(BitWriter& bits, std::uint32_t countMinus1) {
    bits.Unsigned(countMinus1).Bits(5, 4).Bits(6, 4);
    for (std::uint32_t i = 0; i <= countMinus1; ++i) {
        bits.Unsigned(100 + i).Unsigned(200 + i).Flag(i % 2 == 1);
    }
    bits.Bits(23, 5).Bits(24, 5).Bits(25, 5).Bits(26, 5);
}

TEST(SequenceParameterSet, AllOfTheVui) {
    SetOptions options;
    options.vui = [](BitWriter& bits) {
        bits.Flag(true).Bits(255, 8).Bits(40000, 16).Bits(30000, 16); // aspect ratio
        bits.Flag(true).Flag(true);                                   // overscan
        bits.Flag(true).Bits(5, 3).Flag(true).Flag(true).Bits(9, 8).Bits(16, 8).Bits(7, 8);
        bits.Flag(true).Unsigned(1).Unsigned(2);                        // chroma location
        bits.Flag(true).Bits(1001, 32).Bits(0x80000001, 32).Flag(true); // timing
        bits.Flag(true);
        WriteHrd(bits, 0);
        bits.Flag(true);
        WriteHrd(bits, 2);
        bits.Flag(true).Flag(true); // low delay, picture structure
        bits.Flag(true).Flag(true).Unsigned(1).Unsigned(2).Unsigned(3).Unsigned(4).Unsigned(5);
        bits.Unsigned(6);
    };
    const VuiParameters vui = Parse(ParameterSet(options)).vui_parameters;
    EXPECT_EQ(vui.sar_width, 40000);
    EXPECT_EQ(vui.sar_height, 30000);
    EXPECT_EQ(vui.overscan_appropriate_flag, true);
    EXPECT_EQ(vui.video_format, 5);
    EXPECT_EQ(vui.colour_primaries, 9);
    EXPECT_EQ(vui.transfer_characteristics, 16);
    EXPECT_EQ(vui.matrix_coefficients, 7);
    EXPECT_EQ(vui.chroma_sample_loc_type_bottom_field, 2U);
    EXPECT_EQ(vui.num_units_in_tick, 1001U);
    EXPECT_EQ(vui.time_scale, 0x80000001U); // the top bit stays
    EXPECT_EQ(vui.fixed_frame_rate_flag, true);
    EXPECT_EQ(vui.nal_hrd_parameters.bit_rate_value_minus1, std::vector<std::uint32_t>{100});
    const HrdParameters& vcl = vui.vcl_hrd_parameters;
    EXPECT_EQ(vcl.cpb_size_value_minus1, (std::vector<std::uint32_t>{200, 201, 202}));
    EXPECT_EQ(vcl.cbr_flag, (std::vector<bool>{false, true, false}));
    EXPECT_EQ(vcl.bit_rate_scale, 5);
    EXPECT_EQ(vcl.cpb_size_scale, 6);
    EXPECT_EQ(vcl.initial_cpb_removal_delay_length_minus1, 23);
    EXPECT_EQ(vcl.time_offset_length, 26);
    EXPECT_EQ(vui.low_delay_hrd_flag, true);
    EXPECT_EQ(vui.pic_struct_present_flag, true);
    EXPECT_EQ(vui.max_bytes_per_pic_denom, 1U);
    EXPECT_EQ(vui.max_dec_frame_buffering, 6U);
}

TEST(SequenceParameterSet, AVuiWithoutAnything) {
    SetOptions options;
    options.vui = [](BitWriter& bits) { bits.Bits(0, 9); };
    const SequenceParameterSet set = Parse(ParameterSet(options));
    EXPECT_EQ(set.vui_parameters_present_flag, true);
    EXPECT_EQ(set.vui_parameters.aspect_ratio_idc, std::nullopt);
    EXPECT_EQ(set.vui_parameters.low_delay_hrd_flag, std::nullopt);
    EXPECT_EQ(set.vui_parameters.bitstream_restriction_flag, false);
}

TEST(SequenceParameterSet, OneDecoderModelIsEnoughForTheDelayFlag) {
    SetOptions options;
    for (const bool nal : {false, true}) {
        options.vui = [nal](BitWriter& bits) {
            bits.Bits(0, 5);
            if (nal) {
                WriteHrd(bits.Flag(true), 0);
                bits.Flag(false);
            } else {
                WriteHrd(bits.Flag(false).Flag(true), 0);
            }
            bits.Flag(true).Bits(0, 2);
        };
        const VuiParameters vui = Parse(ParameterSet(options)).vui_parameters;
        EXPECT_EQ(vui.nal_hrd_parameters_present_flag, nal);
        EXPECT_EQ(vui.vcl_hrd_parameters_present_flag, !nal);
        EXPECT_EQ(vui.low_delay_hrd_flag, true);
        EXPECT_EQ(vui.bitstream_restriction_flag, false);
    }
}

// Counts that only the end of the data bounds.
TEST(SequenceParameterSet, HugeCountsEndWithTheData) {
    SetOptions options;
    options.pictureOrder = [](BitWriter& bits) {
        bits.Unsigned(1).Flag(true).Signed(0).Signed(0).Unsigned(0xFFFFFFFE);
    };
    EXPECT_THROW(Parse(ParameterSet(options)), std::runtime_error);
    options = {};
    options.vui = [](BitWriter& bits) {
        bits.Bits(0, 5).Flag(true).Bits(1, 33).Bits(0, 32); // 2^32 decoder models
    };
    EXPECT_THROW(Parse(ParameterSet(options)), std::runtime_error);
}

} // namespace
} // namespace Zanthe
