#pragma once
// The text of a parameter file, as people read and edit it:
//
//     OrviParameters 1 Virtual Camera
//     # a comment
//     Width=640
//     BalanceRatio[BalanceRatioSelector=Red]=1.25
//     UserDefinedName="left \"eye\""

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvi::U3v {

struct Parameter {
    std::string feature;
    std::vector<std::pair<std::string, std::string>> selectors; ///< name and value, the outermost first
    std::string value;
    std::size_t line = 0; ///< in the file, from 1
};

struct ParameterFile {
    std::string model;
    std::vector<Parameter> parameters;
};

/// "Gain[GainSelector=Red]"
std::string NameOf(const Parameter &parameter);

/// Each comment becomes a line of its own below the first.
std::string FormatParameters(const ParameterFile &file, const std::vector<std::string> &comments);

/// Throws GenApi::Error that names the file and the line.
ParameterFile ParseParameters(std::string_view text, const std::string &fileName);

[[noreturn]] void FailAtLine(const std::string &fileName, std::size_t line, const std::string &why);

} // namespace Orvi::U3v
