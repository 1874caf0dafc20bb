// What the camera keeps from one process to the next: a new camera with the same file is the old one powered up again.

#include "HostSide.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextFile.h"

namespace Orvi::Vcam::Test {
namespace {

using Testing::ReadFile;
using Testing::WriteFile;

constexpr std::uint32_t s_gain = Block::Gain + 0x1C;

/// A camera that keeps its state, for the length of a block.
struct Kept {
    explicit Kept(const std::filesystem::path &file, const std::string &serial = "VC000001",
                  std::uint32_t sensorWidth = 320)
        : camera(Make(file, serial, sensorWidth))
    {
    }
    static std::shared_ptr<VirtualCamera> Make(const std::filesystem::path &file, const std::string &serial,
                                               std::uint32_t sensorWidth)
    {
        CameraConfig config;
        config.serial = serial;
        config.userDefinedName = "as made";
        config.sensorWidth = sensorWidth;
        config.sensorHeight = 240;
        config.stateFile = file.string();
        return VirtualCamera::Create(config);
    }
    void Command(std::uint64_t command, std::uint32_t set)
    {
        control.Write(Reg::UserSetSelector, set);
        control.Write(command, 1);
        EXPECT_TRUE(Eventually([&] { return control.Read(Reg::UserSetDone) == 1; }));
    }
    void Rename(std::string name)
    {
        name.resize(64);
        EXPECT_EQ(control.WriteMemory(Reg::UserDefinedName, std::as_bytes(std::span(name))), GenCpStatus::Success);
    }
    std::string Name() const { return camera->Identity().userDefinedName; }

    std::shared_ptr<VirtualCamera> camera;
    Control control{*camera};
};

class StateFile : public testing::Test {
  protected:
    /// Saves a gain in set 3 and makes the set the default one.
    void Fill() const
    {
        Kept kept(file_);
        kept.control.Write(s_gain, 900);
        kept.Command(Reg::UserSetSave, 3);
        kept.control.Write(Reg::UserSetDefault, 3);
    }
    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(folder_.Path())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    Testing::TempFolder folder_;
    const std::filesystem::path file_ = folder_.Path() / "camera.state";
};

TEST_F(StateFile, IsNotMadeBeforeThereIsSomethingToKeep)
{
    testing::internal::CaptureStderr();
    {
        Kept kept(file_);
        kept.control.Write(s_gain, 900);
        kept.Command(Reg::UserSetLoad, 0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(Names().empty());
}

TEST_F(StateFile, KeepsSetsDefaultSetAndName)
{
    {
        Kept kept(file_);
        EXPECT_EQ(kept.Name(), "as made");
        kept.control.Write(s_gain, 900);
        kept.control.Write(Reg::LutIndex, 1023);
        kept.control.Write(Reg::LutValue, 5);
        kept.Command(Reg::UserSetSave, 15);
        kept.control.Write(s_gain, 600);
        kept.control.Write(ImageSizeWord::Width, 160);
        kept.Command(Reg::UserSetSave, 3);
        kept.control.Write(Reg::UserSetDefault, 3);
        kept.Rename("left \"eye\"\n#1");
    }
    EXPECT_EQ(Names(), std::vector<std::string>{"camera.state"}) << "no temporary file stays";
    Kept kept(file_);
    EXPECT_EQ(kept.Name(), "left \"eye\"\n#1");
    EXPECT_EQ(kept.control.Read(Reg::UserSetDefault), 3u);
    EXPECT_EQ(kept.control.Read(s_gain), 600u) << "the default set is loaded at power-up";
    EXPECT_EQ(kept.control.ReadLong(Reg::SiRequiredPayload), 160u * 240);
    kept.Command(Reg::UserSetLoad, 15);
    EXPECT_EQ(kept.control.Read(s_gain), 900u);
    kept.control.Write(Reg::LutIndex, 1023);
    EXPECT_EQ(kept.control.Read(Reg::LutValue), 5u);
    kept.Command(Reg::UserSetLoad, 4); // never saved
    EXPECT_EQ(kept.control.Read(s_gain), 0u);
}

TEST_F(StateFile, IsWrittenBeforeTheCommandIsAnswered)
{
    Kept kept(file_);
    kept.control.Write(Reg::CommandDelay, Reg::s_never);
    kept.control.Write(Reg::UserSetSelector, 1);
    kept.control.Write(Reg::UserSetSave, 1);
    EXPECT_NE(ReadFile(file_).find("\nset 1\n"), std::string::npos) << ReadFile(file_);
}

TEST_F(StateFile, DamagedFileIsToldAndTheCameraStartsAsFromTheFactory)
{
    Fill();
    const std::string good = ReadFile(file_);
    const std::size_t digit = good.find("\n20407C 384\n") + 9;
    ASSERT_NE(digit, std::string::npos + 9) << good;
    std::string flipped = good;
    flipped[digit] = '4';
    const std::string damaged[] = {"",
                                   "\n",
                                   "OrviVirtualCamera 1 VC000001\n",
                                   good.substr(0, good.size() / 2),
                                   good.substr(0, good.size() - 1),
                                   good + "x",
                                   flipped,
                                   std::string(5000, '\0')};
    for (const std::string &text : damaged) {
        WriteFile(file_, text);
        testing::internal::CaptureStderr();
        {
            Kept kept(file_);
            EXPECT_EQ(kept.control.Read(s_gain), 0u) << text;
            EXPECT_EQ(kept.control.Read(Reg::UserSetDefault), 0u) << text;
            EXPECT_EQ(kept.Name(), "as made");
        }
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(said.find("virtual camera VC000001: " + file_.string() + ": its "), 0u) << said;
        EXPECT_NE(said.find("as from the factory"), std::string::npos) << said;
        EXPECT_EQ(ReadFile(file_), text) << "it is left as it is until something is stored";
    }
    Fill();
    EXPECT_EQ(ReadFile(file_), good) << "and then replaced";
}

TEST_F(StateFile, OfAnotherCameraOrSensorIsRefused)
{
    Fill();
    testing::internal::CaptureStderr();
    EXPECT_EQ(Kept(file_, "VC000002").control.Read(s_gain), 0u);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("not the file of this camera"), std::string::npos);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Kept(file_, "VC000001", 640).control.Read(s_gain), 0u);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("another sensor"), std::string::npos);
    EXPECT_EQ(Kept(file_).control.Read(s_gain), 900u);
}

TEST_F(StateFile, CameraWorksOnWhenTheFileCannotBeWritten)
{
    WriteFile(folder_.Path() / "file", "no folder");
    testing::internal::CaptureStderr();
    Kept kept(folder_.Path() / "file" / "camera.state");
    kept.control.Write(s_gain, 900);
    kept.Command(Reg::UserSetSave, 1);
    kept.Command(Reg::UserSetLoad, 0);
    kept.Command(Reg::UserSetLoad, 1);
    EXPECT_EQ(kept.control.Read(s_gain), 900u);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("life of this process"), std::string::npos) << said;
    EXPECT_EQ(ReadFile(folder_.Path() / "file"), "no folder");
}

TEST_F(StateFile, FolderIsMadeWhenItIsMissing)
{
    const std::filesystem::path place = folder_.Path() / "a" / "b" / "camera.state";
    Kept(place).Rename("kept");
    EXPECT_EQ(Kept(place).Name(), "kept");
}

TEST_F(StateFile, LiesInTheFolderThatTheVariableNames)
{
    {
        const Testing::ScopedVariable variable(s_stateFolderVariable, std::nullopt);
        EXPECT_EQ(StateFileOf("VC000001"), "");
    }
    const Testing::ScopedVariable variable(s_stateFolderVariable, "/some/folder");
    EXPECT_EQ(StateFileOf("VC000001"), "/some/folder/VC000001.state");
    EXPECT_EQ(StateFileOf("../1"), "/some/folder/.._1.state") << "no serial number leads out of it";
}

} // namespace
} // namespace Orvi::Vcam::Test
