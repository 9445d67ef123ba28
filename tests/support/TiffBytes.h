// TIFF files put together by hand.
//
//     TiffBytes tiff(4, 1, {8, 8, 8, 8}, pixels);
//     tiff.Set(TiffBytes::ExtraSamples, {1});
//     folder.Write("a.tiff", tiff.Bytes());
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class TiffBytes {
public:
    enum class Form { Little, Big, BigTiff }; // the last one little-endian too

    static constexpr int Compression = 259;
    static constexpr int Photometric = 262;
    static constexpr int Orientation = 274;
    static constexpr int RowsPerStrip = 278;
    static constexpr int Planes = 284;
    static constexpr int ExtraSamples = 338;

    // `bits` of each value of a pixel; `pixels`: all bytes of the one strip, in the file's order.
    // Red, green and blue where there are three values or more, else gray; values beyond are
    // nothing in particular.
    TiffBytes(int width, int height, const std::vector<std::uint32_t>& bits,
              std::string_view pixels, Form form = Form::Little);

    // Of the tag these values of 16 bits, in place of any other.
    TiffBytes& Set(int tag, const std::vector<std::uint32_t>& values);

    // A second entry of the tag, behind the first.
    TiffBytes& Repeat(int tag, const std::vector<std::uint32_t>& values);

    std::string Bytes() const;

private:
    struct Entry {
        int type; // 3: 16 bits, 4: 32 bits
        std::vector<std::uint32_t> values;
    };

    std::string Number(std::uint64_t value, int bytes) const;
    std::string Values(const Entry& entry) const;

    int CountBytes() const { return m_form == Form::BigTiff ? 8 : 4; }

    Form m_form;
    std::multimap<int, Entry> m_entries; // in the order of the file
    std::string m_pixels;
};
