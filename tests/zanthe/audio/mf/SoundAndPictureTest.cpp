// A flash and a beep that begin together are read at one time, to the sample frame.
#include <algorithm>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/StereoSound.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/core/DecoderOutputFormat.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {
namespace {

constexpr int kRate = 48000;
constexpr float Audible = 0.01F; // what a lossy codec leaves of silence is less

// Where sound begins behind silence of at least half a second.
std::vector<std::int64_t> Beeps(const StereoSound& sound) {
    std::vector<std::int64_t> found;
    std::size_t silent = kRate;
    for (std::size_t i = 0; i < sound.Frames(); ++i) {
        if (sound.left[i] < Audible) {
            ++silent;
            continue;
        }
        if (silent >= kRate / 2) {
            found.push_back(static_cast<std::int64_t>(i));
        }
        silent = 0;
    }
    return found;
}

bool IsBright(VideoSampleReader& reader, MediaTime time) {
    const std::unique_ptr<VideoSample> sample(
        reader.readVideoSample(time, {}, VideoSampleReaderFlags::None));
    if (sample == nullptr) {
        ADD_FAILURE() << "no picture at " << time;
        return false;
    }
    sample->lockData();
    const unsigned char* middle =
        sample->data() + std::ptrdiff_t{sample->height() / 2} * sample->bytesPerRow();
    const bool bright = middle[static_cast<std::ptrdiff_t>(sample->width()) * 2] > 128;
    sample->unlockData();
    return bright;
}

class FlashAndBeep : public testing::TestWithParam<const char*> {};

TEST_P(FlashAndBeep, AreReadAtOneTime) {
    const std::string path = MadeMedia(std::string("sound/") + GetParam());
    const auto sound = AudioMediaReaderFactory(path, 0, kRate).Create_AudioMediaReader(false);
    const std::unique_ptr<WinH264SampleReader> pictures(
        WinH264SampleReader::create(path, 0, DecoderOutputFormat::MemoryArgb32, nullptr));
    const auto beeps = Beeps(ReadWhole(*sound));
    ASSERT_EQ(beeps.size(), 3U);
    for (const std::int64_t beep : beeps) {
        EXPECT_TRUE(IsBright(*pictures, MediaTime(beep, kRate))) << beep;
        EXPECT_FALSE(IsBright(*pictures, MediaTime(beep - 1, kRate))) << beep;
    }
}

INSTANTIATE_TEST_SUITE_P(Made, FlashAndBeep,
                         testing::Values("flash-beep.mov", "flash-beep.mp4",
                                         "flash-beep-bframes.mp4", "flash-beep-aac.mp4"),
                         [](const auto& file) {
                             std::string name = file.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

} // namespace
} // namespace Zanthe
