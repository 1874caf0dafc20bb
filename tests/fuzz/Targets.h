#pragma once
// What the fuzzers, and the test that replays their corpora, feed with bytes: one function for each reader of bytes
// that come from outside. Each returns whatever the bytes are; what must never be ends the process: a sanitizer's
// finding, an exception that the reader does not promise, a broken Require().

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace Orvi::Fuzz {

using Input = std::span<const std::byte>;

void Description(Input input); ///< GenICam XML, then every node of it
void Formula(Input input);     ///< compiled and evaluated
void Archive(Input input);     ///< a manifest entry and the stored description
void Host(Input input);        ///< the transport opens a device that answers anything
void Server(Input input);      ///< any commands to the virtual camera
void Image(Input input);       ///< leader, payload and trailer
void Event(Input input);       ///< a packet of the event interface
void Parameters(Input input);  ///< a parameter file
void CameraFile(Input input);  ///< the file that describes virtual cameras
void ModelFile(Input input);   ///< another model's description for a virtual camera
void ImageFile(Input input);   ///< an image in front of a virtual camera

/// A folder of corpus/ is named as its target.
struct Target {
    std::string_view name;
    void (*run)(Input);
};

constexpr Target targets[] = {
    {"Description", Description}, {"Formula", Formula},     {"Archive", Archive},     {"Host", Host},
    {"Server", Server},           {"Image", Image},         {"Event", Event},         {"Parameters", Parameters},
    {"CameraFile", CameraFile},   {"ImageFile", ImageFile}, {"ModelFile", ModelFile},
};

inline void Require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace Orvi::Fuzz
