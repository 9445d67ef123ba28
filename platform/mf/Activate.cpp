#include "platform/mf/Activate.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/av/CodecList.h"
#include "platform/com/TaskMemory.h"
#include "platform/mf/AttributeStore.h"
#include "platform/mf/CodecEnumerator.h"
#include "platform/mf/CodecSubtypes.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Transform.h"

namespace mf {

namespace {

// A codec that runs. What is asked here is whether it does; samples are decoded by the source
// reader, so it takes no types and no samples.
class CodecTransform final : public com::Object<IMFTransform> {
public:
    explicit CodecTransform(av::CodecContextPtr context)
        : m_context(std::move(context)) {}

    HRESULT GetOutputStreamInfo(DWORD /*streamId*/, MFT_OUTPUT_STREAM_INFO* /*info*/) override {
        return MF_E_TRANSFORM_TYPE_NOT_SET;
    }

    HRESULT GetAttributes(IMFAttributes** /*attributes*/) override { return E_NOTIMPL; }

    HRESULT SetInputType(DWORD /*streamId*/, IMFMediaType* /*type*/, DWORD /*flags*/) override {
        return E_NOTIMPL;
    }

    HRESULT SetOutputType(DWORD /*streamId*/, IMFMediaType* /*type*/, DWORD /*flags*/) override {
        return E_NOTIMPL;
    }

    HRESULT ProcessMessage(MFT_MESSAGE_TYPE /*message*/, std::uintptr_t /*parameter*/) override {
        return S_OK;
    }

    HRESULT ProcessInput(DWORD /*streamId*/, IMFSample* /*sample*/, DWORD /*flags*/) override {
        return MF_E_TRANSFORM_TYPE_NOT_SET;
    }

    HRESULT ProcessOutput(DWORD /*flags*/, DWORD /*bufferCount*/,
                          MFT_OUTPUT_DATA_BUFFER* /*buffers*/, DWORD* /*status*/) override {
        return MF_E_TRANSFORM_TYPE_NOT_SET;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFTransform, static_cast<IMFTransform*>(this));
    }

    const av::CodecContextPtr m_context;
};

class CodecActivate final : public WithAttributes<IMFActivate> {
public:
    CodecActivate(av::VideoCodec codec, av::CodecUse use)
        : WithAttributes(IID_IMFActivate)
        , m_codec(std::move(codec))
        , m_use(use) {
        SetBlob(MFT_FRIENDLY_NAME_Attribute, reinterpret_cast<const UINT8*>(m_codec.name.data()),
                static_cast<UINT32>(m_codec.name.size()));
    }

    HRESULT ActivateObject(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            if (!m_transform && !Start()) {
                return E_FAIL;
            }
            return m_transform->QueryInterface(iid, object);
        });
    }

    // A codec ends with its last reference; this is the one that is held here.
    HRESULT ShutdownObject() override { return DetachObject(); }

    HRESULT DetachObject() override {
        com::ComPtr<CodecTransform> dropped;
        const std::lock_guard lock(m_mutex);
        std::swap(dropped, m_transform);
        return S_OK;
    }

private:
    bool Start() {
        av::CodecContextPtr context = av::StartCodec(m_codec.name, m_use);
        if (context == nullptr) {
            return false;
        }
        m_transform = com::MakeOwned<CodecTransform>(std::move(context));
        return true;
    }

    const av::VideoCodec m_codec;
    const av::CodecUse m_use;
    std::mutex m_mutex;
    com::ComPtr<CodecTransform> m_transform; // guarded by m_mutex; empty until activated
};

std::optional<av::CodecUse> UseOf(REFGUID category) {
    if (category == MFT_CATEGORY_VIDEO_DECODER) {
        return av::CodecUse::Decode;
    }
    return category == MFT_CATEGORY_VIDEO_ENCODER ? std::optional(av::CodecUse::Encode)
                                                  : std::nullopt;
}

// The codecs of the compressed side's type; the side in memory is not looked at.
std::vector<av::VideoCodec> CodecsFor(av::CodecUse use, const MFT_REGISTER_TYPE_INFO* type) {
    if (type == nullptr) {
        return av::ListVideoCodecs(use, AV_CODEC_ID_NONE);
    }
    const AVCodecID id = CodecOf(type->guidSubtype);
    if (type->guidMajorType != MFMediaType_Video || id == AV_CODEC_ID_NONE) {
        return {};
    }
    return av::ListVideoCodecs(use, id);
}

bool IsWanted(const av::VideoCodec& codec, UINT32 flags) {
    return (flags & (codec.onDevice ? MFT_ENUM_FLAG_HARDWARE : MFT_ENUM_FLAG_SYNCMFT)) != 0;
}

HRESULT GiveArray(std::vector<com::ComPtr<IMFActivate>> found, IMFActivate*** activates,
                  UINT32* count) {
    if (found.empty()) {
        return S_OK;
    }
    constexpr std::size_t kPointer = sizeof(void*);
    auto* array = static_cast<IMFActivate**>(CoTaskMemAlloc(found.size() * kPointer));
    if (array == nullptr) {
        return E_OUTOFMEMORY;
    }
    std::transform(found.begin(), found.end(), array,
                   [](com::ComPtr<IMFActivate>& activate) { return activate.Detach(); });
    *activates = array;
    *count = static_cast<UINT32>(found.size());
    return S_OK;
}

HRESULT Enumerate(av::CodecUse use, UINT32 flags, const MFT_REGISTER_TYPE_INFO* type,
                  IMFActivate*** activates, UINT32* count) {
    std::vector<com::ComPtr<IMFActivate>> found;
    for (const av::VideoCodec& codec : CodecsFor(use, type)) {
        if (IsWanted(codec, flags)) {
            found.push_back(com::ComPtr<IMFActivate>::Attach(new CodecActivate(codec, use)));
        }
    }
    return GiveArray(std::move(found), activates, count);
}

} // namespace

} // namespace mf

HRESULT MFTEnumEx(GUID category, UINT32 flags, const MFT_REGISTER_TYPE_INFO* input,
                  const MFT_REGISTER_TYPE_INFO* output, IMFActivate*** activates, UINT32* count) {
    if (activates == nullptr || count == nullptr) {
        return E_POINTER;
    }
    *activates = nullptr;
    *count = 0;
    if (const mf::CodecEnumerator enumerator = mf::CurrentCodecEnumerator()) {
        return com::Wall(
            [&] { return enumerator(category, flags, input, output, activates, count); });
    }
    const auto use = mf::UseOf(category);
    if (!use) {
        return E_INVALIDARG;
    }
    const MFT_REGISTER_TYPE_INFO* type = *use == av::CodecUse::Decode ? input : output;
    return com::Wall([&] { return mf::Enumerate(*use, flags, type, activates, count); });
}
