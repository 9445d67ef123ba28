// Codecs that are there and start as the test says.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/com/TaskMemory.h"
#include "platform/mf/CodecEnumerator.h"
#include "tests/zanthe/h264/ScriptedAttributes.h"
#include "tests/zanthe/h264/ScriptedTransform.h"

class ScriptedActivate final : public ScriptedAttributes<IMFActivate> {
public:
    explicit ScriptedActivate(HRESULT startResult)
        : m_startResult(startResult) {}

    int started = 0; // or tried

    // IMFActivate
    HRESULT ActivateObject(REFIID iid, void** object) override {
        ++started;
        *object = nullptr;
        return FAILED(m_startResult) ? m_startResult : m_codec->QueryInterface(iid, object);
    }

    HRESULT ShutdownObject() override { return S_OK; }

    HRESULT DetachObject() override { return S_OK; }

    IMFTransform* Codec() const { return m_codec.Get(); }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFActivate, static_cast<IMFActivate*>(this));
    }

    HRESULT m_startResult;
    com::ComPtr<ScriptedTransform> m_codec =
        com::MakeOwned<ScriptedTransform>(std::make_shared<TransformScript>());
};

// As long as it lives, these are all the codecs of the system.
class ScriptedCodecs {
public:
    // What was asked for; GUID_NULL where no type was told.
    struct Request {
        GUID category;
        UINT32 flags;
        GUID inputMajor;
        GUID input;
        GUID outputMajor;
        GUID output;

        bool operator==(const Request&) const = default;
    };

    ScriptedCodecs()
        : m_before(mf::SetCodecEnumerator([this](REFGUID category, UINT32 flags,
                                                 const MFT_REGISTER_TYPE_INFO* input,
                                                 const MFT_REGISTER_TYPE_INFO* output,
                                                 IMFActivate*** activates, UINT32* count) {
            const MFT_REGISTER_TYPE_INFO none{GUID_NULL, GUID_NULL};
            const auto& in = input == nullptr ? none : *input;
            const auto& out = output == nullptr ? none : *output;
            requests.push_back({category, flags, in.guidMajorType, in.guidSubtype,
                                out.guidMajorType, out.guidSubtype});
            return Give(input == nullptr ? out.guidSubtype : in.guidSubtype, activates, count);
        })) {}

    ScriptedCodecs(const ScriptedCodecs&) = delete;
    ScriptedCodecs& operator=(const ScriptedCodecs&) = delete;

    ~ScriptedCodecs() { mf::SetCodecEnumerator(std::move(m_before)); }

    com::ComPtr<ScriptedActivate> Add(REFGUID subtype, HRESULT startResult) {
        auto activate = com::MakeOwned<ScriptedActivate>(startResult);
        m_codecs.emplace_back(subtype, activate);
        return activate;
    }

    HRESULT result = S_OK;
    std::vector<Request> requests;

private:
    HRESULT Give(REFGUID subtype, IMFActivate*** activates, UINT32* count) {
        if (FAILED(result) || m_codecs.empty()) {
            return result;
        }
        *activates =
            static_cast<IMFActivate**>(CoTaskMemAlloc(m_codecs.size() * sizeof(IMFActivate*)));
        for (const auto& [coded, activate] : m_codecs) {
            if (coded == subtype) {
                activate.CopyTo(&(*activates)[(*count)++]);
            }
        }
        return result;
    }

    std::vector<std::pair<GUID, com::ComPtr<ScriptedActivate>>> m_codecs;
    mf::CodecEnumerator m_before;
};
