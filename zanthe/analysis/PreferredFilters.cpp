#include "zanthe/analysis/PreferredFilters.h"

#include <mutex>
#include <utility>

#include "platform/dshow/GraphConfig.h"
#include "zanthe/analysis/Extension.h"

namespace {

constexpr PreferredFilter Mp4Demultiplexer{
    L"mc_demux_mp4_ds.ax",
    {0x2A55FF12, 0x1657, 0x41D7, {0x9D, 0x2D, 0xA2, 0xCD, 0xC6, 0x97, 0x8F, 0xF2}}};
constexpr PreferredFilter AacDecoder{
    L"mc_dec_aac_ds.ax",
    {0x19987CEE, 0xDEE8, 0x49DC, {0x98, 0xEC, 0xF2, 0x13, 0x80, 0xAA, 0x9E, 0x68}}};
constexpr PreferredFilter AvcDecoder{
    L"mc_dec_avc_ds.ax",
    {0x96B9D0ED, 0x8D13, 0x4171, {0xA9, 0x83, 0xB8, 0x4D, 0x88, 0xD6, 0x27, 0xBE}}};
constexpr PreferredFilter Mp2Demultiplexer{
    L"mc_demux_mp2_ds.ax",
    {0x136DCBF5, 0x3874, 0x4B70, {0xAE, 0x3E, 0x15, 0x99, 0x7D, 0x63, 0x34, 0xF7}}};

std::mutex hostMutex;
std::shared_ptr<IPreferredFilterHost> installedHost; // guarded by hostMutex

std::shared_ptr<IPreferredFilterHost> InstalledHost() {
    const std::lock_guard lock(hostMutex);
    return installedHost;
}

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

// Holds one reference.
template <typename Interface>
using Owned = std::unique_ptr<Interface, Releaser>;

// Null where it has no such interface.
Owned<IGraphConfig> ConfigOf(IUnknown* graphObject) {
    void* found = nullptr;
    if (graphObject == nullptr || graphObject->QueryInterface(IID_IGraphConfig, &found) < 0) {
        return nullptr;
    }
    return Owned<IGraphConfig>(static_cast<IGraphConfig*>(found));
}

} // namespace

std::vector<PreferredFilter> PreferredFiltersFor(const std::wstring& path) {
    const std::wstring extension = LowerTextBehindLastDot(path);
    if (extension == L"mp4" || extension == L"brec") {
        return {Mp4Demultiplexer, AacDecoder, AvcDecoder};
    }
    if (extension == L"mts" || extension == L"m2ts") {
        return {Mp2Demultiplexer, AvcDecoder};
    }
    return {};
}

std::shared_ptr<IPreferredFilterHost>
SetPreferredFilterHost(std::shared_ptr<IPreferredFilterHost> host) {
    const std::lock_guard lock(hostMutex);
    return std::exchange(installedHost, std::move(host));
}

void AddPreferredFilters(const std::wstring& path, IUnknown* graphObject) {
    const std::shared_ptr<IPreferredFilterHost> host = InstalledHost();
    if (host == nullptr) {
        return;
    }
    // All are made, also where there is no graph to take them.
    std::vector<Owned<IBaseFilter>> filters;
    for (const PreferredFilter& filter : PreferredFiltersFor(path)) {
        filters.emplace_back(host->CreateFilter(filter));
    }
    const Owned<IGraphConfig> graph = ConfigOf(filters.empty() ? nullptr : graphObject);
    for (const Owned<IBaseFilter>& filter : filters) {
        if (graph != nullptr && filter != nullptr) {
            graph->AddFilterToCache(filter.get());
        }
    }
}
