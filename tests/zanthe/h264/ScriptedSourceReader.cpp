#include "tests/zanthe/h264/ScriptedSourceReader.h"

#include <utility>

namespace {

class ScriptedSourceReader final : public com::Object<IMFSourceReader> {
public:
    explicit ScriptedSourceReader(Script script)
        : m_script(std::move(script))
        , m_selected(static_cast<std::size_t>(m_script->streams), true) {}

    ~ScriptedSourceReader() override {
        if (m_script->onReaderEnd) {
            m_script->onReaderEnd();
        }
    }

    // IMFSourceReader
    HRESULT GetStreamSelection(DWORD index, BOOL* selected) override {
        if (index >= m_selected.size()) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        *selected = m_selected[index] ? TRUE : FALSE;
        return S_OK;
    }

    HRESULT SetStreamSelection(DWORD index, BOOL selected) override {
        m_script->selections.emplace_back(index, selected != FALSE);
        if (index == MF_SOURCE_READER_ALL_STREAMS) {
            m_selected.assign(m_selected.size(), selected != FALSE);
            return m_script->deselectResult;
        }
        if (FAILED(m_script->selectResult)) {
            return m_script->selectResult;
        }
        m_selected.at(static_cast<std::size_t>(m_script->videoStream)) =
            selected != FALSE && m_script->videoIsSelected;
        return S_OK;
    }

    HRESULT GetNativeMediaType(DWORD, DWORD, IMFMediaType** type) override {
        if (SUCCEEDED(m_script->nativeTypeResult)) {
            m_script->nativeType.CopyTo(type);
        }
        return m_script->nativeTypeResult;
    }

    HRESULT GetCurrentMediaType(DWORD stream, IMFMediaType** type) override {
        m_script->streamDescribed = stream;
        m_script->currentType.CopyTo(type);
        return m_script->currentType ? S_OK : E_FAIL;
    }

    HRESULT SetCurrentMediaType(DWORD stream, DWORD*, IMFMediaType* type) override {
        m_script->streamTyped = stream;
        m_script->typeSet = com::ComPtr<IMFMediaType>(type);
        type->GetGUID(MF_MT_SUBTYPE, &m_script->subtypeSet);
        return m_script->setTypeResult;
    }

    HRESULT SetCurrentPosition(REFGUID timeFormat, REFPROPVARIANT position) override {
        if (!(timeFormat == GUID_NULL) || position.vt != VT_I8) {
            return MF_E_UNSUPPORTED_TIME_FORMAT;
        }
        m_script->calls.push_back(ReaderCall::Position);
        m_script->positions.push_back(position.hVal.QuadPart);
        if (FAILED(m_script->positionResult)) {
            return m_script->positionResult;
        }
        m_next = m_script->landing ? m_script->landing(position.hVal.QuadPart)
                                   : PictureAt(position.hVal.QuadPart);
        return S_OK;
    }

    HRESULT ReadSample(DWORD stream, DWORD, DWORD* actual, DWORD* flags, LONGLONG* time,
                       IMFSample** sample) override {
        m_script->calls.push_back(ReaderCall::Read);
        m_script->streamsRead.push_back(stream);
        *sample = nullptr;
        *flags = 0;
        if (stream >= m_selected.size() && stream != MF_SOURCE_READER_FIRST_VIDEO_STREAM) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        const int number = m_script->reads++;
        const ReadOutcome outcome =
            m_script->outcome ? m_script->outcome(number) : ReadOutcome::Sample;
        if (outcome == ReadOutcome::Failed) {
            return E_FAIL;
        }
        if (actual != nullptr && m_script->indexIsTold) {
            *actual = static_cast<DWORD>(m_script->videoStream);
        }
        if (outcome == ReadOutcome::Tick) {
            *flags = MF_SOURCE_READERF_STREAMTICK;
            return S_OK;
        }
        if (m_next >= m_script->pictures.size()) {
            *flags = MF_SOURCE_READERF_ENDOFSTREAM;
            return S_OK;
        }
        *flags = outcome == ReadOutcome::EndWithSample ? MF_SOURCE_READERF_ENDOFSTREAM : 0;
        *time = m_script->pictures[m_next].time;
        *sample = MakeSample(m_script->pictures[m_next++]).Detach();
        return S_OK;
    }

    HRESULT Flush(DWORD stream) override {
        m_script->calls.push_back(ReaderCall::Flush);
        m_script->streamsFlushed.push_back(stream);
        return m_script->flushResult;
    }

    HRESULT GetServiceForStream(DWORD, REFGUID, REFIID, void**) override { return E_NOTIMPL; }

    HRESULT GetPresentationAttribute(DWORD, REFGUID attribute, PROPVARIANT* value) override {
        if (!(attribute == MF_PD_DURATION) || m_script->presentationDuration == 0) {
            return MF_E_ATTRIBUTENOTFOUND;
        }
        value->vt = VT_UI8;
        value->uhVal.QuadPart = static_cast<ULONGLONG>(m_script->presentationDuration);
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReader, static_cast<IMFSourceReader*>(this));
    }

    // The last one that starts at or before the position, or the first of all.
    std::size_t PictureAt(std::int64_t position) const {
        std::size_t found = 0;
        for (std::size_t i = 0; i < m_script->pictures.size(); ++i) {
            found = m_script->pictures[i].time <= position ? i : found;
        }
        return found;
    }

    com::ComPtr<ScriptedSample> MakeSample(const Picture& picture) const {
        auto sample =
            com::MakeOwned<ScriptedSample>(picture.time, picture.duration, m_script->living);
        sample->onEnd = m_script->onSampleEnd;
        sample->SetUINT32(MFSampleExtension_CleanPoint, picture.isKey ? 1 : 0);
        sample->AddBuffer(
            com::MakeOwned<ScriptedBuffer>(m_script->bufferBytes, m_script->place).Get());
        return sample;
    }

    Script m_script;
    std::vector<bool> m_selected;
    std::size_t m_next = 0;
};

} // namespace

std::vector<Picture> Pictures(int count, std::int64_t duration, std::int64_t start,
                              int keyInterval) {
    std::vector<Picture> pictures;
    for (int i = 0; i < count; ++i) {
        pictures.push_back({start + i * duration, duration, i % keyInterval == 0});
    }
    return pictures;
}

Script MakeScript(std::vector<Picture> pictures) {
    auto script = std::make_shared<SourceScript>();
    script->pictures = std::move(pictures);
    for (auto* type : {&script->nativeType, &script->currentType}) {
        *type = com::MakeOwned<ScriptedMediaType>();
        (*type)->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
        (*type)->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_H264);
        MFSetAttributeSize(type->Get(), MF_MT_FRAME_SIZE, 64, 48);
        MFSetAttributeRatio(type->Get(), MF_MT_FRAME_RATE, 30, 1);
    }
    return script;
}

com::ComPtr<IMFSourceReader> MakeScriptedReader(const Script& script) {
    com::ComPtr<IMFSourceReader> reader;
    com::Make<ScriptedSourceReader>(reader.Put(), script);
    return reader;
}

IMFSample* ReadFirst(IMFSourceReader* reader) {
    DWORD flags = 0;
    LONGLONG time = 0;
    IMFSample* sample = nullptr;
    reader->ReadSample(MF_SOURCE_READER_FIRST_VIDEO_STREAM, 0, nullptr, &flags, &time, &sample);
    return sample;
}
