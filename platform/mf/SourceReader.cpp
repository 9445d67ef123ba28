#include "platform/mf/SourceReader.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <filesystem>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/av/DeferredVideoStream.h"
#include "platform/av/FileFacts.h"
#include "platform/com/Object.h"
#include "platform/mf/AsyncReader.h"
#include "platform/mf/CompressedSamples.h"
#include "platform/mf/DXGIDeviceManager.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/NativeType.h"
#include "platform/mf/SoundSamples.h"
#include "platform/mf/SoundSubtypes.h"
#include "platform/mf/SourceFile.h"
#include "platform/mf/SourceReaderFactory.h"
#include "platform/mf/SourceSeekInfo.h"
#include "platform/mf/VideoSamples.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"

namespace mf {

namespace {

// What a reader is told when it is made.
struct Settings {
    bool processesVideo = false;
    com::ComPtr<IMFSourceReaderCallback> callback; // empty: it is synchronous
    com::ComPtr<IHardwareDevice> device;           // may be empty
};

// The device behind a manager; empty where it has none that decodes.
com::ComPtr<IHardwareDevice> DeviceOf(IMFDXGIDeviceManager& manager) {
    com::ComPtr<IHardwareDevice> device;
    HANDLE handle = nullptr;
    if (SUCCEEDED(manager.OpenDeviceHandle(&handle))) {
        if (FAILED(manager.GetVideoService(handle, IID_IHardwareDevice, device.PutVoid()))) {
            device = {};
        }
        manager.CloseDeviceHandle(handle);
    }
    return device;
}

Settings ReadSettings(IMFAttributes* attributes) {
    Settings settings;
    if (attributes == nullptr) {
        return settings;
    }
    settings.processesVideo =
        MFGetAttributeUINT32(attributes, MF_SOURCE_READER_ENABLE_ADVANCED_VIDEO_PROCESSING, 0) != 0;
    if (FAILED(attributes->GetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, IID_IMFSourceReaderCallback,
                                      settings.callback.PutVoid()))) {
        settings.callback = {};
    }
    com::ComPtr<IMFDXGIDeviceManager> manager;
    if (SUCCEEDED(attributes->GetUnknown(MF_SOURCE_READER_D3D_MANAGER, IID_IMFDXGIDeviceManager,
                                         manager.PutVoid()))) {
        settings.device = DeviceOf(*manager);
    }
    return settings;
}

av::VideoOptions OptionsFor(int ordinal, const Settings& settings) {
    av::VideoOptions options;
    options.ordinal = ordinal;
    if (settings.device) {
        options.device = static_cast<AVBufferRef*>(settings.device->DecodingDevice());
    }
    return options;
}

// One stream of the file. What gives its samples is made when it is first needed.
struct Stream {
    // Never changed once the reader is made.
    DWORD number = 0;
    av::FileStream facts;
    com::ComPtr<IMFMediaType> native;

    std::atomic<bool> selected = true;

    // Guarded by the reader's lock:
    com::ComPtr<IMFMediaType> current;
    std::unique_ptr<av::VideoStream> pictures; // null until needed, as is the next
    std::unique_ptr<av::SoundStream> sound;
    std::unique_ptr<ISampleSource> samples; // null until needed; may use one of them
    std::optional<LONGLONG> position;       // where what is made next is to go on
};

// The size that `type` asks for where it is another than the stream's own.
std::optional<PixelSize> AskedSize(IMFMediaType& type, const av::VideoFacts& facts) {
    UINT32 width = 0;
    UINT32 height = 0;
    if (FAILED(MFGetAttributeSize(&type, MF_MT_FRAME_SIZE, &width, &height))) {
        return std::nullopt;
    }
    const PixelSize size{static_cast<int>(std::min(width, 1U << 30)),
                         static_cast<int>(std::min(height, 1U << 30))};
    return size == PixelSize{facts.width, facts.height} ? std::nullopt : std::optional(size);
}

// The layout of a subtype; empty for one that is no picture in memory that can be had.
std::optional<PixelLayout> LayoutOf(REFGUID subtype, const Settings& settings) {
    if (subtype == MFVideoFormat_NV12) {
        return PixelLayout::Nv12;
    }
    const bool rgb = subtype == MFVideoFormat_ARGB32 || subtype == MFVideoFormat_RGB32;
    return rgb && settings.processesVideo ? std::optional(PixelLayout::Bgra) : std::nullopt;
}

class SourceReader final : public com::Object<IMFSourceReader> {
public:
    // `first`: the pictures of the file's first video stream, null where nothing decodes them or
    // they are not needed yet. `source` is shut down with this; may be null.
    SourceReader(std::string path, Settings settings, const av::FileFacts& facts,
                 std::unique_ptr<av::VideoStream> first, IMFMediaSource* source);
    ~SourceReader() override;
    SourceReader(const SourceReader&) = delete;
    SourceReader& operator=(const SourceReader&) = delete;

    HRESULT GetStreamSelection(DWORD streamIndex, BOOL* selected) override;
    HRESULT SetStreamSelection(DWORD streamIndex, BOOL selected) override;
    HRESULT GetNativeMediaType(DWORD streamIndex, DWORD typeIndex, IMFMediaType** type) override;
    HRESULT GetCurrentMediaType(DWORD streamIndex, IMFMediaType** type) override;
    HRESULT SetCurrentMediaType(DWORD streamIndex, DWORD* reserved, IMFMediaType* type) override;
    HRESULT SetCurrentPosition(REFGUID timeFormat, REFPROPVARIANT position) override;
    HRESULT ReadSample(DWORD streamIndex, DWORD controlFlags, DWORD* actualIndex, DWORD* flags,
                       LONGLONG* time, IMFSample** sample) override;
    HRESULT Flush(DWORD streamIndex) override;
    HRESULT GetServiceForStream(DWORD streamIndex, REFGUID service, REFIID iid,
                                void** object) override;
    HRESULT GetPresentationAttribute(DWORD streamIndex, REFGUID attribute,
                                     PROPVARIANT* value) override;

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReader, static_cast<IMFSourceReader*>(this));
    }

    Stream* StreamAt(DWORD streamIndex);
    HRESULT GiveCopy(IMFMediaType& type, IMFMediaType** copy) const;
    HRESULT UsePixels(Stream& stream, PixelLayout layout, IMFMediaType& type);
    HRESULT UseCompressed(Stream& stream);
    HRESULT UseSound(Stream& stream, IMFMediaType& type);
    HRESULT UseNative(Stream& stream);
    HRESULT Begin(Stream& stream, std::unique_ptr<ISampleSource> samples, IMFMediaType& type);
    SampleRead ReadFrom(Stream& stream);

    const std::string m_path;
    const Settings m_settings;
    const com::ComPtr<IMFMediaSource> m_source; // may be empty
    const LONGLONG m_duration;
    std::deque<Stream> m_streams; // which ones there are never changes
    std::mutex m_mutex;           // held while samples are made, which takes its time
};

SourceReader::SourceReader(std::string path, Settings settings, const av::FileFacts& facts,
                           std::unique_ptr<av::VideoStream> first, IMFMediaSource* source)
    : m_path(std::move(path))
    , m_settings(std::move(settings))
    , m_source(source)
    , m_duration(facts.duration) {
    for (const av::FileStream& described : facts.streams) {
        Stream& stream = m_streams.emplace_back();
        stream.number = static_cast<DWORD>(m_streams.size() - 1);
        stream.facts = described;
        stream.native = NativeTypeOf(described, facts.container);
        stream.current = CopyOf(*stream.native);
        if (described.kind == av::TrackKind::Video && described.ordinal == 0) {
            stream.pictures.swap(first); // there is one such stream
        }
    }
}

SourceReader::~SourceReader() {
    if (m_source) {
        m_source->Shutdown();
    }
}

// Null where the file has no such stream.
Stream* SourceReader::StreamAt(DWORD streamIndex) {
    if (streamIndex < m_streams.size()) {
        return &m_streams[streamIndex];
    }
    const bool video = streamIndex == MF_SOURCE_READER_FIRST_VIDEO_STREAM;
    if (!video && streamIndex != MF_SOURCE_READER_FIRST_AUDIO_STREAM) {
        return nullptr;
    }
    const av::TrackKind wanted = video ? av::TrackKind::Video : av::TrackKind::Audio;
    const auto found = std::find_if(m_streams.begin(), m_streams.end(), [&](const Stream& stream) {
        return stream.facts.kind == wanted;
    });
    return found == m_streams.end() ? nullptr : &*found;
}

HRESULT SourceReader::GetStreamSelection(DWORD streamIndex, BOOL* selected) {
    if (selected == nullptr) {
        return E_POINTER;
    }
    const Stream* stream = StreamAt(streamIndex);
    if (stream == nullptr) {
        return MF_E_INVALIDSTREAMNUMBER;
    }
    *selected = stream->selected ? TRUE : FALSE;
    return S_OK;
}

HRESULT SourceReader::SetStreamSelection(DWORD streamIndex, BOOL selected) {
    if (streamIndex == MF_SOURCE_READER_ALL_STREAMS) {
        for (Stream& stream : m_streams) {
            stream.selected = selected != FALSE;
        }
        return S_OK;
    }
    Stream* stream = StreamAt(streamIndex);
    if (stream == nullptr) {
        return MF_E_INVALIDSTREAMNUMBER;
    }
    stream->selected = selected != FALSE;
    return S_OK;
}

HRESULT SourceReader::GiveCopy(IMFMediaType& type, IMFMediaType** copy) const {
    *copy = CopyOf(type).Detach();
    return S_OK;
}

HRESULT SourceReader::GetNativeMediaType(DWORD streamIndex, DWORD typeIndex, IMFMediaType** type) {
    if (type == nullptr) {
        return E_POINTER;
    }
    *type = nullptr;
    return com::Wall([&] {
        const Stream* stream = StreamAt(streamIndex);
        if (stream == nullptr) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        return typeIndex > 0 ? MF_E_NO_MORE_TYPES : GiveCopy(*stream->native, type);
    });
}

HRESULT SourceReader::GetCurrentMediaType(DWORD streamIndex, IMFMediaType** type) {
    if (type == nullptr) {
        return E_POINTER;
    }
    *type = nullptr;
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        const Stream* stream = StreamAt(streamIndex);
        return stream == nullptr ? MF_E_INVALIDSTREAMNUMBER : GiveCopy(*stream->current, type);
    });
}

HRESULT SourceReader::SetCurrentMediaType(DWORD streamIndex, DWORD* /*reserved*/,
                                          IMFMediaType* type) {
    if (type == nullptr) {
        return E_POINTER;
    }
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        Stream* stream = StreamAt(streamIndex);
        if (stream == nullptr) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        if (stream->facts.kind == av::TrackKind::Audio) {
            return UseSound(*stream, *type);
        }
        GUID subtype{};
        GUID native{};
        GUID major{};
        if (FAILED(type->GetMajorType(&major)) || major != MFMediaType_Video ||
            FAILED(type->GetGUID(MF_MT_SUBTYPE, &subtype))) {
            return MF_E_INVALIDMEDIATYPE;
        }
        if (SUCCEEDED(stream->native->GetGUID(MF_MT_SUBTYPE, &native)) && native == subtype) {
            return UseCompressed(*stream);
        }
        const auto layout = LayoutOf(subtype, m_settings);
        return layout ? UsePixels(*stream, *layout, *type) : MF_E_INVALIDMEDIATYPE;
    });
}

HRESULT SourceReader::UsePixels(Stream& stream, PixelLayout layout, IMFMediaType& type) {
    VideoFormat format{layout, AskedSize(type, stream.facts.video), m_settings.device};
    if (format.size && BytesOf(layout, SizeIn(layout, *format.size)) == 0) {
        return MF_E_INVALIDMEDIATYPE;
    }
    if (stream.pictures == nullptr) {
        stream.pictures =
            av::DeferredVideoStream::Open(m_path, OptionsFor(stream.facts.ordinal, m_settings));
    }
    if (stream.pictures == nullptr) {
        return MF_E_TOPO_CODEC_NOT_FOUND;
    }
    return Begin(stream, std::make_unique<VideoSamples>(*stream.pictures, std::move(format)), type);
}

HRESULT SourceReader::UseCompressed(Stream& stream) {
    auto samples = CompressedSamples::Open(m_path, stream.facts.ordinal);
    return samples == nullptr ? E_FAIL : Begin(stream, std::move(samples), *stream.native);
}

HRESULT SourceReader::UseSound(Stream& stream, IMFMediaType& type) {
    // What no conversion serves is refused before the file is opened for its sound.
    if (!ReadSoundType(type, {AV_SAMPLE_FMT_NONE, stream.facts.sampleRate, stream.facts.channels,
                              stream.facts.layout})) {
        return MF_E_INVALIDMEDIATYPE;
    }
    if (stream.sound == nullptr) {
        stream.sound = av::SoundStream::Open(m_path, stream.facts.ordinal);
    }
    if (stream.sound == nullptr) {
        return MF_E_TOPO_CODEC_NOT_FOUND;
    }
    const auto wanted = ReadSoundType(type, stream.sound->Facts().format);
    auto samples = wanted ? SoundSamples::Create(*stream.sound, *wanted) : nullptr;
    return samples == nullptr ? MF_E_INVALIDMEDIATYPE
                              : Begin(stream, std::move(samples), *CompleteType(type, *wanted));
}

// Samples as the file holds them; compressed sound is not among what is served.
HRESULT SourceReader::UseNative(Stream& stream) {
    if (stream.facts.kind == av::TrackKind::Video) {
        return UseCompressed(stream);
    }
    return IsSoundInMemory(stream.facts) ? UseSound(stream, *stream.native)
                                         : MF_E_TOPO_CODEC_NOT_FOUND;
}

// Has the stream go on with `samples`, which are of `type`, where it is now.
HRESULT SourceReader::Begin(Stream& stream, std::unique_ptr<ISampleSource> samples,
                            IMFMediaType& type) {
    com::ComPtr<IMFMediaType> current = CopyOf(type);
    // Pictures of a stream that was read from before are not at their start any more.
    if (stream.position || stream.samples != nullptr) {
        constexpr LONGLONG kStart = std::numeric_limits<LONGLONG>::min();
        if (const HRESULT result = samples->SetPosition(stream.position.value_or(kStart));
            FAILED(result)) {
            return result;
        }
    }
    stream.samples = std::move(samples);
    stream.current = std::move(current);
    return S_OK;
}

HRESULT SourceReader::SetCurrentPosition(REFGUID timeFormat, REFPROPVARIANT position) {
    if (timeFormat != GUID_NULL) {
        return MF_E_UNSUPPORTED_TIME_FORMAT;
    }
    if (position.vt != VT_I8) {
        return E_INVALIDARG;
    }
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        for (Stream& stream : m_streams) {
            stream.position = position.hVal.QuadPart;
            if (stream.samples == nullptr) {
                continue;
            }
            if (const HRESULT result = stream.samples->SetPosition(*stream.position);
                FAILED(result)) {
                return result;
            }
        }
        return S_OK;
    });
}

SampleRead SourceReader::ReadFrom(Stream& stream) {
    SampleRead read;
    if (stream.samples == nullptr) {
        read.result = UseNative(stream);
    }
    if (SUCCEEDED(read.result)) {
        read = stream.samples->Read();
    }
    if (FAILED(read.result)) {
        read.flags |= MF_SOURCE_READERF_ERROR;
    }
    if (read.sample) {
        LONGLONG duration = 0;
        read.sample->GetSampleDuration(&duration);
        stream.position = read.time + duration;
        stream.samples->Describe(*stream.current);
    }
    return read;
}

HRESULT SourceReader::ReadSample(DWORD streamIndex, DWORD /*controlFlags*/, DWORD* actualIndex,
                                 DWORD* flags, LONGLONG* time, IMFSample** sample) {
    if (flags == nullptr || sample == nullptr) {
        return E_POINTER;
    }
    *sample = nullptr;
    *flags = MF_SOURCE_READERF_ERROR;
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        Stream* stream = StreamAt(streamIndex);
        if (stream == nullptr) {
            return MF_E_INVALIDSTREAMNUMBER;
        }
        if (!stream->selected) {
            return MF_E_INVALIDREQUEST;
        }
        SampleRead read = ReadFrom(*stream);
        *flags = read.flags;
        if (actualIndex != nullptr) {
            *actualIndex = stream->number;
        }
        if (time != nullptr) {
            *time = read.time;
        }
        *sample = read.sample.Detach();
        return read.result;
    });
}

HRESULT SourceReader::Flush(DWORD streamIndex) {
    // Nothing is read ahead of the one who asks, so there is nothing to drop.
    const bool known =
        streamIndex == MF_SOURCE_READER_ALL_STREAMS || StreamAt(streamIndex) != nullptr;
    return known ? S_OK : MF_E_INVALIDSTREAMNUMBER;
}

HRESULT SourceReader::GetServiceForStream(DWORD streamIndex, REFGUID service, REFIID iid,
                                          void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (streamIndex != MF_SOURCE_READER_MEDIASOURCE) {
        return MF_E_UNSUPPORTED_SERVICE;
    }
    return com::Wall([&] {
        const Stream* video = StreamAt(MF_SOURCE_READER_FIRST_VIDEO_STREAM);
        if (service != MF_SCRUBBING_SERVICE || video == nullptr) {
            return MF_E_UNSUPPORTED_SERVICE;
        }
        return CreateSeekInfo(m_path, video->facts.ordinal, iid, object);
    });
}

HRESULT SourceReader::GetPresentationAttribute(DWORD streamIndex, REFGUID attribute,
                                               PROPVARIANT* value) {
    if (value == nullptr) {
        return E_POINTER;
    }
    PropVariantInit(value);
    if (streamIndex != MF_SOURCE_READER_MEDIASOURCE) {
        return StreamAt(streamIndex) == nullptr ? MF_E_INVALIDSTREAMNUMBER : MF_E_ATTRIBUTENOTFOUND;
    }
    if (attribute != MF_PD_DURATION || m_duration <= 0) {
        return MF_E_ATTRIBUTENOTFOUND;
    }
    value->vt = VT_UI8;
    value->uhVal.QuadPart = static_cast<ULONGLONG>(m_duration);
    return S_OK;
}

// `source`: what the file was given as; may be null.
HRESULT Open(const std::string& path, IMFMediaSource* source, IMFAttributes* attributes,
             IMFSourceReader** reader) {
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown)) {
        return kFileNotFound;
    }
    Settings settings = ReadSettings(attributes);
    const auto callback = settings.callback;
    // Nearly every file is opened for its first video stream, so that is opened at once, and tells
    // what else is there; who wants to be called back is after sound.
    auto pictures =
        callback ? nullptr : av::DeferredVideoStream::Open(path, OptionsFor(0, settings));
    const auto facts = pictures != nullptr ? pictures->File() : av::ReadFileFacts(path);
    if (!facts || facts->streams.empty()) {
        return MF_E_UNSUPPORTED_BYTESTREAM_TYPE;
    }
    const auto made = com::MakeOwned<SourceReader>(path, std::move(settings), *facts,
                                                   std::move(pictures), source);
    return callback ? CreateAsyncReader(made.Get(), callback.Get(), reader)
                    : made->QueryInterface(IID_IMFSourceReader, reinterpret_cast<void**>(reader));
}

} // namespace

} // namespace mf

HRESULT MFCreateSourceReaderFromURL(LPCWSTR url, IMFAttributes* attributes,
                                    IMFSourceReader** reader) {
    if (url == nullptr || reader == nullptr) {
        return E_POINTER;
    }
    *reader = nullptr;
    return com::Wall([&] {
        const mf::SourceReaderFactory factory = mf::CurrentSourceReaderFactory();
        return factory ? factory(url, attributes, reader)
                       : mf::Open(win32::ExistingPath(win32::WideToUtf8(url)), nullptr, attributes,
                                  reader);
    });
}

HRESULT MFCreateSourceReaderFromMediaSource(IMFMediaSource* source, IMFAttributes* attributes,
                                            IMFSourceReader** reader) {
    if (source == nullptr || reader == nullptr) {
        return E_POINTER;
    }
    *reader = nullptr;
    return com::Wall([&] {
        if (const auto factory = mf::CurrentMediaSourceReaderFactory()) {
            return factory(source, attributes, reader);
        }
        com::ComPtr<mf::ISourceFile> file;
        if (FAILED(source->QueryInterface(mf::IID_ISourceFile, file.PutVoid()))) {
            return E_NOINTERFACE;
        }
        return file->IsShutDown() ? MF_E_SHUTDOWN
                                  : mf::Open(file->Path(), source, attributes, reader);
    });
}
