#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include "platform/com/ClassRegistry.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Transform.h"
#include "tests/platform/mf/Readers.h"
#include "tests/platform/mf/Sounds.h"

namespace {

std::vector<float> Sweep(std::size_t frames, int rate) {
    std::vector<float> sound(frames * 2);
    for (std::size_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / rate;
        sound[2 * i] = static_cast<float>(0.5 * std::sin(2 * 3.14159265 * (300 + 200 * t) * t));
        sound[2 * i + 1] = static_cast<float>(0.3 * std::sin(2 * 3.14159265 * 500 * t));
    }
    return sound;
}

com::ComPtr<IMFSample> SampleOf(const void* bytes, std::size_t size) {
    com::ComPtr<IMFSample> sample;
    com::ComPtr<IMFMediaBuffer> buffer;
    EXPECT_EQ(MFCreateSample(sample.Put()), S_OK);
    EXPECT_EQ(MFCreateMemoryBuffer(static_cast<DWORD>(size), buffer.Put()), S_OK);
    const mf::BufferLock lock(*buffer);
    std::memcpy(lock.Bytes(), bytes, size);
    EXPECT_EQ(buffer->SetCurrentLength(static_cast<DWORD>(size)), S_OK);
    EXPECT_EQ(sample->AddBuffer(buffer.Get()), S_OK);
    return sample;
}

com::ComPtr<IMFSample> Room(std::size_t bytes) {
    com::ComPtr<IMFSample> sample;
    com::ComPtr<IMFMediaBuffer> buffer;
    EXPECT_EQ(MFCreateSample(sample.Put()), S_OK);
    EXPECT_EQ(MFCreateMemoryBuffer(static_cast<DWORD>(bytes), buffer.Put()), S_OK);
    EXPECT_EQ(sample->AddBuffer(buffer.Get()), S_OK);
    return sample;
}

class Resampler : public testing::Test {
protected:
    Resampler() {
        EXPECT_EQ(CoCreateInstance(CLSID_CResamplerMediaObject, nullptr, 0x17, IID_IMFTransform,
                                   m_resampler.PutVoid()),
                  S_OK);
    }

    void SetTypes(UINT32 from, UINT32 to) {
        ASSERT_EQ(
            m_resampler->SetInputType(0, SoundType(MFAudioFormat_Float, 32, 2, from).Get(), 0),
            S_OK);
        ASSERT_EQ(m_resampler->SetOutputType(0, SoundType(MFAudioFormat_Float, 32, 2, to).Get(), 0),
                  S_OK);
        ASSERT_EQ(m_resampler->ProcessMessage(MFT_MESSAGE_NOTIFY_BEGIN_STREAMING, 0), S_OK);
    }

    HRESULT Put(const std::vector<float>& sound, std::size_t from, std::size_t frames) {
        return m_resampler->ProcessInput(
            0, SampleOf(sound.data() + 2 * from, frames * 2 * sizeof(float)).Get(), 0);
    }

    HRESULT Take(const com::ComPtr<IMFSample>& sample) {
        MFT_OUTPUT_DATA_BUFFER buffer{0, sample.Get(), 7, nullptr};
        DWORD status = 7;
        const HRESULT result = m_resampler->ProcessOutput(0, 1, &buffer, &status);
        EXPECT_EQ(status, 0U);
        return result;
    }

    // All there is, in buffers of so many frames.
    std::vector<float> TakeAll(std::size_t frames = 4096) {
        std::vector<float> taken;
        while (true) {
            const auto sample = Room(frames * 8);
            const HRESULT result = Take(sample);
            if (FAILED(result)) {
                EXPECT_EQ(result, MF_E_TRANSFORM_NEED_MORE_INPUT);
                return taken;
            }
            const auto bytes = BytesOf(*sample);
            EXPECT_LE(bytes.size(), frames * 8);
            const std::size_t before = taken.size();
            taken.resize(before + bytes.size() / sizeof(float));
            std::memcpy(taken.data() + before, bytes.data(), bytes.size());
        }
    }

    HRESULT Drain() { return m_resampler->ProcessMessage(MFT_MESSAGE_COMMAND_DRAIN, 0); }

    HRESULT Flush() { return m_resampler->ProcessMessage(MFT_MESSAGE_COMMAND_FLUSH, 0); }

    com::ComPtr<IMFTransform> m_resampler;
};

TEST_F(Resampler, SamplesOfAnySizeMakeTheSameSound) {
    const std::vector<float> sound = Sweep(48000, 48000);
    SetTypes(48000, 44100);
    ASSERT_EQ(Put(sound, 0, 48000), S_OK);
    ASSERT_EQ(Drain(), S_OK);
    const std::vector<float> whole = TakeAll();
    EXPECT_EQ(whole.size(), 44100U * 2);
    ASSERT_EQ(Flush(), S_OK);
    std::vector<float> joined;
    for (std::size_t from = 0; from < 48000; from += 480) {
        ASSERT_EQ(Put(sound, from, 480), S_OK);
        const auto more = TakeAll(100);
        joined.insert(joined.end(), more.begin(), more.end());
    }
    ASSERT_EQ(Drain(), S_OK);
    const auto last = TakeAll(1);
    joined.insert(joined.end(), last.begin(), last.end());
    EXPECT_EQ(joined, whole);
}

TEST_F(Resampler, ADrainGivesAllAndWhatFollowsGoesOn) {
    const std::vector<float> sound = Sweep(48000, 48000);
    SetTypes(48000, 44100);
    ASSERT_EQ(Put(sound, 0, 48000), S_OK);
    ASSERT_EQ(Drain(), S_OK);
    const std::vector<float> whole = TakeAll();
    ASSERT_EQ(Flush(), S_OK);
    std::vector<float> joined;
    for (std::size_t from = 0; from < 48000; from += 1000) {
        ASSERT_EQ(Put(sound, from, 1000), S_OK);
        ASSERT_EQ(Drain(), S_OK);
        const auto more = TakeAll();
        joined.insert(joined.end(), more.begin(), more.end());
    }
    ASSERT_EQ(joined.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        ASSERT_NEAR(joined[i], whole[i], 0.05) << i;
    }
}

TEST_F(Resampler, AFlushForgetsWhatWasHeard) {
    const std::vector<float> sound = Sweep(10000, 48000);
    SetTypes(48000, 44100);
    ASSERT_EQ(Put(sound, 0, 5000), S_OK);
    ASSERT_EQ(Drain(), S_OK);
    const std::vector<float> first = TakeAll();
    ASSERT_EQ(Put(sound, 3000, 4000), S_OK);
    ASSERT_EQ(Flush(), S_OK);
    EXPECT_TRUE(TakeAll().empty());
    ASSERT_EQ(Put(sound, 0, 5000), S_OK);
    ASSERT_EQ(Drain(), S_OK);
    EXPECT_EQ(TakeAll(), first);
}

TEST_F(Resampler, ConvertsFormatsAndChannels) {
    ASSERT_EQ(m_resampler->SetInputType(0, SoundType(MFAudioFormat_PCM, 24, 1, 8000).Get(), 0),
              S_OK);
    ASSERT_EQ(m_resampler->SetOutputType(0, SoundType(MFAudioFormat_PCM, 16, 1, 8000).Get(), 0),
              S_OK);
    const std::uint8_t samples[] = {0, 0x34, 0x12, 0, 0x00, 0x80, 0xFF, 0xFF, 0x7F};
    ASSERT_EQ(m_resampler->ProcessInput(0, SampleOf(samples, 6).Get(), 0), S_OK);
    const auto room = Room(100);
    ASSERT_EQ(Take(room), S_OK);
    EXPECT_EQ(BytesOf(*room), (std::vector<std::uint8_t>{0x34, 0x12, 0x00, 0x80}));
}

TEST_F(Resampler, TimesFollowTheFirstInput) {
    SetTypes(48000, 44100);
    const std::vector<float> sound = Sweep(4800, 48000);
    const auto sample = SampleOf(sound.data(), sound.size() * sizeof(float));
    sample->SetSampleTime(5'000'000);
    ASSERT_EQ(m_resampler->ProcessInput(0, sample.Get(), 0), S_OK);
    const auto first = Room(std::size_t{441} * 8);
    ASSERT_EQ(Take(first), S_OK);
    EXPECT_EQ(TimeOf(*first), 5'000'000);
    EXPECT_EQ(DurationOf(*first), 100'000);
    const auto second = Room(std::size_t{882} * 8);
    ASSERT_EQ(Take(second), S_OK);
    EXPECT_EQ(TimeOf(*second), 5'100'000);
    EXPECT_EQ(DurationOf(*second), 200'000);
}

TEST_F(Resampler, NeedsBothTypes) {
    const std::vector<float> sound = Sweep(10, 48000);
    MFT_OUTPUT_STREAM_INFO info{};
    EXPECT_EQ(Put(sound, 0, 10), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(Take(Room(8)), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(m_resampler->GetOutputStreamInfo(0, &info), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(Drain(), S_OK);
    EXPECT_EQ(Flush(), S_OK);
    SetTypes(48000, 44100);
    EXPECT_EQ(m_resampler->GetOutputStreamInfo(0, &info), S_OK);
    EXPECT_EQ(info.cbSize, 8U);
    EXPECT_EQ(m_resampler->GetOutputStreamInfo(1, &info), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(m_resampler->SetInputType(0, nullptr, 0), S_OK);
    EXPECT_EQ(Put(sound, 0, 10), MF_E_TRANSFORM_TYPE_NOT_SET);
}

TEST_F(Resampler, RefusesTypesThatItDoesNotServe) {
    const auto set = [&](const com::ComPtr<IMFMediaType>& type) {
        return m_resampler->SetInputType(0, type.Get(), 0);
    };
    EXPECT_EQ(set(SoundType(MFAudioFormat_AAC, 16, 2, 44100)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_PCM, 16, 2, 0)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_PCM, 16, 0, 44100)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_PCM, 12, 2, 44100)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(VideoType(MFVideoFormat_RGB32)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(m_resampler->SetInputType(1, nullptr, 0), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(m_resampler->SetInputType(0, SoundType(MFAudioFormat_Float, 32, 2, 44100).Get(),
                                        MFT_SET_TYPE_TEST_ONLY),
              S_OK);
    EXPECT_EQ(Put(Sweep(10, 44100), 0, 10), MF_E_TRANSFORM_TYPE_NOT_SET);
}

TEST_F(Resampler, RefusesBuffersThatHoldNoFrame) {
    SetTypes(44100, 44100);
    ASSERT_EQ(Put(Sweep(10, 44100), 0, 10), S_OK);
    EXPECT_EQ(Take(Room(7)), MF_E_BUFFERTOOSMALL);
    EXPECT_EQ(Take({}), E_INVALIDARG);
    com::ComPtr<IMFSample> bare;
    ASSERT_EQ(MFCreateSample(bare.Put()), S_OK);
    EXPECT_EQ(Take(bare), E_INVALIDARG);
    EXPECT_EQ(TakeAll().size(), 20U); // nothing was lost
    EXPECT_EQ(m_resampler->ProcessInput(0, nullptr, 0), E_POINTER);
}

TEST_F(Resampler, TakesNoMoreThanItCanHold) {
    SetTypes(8000, 192000);
    const std::vector<float> sound = Sweep(200'000, 8000);
    HRESULT result = S_OK;
    int accepted = 0;
    while (SUCCEEDED(result = Put(sound, 0, 200'000)) && accepted < 20) {
        ++accepted;
    }
    EXPECT_EQ(result, MF_E_NOTACCEPTING);
    EXPECT_LT(accepted, 4);
}

TEST_F(Resampler, IsSynchronous) {
    com::ComPtr<IMFAttributes> attributes;
    ASSERT_EQ(m_resampler->GetAttributes(attributes.Put()), S_OK);
    UINT32 value = 7;
    EXPECT_EQ(attributes->GetUINT32(MF_TRANSFORM_ASYNC, &value), S_OK);
    EXPECT_EQ(value, 0U);
}

} // namespace
