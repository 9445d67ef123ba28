// Files that claim, or unfold to, far more than they are: each ends as it should, within bounded
// memory. Only a process of its own can tell how much that was.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <zlib.h>

#include "tests/support/GifBytes.h"
#include "tests/support/PdfBytes.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/support/TiffBytes.h"
#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;

namespace {

constexpr long Mebibyte = 1024; // in the unit of PeakKibibytes
// What the sanitizers keep beside each byte, and of what was freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long Allowance = 900 * Mebibyte;
#else
constexpr long Allowance = 0;
#endif

std::string BigEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

std::string PngChunk(const std::string& type, const std::string& data) {
    const std::string body = type + data;
    const auto sum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size())));
    return BigEndian(static_cast<std::uint32_t>(data.size())) + body + BigEndian(sum);
}

// `bytes` zeros, deflated.
std::string DeflatedZeros(std::uint64_t bytes) {
    z_stream stream{};
    deflateInit(&stream, Z_BEST_COMPRESSION);
    std::string zeros(1 << 20, '\0');
    std::string out;
    std::string piece(1 << 16, '\0');
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        const auto step = static_cast<uInt>(std::min<std::uint64_t>(bytes, zeros.size()));
        bytes -= step;
        stream.next_in = reinterpret_cast<Bytef*>(zeros.data());
        stream.avail_in = step;
        do {
            stream.next_out = reinterpret_cast<Bytef*>(piece.data());
            stream.avail_out = static_cast<uInt>(piece.size());
            result = deflate(&stream, bytes == 0 ? Z_FINISH : Z_NO_FLUSH);
            out.append(piece, 0, piece.size() - stream.avail_out);
        } while (stream.avail_out == 0);
    }
    deflateEnd(&stream);
    return out;
}

// A PNG file of one gray with these pixels to unfold.
std::string GrayPng(std::uint32_t width, std::uint32_t height, bool interlaced,
                    const std::string& data) {
    return "\x89PNG\r\n\x1A\n" +
           PngChunk("IHDR", BigEndian(width) + BigEndian(height) + std::string("\x08\0\0\0", 4) +
                                (interlaced ? '\1' : '\0')) +
           PngChunk("IDAT", data) + PngChunk("IEND", "");
}

class ProgramBombs : public testing::Test {
protected:
    // Runs the program on the file; the end, and no more memory than `mebibytes`.
    ProgramEnd Run(const std::vector<std::string>& arguments, long mebibytes) {
        ProgramRun run(arguments);
        const int status = run.Wait();
        EXPECT_LT(run.PeakKibibytes(), mebibytes * Mebibyte + Allowance);
        return {status, run.Out(), run.Err()};
    }

    ProgramEnd RunImage(const std::string& name, const std::string& bytes, long mebibytes) {
        return Run({"image", m_folder.Write(name, bytes), "-o", m_folder / "out.png"}, mebibytes);
    }

    ProgramEnd RunFrame(const GifBytes& gif, long mebibytes) {
        return Run({"frame", m_folder.Write("a.gif", gif.Bytes()), "--at", "0.05", "-o",
                    m_folder / "out.png"},
                   mebibytes);
    }

    TemporaryFolder m_folder;
};

const char* const TooLarge = "or has too many pixels";

} // namespace

TEST_F(ProgramBombs, APngThatClaimsTooMuchIsRefusedByItsHeader) {
    EXPECT_THAT(RunImage("a.png", GrayPng(65535, 65535, false, DeflatedZeros(1000)), 150).err,
                HasSubstr(TooLarge));
    EXPECT_THAT(RunImage("a.png", GrayPng(16384, 8193, true, DeflatedZeros(1000)), 150).err,
                HasSubstr(TooLarge));
}

TEST_F(ProgramBombs, APngThatEndsBeforeItsRowsIsDamaged) {
    const ProgramEnd end =
        RunImage("a.png", GrayPng(16384, 16384, false, DeflatedZeros(100000)), 300);
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("is damaged"));
}

// A quarter of a megabyte that unfolds to a quarter of a gigabyte: it passes through in strips.
TEST_F(ProgramBombs, APngThatUnfoldsIsReadInStrips) {
    const std::string bytes = GrayPng(16384, 16384, false, DeflatedZeros(16385ULL * 16384));
    EXPECT_LT(bytes.size(), 400000U);
    const ProgramEnd end = RunImage("a.png", bytes, 400);
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_THAT(end.out, HasSubstr("4096x4096"));
}

TEST_F(ProgramBombs, AJpegThatClaimsTooMuchIsRefused) {
    for (const char* name : {"gray.jpg", "progressive.jpg"}) {
        std::string jpeg = ReadWholeFile(MadeMedia(std::string("images/") + name));
        const std::size_t frame = std::min(jpeg.find("\xFF\xC0"), jpeg.find("\xFF\xC2"));
        ASSERT_NE(frame, std::string::npos);
        jpeg.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");
        EXPECT_THAT(RunImage("a.jpg", jpeg, 150).err, HasSubstr(TooLarge)) << name;
    }
}

// As large as may be: what there is of it is shown, grey below.
TEST_F(ProgramBombs, AJpegThatEndsEarlyStaysSmall) {
    std::string jpeg = ReadWholeFile(MadeMedia("images/gray.jpg"));
    const std::size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    jpeg.replace(frame + 5, 4, std::string("\x40\0\x40\0", 4));
    EXPECT_EQ(RunImage("a.jpg", jpeg, 400).status, 0);
}

TEST_F(ProgramBombs, ATiffThatClaimsTooMuchIsRefused) {
    EXPECT_THAT(RunImage("a.tiff", TiffOfRows(60000, 60000, "abcd", false), 150).err,
                HasSubstr(TooLarge));
}

// Few rows, and each longer than many pictures.
TEST_F(ProgramBombs, RowsWithoutEndAreRefused) {
    EXPECT_THAT(RunImage("a.png", GrayPng(10000000, 26, false, DeflatedZeros(100000000)), 150).err,
                HasSubstr(TooLarge));
}

// The longest row that is read, with as many rows as there may be.
TEST_F(ProgramBombs, LongRowsStayBounded) {
    const std::string bytes = GrayPng(1 << 20, 256, false, DeflatedZeros(((1ULL << 20) + 1) * 256));
    const ProgramEnd end = RunImage("a.png", bytes, 700);
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_THAT(end.out, HasSubstr("4096x1"));
}

// Planes that are put together when all of them have been read.
TEST_F(ProgramBombs, ATiffOfPlanesInOneStripIsRefused) {
    TiffBytes tiff(16384, 16384, {16, 16, 16, 16}, std::string(100, '\0'));
    tiff.Set(TiffBytes::Planes, {2}).Set(TiffBytes::Compression, {5});
    EXPECT_THAT(RunImage("a.tiff", tiff.Bytes(), 150).err, HasSubstr(TooLarge));
}

TEST_F(ProgramBombs, ABmpThatClaimsTooMuchIsRefused) {
    std::string bmp = ReadWholeFile(MadeMedia("images/bgr24.bmp"));
    bmp.replace(18, 8, std::string("\0\0\1\0\0\0\1\0", 8));
    EXPECT_THAT(RunImage("a.bmp", bmp, 150).err, HasSubstr(TooLarge));
}

TEST_F(ProgramBombs, AGifScreenThatIsTooLarge) {
    const ProgramEnd end =
        RunFrame(GifBytes(65535, 65535).Control(10, 1).Frame(0, 0, 1, 1, 1), 250);
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("WICAnimatedGIFLoader failed to initialize"));
}

TEST_F(ProgramBombs, AGifFrameThatIsTooLarge) {
    const ProgramEnd end = RunFrame(
        GifBytes(4, 4).Control(10, 1).Raw(std::string(",\0\0\0\0\xFF\xFF\xFF\xFF\0\2\1\0", 13)),
        150);
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("WICAnimatedGIFLoader: Error compositing frame"));
}

// A quarter of a million frames of nothing: a table in proportion to the file.
TEST_F(ProgramBombs, AGifOfManyFrames) {
    GifBytes gif(4, 4);
    std::string frames;
    for (int i = 0; i < 250000; ++i) {
        frames += std::string(",\0\0\0\0\1\0\1\0\0\2\0", 12);
    }
    EXPECT_EQ(RunFrame(gif.Raw(frames), 350).status, 0);
}

// A picture that claims ten thousand million pixels.
TEST_F(ProgramBombs, APageThatIsTooMuch) {
    const std::string picture = "BI /W 100000 /H 100000 /BPC 1 /CS /G ID abc EI";
    const std::string pdf = m_folder.Write("a.pdf", PdfOfOnePage(picture));
    const ProgramEnd end =
        Run({"image", pdf, "--size", "200x100", "-o", m_folder / "out.png"}, 400);
    EXPECT_GE(end.status, 0); // however the page is taken, it ends
}
