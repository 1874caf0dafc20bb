/**
 * @file OrviCamApi.h
 * @brief The Orvi camera library: find, open, configure and stream from USB3 Vision cameras.
 *
 * Link with `libOrviCamApi_64` (pkg-config `OrviCamApi`, CMake `Orvi::CamApi`). The header is plain C11 and C++17 and
 * needs no other file of the library.
 *
 * @par A first program
 * @code
 * uint32_t n = 0;
 * CAM_HANDLE hCam, hStrm;
 * Sys_Initialize(SYS_INIT_ALL);
 * Sys_GetNumOfCameras(&n);                                        // ORVI_VIRTUAL_CAMERAS=1 gives a virtual one
 * Cam_Open(0, &hCam, NULL, true, NULL, CAM_ACCESS_MODE_CONTROL);
 * uint32_t uiPayload = 0;
 * Strm_OpenSimple(hCam, &hStrm, &uiPayload, NULL, 0, 0);
 * Strm_Start(hStrm, CAM_ACQ_MODE_CONTINUOUS);
 * // ... Strm_ReadCurrentImage ...
 * Strm_Stop(hStrm);
 * Strm_Close(hStrm);
 * Cam_Close(hCam);
 * Sys_Terminate();
 * @endcode
 *
 * @par Statuses
 * Every function returns a ::CAM_API_STATUS, 0 for success. Besides the statuses named at a function, each function on
 * a camera, node, stream or event returns
 * - #CAM_API_STS_NOT_INITIALIZED before a successful Sys_Initialize(), whatever its arguments;
 * - #CAM_API_STS_INVALID_CAMERA_HANDLE, #CAM_API_STS_INVALID_STREAM_HANDLE or #CAM_API_STS_INVALID_EVENT_HANDLE for a
 *   handle that the library has not handed out or that is closed;
 * - the transport's status when the transport refuses or fails; one that the library does not know becomes
 *   #CAM_API_STS_UNSUCCESSFUL.
 * Output arguments are written on success only, unless a function says otherwise.
 *
 * @par Threads
 * Sys_Initialize(), Sys_Terminate(), Sys_GetNumOfCameras() and every open and close must not run at the same time as
 * any of each other: the application serialises them. All other functions may be called from any thread, also on the
 * same handle, unless they say otherwise. No function throws.
 */
#ifndef ORVI_CAM_API_H
#define ORVI_CAM_API_H

#include <stdbool.h>
#include <stdint.h>

/** @name Statuses */
/** @{ */
/** Result of every function: 0 for success, else one of the codes below. */
typedef uint32_t CAM_API_STATUS;

#define CAM_API_STS_SUCCESS UINT32_C(0x0)                     /**< Done. */
#define CAM_API_STS_NOT_INITIALIZED UINT32_C(0x1)             /**< Called before Sys_Initialize() succeeded. */
#define CAM_API_STS_ALREADY_INITIALIZED UINT32_C(0x2)         /**< The library or the log is up already. */
#define CAM_API_STS_NOT_FOUND UINT32_C(0x3)                   /**< The thing asked for does not exist. */
#define CAM_API_STS_ALREADY_OPENED UINT32_C(0x4)              /**< The camera or channel is open already. */
#define CAM_API_STS_ALREADY_ACTIVATED UINT32_C(0x5)           /**< The event is active already. */
#define CAM_API_STS_INVALID_CAMERA_INDEX UINT32_C(0x6)        /**< The transport knows no such camera. */
#define CAM_API_STS_INVALID_CAMERA_HANDLE UINT32_C(0x7)       /**< Unknown, closed or zero camera handle. */
#define CAM_API_STS_INVALID_NODE_HANDLE UINT32_C(0x8)         /**< Unknown or stale node handle. */
#define CAM_API_STS_INVALID_STREAM_HANDLE UINT32_C(0x9)       /**< Unknown, closed or zero stream handle. */
#define CAM_API_STS_INVALID_REQUEST_HANDLE UINT32_C(0xA)      /**< Unknown or released request handle. */
#define CAM_API_STS_INVALID_EVENT_HANDLE UINT32_C(0xB)        /**< Unknown, closed or zero event channel handle. */
#define CAM_API_STS_INVALID_IMAGE_HANDLE UINT32_C(0xC)        /**< Unknown image. */
#define CAM_API_STS_INVALID_PARAMETER UINT32_C(0xD)           /**< Null output or argument out of range. */
#define CAM_API_STS_BUFFER_TOO_SMALL UINT32_C(0xE)            /**< The caller's buffer cannot hold the answer. */
#define CAM_API_STS_NO_MEMORY UINT32_C(0xF)                   /**< Out of memory; the log: out of disk space. */
#define CAM_API_STS_MEMORY_NO_ACCESS UINT32_C(0x10)           /**< The caller's memory cannot be used. */
#define CAM_API_STS_NOT_IMPLEMENTED UINT32_C(0x11)            /**< The camera has no such feature. */
#define CAM_API_STS_TIMEOUT UINT32_C(0x12)                    /**< Nothing happened within the time given. */
#define CAM_API_STS_CAMERA_NOT_RESPONDING UINT32_C(0x13)      /**< The camera does not answer. */
#define CAM_API_STS_EMPTY_COMPLETE_QUEUE UINT32_C(0x14)       /**< No request is complete yet. */
#define CAM_API_STS_NOT_READY UINT32_C(0x15)                  /**< Not ready yet. */
#define CAM_API_STS_ACCESS_MODE_SET_ERR UINT32_C(0x16)        /**< The access mode could not be set. */
#define CAM_API_STS_XML_LOAD_ERR UINT32_C(0x101)              /**< The camera's description cannot be loaded. */
#define CAM_API_STS_GENICAM_ERR UINT32_C(0x102)               /**< A node refused; see Misc_GetLastGenICamError(). */
#define CAM_API_STS_DLL_LOAD_ERR UINT32_C(0x103)              /**< No transport could be loaded and started. */
#define CAM_API_STS_INVALID_ADDRESS UINT32_C(0x801)           /**< The camera has no register there. */
#define CAM_API_STS_WRITE_PROTECT UINT32_C(0x802)             /**< The register is read-only. */
#define CAM_API_STS_BAD_ALIGNMENT UINT32_C(0x803)             /**< Address or size is not aligned. */
#define CAM_API_STS_ACCESS_DENIED UINT32_C(0x804)             /**< Refused by the camera in its present state. */
#define CAM_API_STS_BUSY UINT32_C(0x805)                      /**< The camera is busy. */
#define CAM_API_STS_NOT_READABLE UINT32_C(0x806)              /**< The feature cannot be read. */
#define CAM_API_STS_NOT_WRITABLE UINT32_C(0x807)              /**< The feature cannot be written, or not now. */
#define CAM_API_STS_NOT_AVAILABLE UINT32_C(0x808)             /**< The feature or function is not available now. */
#define CAM_API_STS_REQUEST_TIMEOUT UINT32_C(0x1001)          /**< A request was not filled in time. */
#define CAM_API_STS_RESEND_TIMEOUT UINT32_C(0x1002)           /**< A resend did not arrive in time. */
#define CAM_API_STS_RESPONSE_TIMEOUT UINT32_C(0x1003)         /**< An answer did not arrive in time. */
#define CAM_API_STS_BUFFER_FULL UINT32_C(0x1004)              /**< No buffer was free. */
#define CAM_API_STS_UNEXPECTED_BUFFER_SIZE UINT32_C(0x1005)   /**< The payload does not fit the buffer. */
#define CAM_API_STS_UNEXPECTED_NUMBER UINT32_C(0x1006)        /**< A number out of sequence. */
#define CAM_API_STS_PACKET_STATUS_ERROR UINT32_C(0x1007)      /**< The camera marked a packet as bad. */
#define CAM_API_STS_RESEND_NOT_IMPLEMENTED UINT32_C(0x1008)   /**< The camera cannot resend. */
#define CAM_API_STS_PACKET_UNAVAILABLE UINT32_C(0x1009)       /**< The camera no longer has the packet. */
#define CAM_API_STS_MISSING_PACKETS UINT32_C(0x100A)          /**< Parts of the image are missing. */
#define CAM_API_STS_FLUSH_REQUESTED UINT32_C(0x100B)          /**< The request was flushed. */
#define CAM_API_STS_TOO_MANY_PACKET_MISSING UINT32_C(0x100C)  /**< Too much of the image is missing. */
#define CAM_API_STS_FLUSHED_BY_D0EXIT UINT32_C(0x100D)        /**< The request was flushed by a power change. */
#define CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE UINT32_C(0x100E) /**< The camera was unplugged. */
#define CAM_API_STS_FILE_OPEN_ERROR UINT32_C(0x2001)          /**< A file cannot be opened. */
#define CAM_API_STS_FILE_WRITE_ERROR UINT32_C(0x2002)         /**< A file cannot be written. */
#define CAM_API_STS_FILE_READ_ERROR UINT32_C(0x2003)          /**< A file cannot be read. */
#define CAM_API_STS_FILE_NOT_FOUND UINT32_C(0x2004)           /**< A file does not exist. */
#define CAM_API_STS_DATA_DISCARDED UINT32_C(0xA100)           /**< The camera discarded part of the image. */
#define CAM_API_STS_UNSUCCESSFUL UINT32_C(0xFFFFFFFF)         /**< Failed for a reason without a code. */
/** @} */

/** @name Limits and flags */
/** @{ */
#define CAMERA_INDEX_MAX 64                    /**< Cameras that one enumeration can hold. */
#define SYS_INIT_U3V 1                         /**< Sys_Initialize(): the USB3 Vision transport. */
#define SYS_INIT_GEV 2                         /**< Sys_Initialize(): a GigE Vision transport; never available. */
#define SYS_INIT_ALL 0xFFFF                    /**< Sys_Initialize(): every available transport. */
#define SYS_WAIT_INFINITE UINT32_C(0xFFFFFFFF) /**< Sys_WaitForSignal(): no time limit. */
/** @} */

/** An opaque value that names a camera, stream, event channel, request, node or signal. 0 is never valid. */
typedef uint64_t CAM_HANDLE;

/* A 32-bit enumeration that may carry any 32-bit value, in both languages. */
#ifdef __cplusplus
#define CAM_ENUM(name) enum name : uint32_t
#else
#define CAM_ENUM(name)                                                                                                 \
    typedef uint32_t name;                                                                                             \
    enum
#endif

#ifdef __cplusplus
namespace Orvi {
#endif
/** What kind of camera a handle belongs to. */
CAM_ENUM(CAM_TYPE){
    CAM_TYPE_NONE = 0, /**< No camera, or an unknown handle. */
    CAM_TYPE_U3V = 1,  /**< USB3 Vision. */
    CAM_TYPE_GEV = 2   /**< GigE Vision; no camera of this kind is ever opened. */
};
#ifdef __cplusplus
} // namespace Orvi
using Orvi::CAM_TYPE;
using Orvi::CAM_TYPE_GEV;
using Orvi::CAM_TYPE_NONE;
using Orvi::CAM_TYPE_U3V;
#endif

/** How Cam_Open() wants the camera. Only logged: every open has full control. */
CAM_ENUM(CAM_ACCESS_MODE){
    CAM_ACCESS_MODE_READ = 0,     /**< Read only. */
    CAM_ACCESS_MODE_CONTROL = 1,  /**< Control. */
    CAM_ACCESS_MODE_EXCLUSIVE = 2 /**< Exclusive. */
};

/** Values of `eAcqMode` of Strm_Start(). */
CAM_ENUM(CAM_ACQ_MODE){
    CAM_ACQ_MODE_CONTINUOUS = 0x8,       /**< Images until Strm_Stop(). */
    CAM_ACQ_MODE_MULTI_FRAME = 0x9,      /**< As many images as AcquisitionFrameCount says. */
    CAM_ACQ_MODE_IMAGE_BUFFER_READ = 0xA /**< The images held in the camera's image buffer. */
};

/** Pipes of a camera, for Cam_AbortPipe() and Cam_ResetPipe(). */
CAM_ENUM(CAM_PIPE){
    CAM_PIPE_CONTROL = 0, /**< Register access. */
    CAM_PIPE_EVENT = 1,   /**< Camera events. */
    CAM_PIPE_STREAM = 2   /**< Images. */
};

/** Levels of the log; a line is written when its level is at least the log's. */
CAM_ENUM(CAM_LOG_LEVEL){
    CAM_LOG_LEVEL_DEBUG = 0, /**< Everything. */
    CAM_LOG_LEVEL_INFO = 1,  /**< Calls and their successful ends. */
    CAM_LOG_LEVEL_WARN = 2,  /**< What is unusual but no failure. */
    CAM_LOG_LEVEL_ERROR = 3, /**< Failures. */
    CAM_LOG_LEVEL_FATAL = 4  /**< The application's own gravest level. */
};

/** @name Attributes of nodes, numbered as in GenICam */
/** @{ */
/** Interface of a node (Nd_GetType()). */
CAM_ENUM(CAM_NODE_TYPE){
    CAM_NODE_TYPE_VALUE = 0,       /**< A value without further kind. */
    CAM_NODE_TYPE_BASE = 1,        /**< A node without a value. */
    CAM_NODE_TYPE_INTEGER = 2,     /**< Nd_GetIntValue() and the like. */
    CAM_NODE_TYPE_BOOLEAN = 3,     /**< Nd_GetBoolValue() and the like. */
    CAM_NODE_TYPE_COMMAND = 4,     /**< Nd_CmdExecute(). */
    CAM_NODE_TYPE_FLOAT = 5,       /**< Nd_GetFloatValue() and the like. */
    CAM_NODE_TYPE_STRING = 6,      /**< Nd_GetStrValue() and the like. */
    CAM_NODE_TYPE_REGISTER = 7,    /**< Raw bytes. */
    CAM_NODE_TYPE_CATEGORY = 8,    /**< Nd_GetNumOfFeatures(), Nd_GetFeatureByIndex(). */
    CAM_NODE_TYPE_ENUMERATION = 9, /**< Nd_GetEnumIntValue() and the like. */
    CAM_NODE_TYPE_ENUM_ENTRY = 10, /**< Nd_GetEnumEntryIntValue() and the like. */
    CAM_NODE_TYPE_PORT = 11        /**< A way to the camera's memory. */
};

/** What may be done with a node now (Nd_GetAccessMode()). */
CAM_ENUM(CAM_NODE_ACCESS_MODE){
    CAM_NODE_ACCESS_MODE_NI = 0, /**< Not implemented. */
    CAM_NODE_ACCESS_MODE_NA = 1, /**< Not available now. */
    CAM_NODE_ACCESS_MODE_WO = 2, /**< Write only. */
    CAM_NODE_ACCESS_MODE_RO = 3, /**< Read only. */
    CAM_NODE_ACCESS_MODE_RW = 4  /**< Read and write. */
};

/** For whom a node is meant (Nd_GetVisibility()). */
CAM_ENUM(CAM_NODE_VISIBILITY){
    CAM_NODE_VISIBILITY_BEGINNER = 0, /**< Everybody. */
    CAM_NODE_VISIBILITY_EXPERT = 1,   /**< Experts. */
    CAM_NODE_VISIBILITY_GURU = 2,     /**< Those who know the camera's inside. */
    CAM_NODE_VISIBILITY_INVISIBLE = 3 /**< Nobody: for the interface only. */
};

/** What is remembered of a node's value (Nd_GetCachingMode()). */
CAM_ENUM(CAM_NODE_CACHING_MODE){
    CAM_NODE_CACHING_MODE_NO_CACHE = 0,      /**< Nothing: each read asks the camera. */
    CAM_NODE_CACHING_MODE_WRITE_THROUGH = 1, /**< What was read or written. */
    CAM_NODE_CACHING_MODE_WRITE_AROUND = 2   /**< What was read; a write forgets it. */
};

/** How a number is best shown (Nd_GetRepresentation()). */
CAM_ENUM(CAM_NODE_REPRESENTATION){
    CAM_NODE_REPRESENTATION_LINEAR = 0,       /**< A linear slider. */
    CAM_NODE_REPRESENTATION_LOGARITHMIC = 1,  /**< A logarithmic slider. */
    CAM_NODE_REPRESENTATION_BOOLEAN = 2,      /**< A check box. */
    CAM_NODE_REPRESENTATION_PURE_NUMBER = 3,  /**< A decimal number. */
    CAM_NODE_REPRESENTATION_HEX_NUMBER = 4,   /**< A hexadecimal number. */
    CAM_NODE_REPRESENTATION_IPV4_ADDRESS = 5, /**< An IP address. */
    CAM_NODE_REPRESENTATION_MAC_ADDRESS = 6,  /**< A MAC address. */
    CAM_NODE_REPRESENTATION_UNDEFINED = 7     /**< The description does not say. */
};

/** How a float is best written (Nd_GetFloatDisplayNotation()). */
CAM_ENUM(CAM_NODE_DISPLAY_NOTATION){
    CAM_NODE_DISPLAY_NOTATION_AUTOMATIC = 0, /**< Fixed or scientific, whichever is shorter. */
    CAM_NODE_DISPLAY_NOTATION_FIXED = 1,     /**< 123.4 */
    CAM_NODE_DISPLAY_NOTATION_SCIENTIFIC = 2 /**< 1.234e-2 */
};
/** @} */

/** @name Records */
/** @{ */
/** Sys_GetInformation(): NUL-terminated texts. 448 bytes. */
typedef struct CAM_SYSTEM_INFO {
    char szTransportName[64];       /**< Item 1 of the transport: its name. */
    char szTransportVersion[64];    /**< Item 2 of the transport: its version. */
    char szTransportUsbVersion[64]; /**< Item 3 of the transport: its USB library's version. */
    char szReserved[3][64];         /**< Zero. */
    char szApiVersion[64];          /**< Version of this library. */
} CAM_SYSTEM_INFO;

/**
 * Cam_GetInformation(). 2044 bytes. A text that fills its 64 bytes has no closing NUL (a user-defined name may).
 */
typedef struct CAM_INFO {
    CAM_TYPE eCamType;           /**< #CAM_TYPE_U3V. */
    char szManufacturer[64];     /**< Maker. */
    char szModelName[64];        /**< Model. */
    char szSerialNumber[64];     /**< Serial number: stable, and the best name of a camera. */
    char szUserDefinedName[64];  /**< The name that users gave the camera, or empty. */
    char szFamilyName[64];       /**< Product family, or empty. */
    char szDeviceVersion[64];    /**< Version of the device. */
    char szManufacturerInfo[64]; /**< The maker's remarks; or "cannot be opened: " and why. */
    uint8_t ucReserved0[8];      /**< Zero. */
    uint32_t uiLinkSpeed;        /**< Current USB speed: 1 low, 2 full, 4 high, 8 super, 16 super+. */
    uint8_t ucReserved1[1580];   /**< Zero. */
} CAM_INFO;

/** Cam_GetU3vInformationEx(). 4104 bytes. */
typedef struct CAM_U3V_INFO_EX {
    uint32_t uiU3vVersion;      /**< USB3 Vision version: major in bits 31..16, minor in 15..0. */
    uint32_t uiMaxTransferSize; /**< Largest transfer of the link in bytes. */
    uint8_t ucReserved[4096];   /**< Zero. */
} CAM_U3V_INFO_EX;

/**
 * What is known of a delivered image: Strm_GetStrmReqInfo(), Strm_ReadCurrentImage() and the image callbacks.
 * 72 bytes.
 */
typedef struct CAM_STREAM_REQUEST_INFO {
    CAM_API_STATUS uiStatus;      /**< How the request ended: 0, 0x1001, 0x1005, 0x100A, 0x100B, 0x100E, 0xA100 ... */
    uint32_t uiPayloadType;       /**< USB3 Vision payload type: 0x0001 image, 0x4001 image with chunks. */
    uint64_t ullBlockId;          /**< Number that the camera gave the image; gaps are lost images. */
    uint64_t ullDeviceTimestamp;  /**< The camera's time of the image in ns. */
    uint64_t ullHostTimestamp;    /**< CLOCK_MONOTONIC of the last byte in ns. */
    uint32_t uiPixelFormat;       /**< PFNC code, e.g. 0x01080001 for Mono8. */
    uint32_t uiWidth;             /**< Pixels per line. */
    uint32_t uiHeight;            /**< Lines received. */
    uint32_t uiOffsetX;           /**< First column on the sensor. */
    uint32_t uiOffsetY;           /**< First line on the sensor. */
    uint32_t uiPaddingX;          /**< Unused bytes at the end of each line. */
    uint64_t ullValidPayloadSize; /**< Bytes of the buffer that hold data. */
    uint32_t uiLostBlocks;        /**< Blocks lost between the previous delivered one and this. */
    uint32_t uiReserved;          /**< Zero. */
} CAM_STREAM_REQUEST_INFO;

/** Summary of a delivered camera event: Evt_DequeueRequest(). 24 bytes. */
typedef struct CAM_EVENT_REQUEST_INFO {
    uint16_t usEventId;       /**< Event id: 0x9000 and above are the camera's own. */
    uint16_t usStreamChannel; /**< Stream channel that the event belongs to. */
    uint64_t ullTimestamp;    /**< The camera's time of the event in ns. */
    uint64_t ullBlockId;      /**< Image that the event belongs to, or 0. */
} CAM_EVENT_REQUEST_INFO;

/** The last failure of a node: Misc_GetLastGenICamError(). 24 bytes. */
typedef struct CAM_GENICAM_ERROR {
    const char *pszMessage;  /**< What failed and why; owned by the transport, valid until the next failure. */
    uint64_t ullReserved[2]; /**< The transport's. */
} CAM_GENICAM_ERROR;
/** @} */

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Called on the stream's own thread. It may call the functions of its stream (Strm_LockBuffer() and the like), but not
 * Strm_Close(), and must not throw.
 * @param hStrm     the stream
 * @param pvImage   the image, or null when there is none; valid during the call
 * @param uiSize    valid bytes at @p pvImage
 * @param pInfo     what is known of the image; valid during the call
 * @param pvContext as registered
 */
typedef void (*CAM_STREAM_CALLBACK)(CAM_HANDLE hStrm, const void *pvImage, uint32_t uiSize,
                                    const CAM_STREAM_REQUEST_INFO *pInfo, void *pvContext);

/** Called by the transport when an event arrives. Reserved: no function of this library registers one. */
typedef void (*CAM_EVENT_CALLBACK)(CAM_HANDLE hEvt, const CAM_EVENT_REQUEST_INFO *pInfo, void *pvContext);

/**
 * @defgroup sys System
 * Start and end of the library, and what is attached.
 * @{
 */

/**
 * Starts the library: reads "OrviCamSDK.cfg", prepares the GenICam cache folder, loads and starts the transport.
 *
 * The file is looked for beside the running program, then in `$ORVICAMSDK/lib/`. A second call re-reads it.
 * @param iFlags #SYS_INIT_U3V or #SYS_INIT_ALL
 * @retval CAM_API_STS_ALREADY_INITIALIZED the library is up
 * @retval CAM_API_STS_INVALID_PARAMETER   unknown @p iFlags
 * @retval CAM_API_STS_DLL_LOAD_ERR        no transport: `$ORVICAMSDK/lib/libOrviU3vCamApi_64.so` is missing, incomplete
 *                                         or does not start (the folder is /opt/OrviCamSDK when the variable is unset)
 */
CAM_API_STATUS Sys_Initialize(int32_t iFlags);

/**
 * Ends the library. Close streams, event channels and cameras first: nothing is closed here.
 * @return 0, also when the library is not initialised
 */
CAM_API_STATUS Sys_Terminate(void);

/**
 * Counts the attached cameras and numbers them anew from 0: an index is good until the next call.
 * @param[out] puiNum number of cameras, 0 to 64; 0 on failure
 * @retval CAM_API_STS_INVALID_PARAMETER @p puiNum is null
 * @retval CAM_API_STS_UNSUCCESSFUL      more than 64 cameras
 */
CAM_API_STATUS Sys_GetNumOfCameras(uint32_t *puiNum);

/**
 * Versions of the transport and of this library.
 * @param[out] psSysInfo zeroed, then filled
 * @retval CAM_API_STS_INVALID_PARAMETER @p psSysInfo is null
 */
CAM_API_STATUS Sys_GetInformation(CAM_SYSTEM_INFO *psSysInfo);
/** @} */

/**
 * @defgroup signal Signals
 * An auto-reset event: setting it wakes one waiter, and a successful wait consumes it. Works before Sys_Initialize().
 *
 * Hand one to Strm_Open() or Evt_Open() as `pvTransportParam` to be woken whenever a request completes:
 * @code
 * CAM_HANDLE hReady;
 * Sys_CreateSignal(&hReady);
 * Strm_Open(hCam, (void *)(uintptr_t)hReady, &uiPayload, &hStrm, 0);
 * // ...
 * for (;;) {
 *     if (Sys_WaitForSignal(hReady, 1000) != CAM_API_STS_SUCCESS) continue;
 *     while (Strm_DequeueRequest(hStrm, &hRequest, &pvImage, &uiSize) == CAM_API_STS_SUCCESS) {
 *         // use the image
 *         Strm_EnqueueRequest(hStrm, hRequest);
 *     }
 * }
 * @endcode
 * One signal may cover several completions: drain the queue after each wake-up. Close a signal only after the channel
 * that it was given to, and never while a thread waits for it. Sys_SetSignal() and Sys_ResetSignal() may be called from
 * any thread, also from a callback. Sys_WaitForSignal() and Sys_CloseSignal() catch a wild handle with a fault handler
 * that the process has only once: a program that hands wild handles to two threads at a time gets no protection.
 * @{
 */

/**
 * Creates a signal, not set.
 * @param[out] phHandle the signal; close it with Sys_CloseSignal()
 * @retval CAM_API_STS_INVALID_PARAMETER @p phHandle is null
 */
CAM_API_STATUS Sys_CreateSignal(CAM_HANDLE *phHandle);

/**
 * Frees a signal. No thread may be waiting for it.
 * @retval CAM_API_STS_INVALID_PARAMETER @p hHandle is 0
 * @retval CAM_API_STS_UNSUCCESSFUL      @p hHandle is no signal
 */
CAM_API_STATUS Sys_CloseSignal(CAM_HANDLE hHandle);

/**
 * Waits until the signal is set and consumes it.
 * @param hHandle        the signal
 * @param uiMillisecons  time limit in ms; 0 only tests, #SYS_WAIT_INFINITE waits without limit
 * @retval CAM_API_STS_TIMEOUT           the time is over
 * @retval CAM_API_STS_INVALID_PARAMETER @p hHandle is 0
 * @retval CAM_API_STS_UNSUCCESSFUL      @p hHandle is no signal
 */
CAM_API_STATUS Sys_WaitForSignal(CAM_HANDLE hHandle, uint32_t uiMillisecons);

/**
 * Sets the signal; one waiter goes on. Setting it twice is the same as once.
 * @retval CAM_API_STS_INVALID_PARAMETER @p hHandle is 0
 * @retval CAM_API_STS_UNSUCCESSFUL      @p hHandle is no signal
 */
CAM_API_STATUS Sys_SetSignal(CAM_HANDLE hHandle);

/**
 * Clears the signal.
 * @retval CAM_API_STS_INVALID_PARAMETER @p hHandle is 0
 * @retval CAM_API_STS_UNSUCCESSFUL      @p hHandle is no signal
 */
CAM_API_STATUS Sys_ResetSignal(CAM_HANDLE hHandle);
/** @} */

/**
 * @defgroup cam Cameras
 * Open and close a camera; its identity, registers, description and parameters.
 * @{
 */

/**
 * Opens a camera by its index.
 * @param uiCamIdx        index of the last Sys_GetNumOfCameras()
 * @param[out] phCam      the camera; 0 on failure. Close it with Cam_Close()
 * @param pvRemovalSignal a signal, set when the camera is unplugged; or null
 * @param bUseGenICam     false leaves the camera's description unread: faster, but no node can be used
 * @param pvXmlFile       path of a GenICam XML file used instead of the camera's own description; or null
 * @param eAccessMode     only logged
 * @retval CAM_API_STS_INVALID_PARAMETER no such index, or @p phCam is null
 * @retval CAM_API_STS_ALREADY_OPENED    the camera is open; @p phCam receives its handle, one Cam_Close() closes it
 * @retval CAM_API_STS_XML_LOAD_ERR      the description is unusable
 * @retval CAM_API_STS_GENICAM_ERR       the description is unusable; Misc_GetLastGenICamError() tells why
 * @retval CAM_API_STS_ACCESS_DENIED     no permission for the camera's device file
 * @retval CAM_API_STS_BUSY              another program, or a kernel driver, has the camera
 *
 * After any failure of the transport's, Misc_SetLastGenICamError() with 1 and Misc_GetLastGenICamError() tell why and
 * what to do.
 */
CAM_API_STATUS Cam_Open(uint32_t uiCamIdx, CAM_HANDLE *phCam, void *pvRemovalSignal, bool bUseGenICam, void *pvXmlFile,
                        CAM_ACCESS_MODE eAccessMode);

/**
 * Opens the first camera whose texts equal all those given, after a fresh enumeration (indices change).
 * @param pszSerialNumber    serial number, or null for any
 * @param pszModelName       model name, or null for any
 * @param pszUserDefinedName user-defined name, or null for any
 * @param[out] phCam         as for Cam_Open()
 * @param pvRemovalSignal    as for Cam_Open()
 * @param bUseGenICam        as for Cam_Open()
 * @param pvXmlFile          as for Cam_Open()
 * @param eAccessMode        as for Cam_Open()
 * @retval CAM_API_STS_INVALID_PARAMETER all three texts are null, or no camera matches
 */
CAM_API_STATUS Cam_OpenFromInfo(const char *pszSerialNumber, const char *pszModelName, const char *pszUserDefinedName,
                                CAM_HANDLE *phCam, void *pvRemovalSignal, bool bUseGenICam, void *pvXmlFile,
                                CAM_ACCESS_MODE eAccessMode);

/**
 * Closes a camera. Its streams and event channels should be closed before. After a failure the handle stays valid.
 */
CAM_API_STATUS Cam_Close(CAM_HANDLE hCam);

/**
 * Identity of a camera, open or not.
 * @param hCam           an open camera; or 0 to ask by index
 * @param uiCamIdx       index of the last Sys_GetNumOfCameras(); ignored when @p hCam is not 0
 * @param[out] psCamInfo zeroed, then filled as far as the camera answers
 * @retval CAM_API_STS_INVALID_PARAMETER @p psCamInfo is null (also before initialisation), or no such index
 * @retval CAM_API_STS_BUFFER_TOO_SMALL  the user-defined name has more than 64 characters
 */
CAM_API_STATUS Cam_GetInformation(CAM_HANDLE hCam, uint32_t uiCamIdx, CAM_INFO *psCamInfo);

/**
 * USB3 Vision facts of a camera.
 * @param hCam            an open camera, or 0
 * @param uiCamIdx        index of the last Sys_GetNumOfCameras(); always needed
 * @param[out] psU3vInfo  zeroed, then filled; must not be null
 * @retval CAM_API_STS_INVALID_PARAMETER no such index
 */
CAM_API_STATUS Cam_GetU3vInformationEx(CAM_HANDLE hCam, uint32_t uiCamIdx, CAM_U3V_INFO_EX *psU3vInfo);

/**
 * Reads registers.
 * @param hCam          the camera
 * @param ullAdrs       byte address, a multiple of 4
 * @param uiSizeQuadlet number of 32-bit words
 * @param[out] pvData   room for @p uiSizeQuadlet words
 * @retval CAM_API_STS_INVALID_ADDRESS the camera has no such register
 * @retval CAM_API_STS_UNSUCCESSFUL    fewer words than asked for were read
 */
CAM_API_STATUS Cam_ReadReg(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t uiSizeQuadlet, void *pvData);

/**
 * Writes registers.
 * @param hCam          the camera
 * @param ullAdrs       byte address, a multiple of 4
 * @param uiSizeQuadlet number of 32-bit words
 * @param pvData        @p uiSizeQuadlet words
 * @retval CAM_API_STS_INVALID_ADDRESS the camera has no such register
 * @retval CAM_API_STS_WRITE_PROTECT   the register is read-only
 * @retval CAM_API_STS_UNSUCCESSFUL    fewer words than given were written
 */
CAM_API_STATUS Cam_WriteReg(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t uiSizeQuadlet, const void *pvData);

/**
 * The camera's GenICam description as XML text.
 * @param hCam             the camera
 * @param[out] pvBuffer    room for the text, or null to ask for its size
 * @param[in,out] pullSize in: bytes at @p pvBuffer; out: length of the text
 * @retval CAM_API_STS_BUFFER_TOO_SMALL @p pullSize tells the size needed
 */
CAM_API_STATUS Cam_GetXmlData(CAM_HANDLE hCam, void *pvBuffer, uint64_t *pullSize);

/**
 * Resets the camera's USB port and closes the camera in the transport. The library still knows the handle; calls with
 * it then fail in the transport. Enumerate and open anew.
 */
CAM_API_STATUS Cam_ResetPort(CAM_HANDLE hCam);

/** Ends what is under way on a pipe. @param hCam the camera @param eFlg one of ::CAM_PIPE */
CAM_API_STATUS Cam_AbortPipe(CAM_HANDLE hCam, uint32_t eFlg);

/** Clears a halted pipe. @param hCam the camera @param eFlg one of ::CAM_PIPE */
CAM_API_STATUS Cam_ResetPipe(CAM_HANDLE hCam, uint32_t eFlg);

/**
 * Writes the camera's persistent features to a readable text file, one line each. The file is replaced as a whole.
 * @param hCam        the camera
 * @param pszFileName path of the file
 * @retval CAM_API_STS_GENICAM_ERR the file cannot be written; after Misc_SetLastGenICamError() with 1,
 *                                 Misc_GetLastGenICamError() tells why
 */
CAM_API_STATUS Cam_SaveParameter(CAM_HANDLE hCam, const char *pszFileName);

/**
 * Sets the camera's features from a file of Cam_SaveParameter(). A file of another model or with a line that the camera
 * refuses changes nothing.
 * @param hCam        the camera
 * @param pszFileName path of the file
 * @param bEnableDPC  also load the table of defective pixels
 * @retval CAM_API_STS_GENICAM_ERR the file cannot be used; after Misc_SetLastGenICamError() with 1,
 *                                 Misc_GetLastGenICamError() names the line and why
 */
CAM_API_STATUS Cam_LoadParameter(CAM_HANDLE hCam, const char *pszFileName, bool bEnableDPC);

/** USB3 Vision cameras have no heartbeat. @return #CAM_API_STS_NOT_IMPLEMENTED; the outputs are untouched */
CAM_API_STATUS Cam_GetHeartbeat(CAM_HANDLE hCam, bool *pbEnable, uint32_t *puiHbTimeout);

/** USB3 Vision cameras have no heartbeat. @return #CAM_API_STS_NOT_IMPLEMENTED */
CAM_API_STATUS Cam_SetHeartbeat(CAM_HANDLE hCam, bool bEnable, uint32_t uiHbTimeout);

/**
 * Index that a camera was opened with.
 * @param hCam           the camera
 * @param[out] puiCamIdx must not be null; untouched on failure
 * @retval CAM_API_STS_INVALID_CAMERA_HANDLE @p hCam is not open
 */
CAM_API_STATUS GetCamIndexFromCamHandle(CAM_HANDLE hCam, uint32_t *puiCamIdx);

/**
 * Kind of an open camera.
 * @param hCam           the camera
 * @param[out] peCamType must not be null; #CAM_TYPE_NONE on failure
 * @retval CAM_API_STS_INVALID_CAMERA_HANDLE @p hCam is not open
 */
CAM_API_STATUS GetCamTypeFromCamHandle(CAM_HANDLE hCam, CAM_TYPE *peCamType);
/** @} */

/**
 * @defgroup misc Errors
 * @{
 */

/**
 * What the last node failure (#CAM_API_STS_GENICAM_ERR) was about.
 * @param[out] pError must not be null; the text stays the transport's and is valid until the next failure
 */
CAM_API_STATUS Misc_GetLastGenICamError(CAM_GENICAM_ERROR *pError);

/**
 * Fetches the transport's last GenICam error for Misc_GetLastGenICamError(). The library does so itself whenever a node
 * fails.
 * @param uiFlag 1
 * @retval CAM_API_STS_INVALID_PARAMETER @p uiFlag is not 1
 */
CAM_API_STATUS Misc_SetLastGenICamError(uint32_t uiFlag);

/**
 * Name of a transport status, for messages: "U3V_CAM_API_STS_TIMEOUT"; "U3V_CAM_API_STS_???" for one that the transport
 * never returns. May be called at any time from any thread.
 */
const char *U3vCamApiStatusString(uint32_t uiStatus);
/** @} */

/**
 * @defgroup node Nodes
 * Typed access to the features that the camera describes. `hCam` is the camera, `hNode` a handle that the camera's node
 * functions returned; it is good until the camera is closed. All functions return, besides the general statuses,
 * #CAM_API_STS_INVALID_NODE_HANDLE for a stale handle and #CAM_API_STS_GENICAM_ERR when the node refuses;
 * Misc_GetLastGenICamError() then says which node and why. `bVerify` reads back what was written, `bIgnoreCache` asks
 * the camera even when the value is remembered. Text functions take the size of the buffer in bytes in `*puiSize` and
 * return the length with the closing NUL there; a null buffer asks for the size; #CAM_API_STS_BUFFER_TOO_SMALL comes
 * with the size needed. Null pointers are the transport's to refuse (#CAM_API_STS_INVALID_PARAMETER).
 * @{
 */

/** Finds a node. @param hCam the camera @param pszName name, e.g. "Width" @param[out] phNode the node */
CAM_API_STATUS Nd_GetNode(CAM_HANDLE hCam, const char *pszName, CAM_HANDLE *phNode);
/** Interface of a node. */
CAM_API_STATUS Nd_GetType(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_TYPE *peType);
/** Number of features in a category. */
CAM_API_STATUS Nd_GetNumOfFeatures(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t *puiNum);
/** A feature of a category. @param hCam camera @param hNode category @param uiIndex from 0 @param[out] phFeature node
 */
CAM_API_STATUS Nd_GetFeatureByIndex(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t uiIndex, CAM_HANDLE *phFeature);
/** Name of a node. @param hCam camera @param hNode node @param[out] pszBuf room for 64 bytes */
CAM_API_STATUS Nd_GetName(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf);
/** What may be done with a node now. */
CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_ACCESS_MODE *peAccessMode);
/** For whom a node is meant. */
CAM_API_STATUS Nd_GetVisibility(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_VISIBILITY *peVisibility);
/** What is remembered of a node's value. */
CAM_API_STATUS Nd_GetCachingMode(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_CACHING_MODE *peCachingMode);
/** Long description of a node. */
CAM_API_STATUS Nd_GetDescription(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize);
/** Short description of a node. */
CAM_API_STATUS Nd_GetToolTip(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize);
/** How a number is best shown. */
CAM_API_STATUS Nd_GetRepresentation(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_REPRESENTATION *peRepresentation);
/** Unit of a number, e.g. "us". */
CAM_API_STATUS Nd_GetUnit(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize);

/** Least value of an integer now. */
CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllMin);
/** Greatest value of an integer now. */
CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllMax);
/** Step of an integer, counted from its least value. */
CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllInc);
/** Sets an integer. */
CAM_API_STATUS Nd_SetIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t llValue, bool bVerify);
/** Reads an integer. */
CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllValue, bool bVerify, bool bIgnoreCache);

/** Least value of a float now. */
CAM_API_STATUS Nd_GetFloatMin(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdMin);
/** Greatest value of a float now. */
CAM_API_STATUS Nd_GetFloatMax(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdMax);
/** Whether a float has a step. */
CAM_API_STATUS Nd_GetFloatHasInc(CAM_HANDLE hCam, CAM_HANDLE hNode, bool *pbHasInc);
/** Step of a float. */
CAM_API_STATUS Nd_GetFloatInc(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdInc);
/** How a float is best written. */
CAM_API_STATUS Nd_GetFloatDisplayNotation(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_DISPLAY_NOTATION *peNotation);
/** Digits with which a float is best written. */
CAM_API_STATUS Nd_GetFloatDisplayPrecision(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllPrecision);
/** Sets a float. */
CAM_API_STATUS Nd_SetFloatValue(CAM_HANDLE hCam, CAM_HANDLE hNode, double dValue, bool bVerify);
/** Reads a float. */
CAM_API_STATUS Nd_GetFloatValue(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdValue, bool bVerify, bool bIgnoreCache);

/** Sets a boolean. */
CAM_API_STATUS Nd_SetBoolValue(CAM_HANDLE hCam, CAM_HANDLE hNode, bool bValue, bool bVerify);
/** Reads a boolean. */
CAM_API_STATUS Nd_GetBoolValue(CAM_HANDLE hCam, CAM_HANDLE hNode, bool *pbValue, bool bVerify, bool bIgnoreCache);

/** Executes a command. */
CAM_API_STATUS Nd_CmdExecute(CAM_HANDLE hCam, CAM_HANDLE hNode, bool bVerify);
/** Whether a command has finished. */
CAM_API_STATUS Nd_GetCmdIsDone(CAM_HANDLE hCam, CAM_HANDLE hNode, bool *pbDone, bool bVerify);

/** Sets a text. */
CAM_API_STATUS Nd_SetStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify);
/** Reads a text. */
CAM_API_STATUS Nd_GetStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize, bool bVerify,
                              bool bIgnoreCache);

/** Number of entries of an enumeration. */
CAM_API_STATUS Nd_GetNumOfEnumEntries(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t *puiNum);
/** Sets an enumeration by number. */
CAM_API_STATUS Nd_SetEnumIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t llValue, bool bVerify);
/** Reads an enumeration as number. */
CAM_API_STATUS Nd_GetEnumIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllValue, bool bVerify,
                                  bool bIgnoreCache);
/** Sets an enumeration by the name of an entry. */
CAM_API_STATUS Nd_SetEnumStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify);
/** Reads an enumeration as the name of its entry. */
CAM_API_STATUS Nd_GetEnumStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize, bool bVerify,
                                  bool bIgnoreCache);
/** An entry of an enumeration. @param hCam camera @param hNode enumeration @param uiIndex from 0 @param[out] phEntry
 * entry */
CAM_API_STATUS Nd_GetEnumEntryByIndex(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t uiIndex, CAM_HANDLE *phEntry);
/** Number of an entry. */
CAM_API_STATUS Nd_GetEnumEntryIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllValue);
/** Name of an entry. */
CAM_API_STATUS Nd_GetEnumEntryStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize);
/** @} */

/**
 * @defgroup strm Streams
 * Images. In request mode (Strm_Open()) the transport writes into buffers of the application: open, create a request
 * per buffer, enqueue each, start; then dequeue, use, enqueue again; stop, flush, release each, close. In simple mode
 * (Strm_OpenSimple()) the transport keeps the buffers: open, start; then read or lock the current image or be called
 * back; stop, close.
 * @{
 */

/**
 * Number of buffers that the transport keeps behind the API buffers of streams opened by Strm_OpenSimple() afterwards.
 * Works before Sys_Initialize().
 * @param uiCount 5 to 64 (10 at start)
 * @retval CAM_API_STS_INVALID_PARAMETER out of range; nothing is changed
 */
CAM_API_STATUS SetApiInternalStrmRingBufferCountEx(uint32_t uiCount);

/**
 * Opens a stream in request mode.
 * @param hCam                      the camera
 * @param pvTransportParam          a signal (Sys_CreateSignal()), set each time a request completes; or null
 * @param[in,out] puiMaxPayloadSize bytes of the largest image; 0 asks the camera and returns its answer
 * @param[out] phStrm               the stream; must not be null. Close it with Strm_Close()
 * @param uiMaxPacketSize           largest transfer in bytes; 0 for the default (64 KiB)
 * @retval CAM_API_STS_INVALID_PARAMETER @p puiMaxPayloadSize is null
 */
CAM_API_STATUS Strm_Open(CAM_HANDLE hCam, void *pvTransportParam, uint32_t *puiMaxPayloadSize, CAM_HANDLE *phStrm,
                         uint32_t uiMaxPacketSize);

/**
 * Opens a stream in simple mode.
 * @param hCam                   the camera
 * @param[out] phStrm            the stream; must not be null. Close it with Strm_Close()
 * @param[out] puiMaxPayloadSize bytes of an image, as the camera says; what was there is not used
 * @param pvTransportParam       a signal (Sys_CreateSignal()), set each time an image is ready; or null
 * @param uiApiBufferCount       number of API buffers; 0 for 8
 * @param uiMaxPacketSize        largest transfer in bytes; 0 for the default (64 KiB)
 * @retval CAM_API_STS_INVALID_PARAMETER @p puiMaxPayloadSize is null
 */
CAM_API_STATUS Strm_OpenSimple(CAM_HANDLE hCam, CAM_HANDLE *phStrm, uint32_t *puiMaxPayloadSize, void *pvTransportParam,
                               uint32_t uiApiBufferCount, uint32_t uiMaxPacketSize);

/** Closes a stream. After a failure the handle stays valid. Not from a callback. */
CAM_API_STATUS Strm_Close(CAM_HANDLE hStrm);

/** Starts acquisition. @param hStrm the stream @param eAcqMode one of ::CAM_ACQ_MODE */
CAM_API_STATUS Strm_Start(CAM_HANDLE hStrm, uint32_t eAcqMode);

/** Stops acquisition. Requests that were not filled stay queued: start again, or flush. */
CAM_API_STATUS Strm_Stop(CAM_HANDLE hStrm);

/**
 * Registers a buffer of the application's.
 * @param hStrm              the stream
 * @param pvPayloadBuf       the buffer; stays the caller's and must live until the request is released
 * @param uiPayloaSize       its bytes
 * @param[out] phStrmRequest the request; not queued yet
 */
CAM_API_STATUS Strm_CreateRequest(CAM_HANDLE hStrm, void *pvPayloadBuf, uint32_t uiPayloaSize,
                                  CAM_HANDLE *phStrmRequest);

/** Forgets a request; its buffer is the caller's alone again. @retval CAM_API_STS_BUSY the request is queued */
CAM_API_STATUS Strm_ReleaseRequest(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest);

/** Queues a request for filling. The transport owns the buffer until the request is dequeued. */
CAM_API_STATUS Strm_EnqueueRequest(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest);

/**
 * Takes the oldest completed request. Never waits: see Sys_WaitForSignal(). How the request ended is in
 * Strm_GetStrmReqInfo().
 * @param hStrm               the stream
 * @param[out] phStrmRequest  the request; 0 on failure
 * @param[out] ppvPayloadBuf  its buffer, or null if not wanted
 * @param[out] puiPayloadSize valid bytes in the buffer, or null if not wanted
 * @retval CAM_API_STS_INVALID_PARAMETER    @p phStrmRequest is null
 * @retval CAM_API_STS_EMPTY_COMPLETE_QUEUE no request is complete
 */
CAM_API_STATUS Strm_DequeueRequest(CAM_HANDLE hStrm, CAM_HANDLE *phStrmRequest, void **ppvPayloadBuf,
                                   uint32_t *puiPayloadSize);

/** Completes all queued requests with #CAM_API_STS_FLUSH_REQUESTED. */
CAM_API_STATUS Strm_FlushWaitQueue(CAM_HANDLE hStrm);

/**
 * How a dequeued request ended and what its image is.
 * @param hStrm        the stream
 * @param hStrmRequest the request
 * @param[out] pInfo   zeroed, then filled
 * @retval CAM_API_STS_INVALID_PARAMETER @p pInfo is null
 */
CAM_API_STATUS Strm_GetStrmReqInfo(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest, CAM_STREAM_REQUEST_INFO *pInfo);

/**
 * Copies the newest image of a simple stream.
 * @param hStrm            the stream
 * @param[out] pvBuffer    room for the image
 * @param[in,out] puiSize  in: bytes at @p pvBuffer; out: bytes of the image
 * @param[out] pvImageInfo what is known of the image, or null
 * @retval CAM_API_STS_EMPTY_COMPLETE_QUEUE no image has arrived yet
 * @retval CAM_API_STS_BUFFER_TOO_SMALL     @p puiSize tells the size needed
 */
CAM_API_STATUS Strm_ReadCurrentImage(CAM_HANDLE hStrm, void *pvBuffer, uint32_t *puiSize,
                                     CAM_STREAM_REQUEST_INFO *pvImageInfo);

/** Number of the API buffer that holds the newest image. @retval CAM_API_STS_EMPTY_COMPLETE_QUEUE none yet */
CAM_API_STATUS Strm_GetCurrentBufferIndex(CAM_HANDLE hStrm, uint32_t *puiBufferIndex);

/**
 * Keeps an API buffer from being refilled.
 * @param hStrm          the stream
 * @param uiBufferIndex  number of the buffer
 * @param[out] ppvBuffer its address; valid until Strm_UnlockBuffer() or Strm_Close()
 */
CAM_API_STATUS Strm_LockBuffer(CAM_HANDLE hStrm, uint32_t uiBufferIndex, void **ppvBuffer);

/** Gives a locked API buffer back. */
CAM_API_STATUS Strm_UnlockBuffer(CAM_HANDLE hStrm, uint32_t uiBufferIndex);

/** Registers what is called for each good image; null ends it. Set it before Strm_Start(). */
CAM_API_STATUS Strm_SetCallbackImageAcquired(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext);

/** Registers what is called for each bad image; null ends it. Set it before Strm_Start(). */
CAM_API_STATUS Strm_SetCallbackImageError(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext);

/** Registers what is called when images were lost for want of a free buffer; null ends it. Set it before Strm_Start().
 */
CAM_API_STATUS Strm_SetCallbackBufferBusy(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext);

/** Number of images lost since the start. */
CAM_API_STATUS Strm_GetLostCount(CAM_HANDLE hStrm, uint64_t *pullCount);
/** @} */

/**
 * @defgroup evt Events
 * Asynchronous messages of a camera. Open a channel, create and enqueue requests, activate events by name; then dequeue
 * and enqueue; deactivate, flush, release, close. With Evt_OpenSimple() the transport keeps the requests.
 * @{
 */

/**
 * Opens an event channel whose buffers the transport keeps.
 * @param hCam             the camera
 * @param[out] phEvt       the channel; must not be null. Close it with Evt_Close()
 * @param uiApiBufferCount events that may wait; 0 for 8
 */
CAM_API_STATUS Evt_OpenSimple(CAM_HANDLE hCam, CAM_HANDLE *phEvt, uint32_t uiApiBufferCount);

/**
 * Opens an event channel for buffers of the application.
 * @param hCam                      the camera
 * @param[out] phEvt                the channel; must not be null. Close it with Evt_Close()
 * @param[in,out] puiMaxPayloadSize bytes of the largest event; 0 asks the camera and returns its answer; must not be
 * null
 * @param pvTransportParam          a signal (Sys_CreateSignal()), set each time an event completes; or null
 */
CAM_API_STATUS Evt_Open(CAM_HANDLE hCam, CAM_HANDLE *phEvt, uint32_t *puiMaxPayloadSize, void *pvTransportParam);

/** Closes an event channel. After a failure the handle stays valid. */
CAM_API_STATUS Evt_Close(CAM_HANDLE hEvt);

/**
 * Switches an event on.
 * @param hEvt            the channel
 * @param pszEventName    name as in EventSelector, e.g. "ExposureEnd"; at most 122 characters
 * @param pvRegisterParam a signal, set when this event arrives; or null
 * @retval CAM_API_STS_INVALID_PARAMETER   null or too long name
 * @retval CAM_API_STS_ALREADY_ACTIVATED   the event is on
 */
CAM_API_STATUS Evt_Activate(CAM_HANDLE hEvt, const char *pszEventName, void *pvRegisterParam);

/** Switches an event off. @param hEvt the channel @param pszEventName name as for Evt_Activate() */
CAM_API_STATUS Evt_Deactivate(CAM_HANDLE hEvt, const char *pszEventName);

/**
 * Registers a buffer of the application's.
 * @param hEvt              the channel
 * @param pvPayloadBuf      the buffer; stays the caller's and must live until the request is released
 * @param uiPayloadSize     its bytes
 * @param[out] phEvtRequest the request; not queued yet
 */
CAM_API_STATUS Evt_CreateRequest(CAM_HANDLE hEvt, void *pvPayloadBuf, uint32_t uiPayloadSize, CAM_HANDLE *phEvtRequest);

/** Forgets a request; its buffer is the caller's alone again. */
CAM_API_STATUS Evt_ReleaseRequest(CAM_HANDLE hEvt, CAM_HANDLE hEvtRequest);

/** Queues a request for an event. */
CAM_API_STATUS Evt_EnqueueRequest(CAM_HANDLE hEvt, CAM_HANDLE hEvtRequest);

/**
 * Takes the oldest delivered event. Never waits: see Sys_WaitForSignal().
 * @param hEvt            the channel
 * @param pvDequeueParam  address of a CAM_HANDLE that receives the request, as a number; or 0
 * @param[out] pEventInfo summary of the event; untouched on failure
 * @retval CAM_API_STS_INVALID_PARAMETER    @p pEventInfo is null
 * @retval CAM_API_STS_EMPTY_COMPLETE_QUEUE no event has arrived
 */
CAM_API_STATUS Evt_DequeueRequest(CAM_HANDLE hEvt, uint64_t pvDequeueParam, CAM_EVENT_REQUEST_INFO *pEventInfo);

/** Completes all queued requests with #CAM_API_STS_FLUSH_REQUESTED. */
CAM_API_STATUS Evt_FlushWaitQueue(CAM_HANDLE hEvt);
/** @} */

/**
 * @defgroup feature Features
 * One call per camera feature, with its unit and its limits.
 *
 * @par Two roads
 * USB3 Vision cameras of the register-map family are reached through blocks of control registers, named below by the
 * address of their inquiry word; all others, and features that no register holds, through the nodes named below.
 *
 * @par Statuses
 * Besides the statuses named at a function:
 * - #CAM_API_STS_INVALID_CAMERA_HANDLE: @p hCam is 0, or no camera of a kind that the feature knows;
 * - #CAM_API_STS_INVALID_PARAMETER: an output is null; a value is outside the camera's limits, off its increments, or
 *   not a value of its enumeration;
 * - #CAM_API_STS_NOT_IMPLEMENTED: the camera lacks the feature;
 * - #CAM_API_STS_ACCESS_DENIED: a register block that is not available now;
 * - #CAM_API_STS_NOT_AVAILABLE: a node that is not available now; a value or mode that the camera's registers lack;
 * - #CAM_API_STS_NOT_READABLE, #CAM_API_STS_NOT_WRITABLE: no right to; the second also where "refused while streaming"
 * is written and the stream interface is enabled (registers only; a node then says what it thinks of it);
 * - #CAM_API_STS_UNSUCCESSFUL: an enumeration of the camera shows an entry without a value here, or is given a value of
 *   128 or more through registers.
 *
 * "Allowed while streaming" means that the library does not look at the stream; a camera may refuse all the same.
 *
 * A refused value is not written. A function that selects first (a line, an index, a colour) leaves the selection.
 * Handles and outputs are checked before the library asks whether it is initialised.
 * @{
 */

/**
 * @name Stream interface
 * @{
 */

/**
 * Whether the camera's stream interface is enabled. Register 0x20004, else node StreamEnable.
 * @param hCam the camera
 * @param[out] pbEnable true between Strm_Start() and Strm_Stop()
 * @retval CAM_API_STS_NOT_IMPLEMENTED a GigE Vision camera
 */
CAM_API_STATUS GetCamStreamEnable(CAM_HANDLE hCam, bool *pbEnable);

/**
 * Bytes of an image with the present settings, chunks included. Register 0x20008, else node SIRequiredPayloadSize. When
 * both fail the status is the register's.
 * @param hCam the camera
 * @param[out] puiPayloadSize bytes
 */
CAM_API_STATUS GetCamStreamPayloadSize(CAM_HANDLE hCam, uint32_t *puiPayloadSize);

/** @} */

/**
 * @name Image format
 * @{
 */

/** Image formats of a camera: GenICam entries Format0 to Format2. */
CAM_ENUM(CAM_IMAGE_FORMAT_SELECTOR_TYPE){
    CAM_IMAGE_FORMAT_SELECTOR_FORMAT0 = 0, /**< The format that width, height and offsets apply to. */
    CAM_IMAGE_FORMAT_SELECTOR_FORMAT1 = 1, /**< The camera's second format. */
    CAM_IMAGE_FORMAT_SELECTOR_FORMAT2 = 2  /**< The camera's third format. */
};

/**
 * Image format in use. Block 0x202020; node ImageFormatSelector.
 * @param hCam the camera
 * @param[out] peFormat the format
 */
CAM_API_STATUS GetCamImageFormatSelector(CAM_HANDLE hCam, CAM_IMAGE_FORMAT_SELECTOR_TYPE *peFormat);

/**
 * Chooses the image format that GetCamImageFormatSelector() reads. Refused while streaming.
 * @param hCam the camera
 * @param eFormat one of ::CAM_IMAGE_FORMAT_SELECTOR_TYPE
 */
CAM_API_STATUS SetCamImageFormatSelector(CAM_HANDLE hCam, CAM_IMAGE_FORMAT_SELECTOR_TYPE eFormat);

/**
 * Width of the sensor in pixels. Register 0x20207C, else node SensorWidth.
 * @param hCam the camera
 * @param[out] puiSensorWidth pixels
 */
CAM_API_STATUS GetCamSensorWidth(CAM_HANDLE hCam, uint32_t *puiSensorWidth);

/**
 * Height of the sensor in pixels. Register 0x202090, else node SensorHeight.
 * @param hCam the camera
 * @param[out] puiSensorHeight pixels
 */
CAM_API_STATUS GetCamSensorHeight(CAM_HANDLE hCam, uint32_t *puiSensorHeight);

/**
 * Limits of Get/SetCamWidth(). Block 0x202060; node Width.
 * @param hCam the camera
 * @param[out] puiMin least value in pixels
 * @param[out] puiMax greatest value in pixels: sensor width less the present offset X
 * @param[out] puiInc distance of the values from each other, counted from the least
 */
CAM_API_STATUS GetCamWidthMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc);

/**
 * Width of the image, in pixels. Register 0x202098, else node Width.
 * @param hCam the camera
 * @param[out] puiValue pixels
 */
CAM_API_STATUS GetCamWidth(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamWidth() reads. Refused while streaming. See SetCamRoi() for all four at once.
 * @param hCam the camera
 * @param uiValue pixels, within GetCamWidthMinMax() and on its increments
 * @retval CAM_API_STS_NOT_WRITABLE also when the camera reports an increment of 0
 */
CAM_API_STATUS SetCamWidth(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamHeight(). Block 0x202060; node Height.
 * @param hCam the camera
 * @param[out] puiMin least value in pixels
 * @param[out] puiMax greatest value in pixels: sensor height less the present offset Y
 * @param[out] puiInc distance of the values from each other, counted from the least
 */
CAM_API_STATUS GetCamHeightMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc);

/**
 * Height of the image, in pixels. Register 0x2020A0, else node Height.
 * @param hCam the camera
 * @param[out] puiValue pixels
 */
CAM_API_STATUS GetCamHeight(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamHeight() reads. Refused while streaming. See SetCamRoi() for all four at once.
 * @param hCam the camera
 * @param uiValue pixels, within GetCamHeightMinMax() and on its increments
 * @retval CAM_API_STS_NOT_WRITABLE also when the camera reports an increment of 0
 */
CAM_API_STATUS SetCamHeight(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamOffsetX(). Block 0x202060; node OffsetX.
 * @param hCam the camera
 * @param[out] puiMin least value in pixels
 * @param[out] puiMax greatest value in pixels: sensor width less the present width
 * @param[out] puiInc distance of the values from each other, counted from the least
 */
CAM_API_STATUS GetCamOffsetXMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc);

/**
 * First column of the image on the sensor, in pixels. Register 0x202094, else node OffsetX.
 * @param hCam the camera
 * @param[out] puiValue pixels
 */
CAM_API_STATUS GetCamOffsetX(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamOffsetX() reads. Refused while streaming. See SetCamRoi() for all four at once.
 * @param hCam the camera
 * @param uiValue pixels, within GetCamOffsetXMinMax() and on its increments
 * @retval CAM_API_STS_NOT_WRITABLE also when the camera reports an increment of 0
 */
CAM_API_STATUS SetCamOffsetX(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamOffsetY(). Block 0x202060; node OffsetY.
 * @param hCam the camera
 * @param[out] puiMin least value in pixels
 * @param[out] puiMax greatest value in pixels: sensor height less the present height
 * @param[out] puiInc distance of the values from each other, counted from the least
 */
CAM_API_STATUS GetCamOffsetYMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc);

/**
 * First line of the image on the sensor, in pixels. Register 0x20209C, else node OffsetY.
 * @param hCam the camera
 * @param[out] puiValue pixels
 */
CAM_API_STATUS GetCamOffsetY(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamOffsetY() reads. Refused while streaming. See SetCamRoi() for all four at once.
 * @param hCam the camera
 * @param uiValue pixels, within GetCamOffsetYMinMax() and on its increments
 * @retval CAM_API_STS_NOT_WRITABLE also when the camera reports an increment of 0
 */
CAM_API_STATUS SetCamOffsetY(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Region of interest: GetCamWidth(), GetCamHeight(), GetCamOffsetX() and GetCamOffsetY() in one.
 * @param hCam the camera
 * @param[out] puiWidth pixels
 * @param[out] puiHeight pixels
 * @param[out] puiOffsetX pixels
 * @param[out] puiOffsetY pixels
 */
CAM_API_STATUS GetCamRoi(CAM_HANDLE hCam, uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiOffsetX,
                         uint32_t *puiOffsetY);

/**
 * Sets the region of interest, in the order that keeps it on the sensor at every step; what does not change is not
 * written. Refused while streaming. After a failure the steps before it stay made.
 * @param hCam the camera
 * @param uiWidth as for SetCamWidth()
 * @param uiHeight as for SetCamHeight()
 * @param uiOffsetX as for SetCamOffsetX()
 * @param uiOffsetY as for SetCamOffsetY()
 */
CAM_API_STATUS SetCamRoi(CAM_HANDLE hCam, uint32_t uiWidth, uint32_t uiHeight, uint32_t uiOffsetX, uint32_t uiOffsetY);

/**
 * Limits of Get/SetCamBinningHorizontal().
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamBinningHorizontalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Pixels of a line that are added up to one. Block 0x21F140; node BinningHorizontal.
 * @param hCam the camera
 * @param[out] puiValue pixels
 */
CAM_API_STATUS GetCamBinningHorizontal(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamBinningHorizontal() reads. Refused while streaming.
 * @param hCam the camera
 * @param uiValue within GetCamBinningHorizontalMinMax()
 */
CAM_API_STATUS SetCamBinningHorizontal(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamBinningVertical().
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamBinningVerticalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Lines that are added up to one. Block 0x21F160; node BinningVertical.
 * @param hCam the camera
 * @param[out] puiValue lines
 */
CAM_API_STATUS GetCamBinningVertical(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamBinningVertical() reads. Refused while streaming.
 * @param hCam the camera
 * @param uiValue within GetCamBinningVerticalMinMax()
 */
CAM_API_STATUS SetCamBinningVertical(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamDecimationHorizontal().
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamDecimationHorizontalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Of so many pixels of a line one is sent. Block 0x21F180; node DecimationHorizontal.
 * @param hCam the camera
 * @param[out] puiValue pixels
 */
CAM_API_STATUS GetCamDecimationHorizontal(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamDecimationHorizontal() reads. Refused while streaming.
 * @param hCam the camera
 * @param uiValue within GetCamDecimationHorizontalMinMax()
 */
CAM_API_STATUS SetCamDecimationHorizontal(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamDecimationVertical().
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamDecimationVerticalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Of so many lines one is sent. Block 0x21F1A0; node DecimationVertical.
 * @param hCam the camera
 * @param[out] puiValue lines
 */
CAM_API_STATUS GetCamDecimationVertical(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamDecimationVertical() reads. Refused while streaming.
 * @param hCam the camera
 * @param uiValue within GetCamDecimationVerticalMinMax()
 */
CAM_API_STATUS SetCamDecimationVertical(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Whether left and right of the image are exchanged. Block 0x21F1C0; node ReverseX, a boolean or an enumeration of Off
 * and On.
 * @param hCam the camera
 * @param[out] pbValue true: mirrored
 */
CAM_API_STATUS GetCamReverseX(CAM_HANDLE hCam, bool *pbValue);

/**
 * Sets what GetCamReverseX() reads: exchanges left and right of the image. Allowed while streaming.
 * @param hCam the camera
 * @param bValue true: mirrored
 */
CAM_API_STATUS SetCamReverseX(CAM_HANDLE hCam, bool bValue);

/**
 * Whether top and bottom of the image are exchanged. Block 0x21F1E0; node ReverseY, a boolean or an enumeration of Off
 * and On.
 * @param hCam the camera
 * @param[out] pbValue true: mirrored
 */
CAM_API_STATUS GetCamReverseY(CAM_HANDLE hCam, bool *pbValue);

/**
 * Sets what GetCamReverseY() reads: exchanges top and bottom of the image. Allowed while streaming.
 * @param hCam the camera
 * @param bValue true: mirrored
 */
CAM_API_STATUS SetCamReverseY(CAM_HANDLE hCam, bool bValue);

/** Pixel formats: codes of the Pixel Format Naming Convention. */
CAM_ENUM(CAM_PIXEL_FORMAT){
    CAM_PIXEL_FORMAT_MONO8 = 0x01080001,           /**< 8 bits grey. */
    CAM_PIXEL_FORMAT_MONO10 = 0x01100003,          /**< 10 bits grey in 16. */
    CAM_PIXEL_FORMAT_MONO12 = 0x01100005,          /**< 12 bits grey in 16. */
    CAM_PIXEL_FORMAT_MONO16 = 0x01100007,          /**< 16 bits grey. */
    CAM_PIXEL_FORMAT_BAYERGR8 = 0x01080008,        /**< Bayer, first line green red, 8 bits. */
    CAM_PIXEL_FORMAT_BAYERGR10 = 0x0110000C,       /**< ... 10 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERGR12 = 0x01100010,       /**< ... 12 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERRG8 = 0x01080009,        /**< Bayer, first line red green, 8 bits. */
    CAM_PIXEL_FORMAT_BAYERRG10 = 0x0110000D,       /**< ... 10 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERRG12 = 0x01100011,       /**< ... 12 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERGB8 = 0x0108000A,        /**< Bayer, first line green blue, 8 bits. */
    CAM_PIXEL_FORMAT_BAYERGB10 = 0x0110000E,       /**< ... 10 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERGB12 = 0x01100012,       /**< ... 12 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERBG8 = 0x0108000B,        /**< Bayer, first line blue green, 8 bits. */
    CAM_PIXEL_FORMAT_BAYERBG10 = 0x0110000F,       /**< ... 10 bits in 16. */
    CAM_PIXEL_FORMAT_BAYERBG12 = 0x01100013,       /**< ... 12 bits in 16. */
    CAM_PIXEL_FORMAT_RGB8 = 0x02180014,            /**< Red, green, blue; 8 bits each. */
    CAM_PIXEL_FORMAT_BGR8 = 0x02180015,            /**< Blue, green, red; 8 bits each. */
    CAM_PIXEL_FORMAT_BGR10 = 0x02300019,           /**< Blue, green, red; 10 bits in 16 each. Nodes only. */
    CAM_PIXEL_FORMAT_BGR12 = 0x0230001B,           /**< Blue, green, red; 12 bits in 16 each. Nodes only. */
    CAM_PIXEL_FORMAT_YUV411_8_UYYVYY = 0x020C001E, /**< 4 pixels in 6 bytes. */
    CAM_PIXEL_FORMAT_YUV422_8_UYVY = 0x0210001F,   /**< 2 pixels in 4 bytes. */
    CAM_PIXEL_FORMAT_YUV8_UYV = 0x02180020         /**< 3 bytes per pixel. Nodes only. */
};

/**
 * Pixel format. Blocks 0x2020C0 (coding) and 0x2020E0 (bits per pixel), else node PixelFormat.
 * @param hCam the camera
 * @param[out] pePixelFormat the format; 0 on failure, and when the registers hold a pair that stands for no format and
 * there is no node
 */
CAM_API_STATUS GetCamPixelFormat(CAM_HANDLE hCam, CAM_PIXEL_FORMAT *pePixelFormat);

/**
 * Chooses the pixel format. Where the registers refuse it the nodes PixelFormat, else PixelCoding and PixelSize, are
 * tried too, but the status stays that of the registers. Refused while streaming.
 * @param hCam the camera
 * @param ePixelFormat one of ::CAM_PIXEL_FORMAT
 * @retval CAM_API_STS_INVALID_PARAMETER not in ::CAM_PIXEL_FORMAT, or nodes only on a camera with registers
 */
CAM_API_STATUS SetCamPixelFormat(CAM_HANDLE hCam, CAM_PIXEL_FORMAT ePixelFormat);

/** Pictures that the camera makes up. */
CAM_ENUM(CAM_TEST_PATTERN_TYPE){
    CAM_TEST_PATTERN_OFF = 0,             /**< What the sensor sees. */
    CAM_TEST_PATTERN_BLACK = 1,           /**< Black. */
    CAM_TEST_PATTERN_WHITE = 2,           /**< White. */
    CAM_TEST_PATTERN_GREY_A = 3,          /**< Bright grey. */
    CAM_TEST_PATTERN_GREY_B = 4,          /**< Dark grey. */
    CAM_TEST_PATTERN_HORIZONTAL_RAMP = 5, /**< Grey that rises from left to right. */
    CAM_TEST_PATTERN_GREY_SCALE = 6,      /**< Steps of grey. */
    CAM_TEST_PATTERN_COLOR_BAR = 7,       /**< Colour bars. */
    CAM_TEST_PATTERN_VERTICAL_RAMP = 8    /**< Grey that rises from top to bottom. */
};

/**
 * Test pattern. Block 0x21F120; node TestImageSelector, else TestPattern.
 * @param hCam the camera
 * @param[out] peTestPattern the pattern
 */
CAM_API_STATUS GetCamTestPattern(CAM_HANDLE hCam, CAM_TEST_PATTERN_TYPE *peTestPattern);

/**
 * Chooses the test pattern that GetCamTestPattern() reads. Only the greys are looked for in TestPattern too. Allowed
 * while streaming.
 * @param hCam the camera
 * @param eTestPattern one of ::CAM_TEST_PATTERN_TYPE
 */
CAM_API_STATUS SetCamTestPattern(CAM_HANDLE hCam, CAM_TEST_PATTERN_TYPE eTestPattern);

/** @} */

/**
 * @name Acquisition
 * @{
 */

/**
 * Limits of Get/SetCamAcquisitionFrameCount().
 * @param hCam the camera
 * @param[out] puiAcquisitionFrameCountMin least number of images
 * @param[out] puiAcquisitionFrameCountMax greatest number of images
 */
CAM_API_STATUS GetCamAcquisitionFrameCountMinMax(CAM_HANDLE hCam, uint32_t *puiAcquisitionFrameCountMin,
                                                 uint32_t *puiAcquisitionFrameCountMax);

/**
 * Images of an acquisition in the mode #CAM_ACQ_MODE_MULTI_FRAME. Block 0x203040; node AcquisitionFrameCount.
 * @param hCam the camera
 * @param[out] puiAcquisitionFrameCount number of images
 */
CAM_API_STATUS GetCamAcquisitionFrameCount(CAM_HANDLE hCam, uint32_t *puiAcquisitionFrameCount);

/**
 * Sets what GetCamAcquisitionFrameCount() reads. Allowed while streaming.
 * @param hCam the camera
 * @param uiAcquisitionFrameCount within GetCamAcquisitionFrameCountMinMax()
 */
CAM_API_STATUS SetCamAcquisitionFrameCount(CAM_HANDLE hCam, uint32_t uiAcquisitionFrameCount);

/** Who decides on the frame rate. */
CAM_ENUM(CAM_ACQ_FRAME_RATE_CONTROL_TYPE){
    CAM_ACQ_FRAME_RATE_CONTROL_NO_SPECIFY = 0, /**< The camera: as fast as exposure and link allow. */
    CAM_ACQ_FRAME_RATE_CONTROL_MANUAL = 1      /**< SetCamAcquisitionFrameRate(). */
};

/**
 * Who decides on the frame rate. Mode word of block 0x2030A0; node AcquisitionFrameRateControl.
 * @param hCam the camera
 * @param[out] peAcquisitionFrameRateControl the mode
 */
CAM_API_STATUS GetCamAcquisitionFrameRateControl(CAM_HANDLE hCam,
                                                 CAM_ACQ_FRAME_RATE_CONTROL_TYPE *peAcquisitionFrameRateControl);

/**
 * Sets what GetCamAcquisitionFrameRateControl() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eAcquisitionFrameRateControl one of ::CAM_ACQ_FRAME_RATE_CONTROL_TYPE
 */
CAM_API_STATUS SetCamAcquisitionFrameRateControl(CAM_HANDLE hCam,
                                                 CAM_ACQ_FRAME_RATE_CONTROL_TYPE eAcquisitionFrameRateControl);

/**
 * Limits of Get/SetCamAcquisitionFrameRate().
 * @param hCam the camera
 * @param[out] pdAcquisitionFrameRateMin least value, images per second
 * @param[out] pdAcquisitionFrameRateMax greatest value, images per second
 */
CAM_API_STATUS GetCamAcquisitionFrameRateMinMax(CAM_HANDLE hCam, double *pdAcquisitionFrameRateMin,
                                                double *pdAcquisitionFrameRateMax);

/**
 * Frame rate. Block 0x2030A0; node AcquisitionFrameRate.
 * @param hCam the camera
 * @param[out] pdAcquisitionFrameRate images per second
 */
CAM_API_STATUS GetCamAcquisitionFrameRate(CAM_HANDLE hCam, double *pdAcquisitionFrameRate);

/**
 * Sets what GetCamAcquisitionFrameRate() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dAcquisitionFrameRate images per second, within GetCamAcquisitionFrameRateMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamAcquisitionFrameRate(CAM_HANDLE hCam, double dAcquisitionFrameRate);

/** Whether images go to the camera's memory first. */
CAM_ENUM(CAM_IMAGE_BUFFER_MODE_TYPE){
    CAM_IMAGE_BUFFER_MODE_OFF = 0, /**< Images are sent at once. */
    CAM_IMAGE_BUFFER_MODE_ON = 1   /**< Images are held until ExecuteCamImageBufferRead(). */
};

/**
 * Whether the camera holds its images. Block 0x203060; node ImageBufferMode.
 * @param hCam the camera
 * @param[out] peImageBufferMode the mode
 */
CAM_API_STATUS GetCamImageBufferMode(CAM_HANDLE hCam, CAM_IMAGE_BUFFER_MODE_TYPE *peImageBufferMode);

/**
 * Sets what GetCamImageBufferMode() reads. Refused while streaming.
 * @param hCam the camera
 * @param eImageBufferMode one of ::CAM_IMAGE_BUFFER_MODE_TYPE
 */
CAM_API_STATUS SetCamImageBufferMode(CAM_HANDLE hCam, CAM_IMAGE_BUFFER_MODE_TYPE eImageBufferMode);

/**
 * Images that the camera holds. Block 0x203080; node ImageBufferFrameCount.
 * @param hCam the camera
 * @param[out] puiImageBufferFrameCount number of images
 */
CAM_API_STATUS GetCamImageBufferFrameCount(CAM_HANDLE hCam, uint32_t *puiImageBufferFrameCount);

/**
 * Sends an image that the camera holds. Block 0x203020; command ImageBufferRead, for whose end is waited briefly.
 * Allowed while streaming.
 * @param hCam the camera
 */
CAM_API_STATUS ExecuteCamImageBufferRead(CAM_HANDLE hCam);

/** @} */

/**
 * @name Trigger
 * @{
 */

/**
 * Whether exposures wait for a trigger. Block 0x207020; node TriggerMode, an enumeration of Off and On or a boolean.
 * @param hCam the camera
 * @param[out] pbTriggerMode true: they wait
 */
CAM_API_STATUS GetCamTriggerMode(CAM_HANDLE hCam, bool *pbTriggerMode);

/**
 * Sets what GetCamTriggerMode() reads. Allowed while streaming.
 * @param hCam the camera
 * @param bTriggerMode true: they wait
 */
CAM_API_STATUS SetCamTriggerMode(CAM_HANDLE hCam, bool bTriggerMode);

/** What a trigger starts. */
CAM_ENUM(CAM_TRIGGER_SEQUENCE_TYPE){
    CAM_TRIGGER_SEQUENCE_0 = 0, /**< One image with the exposure time set. */
    CAM_TRIGGER_SEQUENCE_1 = 1, /**< One image, exposed as long as the trigger lasts. */
    CAM_TRIGGER_SEQUENCE_6 = 6  /**< A burst of images; see SetCamTriggerAdditionalParameter(). */
};

/**
 * What a trigger starts. Block 0x207040; nodes ExposureMode (else TriggerSequence) and TriggerSelector.
 * @param hCam the camera
 * @param[out] peTriggerSequence the sequence
 */
CAM_API_STATUS GetCamTriggerSequence(CAM_HANDLE hCam, CAM_TRIGGER_SEQUENCE_TYPE *peTriggerSequence);

/**
 * Sets what GetCamTriggerSequence() reads. On the node road a value that is not in ::CAM_TRIGGER_SEQUENCE_TYPE is taken
 * as #CAM_TRIGGER_SEQUENCE_0. Allowed while streaming.
 * @param hCam the camera
 * @param eTriggerSequence one of ::CAM_TRIGGER_SEQUENCE_TYPE
 */
CAM_API_STATUS SetCamTriggerSequence(CAM_HANDLE hCam, CAM_TRIGGER_SEQUENCE_TYPE eTriggerSequence);

/** Where a trigger comes from. Through registers every line may be given: its number, 0 to 31. */
CAM_ENUM(CAM_TRIGGER_SOURCE_TYPE){
    CAM_TRIGGER_SOURCE_LINE0 = 0x00,   /**< Line 0. */
    CAM_TRIGGER_SOURCE_LINE1 = 0x01,   /**< Line 1; registers only. */
    CAM_TRIGGER_SOURCE_LINE2 = 0x02,   /**< Line 2; registers only. */
    CAM_TRIGGER_SOURCE_SOFTWARE = 0x40 /**< ExecuteCamSoftwareTrigger(). */
};

/**
 * Where a trigger comes from. Block 0x207060; node TriggerSource.
 * @param hCam the camera
 * @param[out] peTriggerSource the source
 */
CAM_API_STATUS GetCamTriggerSource(CAM_HANDLE hCam, CAM_TRIGGER_SOURCE_TYPE *peTriggerSource);

/**
 * Sets what GetCamTriggerSource() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eTriggerSource a line's number or #CAM_TRIGGER_SOURCE_SOFTWARE; on the node road only
 * #CAM_TRIGGER_SOURCE_LINE0 and #CAM_TRIGGER_SOURCE_SOFTWARE
 */
CAM_API_STATUS SetCamTriggerSource(CAM_HANDLE hCam, CAM_TRIGGER_SOURCE_TYPE eTriggerSource);

/**
 * Limits of Get/SetCamTriggerAdditionalParameter().
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamTriggerAdditionalParameterMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Parameter of the trigger sequence: the images of a burst. Block 0x207080; node AcquisitionBurstFrameCount.
 * @param hCam the camera
 * @param[out] puiValue number of images
 */
CAM_API_STATUS GetCamTriggerAdditionalParameter(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamTriggerAdditionalParameter() reads. A block that refuses the value as an integer is tried as a scaled
 * number; the status stays that of the first try unless the second succeeds. Allowed while streaming.
 * @param hCam the camera
 * @param uiValue within GetCamTriggerAdditionalParameterMinMax()
 */
CAM_API_STATUS SetCamTriggerAdditionalParameter(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of Get/SetCamTriggerDelay().
 * @param hCam the camera
 * @param[out] pdTriggerDelayMin least value, microseconds
 * @param[out] pdTriggerDelayMax greatest value, microseconds
 */
CAM_API_STATUS GetCamTriggerDelayMinMax(CAM_HANDLE hCam, double *pdTriggerDelayMin, double *pdTriggerDelayMax);

/**
 * Time from a trigger to what it starts. Block 0x2070A0, which counts seconds; node TriggerDelay.
 * @param hCam the camera
 * @param[out] pdTriggerDelay microseconds
 */
CAM_API_STATUS GetCamTriggerDelay(CAM_HANDLE hCam, double *pdTriggerDelay);

/**
 * Sets what GetCamTriggerDelay() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dTriggerDelay microseconds, within GetCamTriggerDelayMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamTriggerDelay(CAM_HANDLE hCam, double dTriggerDelay);

/** The edge of a line that is a trigger. */
CAM_ENUM(CAM_TRIGGER_ACTIVATION_TYPE){
    CAM_TRIGGER_ACTIVATION_FALLING_EDGE = 0, /**< From high to low. */
    CAM_TRIGGER_ACTIVATION_RISING_EDGE = 1   /**< From low to high. */
};

/**
 * The edge that is a trigger. Node TriggerActivation on every camera.
 * @param hCam the camera
 * @param[out] peTriggerActivation the edge
 */
CAM_API_STATUS GetCamTriggerActivation(CAM_HANDLE hCam, CAM_TRIGGER_ACTIVATION_TYPE *peTriggerActivation);

/**
 * Sets what GetCamTriggerActivation() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eTriggerActivation one of ::CAM_TRIGGER_ACTIVATION_TYPE
 */
CAM_API_STATUS SetCamTriggerActivation(CAM_HANDLE hCam, CAM_TRIGGER_ACTIVATION_TYPE eTriggerActivation);

/**
 * Triggers. Block 0x2070C0; command TriggerSoftware, for whose end is waited briefly. Allowed while streaming.
 * @param hCam the camera
 */
CAM_API_STATUS ExecuteCamSoftwareTrigger(CAM_HANDLE hCam);

/** @} */

/**
 * @name Exposure
 * @{
 */

/** Who decides on the exposure time. */
CAM_ENUM(CAM_EXPOSURE_TIME_CONTROL_TYPE){
    CAM_EXPOSURE_TIME_CONTROL_NO_SPECIFY = 0, /**< The camera, as its frame rate demands. Registers only. */
    CAM_EXPOSURE_TIME_CONTROL_MANUAL = 1,     /**< SetCamExposureTime(). */
    CAM_EXPOSURE_TIME_CONTROL_AUTO = 2        /**< The camera, as the picture demands. */
};

/**
 * Who decides on the exposure time. Mode word of block 0x204020; node ExposureAuto, else ExposureTimeControl.
 * @param hCam the camera
 * @param[out] peExposureTimeControl the mode
 */
CAM_API_STATUS GetCamExposureTimeControl(CAM_HANDLE hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE *peExposureTimeControl);

/**
 * Sets what GetCamExposureTimeControl() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eExposureTimeControl one of ::CAM_EXPOSURE_TIME_CONTROL_TYPE
 * @retval CAM_API_STS_NOT_AVAILABLE #CAM_EXPOSURE_TIME_CONTROL_NO_SPECIFY on the node road
 */
CAM_API_STATUS SetCamExposureTimeControl(CAM_HANDLE hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE eExposureTimeControl);

/**
 * Limits of Get/SetCamExposureTime().
 * @param hCam the camera
 * @param[out] pdExposureTimeMin least value, microseconds
 * @param[out] pdExposureTimeMax greatest value, microseconds
 */
CAM_API_STATUS GetCamExposureTimeMinMax(CAM_HANDLE hCam, double *pdExposureTimeMin, double *pdExposureTimeMax);

/**
 * Exposure time. Block 0x204020, which counts seconds; node ExposureTime.
 * @param hCam the camera
 * @param[out] pdExposureTime microseconds
 */
CAM_API_STATUS GetCamExposureTime(CAM_HANDLE hCam, double *pdExposureTime);

/**
 * Sets what GetCamExposureTime() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dExposureTime microseconds, within GetCamExposureTimeMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamExposureTime(CAM_HANDLE hCam, double dExposureTime);

/** @} */

/**
 * @name Digital lines
 * In a word for all lines bit i is line i.
 * @{
 */

/**
 * Directions of the lines. Block 0x209020; no node.
 * @param hCam the camera
 * @param[out] puiValue 1: an output
 */
CAM_API_STATUS GetCamLineModeAll(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Which lines are inverted. Block 0x209040; no node.
 * @param hCam the camera
 * @param[out] puiValue 1: inverted
 */
CAM_API_STATUS GetCamLineInverterAll(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Inverts lines. Block 0x209040; node LineInverter of lines 0 to 2. Bits of lines that the camera lacks, or that can
 * never be inverted, are dropped. Allowed while streaming.
 * @param hCam the camera
 * @param uiValue 1: inverted
 * @retval CAM_API_STS_INVALID_PARAMETER a line that cannot be inverted now is to be (node road; the lines before it
 * stay set)
 */
CAM_API_STATUS SetCamLineInverterAll(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Levels of the lines. Block 0x209060; node LineStatusAll.
 * @param hCam the camera
 * @param[out] puiValue 1: high
 */
CAM_API_STATUS GetCamLineStatusAll(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Values of the user outputs. Block 0x209080; node GetCamUserOutputValueAll.
 * @param hCam the camera
 * @param[out] puiValue 1: high
 */
CAM_API_STATUS GetCamUserOutputValueAll(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets the user outputs. Block 0x209080, where bits of lines that the camera lacks are dropped; node
 * UserOutputValueAll. Allowed while streaming.
 * @param hCam the camera
 * @param uiValue 1: high
 */
CAM_API_STATUS SetCamUserOutputValueAll(CAM_HANDLE hCam, uint32_t uiValue);

/** A line. Through registers every line may be given: its number, 0 to 31. */
CAM_ENUM(CAM_LINE_SELECTOR_TYPE){
    CAM_LINE_SELECTOR_LINE0 = 0, /**< Line 0. */
    CAM_LINE_SELECTOR_LINE1 = 1, /**< Line 1. */
    CAM_LINE_SELECTOR_LINE2 = 2  /**< Line 2. */
};

/** What an output line shows. */
CAM_ENUM(CAM_LINE_SOURCE_TYPE){
    CAM_LINE_SOURCE_OFF = 0,                     /**< Nothing. */
    CAM_LINE_SOURCE_VD = 17,                     /**< Vertical synchronisation. */
    CAM_LINE_SOURCE_USER_OUTPUT = 32,            /**< SetCamUserOutputValueAll(). */
    CAM_LINE_SOURCE_TIMER0_ACTIVE = 64,          /**< Timer 0 runs. */
    CAM_LINE_SOURCE_ACQUISITION_ACTIVE = 99,     /**< An acquisition runs. */
    CAM_LINE_SOURCE_FRAME_TRIGGER_WAIT = 106,    /**< A trigger would start an image. */
    CAM_LINE_SOURCE_FRAME_ACTIVE = 107,          /**< An image is taken. */
    CAM_LINE_SOURCE_FRAME_TRANSFER_ACTIVE = 115, /**< An image is sent. */
    CAM_LINE_SOURCE_EXPOSURE_ACTIVE = 123        /**< The sensor is exposed. */
};

/**
 * What an output line shows. Blocks 0x2090A0 (selects the line) and 0x2090C0; nodes LineSelector and LineSource.
 * @param hCam the camera
 * @param eLineSelector the line; on the node road one of ::CAM_LINE_SELECTOR_TYPE
 * @param[out] peLineSource the source
 */
CAM_API_STATUS GetCamLineSource(CAM_HANDLE hCam, CAM_LINE_SELECTOR_TYPE eLineSelector,
                                CAM_LINE_SOURCE_TYPE *peLineSource);

/**
 * Sets what GetCamLineSource() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eLineSelector as for GetCamLineSource()
 * @param eLineSource one of ::CAM_LINE_SOURCE_TYPE
 */
CAM_API_STATUS SetCamLineSource(CAM_HANDLE hCam, CAM_LINE_SELECTOR_TYPE eLineSelector,
                                CAM_LINE_SOURCE_TYPE eLineSource);

/** @} */

/**
 * @name Timer
 * No function selects a timer: these act on the one that the camera has selected.
 * @{
 */

/**
 * Limits of Get/SetCamTimerDuration().
 * @param hCam the camera
 * @param[out] pdTimerDurationMin least value, microseconds
 * @param[out] pdTimerDurationMax greatest value, microseconds
 */
CAM_API_STATUS GetCamTimerDurationMinMax(CAM_HANDLE hCam, double *pdTimerDurationMin, double *pdTimerDurationMax);

/**
 * Length of the timer's pulse. Block 0x20A060, which counts seconds; node TimerDuration.
 * @param hCam the camera
 * @param[out] pdTimerDuration microseconds
 */
CAM_API_STATUS GetCamTimerDuration(CAM_HANDLE hCam, double *pdTimerDuration);

/**
 * Sets what GetCamTimerDuration() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dTimerDuration microseconds, within GetCamTimerDurationMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamTimerDuration(CAM_HANDLE hCam, double dTimerDuration);

/**
 * Limits of Get/SetCamTimerDelay().
 * @param hCam the camera
 * @param[out] pdTimerDelayMin least value, microseconds
 * @param[out] pdTimerDelayMax greatest value, microseconds
 */
CAM_API_STATUS GetCamTimerDelayMinMax(CAM_HANDLE hCam, double *pdTimerDelayMin, double *pdTimerDelayMax);

/**
 * Time from what starts the timer to its pulse. Block 0x20A040, which counts seconds; node TimerDelay.
 * @param hCam the camera
 * @param[out] pdTimerDelay microseconds
 */
CAM_API_STATUS GetCamTimerDelay(CAM_HANDLE hCam, double *pdTimerDelay);

/**
 * Sets what GetCamTimerDelay() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dTimerDelay microseconds, within GetCamTimerDelayMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamTimerDelay(CAM_HANDLE hCam, double dTimerDelay);

/** What starts a timer. */
CAM_ENUM(CAM_TIMER_TRIGGER_SOURCE_TYPE){
    CAM_TIMER_TRIGGER_SOURCE_OFF = 0,              /**< Nothing. */
    CAM_TIMER_TRIGGER_SOURCE_LINE0_ACTIVE = 32,    /**< Line 0. */
    CAM_TIMER_TRIGGER_SOURCE_FRAME_TRIGGER = 104,  /**< A trigger of an image. */
    CAM_TIMER_TRIGGER_SOURCE_EXPOSURE_START = 124, /**< The start of an exposure. */
    CAM_TIMER_TRIGGER_SOURCE_EXPOSURE_END = 125    /**< The end of an exposure. */
};

/**
 * What starts the timer. Block 0x21F260; node TimerTriggerSource.
 * @param hCam the camera
 * @param[out] peTimerTriggerSource the source
 */
CAM_API_STATUS GetCamTimerTriggerSource(CAM_HANDLE hCam, CAM_TIMER_TRIGGER_SOURCE_TYPE *peTimerTriggerSource);

/**
 * Sets what GetCamTimerTriggerSource() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eTimerTriggerSource one of ::CAM_TIMER_TRIGGER_SOURCE_TYPE
 */
CAM_API_STATUS SetCamTimerTriggerSource(CAM_HANDLE hCam, CAM_TIMER_TRIGGER_SOURCE_TYPE eTimerTriggerSource);

/** @} */

/**
 * @name Gain and levels
 * Values are in the camera's own unit.
 * @{
 */

/**
 * Limits of Get/SetCamGain().
 * @param hCam the camera
 * @param[out] pdGainMin least value, the camera's unit
 * @param[out] pdGainMax greatest value, the camera's unit
 */
CAM_API_STATUS GetCamGainMinMax(CAM_HANDLE hCam, double *pdGainMin, double *pdGainMax);

/**
 * Gain. Block 0x204060; node Gain.
 * @param hCam the camera
 * @param[out] pdGain the camera's unit
 */
CAM_API_STATUS GetCamGain(CAM_HANDLE hCam, double *pdGain);

/**
 * Sets what GetCamGain() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dGain the camera's unit, within GetCamGainMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamGain(CAM_HANDLE hCam, double dGain);

/** Who decides on the gain. */
CAM_ENUM(CAM_GAIN_AUTO_TYPE){
    CAM_GAIN_AUTO_OFF = 1,       /**< SetCamGain(). */
    CAM_GAIN_AUTO_CONTINUOUS = 2 /**< The camera, as the picture demands. */
};

/**
 * Who decides on the gain. Mode word of block 0x204060; node GainAuto.
 * @param hCam the camera
 * @param[out] peGainAuto the mode
 */
CAM_API_STATUS GetCamGainAuto(CAM_HANDLE hCam, CAM_GAIN_AUTO_TYPE *peGainAuto);

/**
 * Sets what GetCamGainAuto() reads. On the node road the result is 0 even when the node refuses or the mode does not
 * exist. Allowed while streaming.
 * @param hCam the camera
 * @param eGainAuto one of ::CAM_GAIN_AUTO_TYPE
 */
CAM_API_STATUS SetCamGainAuto(CAM_HANDLE hCam, CAM_GAIN_AUTO_TYPE eGainAuto);

/**
 * Limits of Get/SetCamBlackLevel().
 * @param hCam the camera
 * @param[out] pdBlackLevelMin least value, the camera's unit
 * @param[out] pdBlackLevelMax greatest value, the camera's unit
 */
CAM_API_STATUS GetCamBlackLevelMinMax(CAM_HANDLE hCam, double *pdBlackLevelMin, double *pdBlackLevelMax);

/**
 * Black level. Block 0x204040; node BlackLevel.
 * @param hCam the camera
 * @param[out] pdBlackLevel the camera's unit
 */
CAM_API_STATUS GetCamBlackLevel(CAM_HANDLE hCam, double *pdBlackLevel);

/**
 * Sets what GetCamBlackLevel() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dBlackLevel the camera's unit, within GetCamBlackLevelMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamBlackLevel(CAM_HANDLE hCam, double dBlackLevel);

/**
 * Limits of Get/SetCamGamma().
 * @param hCam the camera
 * @param[out] pdGammaMin least value, the camera's unit
 * @param[out] pdGammaMax greatest value, the camera's unit
 */
CAM_API_STATUS GetCamGammaMinMax(CAM_HANDLE hCam, double *pdGammaMin, double *pdGammaMax);

/**
 * Gamma. Block 0x204080; node Gamma.
 * @param hCam the camera
 * @param[out] pdGamma the camera's unit
 */
CAM_API_STATUS GetCamGamma(CAM_HANDLE hCam, double *pdGamma);

/**
 * Sets what GetCamGamma() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dGamma the camera's unit, within GetCamGammaMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamGamma(CAM_HANDLE hCam, double dGamma);

/**
 * Limits of Get/SetCamSharpness().
 * @param hCam the camera
 * @param[out] puiSharpnessMin least value, the camera's unit
 * @param[out] puiSharpnessMax greatest value, the camera's unit
 */
CAM_API_STATUS GetCamSharpnessMinMax(CAM_HANDLE hCam, uint32_t *puiSharpnessMin, uint32_t *puiSharpnessMax);

/**
 * Sharpness. Block 0x2040A0; node Sharpness.
 * @param hCam the camera
 * @param[out] puiSharpness the camera's unit
 */
CAM_API_STATUS GetCamSharpness(CAM_HANDLE hCam, uint32_t *puiSharpness);

/**
 * Sets what GetCamSharpness() reads. Allowed while streaming.
 * @param hCam the camera
 * @param uiSharpness the camera's unit, within GetCamSharpnessMinMax()
 */
CAM_API_STATUS SetCamSharpness(CAM_HANDLE hCam, uint32_t uiSharpness);

/** @} */

/**
 * @name Colour
 * @{
 */

/**
 * Limits of Get/SetCamHue().
 * @param hCam the camera
 * @param[out] pdHueMin least value, the camera's unit
 * @param[out] pdHueMax greatest value, the camera's unit
 */
CAM_API_STATUS GetCamHueMinMax(CAM_HANDLE hCam, double *pdHueMin, double *pdHueMax);

/**
 * Hue. Block 0x205020; node Hue.
 * @param hCam the camera
 * @param[out] pdHue the camera's unit
 */
CAM_API_STATUS GetCamHue(CAM_HANDLE hCam, double *pdHue);

/**
 * Sets what GetCamHue() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dHue the camera's unit, within GetCamHueMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamHue(CAM_HANDLE hCam, double dHue);

/**
 * Limits of Get/SetCamSaturation().
 * @param hCam the camera
 * @param[out] pdSaturationMin least value, the camera's unit
 * @param[out] pdSaturationMax greatest value, the camera's unit
 */
CAM_API_STATUS GetCamSaturationMinMax(CAM_HANDLE hCam, double *pdSaturationMin, double *pdSaturationMax);

/**
 * Saturation. Block 0x205040; node Saturation.
 * @param hCam the camera
 * @param[out] pdSaturation the camera's unit
 */
CAM_API_STATUS GetCamSaturation(CAM_HANDLE hCam, double *pdSaturation);

/**
 * Sets what GetCamSaturation() reads, rounded to what the camera can do. Allowed while streaming.
 * @param hCam the camera
 * @param dSaturation the camera's unit, within GetCamSaturationMinMax()
 * @retval CAM_API_STS_INVALID_PARAMETER outside the limits
 */
CAM_API_STATUS SetCamSaturation(CAM_HANDLE hCam, double dSaturation);

/** A colour whose ratio to green can be set. */
CAM_ENUM(CAM_BALANCE_RATIO_SELECTOR_TYPE){
    CAM_BALANCE_RATIO_SELECTOR_RED = 1, /**< Red. */
    CAM_BALANCE_RATIO_SELECTOR_BLUE = 2 /**< Blue. */
};

/**
 * Limits of Get/SetCamBalanceRatio().
 * @param hCam the camera
 * @param eSelector one of ::CAM_BALANCE_RATIO_SELECTOR_TYPE
 * @param[out] pdBalanceRatioMin least ratio
 * @param[out] pdBalanceRatioMax greatest ratio
 */
CAM_API_STATUS GetCamBalanceRatioMinMax(CAM_HANDLE hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE eSelector,
                                        double *pdBalanceRatioMin, double *pdBalanceRatioMax);

/**
 * White balance of a colour. Nodes BalanceRatioSelector (Red or R, Blue or B) and BalanceRatio on every camera.
 * @param hCam the camera
 * @param eSelector one of ::CAM_BALANCE_RATIO_SELECTOR_TYPE
 * @param[out] pdBalanceRatio its ratio
 */
CAM_API_STATUS GetCamBalanceRatio(CAM_HANDLE hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE eSelector, double *pdBalanceRatio);

/**
 * Sets what GetCamBalanceRatio() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eSelector one of ::CAM_BALANCE_RATIO_SELECTOR_TYPE
 * @param dBalanceRatio within GetCamBalanceRatioMinMax()
 */
CAM_API_STATUS SetCamBalanceRatio(CAM_HANDLE hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE eSelector, double dBalanceRatio);

/** Who decides on the white balance. */
CAM_ENUM(CAM_BALANCE_WHITE_AUTO_TYPE){
    CAM_BALANCE_WHITE_AUTO_OFF = 1, /**< SetCamBalanceRatio(). */
    CAM_BALANCE_WHITE_AUTO_ONCE = 3 /**< The camera, once, by the picture; then off again. */
};

/**
 * Who decides on the white balance. Node BalanceWhiteAuto on every camera.
 * @param hCam the camera
 * @param[out] peBalanceWhiteAuto the mode
 */
CAM_API_STATUS GetCamBalanceWhiteAuto(CAM_HANDLE hCam, CAM_BALANCE_WHITE_AUTO_TYPE *peBalanceWhiteAuto);

/**
 * Chooses who decides on the white balance. Mode word of block 0x205060; node BalanceWhiteAuto. Allowed while
 * streaming.
 * @param hCam the camera
 * @param eBalanceWhiteAuto one of ::CAM_BALANCE_WHITE_AUTO_TYPE
 */
CAM_API_STATUS SetCamBalanceWhiteAuto(CAM_HANDLE hCam, CAM_BALANCE_WHITE_AUTO_TYPE eBalanceWhiteAuto);

/** An element of the colour-correction matrix: output colour, input colour. The diagonal cannot be reached. */
CAM_ENUM(CAM_COLOR_CORRECTION_MATRIX_TYPE){
    CAM_COLOR_CORRECTION_MATRIX_RG = 0, /**< Red from green. */
    CAM_COLOR_CORRECTION_MATRIX_RB = 1, /**< Red from blue. */
    CAM_COLOR_CORRECTION_MATRIX_GR = 2, /**< Green from red. */
    CAM_COLOR_CORRECTION_MATRIX_GB = 3, /**< Green from blue. */
    CAM_COLOR_CORRECTION_MATRIX_BR = 4, /**< Blue from red. */
    CAM_COLOR_CORRECTION_MATRIX_BG = 5  /**< Blue from green. */
};

/**
 * Limits of Get/SetCamColorCorrectionMatrix().
 * @param hCam the camera
 * @param eType one of ::CAM_COLOR_CORRECTION_MATRIX_TYPE
 * @param[out] pdMatrixMin least value
 * @param[out] pdMatrixMax greatest value
 */
CAM_API_STATUS GetCamColorCorrectionMatrixMinMax(CAM_HANDLE hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE eType,
                                                 double *pdMatrixMin, double *pdMatrixMax);

/**
 * An element of the colour-correction matrix. Nodes ColorCorrectionMatrixSelectorI, ColorCorrectionMatrixSelectorJ and
 * ColorCorrectionMatrix on every camera.
 * @param hCam the camera
 * @param eType one of ::CAM_COLOR_CORRECTION_MATRIX_TYPE
 * @param[out] pdMatrix its value
 */
CAM_API_STATUS GetCamColorCorrectionMatrix(CAM_HANDLE hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE eType, double *pdMatrix);

/**
 * Sets what GetCamColorCorrectionMatrix() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eType one of ::CAM_COLOR_CORRECTION_MATRIX_TYPE
 * @param dMatrix within GetCamColorCorrectionMatrixMinMax()
 */
CAM_API_STATUS SetCamColorCorrectionMatrix(CAM_HANDLE hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE eType, double dMatrix);

/** @} */

/**
 * @name Look-up table
 * Nodes on every camera.
 * @{
 */

/**
 * Whether pixels go through the table. Node LUTEnable.
 * @param hCam the camera
 * @param[out] pbEnable true: they do
 */
CAM_API_STATUS GetCamLutEnable(CAM_HANDLE hCam, bool *pbEnable);

/**
 * Sets what GetCamLutEnable() reads. Allowed while streaming.
 * @param hCam the camera
 * @param bEnable true: they go through it
 */
CAM_API_STATUS SetCamLutEnable(CAM_HANDLE hCam, bool bEnable);

/**
 * An entry of the table. Nodes LUTIndex and LUTValue, else LUTEntry. When both fail the status is LUTValue's.
 * @param hCam the camera
 * @param uiLutIndex the pixel's value before, within the limits of LUTIndex
 * @param[out] puiLutValue the pixel's value behind
 */
CAM_API_STATUS GetCamLutValue(CAM_HANDLE hCam, uint32_t uiLutIndex, uint32_t *puiLutValue);

/**
 * Sets what GetCamLutValue() reads. Allowed while streaming.
 * @param hCam the camera
 * @param uiLutIndex as for GetCamLutValue()
 * @param uiLutValue within the limits of the node
 */
CAM_API_STATUS SetCamLutValue(CAM_HANDLE hCam, uint32_t uiLutIndex, uint32_t uiLutValue);

/** @} */

/**
 * @name User sets
 * Nodes on every camera. After its command each function waits for UserSetDone, for half a second at most; that the
 * camera does not report it is no failure.
 * @{
 */

/** A set of settings that the camera keeps. */
CAM_ENUM(CAM_USER_SET_SELECTOR_TYPE){
    CAM_USER_SET_SELECTOR_DEFAULT = 0,     /**< The factory set; cannot be saved. */
    CAM_USER_SET_SELECTOR_USER_SET1 = 1,   /**< User set 1. */
    CAM_USER_SET_SELECTOR_USER_SET2 = 2,   /**< User set 2. */
    CAM_USER_SET_SELECTOR_USER_SET3 = 3,   /**< User set 3. */
    CAM_USER_SET_SELECTOR_USER_SET4 = 4,   /**< User set 4. */
    CAM_USER_SET_SELECTOR_USER_SET5 = 5,   /**< User set 5. */
    CAM_USER_SET_SELECTOR_USER_SET6 = 6,   /**< User set 6. */
    CAM_USER_SET_SELECTOR_USER_SET7 = 7,   /**< User set 7. */
    CAM_USER_SET_SELECTOR_USER_SET8 = 8,   /**< User set 8. */
    CAM_USER_SET_SELECTOR_USER_SET9 = 9,   /**< User set 9. */
    CAM_USER_SET_SELECTOR_USER_SET10 = 10, /**< User set 10. */
    CAM_USER_SET_SELECTOR_USER_SET11 = 11, /**< User set 11. */
    CAM_USER_SET_SELECTOR_USER_SET12 = 12, /**< User set 12. */
    CAM_USER_SET_SELECTOR_USER_SET13 = 13, /**< User set 13. */
    CAM_USER_SET_SELECTOR_USER_SET14 = 14, /**< User set 14. */
    CAM_USER_SET_SELECTOR_USER_SET15 = 15  /**< User set 15. */
};

/**
 * Loads a set. Nodes UserSetSelector (Default, UserSet1 ...) and UserSetLoad. Allowed while streaming.
 * @param hCam the camera
 * @param eSelector 0 to 15; see ::CAM_USER_SET_SELECTOR_TYPE
 */
CAM_API_STATUS ExecuteCamUserSetLoad(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector);

/**
 * Saves the present settings as a set. Nodes UserSetSelector and UserSetSave. Allowed while streaming.
 * @param hCam the camera
 * @param eSelector 0 to 15; see ::CAM_USER_SET_SELECTOR_TYPE
 */
CAM_API_STATUS ExecuteCamUserSetSave(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector);

/**
 * Saves the present settings as a set with which the camera starts from then on. Nodes UserSetSelector, UserSetDefault
 * and UserSetSave. With #CAM_USER_SET_SELECTOR_DEFAULT the camera starts with the factory set, and loads it now: the
 * present settings are lost. Allowed while streaming.
 * @param hCam the camera
 * @param eSelector 0 to 15; see ::CAM_USER_SET_SELECTOR_TYPE
 */
CAM_API_STATUS ExecuteCamUserSetSaveAndSetDefault(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector);

/** @} */

/**
 * @name Frame synchronisation
 * Nodes on every camera.
 * @{
 */

/** What the camera's frames keep time with. */
CAM_ENUM(CAM_FRAME_SYNCHRONIZATION_TYPE){
    CAM_FRAME_SYNCHRONIZATION_OFF = 0, /**< The camera's own clock. */
    CAM_FRAME_SYNCHRONIZATION_BUS = 1  /**< The bus. */
};

/**
 * What the frames keep time with. Node FrameSynchronization.
 * @param hCam the camera
 * @param[out] peSync the source
 */
CAM_API_STATUS GetCamFrameSynchronization(CAM_HANDLE hCam, CAM_FRAME_SYNCHRONIZATION_TYPE *peSync);

/**
 * Sets what GetCamFrameSynchronization() reads. Allowed while streaming.
 * @param hCam the camera
 * @param eSync one of ::CAM_FRAME_SYNCHRONIZATION_TYPE
 */
CAM_API_STATUS SetCamFrameSynchronization(CAM_HANDLE hCam, CAM_FRAME_SYNCHRONIZATION_TYPE eSync);

/** @} */

/**
 * @name Defective-pixel correction
 * Nodes on every camera.
 * @{
 */

/**
 * Whether defective pixels are corrected. Node DPCEnable.
 * @param hCam the camera
 * @param[out] pbEnable true: they are
 */
CAM_API_STATUS GetCamDpcEnable(CAM_HANDLE hCam, bool *pbEnable);

/**
 * Sets what GetCamDpcEnable() reads. Allowed while streaming.
 * @param hCam the camera
 * @param bEnable true: on
 */
CAM_API_STATUS SetCamDpcEnable(CAM_HANDLE hCam, bool bEnable);

/**
 * Number of defective pixels in the list. Node DPCNumber.
 * @param hCam the camera
 * @param[out] puiNumber number of pixels
 */
CAM_API_STATUS GetCamDpcNumber(CAM_HANDLE hCam, uint32_t *puiNumber);

/**
 * Sets what GetCamDpcNumber() reads. Allowed while streaming.
 * @param hCam the camera
 * @param uiNumber within the limits of the node
 */
CAM_API_STATUS SetCamDpcNumber(CAM_HANDLE hCam, uint32_t uiNumber);

/**
 * Position of a defective pixel. Nodes DPCIndex, DPCEntryX and DPCEntryY.
 * @param hCam the camera
 * @param uiDpcIndex place in the list, within the limits of DPCIndex
 * @param[out] puiEntryX column on the sensor
 * @param[out] puiEntryY line on the sensor
 */
CAM_API_STATUS GetCamDpcPosition(CAM_HANDLE hCam, uint32_t uiDpcIndex, uint32_t *puiEntryX, uint32_t *puiEntryY);

/**
 * Sets the position of a defective pixel. Selects through the node LUTIndex, not DPCIndex; then DPCEntryX and
 * DPCEntryY. Allowed while streaming.
 * @param hCam the camera
 * @param uiDpcIndex within the limits of LUTIndex
 * @param uiEntryX column on the sensor
 * @param uiEntryY line on the sensor
 */
CAM_API_STATUS SetCamDpcPosition(CAM_HANDLE hCam, uint32_t uiDpcIndex, uint32_t uiEntryX, uint32_t uiEntryY);

/** @} */

/**
 * @name Sequential shutter
 * A list of exposure settings that the camera runs through image by image. Nodes on every camera.
 * @{
 */

/**
 * Whether the camera runs through the list. Node SequentialShutterEnable.
 * @param hCam the camera
 * @param[out] pbEnable true: it does
 */
CAM_API_STATUS GetCamSequentialShutterEnable(CAM_HANDLE hCam, bool *pbEnable);

/**
 * Sets what GetCamSequentialShutterEnable() reads. Allowed while streaming.
 * @param hCam the camera
 * @param bEnable true: on
 */
CAM_API_STATUS SetCamSequentialShutterEnable(CAM_HANDLE hCam, bool bEnable);

/**
 * Limits of Get/SetCamSequentialShutterTerminateAt().
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamSequentialShutterTerminateAtMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Last place of the list that is used. Node SequentialShutterTerminateAt.
 * @param hCam the camera
 * @param[out] puiValue the place
 */
CAM_API_STATUS GetCamSequentialShutterTerminateAt(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * Sets what GetCamSequentialShutterTerminateAt() reads. Allowed while streaming.
 * @param hCam the camera
 * @param uiValue within GetCamSequentialShutterTerminateAtMinMax()
 */
CAM_API_STATUS SetCamSequentialShutterTerminateAt(CAM_HANDLE hCam, uint32_t uiValue);

/**
 * Limits of a place in the list. Node SequentialShutterIndex.
 * @param hCam the camera
 * @param[out] puiMin first place
 * @param[out] puiMax last place
 */
CAM_API_STATUS GetCamSequentialShutterIndexMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * Limits of an entry of the list. Node SequentialShutterEntry.
 * @param hCam the camera
 * @param[out] puiMin least value
 * @param[out] puiMax greatest value
 */
CAM_API_STATUS GetCamSequentialShutterEntryMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax);

/**
 * An entry of the list. Nodes SequentialShutterIndex and SequentialShutterEntry.
 * @param hCam the camera
 * @param uiIndex place, within GetCamSequentialShutterIndexMinMax()
 * @param[out] puiEntry as the camera counts it
 */
CAM_API_STATUS GetCamSequentialShutterEntry(CAM_HANDLE hCam, uint32_t uiIndex, uint32_t *puiEntry);

/**
 * Sets what GetCamSequentialShutterEntry() reads. Allowed while streaming.
 * @param hCam the camera
 * @param uiIndex place, within GetCamSequentialShutterIndexMinMax()
 * @param uiEntry within GetCamSequentialShutterEntryMinMax()
 */
CAM_API_STATUS SetCamSequentialShutterEntry(CAM_HANDLE hCam, uint32_t uiIndex, uint32_t uiEntry);

/** @} */

/**
 * @name Device
 * @{
 */

/**
 * Whether settings that matter to the stream are locked. Node TLParamsLocked on every camera.
 * @param hCam the camera
 * @param[out] puiValue 0: free, 1: locked
 */
CAM_API_STATUS GetCamTLParamsLocked(CAM_HANDLE hCam, uint32_t *puiValue);

/**
 * The name that users gave the camera. Node UserDefinedName; USB3 Vision cameras only.
 * @param hCam the camera
 * @param[out] pszName room for the name; a name of 64 characters fills 64 bytes and has no closing NUL then
 * @param[in,out] puiSize in: bytes at @p pszName, best 64; out: bytes of the name with its NUL, 64 for a name without
 * @retval CAM_API_STS_NOT_INITIALIZED comes before all other checks here
 * @retval CAM_API_STS_BUFFER_TOO_SMALL the name does not fit
 */
CAM_API_STATUS GetCamUserDefinedName(CAM_HANDLE hCam, char *pszName, uint32_t *puiSize);

/**
 * Gives the camera a name. Node UserDefinedName; USB3 Vision cameras only. Allowed while streaming.
 * @param hCam the camera
 * @param pszName at most 63 characters
 * @retval CAM_API_STS_INVALID_PARAMETER @p pszName is null or has 64 characters or more
 * @retval CAM_API_STS_NOT_INITIALIZED comes before all other checks here
 */
CAM_API_STATUS SetCamUserDefinedName(CAM_HANDLE hCam, const char *pszName);

/** @} */

/** @} */

/**
 * @defgroup log Log
 * One diagnostic log per process, a file or a ring in memory. Each API function writes a line when it is entered and
 * one when it is left. Any thread may write; starting and ending the log must not race with other calls.
 * @{
 */

/**
 * Starts the log as a file; each line is on disk when the call that wrote it returns.
 * @param pszPath path; its last folder is made if it is missing
 * @param bAppend false empties an existing file
 * @param uiLevel one of ::CAM_LOG_LEVEL: the lowest level that is written
 * @retval CAM_API_STS_ALREADY_INITIALIZED the log is up
 * @retval CAM_API_STS_INVALID_PARAMETER   null path, or its folder cannot be made
 * @retval CAM_API_STS_UNSUCCESSFUL        the file cannot be opened
 */
CAM_API_STATUS Log_InitializeFile(const char *pszPath, bool bAppend, uint32_t uiLevel);

/**
 * Starts the log as a ring in memory, for Log_OutMemToFile().
 * @param uiSize  bytes of the ring
 * @param uiLevel one of ::CAM_LOG_LEVEL: the lowest level that is written
 * @retval CAM_API_STS_ALREADY_INITIALIZED the log is up
 * @retval CAM_API_STS_INVALID_PARAMETER   @p uiSize is 0
 * @retval CAM_API_STS_NO_MEMORY           no memory for the ring
 */
CAM_API_STATUS Log_InitializeMem(uint32_t uiSize, uint32_t uiLevel);

/** Ends the log. @retval CAM_API_STS_UNSUCCESSFUL the log is not up */
CAM_API_STATUS Log_Terminate(void);

/**
 * Writes a line of the application's own.
 * @param uiLevel one of ::CAM_LOG_LEVEL
 * @param pszText the line without a line feed; at most 254 bytes are kept
 * @return 0 written, or below the log's level; -1 the log is not up or its file cannot be opened; 13 bad level; 15 less
 *         than 200 MiB free on the disk. After a -1 or 15 of a log file that is up, the log is frozen: every later
 *         writer waits for ever.
 */
int32_t Log_Write(uint32_t uiLevel, const char *pszText);

/** Empties the ring. @retval CAM_API_STS_UNSUCCESSFUL the log is not a ring */
CAM_API_STATUS Log_MemFlush(void);

/**
 * Writes the ring to a file, oldest line first.
 * @param pszPath path; its last folder is made if it is missing
 * @return 0; -1 the log is not a ring, or the file cannot be opened (the log is then frozen); 13 the folder cannot be
 *         made; 15 less than 200 MiB free on the disk
 */
int32_t Log_OutMemToFile(const char *pszPath);

/**
 * @name The transport's own logs
 * `Cam` in the name: the log of the transport's devices; without: of its interface. @p iInterface is 1 for the USB3
 * Vision transport; any other value does nothing. The transport's failures are swallowed: the result is 0, or
 * #CAM_API_STS_UNSUCCESSFUL after an exception. The other arguments are those of the function without "Ex".
 * @{
 */
CAM_API_STATUS Log_InitializeMemCamEx(int32_t iInterface, uint32_t uiSize, uint32_t uiLevel);
CAM_API_STATUS Log_InitializeFileCamEx(int32_t iInterface, const char *pszPath, bool bAppend, uint32_t uiLevel);
CAM_API_STATUS Log_TerminateCamEx(int32_t iInterface);
CAM_API_STATUS Log_WriteCamEx(int32_t iInterface, uint32_t uiLevel, const char *pszText);
CAM_API_STATUS Log_MemFlushCamEx(int32_t iInterface);
CAM_API_STATUS Log_OutMemToFileCamEx(int32_t iInterface, const char *pszPath);
CAM_API_STATUS Log_InitializeMemEx(int32_t iInterface, uint32_t uiSize, uint32_t uiLevel);
CAM_API_STATUS Log_InitializeFileEx(int32_t iInterface, const char *pszPath, bool bAppend, uint32_t uiLevel);
CAM_API_STATUS Log_TerminateEx(int32_t iInterface);
CAM_API_STATUS Log_WriteEx(int32_t iInterface, uint32_t uiLevel, const char *pszText);
CAM_API_STATUS Log_MemFlushEx(int32_t iInterface);
CAM_API_STATUS Log_OutMemToFileEx(int32_t iInterface, const char *pszPath);
/** @} */

/**
 * @name Diagnostic hooks
 * They accept anything and do nothing. The library hands its diagnostic texts to DEBUG_PRINT(); a program that defines
 * a function of that name receives them instead.
 * @{
 */
void DEBUG_PRINT(const char *pszFormat, ...);
void DEBUG_PRINT_MSG(const char *pszFormat, ...);
void DEBUG_PRINT_TO_FILE(const char *pszFormat, ...);
void DEBUG_PRINT_TO_FILE_DATE(const char *pszFormat, ...);
/** @} */
/** @} */

#ifdef __cplusplus
} // extern "C"
#endif

#endif
