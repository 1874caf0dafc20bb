// User sets: what is selected, executed and waited for, in order.

#include "tests/features/FeatureTest.h"

#include "features/UserSet.h"

namespace Orvi::Testing {

using Stub::Entry;

class UserSetTest : public FeatureTest {
  protected:
    UserSetTest()
    {
        for (const char *name : {"UserSetSelector", "UserSetLoad", "UserSetSave", "UserSetDefault"})
            stub.nodes[name];
        stub.nodes["UserSetDone"].boolValue = true;
        stub.on.Nd_SetEnumStrValue = [this](CAM_HANDLE node, const char *symbol, bool) -> CAM_API_STATUS {
            steps.push_back(*stub.FindNodeName(node) + "=" + symbol);
            return 0;
        };
        stub.on.Nd_CmdExecute = [this](CAM_HANDLE node, bool verify) -> CAM_API_STATUS {
            EXPECT_TRUE(verify);
            steps.push_back(*stub.FindNodeName(node));
            return 0;
        };
        stub.on.Nd_GetBoolValue = [this](CAM_HANDLE node, bool *value, bool, bool) -> CAM_API_STATUS {
            steps.push_back(*stub.FindNodeName(node));
            *value = stub.FindNode(node)->boolValue;
            return 0;
        };
    }

    Lines TakeSteps() { return std::exchange(steps, {}); }

    Lines steps;
};

CAM_USER_SET_SELECTOR_TYPE Set(uint32_t number) { return static_cast<CAM_USER_SET_SELECTOR_TYPE>(number); }

TEST_F(UserSetTest, LoadsAndSaves)
{
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(0)), 0u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=Default", "UserSetLoad", "UserSetDone"}));
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("ExecuteCamUserSetLoad, hCam=0x11, eSelector=0"),
                                  ExitLine(0, "ExecuteCamUserSetLoad")}));
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(1)), 0u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=UserSet1", "UserSetLoad", "UserSetDone"}));
    EXPECT_EQ(ExecuteCamUserSetSave(hCamera, Set(0)), 0u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=Default", "UserSetSave", "UserSetDone"}));
    EXPECT_EQ(ExecuteCamUserSetSave(hCamera, Set(15)), 0u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=UserSet15", "UserSetSave", "UserSetDone"}));
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(9)), 0u);
    EXPECT_EQ(TakeSteps(),
              (Lines{"UserSetSelector=UserSet9", "UserSetDefault=UserSet9", "UserSetSave", "UserSetDone"}));
}

TEST_F(UserSetTest, FactorySetBecomesDefaultByWayOfAnother)
{
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(0)), 0u);
    EXPECT_EQ(TakeSteps(),
              (Lines{"UserSetSelector=UserSet1", "UserSetLoad", "UserSetDone", "UserSetDefault=Default", "UserSetSave",
                     "UserSetDone", "UserSetSelector=Default", "UserSetLoad", "UserSetDone"}));
}

TEST_F(UserSetTest, FactorySetStopsAtTheFirstFailure)
{
    stub.Script(Entry::Nd_SetEnumStrValue, {0x12});
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(0)), 0x12u);
    EXPECT_EQ(TakeSteps(), Lines{});
    stub.Script(Entry::Nd_CmdExecute, {0x12});
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(0)), 0x12u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=UserSet1"}));
    stub.Script(Entry::Nd_CmdExecute, {0, 0x12});
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(0)), 0x12u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=UserSet1", "UserSetLoad", "UserSetDone", "UserSetDefault=Default"}));
    stub.Script(Entry::Nd_SetEnumStrValue, {0, 0, 0x12});
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(0)), 0x12u);
    EXPECT_EQ(TakeSteps().back(), "UserSetDone") << "of the save; the factory set is not loaded";
    stub.Script(Entry::Nd_CmdExecute, {0, 0, 0x12});
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(0)), 0x12u);
    EXPECT_EQ(TakeSteps().back(), "UserSetDone") << "after the last command the camera has its time all the same";
}

TEST_F(UserSetTest, FailuresAreTheStatus)
{
    for (const uint32_t number : {16u, 17u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(number)), 0xDu);
        EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(number)), 0xDu);
    }
    EXPECT_EQ(TakeCalls(), Lines{});
    stub.Script(Entry::Nd_SetEnumStrValue, {0x12});
    EXPECT_EQ(ExecuteCamUserSetSave(hCamera, Set(1)), 0x12u);
    EXPECT_EQ(TakeSteps(), Lines{});
    stub.Script(Entry::Nd_SetEnumStrValue, {0, 0x12});
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCamera, Set(1)), 0x12u);
    EXPECT_EQ(TakeSteps(), Lines{"UserSetSelector=UserSet1"});
    stub.Script(Entry::Nd_CmdExecute, {0x12});
    EXPECT_EQ(ExecuteCamUserSetSave(hCamera, Set(1)), 0x12u);
    EXPECT_EQ(TakeSteps(), (Lines{"UserSetSelector=UserSet1", "UserSetDone"}));
    stub.nodes.erase("UserSetLoad");
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(1)), 0x102u);
}

TEST_F(UserSetTest, PollsTheCommandWithinItsBudget)
{
    stub.nodes["UserSetLoad"].isDone = false;
    stub.nodes["UserSetSave"].isDone = false;
    StopLog();
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(1)), 0u);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetCmdIsDone), 50u);
    EXPECT_EQ(ExecuteCamUserSetSave(hCamera, Set(1)), 0u);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetCmdIsDone), 10'050u);
    stub.nodes["UserSetSave"].isDone = true;
    EXPECT_EQ(ExecuteCamUserSetSave(hCamera, Set(1)), 0u);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetCmdIsDone), 10'051u);
}

TEST_F(UserSetTest, WaitsForTheCameraWithinItsBudget)
{
    stub.nodes["UserSetDone"].boolValue = false;
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(1)), 0u) << "a camera that never reports it is no failure";
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetBoolValue), 50u);
    int polls = 0;
    stub.on.Nd_GetBoolValue = [&](CAM_HANDLE, bool *value, bool, bool) -> CAM_API_STATUS {
        *value = ++polls == 3;
        return 0;
    };
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(1)), 0u);
    EXPECT_EQ(polls, 3);
    // A round that fails counts.
    polls = 0;
    stub.ThrowNext(Entry::Nd_GetBoolValue, Stub::Thrown::NoStdException);
    stub.Script(Entry::Nd_GetBoolValue, {0x12});
    EXPECT_EQ(ExecuteCamUserSetLoad(hCamera, Set(1)), 0u);
    EXPECT_EQ(polls, 3);
}

TEST_F(UserSetTest, OtherCommandsFailBehindTheSelection)
{
    EXPECT_EQ(ExecuteCamUserSet(hCamera, Set(2), static_cast<CAM_USER_SET_COMMAND_TYPE>(4)), 0xFFFFFFFFu);
    EXPECT_EQ(TakeSteps(), Lines{"UserSetSelector=UserSet2"});
    EXPECT_EQ(ExecuteCamUserSet(0, Set(2), CAM_USER_SET_COMMAND_LOAD), 7u);
    EXPECT_EQ(ExecuteCamUserSet(hCamera, Set(16), static_cast<CAM_USER_SET_COMMAND_TYPE>(4)), 0xDu);
}

} // namespace Orvi::Testing
