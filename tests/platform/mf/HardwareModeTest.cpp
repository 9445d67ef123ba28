#include <gtest/gtest.h>

#include "platform/av/Picture.h"
#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/MediaFormats.h"
#include "tests/platform/mf/Readers.h"
#include "tests/platform/mf/ScriptedDevice.h"
#include "tests/support/TestMedia.h"

namespace {

com::ComPtr<IMFSourceReader> OpenOn(IMFDXGIDeviceManager* manager) {
    auto attributes = ProcessingAttributes();
    attributes->SetUINT32(MF_READWRITE_ENABLE_HARDWARE_TRANSFORMS, 1);
    attributes->SetUnknown(MF_SOURCE_READER_D3D_MANAGER, manager);
    auto reader = OpenReader(MadeMedia("h264/plain.mp4"), attributes);
    EXPECT_EQ(reader->SetCurrentMediaType(kVideo, nullptr, VideoType(MFVideoFormat_ARGB32).Get()),
              S_OK);
    return reader;
}

com::ComPtr<IMFMediaBuffer> FirstBuffer(IMFSourceReader& reader) {
    com::ComPtr<IMFMediaBuffer> buffer;
    const ReadResult read = ReadNext(reader);
    EXPECT_TRUE(read.sample);
    EXPECT_EQ(read.sample->GetBufferByIndex(0, buffer.Put()), S_OK);
    return buffer;
}

ULONG CountOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

TEST(HardwareMode, BuffersAnswerWhenTheDeviceTakesThem) {
    const auto device = com::MakeOwned<ScriptedDevice>(S_OK);
    com::ComPtr<IHardwareSurface> surface;
    {
        const auto manager = ManagerOf(device.Get());
        const auto reader = OpenOn(manager.Get());
        const auto buffer = FirstBuffer(*reader);
        const auto onDevice = buffer.As<IMFDXGIBuffer>(IID_IMFDXGIBuffer);
        ASSERT_TRUE(onDevice);
        UINT part = 1;
        EXPECT_EQ(onDevice->GetSubresourceIndex(&part), S_OK);
        EXPECT_EQ(part, 0U);
        EXPECT_EQ(onDevice->GetResource(IID_IHardwareSurface, surface.PutVoid()), S_OK);
        EXPECT_EQ(onDevice.As<IUnknown>(IID_IUnknown).Get(),
                  buffer.As<IUnknown>(IID_IUnknown).Get());
        BYTE* bytes = nullptr;
        DWORD length = 0;
        EXPECT_EQ(buffer->Lock(&bytes, nullptr, &length), S_OK); // it can be had in memory too
        EXPECT_EQ(length, 4U * 192 * 144);
        EXPECT_EQ(buffer->Unlock(), S_OK);
    }
    // The surface stands as long as somebody has it.
    const void* frame = nullptr;
    ASSERT_EQ(surface->GetFrame(&frame), S_OK);
    EXPECT_EQ(static_cast<const AVFrame*>(frame)->width, 192);
    EXPECT_EQ(CountOf(*device), 1U);
}

TEST(HardwareMode, FallsBackToMemory) {
    com::ComPtr<IMFDXGIDeviceManager> empty;
    UINT token = 0;
    ASSERT_EQ(MFCreateDXGIDeviceManager(&token, empty.Put()), S_OK);
    com::ComPtr<IMFSample> foreign; // no device at all
    ASSERT_EQ(MFCreateSample(foreign.Put()), S_OK);
    const auto declining = com::MakeOwned<ScriptedDevice>(S_FALSE);
    const auto failing = com::MakeOwned<ScriptedDevice>(E_FAIL);
    for (const auto& manager : {empty, ManagerOf(foreign.Get()), ManagerOf(declining.Get()),
                                ManagerOf(failing.Get()), com::ComPtr<IMFDXGIDeviceManager>()}) {
        const auto reader = OpenOn(manager.Get());
        const auto buffer = FirstBuffer(*reader);
        EXPECT_FALSE(buffer.As<IMFDXGIBuffer>(IID_IMFDXGIBuffer));
        BYTE* bytes = nullptr;
        EXPECT_EQ(buffer->Lock(&bytes, nullptr, nullptr), S_OK);
        EXPECT_EQ(buffer->Unlock(), S_OK);
    }
}

// Where the machine has one.
TEST(HardwareMode, DecodesOnARealDevice) {
    bool found = false;
    for (const auto type : {HARDWARE_DEVICE_VAAPI, HARDWARE_DEVICE_CUDA}) {
        com::ComPtr<IUnknown> device;
        if (FAILED(CreateHardwareDevice(type, device.Put()))) {
            continue;
        }
        found = true;
        const auto reader = OpenOn(ManagerOf(device.Get()).Get());
        const auto onDevice = PixelsOf(*ReadNext(*reader).sample);
        const auto memory = OpenPixels(MadeMedia("h264/plain.mp4"), MFVideoFormat_ARGB32);
        const auto inMemory = PixelsOf(*ReadNext(*memory).sample);
        ASSERT_EQ(onDevice.size(), inMemory.size());
        int furthest = 0;
        for (std::size_t i = 0; i < onDevice.size(); ++i) {
            furthest = std::max(furthest, std::abs(onDevice[i] - inMemory[i]));
        }
        EXPECT_LE(furthest, 2);
    }
    if (!found) {
        GTEST_SKIP() << "no graphics device here";
    }
}

TEST(HardwareMode, RefusesUnknownDevices) {
    com::ComPtr<IUnknown> device;
    EXPECT_EQ(CreateHardwareDevice(static_cast<HARDWARE_DEVICE_TYPE>(0), device.Put()),
              E_INVALIDARG);
    EXPECT_EQ(CreateHardwareDevice(HARDWARE_DEVICE_CUDA, nullptr), E_POINTER);
}

} // namespace
