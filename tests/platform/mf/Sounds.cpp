#include "tests/platform/mf/Sounds.h"

#include <gtest/gtest.h>

#include "platform/mf/BufferLock.h"
#include "platform/mf/MediaFormats.h"
#include "tests/platform/mf/Readers.h"
#include "tests/support/TestMedia.h"

com::ComPtr<IMFMediaType> SoundType(REFGUID subtype, UINT32 bits, UINT32 channels, UINT32 rate) {
    com::ComPtr<IMFMediaType> type;
    EXPECT_EQ(MFCreateMediaType(type.Put()), S_OK);
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio);
    type->SetGUID(MF_MT_SUBTYPE, subtype);
    const auto set = [&](REFGUID key, UINT32 value) {
        if (value != 0) {
            type->SetUINT32(key, value);
        }
    };
    set(MF_MT_AUDIO_BITS_PER_SAMPLE, bits);
    set(MF_MT_AUDIO_NUM_CHANNELS, channels);
    set(MF_MT_AUDIO_SAMPLES_PER_SECOND, rate);
    return type;
}

com::ComPtr<IMFSourceReader> OpenSound(const std::string& name,
                                       const com::ComPtr<IMFMediaType>& type) {
    auto reader = OpenReader(MadeMedia("sound-exact/" + name), {});
    EXPECT_EQ(reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE), S_OK);
    EXPECT_EQ(reader->SetStreamSelection(kSound, TRUE), S_OK);
    EXPECT_EQ(reader->SetCurrentMediaType(kSound, nullptr, type.Get()), S_OK) << name;
    return reader;
}

std::vector<std::uint8_t> BytesOf(IMFSample& sample) {
    com::ComPtr<IMFMediaBuffer> buffer;
    EXPECT_EQ(sample.ConvertToContiguousBuffer(buffer.Put()), S_OK);
    const mf::BufferLock lock(*buffer);
    EXPECT_EQ(lock.Result(), S_OK);
    return {lock.Bytes(), lock.Bytes() + lock.CurrentLength()};
}

SoundRun ReadSound(IMFSourceReader& reader, std::size_t most) {
    SoundRun run;
    while (run.samples < most) {
        const ReadResult read = ReadNext(reader, kSound);
        EXPECT_EQ(read.result, S_OK);
        if (!read.sample) {
            EXPECT_EQ(read.flags, MF_SOURCE_READERF_ENDOFSTREAM);
            run.ended = true;
            break;
        }
        EXPECT_EQ(read.flags, 0U);
        EXPECT_EQ(TimeOf(*read.sample), read.time);
        if (run.samples == 0) {
            run.start = read.time;
        } else {
            EXPECT_EQ(read.time, run.end);
        }
        run.end = read.time + DurationOf(*read.sample);
        const auto bytes = BytesOf(*read.sample);
        EXPECT_FALSE(bytes.empty());
        run.bytes.insert(run.bytes.end(), bytes.begin(), bytes.end());
        ++run.samples;
    }
    return run;
}
