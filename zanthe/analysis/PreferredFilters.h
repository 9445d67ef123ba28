// The vendor filters that a graph is offered for a file before it looks for others.
//
// What they are and where they go is decided here; only making filters is the graph layer's, which
// stands behind IPreferredFilterHost.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/com/Guid.h"

struct IBaseFilter;
struct IUnknown;

struct PreferredFilter {
    const wchar_t* library; // file that makes it, by its own DllGetClassObject; a literal
    GUID classId;
};

// Those for `path`, in the order in which they are made and handed over, by the text behind its
// last dot, case ignored: demultiplexer, AAC and H.264 decoder for "mp4" and "brec", demultiplexer
// and H.264 decoder for "mts" and "m2ts", none for anything else. The file is not opened.
std::vector<PreferredFilter> PreferredFiltersFor(const std::wstring& path);

class IPreferredFilterHost {
public:
    IPreferredFilterHost() = default;
    IPreferredFilterHost(const IPreferredFilterHost&) = delete;
    IPreferredFilterHost& operator=(const IPreferredFilterHost&) = delete;
    virtual ~IPreferredFilterHost() = default;

    // A new filter, with one reference for the caller; null where it cannot be made. May be called
    // from several threads at once.
    virtual IBaseFilter* CreateFilter(const PreferredFilter& filter) = 0;
};

// Puts `host` behind AddPreferredFilters, for the whole process, and answers the one that stood
// there; empty is none, as at the start. A call that is under way keeps the host that it began
// with.
std::shared_ptr<IPreferredFilterHost>
SetPreferredFilterHost(std::shared_ptr<IPreferredFilterHost> host);

// Has the host make all of PreferredFiltersFor(path), in their order. Then, where graphObject
// (borrowed, may be null) has the interface IGraphConfig, each is added to its cache in the same
// order; one that could not be made is left out. Reports nothing. Does nothing when those are none
// or when there is no host.
//
// Thread-safety: this and the two above are safe from any thread.
void AddPreferredFilters(const std::wstring& path, IUnknown* graphObject);
