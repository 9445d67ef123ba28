#include "platform/mf/SourceReader.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "platform/av/PictureConversion.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/win32/Text.h"
#include "tests/platform/mf/Readers.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

constexpr DWORD kEnd = MF_SOURCE_READERF_ENDOFSTREAM;

HRESULT Open(const std::string& path) {
    com::ComPtr<IMFSourceReader> reader;
    const HRESULT result =
        MFCreateSourceReaderFromURL(win32::Utf8ToWide(path).c_str(), nullptr, reader.Put());
    EXPECT_EQ(SUCCEEDED(result), static_cast<bool>(reader)) << path;
    return result;
}

com::ComPtr<IMFMediaType> NativeType(IMFSourceReader& reader, DWORD stream = kVideo) {
    com::ComPtr<IMFMediaType> type;
    EXPECT_EQ(reader.GetNativeMediaType(stream, 0, type.Put()), S_OK);
    return type;
}

ULONG CountOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

TEST(SourceReader, RefusesWhatIsNoMediaFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(static_cast<UINT32>(Open(folder / "missing.mp4")), 0x80070002);
    EXPECT_EQ(Open(folder.Write("text.mp4", "no film at all, only words")),
              MF_E_UNSUPPORTED_BYTESTREAM_TYPE);
    EXPECT_EQ(Open(folder.Write("empty.mp4", "")), MF_E_UNSUPPORTED_BYTESTREAM_TYPE);
    EXPECT_EQ(Open(folder.Path().string()), MF_E_UNSUPPORTED_BYTESTREAM_TYPE);
    EXPECT_EQ(MFCreateSourceReaderFromURL(nullptr, nullptr, nullptr), E_POINTER);
}

TEST(SourceReader, CutFilesGiveAnAnswer) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("h264/index-first.mp4"));
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 12) {
        const std::string path = folder.Write("cut.mp4", whole.substr(0, size));
        if (SUCCEEDED(Open(path))) {
            const auto reader = OpenPixels(path, MFVideoFormat_ARGB32);
            EXPECT_LE(ReadAll(*reader).size(), 96U) << size;
        }
    }
}

TEST(SourceReader, TellsWhatTheFileHolds) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    const auto type = NativeType(*reader);
    GUID major{};
    EXPECT_EQ(type->GetMajorType(&major), S_OK);
    EXPECT_EQ(major, MFMediaType_Video);
    EXPECT_EQ(SubtypeOf(*type), MFVideoFormat_H264);
    EXPECT_EQ(SizeOf(*type), (FrameSize{192, 144}));
    EXPECT_EQ(MFGetAttributeUINT64(type.Get(), MF_MT_FRAME_RATE, 0), Pack2UINT32AsUINT64(24, 1));
    UINT64 aspect = 0;
    EXPECT_EQ(type->GetUINT64(MF_MT_PIXEL_ASPECT_RATIO, &aspect), MF_E_ATTRIBUTENOTFOUND);
    UINT8 header[256];
    UINT32 size = 0;
    ASSERT_EQ(type->GetBlob(MF_MT_MPEG_SEQUENCE_HEADER, header, sizeof header, &size), S_OK);
    const UINT8 startCode[] = {0, 0, 0, 1};
    EXPECT_TRUE(std::equal(startCode, startCode + 4, header) || (header[2] == 1 && size > 3));
    const auto other = OpenReader(MadeMedia("h264/wide-pixels.mp4"), {});
    EXPECT_EQ(MFGetAttributeUINT64(NativeType(*other).Get(), MF_MT_PIXEL_ASPECT_RATIO, 0),
              Pack2UINT32AsUINT64(4, 3));
    const auto turned = OpenReader(MadeMedia("h264/rotated-90.mp4"), {});
    EXPECT_EQ(MFGetAttributeUINT32(NativeType(*turned).Get(), MF_MT_VIDEO_ROTATION, 0), 90U);
}

TEST(SourceReader, NamesCodecs) {
    const struct {
        const char* file;
        GUID subtype;
    } cases[] = {
        {"h264/elementary.h264", MFVideoFormat_H264_ES},
        {"h264/in-avi.avi", MFVideoFormat_H264},
        {"h264/hevc-plain.mp4", MFVideoFormat_HEVC},
        {"h264/hevc-elementary.265", CodedSubtype("HEVS")},
        {"h264/mpeg4-plain.mp4", MFVideoFormat_MP4V},
    };

    for (const auto& [file, subtype] : cases) {
        EXPECT_EQ(SubtypeOf(*NativeType(*OpenReader(MadeMedia(file), {}))), subtype) << file;
    }
}

TEST(SourceReader, CountsSoundAndVideoInTheOrderOfTheFile) {
    const auto reader = OpenReader(MadeMedia("h264/audio-first.mp4"), {});
    GUID major{};
    EXPECT_EQ(NativeType(*reader, 0)->GetMajorType(&major), S_OK);
    EXPECT_EQ(major, MFMediaType_Audio);
    EXPECT_EQ(NativeType(*reader, 1)->GetMajorType(&major), S_OK);
    EXPECT_EQ(major, MFMediaType_Video);
    BOOL selected = FALSE;
    EXPECT_EQ(reader->GetStreamSelection(0, &selected), S_OK);
    EXPECT_EQ(selected, TRUE);
    EXPECT_EQ(reader->GetStreamSelection(2, &selected), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE), S_OK);
    EXPECT_EQ(reader->SetStreamSelection(kVideo, TRUE), S_OK);
    EXPECT_EQ(reader->GetStreamSelection(0, &selected), S_OK);
    EXPECT_EQ(selected, FALSE);
    EXPECT_EQ(reader->GetStreamSelection(1, &selected), S_OK);
    EXPECT_EQ(selected, TRUE);
    const ReadResult read = ReadNext(*reader);
    EXPECT_EQ(read.index, 1U);
    EXPECT_EQ(ReadNext(*reader, 0).result, MF_E_INVALIDREQUEST);
    EXPECT_EQ(ReadNext(*reader, 7).result, MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(ReadNext(*reader, 7).flags, MF_SOURCE_READERF_ERROR);
}

TEST(SourceReader, ACoverIsNoStream) {
    const auto reader = OpenReader(MadeMedia("h264/cover.mp4"), {});
    BOOL selected = FALSE;
    DWORD streams = 0;
    while (reader->GetStreamSelection(streams, &selected) == S_OK) {
        ++streams;
    }
    EXPECT_EQ(streams, 1U);
    EXPECT_EQ(SubtypeOf(*NativeType(*reader)), MFVideoFormat_H264);
}

TEST(SourceReader, HasOneNativeTypeAStream) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    com::ComPtr<IMFMediaType> type;
    EXPECT_EQ(reader->GetNativeMediaType(kVideo, 1, type.Put()), MF_E_NO_MORE_TYPES);
    EXPECT_EQ(reader->GetNativeMediaType(MF_SOURCE_READER_FIRST_AUDIO_STREAM, 0, type.Put()),
              MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(reader->GetCurrentMediaType(3, type.Put()), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_FALSE(type);
    // What is given out is the caller's own.
    NativeType(*reader)->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_NV12);
    EXPECT_EQ(SubtypeOf(*NativeType(*reader)), MFVideoFormat_H264);
}

TEST(SourceReader, TakesOnlyTypesThatItCanGive) {
    const auto plain = OpenReader(MadeMedia("h264/audio-first.mp4"), {});
    const auto set = [&](IMFSourceReader& reader, const GUID& subtype) {
        return reader.SetCurrentMediaType(kVideo, nullptr, VideoType(subtype).Get());
    };
    EXPECT_EQ(set(*plain, MFVideoFormat_ARGB32), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(*plain, MFVideoFormat_NV12), S_OK);
    EXPECT_EQ(set(*plain, MFVideoFormat_HEVC), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(*plain, MFVideoFormat_H264), S_OK);
    const auto processing = OpenReader(MadeMedia("h264/audio-first.mp4"), ProcessingAttributes());
    EXPECT_EQ(set(*processing, MFVideoFormat_ARGB32), S_OK);
    EXPECT_EQ(set(*processing, MFVideoFormat_RGB32), S_OK);
    com::ComPtr<IMFMediaType> type;
    ASSERT_EQ(MFCreateMediaType(type.Put()), S_OK);
    EXPECT_EQ(plain->SetCurrentMediaType(kVideo, nullptr, type.Get()), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(plain->SetCurrentMediaType(kVideo, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(plain->SetCurrentMediaType(9, nullptr, type.Get()), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(plain->SetCurrentMediaType(0, nullptr, VideoType(MFVideoFormat_NV12).Get()),
              MF_E_INVALIDMEDIATYPE);
    const auto huge = VideoType(MFVideoFormat_ARGB32);
    MFSetAttributeSize(huge.Get(), MF_MT_FRAME_SIZE, 1U << 31, 4);
    EXPECT_EQ(processing->SetCurrentMediaType(kVideo, nullptr, huge.Get()), MF_E_INVALIDMEDIATYPE);
}

TEST(SourceReader, GivesCompressedSamplesOfTheNativeType) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    ASSERT_EQ(reader->SetCurrentMediaType(kVideo, nullptr, NativeType(*reader).Get()), S_OK);
    std::size_t keys = 0;
    std::vector<LONGLONG> times;
    LONGLONG end = 0;
    for (const auto& sample : ReadAll(*reader)) {
        times.push_back(TimeOf(*sample));
        end = std::max(end, times.back() + DurationOf(*sample));
        keys += MFGetAttributeUINT32(sample.Get(), MFSampleExtension_CleanPoint, 0);
        EXPECT_FALSE(PixelsOf(*sample).empty());
    }
    EXPECT_EQ(times.size(), 96U);
    EXPECT_FALSE(std::is_sorted(times.begin(), times.end())) << "they come as they are decoded";
    EXPECT_EQ(times.front(), 0);
    EXPECT_NEAR(static_cast<double>(end), 4e7, 2);
    EXPECT_EQ(keys, 4U);
    EXPECT_EQ(ReadNext(*reader).flags, kEnd);
}

TEST(SourceReader, GoesOnFromAKeyFrameWhenCompressed) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    EXPECT_EQ(Seek(*reader, 15'000'000), S_OK);
    const ReadResult read = ReadNext(*reader);
    ASSERT_TRUE(read.sample);
    EXPECT_EQ(read.time, 10'000'000);
    EXPECT_EQ(MFGetAttributeUINT32(read.sample.Get(), MFSampleExtension_CleanPoint, 0), 1U);
}

TEST(SourceReader, GivesPixelsOfTheSizeThatItThenTells) {
    const auto reader = OpenPixels(MadeMedia("h264/cropped.mp4"), MFVideoFormat_ARGB32);
    const ReadResult read = ReadNext(*reader);
    ASSERT_TRUE(read.sample);
    EXPECT_EQ(CurrentSize(*reader), (FrameSize{186, 138}));
    const auto pixels = PixelsOf(*read.sample);
    EXPECT_EQ(pixels.size(), 4U * 186 * 138);
    EXPECT_EQ(pixels[3], 255);
    com::ComPtr<IMFMediaBuffer> buffer;
    ASSERT_EQ(read.sample->GetBufferByIndex(0, buffer.Put()), S_OK);
    EXPECT_FALSE(buffer.As<IMFDXGIBuffer>(IID_IMFDXGIBuffer));
}

TEST(SourceReader, ConvertsOnTheFirstLockOnly) {
    const auto reader = OpenPixels(MadeMedia("h264/plain.mp4"), MFVideoFormat_ARGB32);
    const std::int64_t before = av::PicturesConverted();
    const auto samples = ReadAll(*reader);
    EXPECT_EQ(av::PicturesConverted(), before);
    com::ComPtr<IMFMediaBuffer> buffer;
    ASSERT_EQ(samples[5]->GetBufferByIndex(0, buffer.Put()), S_OK);
    for (int turn = 0; turn < 3; ++turn) {
        const mf::BufferLock lock(*buffer);
        ASSERT_EQ(lock.Result(), S_OK);
        EXPECT_EQ(lock.Bytes()[0], turn); // a caller's writing stays
        lock.Bytes()[0] = static_cast<BYTE>(turn + 1);
    }
    EXPECT_EQ(av::PicturesConverted(), before + 1);
    EXPECT_EQ(buffer->Unlock(), E_UNEXPECTED);
}

TEST(SourceReader, Nv12IsOfEvenSize) {
    const auto reader = OpenPixels(MadeMedia("h264/mpeg4-odd-size.mp4"), MFVideoFormat_NV12);
    const ReadResult read = ReadNext(*reader);
    ASSERT_TRUE(read.sample);
    EXPECT_EQ(CurrentSize(*reader), (FrameSize{162, 122}));
    EXPECT_EQ(PixelsOf(*read.sample).size(), 162U * 122 * 3 / 2);
    const auto other = OpenPixels(MadeMedia("h264/mpeg4-odd-size.mp4"), MFVideoFormat_ARGB32);
    ReadNext(*other);
    EXPECT_EQ(CurrentSize(*other), (FrameSize{161, 121}));
}

TEST(SourceReader, AllSamplesAreOfOneSize) {
    for (const char* file : {"h264/size-change.h264", "h264/size-change.ts"}) {
        for (const GUID& subtype : {MFVideoFormat_ARGB32, MFVideoFormat_NV12}) {
            const auto reader = OpenPixels(MadeMedia(file), subtype);
            const auto samples = ReadAll(*reader);
            ASSERT_GT(samples.size(), 10U);
            const FrameSize size = CurrentSize(*reader);
            const std::size_t pixels = std::size_t{size.width} * size.height;
            const std::size_t bytes = subtype == MFVideoFormat_NV12 ? pixels * 3 / 2 : pixels * 4;
            EXPECT_EQ(PixelsOf(*samples.front()).size(), bytes) << file;
            EXPECT_EQ(PixelsOf(*samples.back()).size(), bytes) << file;
        }
    }
}

TEST(SourceReader, ScalesToASizeThatIsAskedFor) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), ProcessingAttributes());
    const auto type = VideoType(MFVideoFormat_RGB32);
    MFSetAttributeSize(type.Get(), MF_MT_FRAME_SIZE, 96, 72);
    ASSERT_EQ(reader->SetCurrentMediaType(kVideo, nullptr, type.Get()), S_OK);
    const ReadResult read = ReadNext(*reader);
    ASSERT_TRUE(read.sample);
    EXPECT_EQ(PixelsOf(*read.sample).size(), 4U * 96 * 72);
    EXPECT_EQ(CurrentSize(*reader), (FrameSize{96, 72}));
}

TEST(SourceReader, TellsTheColourOfNv12) {
    const struct {
        const char* file;
        UINT32 matrix;
        UINT32 range;
    } cases[] = {
        {"h264/bt709.mp4", MFVideoTransferMatrix_BT709, MFNominalRange_16_235},
        {"h264/smpte240m.mp4", MFVideoTransferMatrix_SMPTE240M, MFNominalRange_16_235},
        {"h264/full-range.mp4", MFVideoTransferMatrix_BT709, MFNominalRange_0_255},
        {"h264/no-colour-words.mp4", MFVideoTransferMatrix_BT601, MFNominalRange_16_235},
    };

    for (const auto& [file, matrix, range] : cases) {
        const auto reader = OpenPixels(MadeMedia(file), MFVideoFormat_NV12);
        ReadNext(*reader);
        com::ComPtr<IMFMediaType> type;
        ASSERT_EQ(reader->GetCurrentMediaType(kVideo, type.Put()), S_OK);
        EXPECT_EQ(MFGetAttributeUINT32(type.Get(), MF_MT_YUV_MATRIX, 0), matrix) << file;
        EXPECT_EQ(MFGetAttributeUINT32(type.Get(), MF_MT_VIDEO_NOMINAL_RANGE, 0), range) << file;
    }
}

TEST(SourceReader, TellsTheDuration) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    PROPVARIANT value;
    EXPECT_EQ(
        reader->GetPresentationAttribute(MF_SOURCE_READER_MEDIASOURCE, MF_PD_DURATION, &value),
        S_OK);
    EXPECT_EQ(value.vt, VT_UI8);
    LONGLONG duration = 0;
    EXPECT_EQ(PropVariantToInt64(value, &duration), S_OK);
    EXPECT_EQ(duration, 40'000'000);
    EXPECT_EQ(reader->GetPresentationAttribute(MF_SOURCE_READER_MEDIASOURCE, MF_MT_SUBTYPE, &value),
              MF_E_ATTRIBUTENOTFOUND);
    EXPECT_EQ(value.vt, VT_EMPTY);
    EXPECT_EQ(reader->GetPresentationAttribute(kVideo, MF_PD_DURATION, &value),
              MF_E_ATTRIBUTENOTFOUND);
    EXPECT_EQ(reader->GetPresentationAttribute(17, MF_PD_DURATION, &value),
              MF_E_INVALIDSTREAMNUMBER);
}

TEST(SourceReader, RefusesPositionsOfOtherKinds) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    PROPVARIANT position;
    PropVariantInit(&position);
    EXPECT_EQ(reader->SetCurrentPosition(GUID_NULL, position), E_INVALIDARG);
    position.vt = VT_I8;
    EXPECT_EQ(reader->SetCurrentPosition(MF_PD_DURATION, position), MF_E_UNSUPPORTED_TIME_FORMAT);
    EXPECT_EQ(reader->Flush(kVideo), S_OK);
    EXPECT_EQ(reader->Flush(MF_SOURCE_READER_ALL_STREAMS), S_OK);
    EXPECT_EQ(reader->Flush(5), MF_E_INVALIDSTREAMNUMBER);
}

TEST(SourceReader, ReadsTheSecondOfTwoVideoStreams) {
    const auto reader = OpenReader(MadeMedia("h264/two-videos.mp4"), ProcessingAttributes());
    ASSERT_EQ(reader->SetCurrentMediaType(1, nullptr, VideoType(MFVideoFormat_ARGB32).Get()), S_OK);
    ASSERT_EQ(reader->SetCurrentMediaType(0, nullptr, VideoType(MFVideoFormat_ARGB32).Get()), S_OK);
    const ReadResult first = ReadNext(*reader, 0);
    const ReadResult second = ReadNext(*reader, 1);
    ASSERT_TRUE(first.sample && second.sample);
    EXPECT_EQ(second.index, 1U);
    EXPECT_NE(PixelsOf(*first.sample), PixelsOf(*second.sample));
}

TEST(SourceReader, GoesOnWhereItWasWhenTheTypeChanges) {
    const auto reader = OpenPixels(MadeMedia("h264/plain.mp4"), MFVideoFormat_ARGB32);
    ReadNext(*reader);
    const ReadResult before = ReadNext(*reader);
    ASSERT_EQ(reader->SetCurrentMediaType(kVideo, nullptr, VideoType(MFVideoFormat_NV12).Get()),
              S_OK);
    const ReadResult behind = ReadNext(*reader);
    ASSERT_TRUE(behind.sample);
    EXPECT_EQ(behind.time, before.time + DurationOf(*before.sample) + 1);
}

TEST(SourceReader, SamplesOutliveTheirReader) {
    std::vector<com::ComPtr<IMFSample>> samples;
    std::vector<std::uint8_t> expected;
    {
        const auto reader = OpenPixels(MadeMedia("h264/plain.mp4"), MFVideoFormat_ARGB32);
        samples = ReadAll(*reader);
        expected = PixelsOf(*samples[40]);
        EXPECT_EQ(CountOf(*reader), 1U);
        EXPECT_EQ(CountOf(*samples[40]), 1U);
    }
    EXPECT_EQ(PixelsOf(*samples[40]), expected);
    EXPECT_EQ(PixelsOf(*samples[41]).size(), expected.size());
}

TEST(SourceReader, DamagedFilesGiveAnAnswer) {
    const auto files = RealMedia("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    std::size_t opened = 0;
    for (const auto& file : files) {
        if (FAILED(Open(file.string()))) {
            continue;
        }
        const auto reader = OpenReader(file.string(), ProcessingAttributes());
        ++opened;
        const auto type = VideoType(MFVideoFormat_ARGB32);
        if (FAILED(reader->SetCurrentMediaType(kVideo, nullptr, type.Get()))) {
            continue;
        }
        for (int i = 0; i < 10; ++i) {
            const ReadResult read = ReadNext(*reader);
            if (!read.sample) {
                break;
            }
            com::ComPtr<IMFMediaBuffer> buffer;
            ASSERT_EQ(read.sample->GetBufferByIndex(0, buffer.Put()), S_OK);
            const mf::BufferLock lock(*buffer); // may fail, and says so
        }
    }
    EXPECT_GT(opened, 0U);
}

} // namespace
