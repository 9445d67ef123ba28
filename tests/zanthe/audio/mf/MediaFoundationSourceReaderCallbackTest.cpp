#include "zanthe/audio/mf/MediaFoundationSourceReaderCallback.h"

#include <gtest/gtest.h>

namespace Zanthe {
namespace {

using CallbackPtr = com::ComPtr<MediaFoundationSourceReaderCallback>;

CallbackPtr MakeCallback() {
    return CallbackPtr::Attach(new MediaFoundationSourceReaderCallback);
}

com::ComPtr<IMFSample> MakeSample() {
    com::ComPtr<IMFSample> sample;
    MFCreateSample(sample.Put());
    return sample;
}

ULONG ReferencesOn(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

TEST(SourceReaderCallback, HasItsTwoInterfaces) {
    const CallbackPtr callback = MakeCallback();
    EXPECT_TRUE(callback.As<IUnknown>(IID_IUnknown));
    EXPECT_TRUE(callback.As<IMFSourceReaderCallback>(IID_IMFSourceReaderCallback));
    void* other = callback.Get();
    EXPECT_EQ(callback->QueryInterface(IID_IMFSample, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(callback->QueryInterface(IID_IUnknown, nullptr), E_INVALIDARG);
    EXPECT_EQ(ReferencesOn(*callback), 1U);
}

TEST(SourceReaderCallback, AnAnswerIsTakenOnceAndWhole) {
    const CallbackPtr callback = MakeCallback();
    const auto sample = MakeSample();
    EXPECT_EQ(callback->OnReadSample(S_OK, 3, 5, 77, sample.Get()), S_OK);
    EXPECT_EQ(ReferencesOn(*sample), 2U);
    {
        const SourceAnswer answer = callback->WaitForSample();
        EXPECT_EQ(answer.result, S_OK);
        EXPECT_EQ(answer.streamIndex, 3U);
        EXPECT_EQ(answer.streamFlags, 5U);
        EXPECT_EQ(answer.timestamp, 77);
        EXPECT_EQ(answer.sample, sample);
        EXPECT_EQ(ReferencesOn(*sample), 2U);
    }
    EXPECT_EQ(ReferencesOn(*sample), 1U);
}

TEST(SourceReaderCallback, AFailureBringsNoSample) {
    const CallbackPtr callback = MakeCallback();
    const auto sample = MakeSample();
    callback->OnReadSample(E_FAIL, 0, 1, 77, sample.Get());
    const SourceAnswer answer = callback->WaitForSample();
    EXPECT_EQ(answer.result, E_FAIL);
    EXPECT_EQ(answer.timestamp, 0);
    EXPECT_FALSE(answer.sample);
    EXPECT_EQ(ReferencesOn(*sample), 1U);
}

TEST(SourceReaderCallback, AnAnswerThatNobodyTookIsGivenBack) {
    const CallbackPtr callback = MakeCallback();
    const auto sample = MakeSample();
    callback->OnReadSample(S_OK, 0, 0, 1, sample.Get());
    callback->OnReadSample(S_OK, 0, 2, 0, nullptr);
    EXPECT_EQ(ReferencesOn(*sample), 1U);
    EXPECT_EQ(callback->WaitForSample().streamFlags, 2U);
}

TEST(SourceReaderCallback, FlushesAreWaitedFor) {
    const CallbackPtr callback = MakeCallback();
    EXPECT_EQ(callback->OnFlush(0), S_OK);
    callback->WaitForFlush();
    EXPECT_EQ(callback->OnEvent(0, nullptr), S_OK);
}

} // namespace
} // namespace Zanthe
