// Subclasses and hosts rely on the order of the virtual operations: one that moves breaks them
// without any other sign.
#include <type_traits>

#include <gtest/gtest.h>

#include "tests/support/SlotOf.h"
#include "zanthe/analysis/IStreamReader.h"
#include "zanthe/analysis/MP4Parser.h"
#include "zanthe/analysis/MP4ParserBase.h"
#include "zanthe/analysis/MP4ParserFindOrientation.h"
#include "zanthe/analysis/MP4ParserFindStreamTypes.h"

#if defined(__x86_64__)

// The finders let it see what is only theirs to call.
struct MP4OperationOrder {
    static void CheckOrientation() {
        EXPECT_EQ(SlotOf(&MP4ParserFindOrientation::tkhd), 6);
        EXPECT_EQ(SlotOf(&MP4ParserFindOrientation::mvhd), 7);
        EXPECT_EQ(SlotOf(&MP4ParserFindOrientation::hdlr), 8);
    }

    static void CheckStreamTypes() {
        EXPECT_EQ(SlotOf(&MP4ParserFindStreamTypes::stsd), 6);
        EXPECT_EQ(SlotOf(&MP4ParserFindStreamTypes::hdlr), 7);
        EXPECT_EQ(SlotOf(&MP4ParserFindStreamTypes::tkhd), 8);
    }

    static void CheckTracks() {
        EXPECT_EQ(SlotOf(&DSMediaDetNS::MP4Parser::mvhd), 6);
        EXPECT_EQ(SlotOf(&DSMediaDetNS::MP4Parser::tkhd), 7);
        EXPECT_EQ(SlotOf(&DSMediaDetNS::MP4Parser::hdlr), 8);
        EXPECT_EQ(SlotOf(&DSMediaDetNS::MP4Parser::stsd), 9);
    }
};

namespace {

// Opens what a subclass may override.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and never made
class OpenBase final : public MP4ParserBase {
public:
    using MP4ParserBase::GetIndent;
    using MP4ParserBase::IsContainer;
    using MP4ParserBase::OnBoxBegin;
    using MP4ParserBase::OnBoxEnd;
    using MP4ParserBase::OnLeafBox;
    using MP4ParserBase::ParseBox;
};

static_assert(std::has_virtual_destructor_v<IStreamReader>);
static_assert(!std::has_virtual_destructor_v<MP4ParserBase>);
static_assert(!std::has_virtual_destructor_v<MP4ParserFindOrientation>);
static_assert(!std::has_virtual_destructor_v<MP4ParserFindStreamTypes>);
static_assert(!std::has_virtual_destructor_v<DSMediaDetNS::MP4Parser>);

TEST(OperationOrder, IStreamReader) {
    EXPECT_EQ(SlotOf(&IStreamReader::Open), 2);
    EXPECT_EQ(SlotOf(&IStreamReader::Read), 3);
    EXPECT_EQ(SlotOf(&IStreamReader::GetSize), 4);
    EXPECT_EQ(SlotOf(&IStreamReader::Seek), 5);
    EXPECT_EQ(SlotOf(&IStreamReader::GetPosition), 6);
}

TEST(OperationOrder, MP4ParserBase) {
    EXPECT_EQ(SlotOf(&OpenBase::GetIndent), 0);
    EXPECT_EQ(SlotOf(&OpenBase::IsContainer), 1);
    EXPECT_EQ(SlotOf(&OpenBase::OnBoxBegin), 2);
    EXPECT_EQ(SlotOf(&OpenBase::OnBoxEnd), 3);
    EXPECT_EQ(SlotOf(&OpenBase::OnLeafBox), 4);
    EXPECT_EQ(SlotOf(&OpenBase::ParseBox), 5);
}

// Behind the six of their base.
TEST(OperationOrder, MP4Finders) {
    MP4OperationOrder::CheckOrientation();
    MP4OperationOrder::CheckStreamTypes();
    MP4OperationOrder::CheckTracks();
}

} // namespace

#endif
