#pragma once
// The register road to a feature: a block of control registers, read as a whole, checked, and its value written.
//
// Statuses besides those of register access: 0x11 not implemented, 0x804 not available now, 0x806 not readable, 0x807
// not writable, 0x0D outside the limits or off the grid, 0x808 a value or mode that the camera lacks.

#include "features/Access.h"
#include "foundation/PublicApi.h"

namespace Orvi {

/// Which of the limits a feature has besides minimum and maximum.
enum class Grid { Ignored, Checked };

/// Whether a feature's register counts seconds where its function counts microseconds.
enum class Unit { AsCounted, Microseconds };

/// A block as it was read: eight words from its address B on.
class RegisterBlock {
  public:
    static constexpr uint32_t wordsWithoutValue = 7;
    static constexpr uint32_t wordsWithValue = 8;

    /// Reads the first words and checks the inquiry word: bit 31 implemented, 30 available, 25 writable, 24 readable.
    CAM_API_STATUS Read(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiWords, Access access);

    // A unit value is raw * N / D, or the raw value when N or D is 0 or they are equal.
    bool IsScaled() const { return Numerator() != Denominator() && Numerator() != 0 && Denominator() != 0; }
    int32_t IntOf(int32_t iRaw) const;
    double FloatOf(int32_t iRaw, Unit unit) const;

    int32_t Numerator() const { return Signed(3); }
    int32_t Denominator() const { return Signed(4); }
    int32_t Minimum() const { return Signed(5); }
    int32_t Maximum() const { return Signed(6); }
    int32_t Value() const { return Signed(7); }
    uint32_t Word(unsigned index) const { return auiWords_[index]; }

    /// Whether bit uiValue of the four mask words is set; uiValue is below 128.
    bool HasEnumValue(uint32_t uiValue) const { return (auiWords_[3 + uiValue / 32] >> (uiValue % 32) & 1) != 0; }

    /// raw * N, formed in 32 bits.
    int32_t Product(int32_t iRaw) const { return static_cast<int32_t>(static_cast<uint32_t>(iRaw) * auiWords_[3]); }

    /// With N = D the scale is an increment: raw values then lie on multiples of N above the minimum.
    bool IsOnGrid(int32_t iRaw) const;

  private:
    int32_t Signed(unsigned index) const { return static_cast<int32_t>(auiWords_[index]); }

    uint32_t auiWords_[wordsWithValue] = {};
};

/// One word as it stands.
CAM_API_STATUS ReadWord(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t *puiWord);
CAM_API_STATUS WriteWord(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t uiWord);

/// What an inquiry word says to the access wanted.
CAM_API_STATUS CheckInquiry(uint32_t uiInquiry, Access access);

CAM_API_STATUS ReadIntMinMaxUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiMin, uint32_t *puiMax);
CAM_API_STATUS ReadIntValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiValue);
CAM_API_STATUS WriteIntValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiValue, Grid grid);

CAM_API_STATUS ReadFloatMinMaxUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, Unit unit, double *pdMin, double *pdMax);
CAM_API_STATUS ReadFloatValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, Unit unit, double *pdValue);
CAM_API_STATUS WriteFloatValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, Unit unit, double dValue);

/// The value word of a boolean is B + 0x10.
CAM_API_STATUS ReadBoolValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, bool *pbValue);
CAM_API_STATUS WriteBoolValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, bool bValue);

/// The value word of an enumeration is B + 0x1C. 0xFFFFFFFF for a value that no mask has a bit for.
CAM_API_STATUS ReadEnumValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiValue);
CAM_API_STATUS WriteEnumValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiValue);

/// The control mode of a scaled feature, at B + 0x08. Bit m of the inquiry word says that mode m exists.
CAM_API_STATUS ReadModeUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiMode);
CAM_API_STATUS WriteModeUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiMode);

/// All lines in one word, at B + 0x10. Bits of lines that the camera lacks are dropped.
CAM_API_STATUS ReadLinesUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiLines);
CAM_API_STATUS WriteLinesUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiLines);

} // namespace Orvi
