#include "platform/win32/Registry.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/win32/IniFile.h"
#include "platform/win32/Text.h"

namespace win32 {

// An open key: its values as they stood when it was opened.
struct RegistryKey {
    std::vector<IniValue> values;
};

namespace {

std::mutex registryFileMutex;
std::string registryFile; // guarded by registryFileMutex

std::string EnvironmentText(const char* name) {
    const char* text = std::getenv(name);
    return text != nullptr ? text : "";
}

std::string ConfigurationFolder() {
    if (std::string folder = EnvironmentText("XDG_CONFIG_HOME"); !folder.empty()) {
        return folder;
    }
    return EnvironmentText("HOME") + "/.config";
}

std::string RegistryFile() {
    {
        const std::lock_guard lock(registryFileMutex);
        if (!registryFile.empty()) {
            return registryFile;
        }
    }
    if (std::string file = EnvironmentText("ZANTHE_REGISTRY"); !file.empty()) {
        return file;
    }
    return ConfigurationFolder() + "/zanthe/registry.ini";
}

char LowerAscii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool SameName(std::string_view one, std::string_view other) {
    const auto same = [](char a, char b) { return LowerAscii(a) == LowerAscii(b); };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), same);
}

std::string_view RootName(HKEY root) {
    if (root == HKEY_CURRENT_USER) {
        return "HKEY_CURRENT_USER";
    }
    return root == HKEY_LOCAL_MACHINE ? "HKEY_LOCAL_MACHINE" : "";
}

std::vector<IniValue> ValuesOf(const std::string& key) {
    std::ifstream file(RegistryFile());
    std::vector<IniValue> values = ReadIni(file);
    std::erase_if(values, [&](const IniValue& value) { return !SameName(value.section, key); });
    return values;
}

std::optional<DWORD> Number(std::string_view text) {
    constexpr std::string_view mark = "dword:";
    if (!SameName(text.substr(0, mark.size()), mark)) {
        return std::nullopt;
    }
    text.remove_prefix(mark.size());
    DWORD number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

struct Data {
    DWORD type;
    std::vector<BYTE> bytes;
};

template <typename T>
Data DataOf(DWORD type, const T* values, std::size_t count) {
    Data data{type, std::vector<BYTE>(count * sizeof(T))};
    std::memcpy(data.bytes.data(), values, data.bytes.size());
    return data;
}

Data DataOf(const IniValue& value) {
    if (const auto number = Number(value.value)) {
        return DataOf(REG_DWORD, &*number, 1);
    }
    const std::wstring text = Utf8ToWide(value.value);
    return DataOf(REG_SZ, text.c_str(), text.size() + 1);
}

LSTATUS Deliver(const Data& data, LPDWORD type, LPBYTE buffer, LPDWORD size) {
    if (type != nullptr) {
        *type = data.type;
    }
    if (size == nullptr) {
        return ERROR_SUCCESS;
    }
    const DWORD capacity = *size;
    *size = static_cast<DWORD>(data.bytes.size());
    if (buffer == nullptr) {
        return ERROR_SUCCESS;
    }
    if (capacity < data.bytes.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(buffer, data.bytes.data(), data.bytes.size());
    return ERROR_SUCCESS;
}

} // namespace

void SetRegistryFile(const std::string& path) {
    const std::lock_guard lock(registryFileMutex);
    registryFile = path;
}

} // namespace win32

LSTATUS RegOpenKeyExW(HKEY root, LPCWSTR subKey, DWORD, REGSAM, HKEY* result) {
    if (subKey == nullptr || result == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    *result = nullptr;
    const std::string rootName(win32::RootName(root));
    if (rootName.empty()) {
        return ERROR_INVALID_HANDLE;
    }
    auto values = win32::ValuesOf(rootName + '\\' + win32::WideToUtf8(subKey));
    if (values.empty()) {
        return ERROR_FILE_NOT_FOUND;
    }
    *result = std::make_unique<win32::RegistryKey>(win32::RegistryKey{std::move(values)}).release();
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (key == nullptr || !win32::RootName(key).empty()) {
        return ERROR_INVALID_HANDLE;
    }
    if (name == nullptr || (data != nullptr && size == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::string wanted = win32::WideToUtf8(name);
    for (const win32::IniValue& value : key->values) {
        if (win32::SameName(value.name, wanted)) {
            return win32::Deliver(win32::DataOf(value), type, data, size);
        }
    }
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS RegCloseKey(HKEY key) {
    if (key == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    if (win32::RootName(key).empty()) {
        const std::unique_ptr<win32::RegistryKey> owner(key);
    }
    return ERROR_SUCCESS;
}
