#include "zanthe/audio/MediaFoundationAudioMediaReader.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zanthe/core/TextException.h"

using testing::Ref;
using testing::Return;

namespace Zanthe {
namespace {

class MockReader : public IAudioReader {
public:
    MOCK_METHOD(unsigned int, FillAudioBuffer, (std::int64_t, unsigned int, std::vector<float*>&),
                (override));
};

TEST(MediaFoundationAudioMediaReader, ForwardsUnchanged) {
    const auto backend = boost::make_shared<MockReader>();
    MediaFoundationAudioMediaReader reader(backend);
    std::vector<float*> channels(3, nullptr);
    EXPECT_CALL(*backend, FillAudioBuffer(-7, 4000000000U, Ref(channels))).WillOnce(Return(9));
    EXPECT_EQ(reader.FillAudioBuffer(-7, 4000000000U, channels), 9U);
}

TEST(MediaFoundationAudioMediaReader, ThrowsAPlainException) {
    try {
        MediaFoundationAudioMediaReader reader("none.mp4", true, 44100);
        FAIL();
    } catch (const TextException& error) {
        EXPECT_STREQ(error.what(), "Failed to create MediaFoundation resource");
    }
}

} // namespace
} // namespace Zanthe
