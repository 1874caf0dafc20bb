#include "vcam/Device.h"
#include "vcam/DeviceRegisterTable.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

using std::chrono::milliseconds;

/// Storing and loading settings takes a camera a while.
constexpr milliseconds s_userSetTime{50};

} // namespace

bool Device::WrittenCommand(std::uint64_t address, std::uint32_t value)
{
    const auto selectedSet = [this] { return std::size_t{registers_.Word(Reg::UserSetSelector)}; };
    switch (address) {
    case Reg::EiTestControl:
        if ((value & 1) != 0) {
            Raise(EventKind::Test, 0);
        }
        break;
    case Block::AcquisitionCommand + 0x1C:
        CarryOut(value);
        break;
    case Reg::AcquisitionStart:
        StartAcquisition(registers_.Word(Reg::AcquisitionMode));
        break;
    case Reg::AcquisitionAbort:
        CarryOut(AcquisitionCommand::Abort);
        break;
    case Reg::UserSetSave:
        SaveUserSet(selectedSet());
        isStateChanged_ = true;
        FinishCommand(address, s_userSetTime);
        return true;
    case Reg::UserSetLoad:
        LoadUserSet(selectedSet());
        FinishCommand(address, s_userSetTime);
        return true;
    case Reg::CommandDelay: {
        // A new delay holds for commands under way too: the way out for one that would never be done.
        const auto latest = Clock::now() + milliseconds(value);
        for (auto &[command, done] : commands_) {
            done = value == Reg::s_never ? done : std::min(done, latest);
        }
        return true;
    }
    default:
        return false;
    }
    FinishCommand(address);
    return true;
}

void Device::CarryOut(std::uint32_t acquisitionCommand)
{
    switch (acquisitionCommand) {
    case AcquisitionCommand::Abort:
        EndAcquisition();
        break;
    case AcquisitionCommand::Stop:
        acquisition_.isStopping = acquisition_.isActive;
        break;
    case AcquisitionCommand::ImageBufferRead:
        readOuts_ += readOuts_ < held_.size() ? 1 : 0;
        break;
    default:
        StartAcquisition(acquisitionCommand);
        break;
    }
}

/// What the command does is done; its register keeps the command's value until it is to report so.
void Device::FinishCommand(std::uint64_t address, milliseconds atLeast)
{
    const std::uint32_t delay = registers_.Word(Reg::CommandDelay);
    if (delay == Reg::s_never) {
        commands_[address] = Clock::time_point::max();
    } else if (delay != 0 || atLeast != milliseconds{}) {
        commands_[address] = Clock::now() + std::max(atLeast, milliseconds(delay));
    } else {
        commands_.erase(address);
        registers_.SetWord(address, 0);
    }
}

void Device::RefreshCommands()
{
    const Clock::time_point now = Clock::now();
    std::erase_if(commands_, [&](const auto &command) {
        const bool isDone = command.second <= now;
        if (isDone) {
            registers_.SetWord(command.first, 0);
        }
        return isDone;
    });
    const bool isBusy = commands_.contains(Reg::UserSetSave) || commands_.contains(Reg::UserSetLoad);
    registers_.SetWord(Reg::UserSetDone, isBusy ? 0 : 1);
}

/// Whether a command of user sets would meet one that is under way, or that comes before it in the same write.
bool Device::IsUserSetBusy(std::uint64_t command) const
{
    const std::uint64_t other = command == Reg::UserSetSave ? Reg::UserSetLoad : Reg::UserSetSave;
    return commands_.contains(command) || registers_.Word(other) != 0;
}

void Device::SaveUserSet(std::size_t number)
{
    std::vector<std::uint64_t> words = SettingWords();
    words.insert(words.end(), std::begin(s_ownSettings), std::end(s_ownSettings));
    const std::vector<std::uint64_t> tables = TableWords();
    words.insert(words.end(), tables.begin(), tables.end());
    UserSet &set = stored_.userSets[number];
    set.clear();
    for (const std::uint64_t word : words) {
        set.emplace_back(word, registers_.Word(word));
    }
}

void Device::LoadUserSet(std::size_t number)
{
    // A set that was never saved holds what the factory's does.
    const UserSet &set = stored_.userSets[number].empty() ? stored_.userSets[0] : stored_.userSets[number];
    for (const auto &[address, value] : set) {
        registers_.SetWord(address, value);
    }
    ShowSelected(registers_);
    WrittenFeature(Reg::BlueRatio, 0);
    WrittenLineSelector();
    UpdateTriggerSequence(registers_.Word(Block::TriggerSequence + 0x1C));
    shutterStep_ = 0;
    ClearImageBuffer();
    inputLevel_ = LineStates() & 1;
    UpdatePayloadSize();
}

/// What the command under way has changed in the front.
void Device::KeepFrontState()
{
    std::optional<std::string> state = front_ ? front_->TakeState() : std::nullopt;
    if (!state) {
        return;
    }
    {
        const Lock lock(mutex_);
        stored_.front = std::move(*state);
        isStateChanged_ = true;
    }
    KeepState();
}

/// Into the state file, which has it before the command is answered.
void Device::KeepState()
{
    const std::lock_guard writer(stateMutex_);
    StoredState state;
    {
        const Lock lock(mutex_);
        if (!std::exchange(isStateChanged_, false) || config_.stateFile.empty()) {
            return;
        }
        state = stored_;
    }
    SaveState(config_.stateFile, config_.serial, state);
}

} // namespace Orvi::Vcam
