// Which source filter opens a path in a filter graph.
#pragma once

#include <string>

#include "platform/com/Guid.h"

// Whether the program was installed in its alternate mode, under which its own filters are
// registered by other classes: value "InstallMode" of the key
// HKEY_LOCAL_MACHINE\SOFTWARE\Brannock\Oriel Studio\tp is a 32-bit number and 1. False otherwise
// and on any failure.
//
// Thread-safety: safe from any thread.
bool IsAlternateInstallMode();

// The class of the source filter for `path`, by a member of a legacy recording (".orirec!" anywhere
// in the path) or by the text behind the path's last dot, case ignored: the recording source, the
// file source, the Windows Media source or the image source. All zero where none is known. The
// file is not opened.
//
// Thread-safety: safe from any thread.
GUID SelectSourceFilter(const std::wstring& path);

// What a class that SelectSourceFilter answers is called, in words: "recording source",
// "file source", "Windows Media source", "image source" or "none" (all zero), under either mode of
// installation. Null for any other class. The text is a literal.
const char* SourceFilterName(const GUID& sourceFilter);
