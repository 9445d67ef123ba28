// A colour converter that does as the test says, and tells what was asked of it.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/com/ClassRegistry.h"
#include "platform/com/Object.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Transform.h"

enum class TransformCall { InputType, OutputType, StreamInfo, Begin, OtherMessage, Input, Output };

struct TransformScript {
    HRESULT outputTypeResult = S_OK;
    HRESULT streamInfoResult = S_OK;
    HRESULT outputResult = S_OK;
    DWORD outputBytes = 0;
    std::function<void(IMFSample&)> onOutput; // has the sample that is to be filled
    std::function<void()> onEnd;

    // What was asked.
    int made = 0;
    std::vector<TransformCall> calls;
    com::ComPtr<IMFMediaType> inputType;
    com::ComPtr<IMFMediaType> outputType;
    std::vector<IMFSample*> inputs;
};

class ScriptedTransform final : public com::Object<IMFTransform> {
public:
    explicit ScriptedTransform(std::shared_ptr<TransformScript> script)
        : m_script(std::move(script)) {
        ++m_script->made;
    }

    ~ScriptedTransform() override {
        if (m_script->onEnd) {
            m_script->onEnd();
        }
    }

    // IMFTransform
    HRESULT GetOutputStreamInfo(DWORD, MFT_OUTPUT_STREAM_INFO* info) override {
        m_script->calls.push_back(TransformCall::StreamInfo);
        *info = {0, m_script->outputBytes, 0};
        return m_script->streamInfoResult;
    }

    HRESULT GetAttributes(IMFAttributes** attributes) override {
        *attributes = nullptr;
        return E_NOTIMPL;
    }

    HRESULT SetInputType(DWORD, IMFMediaType* type, DWORD) override {
        m_script->calls.push_back(TransformCall::InputType);
        m_script->inputType = com::ComPtr<IMFMediaType>(type);
        return S_OK;
    }

    HRESULT SetOutputType(DWORD, IMFMediaType* type, DWORD) override {
        m_script->calls.push_back(TransformCall::OutputType);
        m_script->outputType = com::ComPtr<IMFMediaType>(type);
        return m_script->outputTypeResult;
    }

    HRESULT ProcessMessage(MFT_MESSAGE_TYPE message, std::uintptr_t) override {
        m_script->calls.push_back(message == MFT_MESSAGE_NOTIFY_BEGIN_STREAMING
                                      ? TransformCall::Begin
                                      : TransformCall::OtherMessage);
        return S_OK;
    }

    HRESULT ProcessInput(DWORD, IMFSample* sample, DWORD) override {
        m_script->calls.push_back(TransformCall::Input);
        m_script->inputs.push_back(sample);
        return S_OK;
    }

    HRESULT ProcessOutput(DWORD, DWORD, MFT_OUTPUT_DATA_BUFFER* buffers, DWORD*) override {
        m_script->calls.push_back(TransformCall::Output);
        if (m_script->onOutput) {
            m_script->onOutput(*buffers[0].pSample);
        }
        return m_script->outputResult;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFTransform, static_cast<IMFTransform*>(this));
    }

    std::shared_ptr<TransformScript> m_script;
};

// As long as it lives, every colour converter is a scripted one.
class ScriptedConverters {
public:
    explicit ScriptedConverters(std::shared_ptr<TransformScript> script)
        : m_before(com::RegisterClass(
              CLSID_CColorConvertDMO, [script = std::move(script)](REFIID iid, void** object) {
                  return com::MakeOwned<ScriptedTransform>(script)->QueryInterface(iid, object);
              })) {}

    ScriptedConverters(const ScriptedConverters&) = delete;
    ScriptedConverters& operator=(const ScriptedConverters&) = delete;

    ~ScriptedConverters() { com::RegisterClass(CLSID_CColorConvertDMO, m_before); }

private:
    com::ClassFactory m_before;
};
