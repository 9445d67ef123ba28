#include "tests/support/ReferencePictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "tests/support/PlanarFormat.h"

namespace {

constexpr std::size_t MostBytesKept = 300U << 20;

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

// The word behind `key` in a line of "key: value key:value".
std::string WordAfter(const std::string& line, const std::string& key) {
    const auto found = line.find(" " + key);
    if (found == std::string::npos) {
        return {};
    }
    const auto begin = line.find_first_not_of(' ', found + 1 + key.size());
    if (begin == std::string::npos) {
        return {};
    }
    return line.substr(begin, line.find_first_of(" ,\n", begin) - begin);
}

Zanthe::MediaTime FractionIn(const std::string& text) {
    const auto slash = text.find('/');
    return {std::stoll(text), std::stoll(text.substr(slash + 1))};
}

} // namespace

ReferencePictures::ReferencePictures(const std::string& path, std::size_t most)
    : m_pixels(m_folder / "pixels") {
    const std::string report = m_folder / "report";
    // Neither turned nor scaled nor repeated nor dropped, nor without the attached pictures' V.
    const std::string command =
        "ffmpeg -nostdin -hide_banner -nostats -loglevel info -copyts -noautorotate -i " +
        Quoted(path) + " -map 0:V:0 -vf showinfo=checksum=0 -vsync passthrough -autoscale 0" +
        " -frames:v " + std::to_string(most) + " -f rawvideo -y " + Quoted(m_pixels) + " 2>" +
        Quoted(report);
    const int status = std::system(command.c_str()); // NOLINT(cert-env33-c): a test runs a program
    if (status == -1 || !std::filesystem::exists(report)) {
        throw std::runtime_error("cannot run ffmpeg");
    }
    ReadReport(report);
    DropWhatHasNoPixels();
    m_shortened = m_pictures.size() >= most;
}

void ReferencePictures::ReadReport(const std::string& report) {
    std::ifstream file(report);
    Zanthe::MediaTime unit(1);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("[Parsed_showinfo", 0) != 0) {
            continue;
        }
        if (line.find("config in time_base") != std::string::npos) {
            unit = FractionIn(WordAfter(line, "time_base:"));
        } else if (line.find("] n:") != std::string::npos) {
            ReadPicture(line, unit);
        } else if (line.find("color_range:") != std::string::npos && !m_pictures.empty()) {
            m_pictures.back().range = WordAfter(line, "color_range:");
            m_pictures.back().matrix = WordAfter(line, "color_space:");
        }
    }
}

void ReferencePictures::ReadPicture(const std::string& line, Zanthe::MediaTime unit) {
    Entry entry;
    const std::string time = WordAfter(line, "pts:");
    const std::string size = WordAfter(line, "s:");
    entry.timed = time != "NOPTS";
    if (entry.timed) {
        entry.time = unit * static_cast<std::int64_t>(std::stoll(time));
    }
    entry.width = std::stoi(size);
    entry.height = std::stoi(size.substr(size.find('x') + 1));
    entry.format = WordAfter(line, "fmt:");
    if (!m_pictures.empty()) {
        const Entry& last = m_pictures.back();
        const auto format = PlanarFormat::Named(last.format);
        entry.offset = last.offset + (format ? format->PictureBytes(last.width, last.height) : 0);
    }
    m_pictures.push_back(entry);
}

// The filter may have seen a picture more than was written.
void ReferencePictures::DropWhatHasNoPixels() {
    std::error_code missing;
    const auto size = std::filesystem::file_size(m_pixels, missing);
    while (!m_pictures.empty() && HasPixels()) {
        const Entry& last = m_pictures.back();
        const auto bytes = PlanarFormat::Named(last.format)->PictureBytes(last.width, last.height);
        if (!missing && last.offset + bytes <= size) {
            break;
        }
        m_pictures.pop_back();
    }
}

bool ReferencePictures::HasTimes() const {
    return std::all_of(m_pictures.begin(), m_pictures.end(),
                       [](const Entry& entry) { return entry.timed; });
}

bool ReferencePictures::HasPixels() const {
    return std::all_of(m_pictures.begin(), m_pictures.end(), [](const Entry& entry) {
        return PlanarFormat::Named(entry.format).has_value();
    });
}

Zanthe::MediaTime ReferencePictures::Time(std::size_t index) const {
    return m_pictures.at(index).time - m_pictures.front().time;
}

std::vector<std::uint8_t> ReferencePictures::RawPicture(const Entry& entry) const {
    std::vector<std::uint8_t> raw(
        PlanarFormat::Named(entry.format)->PictureBytes(entry.width, entry.height));
    std::ifstream file(m_pixels, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(entry.offset));
    file.read(reinterpret_cast<char*>(raw.data()), // NOLINT: bytes are read as chars
              static_cast<std::streamsize>(raw.size()));
    if (!file) {
        throw std::runtime_error("cannot read the pixels of " + m_pixels);
    }
    return raw;
}

BgraPicture ReferencePictures::Convert(const Entry& entry) const {
    return ConvertPlanar(*PlanarFormat::Named(entry.format), ColourWords{entry.matrix, entry.range},
                         RawPicture(entry), entry.width, entry.height);
}

const BgraPicture& ReferencePictures::Pixels(std::size_t index) const {
    const auto kept = m_converted.find(index);
    if (kept != m_converted.end()) {
        return kept->second;
    }
    BgraPicture picture = Convert(m_pictures.at(index));
    if (m_convertedBytes > MostBytesKept) {
        m_converted.clear();
        m_convertedBytes = 0;
    }
    m_convertedBytes += picture.bits.size();
    return m_converted.emplace(index, std::move(picture)).first->second;
}
