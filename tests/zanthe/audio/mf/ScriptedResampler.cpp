#include "tests/zanthe/audio/mf/ScriptedResampler.h"

#include <algorithm>
#include <cstring>

#include "platform/com/Object.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/Errors.h"

namespace {

constexpr std::size_t kFrameBytes = 8;

class ScriptedResampler final : public com::Object<IMFTransform> {
public:
    explicit ScriptedResampler(std::shared_ptr<ResamplerScript> script)
        : m_script(std::move(script)) {}

    // IMFTransform
    HRESULT GetOutputStreamInfo(DWORD, MFT_OUTPUT_STREAM_INFO* info) override {
        ++m_script->infos;
        *info = {};
        return S_OK;
    }

    HRESULT GetAttributes(IMFAttributes**) override { return E_NOTIMPL; }

    HRESULT SetInputType(DWORD, IMFMediaType* type, DWORD) override {
        m_script->inputType = com::ComPtr<IMFMediaType>(type);
        return m_script->inputTypeResult;
    }

    HRESULT SetOutputType(DWORD, IMFMediaType* type, DWORD) override {
        m_script->outputType = com::ComPtr<IMFMediaType>(type);
        return m_script->outputTypeResult;
    }

    HRESULT ProcessMessage(MFT_MESSAGE_TYPE message, std::uintptr_t) override {
        m_script->messages.push_back(NameOf(message));
        m_script->isDraining = message == MFT_MESSAGE_COMMAND_DRAIN;
        if (message == MFT_MESSAGE_COMMAND_FLUSH) {
            m_script->held.clear();
        }
        return S_OK;
    }

    HRESULT ProcessInput(DWORD, IMFSample* sample, DWORD) override {
        m_script->messages.emplace_back("input");
        if (FAILED(m_script->inputResult)) {
            return m_script->inputResult;
        }
        m_script->isDraining = false;
        com::ComPtr<IMFMediaBuffer> buffer;
        sample->ConvertToContiguousBuffer(buffer.Put());
        const mf::BufferLock lock(*buffer);
        m_script->inputBytes.push_back(lock.CurrentLength());
        for (std::size_t at = 0; at + kFrameBytes <= lock.CurrentLength(); at += kFrameBytes) {
            float frame[2];
            std::memcpy(frame, lock.Bytes() + at, kFrameBytes);
            m_script->held.emplace_back(frame[0], frame[1]);
        }
        return S_OK;
    }

    HRESULT ProcessOutput(DWORD, DWORD, MFT_OUTPUT_DATA_BUFFER* buffers, DWORD*) override {
        ++m_script->outputs;
        if (FAILED(m_script->outputResult)) {
            return m_script->outputResult;
        }
        const std::size_t kept = m_script->isDraining ? 0 : m_script->delay;
        if (m_script->held.size() <= kept) {
            return MF_E_TRANSFORM_NEED_MORE_INPUT;
        }
        com::ComPtr<IMFMediaBuffer> buffer;
        buffers[0].pSample->GetBufferByIndex(0, buffer.Put());
        const mf::BufferLock lock(*buffer);
        const std::size_t count = std::min(
            {m_script->held.size() - kept, lock.MaxLength() / kFrameBytes, m_script->mostAtOnce});
        for (std::size_t i = 0; i < count; ++i) {
            const float frame[2] = {m_script->held.front().first, m_script->held.front().second};
            std::memcpy(lock.Bytes() + i * kFrameBytes, frame, kFrameBytes);
            m_script->held.pop_front();
        }
        return buffer->SetCurrentLength(static_cast<DWORD>(count * kFrameBytes));
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFTransform, static_cast<IMFTransform*>(this));
    }

    static const char* NameOf(MFT_MESSAGE_TYPE message) {
        switch (message) {
        case MFT_MESSAGE_COMMAND_FLUSH:
            return "flush";
        case MFT_MESSAGE_COMMAND_DRAIN:
            return "drain";
        case MFT_MESSAGE_NOTIFY_BEGIN_STREAMING:
            return "begin";
        default:
            return "end";
        }
    }

    std::shared_ptr<ResamplerScript> m_script;
};

} // namespace

ScriptedResampling::ScriptedResampling(const std::shared_ptr<ResamplerScript>& script)
    : m_before(com::RegisterClass(CLSID_CResamplerMediaObject, [script](REFIID iid, void** object) {
        if (FAILED(script->createResult)) {
            return script->createResult;
        }
        return com::MakeOwned<ScriptedResampler>(script)->QueryInterface(iid, object);
    })) {}

ScriptedResampling::~ScriptedResampling() {
    com::RegisterClass(CLSID_CResamplerMediaObject, std::move(m_before));
}
