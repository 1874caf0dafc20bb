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
    std::vector<std::string> cameras;          ///< names; empty when none was given
    std::optional<std::string> virtualCameras; ///< how many, or the file that describes them
    bool json = false;

    std::vector<std::string> features; ///< of get and describe
    bool bare = false;
    bool all = false;      ///< features: also those for gurus and for nobody
    bool writable = false; ///< values: only what set takes now

    std::vector<std::string> assignments; ///< "Name=value" or "Command", of set, grab and events
    std::uint64_t count = 1;
    std::string output = ".";
    std::optional<FileFormat> format;
    unsigned timeout = 5000; ///< ms
    IfExists ifExists = IfExists::Refuse;

    std::vector<std::string> events;         ///< names or globs
    std::optional<std::uint64_t> eventCount; ///< until Ctrl-C when not given
    std::optional<unsigned> eventTimeout;    ///< ms
    bool stream = true;                      ///< take images, so that there are events of them

    std::string file; ///< of save, load and vcam check
    bool defectivePixels = false;

    std::string root = "/"; ///< of doctor: where /sys, /dev and /etc are looked for
};

void List(const Options &options);
void Info(const Options &options);
void Get(const Options &options);
void Set(const Options &options);
void Grab(const Options &options);
void Events(const Options &options);
void Features(const Options &options);
void Values(const Options &options);
void Describe(const Options &options);
void Save(const Options &options);
void Load(const Options &options);
void VcamCheck(const Options &options);
void Doctor(const Options &options);

} // namespace Orvi::Tool
