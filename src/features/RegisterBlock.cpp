#include "features/RegisterBlock.h"

#include <cmath>

namespace Orvi {

namespace {

// Offsets in a block
constexpr uint64_t s_mode = 0x08;
constexpr uint64_t s_boolValue = 0x10;
constexpr uint64_t s_value = 0x1C;

constexpr double s_microseconds = 1e6;

bool HasBit(uint32_t uiWord, unsigned bit) { return (uiWord >> bit & 1) != 0; }

/// Reads the inquiry word alone.
CAM_API_STATUS ReadInquiry(CAM_HANDLE hCam, uint64_t ullBlock, Access access, uint32_t *puiInquiry)
{
    if (const CAM_API_STATUS status = ReadWord(hCam, ullBlock, puiInquiry))
        return status;
    return CheckInquiry(*puiInquiry, access);
}

/// Reads a word of a block behind its inquiry word.
CAM_API_STATUS ReadCheckedWord(CAM_HANDLE hCam, uint64_t ullBlock, uint64_t ullOffset, uint32_t *puiWord)
{
    uint32_t uiInquiry = 0;
    if (const CAM_API_STATUS status = ReadInquiry(hCam, ullBlock, Access::Read, &uiInquiry))
        return status;
    return ReadWord(hCam, ullBlock + ullOffset, puiWord);
}

/// The raw value for a unit value, and the limits of the unit value.
struct RawFloat {
    double dLow, dHigh;
    double dRaw; ///< a whole number, or not a number
};

RawFloat Unscale(const RegisterBlock &block, double dValue, Unit unit)
{
    const double dMin = block.Minimum(), dMax = block.Maximum();
    const bool bMicroseconds = unit == Unit::Microseconds;
    if (!block.IsScaled()) {
        const double dRaw = std::trunc(dValue);
        return {dMin, dMax, bMicroseconds ? std::trunc(dRaw / s_microseconds) : dRaw};
    }
    const double dNumerator = block.Numerator(), dDenominator = block.Denominator();
    const double dFactor = bMicroseconds ? s_microseconds : 1.0;
    const double dExact = dValue * dDenominator / (dNumerator * dFactor);
    double dRaw = std::trunc(dValue >= 0 ? dExact + 0.5 : dExact - 0.5);
    // At the edge of the range rounding may step over a limit: truncation does not. The factor is left out here.
    if (dRaw < dMin || dRaw > dMax)
        dRaw = std::trunc(dValue * dDenominator / dNumerator);
    return {block.Product(block.Minimum()) * dFactor / dDenominator,
            block.Product(block.Maximum()) * dFactor / dDenominator, dRaw};
}

} // namespace

CAM_API_STATUS ReadWord(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t *puiWord)
{
    return Cam_ReadReg(hCam, ullAdrs, 1, puiWord);
}

CAM_API_STATUS WriteWord(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t uiWord)
{
    return Cam_WriteReg(hCam, ullAdrs, 1, &uiWord);
}

CAM_API_STATUS CheckInquiry(uint32_t uiInquiry, Access access)
{
    if (!HasBit(uiInquiry, 31))
        return CAM_API_STS_NOT_IMPLEMENTED;
    if (!HasBit(uiInquiry, 30))
        return CAM_API_STS_ACCESS_DENIED;
    if (access == Access::Read)
        return HasBit(uiInquiry, 24) ? CAM_API_STS_SUCCESS : CAM_API_STS_NOT_READABLE;
    return HasBit(uiInquiry, 25) ? CAM_API_STS_SUCCESS : CAM_API_STS_NOT_WRITABLE;
}

CAM_API_STATUS RegisterBlock::Read(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiWords, Access access)
{
    if (const CAM_API_STATUS status = Cam_ReadReg(hCam, ullBlock, uiWords, auiWords_))
        return status;
    return CheckInquiry(auiWords_[0], access);
}

int32_t RegisterBlock::IntOf(int32_t iRaw) const
{
    // In 64 bits, because -2^31 / -1 does not fit 32.
    return IsScaled() ? static_cast<int32_t>(int64_t{Product(iRaw)} / Denominator()) : iRaw;
}

double RegisterBlock::FloatOf(int32_t iRaw, Unit unit) const
{
    const double dValue = IsScaled() ? static_cast<double>(Product(iRaw)) / Denominator() : iRaw;
    return unit == Unit::Microseconds ? dValue * s_microseconds : dValue;
}

bool RegisterBlock::IsOnGrid(int32_t iRaw) const
{
    const int64_t llIncrement = Numerator();
    return llIncrement == 0 || llIncrement != Denominator() || (int64_t{iRaw} - Minimum()) % llIncrement == 0;
}

CAM_API_STATUS ReadIntMinMaxUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiMin, uint32_t *puiMax)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithoutValue, Access::Read))
        return status;
    *puiMin = static_cast<uint32_t>(block.IntOf(block.Minimum()));
    *puiMax = static_cast<uint32_t>(block.IntOf(block.Maximum()));
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS ReadIntValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiValue)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithValue, Access::Read))
        return status;
    *puiValue = static_cast<uint32_t>(block.IntOf(block.Value()));
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS WriteIntValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiValue, Grid grid)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithoutValue, Access::Write))
        return status;
    uint32_t uiRaw = uiValue;
    if (block.IsScaled())
        uiRaw = static_cast<uint32_t>(block.Denominator()) * uiValue / static_cast<uint32_t>(block.Numerator());
    const auto iRaw = static_cast<int32_t>(uiRaw);
    if (iRaw > block.Maximum() || iRaw < block.Minimum() || (grid == Grid::Checked && !block.IsOnGrid(iRaw)))
        return CAM_API_STS_INVALID_PARAMETER;
    return WriteWord(hCam, ullBlock + s_value, uiRaw);
}

CAM_API_STATUS ReadFloatMinMaxUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, Unit unit, double *pdMin, double *pdMax)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithoutValue, Access::Read))
        return status;
    *pdMin = block.FloatOf(block.Minimum(), unit);
    *pdMax = block.FloatOf(block.Maximum(), unit);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS ReadFloatValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, Unit unit, double *pdValue)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithValue, Access::Read))
        return status;
    *pdValue = block.FloatOf(block.Value(), unit);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS WriteFloatValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, Unit unit, double dValue)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithoutValue, Access::Write))
        return status;
    const RawFloat raw = Unscale(block, dValue, unit);
    const bool bInRange = raw.dLow <= dValue && dValue <= raw.dHigh;
    const bool bRawInRange = block.Minimum() <= raw.dRaw && raw.dRaw <= block.Maximum();
    if (!bInRange || !bRawInRange)
        return CAM_API_STS_INVALID_PARAMETER;
    const auto iRaw = static_cast<int32_t>(raw.dRaw);
    if (!block.IsOnGrid(iRaw))
        return CAM_API_STS_INVALID_PARAMETER;
    return WriteWord(hCam, ullBlock + s_value, static_cast<uint32_t>(iRaw));
}

CAM_API_STATUS ReadBoolValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, bool *pbValue)
{
    uint32_t uiValue = 0;
    if (const CAM_API_STATUS status = ReadLinesUseIIDCReg(hCam, ullBlock, &uiValue))
        return status;
    *pbValue = uiValue != 0;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS WriteBoolValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, bool bValue)
{
    uint32_t uiInquiry = 0;
    if (const CAM_API_STATUS status = ReadInquiry(hCam, ullBlock, Access::Write, &uiInquiry))
        return status;
    return WriteWord(hCam, ullBlock + s_boolValue, bValue ? 1 : 0);
}

CAM_API_STATUS ReadEnumValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiValue)
{
    return ReadCheckedWord(hCam, ullBlock, s_value, puiValue);
}

CAM_API_STATUS WriteEnumValueUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiValue)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, RegisterBlock::wordsWithoutValue, Access::Write))
        return status;
    if (uiValue >= 128)
        return CAM_API_STS_UNSUCCESSFUL;
    if (!block.HasEnumValue(uiValue))
        return CAM_API_STS_NOT_AVAILABLE;
    return WriteWord(hCam, ullBlock + s_value, uiValue);
}

CAM_API_STATUS ReadModeUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiMode)
{
    return ReadCheckedWord(hCam, ullBlock, s_mode, puiMode);
}

CAM_API_STATUS WriteModeUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiMode)
{
    uint32_t uiInquiry = 0;
    if (const CAM_API_STATUS status = ReadInquiry(hCam, ullBlock, Access::Write, &uiInquiry))
        return status;
    if (uiMode >= 32 || !HasBit(uiInquiry, uiMode))
        return CAM_API_STS_NOT_AVAILABLE;
    return WriteWord(hCam, ullBlock + s_mode, uiMode);
}

CAM_API_STATUS ReadLinesUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t *puiLines)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, 5, Access::Read))
        return status;
    *puiLines = block.Word(4);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS WriteLinesUseIIDCReg(CAM_HANDLE hCam, uint64_t ullBlock, uint32_t uiLines)
{
    RegisterBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam, ullBlock, 4, Access::Write))
        return status;
    return WriteWord(hCam, ullBlock + s_boolValue, uiLines & block.Word(3));
}

} // namespace Orvi
