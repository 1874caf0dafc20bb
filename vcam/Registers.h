#pragma once
// Addresses of all registers but the control blocks' (ControlBlocks.h): bootstrap, device and virtual-only ones.

#include <cstdint>

namespace Orvi::Vcam::Reg {

// clang-format off
// Technology-agnostic bootstrap registers
constexpr std::uint64_t GenCpVersion          = 0x000;
constexpr std::uint64_t ManufacturerName      = 0x004; // texts of 64 bytes
constexpr std::uint64_t ModelName             = 0x044;
constexpr std::uint64_t FamilyName            = 0x084;
constexpr std::uint64_t DeviceVersion         = 0x0C4;
constexpr std::uint64_t ManufacturerInfo      = 0x104;
constexpr std::uint64_t SerialNumber          = 0x144;
constexpr std::uint64_t UserDefinedName       = 0x184;
constexpr std::uint64_t DeviceCapability      = 0x1C4;
constexpr std::uint64_t MaxResponseTime       = 0x1CC;
constexpr std::uint64_t ManifestTableAddress  = 0x1D0;
constexpr std::uint64_t SbrmAddress           = 0x1D8;
constexpr std::uint64_t DeviceConfiguration   = 0x1E0; // bit 1: several events in a packet
constexpr std::uint64_t HeartbeatTimeout      = 0x1E8;
constexpr std::uint64_t MessageChannelId      = 0x1EC;
constexpr std::uint64_t Timestamp             = 0x1F0;
constexpr std::uint64_t TimestampLatch        = 0x1F8;
constexpr std::uint64_t TimestampIncrement    = 0x1FC;
constexpr std::uint64_t AccessPrivilege       = 0x204;
constexpr std::uint64_t ProtocolEndianness    = 0x208;
constexpr std::uint64_t ImplementationEndianness = 0x20C;
constexpr std::uint64_t SoftwareVersion       = 0x210;
constexpr std::uint32_t AbrmSize              = 0x250;

// Technology-specific bootstrap registers
constexpr std::uint64_t Sbrm                  = 0x10000;
constexpr std::uint32_t SbrmSize              = 0x44;

// Stream interface
constexpr std::uint64_t Sirm                  = 0x20000;
constexpr std::uint64_t SiInfo                = Sirm + 0x00;
constexpr std::uint64_t SiControl             = Sirm + 0x04;
constexpr std::uint64_t SiRequiredPayload     = Sirm + 0x08;
constexpr std::uint64_t SiRequiredLeader      = Sirm + 0x10;
constexpr std::uint64_t SiRequiredTrailer     = Sirm + 0x14;
constexpr std::uint64_t SiMaxLeader           = Sirm + 0x18;
constexpr std::uint64_t SiTransferSize        = Sirm + 0x1C;
constexpr std::uint64_t SiTransferCount       = Sirm + 0x20;
constexpr std::uint64_t SiFinalTransfer1      = Sirm + 0x24;
constexpr std::uint64_t SiFinalTransfer2      = Sirm + 0x28;
constexpr std::uint64_t SiMaxTrailer          = Sirm + 0x2C;
constexpr std::uint32_t SirmSize              = 0x30;

// Event interface
constexpr std::uint64_t Eirm                  = 0x30000;
constexpr std::uint64_t EiControl             = Eirm + 0x00;
constexpr std::uint64_t EiMaxTransfer         = Eirm + 0x04;
constexpr std::uint64_t EiTestControl         = Eirm + 0x08;
constexpr std::uint32_t EirmSize              = 0x0C;

// Description
constexpr std::uint64_t ManifestTable         = 0x40000;
constexpr std::uint32_t ManifestTableSize     = 8 + 64;
constexpr std::uint64_t DescriptionFile       = 0x80000;

// Control blocks
constexpr std::uint64_t Control               = 0x200000;
constexpr std::uint32_t ControlSize           = 0x20000;

// The camera's own registers, for features that the control blocks lack
constexpr std::uint64_t Device                = 0x230000;
constexpr std::uint64_t PixelFormat           = Device + 0x00; // PFNC code of coding and size together
constexpr std::uint64_t TlParamsLocked        = Device + 0x04;
constexpr std::uint64_t EventSelector         = Device + 0x08; // index of an event kind
constexpr std::uint64_t EventNotification     = Device + 0x0C; // of the selected event: 0 off, 1 on
constexpr std::uint64_t EventLostCount        = Device + 0x10; // events that found the queue full
constexpr std::uint64_t AcquisitionMode       = Device + 0x14; // 8 continuous, 9 multi-frame, 1 single frame
constexpr std::uint64_t AcquisitionStart      = Device + 0x18; // write 1: starts in that mode
constexpr std::uint64_t AcquisitionAbort      = Device + 0x1C; // write 1
constexpr std::uint64_t AcquisitionActive     = Device + 0x20; // 1 while images are taken
constexpr std::uint64_t BalanceRatioSelector  = Device + 0x24; // 0 red, 1 blue
constexpr std::uint64_t BalanceRatio          = Device + 0x28; // of the selected colour, in thousandths
constexpr std::uint64_t BlueRatio             = Device + 0x2C; // red's is the value of the white balance block
constexpr std::uint64_t TriggerActivation     = Device + 0x30; // 0 falling edge, 1 rising edge
constexpr std::uint64_t UserSetSelector       = Device + 0x34; // 0 default, 1 to 15
constexpr std::uint64_t UserSetLoad           = Device + 0x38; // write 1
constexpr std::uint64_t UserSetSave           = Device + 0x3C; // write 1
constexpr std::uint64_t UserSetDefault        = Device + 0x40; // the set that is loaded at power-up
constexpr std::uint64_t UserSetDone           = Device + 0x44; // 1 when no load or save is under way
constexpr std::uint64_t ExposureMode          = Device + 0x48; // 0 timed, 1 as long as the trigger
constexpr std::uint64_t TriggerSelector       = Device + 0x4C; // 0 frame start, 1 frame burst start
constexpr std::uint64_t LutEnable             = Device + 0x50;
constexpr std::uint64_t LutIndex              = Device + 0x54;
constexpr std::uint64_t LutValue              = Device + 0x58;
constexpr std::uint64_t MatrixRow             = Device + 0x5C; // 0 red, 1 green, 2 blue
constexpr std::uint64_t MatrixColumn          = Device + 0x60;
constexpr std::uint64_t MatrixElement         = Device + 0x64; // in thousandths, signed
constexpr std::uint64_t DpcEnable             = Device + 0x68;
constexpr std::uint64_t DpcNumber             = Device + 0x6C; // entries in use
constexpr std::uint64_t DpcIndex              = Device + 0x70;
constexpr std::uint64_t DpcEntryX             = Device + 0x74;
constexpr std::uint64_t DpcEntryY             = Device + 0x78;
constexpr std::uint64_t ShutterEnable         = Device + 0x7C; // sequential shutter
constexpr std::uint64_t ShutterTerminateAt    = Device + 0x80; // last index of the sequence
constexpr std::uint64_t ShutterIndex          = Device + 0x84; // from 1
constexpr std::uint64_t ShutterEntry          = Device + 0x88; // exposure time in us
constexpr std::uint64_t FrameSynchronization  = Device + 0x8C; // 0 off, 1 with all cameras of the bus
constexpr std::uint64_t LineInverterOne       = Device + 0x90; // of the selected line, as the next two
constexpr std::uint64_t LineModeOne           = Device + 0x94;
constexpr std::uint64_t LineStatusOne         = Device + 0x98;
constexpr std::uint32_t DeviceSize            = 0x100;

// What selectors choose from; selected values are seen through other registers
constexpr std::uint64_t Tables                = 0x240000;
constexpr std::uint64_t LutTable              = Tables + 0x0000; // 1024 entries of 10 bits
constexpr std::uint64_t MatrixTable           = Tables + 0x1000; // 3 x 3
constexpr std::uint64_t DpcTable              = Tables + 0x1040; // 32 pairs of column and line of the sensor
constexpr std::uint64_t ShutterTable          = Tables + 0x1140; // 16 exposure times
constexpr std::uint64_t LineSourceTable       = Tables + 0x1180; // 3 lines
constexpr std::uint64_t TimerTable            = Tables + 0x11A0; // 2 timers: delay, duration, source, 0
constexpr std::uint64_t FormatTable           = Tables + 0x1200; // 3 image formats of up to 16 words
constexpr std::uint32_t TablesSize            = 0x1300;

// What no real camera has: see docs/virtual-camera.md
constexpr std::uint64_t Virtual               = 0x0F000000;
constexpr std::uint64_t UnplugNow             = Virtual + 0x00;
constexpr std::uint64_t ReplugDelay           = Virtual + 0x04; // ms; 0: stay unplugged
constexpr std::uint64_t DroppedBlocks         = Virtual + 0x08;
constexpr std::uint64_t Unthrottled           = Virtual + 0x0C;
constexpr std::uint64_t LineLevels            = Virtual + 0x10; // bit i: level at line i's pin
constexpr std::uint64_t PendingAcks           = Virtual + 0x14; // commands that are answered with PENDING_ACK first
constexpr std::uint64_t LostAcks              = Virtual + 0x18; // commands that are carried out but not answered
constexpr std::uint64_t CommandDelay          = Virtual + 0x1C; // ms until commands report done; s_never: not at all
constexpr std::uint64_t LastExposure          = Virtual + 0x20; // of the last image, in us
constexpr std::uint64_t Packing               = Virtual + 0x24; // of pixels of 10 and 12 bits: Packing.h
constexpr std::uint32_t s_never               = 0xFFFFFFFF;
// A rule of Faults.h, one quadlet for each member
constexpr std::uint64_t FaultMoment           = Virtual + 0x40;
constexpr std::uint64_t FaultAt               = Virtual + 0x44; // s_unset: every, from and probability decide
constexpr std::uint64_t FaultEvery            = Virtual + 0x48;
constexpr std::uint64_t FaultFrom             = Virtual + 0x4C;
constexpr std::uint64_t FaultProbability      = Virtual + 0x50; // in millionths
constexpr std::uint64_t FaultTimes            = Virtual + 0x54;
constexpr std::uint64_t FaultAddress          = Virtual + 0x58; // s_unset: any
constexpr std::uint64_t FaultValue            = Virtual + 0x5C;
constexpr std::uint64_t FaultMask             = Virtual + 0x60;
constexpr std::uint64_t FaultAction           = Virtual + 0x64;
constexpr std::uint64_t FaultAmount           = Virtual + 0x68;
constexpr std::uint64_t FaultTarget           = Virtual + 0x6C;
constexpr std::uint64_t FaultArm              = Virtual + 0x70; // 1: adds that rule, 0: removes all that were added
constexpr std::uint64_t FaultsActed           = Virtual + 0x74; // rules that have acted since power-up
constexpr std::uint32_t VirtualSize           = 0x100;
constexpr std::uint32_t s_unset               = 0xFFFFFFFF;
// clang-format on

} // namespace Orvi::Vcam::Reg
