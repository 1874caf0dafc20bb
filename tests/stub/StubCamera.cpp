// Cameras and registers as a plausible transport has them.

#include "tests/stub/StubTransport.h"

namespace Orvi::Stub {

namespace {

Camera *FindCamera(Transport &stub, CAM_HANDLE hCam, uint32_t devNum)
{
    for (Camera &camera : stub.cameras)
        if (hCam != 0 && camera.isOpen && camera.handle == hCam)
            return &camera;
    return hCam == 0 && devNum >= 1 && devNum <= stub.cameras.size() ? &stub.cameras[devNum - 1] : nullptr;
}

CAM_API_STATUS CameraItem(const Camera &camera, uint32_t item, void *buffer, uint32_t *size)
{
    if (const auto text = camera.texts.find(item); text != camera.texts.end())
        return CopyText(text->second, static_cast<char *>(buffer), size);
    const auto number = camera.numbers.find(item);
    if (number == camera.numbers.end())
        return CAM_API_STS_INVALID_PARAMETER;
    *static_cast<uint32_t *>(buffer) = number->second;
    *size = sizeof(uint32_t);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS Transfer(Transport &stub, uint64_t address, uint32_t *read, const uint32_t *written, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        const auto word = stub.registers.find(address + 4 * uint64_t{i});
        if (word == stub.registers.end())
            return CAM_API_STS_INVALID_ADDRESS;
        if (read != nullptr)
            read[i] = word->second;
        else
            word->second = written[i];
    }
    return CAM_API_STS_SUCCESS;
}

} // namespace

void InstallCameraHooks(Transport &stub)
{
    stub.on.Sys_GetInformation = [](uint32_t item, void *buffer, uint32_t *size) -> CAM_API_STATUS {
        return CopyText("Stub item " + std::to_string(item), static_cast<char *>(buffer), size);
    };
    stub.on.Sys_GetNumOfCameras = [&stub](uint32_t *count) -> CAM_API_STATUS {
        *count = static_cast<uint32_t>(stub.cameras.size());
        return CAM_API_STS_SUCCESS;
    };
    stub.on.Cam_GetInformation = [&stub](CAM_HANDLE hCam, uint32_t devNum, uint32_t item, void *buffer,
                                         uint32_t *size) -> CAM_API_STATUS {
        const Camera *camera = FindCamera(stub, hCam, devNum);
        return camera == nullptr ? CAM_API_STS_INVALID_CAMERA_INDEX : CameraItem(*camera, item, buffer, size);
    };
    stub.on.Cam_Open = [&stub](uint32_t devNum, void *, CAM_HANDLE *hCam, bool, void *) -> CAM_API_STATUS {
        if (devNum < 1 || devNum > stub.cameras.size())
            return CAM_API_STS_INVALID_CAMERA_INDEX;
        Camera &camera = stub.cameras[devNum - 1];
        const bool wasOpen = std::exchange(camera.isOpen, true);
        *hCam = camera.handle = 0x10 + devNum;
        return wasOpen ? CAM_API_STS_ALREADY_OPENED : CAM_API_STS_SUCCESS;
    };
    stub.on.Cam_Close = [&stub](CAM_HANDLE hCam) -> CAM_API_STATUS {
        if (Camera *camera = FindCamera(stub, hCam, 0))
            camera->isOpen = false;
        return CAM_API_STS_SUCCESS;
    };
    stub.on.Cam_ReadReg = [&stub](CAM_HANDLE, uint64_t address, void *data, uint32_t *count) -> CAM_API_STATUS {
        return Transfer(stub, address, static_cast<uint32_t *>(data), nullptr, *count);
    };
    stub.on.Cam_WriteReg = [&stub](CAM_HANDLE, uint64_t address, const void *data, uint32_t *count) -> CAM_API_STATUS {
        return Transfer(stub, address, nullptr, static_cast<const uint32_t *>(data), *count);
    };
    stub.on.Misc_GetLastGenICamError = [&stub](CAM_GENICAM_ERROR *error) -> CAM_API_STATUS {
        *error = {stub.genICamError.c_str(), {0, 0}};
        return CAM_API_STS_SUCCESS;
    };
}

} // namespace Orvi::Stub
