#include "platform/mf/Resampler.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/av/SoundFlow.h"
#include "platform/av/SoundTime.h"
#include "platform/com/Object.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/Errors.h"
#include "platform/mf/OnlyOutput.h"
#include "platform/mf/SoundType.h"
#include "platform/mf/Transform.h"

namespace mf {

namespace {

// More than anybody leaves untaken on the way from sample to sample.
constexpr std::int64_t kMostWaitingBytes = std::int64_t{64} << 20;

class Resampler final : public com::Object<IMFTransform> {
public:
    HRESULT GetOutputStreamInfo(DWORD streamId, MFT_OUTPUT_STREAM_INFO* info) override {
        if (info == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(m_mutex);
        if (const HRESULT result = Check(streamId); FAILED(result)) {
            return result;
        }
        *info = {0, static_cast<DWORD>(m_output->FrameBytes()), 0};
        return S_OK;
    }

    HRESULT GetAttributes(IMFAttributes** attributes) override;

    HRESULT SetInputType(DWORD streamId, IMFMediaType* type, DWORD flags) override {
        return SetType(streamId, type, flags, m_input, m_output, true);
    }

    HRESULT SetOutputType(DWORD streamId, IMFMediaType* type, DWORD flags) override {
        return SetType(streamId, type, flags, m_output, m_input, false);
    }

    HRESULT ProcessMessage(MFT_MESSAGE_TYPE message, std::uintptr_t /*parameter*/) override {
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            if (m_flow == nullptr) {
                return S_OK;
            }
            if (message == MFT_MESSAGE_COMMAND_FLUSH) {
                m_start.reset();
                return m_flow->Restart() ? S_OK : E_OUTOFMEMORY;
            }
            return message != MFT_MESSAGE_COMMAND_DRAIN || m_flow->End() ? S_OK : E_FAIL;
        });
    }

    HRESULT ProcessInput(DWORD streamId, IMFSample* sample, DWORD flags) override;
    HRESULT ProcessOutput(DWORD flags, DWORD bufferCount, MFT_OUTPUT_DATA_BUFFER* buffers,
                          DWORD* status) override;

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFTransform, static_cast<IMFTransform*>(this));
    }

    HRESULT Check(DWORD streamId) const {
        if (streamId != 0) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        return m_flow != nullptr ? S_OK : MF_E_TRANSFORM_TYPE_NOT_SET;
    }

    HRESULT SetType(DWORD streamId, IMFMediaType* type, DWORD flags, std::optional<SoundType>& own,
                    const std::optional<SoundType>& other, bool isInput);
    HRESULT Put(IMFMediaBuffer& buffer);
    HRESULT Give(IMFSample& sample);

    std::mutex m_mutex; // guards all below
    std::optional<SoundType> m_input;
    std::optional<SoundType> m_output;
    std::unique_ptr<av::SoundFlow> m_flow; // null until both types are set
    std::optional<LONGLONG> m_start;       // the time of its frame 0, where samples have times
};

HRESULT Resampler::GetAttributes(IMFAttributes** attributes) {
    if (attributes == nullptr) {
        return E_POINTER;
    }
    const HRESULT result = MFCreateAttributes(attributes, 1);
    return SUCCEEDED(result) ? (*attributes)->SetUINT32(MF_TRANSFORM_ASYNC, 0) : result;
}

HRESULT Resampler::SetType(DWORD streamId, IMFMediaType* type, DWORD flags,
                           std::optional<SoundType>& own, const std::optional<SoundType>& other,
                           bool isInput) {
    if (streamId != 0) {
        return MF_E_INVALIDSTREAMNUMBER;
    }
    return com::Wall([&] {
        const auto read = type == nullptr ? std::nullopt : ReadSoundType(*type, {});
        if (type != nullptr && !read) {
            return MF_E_INVALIDMEDIATYPE;
        }
        const std::lock_guard lock(m_mutex);
        std::unique_ptr<av::SoundFlow> flow;
        if (read && other) {
            flow = isInput ? av::SoundFlow::Create(read->format, other->format)
                           : av::SoundFlow::Create(other->format, read->format);
            if (flow == nullptr) {
                return MF_E_INVALIDMEDIATYPE;
            }
        }
        if ((flags & MFT_SET_TYPE_TEST_ONLY) == 0) {
            own = read;
            m_flow = std::move(flow);
            m_start.reset();
        }
        return S_OK;
    });
}

HRESULT Resampler::ProcessInput(DWORD streamId, IMFSample* sample, DWORD /*flags*/) {
    if (sample == nullptr) {
        return E_POINTER;
    }
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        if (const HRESULT result = Check(streamId); FAILED(result)) {
            return result;
        }
        if (m_flow->Frames() * m_flow->OutputFrameBytes() > kMostWaitingBytes) {
            return MF_E_NOTACCEPTING;
        }
        com::ComPtr<IMFMediaBuffer> buffer;
        if (const HRESULT result = sample->ConvertToContiguousBuffer(buffer.Put());
            FAILED(result)) {
            return result;
        }
        LONGLONG time = 0;
        if (!m_start && SUCCEEDED(sample->GetSampleTime(&time))) {
            m_start = time - av::TimeOfFrames(m_flow->InputFrames(), m_input->format.rate);
        }
        return Put(*buffer);
    });
}

HRESULT Resampler::Put(IMFMediaBuffer& buffer) {
    const BufferLock in(buffer);
    if (FAILED(in.Result())) {
        return in.Result();
    }
    const auto frames = static_cast<int>(
        std::min<DWORD>(in.CurrentLength() / static_cast<DWORD>(m_input->FrameBytes()),
                        std::numeric_limits<int>::max()));
    const auto size = static_cast<std::size_t>(frames) * m_input->FrameBytes();
    const std::vector<std::uint8_t> bytes = Unpack(*m_input, in.Bytes(), size);
    return m_flow->Put(bytes.data(), frames) ? S_OK : E_FAIL;
}

HRESULT Resampler::ProcessOutput(DWORD /*flags*/, DWORD bufferCount,
                                 MFT_OUTPUT_DATA_BUFFER* buffers, DWORD* status) {
    if (const HRESULT result = PrepareOnlyOutput(bufferCount, buffers, status); FAILED(result)) {
        return result;
    }
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        const HRESULT result = Check(buffers->dwStreamID);
        return FAILED(result) ? result : Give(*buffers->pSample);
    });
}

HRESULT Resampler::Give(IMFSample& sample) {
    if (m_flow->Frames() == 0) {
        return MF_E_TRANSFORM_NEED_MORE_INPUT;
    }
    com::ComPtr<IMFMediaBuffer> buffer;
    if (FAILED(sample.GetBufferByIndex(0, buffer.Put()))) {
        return E_INVALIDARG;
    }
    const BufferLock out(*buffer);
    if (FAILED(out.Result())) {
        return out.Result();
    }
    const std::int64_t room = out.MaxLength() / static_cast<DWORD>(m_output->FrameBytes());
    if (room == 0) {
        return MF_E_BUFFERTOOSMALL;
    }
    const std::int64_t first = m_flow->Position();
    std::vector<std::uint8_t> bytes(
        static_cast<std::size_t>(std::min(room, m_flow->Frames()) * m_flow->OutputFrameBytes()));
    const std::int64_t frames = m_flow->Take(bytes.data(), room);
    Pack(*m_output, bytes);
    std::copy(bytes.begin(), bytes.end(), out.Bytes());
    const auto timeOf = [&](std::int64_t frame) {
        return av::TimeOfFrames(frame, m_output->format.rate);
    };
    if (m_start) {
        sample.SetSampleTime(*m_start + timeOf(first));
    }
    sample.SetSampleDuration(timeOf(first + frames) - timeOf(first));
    return buffer->SetCurrentLength(static_cast<DWORD>(bytes.size()));
}

} // namespace

HRESULT CreateResampler(REFIID iid, void** object) {
    return com::Wall([&] {
        const auto resampler = com::MakeOwned<Resampler>();
        return resampler->QueryInterface(iid, object);
    });
}

} // namespace mf
