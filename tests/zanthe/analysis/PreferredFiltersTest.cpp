#include "zanthe/analysis/PreferredFilters.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/dshow/GraphConfig.h"
#include "tests/support/SlotOf.h"

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

// Counts its references; the tests own it.
class MadeFilter final : public IBaseFilter {
public:
    int references = 0;

    // IUnknown
    HRESULT QueryInterface(REFIID, void**) override { return -1; }

    ULONG AddRef() override { return static_cast<ULONG>(++references); }

    ULONG Release() override { return static_cast<ULONG>(--references); }
};

class RecordingHost : public IPreferredFilterHost {
public:
    // IPreferredFilterHost
    IBaseFilter* CreateFilter(const PreferredFilter& filter) override {
        made.emplace_back(filter.library, filter.classId);
        if (filter.classId == cannotMake) {
            return nullptr;
        }
        filters.push_back(std::make_unique<MadeFilter>());
        filters.back()->AddRef();
        return filters.back().get();
    }

    std::vector<Named> made;
    std::vector<std::unique_ptr<MadeFilter>> filters;
    GUID cannotMake{};
};

// A graph, with or without the interface that takes filters.
class Graph final : public IGraphConfig {
public:
    explicit Graph(bool takesFilters = true)
        : m_takesFilters(takesFilters) {}

    std::vector<IBaseFilter*> taken;
    std::vector<IID> asked;
    int references = 0;

    // IUnknown
    HRESULT QueryInterface(REFIID iid, void** object) override {
        asked.push_back(iid);
        *object = m_takesFilters ? static_cast<IGraphConfig*>(this) : nullptr;
        references += m_takesFilters ? 1 : 0;
        return m_takesFilters ? 0 : -1;
    }

    ULONG AddRef() override { return static_cast<ULONG>(++references); }

    ULONG Release() override { return static_cast<ULONG>(--references); }

    // IGraphConfig
    HRESULT Reconnect(IPin*, IPin*, const AM_MEDIA_TYPE*, IBaseFilter*, HANDLE, DWORD) override {
        return -1;
    }

    HRESULT Reconfigure(IGraphConfigCallback*, void*, DWORD, HANDLE) override { return -1; }

    HRESULT AddFilterToCache(IBaseFilter* filter) override {
        taken.push_back(filter);
        return -1; // which nobody asks
    }

private:
    bool m_takesFilters;
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

#if defined(__x86_64__)

// Behind the three of IUnknown it is the third.
TEST(PreferredFilters, TheOperationThatTakesThemIsTheThirdOfItsInterface) {
    EXPECT_EQ(SlotOf(&IGraphConfig::Reconnect), 3);
    EXPECT_EQ(SlotOf(&IGraphConfig::Reconfigure), 4);
    EXPECT_EQ(SlotOf(&IGraphConfig::AddFilterToCache), 5);
}

#endif

TEST(PreferredFilters, AGraphTakesThemInTheOrderInWhichTheyWereMade) {
    const InstalledHost installed;
    Graph graph;
    AddPreferredFilters(L"a.mp4", &graph);
    EXPECT_THAT(installed.host->made, ElementsAre(Mp4Demultiplexer, AacDecoder, AvcDecoder));
    const auto& filters = installed.host->filters;
    EXPECT_THAT(graph.taken, ElementsAre(filters[0].get(), filters[1].get(), filters[2].get()));
    EXPECT_THAT(graph.asked,
                ElementsAre(GUID{
                    0x03A1EB8E, 0x32BF, 0x4245, {0x85, 0x02, 0x11, 0x4D, 0x08, 0xA9, 0xCB, 0x88}}));
    EXPECT_EQ(graph.references, 0);
    for (const auto& filter : filters) {
        EXPECT_EQ(filter->references, 0);
    }
}

TEST(PreferredFilters, FiltersAreMadeWithoutAGraphToo) {
    const InstalledHost installed;
    AddPreferredFilters(L"a.mts", nullptr);
    EXPECT_THAT(installed.host->made, ElementsAre(Mp2Demultiplexer, AvcDecoder));
    EXPECT_EQ(installed.host->filters[0]->references, 0);
}

TEST(PreferredFilters, AGraphWithoutTheInterfaceTakesNone) {
    const InstalledHost installed;
    Graph graph(false);
    AddPreferredFilters(L"a.brec", &graph);
    EXPECT_EQ(installed.host->made.size(), 3U);
    EXPECT_THAT(graph.taken, IsEmpty());
    EXPECT_EQ(graph.references, 0);
}

TEST(PreferredFilters, AFilterThatCannotBeMadeIsLeftOut) {
    const InstalledHost installed;
    installed.host->cannotMake = AacDecoder.second;
    Graph graph;
    AddPreferredFilters(L"a.mp4", &graph);
    EXPECT_EQ(installed.host->made.size(), 3U);
    EXPECT_EQ(graph.taken.size(), 2U);
}

TEST(PreferredFilters, OtherExtensionsMakeNone) {
    const InstalledHost installed;
    Graph graph;
    AddPreferredFilters(L"a.wmv", &graph);
    EXPECT_THAT(installed.host->made, IsEmpty());
    EXPECT_THAT(graph.asked, IsEmpty());
}

TEST(PreferredFilters, WithoutAHostNothingHappens) {
    const auto host = std::make_shared<RecordingHost>();
    const auto before = SetPreferredFilterHost(host);
    EXPECT_EQ(SetPreferredFilterHost(nullptr), host);
    Graph graph;
    AddPreferredFilters(L"a.mp4", &graph);
    EXPECT_THAT(host->made, IsEmpty());
    EXPECT_THAT(graph.asked, IsEmpty());
    SetPreferredFilterHost(before);
}

} // namespace
