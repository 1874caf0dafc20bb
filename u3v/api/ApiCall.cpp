#include "u3v/api/ApiCall.h"

namespace Orvi::U3v {
namespace {

void Record(const std::exception &error) noexcept
{
    try {
        SetLastGenICamError(error.what());
    } catch (const std::bad_alloc &) {
        return; // the status tells more than a second failure would
    }
}

} // namespace

CAM_API_STATUS StatusOfException() noexcept
{
    try {
        throw;
    } catch (const StatusError &error) {
        if (error.Status() == CAM_API_STS_XML_LOAD_ERR)
            Record(error);
        return error.Status();
    } catch (const GenApi::Error &error) {
        Record(error);
        return CAM_API_STS_GENICAM_ERR;
    } catch (const std::bad_alloc &) {
        return CAM_API_STS_NO_MEMORY;
    } catch (...) {
        return CAM_API_STS_UNSUCCESSFUL;
    }
}

} // namespace Orvi::U3v
