#pragma once
// What a camera keeps without power, and the text file that keeps it from one process to the next:
//
//     OrviVirtualCamera 1 VC000001
//     factory 5D1F0A37
//     name 6C656674
//     default 3
//     set 3
//     20407C 384
//     end 8E1A22B0
//
// A set has a line for each word that differs from the factory's; numbers of words are hexadecimal. `factory` and `end`
// are checksums: of the set that the others are told against, and of all before. Another model's camera has a line
// `front` with what its own registers keep.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvi::Vcam {

/// Addresses and values of all settings; empty when it was never saved.
using UserSet = std::vector<std::pair<std::uint64_t, std::uint32_t>>;

struct StoredState {
    std::string userDefinedName;
    std::uint32_t defaultUserSet = 0;
    std::array<UserSet, 16> userSets; ///< 0 is the factory's
    std::string front{};              ///< what another model's front keeps
};

/// The variable that names the folder of the state files of all virtual cameras.
inline constexpr const char *s_stateFolderVariable = "ORVI_VIRTUAL_CAMERAS_STATE";
/// The file of a camera in that folder; empty when the variable is not set.
std::string StateFileOf(const std::string &serial);

/// These tell on standard error what is wrong with the file, and go on without it. A file that is not there is no
/// failure: the camera is new. Nothing of a damaged file is taken.
void LoadState(const std::string &path, const std::string &serial, StoredState &state);
/// The file is whole at every moment, and its folder is made when it is missing.
void SaveState(const std::string &path, const std::string &serial, const StoredState &state);

} // namespace Orvi::Vcam
