#include "u3v/api/ApiCall.h"

namespace Orvi::U3v {

CAM_API_STATUS StatusOfException() noexcept
{
    try {
        throw;
    } catch (const StatusError &error) {
        return error.Status();
    } catch (const GenApi::Error &error) {
        try {
            SetLastGenICamError(error.what());
        } catch (...) {
            return CAM_API_STS_GENICAM_ERR;
        }
        return CAM_API_STS_GENICAM_ERR;
    } catch (const std::bad_alloc &) {
        return CAM_API_STS_NO_MEMORY;
    } catch (...) {
        return CAM_API_STS_UNSUCCESSFUL;
    }
}

} // namespace Orvi::U3v
