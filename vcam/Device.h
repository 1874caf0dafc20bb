#pragma once
// The virtual camera put together: endpoints, registers, control server, events, and the thread on which the sensor
// lives. Its sources: Device.cpp (USB side), DeviceControl.cpp (commands of the host and their acknowledges),
// DevicePlug.cpp (unplugging), PowerUp.cpp (initial registers), DeviceRegisters.cpp (what writes mean),
// DeviceCommands.cpp (commands and user sets), DeviceFeatures.cpp (features that act), DeviceTriggers.cpp (triggers,
// lines and timers), DevicePicture.cpp (settings of an image), DeviceSensor.cpp (acquisition), DeviceStream.cpp (images
// on their way to the host), DeviceFaults.cpp (scripted faults).

#include "vcam/Alarm.h"
#include "vcam/ControlBlocks.h"
#include "vcam/Description.h"
#include "vcam/EventQueue.h"
#include "vcam/FaultEngine.h"
#include "vcam/Front.h"
#include "vcam/GenCpServer.h"
#include "vcam/Outbox.h"
#include "vcam/Packing.h"
#include "vcam/Painter.h"
#include "vcam/Registers.h"
#include "vcam/SelectedRegisters.h"
#include "vcam/StateFile.h"
#include "vcam/VirtualCamera.h"
#include "vcam/image/ImageFeed.h"

#include <atomic>
#include <chrono>
#include <map>
#include <thread>
#include <utility>

namespace Orvi::Vcam {

class Device final : public VirtualCamera, private GenCpMemory {
  public:
    explicit Device(const CameraConfig &config);
    ~Device() override;

    UsbIdentity Identity() const override;
    TransferStatus Out(std::span<const std::byte> data) override;
    void Submit(Endpoint endpoint, InTransfer &transfer) override;
    bool Cancel(Endpoint endpoint, InTransfer &transfer) override;
    void SetHalt(Endpoint endpoint) override;
    void ClearHalt(Endpoint endpoint) override;
    void SetGoneObserver(GoneObserver *observer) override;

    void Unplug() override;
    void Plug() override;
    bool IsPlugged() const override;
    void PokeRegister(std::uint64_t address, std::uint32_t value) override;
    std::uint32_t PeekRegister(std::uint64_t address) const override;
    std::uint64_t DroppedBlocks() const override;

  private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    struct Ack {
        GenCpServer::Packet packet;
        bool unplugs; // the plug is pulled as soon as the host has it
    };
    struct Acquisition {
        bool isActive = false;
        bool isStopping = false; // the image under way is finished, then no more
        bool isLimited = false;  // to framesLeft
        std::uint32_t framesLeft = 0;
        std::uint64_t run = 0; // counts acquisitions, so that the sensor notices the end of its own
    };

    /// An image that is exposed: all that its picture depends on.
    struct Shot {
        std::uint64_t block, time;
        PictureSettings settings;
        Packing packing = Packing::None;
        std::vector<FaultRule> faults{};
    };
    /// The acquisition and the endpoint's epoch that a frame on its way belongs to.
    struct Sending {
        std::uint64_t run, epoch;
    };
    /// How the host wants the payload cut.
    struct Slots {
        std::size_t size, count;
        std::array<std::size_t, 2> finalSizes;
    };
    /// A trigger after its delay; the end is known when the trigger's level is gone.
    struct TriggerPulse {
        Clock::time_point start;
        std::optional<Clock::time_point> end;
    };
    struct Timer {
        Clock::time_point from, until;
    };

    // Device.cpp
    UsbIdentity Describe() const;
    InEndpoint *In(Endpoint endpoint);
    std::vector<std::byte> TakeEvents();

    // DeviceControl.cpp
    TransferStatus Execute(std::span<const std::byte> command);
    void QueueAcks(std::span<const std::byte> command, GenCpServer::Packet ack, const std::vector<FaultRule> &faults);
    void QueueAck(Ack ack);
    void SendLate(const Ack &ack, std::uint64_t powerUps);
    std::vector<std::byte> TakeAck();
    void AckSent();

    // DevicePlug.cpp
    void TellObserver();

    // DeviceRegisters.cpp
    GenCpStatus Read(std::uint64_t address, std::span<std::byte> to) override;
    GenCpStatus Write(std::uint64_t address, std::span<const std::byte> from) override;
    GenCpStatus WriteQuadlets(std::uint64_t address, std::span<const std::byte> from);
    GenCpStatus CheckQuadlet(std::uint64_t address, std::uint32_t value) const;
    GenCpStatus CheckStreamInterface(std::uint64_t address, std::uint32_t value) const;
    void Written(std::uint64_t address, std::uint32_t value);
    /// Brings registers up to date that time or the sensor changes.
    void Refresh();
    void WrittenFormat(std::uint64_t address, std::uint32_t value);
    void UpdatePayloadSize();
    bool IsOffered(const PixelFormat *format) const;
    /// What a write asked for and what must not happen under the lock.
    void FinishWrite();
    bool IsStreaming() const { return IsStreamEnabled() || acquisition_.isActive; }

    // DeviceCommands.cpp
    bool WrittenCommand(std::uint64_t address, std::uint32_t value);
    void CarryOut(std::uint32_t acquisitionCommand);
    void FinishCommand(std::uint64_t address, std::chrono::milliseconds atLeast = {});
    void RefreshCommands();
    bool IsUserSetBusy(std::uint64_t command) const;
    void SaveUserSet(std::size_t number);
    void LoadUserSet(std::size_t number);
    void KeepState();
    void KeepFrontState();

    // DeviceFeatures.cpp: features that react to writes or act by themselves
    bool WrittenFeature(std::uint64_t address, std::uint32_t value);
    void FitImageToSensor();
    void UpdateTriggerSequence(std::uint32_t sequence);
    void AdjustAutomatic();

    // DeviceTriggers.cpp
    std::uint32_t LineStates() const;
    bool IsHigh(std::uint32_t lineSource, std::size_t line) const;
    void WrittenLines();
    void WrittenLineSelector();
    void WrittenSoftwareTrigger(std::uint32_t value);
    void Trigger();
    void ReleaseTrigger();
    void DropTriggers();
    void StartTimers(std::uint32_t source);
    bool IsTriggered() const { return registers_.Word(Block::TriggerMode + 0x1C) != 0; }
    bool IsTriggerDue(Lock &lock);
    bool IsWidthExposed() const
    {
        return IsTriggered() && registers_.Word(Block::TriggerSequence + 0x1C) == s_widthSequence;
    }

    // PowerUp.cpp
    void PowerUp();
    void SetPresets();

    // DeviceFaults.cpp
    bool MayArm() const;
    void WrittenFaultArm(std::uint32_t value);
    void AwaitFaultTime();
    void ActOn(const std::vector<FaultRule> &rules);
    void Poke(std::uint64_t address, std::uint32_t value);
    std::vector<FaultRule> TakeFrameFaults(std::uint64_t block);
    std::vector<FaultRule> TakeCommandFaults(std::span<const std::byte> command);
    void Settle();

    // DevicePicture.cpp: what the next image depends on
    PictureSettings Settings() const;
    std::uint32_t Exposure() const;
    Packing PackingNow() const { return static_cast<Packing>(registers_.Word(Reg::Packing)); }
    static std::size_t PayloadBytes(const PictureSettings &settings, Packing packing);
    /// What is sent.
    std::span<const std::byte> DrawPayload(const Shot &shot);
    /// Called without the lock: an image of one's own may take its time.
    std::span<const std::byte> Draw(const Shot &shot);

    // DeviceSensor.cpp
    std::uint64_t DeviceTime() const;
    Clock::duration FramePeriod() const;
    bool IsThrottled() const;
    Clock::time_point FrameDue() const;
    void StartAcquisition(std::uint32_t mode);
    void EndAcquisition();
    void Raise(EventKind kind, std::uint64_t block);
    void RaiseAt(EventKind kind, std::uint64_t block, std::uint64_t time);
    void Announce(Lock &lock);
    void RunSensor();
    bool FollowPlug(Lock &lock);
    bool IsFrameDue(Lock &lock);
    bool IsStreamEnabled() const { return (registers_.Word(Reg::SiControl) & 1) != 0; }
    bool HasFramesLeft() const { return !acquisition_.isLimited || acquisition_.framesLeft != 0; }
    bool IsRun(std::uint64_t run) const
    {
        return acquisition_.isActive && acquisition_.run == run && !isQuitting_ && !isUnplugRequested_;
    }
    void BeginFrame(Shot &shot);
    void TakeFrame(Lock &lock);
    bool Expose(Lock &lock, PictureSettings &settings);

    // DeviceStream.cpp
    bool IsBuffering() const { return registers_.Word(Block::ImageBufferMode + 0x1C) != 0; }
    bool HasRoom() const;
    void ClearImageBuffer();
    bool HoldFrame(Shot shot);
    void ReadOut(Lock &lock);
    void LoseFrame(std::uint64_t block);
    bool SendFrame(Lock &lock, const Shot &shot);
    bool SendPayload(const Sending &sending, std::span<const std::byte> payload, const Slots &slots,
                     std::optional<std::size_t> stallAt);
    bool SendMessage(const Sending &sending, Message message);
    void MissFrame(Lock &lock);

    const CameraConfig config_;
    const std::unique_ptr<Front> front_; // between the host and the registers; null for the camera's own map
    const std::shared_ptr<const StoredDescription> description_;

    std::mutex plugMutex_;    // one plug or unplug at a time
    std::mutex controlMutex_; // one command at a time
    std::mutex stateMutex_;   // one writer of the state file
    GenCpServer server_{front_ ? static_cast<GenCpMemory &>(*front_) : *this};

    mutable std::mutex mutex_; // all below, as far as it has no lock of its own
    std::condition_variable wake_;
    RegisterSpace registers_;
    StoredState stored_;          // survives unplugging
    bool isStateChanged_ = false; // by the command under way: the state file is written
    std::array<bool, static_cast<std::size_t>(EventKind::Count)> notifications_{};
    std::deque<Ack> acks_;
    bool isAckUnplugging_ = false; // the acknowledge under way does
    bool isUnplugWritten_ = false; // by the command under way
    bool isStreamCut_ = false;     // by the command under way: what is queued is dropped
    bool isEventCut_ = false;
    bool hasEvents_ = false;            // raised and not yet handed to the endpoint
    std::uint32_t lineLevels_ = 0;      // at the pins
    std::uint32_t inputLevel_ = 0;      // of line 0 behind the inverter
    std::deque<TriggerPulse> triggers_; // that wait for their images
    TriggerPulse pulse_;                // of the image under way
    bool isSoftwareActive_ = false;     // level of the software trigger
    std::array<Timer, 2> timers_{};
    std::uint32_t shutterStep_ = 0;                       // place in the sequence of the sequential shutter
    std::deque<Shot> held_;                               // in the image buffer
    std::uint32_t readOuts_ = 0;                          // images that the host has asked for
    std::map<std::uint64_t, Clock::time_point> commands_; // that have not reported done yet
    std::uint32_t burstLeft_ = 0;                         // images that the last trigger still asks for
    bool isExposing_ = false, isTransferring_ = false, isInFrame_ = false;
    bool isControlOutHalted_ = false;
    bool isPlugged_ = true;
    bool isUnplugRequested_ = false;
    bool isQuitting_ = false;
    std::optional<Clock::time_point> replugAt_;
    Clock::time_point poweredUp_;
    Acquisition acquisition_;
    Clock::time_point lastFrame_;
    bool isFirstFrame_ = true;
    std::uint64_t nextBlock_ = 0;
    std::uint64_t dropped_ = 0;
    FaultEngine faults_;
    std::vector<FaultRule> nextFrame_, nextCommand_; // what rules of other moments do to them
    std::uint32_t badEvents_ = 0;
    bool isEventHaltDue_ = false;
    std::atomic<bool> isSettleDue_ = false; // rules have acted under the lock
    std::optional<Clock::time_point> faultAlarm_;
    std::uint64_t powerUps_ = 0;

    std::mutex observerMutex_;
    std::condition_variable observerIdle_;
    GoneObserver *observer_ = nullptr;
    std::thread::id observerBusy_; // the thread that is telling it

    EventQueue events_;
    InEndpoint control_, event_, stream_;
    Outbox ackOutbox_, eventOutbox_;
    const std::unique_ptr<ImageFeed> feed_; // null: the camera's own scene
    std::vector<std::byte> packed_;         // the payload, when the format is packed
    Painter painter_;                       // the sensor's thread alone, as the images of the feed
    std::thread sensor_;
    Alarm alarm_;
};

} // namespace Orvi::Vcam
