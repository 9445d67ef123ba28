#include "zanthe/h264/Nv12ToRgb32.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/com/ClassRegistry.h"
#include "tests/zanthe/h264/ScriptedSourceReader.h"
#include "tests/zanthe/h264/ScriptedTransform.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char Untouched = 7;

// The places of `bytes` that hold something else than before, as one span; empty where none does.
struct Span {
    std::size_t start;
    std::size_t end;

    bool operator==(const Span&) const = default;
};

Span SpanOf(const Bytes& bytes, unsigned char value) {
    const auto first = std::find(bytes.begin(), bytes.end(), value);
    const auto last = std::find_if(first, bytes.end(), [=](auto byte) { return byte != value; });
    EXPECT_EQ(std::count(last, bytes.end(), value), 0);
    return {static_cast<std::size_t>(first - bytes.begin()),
            static_cast<std::size_t>(last - bytes.begin())};
}

TEST(ClearPadding, MixesTheWidths) {
    Bytes bytes(20 * 16 * 3 / 2, Untouched);
    ClearPadding(bytes.data(), static_cast<std::uint32_t>(bytes.size()), {15, 10}, {20, 16});
    EXPECT_EQ(SpanOf(bytes, 0), (Span{10 * 15, 10 * 15 + 6 * 15}));
    EXPECT_EQ(SpanOf(bytes, 0x80), (Span{16 * 20 + 5 * 14, 16 * 20 + 5 * 14 + 10 * 6}));
}

TEST(ClearPadding, OfAFullHdFrame) {
    Bytes bytes(1920 * 1088 * 3 / 2, Untouched);
    ClearPadding(bytes.data(), static_cast<std::uint32_t>(bytes.size()), {1920, 1080},
                 {1920, 1088});
    EXPECT_EQ(SpanOf(bytes, 0), (Span{1920 * 1080, 1920 * 1088}));
    EXPECT_EQ(SpanOf(bytes, 0x80),
              (Span{1920 * 1088 + 540 * 1920, 1920 * 1088 + 540 * 1920 + 7680}));
}

TEST(ClearPadding, StaysWithinTheBuffer) {
    for (const std::uint32_t size : {0U, 1U, 149U, 200U, 350U, 400U}) {
        Bytes bytes(size + 1, Untouched);
        ClearPadding(bytes.data(), size, {15, 10}, {20, 16});
        EXPECT_EQ(bytes.back(), Untouched);
    }
    Bytes bytes(100, Untouched);
    constexpr std::uint32_t huge = 0xFFFFFFFF;
    ClearPadding(bytes.data(), 100, {huge, 1}, {huge, huge});
    ClearPadding(bytes.data(), 100, {huge, huge - 1}, {1, huge});
    ClearPadding(bytes.data(), 100, {10, 10}, {10, 5}); // nothing is below the picture
    EXPECT_EQ(bytes, Bytes(100, Untouched));
    ClearPadding(nullptr, 0, {1, 1}, {8, 8});
}

TEST(MakeOpaque, EveryFourthByte) {
    Bytes bytes(4 * 6, Untouched);
    MakeOpaque(bytes.data(), 24, {2, 2});
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_EQ(bytes[i], i % 4 == 3 && i < 16 ? 255 : Untouched) << i;
    }
}

TEST(MakeOpaque, StaysWithinTheBuffer) {
    Bytes bytes(8, Untouched);
    MakeOpaque(bytes.data(), 7, {0xFFFFFFFF, 0xFFFFFFFF});
    EXPECT_EQ(bytes, (Bytes{7, 7, 7, 255, 7, 7, 7, 7}));
    MakeOpaque(nullptr, 0, {1, 1});
}

class Nv12Conversion : public testing::Test {
protected:
    Nv12Conversion() {
        m_script->currentType->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_NV12);
        MFSetAttributeSize(m_script->currentType.Get(), MF_MT_FRAME_SIZE, 16, 16);
        m_buffer = com::MakeOwned<ScriptedBuffer>(16 * 16 * 3 / 2);
        std::fill_n(m_buffer->Bytes().begin(), 16 * 16, BYTE{235});
        std::fill(m_buffer->Bytes().begin() + 16 * 16, m_buffer->Bytes().end(), BYTE{128});
        m_sample->AddBuffer(m_buffer.Get());
    }

    com::ComPtr<IMFSample> Convert(FrameSize native) {
        return m_converter.Convert(m_sample.Get(), m_reader.Get(), 1, native, {16, 16});
    }

    Script m_script = MakeScript({});
    com::ComPtr<IMFSourceReader> m_reader = MakeScriptedReader(m_script);
    com::ComPtr<ScriptedBuffer> m_buffer;
    com::ComPtr<ScriptedSample> m_sample = com::MakeOwned<ScriptedSample>(5, 6);
    Nv12ToRgb32 m_converter;
};

Bytes PixelsOf(IMFSample* sample) {
    com::ComPtr<IMFMediaBuffer> buffer;
    sample->GetBufferByIndex(0, buffer.Put());
    BYTE* bytes = nullptr;
    DWORD length = 0;
    buffer->Lock(&bytes, nullptr, &length);
    Bytes pixels(bytes, bytes + length);
    buffer->Unlock();
    return pixels;
}

TEST_F(Nv12Conversion, GivesOpaqueRgb32) {
    for (int i = 0; i < 3; ++i) { // with one converter
        const auto converted = Convert({16, 16});
        ASSERT_TRUE(converted);
        GUID subtype{};
        EXPECT_EQ(converted->GetGUID(MF_MT_SUBTYPE, &subtype), S_OK);
        EXPECT_EQ(subtype, MFVideoFormat_RGB32);
        UINT64 size = 0;
        EXPECT_EQ(converted->GetUINT64(MF_MT_FRAME_SIZE, &size), S_OK);
        EXPECT_EQ(size, UINT64{16} << 32 | 16);
        EXPECT_EQ(PixelsOf(converted.Get()), Bytes(16 * 16 * 4, 255)); // white
        EXPECT_EQ(References(converted.Get()), 1U);
    }
    EXPECT_EQ(References(m_sample.Get()), 1U);
    EXPECT_EQ(m_buffer->locks, 0);
}

TEST_F(Nv12Conversion, ClearsThePaddingFirst) {
    ASSERT_TRUE(Convert({16, 12}));
    EXPECT_EQ(SpanOf(m_buffer->Bytes(), 0), (Span{12 * 16, 16 * 16}));
    EXPECT_EQ(m_buffer->locks, 0);
}

TEST_F(Nv12Conversion, WithoutAConverterThereIsNothing) {
    const auto before =
        com::RegisterClass(CLSID_CColorConvertDMO, [](REFIID, void**) { return E_FAIL; });
    EXPECT_FALSE(Convert({16, 16}));
    com::RegisterClass(CLSID_CColorConvertDMO, before);
    EXPECT_TRUE(Convert({16, 16})); // it is tried anew
}

TEST_F(Nv12Conversion, WithoutATypeThereIsNothing) {
    m_script->currentType.Reset();
    EXPECT_FALSE(Convert({16, 16}));
}

TEST_F(Nv12Conversion, ASampleWithoutABufferGivesNothing) {
    const auto bare = com::MakeOwned<ScriptedSample>(0, 1);
    EXPECT_FALSE(m_converter.Convert(bare.Get(), m_reader.Get(), 0, {16, 12}, {16, 16}));
    EXPECT_TRUE(Convert({16, 16})); // the next one is served
}

class Nv12Converter : public Nv12Conversion {
protected:
    Nv12Converter() { m_transform->outputBytes = 16 * 16 * 4; }

    std::shared_ptr<TransformScript> m_transform = std::make_shared<TransformScript>();
    ScriptedConverters m_converters{m_transform};
};

TEST_F(Nv12Converter, IsMadeOnceAndTurnsSampleBySample) {
    EXPECT_TRUE(Convert({16, 16}));
    EXPECT_THAT(m_transform->calls,
                ElementsAre(TransformCall::InputType, TransformCall::OutputType,
                            TransformCall::StreamInfo, TransformCall::Begin, TransformCall::Input,
                            TransformCall::StreamInfo, TransformCall::Output));
    m_transform->calls.clear();
    EXPECT_TRUE(Convert({16, 16}));
    EXPECT_THAT(m_transform->calls, ElementsAre(TransformCall::Input, TransformCall::StreamInfo,
                                                TransformCall::Output));
    EXPECT_EQ(m_transform->made, 1);
    EXPECT_THAT(m_transform->inputs, ElementsAre(m_sample.Get(), m_sample.Get()));
}

TEST_F(Nv12Converter, TakesTheTypeOfTheStream) {
    MFSetAttributeRatio(m_script->currentType.Get(), MF_MT_PIXEL_ASPECT_RATIO, 4, 3);
    m_script->currentType->SetUINT32(MF_MT_INTERLACE_MODE, MFVideoInterlace_Progressive);
    MFSetAttributeSize(m_script->currentType.Get(), MF_MT_FRAME_SIZE, 20, 20);
    Convert({16, 16});
    EXPECT_EQ(m_script->streamDescribed, 1U);
    EXPECT_EQ(m_transform->inputType.Get(), m_script->currentType.Get());
    IMFMediaType* type = m_transform->outputType.Get();
    GUID major{};
    GUID subtype{};
    EXPECT_EQ(type->GetGUID(MF_MT_MAJOR_TYPE, &major), S_OK);
    EXPECT_EQ(type->GetGUID(MF_MT_SUBTYPE, &subtype), S_OK);
    EXPECT_EQ(major, MFMediaType_Video);
    EXPECT_EQ(subtype, MFVideoFormat_RGB32);
    EXPECT_EQ(MFGetAttributeUINT64(type, MF_MT_FRAME_SIZE, 0), Pack2UINT32AsUINT64(16, 16));
    EXPECT_EQ(MFGetAttributeUINT64(type, MF_MT_FRAME_RATE, 0), Pack2UINT32AsUINT64(30, 1));
    EXPECT_EQ(MFGetAttributeUINT64(type, MF_MT_PIXEL_ASPECT_RATIO, 0), Pack2UINT32AsUINT64(4, 3));
    EXPECT_EQ(MFGetAttributeUINT32(type, MF_MT_INTERLACE_MODE, 0),
              UINT32{MFVideoInterlace_Progressive});
}

TEST_F(Nv12Converter, PixelsAreSquareWhereNobodySays) {
    Convert({16, 16});
    EXPECT_EQ(MFGetAttributeUINT64(m_transform->outputType.Get(), MF_MT_PIXEL_ASPECT_RATIO, 0),
              Pack2UINT32AsUINT64(1, 1));
}

TEST_F(Nv12Converter, BeginsOnlyWithTypesThatItTook) {
    using Result = HRESULT TransformScript::*;
    for (const Result result :
         {&TransformScript::outputTypeResult, &TransformScript::streamInfoResult}) {
        *m_transform = {};
        (*m_transform).*result = E_FAIL;
        Nv12ToRgb32().Convert(m_sample.Get(), m_reader.Get(), 1, {16, 16}, {16, 16});
        EXPECT_THAT(m_transform->calls, testing::Not(testing::Contains(TransformCall::Begin)));
    }
}

TEST_F(Nv12Converter, TheSampleIsDescribedBeforeAndBehindIt) {
    UINT64 size = 0;
    GUID subtype{};
    DWORD room = 0;
    m_transform->onOutput = [&](IMFSample& sample) {
        size = MFGetAttributeUINT64(&sample, MF_MT_FRAME_SIZE, 0);
        sample.GetGUID(MF_MT_SUBTYPE, &subtype);
        com::ComPtr<IMFMediaBuffer> buffer;
        sample.GetBufferByIndex(0, buffer.Put());
        buffer->GetMaxLength(&room);
        MFSetAttributeSize(&sample, MF_MT_FRAME_SIZE, 1, 2);
    };
    const auto converted = Convert({16, 16});
    ASSERT_TRUE(converted);
    EXPECT_EQ(size, Pack2UINT32AsUINT64(16, 16));
    EXPECT_EQ(subtype, MFVideoFormat_RGB32);
    EXPECT_EQ(room, 16U * 16 * 4);
    EXPECT_EQ(MFGetAttributeUINT64(converted.Get(), MF_MT_FRAME_SIZE, 0),
              Pack2UINT32AsUINT64(16, 16));
}

TEST_F(Nv12Converter, EveryPixelIsMadeOpaque) {
    m_transform->onOutput = [](IMFSample& sample) {
        com::ComPtr<IMFMediaBuffer> buffer;
        sample.GetBufferByIndex(0, buffer.Put());
        BYTE* bytes = nullptr;
        buffer->Lock(&bytes, nullptr, nullptr);
        std::fill_n(bytes, 16 * 16 * 4, BYTE{0});
        buffer->Unlock();
        buffer->SetCurrentLength(16 * 16 * 4);
    };
    const auto converted = Convert({16, 16});
    ASSERT_TRUE(converted);
    const Bytes pixels = PixelsOf(converted.Get());
    ASSERT_EQ(pixels.size(), 16U * 16 * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        ASSERT_EQ(pixels[i], i % 4 == 3 ? 255 : 0) << i;
    }
}

TEST_F(Nv12Converter, WhatItCannotFillIsNothing) {
    m_transform->outputResult = E_FAIL;
    EXPECT_FALSE(Convert({16, 16}));
}

} // namespace
} // namespace Zanthe
