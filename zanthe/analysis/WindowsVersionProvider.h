// The one question about the system that classification asks, as an object, so that a test can
// answer it.
#pragma once

namespace Zanthe {

// Thread-safety: safe from any thread; implementations keep no state.
class IWindowsVersionProvider {
public:
    IWindowsVersionProvider() = default;
    IWindowsVersionProvider(const IWindowsVersionProvider&) = delete;
    IWindowsVersionProvider& operator=(const IWindowsVersionProvider&) = delete;
    virtual ~IWindowsVersionProvider() = default;

    // Whether the system is version 6.2 or later.
    virtual bool IsWindows62OrLater() const = 0;
};

// Asks the system.
class WindowsVersionProvider : public IWindowsVersionProvider {
public:
    // IWindowsVersionProvider
    bool IsWindows62OrLater() const override;
};

} // namespace Zanthe
