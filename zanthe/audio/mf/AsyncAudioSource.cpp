#include "zanthe/audio/mf/AsyncAudioSource.h"

#include "platform/mf/Attributes.h"
#include "zanthe/h264/PropVariantHelper.h"

namespace Zanthe {

namespace {

constexpr DWORD FirstAudio = MF_SOURCE_READER_FIRST_AUDIO_STREAM;

} // namespace

HRESULT AsyncAudioSource::MakeAttributes(com::ComPtr<IMFAttributes>& attributes) {
    m_reader.Reset();
    m_callback = com::ComPtr<MediaFoundationSourceReaderCallback>::Attach(
        new MediaFoundationSourceReaderCallback);
    const HRESULT result = MFCreateAttributes(attributes.Put(), 1);
    return FAILED(result)
               ? result
               : attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, m_callback.Get());
}

HRESULT AsyncAudioSource::Open(const std::wstring& path) {
    com::ComPtr<IMFAttributes> attributes;
    const HRESULT result = MakeAttributes(attributes);
    return FAILED(result)
               ? result
               : MFCreateSourceReaderFromURL(path.c_str(), attributes.Get(), m_reader.Put());
}

HRESULT AsyncAudioSource::Open(IMFMediaSource& source) {
    com::ComPtr<IMFAttributes> attributes;
    const HRESULT result = MakeAttributes(attributes);
    return FAILED(result)
               ? result
               : MFCreateSourceReaderFromMediaSource(&source, attributes.Get(), m_reader.Put());
}

HRESULT AsyncAudioSource::SelectAlone() {
    m_reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE);
    return m_reader->SetStreamSelection(FirstAudio, TRUE);
}

HRESULT AsyncAudioSource::GetNativeType(IMFMediaType** type) {
    return m_reader->GetNativeMediaType(FirstAudio, 0, type);
}

HRESULT AsyncAudioSource::GetCurrentType(IMFMediaType** type) {
    return m_reader->GetCurrentMediaType(FirstAudio, type);
}

HRESULT AsyncAudioSource::SetCurrentType(IMFMediaType& type) {
    return m_reader->SetCurrentMediaType(FirstAudio, nullptr, &type);
}

std::optional<std::int64_t> AsyncAudioSource::Duration() {
    const PropVariantHelper value;
    tagPROPVARIANT* variant = value;
    LONGLONG duration = 0;
    if (FAILED(m_reader->GetPresentationAttribute(MF_SOURCE_READER_MEDIASOURCE, MF_PD_DURATION,
                                                  variant)) ||
        FAILED(PropVariantToInt64(*variant, &duration))) {
        return std::nullopt;
    }
    return duration;
}

SourceAnswer AsyncAudioSource::Read() {
    SourceAnswer answer;
    answer.result = E_UNEXPECTED;
    if (m_reader) {
        answer.result = m_reader->ReadSample(FirstAudio, 0, nullptr, nullptr, nullptr, nullptr);
    }
    return SUCCEEDED(answer.result) ? m_callback->WaitForSample() : answer;
}

HRESULT AsyncAudioSource::Seek(std::int64_t time) {
    if (!m_reader) {
        return E_UNEXPECTED;
    }
    if (SUCCEEDED(m_reader->Flush(FirstAudio))) {
        m_callback->WaitForFlush();
    }
    const PropVariantHelper position(time);
    const tagPROPVARIANT* variant = position;
    return m_reader->SetCurrentPosition(GUID_NULL, *variant);
}

} // namespace Zanthe
