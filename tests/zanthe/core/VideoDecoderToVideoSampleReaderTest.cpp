#include "zanthe/core/VideoDecoderToVideoSampleReader.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Zanthe;
using testing::DoAll;
using testing::Eq;
using testing::InSequence;
using testing::NiceMock;
using testing::Return;
using testing::SetArgReferee;
using testing::Throw;

namespace {

class MockDecoder : public VideoDecoder {
public:
    MockDecoder() {
        ON_CALL(*this, outputWidth).WillByDefault(Return(2));
        ON_CALL(*this, outputHeight).WillByDefault(Return(3));
    }

    // A mocked call may throw anything; this one never does.
    // NOLINTNEXTLINE(bugprone-exception-escape)
    ~MockDecoder() override { Destroyed(); }

    MOCK_METHOD(int, outputWidth, (), (const, override));
    MOCK_METHOD(int, outputHeight, (), (const, override));
    MOCK_METHOD(bool, readFrame, (MediaTime, unsigned char*, double&), (override));
    MOCK_METHOD(void, Destroyed, ());
};

class DecoderReader : public testing::Test {
protected:
    DecoderReader() {
        auto owned = std::make_unique<NiceMock<MockDecoder>>();
        m_decoder = owned.get();
        m_reader = std::make_unique<VideoDecoderToVideoSampleReader>(std::move(owned));
    }

    std::unique_ptr<VideoSample> Read(MediaTime time) {
        return std::unique_ptr<VideoSample>(
            m_reader->readVideoSample(time, {}, VideoSampleReaderFlags::None));
    }

    NiceMock<MockDecoder>* m_decoder; // m_reader's
    std::unique_ptr<VideoDecoderToVideoSampleReader> m_reader;
};

TEST_F(DecoderReader, ForwardsTheDecoder) {
    EXPECT_EQ(m_reader->outputWidth(), 2);
    EXPECT_EQ(m_reader->outputHeight(), 3);
    EXPECT_CALL(*m_decoder, outputWidth).WillOnce(Return(77));
    EXPECT_EQ(m_reader->outputWidth(), 77);
    EXPECT_EQ(m_reader->internalVideoDecoder(), m_decoder);
    EXPECT_FALSE(m_reader->requiresFlagSometimesToActuallyGetSamples());
    EXPECT_FALSE(m_reader->requiresMediaOrientationTransformation());
}

TEST_F(DecoderReader, TheSampleShowsWhatTheDecoderWrote) {
    EXPECT_CALL(*m_decoder, readFrame(MediaTime(5, 2), testing::_, testing::_))
        .WillOnce([](MediaTime, unsigned char* buffer, double&) {
            std::fill(buffer, buffer + 24, static_cast<unsigned char>(9));
            return true;
        });
    const auto sample = Read(MediaTime(5, 2));
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->width(), 2);
    EXPECT_EQ(sample->height(), 3);
    EXPECT_EQ(sample->bytesPerRow(), 8);
    ASSERT_EQ(sample->dataSize(), 24);
    EXPECT_EQ(sample->data()[0], 9);
    EXPECT_EQ(sample->data()[23], 9);
}

TEST_F(DecoderReader, AheadOfTheFirstServedFrameThePictureIsClear) {
    EXPECT_CALL(*m_decoder, readFrame).WillRepeatedly(Return(false));
    const auto sample = Read({0, 1});
    ASSERT_NE(sample, nullptr);
    constexpr std::ptrdiff_t bytes = 24;
    EXPECT_EQ(std::count(sample->data(), sample->data() + bytes, 0), bytes);
}

TEST_F(DecoderReader, TheFirstReadHoldsNoFrame) {
    EXPECT_CALL(*m_decoder, readFrame(testing::_, testing::_, Eq(-1.0))).WillOnce(Return(true));
    Read(MediaTime(0));
}

TEST_F(DecoderReader, TheActualTimeCarriesOver) {
    const InSequence inOrder;
    EXPECT_CALL(*m_decoder, readFrame(testing::_, testing::_, Eq(-1.0)))
        .WillOnce(DoAll(SetArgReferee<2>(0.25), Return(true)));
    EXPECT_CALL(*m_decoder, readFrame(testing::_, testing::_, Eq(0.25)))
        .WillOnce(DoAll(SetArgReferee<2>(0.5), Return(false)));
    EXPECT_CALL(*m_decoder, readFrame(testing::_, testing::_, Eq(0.5))).WillOnce(Return(true));
    Read(MediaTime(1, 4));
    Read(MediaTime(1, 2));
    Read(MediaTime(3, 4));
}

TEST_F(DecoderReader, ATimeThatIsNotServedShowsTheFrameBefore) {
    EXPECT_CALL(*m_decoder, readFrame)
        .WillOnce([](MediaTime, unsigned char* buffer, double&) {
            buffer[0] = 42;
            return true;
        })
        .WillOnce(Return(false));
    Read(MediaTime(0));
    const auto sample = Read(MediaTime(100));
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->data()[0], 42);
}

TEST_F(DecoderReader, SamplesShareOnePicture) {
    const auto first = Read(MediaTime(0));
    const auto second = Read(MediaTime(1));
    EXPECT_NE(first, second);
    EXPECT_EQ(first->data(), second->data());
}

TEST_F(DecoderReader, ASampleOutlivesTheReader) {
    EXPECT_CALL(*m_decoder, readFrame).WillOnce([](MediaTime, unsigned char* buffer, double&) {
        buffer[23] = 7;
        return true;
    });
    const auto sample = Read(MediaTime(0));
    m_reader.reset();
    EXPECT_EQ(sample->data()[23], 7);
}

TEST_F(DecoderReader, PrepareSeesTheMemoryBeforeTheFrame) {
    testing::MockFunction<void(unsigned char*, int)> prepare;
    unsigned char* prepared = nullptr;
    const InSequence inOrder;
    EXPECT_CALL(prepare, Call(testing::_, 8)).WillOnce(testing::SaveArg<0>(&prepared));
    EXPECT_CALL(*m_decoder, readFrame).WillOnce(Return(true));
    const std::unique_ptr<VideoSample> sample(m_reader->readVideoSample(
        MediaTime(0), prepare.AsStdFunction(), VideoSampleReaderFlags::QuickAnswer));
    EXPECT_EQ(prepared, sample->data());
}

TEST_F(DecoderReader, ADecodersFailureComesThrough) {
    EXPECT_CALL(*m_decoder, readFrame)
        .WillOnce(Throw(std::runtime_error("broken")))
        .WillOnce(Return(true));
    EXPECT_THROW(Read(MediaTime(0)), std::runtime_error);
    EXPECT_NE(Read(MediaTime(0)), nullptr);
}

TEST_F(DecoderReader, EndsItsDecoder) {
    EXPECT_CALL(*m_decoder, Destroyed);
    m_reader.reset();
}

TEST(VideoDecoderToVideoSampleReader, AnImpossibleSizeThrowsAndEndsTheDecoder) {
    auto decoder = std::make_unique<NiceMock<MockDecoder>>();
    ON_CALL(*decoder, outputWidth).WillByDefault(Return(std::numeric_limits<int>::max()));
    EXPECT_CALL(*decoder, Destroyed);
    EXPECT_THROW(VideoDecoderToVideoSampleReader(std::move(decoder)), std::bad_alloc);
}

} // namespace
