#include "tests/u3v/TestSignal.h"
#include "u3v/core/Handles.h"
#include "u3v/core/LastError.h"
#include "u3v/core/Log.h"
#include "u3v/core/Signal.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

namespace Orvi::Test {
namespace {

using namespace U3v;

using Table = HandleTable<int, HandleKind::Stream, CAM_API_STS_INVALID_STREAM_HANDLE>;

CAM_API_STATUS StatusOf(const std::function<void()> &call)
{
    try {
        call();
        return CAM_API_STS_SUCCESS;
    } catch (const StatusError &error) {
        return error.Status();
    }
}

TEST(Handles, NameWhatWasInsertedUntilItIsRemoved)
{
    Table table;
    const auto a = table.Insert(std::make_shared<int>(1)), b = table.Insert(std::make_shared<int>(2));
    EXPECT_EQ(*table.Get(a), 1);
    EXPECT_EQ(*table.Get(b), 2);
    EXPECT_EQ(*table.Remove(a), 1);
    EXPECT_EQ(StatusOf([&] { table.Get(a); }), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(StatusOf([&] { table.Remove(a); }), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(*table.Get(b), 2);
}

TEST(Handles, ReusedSlotHasAnotherHandle)
{
    Table table;
    const auto a = table.Insert(std::make_shared<int>(1));
    table.Remove(a);
    const auto b = table.Insert(std::make_shared<int>(2));
    EXPECT_NE(a, b);
    EXPECT_EQ(HandleParts::Of(a).slot, HandleParts::Of(b).slot);
    EXPECT_EQ(StatusOf([&] { table.Get(a); }), CAM_API_STS_INVALID_STREAM_HANDLE);
}

TEST(Handles, MadeUpOnesAreRefused)
{
    Table table;
    const auto a = table.Insert(std::make_shared<int>(1));
    HandleTable<int, HandleKind::Event, CAM_API_STS_INVALID_EVENT_HANDLE> other;
    other.Insert(std::make_shared<int>(3));
    EXPECT_EQ(StatusOf([&] { other.Get(a); }), CAM_API_STS_INVALID_EVENT_HANDLE);
    for (const std::uint64_t handle :
         {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX, a + 1, a ^ (std::uint64_t{1} << 40)})
        EXPECT_EQ(StatusOf([&] { table.Get(handle); }), CAM_API_STS_INVALID_STREAM_HANDLE) << handle;
}

TEST(Handles, NodeHandleNamesItsCameraAndNumber)
{
    const std::uint64_t camera = HandleParts{HandleKind::Camera, 0xABCDEF, 0x123}.Handle();
    const std::uint64_t node = NodeHandleParts{camera, 0x54321}.Handle();
    EXPECT_TRUE(NodeHandleParts::IsNode(node));
    EXPECT_FALSE(NodeHandleParts::IsNode(camera));
    EXPECT_EQ(NodeHandleParts::Of(node).camera, camera);
    EXPECT_EQ(NodeHandleParts::Of(node).id, 0x54321U);
}

TEST(LastError, ThreadSeesItsOwnFailureFirst)
{
    SetLastGenICamError("[A] mine");
    const char *mine = LastGenICamError();
    std::thread([] {
        EXPECT_STREQ(LastGenICamError(), "[A] mine");
        for (int i = 0; i < 62; ++i)
            SetLastGenICamError("[B] other");
        EXPECT_STREQ(LastGenICamError(), "[B] other");
    }).join();
    EXPECT_EQ(LastGenICamError(), mine);
    EXPECT_STREQ(mine, "[A] mine");
}

TEST(Signal, IsSetOnlyWhenItIsAlive)
{
    TestSignal signal;
    SetSignal(nullptr);
    SetSignal(signal.Handle());
    EXPECT_TRUE(signal.Wait());
    SignalRecord dead{};
    SetSignal(&dead);
    EXPECT_EQ(dead.signalled, 0U);
}

class LogTest : public testing::Test {
  protected:
    ~LogTest() override { std::remove(path.c_str()); }
    std::string Text() const
    {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string path = testing::TempDir() + "u3v-log-test.txt";
    Log log;
};

TEST_F(LogTest, FileTakesLinesFromItsLevelOn)
{
    log.StartFile(path.c_str(), false, CAM_LOG_LEVEL_WARN);
    EXPECT_EQ(StatusOf([&] { log.StartRing(100, 0); }), CAM_API_STS_ALREADY_INITIALIZED);
    log.Write(CAM_LOG_LEVEL_INFO, "not this");
    log.Write(CAM_LOG_LEVEL_WARN, "this one");
    log.Stop();
    log.StartFile(path.c_str(), true, CAM_LOG_LEVEL_WARN);
    log.Write(CAM_LOG_LEVEL_ERROR, "and this");
    log.Stop();
    EXPECT_EQ(Text().find("not this"), std::string::npos);
    EXPECT_NE(Text().find("WARN  this one\n"), std::string::npos) << Text();
    EXPECT_NE(Text().find("ERROR and this\n"), std::string::npos) << Text();
    EXPECT_EQ(StatusOf([&] { log.Stop(); }), CAM_API_STS_UNSUCCESSFUL);
}

TEST_F(LogTest, RingKeepsTheNewest)
{
    EXPECT_EQ(StatusOf([&] { log.Save(path.c_str()); }), CAM_API_STS_UNSUCCESSFUL);
    EXPECT_EQ(StatusOf([&] { log.StartRing(0, 0); }), CAM_API_STS_INVALID_PARAMETER);
    log.StartRing(200, CAM_LOG_LEVEL_DEBUG);
    for (int i = 0; i < 100; ++i)
        log.Write(CAM_LOG_LEVEL_DEBUG, ("line " + std::to_string(i)).c_str());
    log.Save(path.c_str());
    EXPECT_EQ(Text().size(), 200U);
    EXPECT_TRUE(Text().ends_with("line 99\n")) << Text();
    EXPECT_EQ(Text().find("line 5\n"), std::string::npos);
    log.Clear();
    log.Save(path.c_str());
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(StatusOf([&] { log.Save("/nowhere/at/all"); }), CAM_API_STS_FILE_OPEN_ERROR);
    log.Stop();
}

} // namespace
} // namespace Orvi::Test
