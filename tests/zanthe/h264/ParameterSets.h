// Sequence parameter sets as the tests need them, and the blobs that carry them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "tests/zanthe/h264/BitWriter.h"

using Blob = std::vector<unsigned char>;

struct SetOptions {
    std::uint8_t header = 0x67; // nal_ref_idc 3, type 7
    std::uint8_t profile = 66;
    std::function<void(BitWriter&)> chromaInfo;   // for the profiles that have it
    std::function<void(BitWriter&)> pictureOrder; // from pic_order_cnt_type on; by default type 2
    bool interlaced = false;
    bool cropped = false;
    std::function<void(BitWriter&)> vui; // none: the set has no VUI
};

// One unit, header byte included, without emulation prevention.
inline Blob ParameterSet(const SetOptions& options = {}) {
    BitWriter bits;
    bits.Bits(options.header, 8).Bits(options.profile, 8).Bits(0, 8).Bits(30, 8).Unsigned(0);
    if (options.chromaInfo) {
        options.chromaInfo(bits);
    }
    bits.Unsigned(0); // log2_max_frame_num_minus4
    if (options.pictureOrder) {
        options.pictureOrder(bits);
    } else {
        bits.Unsigned(2);
    }
    bits.Unsigned(1).Flag(false).Unsigned(39).Unsigned(29).Flag(!options.interlaced);
    if (options.interlaced) {
        bits.Flag(true);
    }
    bits.Flag(true).Flag(options.cropped);
    if (options.cropped) {
        bits.Unsigned(1).Unsigned(2).Unsigned(3).Unsigned(4);
    }
    bits.Flag(static_cast<bool>(options.vui));
    if (options.vui) {
        options.vui(bits);
    }
    bits.Flag(true); // rbsp_stop_one_bit
    return bits.Bytes();
}

// A VUI of nothing but its colour; `matrix` none: without a colour description.
inline std::function<void(BitWriter&)> ColorVui(bool fullRange, std::optional<std::uint8_t> matrix) {
    return [=](BitWriter& bits) {
        bits.Flag(false).Flag(false).Flag(true).Bits(5, 3).Flag(fullRange).Flag(matrix.has_value());
        if (matrix) {
            bits.Bits(1, 8).Bits(1, 8).Bits(*matrix, 8);
        }
        bits.Flag(false).Flag(false).Flag(false).Flag(false).Flag(false).Flag(false);
    };
}

// `unit` with emulation prevention behind a start code.
inline Blob AnnexB(const Blob& unit, bool longStartCode = true) {
    Blob blob = longStartCode ? Blob{0, 0, 0, 1} : Blob{0, 0, 1};
    int zeros = 0;
    for (const unsigned char byte : unit) {
        if (zeros >= 2 && byte <= 3) {
            blob.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        blob.push_back(byte);
    }
    return blob;
}
