#include "zanthe/h264/MFVideoSample.h"

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/zanthe/h264/ScriptedMedia.h"

namespace Zanthe {
namespace {

class VideoSampleOverMf : public testing::Test {
protected:
    explicit VideoSampleOverMf(Place place = Place::Memory)
        : m_buffer(com::MakeOwned<ScriptedBuffer>(1000, place))
        , m_sample(com::MakeOwned<ScriptedSample>(0, 1)) {
        m_sample->AddBuffer(m_buffer.Get());
        MFSetAttributeSize(m_sample.Get(), MF_MT_FRAME_SIZE, 64, 56);
    }

    std::unique_ptr<MFVideoSample> Make() {
        return std::make_unique<MFVideoSample>(m_sample.Get(), 60, 50);
    }

    com::ComPtr<ScriptedBuffer> m_buffer;
    com::ComPtr<ScriptedSample> m_sample;
};

class VideoSampleOnDevice : public VideoSampleOverMf {
protected:
    VideoSampleOnDevice()
        : VideoSampleOverMf(Place::Device) {}
};

TEST_F(VideoSampleOverMf, SizesAndStride) {
    const auto sample = Make();
    EXPECT_EQ(sample->width(), 60);
    EXPECT_EQ(sample->height(), 50);
    EXPECT_EQ(sample->bufferWidth(), 64);
    EXPECT_EQ(sample->bufferHeight(), 56);
    EXPECT_EQ(sample->bytesPerRow(), 4 * 64); // not of the width as shown
    EXPECT_FALSE(sample->isFlipped());
    EXPECT_EQ(sample->colorSpace(), nullptr);
    m_sample->SetUINT32(MF_MT_DEFAULT_STRIDE, 300);
    EXPECT_EQ(sample->bytesPerRow(), 300);
    m_sample->SetUINT32(MF_MT_DEFAULT_STRIDE, static_cast<UINT32>(-300));
    EXPECT_EQ(sample->bytesPerRow(), -300);
}

TEST_F(VideoSampleOverMf, WithoutASizeThereIsNone) {
    const auto bare = com::MakeOwned<ScriptedSample>(0, 1);
    bare->AddBuffer(m_buffer.Get());
    const MFVideoSample sample(bare.Get(), 60, 50);
    EXPECT_EQ(sample.bufferWidth(), 0);
    EXPECT_EQ(sample.bufferHeight(), 0);
    EXPECT_EQ(sample.bytesPerRow(), 0);
}

TEST_F(VideoSampleOverMf, LocksTheBuffer) {
    const auto sample = Make();
    EXPECT_EQ(sample->data(), nullptr);
    EXPECT_EQ(sample->videoSampleFormat(), VideoSampleFormat::SystemMemory);
    sample->lockData();
    EXPECT_EQ(m_buffer->locks, 1);
    EXPECT_EQ(sample->data(), m_buffer->Bytes().data());
    EXPECT_EQ(sample->dataSize(), 1000);
    sample->unlockData();
    EXPECT_EQ(m_buffer->locks, 0);
}

TEST_F(VideoSampleOverMf, ABufferThatCannotBeLocked) {
    const auto sample = Make();
    for (const HRESULT result : {E_FAIL, S_FALSE}) {
        m_buffer->lockResult = result;
        try {
            sample->lockData();
            FAIL();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "MFVideoSample::lockData() - couldn't lock media buffer");
        }
    }
}

TEST_F(VideoSampleOnDevice, HasNoMemory) {
    const auto sample = Make();
    EXPECT_EQ(sample->videoSampleFormat(), VideoSampleFormat::GraphicsDevice);
    sample->lockData();
    EXPECT_EQ(sample->data(), nullptr);
    EXPECT_EQ(m_buffer->locks, 0);
    sample->unlockData();
    EXPECT_EQ(m_buffer->locks, -1); // the buffer is told, whatever lockData did
}

TEST_F(VideoSampleOnDevice, AConvertedSampleIsNotAsked) {
    m_sample->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_RGB32);
    const auto sample = Make();
    EXPECT_EQ(sample->videoSampleFormat(), VideoSampleFormat::SystemMemory);
    EXPECT_EQ(m_buffer->interfaceAsked, 0);
    m_sample->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_ARGB32);
    EXPECT_EQ(sample->videoSampleFormat(), VideoSampleFormat::GraphicsDevice);
}

TEST_F(VideoSampleOverMf, References) {
    auto sample = Make();
    EXPECT_EQ(sample->imfSample(), m_sample.Get());
    EXPECT_EQ(sample->imfMediaBuffer(), m_buffer.Get());
    EXPECT_EQ(::References(m_sample.Get()), 2U);
    m_sample->AddRef(); // as a search leaves it
    sample->decrementRefCount();
    EXPECT_EQ(::References(m_sample.Get()), 2U);
    sample.reset();
    EXPECT_EQ(::References(m_sample.Get()), 1U);
    EXPECT_EQ(::References(m_buffer.Get()), 2U); // the test's and the sample's
}

TEST_F(VideoSampleOverMf, WithoutABuffer) {
    const auto bare = com::MakeOwned<ScriptedSample>(0, 1);
    for (IMFSample* sample :
         {static_cast<IMFSample*>(bare.Get()), static_cast<IMFSample*>(nullptr)}) {
        try {
            const MFVideoSample none(sample, 1, 1);
            FAIL();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "MFVideoSample: Couldn't get MediaBuffer from MFSample");
        }
    }
    EXPECT_EQ(::References(bare.Get()), 1U);
}

} // namespace
} // namespace Zanthe
