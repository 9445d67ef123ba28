#include <cmath>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/GifBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/WICAnimatedGIFReader.h"

namespace Zanthe {
namespace {

class GifReader : public testing::Test {
protected:
    boost::shared_ptr<WICAnimatedGIFReader> Read(const std::string& bytes) {
        auto reader = boost::make_shared<WICAnimatedGIFReader>(
            win32::Utf8ToWide(m_folder.Write("a.gif", bytes)));
        reader->Open();
        EXPECT_TRUE(reader->IsOpen());
        return reader;
    }

    std::uint32_t DelayOf(int hundredths) {
        return Read(GifBytes(1, 1).Control(hundredths, 0).Frame(0, 0, 1, 1, 1).Bytes())
            ->Frames()
            .at(0)
            ->delay;
    }

    TemporaryFolder m_folder;
};

TEST_F(GifReader, ShortDelaysAreTakenForNone) {
    EXPECT_EQ(DelayOf(0), 100U);
    EXPECT_EQ(DelayOf(1), 100U);
    EXPECT_EQ(DelayOf(2), 20U);
    EXPECT_EQ(DelayOf(3), 30U);
    EXPECT_EQ(DelayOf(65535), 655350U);
}

TEST_F(GifReader, AFrameWithoutAControl) {
    const auto reader = Read(GifBytes(3, 2).Frame(0, 0, 3, 2, 1).Bytes());
    ASSERT_EQ(reader->Frames().size(), 1U);
    EXPECT_EQ(reader->Frames()[0]->delay, 100U);
    EXPECT_EQ(reader->Frames()[0]->disposal, 0U);
    EXPECT_EQ(reader->Frames()[0]->bitsPerPixel, 8U);
    EXPECT_DOUBLE_EQ(reader->Duration(), 0.1);
    EXPECT_DOUBLE_EQ(reader->FrameRate(), 10.0);
    EXPECT_FALSE(reader->VariableDelays());
}

TEST_F(GifReader, TheTableOfFrames) {
    const auto reader = Read(GifBytes(10, 8)
                                 .Control(5, 1)
                                 .Frame(0, 0, 10, 8, 1)
                                 .Control(20, 3)
                                 .Frame(2, 3, 4, 5, 2)
                                 .Frame(9, 7, 4, 4, 3)
                                 .Bytes());
    EXPECT_EQ(reader->FrameCount(), 3U);
    ASSERT_EQ(reader->Frames().size(), 3U);
    const auto& second = *reader->Frames()[1];
    EXPECT_EQ(second.left, 2U);
    EXPECT_EQ(second.top, 3U);
    EXPECT_EQ(second.right, 6U);
    EXPECT_EQ(second.bottom, 8U);
    EXPECT_EQ(second.delay, 200U);
    EXPECT_EQ(second.disposal, 3U);
    // A control serves the frame behind it alone.
    EXPECT_EQ(reader->Frames()[2]->disposal, 0U);
    EXPECT_EQ(reader->Frames()[2]->delay, 100U);
    EXPECT_EQ(reader->Frames()[2]->right, 13U);
    EXPECT_DOUBLE_EQ(reader->Duration(), 0.35);
    EXPECT_DOUBLE_EQ(reader->FrameRate(), 3 / 0.35);
    EXPECT_TRUE(reader->VariableDelays());
}

TEST_F(GifReader, WhichFrameIsShownWhen) {
    const auto reader = Read(GifBytes(1, 1)
                                 .Control(10, 0)
                                 .Frame(0, 0, 1, 1, 1)
                                 .Control(30, 0)
                                 .Frame(0, 0, 1, 1, 2)
                                 .Control(5, 0)
                                 .Frame(0, 0, 1, 1, 3)
                                 .Bytes());
    EXPECT_EQ(reader->frameAtTime(-3), 0);
    EXPECT_EQ(reader->frameAtTime(0), 0);
    EXPECT_EQ(reader->frameAtTime(0.0999), 0);
    EXPECT_EQ(reader->frameAtTime(0.1), 1);
    EXPECT_EQ(reader->frameAtTime(0.3999), 1);
    EXPECT_EQ(reader->frameAtTime(0.4), 2);
    EXPECT_EQ(reader->frameAtTime(0.45), 2);
    EXPECT_EQ(reader->frameAtTime(1e9), 2);
    EXPECT_EQ(reader->frameAtTime(std::nan("")), 2);
}

TEST_F(GifReader, TheScreenAndItsAspect) {
    const auto display = [&](int aspect) {
        const auto reader = Read(GifBytes(100, 60, true, 0, aspect).Frame(0, 0, 1, 1, 1).Bytes());
        EXPECT_EQ(reader->ScreenWidth(), 100U);
        EXPECT_EQ(reader->ScreenHeight(), 60U);
        int width = 0;
        int height = 0;
        reader->GetSize(width, height);
        EXPECT_EQ(width, 100);
        EXPECT_EQ(height, 60);
        return std::pair(reader->DisplayWidth(), reader->DisplayHeight());
    };
    EXPECT_EQ(display(0), std::pair(100U, 60U));
    EXPECT_EQ(display(49), std::pair(100U, 60U));  // 64 / 64
    EXPECT_EQ(display(17), std::pair(50U, 60U));   // 32 / 64
    EXPECT_EQ(display(16), std::pair(48U, 60U));   // 31 / 64: 48.4
    EXPECT_EQ(display(113), std::pair(100U, 30U)); // 128 / 64
    EXPECT_EQ(display(255), std::pair(100U, 14U)); // 270 / 64: 14.2
}

TEST_F(GifReader, TheBackgroundIsAlwaysTransparent) {
    const auto colour = [&](bool palette, int index) {
        return Read(GifBytes(1, 1, palette, index).Frame(0, 0, 1, 1, 1).Bytes())->Background();
    };
    const auto yellow = colour(true, 4);
    EXPECT_FLOAT_EQ(yellow.red, 1);
    EXPECT_FLOAT_EQ(yellow.green, 1);
    EXPECT_FLOAT_EQ(yellow.blue, 0);
    EXPECT_FLOAT_EQ(yellow.alpha, 0);
    EXPECT_FLOAT_EQ(colour(true, 8).red, 0);
    EXPECT_FLOAT_EQ(colour(false, 4).red, 0);
}

TEST_F(GifReader, HowOftenToPlay) {
    const auto loops = [&](std::string_view name, std::string_view data) {
        const auto reader =
            Read(GifBytes(1, 1).Application(name, data).Frame(0, 0, 1, 1, 1).Bytes());
        EXPECT_EQ(reader->HasLoopCount(), reader->LoopCount() != 0);
        return reader->LoopCount();
    };
    using namespace std::string_view_literals;
    EXPECT_EQ(loops("NETSCAPE2.0", "\1\5\0"sv), 5U);
    EXPECT_EQ(loops("ANIMEXTS1.0", "\1\5\1"sv), 261U);
    EXPECT_EQ(loops("NETSCAPE2.0", "\1\0\0"sv), 0U);
    EXPECT_EQ(loops("NETSCAPE2.0", "\2\5\0"sv), 0U); // another kind of block
    EXPECT_EQ(loops("NETSCAPE2.0", "\1\5"sv), 0U);
    EXPECT_EQ(loops("NETSCAPE2.0", ""sv), 0U);
    EXPECT_EQ(loops("NETSCAPE2.1", "\1\5\0"sv), 0U);
    EXPECT_EQ(loops("XMP DataXMP", "\1\5\0"sv), 0U);
    EXPECT_EQ(loops("NETSCAPE", "\1\5\0"sv), 0U);
}

TEST_F(GifReader, TheFirstApplicationBlockIsTheOneThatCounts) {
    using namespace std::string_view_literals;
    const auto reader = Read(GifBytes(1, 1)
                                 .Application("XMP DataXMP", "\1\7\0"sv)
                                 .Application("NETSCAPE2.0", "\1\5\0"sv)
                                 .Frame(0, 0, 1, 1, 1)
                                 .Bytes());
    EXPECT_EQ(reader->LoopCount(), 0U);
    const auto other = Read(GifBytes(1, 1)
                                .Application("NETSCAPE2.0", "\1\5\0"sv)
                                .Application("ANIMEXTS1.0", "\1\7\0"sv)
                                .Frame(0, 0, 1, 1, 1)
                                .Bytes());
    EXPECT_EQ(other->LoopCount(), 5U);
}

TEST_F(GifReader, OfTwoControlsTheSecondCounts) {
    const auto reader =
        Read(GifBytes(1, 1).Control(20, 3).Control(30, 2).Frame(0, 0, 1, 1, 1).Bytes());
    EXPECT_EQ(reader->Frames().at(0)->delay, 300U);
    EXPECT_EQ(reader->Frames().at(0)->disposal, 2U);
}

TEST_F(GifReader, AControlThatIsTooShortIsNone) {
    const auto reader = Read(
        GifBytes(1, 1).Raw(std::string("!\xF9\3\x08\x20\0\0", 7)).Frame(0, 0, 1, 1, 1).Bytes());
    ASSERT_EQ(reader->Frames().size(), 1U);
    EXPECT_EQ(reader->Frames()[0]->delay, 100U);
    EXPECT_EQ(reader->Frames()[0]->disposal, 0U);
}

// A text is shown as little as a comment; the control before it is its own.
TEST_F(GifReader, ATextTakesTheControlBeforeIt) {
    const std::string text = std::string("!\1\x0C") + std::string(12, '\1') + "\2hi" + '\0';
    const auto reader = Read(GifBytes(1, 1)
                                 .Control(20, 2)
                                 .Raw(text)
                                 .Frame(0, 0, 1, 1, 1)
                                 .Control(30, 1)
                                 .Raw(std::string("!\xFE\2hi\0", 6))
                                 .Frame(0, 0, 1, 1, 1)
                                 .Bytes());
    ASSERT_EQ(reader->Frames().size(), 2U);
    EXPECT_EQ(reader->Frames()[0]->delay, 100U);
    EXPECT_EQ(reader->Frames()[0]->disposal, 0U);
    EXPECT_EQ(reader->Frames()[1]->delay, 300U);
    EXPECT_EQ(reader->Frames()[1]->disposal, 1U);
}

TEST_F(GifReader, WhatFollowsTheTrailerIsNotThere) {
    const auto reader =
        Read(GifBytes(1, 1).Frame(0, 0, 1, 1, 1).Raw(";").Frame(0, 0, 1, 1, 2).Bytes());
    EXPECT_EQ(reader->Frames().size(), 1U);
}

TEST_F(GifReader, TheOlderVersionIsReadToo) {
    std::string bytes = GifBytes(3, 2).Frame(0, 0, 3, 2, 1).Bytes();
    bytes.replace(3, 3, "87a");
    EXPECT_EQ(Read(bytes)->Frames().size(), 1U);
}

// What stands before the damage is there.
TEST_F(GifReader, AFileThatWasCutOff) {
    const std::string whole = GifBytes(4, 4)
                                  .Control(10, 1)
                                  .Frame(0, 0, 4, 4, 1)
                                  .Control(20, 1)
                                  .Frame(0, 0, 4, 4, 2)
                                  .Bytes();
    std::size_t before = 0;
    for (std::size_t length = 13 + 24; length <= whole.size(); ++length) {
        const auto reader = Read(whole.substr(0, length));
        EXPECT_GE(reader->Frames().size(), before) << length;
        before = reader->Frames().size();
    }
    EXPECT_EQ(before, 2U);
}

TEST_F(GifReader, WithoutFrames) {
    const auto reader = Read(GifBytes(4, 4).Bytes());
    EXPECT_EQ(reader->FrameCount(), 0U);
    EXPECT_EQ(reader->frameAtTime(1), 0);
    EXPECT_EQ(reader->Duration(), 0);
    EXPECT_EQ(reader->FrameRate(), 0);
}

TEST_F(GifReader, ResetForgetsAll) {
    const auto reader = Read(GifBytes(4, 4).Frame(0, 0, 4, 4, 1).Bytes());
    reader->Reset();
    EXPECT_FALSE(reader->IsOpen());
    EXPECT_TRUE(reader->Frames().empty());
    EXPECT_EQ(reader->ScreenWidth(), 0U);
    reader->Open();
    EXPECT_EQ(reader->Frames().size(), 1U);
}

TEST_F(GifReader, WhatIsNoGif) {
    WICAnimatedGIFReader reader(win32::Utf8ToWide(m_folder / "missing.gif"));
    EXPECT_THROW(reader.Open(), DSMediaDetException);
    EXPECT_FALSE(reader.IsOpen());
}

// A still picture has none of the items: the reader is open and knows no frames.
TEST_F(GifReader, AnotherPictureUnderTheName) {
    const auto reader =
        Read(std::string("BM") + std::string(8, '\0') + "\x36" + std::string(3, '\0') + "\x28" +
             std::string(3, '\0') + "\1" + std::string(3, '\0') + "\1" + std::string(3, '\0') +
             "\1" + std::string(1, '\0') + "\x18" + std::string(29, '\0'));
    EXPECT_TRUE(reader->IsOpen());
    EXPECT_EQ(reader->ScreenWidth(), 0U);
    ASSERT_EQ(reader->Frames().size(), 1U);
    EXPECT_EQ(reader->Frames()[0]->delay, 100U);
}

} // namespace
} // namespace Zanthe
