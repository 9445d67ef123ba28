#pragma once

#include "zanthe/analysis/WindowsVersionProvider.h"

// A system that is version 6.2 or later, or is not, as the test wants it.
class FixedVersion : public Zanthe::IWindowsVersionProvider {
public:
    explicit FixedVersion(bool newer)
        : m_newer(newer) {}

    // IWindowsVersionProvider
    bool IsWindows62OrLater() const override { return m_newer; }

private:
    bool m_newer;
};
