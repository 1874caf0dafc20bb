#pragma once
// A file that appears whole or not at all.

#include <cstdio>
#include <filesystem>

namespace Orvi::Tool {

enum class IfExists { Refuse, Replace };

/// Makes its folder, writes beside the final name and takes that name in Commit(); without one no file is left behind.
class AtomicFile {
  public:
    /// Throws Failure(File) when the name is taken and must not be replaced, or when nothing can be written there.
    AtomicFile(std::filesystem::path path, IfExists ifExists);
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    std::FILE *Stream() const { return stream_; }
    /// Where the content goes until Commit(), for writers that want a name.
    const std::filesystem::path &Temporary() const { return temporary_; }

    /// Throws Failure(File) when not everything could be written, or when the name was taken meanwhile.
    void Commit();

  private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    IfExists ifExists_;
    std::FILE *stream_ = nullptr;
};

} // namespace Orvi::Tool
