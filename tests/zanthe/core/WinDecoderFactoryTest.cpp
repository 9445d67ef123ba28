#include "zanthe/core/WinDecoderFactory.h"

#include <stdexcept>
#include <vector>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mf/DXGIDeviceManager.h"
#include "platform/win32/Version.h"
#include "tests/zanthe/core/NamedDecoder.h"
#include "tests/zanthe/core/PlainReader.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

class NamedReader final : public PlainReader {
public:
    explicit NamedReader(std::string name)
        : m_name(std::move(name)) {}

    const std::string& Name() const { return m_name; }

private:
    std::string m_name;
};

// What the backends are to do, and what they were asked.
struct Script {
    bool movIsPng = false;
    bool mediaFoundationFails = false;
    bool chainManagerFails = false;
    std::string decoderFailure; // thrown by the decoders, unless empty

    std::vector<std::string> calls;
    std::vector<IMFDXGIDeviceManager*> deviceManagers;
    std::vector<boost::shared_ptr<IDSChainManager>> chainManagers;

    // Stands for a manager of chains, by its address and count alone.
    boost::shared_ptr<int> manager = boost::make_shared<int>(0);
};

class ScriptedRoutes final : public IDecoderRoutes {
public:
    explicit ScriptedRoutes(Script& script)
        : m_script(script) {}

    // IDecoderRoutes
    std::unique_ptr<VideoDecoder>
    CreateLegacyRecording(const std::string& containerPath) const override {
        return Decoder("legacy " + containerPath);
    }

    std::unique_ptr<VideoDecoder> CreateRecording(const std::string& path,
                                                  int streamIndex) const override {
        return Decoder("brec " + path + " " + std::to_string(streamIndex));
    }

    std::unique_ptr<VideoDecoder> CreatePngMov(const std::string& path,
                                               int streamIndex) const override {
        auto decoder = Decoder("png " + path + " " + std::to_string(streamIndex));
        return m_script.movIsPng ? std::move(decoder) : nullptr;
    }

    std::unique_ptr<VideoDecoder> CreateGif(const std::string& path) const override {
        return Decoder("gif " + path);
    }

    std::unique_ptr<VideoSampleReader>
    CreateMediaFoundation(const std::string& path, int streamIndex, DecoderOutputFormat format,
                          IMFDXGIDeviceManager* deviceManager) const override {
        m_script.deviceManagers.push_back(deviceManager);
        auto reader = Reader("mf " + path + " " + std::to_string(streamIndex) + " format " +
                             std::to_string(static_cast<int>(format)));
        return m_script.mediaFoundationFails ? nullptr : std::move(reader);
    }

    std::unique_ptr<VideoSampleReader>
    CreateDirectShow(const std::string& path, int streamIndex, bool deferInitialization,
                     const boost::shared_ptr<IDSChainManager>& chainManager) const override {
        m_script.chainManagers.push_back(chainManager);
        return Reader("ds " + path + " " + std::to_string(streamIndex) +
                      (deferInitialization ? " deferred" : ""));
    }

    boost::shared_ptr<IDSChainManager> CreateChainManager() const override {
        if (m_script.chainManagerFails) {
            throw std::runtime_error("no worker thread");
        }
        m_script.calls.push_back("chain manager");
        return {m_script.manager, reinterpret_cast<IDSChainManager*>(m_script.manager.get())};
    }

private:
    std::unique_ptr<VideoDecoder> Decoder(const std::string& call) const {
        m_script.calls.push_back(call);
        if (!m_script.decoderFailure.empty()) {
            throw std::runtime_error(m_script.decoderFailure);
        }
        return std::make_unique<NamedDecoder>(call);
    }

    std::unique_ptr<VideoSampleReader> Reader(const std::string& call) const {
        m_script.calls.push_back(call);
        return std::make_unique<NamedReader>(call);
    }

    Script& m_script;
};

// A device manager that counts its references and does nothing else.
class CountedDeviceManager : public IMFDXGIDeviceManager {
public:
    virtual ~CountedDeviceManager() = default;

    int references = 1;
    int added = 0;

    // IUnknown
    HRESULT QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return -1;
    }

    ULONG AddRef() override {
        ++added;
        return static_cast<ULONG>(++references);
    }

    ULONG Release() override { return static_cast<ULONG>(--references); }

    // IMFDXGIDeviceManager
    HRESULT CloseDeviceHandle(HANDLE) override { return -1; }

    HRESULT GetVideoService(HANDLE, REFIID, void**) override { return -1; }

    HRESULT LockDevice(HANDLE, REFIID, void**, BOOL) override { return -1; }

    HRESULT OpenDeviceHandle(HANDLE*) override { return -1; }

    HRESULT ResetDevice(IUnknown*, UINT) override { return -1; }

    HRESULT TestDevice(HANDLE) override { return -1; }

    HRESULT UnlockDevice(HANDLE, BOOL) override { return -1; }
};

class Dispatch : public testing::Test {
protected:
    void TearDown() override { win32::SetSystemVersion({}); }

    std::unique_ptr<WinDecoderFactory> Make(IMFDXGIDeviceManager* deviceManager = nullptr) {
        auto factory =
            std::make_unique<WinDecoderFactory>(m_format, deviceManager, m_useMediaFoundation,
                                                std::make_unique<ScriptedRoutes>(m_script));
        m_script.calls.clear();
        return factory;
    }

    // What the reader for `path` is: a backend's call, "adapter over" a decoder's, or "null".
    std::string Open(const std::string& path, int streamIndex = 0, bool defer = false) {
        const std::unique_ptr<VideoSampleReader> reader(
            Make()->CreateVideoSampleReader(path, streamIndex, defer));
        if (const auto* named = dynamic_cast<NamedReader*>(reader.get())) {
            return named->Name();
        }
        if (const auto* adapter = dynamic_cast<VideoDecoderToVideoSampleReader*>(reader.get())) {
            return "adapter over " +
                   dynamic_cast<NamedDecoder&>(*adapter->internalVideoDecoder()).Name();
        }
        return reader == nullptr ? "null" : "something else";
    }

    std::string FailureOf(const std::string& path) {
        try {
            return Open(path);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    Script m_script;
    DecoderOutputFormat m_format = DecoderOutputFormat::DeviceArgb32;
    bool m_useMediaFoundation = true;
};

TEST_F(Dispatch, Recordings) {
    EXPECT_EQ(Open("/x/a.brec", 3), "adapter over brec /x/a.brec 3");
    EXPECT_EQ(Open("c:\\x\\A.BREC", -1), "adapter over brec c:\\x\\A.BREC -1");
}

TEST_F(Dispatch, AGifWithAnyStream) {
    EXPECT_EQ(Open("a.gif", 0), "adapter over gif a.gif");
    EXPECT_EQ(Open("a.GIF", 17), "adapter over gif a.GIF");
    EXPECT_EQ(Open("a.Gif", -5), "adapter over gif a.Gif");
}

TEST_F(Dispatch, OnlyWholeExtensionsCount) {
    EXPECT_EQ(Open("a.gifs"), "ds a.gifs 0");
    EXPECT_EQ(Open("a.gi"), "ds a.gi 0");
    EXPECT_EQ(Open("a.brecx"), "ds a.brecx 0");
    EXPECT_EQ(Open("a.gif.avi"), "ds a.gif.avi 0");
    EXPECT_EQ(Open("a.gif "), "ds a.gif  0");
}

TEST_F(Dispatch, APngMovIsOpenedTwice) {
    m_script.movIsPng = true;
    EXPECT_EQ(Open("a.MOV", 1), "adapter over png a.MOV 1");
    EXPECT_THAT(m_script.calls, ElementsAre("png a.MOV 1", "png a.MOV 1"));
}

TEST_F(Dispatch, AMovThatIsNoPngGoesOn) {
    EXPECT_EQ(Open("a.mov", 2), "mf a.mov 2 format 0");
    EXPECT_THAT(m_script.calls, ElementsAre("png a.mov 2", "mf a.mov 2 format 0"));
}

TEST_F(Dispatch, OtherFilesAreNotTriedAsPng) {
    m_script.movIsPng = true;
    EXPECT_EQ(Open("a.mp4"), "mf a.mp4 0 format 0");
    EXPECT_EQ(Open("a.avi"), "ds a.avi 0");
    EXPECT_THAT(m_script.calls, ElementsAre("ds a.avi 0"));
}

TEST_F(Dispatch, LegacyScreenRecordings) {
    EXPECT_EQ(Open("c:\\x\\a.orirec!Screen_Stream.avi", 5), "adapter over legacy c:\\x\\a.orirec");
    EXPECT_EQ(Open("/x/\u00e9.orirec!Screen_Stream.avi"), "adapter over legacy /x/\u00e9.orirec");
    EXPECT_EQ(Open("/x/\xff.orirec!Screen_Stream.avi"), "adapter over legacy /x/\xff.orirec");
}

TEST_F(Dispatch, OtherMembersOfLegacyRecordingsGoOn) {
    EXPECT_EQ(Open("a.orirec!Camera_Stream.wmv"), "ds a.orirec!Camera_Stream.wmv 0");
    EXPECT_EQ(Open("a.orirec!screen_stream.avi"), "ds a.orirec!screen_stream.avi 0");
    EXPECT_EQ(Open("a.orirec"), "ds a.orirec 0");
    EXPECT_EQ(Open("a.orirec!other.gif"), "adapter over gif a.orirec!other.gif");
}

// The test for video decoders takes any member of a recording, their creation only few.
TEST_F(Dispatch, MembersOfRecordingsHaveNoDecoder) {
    const std::string text =
        "DecoderFactory::CreateVideoDecoder: Couldn't find a decoder to match extension = ";
    EXPECT_EQ(FailureOf("/x/a.brec!video0.mp4"), text + "mp4");
    EXPECT_EQ(FailureOf("/x/a.BREC!video0.MP4"), text + "MP4");
    EXPECT_EQ(FailureOf("/x/a.brec!track0.bsc2"), text + "bsc2");
    EXPECT_EQ(FailureOf("/x/a.brec!b/c"), text + "brec!b/c");
    EXPECT_EQ(FailureOf("/x/a.brec!b.mov"), text + "mov");
    EXPECT_THAT(m_script.calls, ElementsAre("png /x/a.brec!b.mov 0"));
}

TEST_F(Dispatch, MembersOfRecordingsWithAnExtensionOfTheirOwn) {
    EXPECT_EQ(FailureOf("a.brec!b.gif"), "adapter over gif a.brec!b.gif");
    EXPECT_EQ(FailureOf("a.brec!b.brec"), "adapter over brec a.brec!b.brec 0");
    // The two lists differ in order too: here the legacy member comes first.
    EXPECT_EQ(FailureOf("a.brec!Screen_Stream.avi"), "adapter over legacy a.brec");
}

TEST_F(Dispatch, WithoutADotThereIsNoVideoDecoder) {
    EXPECT_EQ(Open("gif"), "ds gif 0");
    EXPECT_EQ(Open(""), "ds  0");
    EXPECT_EQ(Open("/x/brec"), "ds /x/brec 0");
    const auto factory = Make();
    EXPECT_FALSE(factory->IsHandledByVideoDecoder("", 0));
    EXPECT_FALSE(factory->IsHandledByVideoDecoder("gif", 0));
}

TEST_F(Dispatch, TheLastDotMayBeAFolders) {
    EXPECT_EQ(Open("/x.y/z"), "ds /x.y/z 0");
    EXPECT_EQ(Open("/x.gif/z"), "ds /x.gif/z 0");
    EXPECT_EQ(FailureOf("/x.brec!/z"), "DecoderFactory::CreateVideoDecoder: Couldn't find a "
                                       "decoder to match extension = brec!/z");
}

TEST_F(Dispatch, CreationWithoutADotThrows) {
    try {
        Make()->CreateVideoDecoder("/x/name", 0);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "DecoderFactory::CreateVideoDecoder: Can't create decoder for a "
                                   "filename that has no extension. FileName = /x/name");
    }
}

TEST_F(Dispatch, CreationOfAnUnknownExtensionThrows) {
    try {
        Make()->CreateVideoDecoder("a.b.Xyz", 0);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "DecoderFactory::CreateVideoDecoder: Couldn't find a decoder to "
                                   "match extension = Xyz");
    }
}

TEST_F(Dispatch, MediaFoundationTakesFormatAndStream) {
    m_format = DecoderOutputFormat::MemoryNv12;
    EXPECT_EQ(Open("a.mp4", 7), "mf a.mp4 7 format 2");
    EXPECT_EQ(Open("a.MOV", -1), "mf a.MOV -1 format 2");
}

TEST_F(Dispatch, MediaFoundationForVideoSamplesOnly) {
    EXPECT_EQ(Open("a.wmv"), "ds a.wmv 0");
    EXPECT_EQ(Open("a.mts"), "ds a.mts 0");
    EXPECT_EQ(Open("a.avi"), "ds a.avi 0");
}

TEST_F(Dispatch, MediaFoundationCanBeForbidden) {
    m_useMediaFoundation = false;
    EXPECT_EQ(Open("a.mp4", 1), "ds a.mp4 1");
    EXPECT_EQ(Open("a.gif"), "adapter over gif a.gif");
}

TEST_F(Dispatch, AnOlderSystemHasNoMediaFoundationForMp4) {
    win32::SetSystemVersion({6, 1, 0});
    EXPECT_EQ(Open("a.mp4"), "ds a.mp4 0");
    win32::SetSystemVersion({6, 2, 0});
    EXPECT_EQ(Open("a.mp4"), "mf a.mp4 0 format 0");
}

TEST_F(Dispatch, ANullFromMediaFoundationIsTheAnswer) {
    m_script.mediaFoundationFails = true;
    EXPECT_EQ(Open("a.mp4"), "null");
    EXPECT_THAT(m_script.calls, ElementsAre("mf a.mp4 0 format 0"));
}

TEST_F(Dispatch, DirectShowTakesStreamAndFlag) {
    EXPECT_EQ(Open("a.avi", 4, true), "ds a.avi 4 deferred");
    EXPECT_EQ(Open("a.avi", 4, false), "ds a.avi 4");
}

TEST_F(Dispatch, ADecodersFailurePassesThrough) {
    m_script.decoderFailure = "broken";
    EXPECT_EQ(FailureOf("a.gif"), "broken");
    EXPECT_EQ(FailureOf("a.brec"), "broken");
    EXPECT_EQ(FailureOf("a.orirec!Screen_Stream.avi"), "broken");
}

TEST_F(Dispatch, DirectShowReadersShareOneManager) {
    auto factory = Make();
    delete factory->CreateVideoSampleReader("a.avi", 0, false);
    delete factory->CreateVideoSampleReader("b.mpg", 0, true);
    ASSERT_EQ(m_script.chainManagers.size(), 2U);
    EXPECT_NE(m_script.chainManagers[0], nullptr);
    EXPECT_EQ(m_script.chainManagers[0], m_script.chainManagers[1]);
    EXPECT_THAT(m_script.calls, ElementsAre("ds a.avi 0", "ds b.mpg 0 deferred"));
}

TEST_F(Dispatch, TheManagerGoesWithItsLastOwner) {
    auto factory = Make();
    delete factory->CreateVideoSampleReader("a.avi", 0, false);
    factory.reset();
    EXPECT_EQ(m_script.manager.use_count(), 2); // the script's and the reader's
    m_script.chainManagers.clear();
    EXPECT_EQ(m_script.manager.use_count(), 1);
}

TEST_F(Dispatch, TheDeviceManagersOneReferenceIsTheFactorys) {
    CountedDeviceManager deviceManager;
    auto factory = Make(&deviceManager);
    delete factory->CreateVideoSampleReader("a.mp4", 0, false);
    delete factory->CreateVideoSampleReader("b.mp4", 0, false);
    EXPECT_THAT(m_script.deviceManagers, ElementsAre(&deviceManager, &deviceManager));
    EXPECT_EQ(deviceManager.references, 1);
    factory.reset();
    EXPECT_EQ(deviceManager.references, 0);
    EXPECT_EQ(deviceManager.added, 0);
}

TEST_F(Dispatch, AFailedFactoryLeavesTheReferenceWithItsCaller) {
    CountedDeviceManager deviceManager;
    m_script.chainManagerFails = true;
    EXPECT_THROW(Make(&deviceManager), std::runtime_error);
    EXPECT_EQ(deviceManager.references, 1);
}

TEST_F(Dispatch, TheExportedFactoryTakesOverTheReferenceToo) {
    CountedDeviceManager deviceManager;
    delete DecoderFactory::Create(DecoderOutputFormat::MemoryArgb32, &deviceManager, true);
    EXPECT_EQ(deviceManager.references, 0);
    EXPECT_EQ(deviceManager.added, 0);
}

TEST_F(Dispatch, AnH264ReaderHoldsTheDeviceManagerItself) {
    CountedDeviceManager deviceManager;
    std::unique_ptr<DecoderFactory> factory(
        DecoderFactory::Create(DecoderOutputFormat::DeviceArgb32, &deviceManager, true));
    std::unique_ptr<VideoSampleReader> reader(
        factory->CreateVideoSampleReader("none.mp4", 0, false));
    factory.reset();
    EXPECT_EQ(deviceManager.references, 1);
    reader.reset();
    EXPECT_EQ(deviceManager.references, 0);
}

} // namespace
} // namespace Zanthe
