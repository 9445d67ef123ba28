#include <atomic>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/OnAllThreads.h"
#include "tests/zanthe/core/CountedReader.h"
#include "tests/zanthe/core/NamedDecoder.h"
#include "zanthe/core/WinDecoderFactory.h"

class IDSChainManager {};

namespace Zanthe {
namespace {

// Backends without state of their own: what is shared is the factory's.
class PlainRoutes final : public IDecoderRoutes {
public:
    explicit PlainRoutes(std::atomic<int>& living)
        : m_living(living) {}

    // IDecoderRoutes
    std::unique_ptr<VideoDecoder> CreateLegacyRecording(const std::string&) const override {
        return std::make_unique<NamedDecoder>("plain");
    }

    std::unique_ptr<VideoDecoder> CreateRecording(const std::string&, int) const override {
        return std::make_unique<NamedDecoder>("plain");
    }

    std::unique_ptr<VideoDecoder> CreatePngMov(const std::string&, int) const override {
        return nullptr;
    }

    std::unique_ptr<VideoDecoder> CreateGif(const std::string&) const override {
        throw std::runtime_error("no picture");
    }

    std::unique_ptr<VideoSampleReader> CreateMediaFoundation(const std::string&, int,
                                                             DecoderOutputFormat,
                                                             IMFDXGIDeviceManager*) const override {
        return std::make_unique<CountedReader>(m_living);
    }

    std::unique_ptr<VideoSampleReader>
    CreateDirectShow(const std::string&, int, bool,
                     const boost::shared_ptr<IDSChainManager>& manager) const override {
        EXPECT_NE(manager, nullptr);
        return std::make_unique<CountedReader>(m_living);
    }

    boost::shared_ptr<IDSChainManager> CreateChainManager() const override {
        return boost::shared_ptr<IDSChainManager>(new IDSChainManager);
    }

private:
    std::atomic<int>& m_living;
};

TEST(WinDecoderFactoryThreads, OneFactoryServesThemAll) {
    std::atomic<int> living = 0;
    WinDecoderFactory factory(DecoderOutputFormat::DeviceArgb32, nullptr, true,
                              std::make_unique<PlainRoutes>(living));
    const auto open = [&factory](const char* path) {
        return std::unique_ptr<VideoSampleReader>(factory.CreateVideoSampleReader(path, 0, false));
    };
    OnAllThreads(4, [&open](int) {
        for (int round = 0; round < 200; ++round) {
            for (const char* path :
                 {"a.mp4", "a.mov", "a.avi", "a.brec", "a.orirec!Screen_Stream.avi"}) {
                EXPECT_EQ(open(path)->outputWidth(), 4);
            }
            EXPECT_THROW(open("a.gif"), std::runtime_error);
        }
    });
    EXPECT_EQ(living, 0);
}

} // namespace
} // namespace Zanthe
