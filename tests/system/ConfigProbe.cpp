// Initialises the library and prints the result, and whether and at which level its log is then up.

#include "log/UNI_Log.h"

#include <cstdio>

int main()
{
    const CAM_API_STATUS status = Sys_Initialize(SYS_INIT_U3V);
    std::printf("%#x %s %u\n", status, Orvi::g_bUniLogInit ? "up" : "down", Orvi::Uni_GetLogLevel());
    Sys_Terminate();
}
