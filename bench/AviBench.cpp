// Opening a recording of a million frames and reading frames of it at random: the AVI reader
// against FFmpeg's own demuxer, over the same OpenDML file.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Comparison.h"
#include "platform/av/Handles.h"
#include "platform/com/ComPtr.h"
#include "platform/com/FileStream.h"
#include "platform/win32/Text.h"
#include "tests/support/RiffFile.h"
#include "zanthe/containers/avi20/Reader.h"
#include "zanthe/containers/avi20/WindowsStream.h"

namespace {

using namespace Riff;
using AVI20::Read::FourCc;

constexpr std::uint32_t Frames = 1'000'000;
constexpr std::uint32_t FramesOfAnIndex = 10'000;
constexpr std::uint32_t KeyDistance = 300;
constexpr std::size_t FrameBytes = 64;

// What a frame holds: its number, over and over.
std::string Payload(std::uint32_t frame) {
    std::string bytes;
    while (bytes.size() < FrameBytes) {
        bytes += Number32(frame);
    }
    return bytes;
}

std::string Headers(const std::string& super) {
    AVI20::Read::MainAVIHeader main{};
    main.dwMicroSecPerFrame = 33'333;
    main.dwTotalFrames = Frames;
    main.dwStreams = 1;
    AVI20::Read::AVIStreamHeader stream{};
    stream.fccType = FourCc("vids");
    stream.fccHandler = FourCc("cvid");
    stream.dwScale = 1;
    stream.dwRate = 30;
    stream.dwLength = Frames;
    BITMAPINFOHEADER format{};
    format.biSize = sizeof format;
    format.biWidth = 64;
    format.biHeight = 48;
    format.biPlanes = 1;
    format.biBitCount = 24;
    format.biCompression = FourCc("cvid");
    const auto bytes = [](const auto& value) {
        return std::string(reinterpret_cast<const char*>(&value), sizeof value);
    };
    return List("hdrl",
                Chunk("avih", bytes(main)) +
                    List("strl", Chunk("strh", bytes(stream)) + Chunk("strf", bytes(format)) +
                                     Chunk("indx", Number16(4) + std::string(2, '\0') +
                                                       Number32(super.size() / 16) + "00dc" +
                                                       std::string(12, '\0') + super)));
}

// Groups of frames, each with its standard index behind it.
std::string Media(std::uint64_t base, std::string& super) {
    std::string media;
    for (std::uint32_t first = 0; first < Frames; first += FramesOfAnIndex) {
        const std::uint64_t group = media.size();
        std::string entries;
        for (std::uint32_t i = first; i < first + FramesOfAnIndex; ++i) {
            entries += Number32(media.size() + 8 - group) +
                       Number32(FrameBytes | (i % KeyDistance == 0 ? 0 : 0x80000000U));
            media += Chunk("00dc", Payload(i));
        }
        super += Number64(base + media.size()) + Number32(entries.size() + 32) +
                 Number32(FramesOfAnIndex);
        media += Chunk("ix00", Number16(2) + std::string("\0\1", 2) + Number32(FramesOfAnIndex) +
                                   "00dc" + Number64(base + group) + Number32(0) + entries);
    }
    return media;
}

std::string MediaPath() {
    std::string path = ZANTHE_BENCH_MEDIA_FOLDER "/million-frames.avi";
    if (!std::filesystem::exists(path)) {
        std::filesystem::create_directories(ZANTHE_BENCH_MEDIA_FOLDER);
        std::string super(std::size_t{Frames} / FramesOfAnIndex * 16, '\0');
        const std::uint64_t base = 12 + Headers(super).size() + 12;
        super.clear();
        const std::string media = Media(base, super);
        std::ofstream(path + ".part", std::ios::binary)
            << List("RIFF", "AVI ", Headers(super) + List("movi", media));
        std::filesystem::rename(path + ".part", path);
    }
    return path;
}

// A contender: an open file.
class File {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    virtual ~File() = default;

    virtual std::uint32_t Count() = 0;
    virtual std::string ReadAt(std::uint32_t frame) = 0;
};

class ZantheFile final : public File {
public:
    ZantheFile()
        : m_file(Open())
        , m_stream(m_file.Get())
        , m_reader(&m_stream)
        , m_frames(m_reader.GetMediaStreamReader(0)) {}

    std::uint32_t Count() override { return m_frames.GetFrameCount(); }

    std::string ReadAt(std::uint32_t frame) override {
        std::string bytes(m_frames.GetFrameSize(frame), '\0');
        return m_frames.ReadFrame(frame, bytes.data()) ? bytes : "";
    }

private:
    static com::ComPtr<::IStream> Open() {
        com::ComPtr<::IStream> file;
        if (FAILED(SHCreateStreamOnFileW(win32::Utf8ToWide(MediaPath()).c_str(), STGM_READ,
                                         file.Put()))) {
            throw std::runtime_error("cannot open " + MediaPath());
        }
        return file;
    }

    com::ComPtr<::IStream> m_file;
    AVI20::Read::WindowsStream m_stream;
    AVI20::Read::Reader m_reader;
    AVI20::Read::MediaStreamReader m_frames;
};

class FfmpegFile final : public File {
public:
    FfmpegFile()
        : m_packet(av_packet_alloc()) {
        AVFormatContext* context = nullptr;
        if (avformat_open_input(&context, MediaPath().c_str(), nullptr, nullptr) < 0) {
            throw std::runtime_error("cannot open " + MediaPath());
        }
        m_context.reset(context);
    }

    std::uint32_t Count() override {
        return static_cast<std::uint32_t>(avformat_index_get_entries_count(m_context->streams[0]));
    }

    // Without AVSEEK_FLAG_ANY it would stop at key frames.
    std::string ReadAt(std::uint32_t frame) override {
        av_packet_unref(m_packet.get());
        if (av_seek_frame(m_context.get(), 0, frame, AVSEEK_FLAG_ANY) < 0 ||
            av_read_frame(m_context.get(), m_packet.get()) < 0) {
            return "";
        }
        return std::string(reinterpret_cast<const char*>(m_packet->data),
                           static_cast<std::size_t>(m_packet->size));
    }

private:
    av::FormatContextPtr m_context;
    av::PacketPtr m_packet;
};

std::vector<std::uint32_t> RandomFrames() {
    std::mt19937 random(20240229);
    std::vector<std::uint32_t> frames(1024);
    std::generate(frames.begin(), frames.end(), [&] { return random() % Frames; });
    return frames;
}

// Contenders that read different frames have not done the same task.
void RequireRightFrames(File& file) {
    if (file.Count() != Frames) {
        throw std::runtime_error("a contender has " + std::to_string(file.Count()) + " frames");
    }
    for (const std::uint32_t frame : RandomFrames()) {
        if (file.ReadAt(frame) != Payload(frame)) {
            throw std::runtime_error("a contender reads frame " + std::to_string(frame) + " wrong");
        }
    }
}

template <typename Contender>
void RunOpening(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        Contender file;
        benchmark::DoNotOptimize(file.Count());
    }
}

void RunRandom(benchmark::State& state, File& file) {
    const auto frames = RandomFrames();
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(file.ReadAt(frames[turn++ % frames.size()]));
    }
}

} // namespace

void RegisterComparisons() {
    const std::shared_ptr<File> floor = std::make_shared<FfmpegFile>();
    const std::shared_ptr<File> ours = std::make_shared<ZantheFile>();
    RequireRightFrames(*floor);
    RequireRightFrames(*ours);
    Comparison("open a million frames")
        .Add("ffmpeg", RunOpening<FfmpegFile>)
        .Add("zanthe", RunOpening<ZantheFile>);
    Comparison("random frame of a million")
        .Add("ffmpeg", [=](benchmark::State& state) { RunRandom(state, *floor); })
        .Add("zanthe", [=](benchmark::State& state) { RunRandom(state, *ours); });
}
