#pragma once
// A folder of the test program's own, removed at its end.

#include <filesystem>

namespace Orvi::Testing {

class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    const std::filesystem::path &Path() const { return path_; }

    /// One folder for the whole process.
    static const std::filesystem::path &OfProcess();

  private:
    std::filesystem::path path_;
};

} // namespace Orvi::Testing
