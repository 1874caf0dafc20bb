// User sets of another model's camera: its whole memory, by the names that its description has for the sets.

#include "vcam/Complaint.h"
#include "vcam/Foreign.h"

#include <sstream>
#include <stdexcept>
#include <zlib.h>

namespace Orvi::Vcam {

namespace {

constexpr const char *s_factory = "Default";

std::uint32_t Checksum(std::string_view text)
{
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(text.data()), static_cast<uInt>(text.size())));
}

} // namespace

GenCpStatus ForeignCamera::Execute(const std::string &command)
{
    if (command != "UserSetLoad" && command != "UserSetSave") {
        return features_.Execute(command);
    }
    const std::string name = nodes_.Symbol("UserSetSelector").value_or("UserSet1");
    if (command == "UserSetLoad") {
        return LoadUserSet(name);
    }
    if (name == s_factory) {
        return GenCpStatus::AccessDenied; // it is the factory's
    }
    userSets_[name] = memory_;
    isStateChanged_ = true;
    return GenCpStatus::Success;
}

GenCpStatus ForeignCamera::LoadUserSet(const std::string &name)
{
    // A set that was never saved holds what the factory's does.
    const auto set = userSets_.find(name);
    const ForeignMemory before = memory_;
    const auto selected = nodes_.Symbol("UserSetSelector"), byDefault = nodes_.Symbol("UserSetDefault");
    memory_ = set == userSets_.end() ? userSets_[s_factory] : set->second;
    GenCpStatus status = features_.Apply();
    if (status == GenCpStatus::Success) {
        status = features_.PassLut();
    }
    if (status != GenCpStatus::Success) {
        memory_ = before;
        return status;
    }
    nodes_.SetSymbol("UserSetSelector", selected.value_or(""));
    nodes_.SetSymbol("UserSetDefault", byDefault.value_or(""));
    features_.ShowResults();
    return GenCpStatus::Success;
}

/// A line for each byte that differs from the factory's set.
std::string ForeignCamera::Stored() const
{
    std::ostringstream text;
    text << std::hex << "xml " << Checksum(config_.xml) << '\n';
    const auto byDefault = nodes_.Symbol("UserSetDefault");
    text << "default " << byDefault.value_or(s_factory) << '\n';
    const auto factory = userSets_.find(s_factory);
    for (const auto &[name, set] : userSets_) {
        if (factory == userSets_.end() || name == s_factory) {
            continue;
        }
        text << "set " << name << '\n';
        for (const auto &[address, byte] : set.Differences(factory->second)) {
            text << address << ' ' << std::to_integer<unsigned>(byte) << '\n';
        }
    }
    return text.str();
}

void ForeignCamera::Restore()
{
    std::istringstream lines(std::exchange(toRestore_, {}));
    ForeignMemory *set = nullptr;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string first, second;
        words >> first >> second;
        if (first == "xml") {
            if (std::stoul(second, nullptr, 16) != Checksum(config_.xml)) {
                Complain("virtual camera " + config_.serial + ": " + config_.stateFile +
                         ": its user sets are of another description; the camera starts as from the factory");
                return;
            }
        } else if (first == "default") {
            defaultUserSet_ = second;
        } else if (first == "set") {
            set = &userSets_[second];
            *set = userSets_[s_factory];
        } else if (set != nullptr) {
            const std::byte byte{static_cast<unsigned char>(std::stoul(second, nullptr, 16))};
            set->Set(std::stoull(first, nullptr, 16), {&byte, 1});
        }
    }
}

std::optional<std::string> ForeignCamera::TakeState()
{
    return std::exchange(isStateChanged_, false) ? std::optional(Stored()) : std::nullopt;
}

} // namespace Orvi::Vcam
