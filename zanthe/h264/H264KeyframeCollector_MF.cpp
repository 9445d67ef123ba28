#include "zanthe/h264/H264KeyframeCollector_MF.h"

#include "platform/com/ComPtr.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"
#include "platform/win32/Text.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

namespace {

// The reader gives the samples as they are in the file; empty where it cannot.
com::ComPtr<IMFSourceReader> OpenCompressed(const std::string& path) {
    constexpr DWORD video = MF_SOURCE_READER_FIRST_VIDEO_STREAM;
    com::ComPtr<IMFSourceReader> reader;
    com::ComPtr<IMFMediaType> native;
    if (FAILED(MFCreateSourceReaderFromURL(win32::Utf8ToWide(path).c_str(), nullptr,
                                           reader.Put())) ||
        FAILED(reader->GetNativeMediaType(video, 0, native.Put())) ||
        FAILED(reader->SetCurrentMediaType(video, nullptr, native.Get()))) {
        return {};
    }
    static_cast<void>(reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE));
    return SUCCEEDED(reader->SetStreamSelection(video, TRUE)) ? reader
                                                              : com::ComPtr<IMFSourceReader>();
}

enum class Step { Sample, Nothing, End, Failed };

// One pass over the samples.
class Scan {
public:
    Scan(IMFSourceReader* reader, std::int64_t firstSampleTime,
         std::vector<std::int64_t>& keyFrameTimes)
        : m_reader(reader)
        , m_firstSampleTime(firstSampleTime)
        , m_keyFrameTimes(keyFrameTimes) {}

    // Of the last sample seen.
    std::int64_t End() const { return m_end; }

    Step Next() {
        DWORD stream = MF_SOURCE_READER_INVALID_STREAM_INDEX;
        DWORD flags = 0;
        LONGLONG time = 0;
        com::ComPtr<IMFSample> sample;
        if (FAILED(m_reader->ReadSample(m_stream, 0, &stream, &flags, &time, sample.Put()))) {
            return Step::Failed;
        }
        if (sample) {
            Take(sample.Get());
        }
        if ((flags & MF_SOURCE_READERF_ENDOFSTREAM) != 0) {
            return Step::End;
        }
        m_stream = stream == MF_SOURCE_READER_INVALID_STREAM_INDEX
                       ? MF_SOURCE_READER_FIRST_VIDEO_STREAM
                       : stream;
        return sample ? Step::Sample : Step::Nothing;
    }

private:
    void Take(IMFSample* sample) {
        LONGLONG time = 0;
        LONGLONG length = 0;
        static_cast<void>(sample->GetSampleTime(&time));
        static_cast<void>(sample->GetSampleDuration(&length));
        const std::int64_t start = SaturatingDifference(time, m_firstSampleTime);
        m_end = SaturatingSum(start, length);
        if (MFGetAttributeUINT32(sample, MFSampleExtension_CleanPoint, 0) != 0) {
            m_keyFrameTimes.push_back(start);
        }
    }

    IMFSourceReader* m_reader;
    std::int64_t m_firstSampleTime;
    std::vector<std::int64_t>& m_keyFrameTimes;
    DWORD m_stream = MF_SOURCE_READER_FIRST_VIDEO_STREAM;
    std::int64_t m_end = 0;
};

} // namespace

H264KeyframeCollector_MF::~H264KeyframeCollector_MF() = default;

bool H264KeyframeCollector_MF::CollectKeyframeTimesAndDuration(
    const std::string& path, std::int64_t firstSampleTime,
    std::vector<std::int64_t>& keyFrameTimes, std::int64_t& duration) {
    constexpr int mostReadsInVain = 500; // no gap in a stream is that long
    keyFrameTimes.clear();
    duration = 0;
    const com::ComPtr<IMFSourceReader> reader = OpenCompressed(path);
    if (!reader) {
        return false;
    }
    Scan scan(reader.Get(), firstSampleTime, keyFrameTimes);
    int inVain = 0;
    while (inVain < mostReadsInVain) {
        const Step step = scan.Next();
        if (step == Step::End) {
            duration = scan.End();
            return true;
        }
        if (step == Step::Failed) {
            return false;
        }
        inVain = step == Step::Sample ? 0 : inVain + 1;
    }
    return false;
}

} // namespace Zanthe
