#pragma once
// Features as data. A feature that follows its family is a descriptor and three words:
//
//     constexpr FloatFeature s_gamma = {"Gamma", RegMapKX::Gamma, "Gamma"};
//     CAM_API_STATUS GetCamGamma(CAM_HANDLE hCam, double *pdGamma) { return GetFeature(__func__, s_gamma, hCam,
//     pdGamma); }
//
// The verbs write the lines of the log, choose the road and check. A feature with a register block takes the register
// road on cameras with control registers, the node road on the others; one without takes the node road always. The
// first member of a descriptor names the argument in the log, behind the prefix of its type.

#include "features/FeatureCall.h"
#include "features/RegisterBlock.h"

#include <span>
#include <string_view>
#include <type_traits>

namespace Orvi {

/// The block of features that stand in no control register.
inline constexpr uint64_t s_noRegisters = 0;

/// Whether a control register may be written while images flow.
enum class Streaming { Allows, Forbids };

struct FloatFeature {
    const char *name;
    uint64_t ullBlock;
    const char *node;
    Unit unit = Unit::AsCounted;
};

struct IntFeature {
    const char *name;
    const char *limits; ///< name of the limits in the log, before "Min" and "Max"
    uint64_t ullBlock;
    const char *node;
    Streaming streaming = Streaming::Allows;
};

struct BoolFeature {
    const char *name;
    const char *node;
};

/// A value and the symbol of its entry in the node; some cameras call it otherwise.
struct NamedValue {
    uint32_t uiValue;
    const char *name;
    const char *otherName = nullptr;
};
using NamedValues = std::span<const NamedValue>;

/// Which word of its block an enumeration is.
enum class EnumRegister { Value, Mode };

struct EnumFeature {
    const char *name;
    uint64_t ullBlock;
    const char *node;
    NamedValues values;
    EnumRegister word = EnumRegister::Value;
    Streaming streaming = Streaming::Allows;
};

/// A command: a value written to a register, or a node executed.
struct CommandFeature {
    uint64_t ullBlock;
    uint32_t uiValue;
    const char *node;
};

CAM_API_STATUS GetFeature(const char *function, const FloatFeature &feature, CAM_HANDLE hCam, double *pdValue,
                          SuccessLoggedAs success = {nullptr});
CAM_API_STATUS GetFeatureMinMax(const char *function, const FloatFeature &feature, CAM_HANDLE hCam, double *pdMin,
                                double *pdMax);
CAM_API_STATUS SetFeature(const char *function, const FloatFeature &feature, CAM_HANDLE hCam, double dValue);

CAM_API_STATUS GetFeature(const char *function, const IntFeature &feature, CAM_HANDLE hCam, uint32_t *puiValue);
CAM_API_STATUS GetFeatureMinMax(const char *function, const IntFeature &feature, CAM_HANDLE hCam, uint32_t *puiMin,
                                uint32_t *puiMax);
CAM_API_STATUS SetFeature(const char *function, const IntFeature &feature, CAM_HANDLE hCam, uint32_t uiValue);

CAM_API_STATUS GetFeature(const char *function, const BoolFeature &feature, CAM_HANDLE hCam, bool *pbValue);
CAM_API_STATUS SetFeature(const char *function, const BoolFeature &feature, CAM_HANDLE hCam, bool bValue);

/// On cameras of neither kind: 0x07. On the node road a value without a symbol is 0x0D, a symbol without a value
/// 0xFFFFFFFF.
CAM_API_STATUS GetFeature(const char *function, const EnumFeature &feature, CAM_HANDLE hCam, uint32_t *peValue);
CAM_API_STATUS SetFeature(const char *function, const EnumFeature &feature, CAM_HANDLE hCam, uint32_t eValue);

/// On the node road it waits until the camera reports the command done, for at most 50 polls. On cameras of neither
/// kind: 0x07.
CAM_API_STATUS ExecuteFeature(const char *function, const CommandFeature &feature, CAM_HANDLE hCam);

/// Runs read on a plain word and hands the result on as the exported enumeration.
template <class Enum, class Read>
CAM_API_STATUS ReadAsEnum(Enum *peValue, const Read &read)
{
    uint32_t uiValue = 0;
    const CAM_API_STATUS status = read(peValue != nullptr ? &uiValue : nullptr);
    if (status == CAM_API_STS_SUCCESS)
        *peValue = static_cast<Enum>(uiValue);
    return status;
}

template <class Enum>
requires std::is_enum_v<Enum> CAM_API_STATUS GetFeature(const char *function, const EnumFeature &feature,
                                                        CAM_HANDLE hCam, Enum *peValue)
{
    return ReadAsEnum(peValue, [&](uint32_t *puiValue) { return GetFeature(function, feature, hCam, puiValue); });
}

/// 0x807 while the camera streams; a camera that does not tell counts as not streaming.
CAM_API_STATUS RefuseWhileStreaming(CAM_HANDLE hCam);

/// Rows of a table of names; null when there is none.
const NamedValue *FindValue(NamedValues values, uint32_t uiValue);
const NamedValue *FindName(NamedValues values, std::string_view name);

/// Reads an enumeration node and finds the value of its symbol; 0xFFFFFFFF for one that the table lacks.
CAM_API_STATUS GetGenEnumValue(CAM_HANDLE hCam, const char *pszNode, NamedValues values, uint32_t *puiValue);

/// Writes a value's symbol, or its other one when the node refuses the first; the first refusal is the status.
CAM_API_STATUS SetGenEnumValue(CAM_HANDLE hCam, const char *pszNode, const NamedValue &value);
/// As above; 0x0D for a value that the table lacks.
CAM_API_STATUS SetGenEnumValue(CAM_HANDLE hCam, const char *pszNode, NamedValues values, uint32_t uiValue);

/// A node and the symbol of one of its entries.
struct NodeSymbol {
    const char *node;
    const char *symbol;
};

/// Writes the first; on cameras that do not implement its node the second. Unless one succeeds the first refusal is the
/// status.
CAM_API_STATUS SetGenEnumOrElse(CAM_HANDLE hCam, const NodeSymbol &first, const NodeSymbol &second);

} // namespace Orvi
