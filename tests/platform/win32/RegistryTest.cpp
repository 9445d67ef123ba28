#include "platform/win32/Registry.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace {

constexpr LPCWSTR Key = L"SOFTWARE\\Vendor\\Some Program\\9.0";

class Registry : public testing::Test {
protected:
    ~Registry() override { win32::SetRegistryFile(""); }

    void Use(const std::string& text) {
        win32::SetRegistryFile(m_folder.Write("registry.ini", text));
    }

    // A number in the key above; -1 when it is not there or is no number.
    static std::int64_t ReadNumber(HKEY root, LPCWSTR name) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(root, Key, 0, KEY_READ, &key) != ERROR_SUCCESS) {
            return -1;
        }
        DWORD type = 0;
        DWORD value = 0;
        DWORD size = sizeof(value);
        const LSTATUS status =
            RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<LPBYTE>(&value), &size);
        EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
        const bool number = status == ERROR_SUCCESS && type == REG_DWORD && size == 4;
        return number ? std::int64_t{value} : -1;
    }

    TemporaryFolder m_folder;
};

// Sets an environment variable for as long as it lives.
class Environment {
public:
    Environment(const char* name, const std::string& value)
        : m_name(name) {
        if (const char* before = std::getenv(name)) {
            m_before = before;
        }
        setenv(name, value.c_str(), 1);
    }

    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    ~Environment() { m_before.empty() ? unsetenv(m_name) : setenv(m_name, m_before.c_str(), 1); }

private:
    const char* m_name;
    std::string m_before;
};

const std::string OneNumber = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\Some Program\\9.0]\n"
                              "Mode = dword:0000002a\n";

TEST_F(Registry, ReadsANumber) {
    Use(OneNumber);
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
}

TEST_F(Registry, IgnoresTheCaseOfNames) {
    Use("[hkey_local_machine\\software\\VENDOR\\some program\\9.0]\nmODE=DWORD:2A\n");
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
}

TEST_F(Registry, RootsAreApart) {
    Use(OneNumber);
    EXPECT_EQ(ReadNumber(HKEY_CURRENT_USER, L"Mode"), -1);
}

TEST_F(Registry, FirstOfTwoValuesCounts) {
    Use(OneNumber + "Mode = dword:1\n");
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
}

TEST_F(Registry, AKeyInTwoSectionsIsOneKey) {
    Use(OneNumber + "[x]\ny=z\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\Some Program\\9.0]\n"
                    "More=dword:ffffffff\n");
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"More"), 0xFFFFFFFF);
}

TEST_F(Registry, AbsentMeansAbsent) {
    HKEY key = reinterpret_cast<HKEY>(this);
    win32::SetRegistryFile(m_folder / "none.ini");
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, Key, 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    Use(OneNumber);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Vendor", 0, KEY_READ, &key),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Other"), -1);
}

TEST_F(Registry, WhatIsNoWholeNumberIsText) {
    for (const char* value :
         {"1", "dword:", "dword:1x", "dword:100000000", "dword:-1", "dword: 1"}) {
        Use("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\Some Program\\9.0]\nMode = " +
            std::string(value) + "\n");
        EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), -1) << value;
    }
}

TEST_F(Registry, ReadsTextWithItsZero) {
    Use("[HKEY_CURRENT_USER\\K]\nEdition = \xC3\x89tude\n");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"K", 0, KEY_READ, &key), ERROR_SUCCESS);
    std::array<wchar_t, 16> text;
    text.fill(L'?');
    DWORD type = 0;
    DWORD size = sizeof(text);
    EXPECT_EQ(RegQueryValueExW(key, L"Edition", nullptr, &type,
                               reinterpret_cast<LPBYTE>(text.data()), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(size, 6 * sizeof(wchar_t));
    EXPECT_EQ(std::wstring(text.data()), L"\u00C9tude");
    EXPECT_EQ(text[6], L'?');
    RegCloseKey(key);
}

TEST_F(Registry, AsksForTheSizeFirst) {
    Use("[HKEY_CURRENT_USER\\K]\nMode = dword:1\n");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"K", 0, KEY_READ, &key), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, L"Mode", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(RegQueryValueExW(key, L"Mode", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    std::array<BYTE, 4> bytes{7, 7, 7, 7};
    size = 3;
    EXPECT_EQ(RegQueryValueExW(key, L"Mode", nullptr, nullptr, bytes.data(), &size),
              ERROR_MORE_DATA);
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(bytes, (std::array<BYTE, 4>{7, 7, 7, 7}));
    RegCloseKey(key);
}

TEST_F(Registry, RefusesWhatIsNoKey) {
    Use(OneNumber);
    HKEY key = nullptr;
    DWORD size = 0;
    BYTE byte = 0;
    EXPECT_EQ(RegOpenKeyExW(nullptr, Key, 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, nullptr, 0, KEY_READ, &key),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, Key, 0, KEY_READ, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(nullptr, L"Mode", nullptr, nullptr, nullptr, &size),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegQueryValueExW(HKEY_LOCAL_MACHINE, L"Mode", nullptr, nullptr, nullptr, &size),
              ERROR_INVALID_HANDLE);
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, Key, 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, &size),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(key, L"Mode", nullptr, nullptr, &byte, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
}

TEST_F(Registry, AChangedFileShowsAtTheNextOpen) {
    Use(OneNumber);
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
    Use("");
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), -1);
}

TEST_F(Registry, EnvironmentNamesTheFile) {
    const Environment file("ZANTHE_REGISTRY", m_folder.Write("elsewhere.ini", OneNumber));
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
}

TEST_F(Registry, ElseItIsInTheConfigurationFolder) {
    std::filesystem::create_directories(m_folder.Path() / ".config" / "zanthe");
    m_folder.Write(".config/zanthe/registry.ini", OneNumber);
    const Environment none("ZANTHE_REGISTRY", "");
    {
        const Environment folder("XDG_CONFIG_HOME", m_folder / ".config");
        EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
    }
    const Environment folder("XDG_CONFIG_HOME", "");
    const Environment home("HOME", m_folder.Path().string());
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, L"Mode"), 42);
}

} // namespace
