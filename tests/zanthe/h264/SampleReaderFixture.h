// The reader over scripted source readers.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/Version.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/h264/ScriptedOpening.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {

inline constexpr auto Device = DecoderOutputFormat::DeviceArgb32;
inline constexpr auto Memory = DecoderOutputFormat::MemoryArgb32;
inline constexpr auto Nv12 = DecoderOutputFormat::MemoryNv12;
inline constexpr auto NoFlags = VideoSampleReaderFlags::None;

class SampleReader : public testing::Test {
protected:
    SampleReader() { m_script->presentationDuration = 1000; }

    void TearDown() override { win32::SetSystemVersion({}); }

    // Any path but an MP4 file's: it has no geometry and no table.
    std::unique_ptr<WinH264SampleReader> Open(DecoderOutputFormat format = Memory,
                                              const std::string& path = "any.avi") {
        return std::unique_ptr<WinH264SampleReader>(
            WinH264SampleReader::create(path, 0, format, m_device.Get()));
    }

    std::unique_ptr<WinH264SampleReader> OpenWithHeaders(const std::string& headers,
                                                         DecoderOutputFormat format = Memory) {
        return Open(format, m_folder.Write(std::to_string(m_files++) + ".mp4", headers));
    }

    void ExpectStatus(ReaderStatus status) {
        const auto reader = Open();
        EXPECT_EQ(reader->readerStatus(), status);
        EXPECT_EQ(reader->readSample(MediaTime(0), NoFlags), nullptr);
        EXPECT_EQ(reader->readVideoSample(MediaTime(0), {}, NoFlags), nullptr);
        EXPECT_EQ(reader->StreamDuration(), -1);
        EXPECT_THAT(reader->readSampleOps(), testing::IsEmpty());
        EXPECT_THAT(reader->readSampleFailures(), testing::IsEmpty());
        EXPECT_THAT(reader->attempts(), testing::IsEmpty());
        try {
            reader->NeedToSeekBetweenTimes(0, 1);
            ADD_FAILURE();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "WinH264SampleReader: No sample finder!");
        }
    }

    TemporaryFolder m_folder;
    int m_files = 0;
    com::ComPtr<ScriptedDeviceManager> m_device;
    Script m_script = MakeScript(Pictures(10, 100));
    ScriptedOpening m_opening{m_script};
};

} // namespace Zanthe
