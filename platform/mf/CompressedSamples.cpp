#include "platform/mf/CompressedSamples.h"

#include <algorithm>

#include "platform/mf/BufferLock.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"

namespace mf {

namespace {

HRESULT Fill(IMFMediaBuffer& buffer, const std::vector<std::uint8_t>& bytes) {
    const BufferLock lock(buffer);
    if (FAILED(lock.Result())) {
        return lock.Result();
    }
    std::copy(bytes.begin(), bytes.end(), lock.Bytes());
    return buffer.SetCurrentLength(static_cast<DWORD>(bytes.size()));
}

HRESULT MakeSample(const av::CompressedPicture& picture, com::ComPtr<IMFSample>& sample) {
    com::ComPtr<IMFMediaBuffer> buffer;
    HRESULT result = MFCreateMemoryBuffer(static_cast<DWORD>(picture.bytes.size()), buffer.Put());
    if (SUCCEEDED(result)) {
        result = Fill(*buffer, picture.bytes);
    }
    if (SUCCEEDED(result)) {
        result = MFCreateSample(sample.Put());
    }
    if (FAILED(result)) {
        return result;
    }
    sample->SetSampleTime(picture.start);
    sample->SetSampleDuration(picture.duration);
    if (picture.isKey) {
        sample->SetUINT32(MFSampleExtension_CleanPoint, 1);
    }
    return sample->AddBuffer(buffer.Get());
}

} // namespace

std::unique_ptr<CompressedSamples> CompressedSamples::Open(const std::string& path, int ordinal) {
    auto stream = av::CompressedStream::Open(path, ordinal);
    return stream == nullptr
               ? nullptr
               : std::unique_ptr<CompressedSamples>(new CompressedSamples(std::move(stream)));
}

HRESULT CompressedSamples::SetPosition(LONGLONG position) {
    return m_stream->Seek(position) ? S_OK : E_FAIL;
}

SampleRead CompressedSamples::Read() {
    SampleRead read;
    const auto picture = m_stream->Read();
    if (!picture) {
        read.flags = MF_SOURCE_READERF_ENDOFSTREAM;
        return read;
    }
    read.time = picture->start;
    read.result = MakeSample(*picture, read.sample);
    return read;
}

} // namespace mf
