#include "tests/zanthe/audio/mf/ScriptedSound.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <thread>

#include "platform/com/Object.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"

namespace {

// Answers one request after the other: at once, or on a thread.
class Answerer {
public:
    explicit Answerer(bool onThread) {
        if (onThread) {
            m_thread = std::jthread([this](const std::stop_token& stop) { Work(stop); });
        }
    }

    void Do(std::function<void()> work) {
        if (!m_thread.joinable()) {
            work();
            return;
        }
        const std::lock_guard lock(m_mutex);
        m_queue.push_back(std::move(work));
        m_changed.notify_one();
    }

private:
    void Work(const std::stop_token& stop) {
        std::unique_lock lock(m_mutex);
        while (m_changed.wait(lock, stop, [this] { return !m_queue.empty(); })) {
            const auto work = std::move(m_queue.front());
            m_queue.pop_front();
            lock.unlock();
            work();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::deque<std::function<void()>> m_queue; // guarded by m_mutex
    std::jthread m_thread;                     // last: it ends before what it uses
};

class ScriptedReader final : public com::Object<IMFSourceReader> {
public:
    ScriptedReader(Script script, com::ComPtr<IMFSourceReaderCallback> callback)
        : m_script(std::move(script))
        , m_callback(std::move(callback))
        , m_answerer(m_script->onThread) {}

    // IMFSourceReader
    HRESULT GetStreamSelection(DWORD, BOOL*) override { return E_NOTIMPL; }

    HRESULT SetStreamSelection(DWORD index, BOOL selected) override {
        m_script->selections.emplace_back(index, selected);
        return index == MF_SOURCE_READER_ALL_STREAMS ? E_FAIL : m_script->selectResult;
    }

    HRESULT GetNativeMediaType(DWORD, DWORD, IMFMediaType** type) override {
        if (SUCCEEDED(m_script->nativeTypeResult)) {
            m_script->nativeType.CopyTo(type);
        }
        return m_script->nativeTypeResult;
    }

    HRESULT GetCurrentMediaType(DWORD, IMFMediaType** type) override {
        m_script->typeSet.CopyTo(type);
        return m_script->typeSet ? S_OK : E_FAIL;
    }

    HRESULT SetCurrentMediaType(DWORD, DWORD*, IMFMediaType* type) override {
        m_script->typeSet = com::ComPtr<IMFMediaType>(type);
        return m_script->setTypeResult;
    }

    HRESULT SetCurrentPosition(REFGUID timeFormat, REFPROPVARIANT position) override {
        if (timeFormat != GUID_NULL || position.vt != VT_I8) {
            return E_INVALIDARG;
        }
        const std::int64_t time = position.hVal.QuadPart;
        m_script->positions.push_back(time);
        if (m_flushes > 0) {
            return MF_E_INVALIDREQUEST;
        }
        if (FAILED(m_script->positionResult)) {
            return m_script->positionResult;
        }
        m_next = m_script->landing ? m_script->landing(time) : SampleAt(time);
        return S_OK;
    }

    HRESULT ReadSample(DWORD stream, DWORD, DWORD* actual, DWORD* flags, LONGLONG* time,
                       IMFSample** sample) override {
        if (stream != MF_SOURCE_READER_FIRST_AUDIO_STREAM || actual != nullptr ||
            flags != nullptr || time != nullptr || sample != nullptr) {
            return E_INVALIDARG;
        }
        const int number = m_script->reads++;
        const auto outcome = m_script->outcome ? m_script->outcome(number) : SoundOutcome::Sample;
        if (outcome == SoundOutcome::Refused) {
            return MF_E_NOTACCEPTING;
        }
        m_answerer.Do([this, outcome] { Answer(outcome); });
        return S_OK;
    }

    HRESULT Flush(DWORD stream) override {
        ++m_script->flushes;
        if (FAILED(m_script->flushResult)) {
            return m_script->flushResult;
        }
        ++m_flushes;
        m_answerer.Do([this, stream] {
            std::this_thread::yield();
            --m_flushes;
            m_callback->OnFlush(stream);
        });
        return S_OK;
    }

    HRESULT GetServiceForStream(DWORD, REFGUID, REFIID, void**) override { return E_NOTIMPL; }

    HRESULT GetPresentationAttribute(DWORD stream, REFGUID attribute, PROPVARIANT* value) override {
        if (stream != MF_SOURCE_READER_MEDIASOURCE || attribute != MF_PD_DURATION ||
            m_script->duration == 0) {
            return MF_E_ATTRIBUTENOTFOUND;
        }
        value->vt = VT_UI8;
        value->uhVal.QuadPart = static_cast<ULONGLONG>(m_script->duration);
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReader, static_cast<IMFSourceReader*>(this));
    }

    // The last one that starts at or before the position, or the first of all.
    std::size_t SampleAt(std::int64_t position) const {
        const auto& samples = m_script->samples;
        const auto behind = std::upper_bound(
            samples.begin(), samples.end(), position,
            [](std::int64_t time, const SoundSample& sample) { return time < sample.time; });
        return behind == samples.begin() ? 0
                                         : static_cast<std::size_t>(behind - samples.begin()) - 1;
    }

    void Answer(SoundOutcome outcome) {
        const DWORD stream = m_script->streamIndex;
        switch (outcome) {
        case SoundOutcome::Tick:
            m_callback->OnReadSample(S_OK, stream, MF_SOURCE_READERF_STREAMTICK, 0, nullptr);
            return;
        case SoundOutcome::Nothing:
            m_callback->OnReadSample(S_OK, stream, 0, 0, nullptr);
            return;
        case SoundOutcome::Failed:
            m_callback->OnReadSample(E_FAIL, stream, MF_SOURCE_READERF_ERROR, 0, nullptr);
            return;
        default:
            break;
        }
        if (outcome == SoundOutcome::End || m_next >= m_script->samples.size()) {
            m_callback->OnReadSample(S_OK, stream, MF_SOURCE_READERF_ENDOFSTREAM, 0, nullptr);
            return;
        }
        const SoundSample& sample = m_script->samples[m_next++];
        const DWORD flags = outcome == SoundOutcome::EndWithSample ? MF_SOURCE_READERF_ENDOFSTREAM
                            : outcome == SoundOutcome::TickWithSample ? MF_SOURCE_READERF_STREAMTICK
                                                                      : 0;
        m_callback->OnReadSample(S_OK, stream, flags, sample.time, MakeSample(sample).Get());
    }

    com::ComPtr<IMFSample> MakeSample(const SoundSample& sample) const {
        const std::size_t valueBytes = m_script->sampleBytes;
        const std::size_t byteCount = static_cast<std::size_t>(sample.frames) * 2 * valueBytes;
        com::ComPtr<IMFMediaBuffer> buffer;
        MFCreateMemoryBuffer(static_cast<DWORD>(byteCount), buffer.Put());
        BYTE* bytes = nullptr;
        buffer->Lock(&bytes, nullptr, nullptr);
        for (std::int64_t i = 0; i < 2 * sample.frames && valueBytes == 4; ++i) {
            const std::int64_t number = sample.firstFrame + i / 2;
            const auto frame = static_cast<float>(number);
            const float value = i % 2 == 0 ? frame : -frame;
            std::memcpy(bytes + i * 4, &value, 4);
        }
        buffer->Unlock();
        buffer->SetCurrentLength(static_cast<DWORD>(byteCount));
        com::ComPtr<IMFSample> made;
        MFCreateSample(made.Put());
        made->AddBuffer(buffer.Get());
        made->SetSampleTime(sample.time);
        if (sample.duration >= 0) {
            made->SetSampleDuration(sample.duration);
        }
        return made;
    }

    Script m_script;
    com::ComPtr<IMFSourceReaderCallback> m_callback;
    std::size_t m_next = 0;
    std::atomic<int> m_flushes = 0; // asked for and not yet answered
    Answerer m_answerer;            // last: its thread uses the others
};

// As a reader is made: asynchronous, or not at all.
HRESULT MakeReader(const Script& script, IMFAttributes* attributes, IMFSourceReader** reader) {
    com::ComPtr<IMFSourceReaderCallback> callback;
    if (attributes == nullptr ||
        FAILED(attributes->GetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, IID_IMFSourceReaderCallback,
                                      callback.PutVoid()))) {
        return E_INVALIDARG;
    }
    return FAILED(script->openResult)
               ? script->openResult
               : com::Make<ScriptedReader>(reader, script, std::move(callback));
}

class ScriptedSource final : public com::Object<IMFMediaSource> {
public:
    // IMFMediaSource
    HRESULT Shutdown() override { return S_OK; }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFMediaSource, static_cast<IMFMediaSource*>(this));
    }
};

} // namespace

std::vector<SoundSample> SoundSamples(int count, std::int64_t frames, int rate,
                                      std::int64_t start) {
    std::vector<SoundSample> samples;
    for (std::int64_t i = 0; i < count; ++i) {
        const double seconds = static_cast<double>(i * frames) / rate;
        samples.push_back({start + std::llround(seconds * 1e7), i * frames, frames, -1});
    }
    return samples;
}

Script MakeSoundScript(std::vector<SoundSample> samples) {
    auto script = std::make_shared<SoundScript>();
    script->samples = std::move(samples);
    MFCreateMediaType(script->nativeType.Put());
    script->nativeType->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio);
    script->nativeType->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_PCM);
    script->nativeType->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 2);
    script->nativeType->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, 44100);
    script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 16);
    return script;
}

StereoSound Ramp(std::int64_t first, std::size_t count) {
    StereoSound sound;
    for (std::size_t i = 0; i < count; ++i) {
        const auto frame = static_cast<float>(first + static_cast<std::int64_t>(i));
        sound.left.push_back(frame);
        sound.right.push_back(-frame);
    }
    return sound;
}

com::ComPtr<IMFMediaSource> MakeScriptedSource() {
    com::ComPtr<IMFMediaSource> source;
    com::Make<ScriptedSource>(source.Put());
    return source;
}

ScriptedSoundOpening::ScriptedSoundOpening(const Script& script)
    : m_fromUrl(mf::SetSourceReaderFactory(
          [script](LPCWSTR url, IMFAttributes* attributes, IMFSourceReader** reader) {
              script->url = url;
              return MakeReader(script, attributes, reader);
          }))
    , m_fromSource(mf::SetMediaSourceReaderFactory(
          [script](IMFMediaSource*, IMFAttributes* attributes, IMFSourceReader** reader) {
              return MakeReader(script, attributes, reader);
          })) {}

ScriptedSoundOpening::~ScriptedSoundOpening() {
    mf::SetSourceReaderFactory(std::move(m_fromUrl));
    mf::SetMediaSourceReaderFactory(std::move(m_fromSource));
}
