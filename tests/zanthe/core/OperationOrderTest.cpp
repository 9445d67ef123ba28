// Hosts are built apart from the library and call through the order of the virtual operations, so
// an operation that moves breaks them without any other sign.
#include <cstddef>
#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/core/VideoDecoder.h"
#include "zanthe/core/VideoSample.h"
#include "zanthe/core/VideoSampleReader.h"

#if defined(__x86_64__)

namespace {

using namespace Zanthe;

// A pointer to a virtual member function holds 1 + the offset of its slot in the table of the
// class, here in the ABI of this system. The destructor takes the first two slots.
template <typename Member>
std::ptrdiff_t SlotOf(Member member) {
    static_assert(std::is_member_function_pointer_v<Member>);
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

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

TEST(OperationOrder, AllCanBeDeletedThroughTheirInterface) {
    static_assert(std::has_virtual_destructor_v<VideoSample>);
    static_assert(std::has_virtual_destructor_v<VideoDecoder>);
    static_assert(std::has_virtual_destructor_v<VideoSampleReader>);
    static_assert(std::has_virtual_destructor_v<IAudioReader>);
}

} // namespace

#endif
