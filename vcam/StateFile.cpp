#include "vcam/StateFile.h"

#include "vcam/Complaint.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <unistd.h>
#include <zlib.h>

namespace Orvi::Vcam {

namespace {

constexpr const char *s_head = "OrviVirtualCamera 1 ";

std::uint32_t Checksum(std::string_view text)
{
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(text.data()), static_cast<uInt>(text.size())));
}

/// Addresses and values: sets of cameras with other registers or sensors are no sets of this one.
std::uint32_t Checksum(const UserSet &set)
{
    std::ostringstream text;
    for (const auto &[address, value] : set) {
        text << address << ' ' << value << '\n';
    }
    return Checksum(text.str());
}

/// Names may have any bytes, line ends too.
std::string Digits(std::string_view text)
{
    std::string digits;
    for (const char c : text) {
        constexpr char digit[] = "0123456789ABCDEF";
        digits += digit[static_cast<unsigned char>(c) >> 4];
        digits += digit[static_cast<unsigned char>(c) & 0xF];
    }
    return digits;
}

std::string Undigits(const std::string &digits)
{
    std::string text;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        text += static_cast<char>(std::stoul(digits.substr(i, 2), nullptr, 16));
    }
    return text;
}

std::string Format(const std::string &serial, const StoredState &state)
{
    std::ostringstream text;
    text << std::uppercase << s_head << serial << '\n' << std::hex;
    text << "factory " << Checksum(state.userSets[0]) << '\n';
    text << "name " << Digits(state.userDefinedName) << '\n';
    text << "default " << state.defaultUserSet << '\n';
    if (!state.front.empty()) {
        text << "front " << Digits(state.front) << '\n';
    }
    for (std::size_t number = 1; number < state.userSets.size(); ++number) {
        const UserSet &set = state.userSets[number];
        if (set.empty()) {
            continue;
        }
        text << "set " << number << '\n';
        for (std::size_t i = 0; i < set.size(); ++i) {
            if (set[i] != state.userSets[0][i]) {
                text << set[i].first << ' ' << set[i].second << '\n';
            }
        }
    }
    const std::uint32_t checksum = Checksum(text.view());
    text << "end " << checksum << '\n';
    return text.str();
}

std::uint32_t &WordOf(UserSet &set, std::uint64_t address)
{
    for (auto &[word, value] : set) {
        if (word == address) {
            return value;
        }
    }
    throw std::runtime_error("a set has words that this camera does not have");
}

/// The checksum has been found right: what is written here is what Format() wrote.
void ParseLine(const std::string &line, StoredState &state, UserSet *&set)
{
    std::istringstream words(line);
    std::string first, second;
    words >> first >> second;
    const auto number = [&second] { return static_cast<std::uint32_t>(std::stoul(second, nullptr, 16)); };
    if (first == "factory") {
        if (number() != Checksum(state.userSets[0])) {
            throw std::runtime_error("it belongs to a camera with another sensor or other features");
        }
    } else if (first == "name") {
        state.userDefinedName = Undigits(second);
    } else if (first == "front") {
        state.front = Undigits(second);
    } else if (first == "default") {
        state.defaultUserSet = number();
        if (state.defaultUserSet >= state.userSets.size()) {
            throw std::runtime_error("it names a set that this camera does not have");
        }
    } else if (first == "set") {
        set = &state.userSets.at(number());
        *set = state.userSets[0];
    } else if (set != nullptr) {
        WordOf(*set, std::stoul(first, nullptr, 16)) = number();
    }
}

void Parse(const std::string &text, const std::string &serial, StoredState &state)
{
    const std::size_t end = text.rfind("end ");
    if (end == std::string::npos) {
        throw std::runtime_error("its end is missing");
    }
    std::ostringstream last;
    last << std::uppercase << std::hex << "end " << Checksum(std::string_view(text).substr(0, end)) << '\n';
    if (text.substr(end) != last.str()) {
        throw std::runtime_error("its checksum is wrong");
    }
    std::istringstream lines(text.substr(0, end));
    std::string line;
    std::getline(lines, line);
    if (line != s_head + serial) {
        throw std::runtime_error("it is not the file of this camera");
    }
    StoredState found;
    found.userSets[0] = state.userSets[0];
    UserSet *set = nullptr;
    while (std::getline(lines, line)) {
        ParseLine(line, found, set);
    }
    state = std::move(found);
}

void Tell(const std::string &serial, const std::string &path, const std::string &why, const char *outcome)
{
    Complain("virtual camera " + serial + ": " + path + ": " + why + "; " + outcome);
}

} // namespace

std::string StateFileOf(const std::string &serial)
{
    const char *folder = std::getenv(s_stateFolderVariable);
    if (folder == nullptr || *folder == '\0') {
        return "";
    }
    std::string name = serial;
    std::ranges::replace(name, '/', '_');
    return std::string(folder) + "/" + name + ".state";
}

void LoadState(const std::string &path, const std::string &serial, StoredState &state)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error) && !error) {
        return;
    }
    try {
        std::ifstream file(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        if (!file.is_open() || file.bad()) {
            throw std::runtime_error("it cannot be read");
        }
        Parse(text, serial, state);
    } catch (const std::exception &failure) {
        Tell(serial, path, failure.what(),
             "the camera starts as from the factory, and the next set that it saves replaces the file");
    }
}

void SaveState(const std::string &path, const std::string &serial, const StoredState &state)
{
    try {
        const std::filesystem::path place(path);
        if (place.has_parent_path()) {
            std::filesystem::create_directories(place.parent_path());
        }
        const std::string temporary = path + '.' + std::to_string(getpid()) + ".tmp";
        std::ofstream file(temporary, std::ios::binary);
        file << Format(serial, state);
        file.close();
        if (!file) {
            std::filesystem::remove(temporary);
            throw std::runtime_error("it cannot be written");
        }
        std::filesystem::rename(temporary, path);
    } catch (const std::exception &failure) {
        Tell(serial, path, failure.what(), "what the camera stores is kept for the life of this process only");
    }
}

} // namespace Orvi::Vcam
