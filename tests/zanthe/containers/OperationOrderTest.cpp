// Subclasses and hosts rely on the order of the virtual operations: one that moves breaks them
// without any other sign.
#include <type_traits>

#include <gtest/gtest.h>

#include "tests/support/SlotOf.h"
#include "zanthe/containers/BRECVideoDecoder.h"
#include "zanthe/containers/OrirecScreenVideoDecoder.h"
#include "zanthe/containers/PNGMOVVideoDecoder.h"
#include "zanthe/containers/StructuredStorage.h"
#include "zanthe/containers/avi20/BasicInfoParser.h"
#include "zanthe/containers/avi20/FrameIndex.h"
#include "zanthe/containers/avi20/MediaStreamReader.h"
#include "zanthe/containers/avi20/MediaStreamReaderImpl.h"
#include "zanthe/containers/avi20/TypeOneIndex.h"
#include "zanthe/containers/avi20/TypeTwoIndex.h"

#if defined(__x86_64__)

namespace AVI20::Read {
namespace {

// A stream is deleted through its own type, a parser too.
static_assert(!std::has_virtual_destructor_v<IStream>);
static_assert(!std::has_virtual_destructor_v<ParserBase>);
static_assert(std::has_virtual_destructor_v<FrameInfo>);
static_assert(std::has_virtual_destructor_v<Index>);
static_assert(std::has_virtual_destructor_v<FrameIndex>);
static_assert(std::has_virtual_destructor_v<MediaStreamReader>);
static_assert(std::has_virtual_destructor_v<MediaStreamReaderImpl>);
static_assert(std::has_virtual_destructor_v<Sorbutl::StructuredStorage>);

static_assert(std::is_base_of_v<ParserBase, BasicInfoParser>);
static_assert(std::is_base_of_v<Index, TypeOneIndex> && std::is_base_of_v<Index, TypeTwoIndex>);
static_assert(std::is_base_of_v<FrameInfo, TypeOneFrameInfo>);
static_assert(std::is_base_of_v<FrameInfo, TypeTwoFrameInfo>);

// Whose order the factory's tests pin.
static_assert(std::is_base_of_v<Zanthe::VideoDecoder, OrirecScreenVideoDecoder>);
static_assert(std::is_base_of_v<Zanthe::VideoDecoder, BRECVideoDecoder>);
static_assert(std::is_base_of_v<Zanthe::VideoDecoder, PNGMOVVideoDecoder>);

TEST(OperationOrder, Streams) {
    EXPECT_EQ(SlotOf(&IStream::IsNull), 0);
    EXPECT_EQ(SlotOf(&IStream::Read), 1);
    EXPECT_EQ(SlotOf(&IStream::Position), 2);
    EXPECT_EQ(SlotOf(&IStream::Seek), 3);
    EXPECT_EQ(SlotOf(&IStream::SeekToEnd), 4);
    EXPECT_EQ(SlotOf(&IStream::Size), 5);
    EXPECT_EQ(SlotOf(&IStream::IsOpen), 6);
    EXPECT_EQ(SlotOf(&IStream::Rewind), 7);
}

TEST(OperationOrder, Parsers) {
    EXPECT_EQ(SlotOf(&ParserBase::OnChunk), 0);
    EXPECT_EQ(SlotOf(&ParserBase::OnChunkContents), 1);
    EXPECT_EQ(SlotOf(&ParserBase::ShouldSkipChunk), 2);
    EXPECT_EQ(SlotOf(&ParserBase::HasMoreChildren), 3);
    EXPECT_EQ(SlotOf(&ParserBase::OnListEnd), 4);
    EXPECT_EQ(SlotOf(&ParserBase::FormatChunk), 5);
}

// Behind the destructor, here and in the next two.
TEST(OperationOrder, Frames) {
    EXPECT_EQ(SlotOf(&FrameInfo::GetOffset), 2);
    EXPECT_EQ(SlotOf(&FrameInfo::GetSize), 3);
    EXPECT_EQ(SlotOf(&FrameInfo::IsKeyFrame), 4);
}

TEST(OperationOrder, Indexes) {
    EXPECT_EQ(SlotOf(&Index::GetFrameInfo), 2);
    EXPECT_EQ(SlotOf(&Index::GetFrameCount), 3);
    EXPECT_EQ(SlotOf(&Index::Load), 4);
    EXPECT_EQ(SlotOf(&Index::GetTotalBytes), 5);
    EXPECT_EQ(SlotOf(&Index::GetByteOffsetOfFrame), 6);
    EXPECT_EQ(SlotOf(&Index::GetFrameAtByteOffset), 7);
}

TEST(OperationOrder, MediaStreamReaders) {
    EXPECT_EQ(SlotOf(&MediaStreamReader::IsValid), 2);
    EXPECT_EQ(SlotOf(&MediaStreamReader::GetFrameCount), 3);
    EXPECT_EQ(SlotOf(&MediaStreamReader::GetFrameSize), 4);
    EXPECT_EQ(SlotOf(&MediaStreamReader::GetFrameOffset), 5);
    EXPECT_EQ(SlotOf(&MediaStreamReader::ReadFrame), 6);
    EXPECT_EQ(SlotOf(&MediaStreamReader::ReadBytes), 7);
    EXPECT_EQ(SlotOf(&MediaStreamReader::GetTotalBytes), 8);
    EXPECT_EQ(SlotOf(&MediaStreamReader::ReadFrameToNewBuffer), 9);
    EXPECT_EQ(SlotOf(&MediaStreamReader::GetStreamInfo), 10);
    EXPECT_EQ(SlotOf(&MediaStreamReader::IsKeyFrame), 11);
    EXPECT_EQ(SlotOf(&MediaStreamReader::FindKeyFrame), 12);
    EXPECT_EQ(SlotOf(&MediaStreamReader::GetDurationSeconds), 13);
}

} // namespace
} // namespace AVI20::Read

#endif
