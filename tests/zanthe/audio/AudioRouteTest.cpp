#include "zanthe/audio/AudioRoute.h"

#include <array>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "tests/support/FixedVersion.h"

namespace Zanthe {
namespace {

constexpr auto Ffmpeg = AudioRoute::Ffmpeg;
constexpr auto Recording = AudioRoute::Recording;
constexpr auto MediaFoundation = AudioRoute::MediaFoundation;
constexpr auto DirectShow = AudioRoute::DirectShow;

struct Row {
    const char* path;
    AudioRoute older; // on a system below 6.2
    AudioRoute newer;
};

constexpr std::array Table{
    Row{"/x/a.mp3", Ffmpeg, Ffmpeg},
    Row{"/x/a.MP3", Ffmpeg, Ffmpeg},
    Row{"c:\\x\\a.Mp3", Ffmpeg, Ffmpeg},
    Row{"a.wav.mp3", Ffmpeg, Ffmpeg},
    Row{".mp3", Ffmpeg, Ffmpeg},
    Row{"a.brec", Recording, Recording},
    Row{"/x/A.BREC", Recording, Recording},
    Row{"a.wmv", MediaFoundation, MediaFoundation},
    Row{"a.wma", MediaFoundation, MediaFoundation},
    Row{"a.mp4", MediaFoundation, MediaFoundation},
    Row{"a.MOV", MediaFoundation, MediaFoundation},
    Row{"a.wav", MediaFoundation, MediaFoundation},
    Row{"a.m4a", MediaFoundation, MediaFoundation},
    Row{"a.mts", DirectShow, MediaFoundation},
    Row{"a.M2TS", DirectShow, MediaFoundation},
    Row{"a.avi", DirectShow, DirectShow},
    Row{"a.mpg", DirectShow, DirectShow},
    Row{"a.orirec", DirectShow, DirectShow},
    Row{"a.orirec!Audio.wav", DirectShow, DirectShow},
    Row{"a.brec!audio0.mp4", DirectShow, DirectShow},
    Row{"a.mp3x", DirectShow, DirectShow},
    Row{"a.mp3.avi", DirectShow, DirectShow},
    Row{"/x.mp3/a", DirectShow, DirectShow},
    Row{"/x.brec/a", DirectShow, DirectShow},
    Row{"mp3", DirectShow, DirectShow},
    Row{"", DirectShow, DirectShow},
};

TEST(ChooseAudioRoute, EveryExtensionAndVersion) {
    const auto older = boost::make_shared<FixedVersion>(false);
    const auto newer = boost::make_shared<FixedVersion>(true);
    for (const Row& row : Table) {
        EXPECT_EQ(ChooseAudioRoute(row.path, older), row.older) << row.path;
        EXPECT_EQ(ChooseAudioRoute(row.path, newer), row.newer) << row.path;
    }
}

} // namespace
} // namespace Zanthe
