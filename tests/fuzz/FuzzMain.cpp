// A fuzzer: libFuzzer's entry for the target that ORVI_FUZZ_TARGET names.

#include "tests/fuzz/Targets.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Orvi::Fuzz::ORVI_FUZZ_TARGET(std::as_bytes(std::span(data, size)));
    return 0;
}
