// The first four bytes are the manifest entry's schema, which tells the compression; the rest is what is stored.

#include "u3v/core/Status.h"
#include "u3v/protocol/Description.h"
#include "u3v/protocol/Zip.h"

#include "tests/fuzz/Bytes.h"

namespace Orvi::Fuzz {

void Archive(Input input)
{
    Bytes bytes(input);
    U3v::ManifestEntry entry{};
    entry.schema = bytes.Number<std::uint32_t>();
    const Input stored = bytes.TakeAll();
    entry.size = stored.size();
    try {
        U3v::BestEntry({entry});
        U3v::IsZip(stored);
        const std::string text = U3v::UnpackDescription(entry, stored);
        Require(text.empty() || text.back() != '\0', "the padding is taken away");
    } catch (const U3v::StatusError &error) {
        Require(error.Status() == CAM_API_STS_XML_LOAD_ERR, "an unusable description has its own status");
    }
}

} // namespace Orvi::Fuzz
