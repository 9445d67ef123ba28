#include <memory>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/GifBytes.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/WICAnimatedGIFLoader.h"

namespace Zanthe {
namespace {

// A picture as rows of letters, one a pixel: the colours of GifBytes::Palette, "." for none.
std::string LettersOf(const BgraPicture& picture) {
    std::string rows;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const std::string pixel = PixelText(picture, x, y);
            rows += pixel == "00000000"   ? '.'
                    : pixel == "000000FF" ? 'k'
                    : pixel == "0000FFFF" ? 'r'
                    : pixel == "00FF00FF" ? 'g'
                    : pixel == "FF0000FF" ? 'b'
                    : pixel == "00FFFFFF" ? 'y'
                                          : '?';
        }
        rows += y + 1 < picture.height ? "/" : "";
    }
    return rows;
}

class GifLoader : public testing::Test {
protected:
    void Open(const GifBytes& gif) {
        m_loader = std::make_unique<WICAnimatedGIFLoader>(
            win32::Utf8ToWide(m_folder.Write("a.gif", gif.Bytes())));
    }

    // Frames last a tenth of a second each in these files.
    std::string At(int frame) {
        return LettersOf(PictureOf(*m_loader->GetFrameAtTime(frame * 0.1 + 0.05)));
    }

    std::string ByIndex(int frame) {
        return LettersOf(PictureOf(*m_loader->GetFrameAtIndex(frame)));
    }

    std::string IntoBuffer(double seconds) {
        BgraPicture picture{m_loader->GetWidth(), m_loader->GetHeight(), {}};
        picture.bits.resize(static_cast<std::size_t>(picture.width * picture.height) * 4);
        try {
            m_loader->GetFrameAtTimeIntoBuffer(seconds, picture.bits.data());
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
        return LettersOf(picture);
    }

    TemporaryFolder m_folder;
    std::unique_ptr<WICAnimatedGIFLoader> m_loader;
};

const char* const CompositingFailed = "WICAnimatedGIFLoader: Error compositing frame";

TEST_F(GifLoader, FramesLieOnTopOfEachOther) {
    Open(GifBytes(3, 2)
             .Control(10, 1)
             .Frame(0, 0, 3, 2, 1)
             .Control(10, 1)
             .Frame(1, 0, 1, 2, 2)
             .Control(10, 1)
             .Frame(2, 1, 1, 1, 3));
    EXPECT_TRUE(m_loader->IsInitialized());
    EXPECT_EQ(m_loader->GetWidth(), 3);
    EXPECT_EQ(m_loader->GetHeight(), 2);
    EXPECT_EQ(At(0), "rrr/rrr");
    EXPECT_EQ(At(1), "rgr/rgr");
    EXPECT_EQ(At(2), "rgr/rgb");
    EXPECT_EQ(At(7), "rgr/rgb"); // past the end, for ever
    EXPECT_EQ(IntoBuffer(1e6), "rgr/rgb");
    EXPECT_EQ(IntoBuffer(-1), "rrr/rrr");
}

TEST_F(GifLoader, TransparentPixelsLetThePictureBeforeThrough) {
    Open(GifBytes(2, 2)
             .Control(10, 1, 7)
             .Frame(0, 0, 2, 2, {1, 7, 1, 1})
             .Control(10, 1, 2)
             .Frame(0, 0, 2, 2, {2, 2, 3, 2}));
    EXPECT_EQ(At(0), "r./rr");
    EXPECT_EQ(At(1), "r./br");
}

TEST_F(GifLoader, WhatNoFramePaintsIsTransparent) {
    Open(GifBytes(3, 1, true, 4).Control(10, 1).Frame(1, 0, 1, 1, 1));
    EXPECT_EQ(At(0), ".r.");
}

TEST_F(GifLoader, ADisposedFrameLeavesAHole) {
    Open(GifBytes(3, 2, true, 4)
             .Control(10, 1)
             .Frame(0, 0, 3, 2, 1)
             .Control(10, 2)
             .Frame(1, 0, 2, 1, 2)
             .Control(10, 1)
             .Frame(0, 1, 1, 1, 3));
    EXPECT_EQ(At(1), "rgg/rrr");
    EXPECT_EQ(At(2), "r../brr");
}

TEST_F(GifLoader, AnUndoneFrameGivesThePictureBackThatWasBefore) {
    Open(GifBytes(3, 1)
             .Control(10, 1)
             .Frame(0, 0, 3, 1, 1)
             .Control(10, 3)
             .Frame(1, 0, 1, 1, 2)
             .Control(10, 3)
             .Frame(2, 0, 1, 1, 3)
             .Control(10, 1)
             .Frame(0, 0, 1, 1, 4));
    EXPECT_EQ(At(1), "rgr");
    EXPECT_EQ(At(2), "rrb");
    EXPECT_EQ(At(3), "yrr");
    EXPECT_EQ(At(1), "rgr");
}

TEST_F(GifLoader, GoingBackStartsAtTheFirstFrame) {
    Open(GifBytes(3, 1)
             .Control(10, 1)
             .Frame(0, 0, 3, 1, 1)
             .Control(10, 1)
             .Frame(0, 0, 1, 1, 2)
             .Control(10, 1)
             .Frame(1, 0, 1, 1, 3)
             .Control(10, 1)
             .Frame(2, 0, 1, 1, 4));
    EXPECT_EQ(At(3), "gby");
    EXPECT_EQ(At(1), "grr");
    EXPECT_EQ(At(2), "gbr");
    EXPECT_EQ(At(0), "rrr");
    EXPECT_EQ(At(2), "gbr");
}

// A frame without a disposal is where rebuilding may begin, even with a later picture below.
TEST_F(GifLoader, GoingBackStartsBehindAFrameWithoutADisposal) {
    Open(GifBytes(3, 1)
             .Control(10, 1)
             .Frame(0, 0, 3, 1, 1)
             .Control(10, 0)
             .Frame(0, 0, 1, 1, 2)
             .Control(10, 1)
             .Frame(1, 0, 1, 1, 3)
             .Control(10, 1)
             .Frame(2, 0, 1, 1, 4));
    for (const int frame : {0, 1, 2, 3}) {
        At(frame);
    }
    EXPECT_EQ(At(3), "gby");
    EXPECT_EQ(At(2), "gby"); // behind frame 1: only frame 2 is drawn again
    EXPECT_EQ(At(1), "grr"); // frame 0 has a disposal: from the start
}

// The same of a jump forward on a screen that shows nothing yet: what the frames up to that one
// would have painted is not there.
TEST_F(GifLoader, AJumpStartsBehindAFrameWithoutADisposalToo) {
    Open(GifBytes(3, 1)
             .Control(10, 1)
             .Frame(0, 0, 3, 1, 1)
             .Control(10, 0)
             .Frame(0, 0, 1, 1, 2)
             .Control(10, 1)
             .Frame(1, 0, 1, 1, 3));
    EXPECT_EQ(At(2), ".b.");
    EXPECT_EQ(At(0), "rrr");
    EXPECT_EQ(At(1), "grr");
    EXPECT_EQ(At(2), "gbr");
}

TEST_F(GifLoader, TheFrameAtHandCostsNothing) {
    Open(GifBytes(2, 1).Control(10, 1).Frame(0, 0, 2, 1, 1).Control(10, 2).Frame(1, 0, 1, 1, 2));
    EXPECT_EQ(At(1), "rg");
    const auto first = m_loader->GetBitmap();
    EXPECT_EQ(At(1), "rg");
    EXPECT_NE(m_loader->GetBitmap(), first); // handed over anew all the same
    EXPECT_EQ(IntoBuffer(0.15), "rg");
}

// The screen is cleared first, and compositing goes on from the frame at hand.
TEST_F(GifLoader, ByIndexTwiceShowsAnEmptyPicture) {
    Open(GifBytes(2, 1)
             .Control(10, 1)
             .Frame(0, 0, 2, 1, 1)
             .Control(10, 1)
             .Frame(1, 0, 1, 1, 2)
             .Control(10, 1)
             .Frame(0, 0, 1, 1, 3));
    EXPECT_EQ(ByIndex(1), "rg");
    EXPECT_EQ(ByIndex(1), "..");
    EXPECT_EQ(ByIndex(2), "b.");
    EXPECT_EQ(ByIndex(0), "rr");
    EXPECT_EQ(ByIndex(0), "rr"); // the first frame is always drawn
    EXPECT_EQ(ByIndex(-5), "rr");
    EXPECT_EQ(ByIndex(99), "bg");
}

TEST_F(GifLoader, TheOtherDisposals) {
    for (const int disposal : {0, 1, 4, 6, 7}) {
        Open(GifBytes(2, 1)
                 .Control(10, 1)
                 .Frame(0, 0, 2, 1, 1)
                 .Control(10, disposal)
                 .Frame(1, 0, 1, 1, 2)
                 .Control(10, 1)
                 .Frame(0, 0, 1, 1, 3));
        EXPECT_EQ(At(0), "rr") << disposal;
        EXPECT_EQ(At(1), "rg") << disposal;
        EXPECT_EQ(At(2), "bg") << disposal;
    }
}

TEST_F(GifLoader, AFrameThatGoesBackToTheStart) {
    Open(GifBytes(3, 1)
             .Control(10, 1)
             .Frame(0, 0, 3, 1, 1)
             .Control(10, 1)
             .Frame(0, 0, 1, 1, 2)
             .Control(10, 5)
             .Frame(1, 0, 1, 1, 3)
             .Control(10, 1)
             .Frame(2, 0, 1, 1, 4));
    EXPECT_EQ(At(2), "gbr");
    EXPECT_EQ(At(3), "rry");
}

// The composite shows the first frame then, whatever becomes of the next.
TEST_F(GifLoader, BackAtTheStartAFailureLeavesTheFirstFrame) {
    Open(GifBytes(3, 1)
             .Control(10, 1)
             .Frame(0, 0, 3, 1, 1)
             .Control(10, 1)
             .Frame(0, 0, 1, 1, 2)
             .Control(10, 5)
             .Frame(1, 0, 1, 1, 3)
             .Control(10, 1)
             .Frame(0, 0, 0, 1, 1));
    EXPECT_EQ(At(2), "gbr");
    EXPECT_EQ(IntoBuffer(0.35), CompositingFailed);
    EXPECT_EQ(At(2), "gbr"); // drawn again, from the first frame on
}

TEST_F(GifLoader, AFirstFrameThatGoesBackToItselfFails) {
    Open(GifBytes(2, 1).Control(10, 5).Frame(0, 0, 2, 1, 1).Control(10, 1).Frame(0, 0, 1, 1, 2));
    EXPECT_EQ(IntoBuffer(0), CompositingFailed);
    EXPECT_EQ(m_loader->GetFrameAtTime(0), nullptr);
}

// Before the first frame nothing is kept that one could go back to.
TEST_F(GifLoader, AFirstFrameThatIsUndoneFails) {
    Open(GifBytes(2, 1).Control(10, 3).Frame(0, 0, 2, 1, 1).Control(10, 1).Frame(0, 0, 1, 1, 2));
    EXPECT_EQ(IntoBuffer(0), CompositingFailed);
    EXPECT_EQ(m_loader->GetFrameAtIndex(0), nullptr);
}

TEST_F(GifLoader, AFirstFrameWithADisposalIsShown) {
    for (const int disposal : {2, 6, 7}) {
        Open(GifBytes(2, 1).Control(10, disposal).Frame(1, 0, 1, 1, 1));
        EXPECT_EQ(At(0), ".r") << disposal;
    }
}

TEST_F(GifLoader, AFrameBeyondTheScreenIsCut) {
    Open(GifBytes(3, 2).Control(10, 1).Frame(2, 1, 5, 5, 1).Control(10, 1).Frame(9, 9, 2, 2, 2));
    EXPECT_EQ(At(0), ".../..r");
    EXPECT_EQ(At(1), ".../..r");
}

TEST_F(GifLoader, InterlacedRowsComeInOrder) {
    std::vector<int> pixels;
    for (const int row : {0, 8, 4, 2, 6, 1, 3, 5, 7, 9}) {
        pixels.push_back(row % 5);
    }
    Open(GifBytes(1, 10).Control(10, 1).Frame(0, 0, 1, 10, pixels, true));
    EXPECT_EQ(At(0), "k/r/g/b/y/k/r/g/b/y");
}

TEST_F(GifLoader, FewInterlacedRowsComeInOrderToo) {
    const std::vector<std::string> expected = {"k", "k/r", "k/r/g", "k/r/g/b", "k/r/g/b/y"};
    const std::vector<std::vector<int>> stored = {
        {0}, {0, 1}, {0, 2, 1}, {0, 2, 1, 3}, {0, 4, 2, 1, 3}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const int height = static_cast<int>(i) + 1;
        Open(GifBytes(1, height).Control(10, 1).Frame(0, 0, 1, height, stored[i], true));
        EXPECT_EQ(At(0), expected[i]);
    }
}

TEST_F(GifLoader, WithoutAnyPaletteTheColoursAreShadesOfGray) {
    Open(GifBytes(2, 1, false).Control(10, 1).Frame(0, 0, 2, 1, {0, 100}));
    const BgraPicture picture = PictureOf(*m_loader->GetFrameAtTime(0));
    EXPECT_EQ(PixelText(picture, 0, 0), "000000FF");
    EXPECT_EQ(PixelText(picture, 1, 0), "646464FF");
}

TEST_F(GifLoader, AFrameHasColoursOfItsOwn) {
    Open(GifBytes(2, 1)
             .Control(10, 1)
             .Frame(0, 0, 2, 1, {1, 2}, false,
                    {{0, 0, 0}, {0, 0, 255}, {255, 255, 0}, {}, {}, {}, {}, {}})
             .Control(10, 1)
             .Frame(0, 0, 1, 1, 1));
    EXPECT_EQ(At(0), "by");
    EXPECT_EQ(At(1), "ry");
}

TEST_F(GifLoader, MissingPixelsAreTransparent) {
    Open(GifBytes(2, 3).Control(10, 1).Frame(0, 0, 2, 3, {1, 1, 2, 2}));
    EXPECT_EQ(At(0), "rr/gg/..");
}

TEST_F(GifLoader, AColourThatIsNotInThePaletteIsNone) {
    Open(GifBytes(2, 1).Control(10, 1).Frame(0, 0, 2, 1, {1, 100}));
    EXPECT_EQ(At(0), "r.");
}

TEST_F(GifLoader, AFrameWithoutAnAreaFails) {
    Open(GifBytes(2, 1).Control(10, 1).Frame(0, 0, 2, 1, 1).Control(10, 1).Frame(0, 0, 0, 1, 1));
    EXPECT_EQ(IntoBuffer(0), "rr");
    EXPECT_EQ(IntoBuffer(0.15), CompositingFailed);
    // The picture before stays.
    EXPECT_EQ(At(0), "rr");
    EXPECT_EQ(At(1), "rr");
}

TEST_F(GifLoader, WithoutFrames) {
    Open(GifBytes(2, 1));
    EXPECT_TRUE(m_loader->IsInitialized());
    EXPECT_EQ(IntoBuffer(0), CompositingFailed);
    EXPECT_EQ(m_loader->GetFrameAtTime(0), nullptr);
    EXPECT_EQ(m_loader->GetFrameAtIndex(0), nullptr);
}

TEST_F(GifLoader, WithoutAScreen) {
    Open(GifBytes(0, 5).Control(10, 1).Frame(0, 0, 1, 1, 1));
    EXPECT_TRUE(m_loader->IsInitialized());
    EXPECT_EQ(IntoBuffer(0), CompositingFailed);
    EXPECT_EQ(m_loader->GetFrameAtIndex(0), nullptr);
}

// A few bytes must not cost gigabytes.
TEST_F(GifLoader, AScreenThatIsTooLargeIsNotInitialized) {
    Open(GifBytes(65535, 65535).Control(10, 1).Frame(0, 0, 1, 1, 1));
    EXPECT_FALSE(m_loader->IsInitialized());
    EXPECT_EQ(m_loader->GetFrameAtTime(0), nullptr);
    EXPECT_EQ(m_loader->GetFrameAtIndex(0), nullptr);
}

TEST_F(GifLoader, AFrameThatIsTooLargeFails) {
    Open(GifBytes(4, 4).Control(10, 1).Raw(std::string(",\0\0\0\0\xFF\xFF\xFF\xFF\0\2\1\0", 13)));
    EXPECT_EQ(IntoBuffer(0), CompositingFailed);
}

// The caller's buffer is of the capped size, so the picture is too.
TEST_F(GifLoader, AWideScreenIsScaledIntoTheBuffer) {
    Open(GifBytes(8192, 4).Control(10, 1).Frame(0, 0, 8192, 4, 1));
    EXPECT_EQ(m_loader->GetWidth(), 4096);
    EXPECT_EQ(m_loader->GetHeight(), 2);
    EXPECT_EQ(IntoBuffer(0), std::string(4096, 'r') + "/" + std::string(4096, 'r'));
    EXPECT_EQ(m_loader->GetFrameAtTime(0)->GetWidth(), 8192);
}

TEST_F(GifLoader, LoadShowsTheFrameOfATime) {
    Open(GifBytes(1, 1).Control(10, 1).Frame(0, 0, 1, 1, 1).Control(10, 1).Frame(0, 0, 1, 1, 2));
    m_loader->Load(0.15, 0, 0);
    EXPECT_EQ(LettersOf(PictureOf(*m_loader->GetBitmap())), "g");
    m_loader->Load(0.0, 0, 0);
    EXPECT_EQ(LettersOf(PictureOf(*m_loader->GetBitmap())), "r");
    EXPECT_TRUE(m_loader->GetBitmap()->GetPreMultipliedAlpha());
}

TEST_F(GifLoader, TheBackgroundColour) {
    Open(GifBytes(1, 1, true, 4).Frame(0, 0, 1, 1, 1));
    EXPECT_EQ(m_loader->GetGdiplusBackgroundColor().GetValue(), 0x00FFFF00U);
    Open(GifBytes(1, 1, false).Frame(0, 0, 1, 1, 1));
    EXPECT_EQ(m_loader->GetGdiplusBackgroundColor().GetValue(), 0U);
}

// It goes through shares of one, and comes back as it was.
TEST_F(GifLoader, EveryShadeOfTheBackgroundColour) {
    for (int shade = 0; shade < 256; ++shade) {
        std::string bytes = GifBytes(1, 1, true, 4).Frame(0, 0, 1, 1, 1).Bytes();
        constexpr std::size_t colour = 13 + 4 * 3;
        bytes[colour] = static_cast<char>(shade);
        bytes[colour + 1] = static_cast<char>(255 - shade);
        bytes[colour + 2] = static_cast<char>(shade ^ 0x55);
        WICAnimatedGIFLoader loader(win32::Utf8ToWide(m_folder.Write("b.gif", bytes)));
        const Gdiplus::Color background = loader.GetGdiplusBackgroundColor();
        ASSERT_EQ(background.GetAlpha(), 0);
        ASSERT_EQ(background.GetRed(), shade);
        ASSERT_EQ(background.GetGreen(), 255 - shade);
        ASSERT_EQ(background.GetBlue(), shade ^ 0x55);
    }
}

TEST_F(GifLoader, WhatIsNoGifHasNoDecoder) {
    EXPECT_THROW(WICAnimatedGIFLoader(win32::Utf8ToWide(m_folder / "missing.gif")),
                 DSMediaDetException);
    EXPECT_THROW(
        WICAnimatedGIFLoader(win32::Utf8ToWide(m_folder.Write("a.gif", "no picture at all"))),
        DSMediaDetException);
}

} // namespace
} // namespace Zanthe
