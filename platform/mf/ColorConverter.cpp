#include "platform/mf/ColorConverter.h"

#include <mutex>
#include <optional>

#include "platform/av/Nv12.h"
#include "platform/com/Object.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/ColourValues.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/OnlyOutput.h"
#include "platform/mf/PictureBuffer.h"
#include "platform/mf/Transform.h"

namespace mf {

namespace {

// What a media type says that matters here.
struct PixelType {
    PixelSize size;
    av::ColourRules rules;
};

// Empty unless the type is of video with that subtype and a size that NV12 can have: even, as its
// colour differences are of half the size.
std::optional<PixelType> ReadType(IMFMediaType& type, REFGUID wanted) {
    GUID major{};
    GUID subtype{};
    UINT32 width = 0;
    UINT32 height = 0;
    if (FAILED(type.GetMajorType(&major)) || major != MFMediaType_Video ||
        FAILED(type.GetGUID(MF_MT_SUBTYPE, &subtype)) || subtype != wanted ||
        FAILED(MFGetAttributeSize(&type, MF_MT_FRAME_SIZE, &width, &height))) {
        return std::nullopt;
    }
    constexpr UINT32 kMost = 1U << 15;
    if (width > kMost || height > kMost || width % 2 != 0 || height % 2 != 0) {
        return std::nullopt;
    }
    const PixelSize size{static_cast<int>(width), static_cast<int>(height)};
    if (BytesOf(PixelLayout::Bgra, size) == 0) {
        return std::nullopt;
    }
    return PixelType{size, ColourOf(type, size.height)};
}

void CopyTimes(IMFSample& from, IMFSample& to) {
    LONGLONG value = 0;
    if (SUCCEEDED(from.GetSampleTime(&value))) {
        to.SetSampleTime(value);
    }
    if (SUCCEEDED(from.GetSampleDuration(&value))) {
        to.SetSampleDuration(value);
    }
}

HRESULT ConvertBuffer(IMFMediaBuffer& from, const PixelType& type, IMFMediaBuffer& to) {
    const BufferLock in(from);
    if (FAILED(in.Result())) {
        return in.Result();
    }
    const BufferLock out(to);
    if (FAILED(out.Result())) {
        return out.Result();
    }
    const DWORD bytes = BytesOf(PixelLayout::Bgra, type.size);
    if (in.CurrentLength() < BytesOf(PixelLayout::Nv12, type.size) || out.MaxLength() < bytes) {
        return MF_E_BUFFERTOOSMALL;
    }
    const av::Nv12Pixels pixels{in.Bytes(), type.size.width, type.size.height, type.size.width,
                                type.rules};
    if (!av::ConvertNv12ToBgra(pixels, out.Bytes(), std::ptrdiff_t{4} * type.size.width)) {
        return E_OUTOFMEMORY;
    }
    return to.SetCurrentLength(bytes);
}

class ColorConverter final : public com::Object<IMFTransform> {
public:
    HRESULT GetOutputStreamInfo(DWORD streamId, MFT_OUTPUT_STREAM_INFO* info) override {
        if (info == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(m_mutex);
        if (const HRESULT result = Check(streamId); FAILED(result)) {
            return result;
        }
        *info = {MFT_OUTPUT_STREAM_WHOLE_SAMPLES | MFT_OUTPUT_STREAM_SINGLE_SAMPLE_PER_BUFFER |
                     MFT_OUTPUT_STREAM_FIXED_SAMPLE_SIZE,
                 BytesOf(PixelLayout::Bgra, m_output->size), 0};
        return S_OK;
    }

    HRESULT GetAttributes(IMFAttributes** /*attributes*/) override { return E_NOTIMPL; }

    HRESULT SetInputType(DWORD streamId, IMFMediaType* type, DWORD flags) override {
        return SetType(streamId, type, flags, MFVideoFormat_NV12, m_input, m_output);
    }

    HRESULT SetOutputType(DWORD streamId, IMFMediaType* type, DWORD flags) override {
        return SetType(streamId, type, flags, MFVideoFormat_RGB32, m_output, m_input);
    }

    HRESULT ProcessMessage(MFT_MESSAGE_TYPE message, std::uintptr_t /*parameter*/) override {
        com::ComPtr<IMFSample> dropped;
        const std::lock_guard lock(m_mutex);
        if (message == MFT_MESSAGE_COMMAND_FLUSH) {
            dropped = std::move(m_held);
        }
        return S_OK;
    }

    HRESULT ProcessInput(DWORD streamId, IMFSample* sample, DWORD /*flags*/) override {
        if (sample == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(m_mutex);
        if (const HRESULT result = Check(streamId); FAILED(result)) {
            return result;
        }
        if (m_held) {
            return MF_E_NOTACCEPTING;
        }
        m_held = com::ComPtr<IMFSample>(sample);
        return S_OK;
    }

    HRESULT ProcessOutput(DWORD /*flags*/, DWORD bufferCount, MFT_OUTPUT_DATA_BUFFER* buffers,
                          DWORD* status) override {
        if (const HRESULT result = PrepareOnlyOutput(bufferCount, buffers, status);
            FAILED(result)) {
            return result;
        }
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            const HRESULT result = Check(buffers->dwStreamID);
            return FAILED(result) ? result : Convert(*buffers->pSample);
        });
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFTransform, static_cast<IMFTransform*>(this));
    }

    HRESULT Check(DWORD streamId) const {
        if (streamId != 0) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        return m_input && m_output ? S_OK : MF_E_TRANSFORM_TYPE_NOT_SET;
    }

    HRESULT SetType(DWORD streamId, IMFMediaType* type, DWORD flags, REFGUID subtype,
                    std::optional<PixelType>& own, const std::optional<PixelType>& other) {
        if (streamId != 0) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        return com::Wall([&] {
            const auto read = type == nullptr ? std::nullopt : ReadType(*type, subtype);
            const std::lock_guard lock(m_mutex);
            if (type != nullptr && (!read || (other && other->size != read->size))) {
                return MF_E_INVALIDMEDIATYPE;
            }
            if ((flags & MFT_SET_TYPE_TEST_ONLY) == 0) {
                own = read;
            }
            return S_OK;
        });
    }

    HRESULT Convert(IMFSample& output) {
        if (!m_held) {
            return MF_E_TRANSFORM_NEED_MORE_INPUT;
        }
        com::ComPtr<IMFMediaBuffer> to;
        if (FAILED(output.GetBufferByIndex(0, to.Put()))) {
            return E_INVALIDARG;
        }
        const com::ComPtr<IMFSample> input = std::move(m_held);
        com::ComPtr<IMFMediaBuffer> from;
        HRESULT result = input->ConvertToContiguousBuffer(from.Put());
        if (SUCCEEDED(result)) {
            result = ConvertBuffer(*from, *m_input, *to);
        }
        if (SUCCEEDED(result)) {
            CopyTimes(*input, output);
        }
        return result;
    }

    std::mutex m_mutex; // guards all below
    std::optional<PixelType> m_input;
    std::optional<PixelType> m_output;
    com::ComPtr<IMFSample> m_held;
};

} // namespace

HRESULT CreateColorConverter(REFIID iid, void** object) {
    return com::Wall([&] {
        const auto converter = com::MakeOwned<ColorConverter>();
        return converter->QueryInterface(iid, object);
    });
}

} // namespace mf
