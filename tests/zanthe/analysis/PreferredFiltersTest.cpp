#include "zanthe/analysis/PreferredFilters.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Named = std::pair<std::wstring, GUID>;

const Named Mp4Demultiplexer{
    L"mc_demux_mp4_ds.ax",
    {0x2A55FF12, 0x1657, 0x41D7, {0x9D, 0x2D, 0xA2, 0xCD, 0xC6, 0x97, 0x8F, 0xF2}}};
const Named AacDecoder{
    L"mc_dec_aac_ds.ax",
    {0x19987CEE, 0xDEE8, 0x49DC, {0x98, 0xEC, 0xF2, 0x13, 0x80, 0xAA, 0x9E, 0x68}}};
const Named AvcDecoder{
    L"mc_dec_avc_ds.ax",
    {0x96B9D0ED, 0x8D13, 0x4171, {0xA9, 0x83, 0xB8, 0x4D, 0x88, 0xD6, 0x27, 0xBE}}};
const Named Mp2Demultiplexer{
    L"mc_demux_mp2_ds.ax",
    {0x136DCBF5, 0x3874, 0x4B70, {0xAE, 0x3E, 0x15, 0x99, 0x7D, 0x63, 0x34, 0xF7}}};

std::vector<Named> Names(const std::vector<PreferredFilter>& filters) {
    std::vector<Named> names;
    for (const PreferredFilter& filter : filters) {
        names.emplace_back(filter.library, filter.classId);
    }
    return names;
}

class RecordingHost : public IPreferredFilterHost {
public:
    // IPreferredFilterHost
    void AddFilters(const std::vector<PreferredFilter>& filters, IUnknown* graphObject) override {
        calls.emplace_back(Names(filters), graphObject);
    }

    std::vector<std::pair<std::vector<Named>, IUnknown*>> calls;
};

class InstalledHost {
public:
    InstalledHost()
        : m_before(SetPreferredFilterHost(host)) {}

    InstalledHost(const InstalledHost&) = delete;
    InstalledHost& operator=(const InstalledHost&) = delete;

    ~InstalledHost() { SetPreferredFilterHost(m_before); }

    const std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();

private:
    std::shared_ptr<IPreferredFilterHost> m_before;
};

TEST(PreferredFilters, ByExtension) {
    for (const wchar_t* path : {L"d:\\a.mp4", L"a.MP4", L"a.brec", L"a.Brec", L"mp4"}) {
        EXPECT_THAT(Names(PreferredFiltersFor(path)),
                    ElementsAre(Mp4Demultiplexer, AacDecoder, AvcDecoder));
    }
    for (const wchar_t* path : {L"d:\\a.mts", L"a.m2ts", L"a.M2TS", L"a.MTS"}) {
        EXPECT_THAT(Names(PreferredFiltersFor(path)), ElementsAre(Mp2Demultiplexer, AvcDecoder));
    }
    for (const wchar_t* path : {L"a.mov", L"a.m4a", L"a.ts", L"a.avi", L"a.orirec", L"a", L""}) {
        EXPECT_THAT(Names(PreferredFiltersFor(path)), IsEmpty());
    }
}

TEST(PreferredFilters, TheHostAddsThemToTheGraph) {
    const InstalledHost installed;
    auto* graph = reinterpret_cast<IUnknown*>(this);
    AddPreferredFilters(L"a.mts", graph);
    ASSERT_EQ(installed.host->calls.size(), 1U);
    EXPECT_THAT(installed.host->calls[0].first, ElementsAre(Mp2Demultiplexer, AvcDecoder));
    EXPECT_EQ(installed.host->calls[0].second, graph);
}

TEST(PreferredFilters, FiltersAreMadeWithoutAGraphToo) {
    const InstalledHost installed;
    AddPreferredFilters(L"a.brec", nullptr);
    ASSERT_EQ(installed.host->calls.size(), 1U);
    EXPECT_EQ(installed.host->calls[0].second, nullptr);
}

TEST(PreferredFilters, OtherExtensionsDoNotReachTheHost) {
    const InstalledHost installed;
    AddPreferredFilters(L"a.wmv", nullptr);
    EXPECT_THAT(installed.host->calls, IsEmpty());
}

TEST(PreferredFilters, WithoutAHostNothingHappens) {
    const auto host = std::make_shared<RecordingHost>();
    const auto before = SetPreferredFilterHost(host);
    EXPECT_EQ(SetPreferredFilterHost(nullptr), host);
    AddPreferredFilters(L"a.mp4", nullptr);
    EXPECT_THAT(host->calls, IsEmpty());
    SetPreferredFilterHost(before);
}

} // namespace
