#include "platform/mf/CompressedSamples.h"

#include "platform/mf/MediaFormats.h"
#include "platform/mf/SampleMaking.h"
#include "platform/mf/SourceReader.h"

namespace mf {

namespace {

HRESULT MakeSample(const av::CompressedPicture& picture, com::ComPtr<IMFSample>& sample) {
    const HRESULT result = MakeFilledSample(picture.bytes, picture.start, picture.duration, sample);
    if (SUCCEEDED(result) && picture.isKey) {
        sample->SetUINT32(MFSampleExtension_CleanPoint, 1);
    }
    return result;
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
