// Hosts are built apart from the library and call through the order of the virtual operations, so
// an operation that moves breaks them without any other sign.
#include <type_traits>

#include <gtest/gtest.h>

#include "platform/brec/MP4TrackReader.h"
#include "platform/mf/DXGIDeviceManager.h"
#include "tests/support/SlotOf.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/audio/IAudioReader.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/VideoDecoder.h"
#include "zanthe/core/VideoSample.h"
#include "zanthe/core/VideoSampleReader.h"
#include "zanthe/core/VideoSampleReaderCache.h"
#include "zanthe/directshow/IDSChain.h"

#if defined(__x86_64__)

namespace {

using namespace Zanthe;

TEST(OperationOrder, VideoSample) {
    EXPECT_EQ(SlotOf(&VideoSample::decrementRefCount), 2);
    EXPECT_EQ(SlotOf(&VideoSample::width), 3);
    EXPECT_EQ(SlotOf(&VideoSample::height), 4);
    EXPECT_EQ(SlotOf(&VideoSample::bufferWidth), 5);
    EXPECT_EQ(SlotOf(&VideoSample::bufferHeight), 6);
    EXPECT_EQ(SlotOf(&VideoSample::bytesPerRow), 7);
    EXPECT_EQ(SlotOf(&VideoSample::isFlipped), 8);
    EXPECT_EQ(SlotOf(&VideoSample::videoSampleFormat), 9);
    EXPECT_EQ(SlotOf(&VideoSample::lockData), 10);
    EXPECT_EQ(SlotOf(&VideoSample::data), 11);
    EXPECT_EQ(SlotOf(&VideoSample::unlockData), 12);
    EXPECT_EQ(SlotOf(&VideoSample::dataSize), 13);
    EXPECT_EQ(SlotOf(&VideoSample::colorSpace), 14);
}

TEST(OperationOrder, VideoDecoder) {
    EXPECT_EQ(SlotOf(&VideoDecoder::outputWidth), 2);
    EXPECT_EQ(SlotOf(&VideoDecoder::outputHeight), 3);
    EXPECT_EQ(SlotOf(&VideoDecoder::readFrame), 4);
}

TEST(OperationOrder, VideoSampleReader) {
    EXPECT_EQ(SlotOf(&VideoSampleReader::outputWidth), 2);
    EXPECT_EQ(SlotOf(&VideoSampleReader::outputHeight), 3);
    EXPECT_EQ(SlotOf(&VideoSampleReader::readVideoSample), 4);
    EXPECT_EQ(SlotOf(&VideoSampleReader::requiresFlagSometimesToActuallyGetSamples), 5);
    EXPECT_EQ(SlotOf(&VideoSampleReader::requiresMediaOrientationTransformation), 6);
}

TEST(OperationOrder, IAudioReader) {
    EXPECT_EQ(SlotOf(&IAudioReader::FillAudioBuffer), 2);
}

TEST(OperationOrder, Factories) {
    EXPECT_EQ(SlotOf(&DecoderFactory::CreateVideoSampleReader), 2);
    EXPECT_EQ(SlotOf(&AudioMediaReaderFactory::Create_AudioMediaReader), 2);
}

// Of the closed class only a place is known: its length is the sixth of the table, where the
// destructor counts as one.
TEST(OperationOrder, MP4TrackReader) {
    constexpr std::ptrdiff_t sixth = 6; // from 0, with the destructor's two slots
    EXPECT_EQ(SlotOf(&BREC::MP4TrackReader::lengthInFrames), sixth);
}

TEST(OperationOrder, IDSChain) {
    EXPECT_EQ(SlotOf(&IDSChain::IsInitialized), 0);
    EXPECT_EQ(SlotOf(&IDSChain::Uninitialize), 1);
    EXPECT_EQ(SlotOf(&IDSChain::Initialize), 2);
    EXPECT_EQ(SlotOf(&IDSChain::InitializeAsync), 3);
    EXPECT_EQ(SlotOf(&IDSChain::FindSample), 4);
    EXPECT_EQ(SlotOf(&IDSChain::ReadAudioFloat), 5);
    EXPECT_EQ(SlotOf(&IDSChain::GetWidth), 6);
    EXPECT_EQ(SlotOf(&IDSChain::GetHeight), 7);
    EXPECT_EQ(SlotOf(&IDSChain::SetMaxSteps), 8);
}

// A platform's interface begins with the three of IUnknown and has no destructor in its table.
TEST(OperationOrder, IMFDXGIDeviceManager) {
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::QueryInterface), 0);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::AddRef), 1);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::Release), 2);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::CloseDeviceHandle), 3);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::GetVideoService), 4);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::LockDevice), 5);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::OpenDeviceHandle), 6);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::ResetDevice), 7);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::TestDevice), 8);
    EXPECT_EQ(SlotOf(&IMFDXGIDeviceManager::UnlockDevice), 9);
}

TEST(OperationOrder, AllCanBeDeletedThroughTheirInterface) {
    static_assert(std::has_virtual_destructor_v<VideoSample>);
    static_assert(std::has_virtual_destructor_v<VideoDecoder>);
    static_assert(std::has_virtual_destructor_v<VideoSampleReader>);
    static_assert(std::has_virtual_destructor_v<IAudioReader>);
    static_assert(std::has_virtual_destructor_v<DecoderFactory>);
    static_assert(std::has_virtual_destructor_v<VideoSampleReaderCache>);
    static_assert(std::has_virtual_destructor_v<AudioMediaReaderFactory>);
    static_assert(std::has_virtual_destructor_v<IDSChain>);
}

} // namespace

#endif
