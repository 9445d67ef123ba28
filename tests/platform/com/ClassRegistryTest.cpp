#include "platform/com/ClassRegistry.h"

#include <thread>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/mf/Attributes.h"
#include "platform/mf/Transform.h"

namespace {

constexpr CLSID HostClass = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};

HRESULT Create(REFCLSID classId, REFIID iid, void** object) {
    return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iid, object);
}

HRESULT MakeAttributes(REFIID iid, void** object) {
    com::ComPtr<IMFAttributes> attributes;
    const HRESULT result = MFCreateAttributes(attributes.Put(), 0);
    return FAILED(result) ? result : attributes->QueryInterface(iid, object);
}

// The class is nobody's again behind each case.
class ClassRegistry : public testing::Test {
protected:
    ~ClassRegistry() override { com::RegisterClass(HostClass, nullptr); }
};

TEST_F(ClassRegistry, MakesItsOwnClasses) {
    com::ComPtr<IMFTransform> converter;
    EXPECT_EQ(Create(CLSID_CColorConvertDMO, IID_IMFTransform, converter.PutVoid()), S_OK);
    EXPECT_TRUE(converter);
    void* other = &converter;
    EXPECT_EQ(Create(CLSID_CColorConvertDMO, IID_IMFAttributes, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
}

TEST_F(ClassRegistry, KnowsNoOthers) {
    void* object = this;
    EXPECT_EQ(Create(HostClass, IID_IUnknown, &object), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Create(HostClass, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ClassRegistry, RefusesToBePartOfAnother) {
    com::ComPtr<IMFTransform> outer;
    ASSERT_EQ(Create(CLSID_CColorConvertDMO, IID_IMFTransform, outer.PutVoid()), S_OK);
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_CColorConvertDMO, outer.Get(), CLSCTX_INPROC_SERVER,
                               IID_IMFTransform, &object),
              CLASS_E_NOAGGREGATION);
}

TEST_F(ClassRegistry, TakesClassesOfTheHost) {
    EXPECT_FALSE(com::RegisterClass(HostClass, MakeAttributes));
    com::ComPtr<IMFAttributes> attributes;
    EXPECT_EQ(Create(HostClass, IID_IMFAttributes, attributes.PutVoid()), S_OK);
    EXPECT_TRUE(com::RegisterClass(HostClass, nullptr));
    EXPECT_EQ(Create(HostClass, IID_IMFAttributes, attributes.PutVoid()), REGDB_E_CLASSNOTREG);
}

TEST_F(ClassRegistry, LetsTheHostReplaceAClassOfItsOwn) {
    com::RegisterClass(CLSID_CColorConvertDMO, [](REFIID, void**) { return E_ABORT; });
    com::ComPtr<IMFTransform> converter;
    EXPECT_EQ(Create(CLSID_CColorConvertDMO, IID_IMFTransform, converter.PutVoid()), E_ABORT);
    com::RegisterClass(CLSID_CColorConvertDMO, nullptr);
    EXPECT_EQ(Create(CLSID_CColorConvertDMO, IID_IMFTransform, converter.PutVoid()), S_OK);
}

TEST_F(ClassRegistry, TurnsAnExceptionOfAFactoryIntoAResult) {
    com::RegisterClass(HostClass, [](REFIID, void**) -> HRESULT { throw std::bad_alloc(); });
    void* object = nullptr;
    EXPECT_EQ(Create(HostClass, IID_IUnknown, &object), E_OUTOFMEMORY);
}

TEST_F(ClassRegistry, CountsHowOftenAThreadBegan) {
    std::thread([] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
        CoUninitialize();
        CoUninitialize();
        CoUninitialize(); // one too many changes nothing
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        CoUninitialize();
    }).join();
}

} // namespace
