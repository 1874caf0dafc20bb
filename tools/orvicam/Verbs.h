#pragma once
// What orvicam can do. Each verb prints to standard output and throws a Failure.

#include "AtomicFile.h"
#include "ImageFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::Tool {

/// The command line.
struct Options {
    std::vector<std::string> cameras; ///< names; empty when none was given
    std::optional<unsigned> virtualCameras;
    bool json = false;

    std::vector<std::string> features; ///< of get
    bool bare = false;

    std::vector<std::string> assignments; ///< "Name=value" or "Command", of set and grab
    std::uint64_t count = 1;
    std::string output = ".";
    std::optional<FileFormat> format;
    unsigned timeout = 5000; ///< ms
    IfExists ifExists = IfExists::Refuse;
};

void List(const Options &options);
void Info(const Options &options);
void Get(const Options &options);
void Set(const Options &options);
void Grab(const Options &options);

} // namespace Orvi::Tool
