#include <array>
#include <string>

#include <gtest/gtest.h>

#include "platform/vfw/Vfw.h"
#include "tests/support/ScriptedCodec.h"

namespace {

constexpr DWORD Code(const char (&code)[5]) {
    DWORD value = 0;
    for (int i = 3; i >= 0; --i) {
        value = value << 8 | static_cast<unsigned char>(code[i]);
    }
    return value;
}

BITMAPINFOHEADER Format(int width, int height, int bits, DWORD compression = BI_RGB) {
    BITMAPINFOHEADER format{};
    format.biSize = sizeof format;
    format.biWidth = width;
    format.biHeight = height;
    format.biPlanes = 1;
    format.biBitCount = static_cast<WORD>(bits);
    format.biCompression = compression;
    return format;
}

// An open codec, closed with the object.
struct Codec {
    explicit Codec(DWORD handler)
        : handle(ICOpen(ICTYPE_VIDEO, handler, ICMODE_DECOMPRESS)) {}

    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;

    ~Codec() {
        if (handle != nullptr) {
            ICClose(handle);
        }
    }

    LRESULT Query(BITMAPINFOHEADER input, BITMAPINFOHEADER output) const {
        return ICSendMessage(handle, ICM_DECOMPRESS_QUERY, reinterpret_cast<DWORD_PTR>(&input),
                             reinterpret_cast<DWORD_PTR>(&output));
    }

    std::string Decode(BITMAPINFOHEADER input, std::string bytes, BITMAPINFOHEADER output,
                       std::size_t outputBytes) const {
        std::string rows(outputBytes, '?');
        input.biSizeImage = static_cast<DWORD>(bytes.size());
        const DWORD result = ICDecompress(handle, 0, &input, bytes.data(), &output, rows.data());
        return result == ICERR_OK ? rows : "failed";
    }

    HIC handle;
};

TEST(Vfw, CodesThatFFmpegDecodesOpen) {
    for (const char* name : {"cvid", "CVID", "MJPG", "CRAM", "ZMBV", "XVID", "DIB ", "MRLE"}) {
        std::array<char, 5> code{};
        std::copy(name, name + 4, code.begin());
        DWORD value = 0;
        for (int i = 3; i >= 0; --i) {
            value = value << 8 | static_cast<unsigned char>(code[static_cast<std::size_t>(i)]);
        }
        EXPECT_NE(Codec(value).handle, nullptr) << name;
    }
    EXPECT_NE(Codec(0).handle, nullptr);
    EXPECT_NE(Codec(1).handle, nullptr);
    EXPECT_EQ(Codec(Code("bscc")).handle, nullptr);
    EXPECT_EQ(ICOpen(Code("audc"), Code("cvid"), ICMODE_DECOMPRESS), nullptr);
    EXPECT_EQ(ICOpen(ICTYPE_VIDEO, Code("cvid"), 1), nullptr);
}

TEST(Vfw, NoCodecIsABadHandle) {
    EXPECT_EQ(ICSendMessage(nullptr, ICM_DECOMPRESS_END, 0, 0), ICERR_BADHANDLE);
    EXPECT_EQ(ICClose(nullptr), ICERR_BADHANDLE);
    ICINFO info{};
    EXPECT_EQ(ICGetInfo(nullptr, &info, sizeof info), 0);
}

TEST(Vfw, ACodecTellsItsCode) {
    const Codec codec(Code("cvid"));
    ICINFO info{};
    EXPECT_EQ(ICGetInfo(codec.handle, &info, sizeof info), static_cast<LRESULT>(sizeof info));
    EXPECT_EQ(info.fccType, ICTYPE_VIDEO);
    EXPECT_EQ(info.fccHandler, Code("cvid"));
    EXPECT_EQ(std::wstring(info.szName), L"FFmpeg");
    EXPECT_EQ(ICGetInfo(codec.handle, &info, sizeof info - 1), 0);
}

TEST(Vfw, OutputsAreAsked) {
    const Codec codec(Code("cvid"));
    const BITMAPINFOHEADER input = Format(64, 48, 24, Code("cvid"));
    for (const int bits : {16, 24, 32}) {
        EXPECT_EQ(codec.Query(input, Format(64, 48, bits)), ICERR_OK);
        EXPECT_EQ(codec.Query(input, Format(64, -48, bits)), ICERR_OK);
    }
    EXPECT_NE(codec.Query(input, Format(64, 48, 8)), ICERR_OK);
    EXPECT_NE(codec.Query(input, Format(64, 40, 32)), ICERR_OK);
    EXPECT_NE(codec.Query(input, Format(60, 48, 32)), ICERR_OK);
    EXPECT_NE(codec.Query(input, Format(64, 48, 32, Code("YUY2"))), ICERR_OK);
    EXPECT_NE(codec.Query(Format(0, 0, 24, Code("cvid")), Format(0, 0, 32)), ICERR_OK);
    EXPECT_NE(codec.Query(Format(64, INT32_MIN, 24, Code("cvid")), Format(64, INT32_MIN, 32)),
              ICERR_OK);
    EXPECT_NE(codec.Query(Format(64, 48, 24, Code("bscc")), Format(64, 48, 32)), ICERR_OK);
}

// Three pixels by two, rows padded to 12 bytes: red, green, blue above, greys below.
const std::string Above("\x00\x00\xFF\x00\xFF\x00\xFF\x00\x00...", 12);
const std::string Below("\x10\x10\x10\x80\x80\x80\xF0\xF0\xF0...", 12);

TEST(Vfw, UncompressedRowsComeOutAsTheyWentIn) {
    const Codec codec(0);
    const std::string out = codec.Decode(Format(3, 2, 24), Below + Above, Format(3, 2, 24), 24);
    EXPECT_EQ(out.substr(0, 9), Below.substr(0, 9));
    EXPECT_EQ(out.substr(12, 9), Above.substr(0, 9));
}

TEST(Vfw, AHeightBelowZeroTurnsThemOver) {
    const Codec codec(0);
    const std::string out = codec.Decode(Format(3, 2, 24), Below + Above, Format(3, -2, 24), 24);
    EXPECT_EQ(out.substr(0, 9), Above.substr(0, 9));
    EXPECT_EQ(out.substr(12, 9), Below.substr(0, 9));
    const std::string in = codec.Decode(Format(3, -2, 24), Above + Below, Format(3, 2, 24), 24);
    EXPECT_EQ(in.substr(0, 9), Below.substr(0, 9));
}

TEST(Vfw, DepthsAreConverted) {
    const Codec codec(0);
    EXPECT_EQ(codec.Decode(Format(3, 2, 24), Below + Above, Format(3, 2, 32), 24),
              std::string("\x10\x10\x10\xFF\x80\x80\x80\xFF\xF0\xF0\xF0\xFF"
                          "\x00\x00\xFF\xFF\x00\xFF\x00\xFF\xFF\x00\x00\xFF",
                          24));
    // Five bits each, 0RRRRRGG GGGBBBBB, rows of 6 bytes padded to 8 with what was there.
    EXPECT_EQ(codec.Decode(Format(3, 2, 24), Below + Above, Format(3, 2, 16), 16),
              std::string("\x42\x08\x10\x42\xDE\x7B??\x00\x7C\xE0\x03\x1F\x00??", 16));
}

TEST(Vfw, BytesThatAreNoPictureFail) {
    const Codec codec(Code("MJPG"));
    constexpr std::size_t bytes = std::size_t{64} * 48 * 4;
    const BITMAPINFOHEADER input = Format(64, 48, 24, Code("MJPG"));
    EXPECT_EQ(codec.Decode(input, "", Format(64, 48, 32), bytes), "failed");
    EXPECT_EQ(codec.Decode(input, "no picture", Format(64, 48, 32), bytes), "failed");
}

// Run-length coding at 24 bits: a count and the pixel; 0 0 ends a row, 0 1 the picture.
TEST(Vfw, RunsAreDecodedAndPicturesBuildOnTheOneBefore) {
    const Codec codec(BI_RLE8);
    const BITMAPINFOHEADER input = Format(4, 2, 24, BI_RLE8);
    const std::string white(3, '\xFF');
    const std::string grey(3, '\x40');
    const std::string first =
        "\4" + grey + std::string("\0\0", 2) + "\4" + white + std::string("\0\0\0\1", 4);
    const std::string whiteRow = white + white + white + white;
    const std::string greyRow = grey + grey + grey + grey;
    EXPECT_EQ(codec.Decode(input, first, Format(4, 2, 24), 24), greyRow + whiteRow);
    // 0 2 moves on: one to the right, none up; then one pixel.
    const std::string second = std::string("\0\2\1\0", 4) + "\1" + white + std::string("\0\1", 2);
    EXPECT_EQ(codec.Decode(input, second, Format(4, 2, 24), 24),
              grey + white + grey + grey + whiteRow);
}

TEST(Vfw, AnInstalledCodecComesFirst) {
    {
        ScriptedCodec scripted(Code("cvid"));
        const Codec codec(Code("CVID"));
        codec.Query(Format(4, 2, 24, Code("cvid")), Format(4, 2, 32));
        EXPECT_EQ(scripted.calls,
                  (std::vector<std::string>{"open", "query 24 4x2 (0) -> 32 4x2 (0)"}));
        scripted.refuses = true;
        EXPECT_EQ(Codec(Code("cvid")).handle, nullptr);
        scripted.refuses = false;
    }
    const Codec stock(Code("cvid"));
    ICINFO info{};
    EXPECT_NE(ICGetInfo(stock.handle, &info, sizeof info), 0);
}

// A codec that answers as it is told to and writes down each message and the number it is called
// by.
struct Driver {
    static inline std::string calls;
    static inline LRESULT loadAnswer = 1;
    static inline LRESULT openAnswer = 1;

    static LRESULT Answer(DWORD_PTR id, HDRVR, UINT message, LPARAM, LPARAM second) {
        calls += std::to_string(message) + ':' + std::to_string(id) + ' ';
        if (message == DRV_OPEN) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): as messages carry it
            const auto& request = *reinterpret_cast<const ICOPEN*>(second);
            EXPECT_EQ(request.dwSize, sizeof(ICOPEN));
            EXPECT_EQ(request.fccType, ICTYPE_VIDEO);
            EXPECT_EQ(request.fccHandler, Code("drvr"));
            EXPECT_EQ(request.dwFlags, ICMODE_DECOMPRESS);
            return openAnswer;
        }
        return message == DRV_LOAD ? loadAnswer : 0;
    }
};

TEST(Vfw, ADriverIsLoadedOpenedClosedAndFreed) {
    ASSERT_EQ(ICInstall(ICTYPE_VIDEO, Code("drvr"), reinterpret_cast<LPARAM>(&Driver::Answer),
                        "a driver", ICINSTALL_FUNCTION),
              TRUE);
    Driver::openAnswer = 77;
    {
        const Codec codec(Code("drvr"));
        EXPECT_EQ(Driver::calls, "1:0 2:0 3:0 "); // load, enable, open
        Driver::calls.clear();
        ICSendMessage(codec.handle, ICM_DECOMPRESS_END, 0, 0);
        EXPECT_EQ(Driver::calls, "16398:77 ");
        Driver::calls.clear();
    }
    EXPECT_EQ(Driver::calls, "4:77 5:0 6:0 "); // close, disable, free
    Driver::calls.clear();
    Driver::openAnswer = 0;
    EXPECT_EQ(Codec(Code("drvr")).handle, nullptr);
    EXPECT_EQ(Driver::calls, "1:0 2:0 3:0 5:0 6:0 ");
    Driver::calls.clear();
    Driver::loadAnswer = 0;
    EXPECT_EQ(Codec(Code("drvr")).handle, nullptr);
    EXPECT_EQ(Driver::calls, "1:0 ");
    EXPECT_EQ(ICRemove(ICTYPE_VIDEO, Code("drvr"), 0), TRUE);
}

TEST(Vfw, OnlyFunctionsAreInstalled) {
    EXPECT_EQ(ICInstall(ICTYPE_VIDEO, Code("abcd"), 0, nullptr, ICINSTALL_FUNCTION), FALSE);
    EXPECT_EQ(ICInstall(Code("audc"), Code("abcd"), 1, nullptr, ICINSTALL_FUNCTION), FALSE);
    EXPECT_EQ(ICInstall(ICTYPE_VIDEO, Code("abcd"), 1, nullptr, 2), FALSE);
    EXPECT_EQ(ICRemove(ICTYPE_VIDEO, Code("abcd"), 0), FALSE);
}

} // namespace
