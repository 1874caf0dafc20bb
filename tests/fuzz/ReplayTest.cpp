// Runs the fuzzers' targets on their corpora: seeds, and inputs that once found a mistake.

#include "tests/fuzz/Targets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Orvi::Fuzz {
namespace {

namespace fs = std::filesystem;

const fs::path corpus = ORVI_FUZZ_CORPUS;

std::vector<fs::path> FilesOf(const Target &target)
{
    std::vector<fs::path> files;
    for (const auto &entry : fs::directory_iterator(corpus / target.name))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string Read(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class ReplayTest : public testing::TestWithParam<Target> {};

TEST_P(ReplayTest, EveryInputIsTaken)
{
    const auto files = FilesOf(GetParam());
    ASSERT_FALSE(files.empty());
    for (const fs::path &file : files) {
        SCOPED_TRACE(file);
        const std::string text = Read(file);
        // A copy of its own size, so that a sanitizer sees what reads beyond the end.
        const std::vector<char> bytes(text.begin(), text.end());
        EXPECT_NO_THROW(GetParam().run(std::as_bytes(std::span(bytes))));
    }
}

TEST_P(ReplayTest, EverySeedIsTakenWhereverItIsCut)
{
    for (const fs::path &file : FilesOf(GetParam())) {
        const std::string text = Read(file);
        const std::size_t step = std::max<std::size_t>(text.size() / 16, 1);
        for (std::size_t size = 0; size < text.size(); size += step) {
            SCOPED_TRACE(file.string() + ", first " + std::to_string(size) + " bytes");
            const std::vector<char> bytes(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_NO_THROW(GetParam().run(std::as_bytes(std::span(bytes))));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, ReplayTest, testing::ValuesIn(targets),
                         [](const auto &target) { return std::string(target.param.name); });

TEST(CorpusTest, EveryFolderHasItsTarget)
{
    for (const auto &folder : fs::directory_iterator(corpus))
        EXPECT_TRUE(std::any_of(std::begin(targets), std::end(targets), [&](const Target &target) {
            return target.name == folder.path().filename().string();
        })) << folder.path();
}

} // namespace
} // namespace Orvi::Fuzz
