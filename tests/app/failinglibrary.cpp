// SPDX-License-Identifier: MIT
// A camera library of which every call fails, to be put in the simulated one's place.

#include "kelvo_api.h"

#define FAILS(function, ...)                                                                                 \
    int32_t function(__VA_ARGS__)                                                                            \
    {                                                                                                        \
        return 1;                                                                                            \
    }

extern "C" {
FAILS(vx_GetNumberOfCameras, int32_t *)
FAILS(vx_GetCameraList, void *)
FAILS(vx_InitCamera, uint32_t *, void *)
FAILS(vx_ExitCamera, uint32_t)
FAILS(vx_GetDuration, uint32_t, uint32_t, int32_t *)
FAILS(vx_GetSensorInfo, uint32_t, void *)
FAILS(vx_GetCameraInfo, uint32_t, void *)
FAILS(vx_GetError, uint32_t, int32_t *, char **)
FAILS(vx_LoadParameters, uint32_t, const char *)
FAILS(vx_SetColorMode, uint32_t, int32_t)
FAILS(vx_AOI, uint32_t, uint32_t, void *, uint32_t)
FAILS(vx_HotPixel, uint32_t, uint32_t, void *, uint32_t)
FAILS(vx_Event, uint32_t, uint32_t, void *, uint32_t)
FAILS(vx_AllocImageMem, uint32_t, int32_t, int32_t, int32_t, char **, int32_t *)
FAILS(vx_FreeImageMem, uint32_t, char *, int32_t)
FAILS(vx_AddToSequence, uint32_t, char *, int32_t)
FAILS(vx_ClearSequence, uint32_t)
FAILS(vx_GetActSeqBuf, uint32_t, int32_t *, char **, char **)
FAILS(vx_LockSeqBuf, uint32_t, int32_t, char *)
FAILS(vx_UnlockSeqBuf, uint32_t, int32_t, char *)
FAILS(vx_CaptureVideo, uint32_t, int32_t)
FAILS(vx_StopLiveVideo, uint32_t, int32_t)
FAILS(vx_FreezeVideo, uint32_t, int32_t)
FAILS(vx_GetFramesPerSecond, uint32_t, double *)
FAILS(vx_GetPixelClockRange, uint32_t, int32_t *, int32_t *)
FAILS(vx_SetPixelClock, uint32_t, int32_t)
FAILS(vx_GetFrameTimeRange, uint32_t, double *, double *, double *)
FAILS(vx_SetFrameRate, uint32_t, double, double *)
FAILS(vx_GetExposureRange, uint32_t, double *, double *, double *)
FAILS(vx_SetExposureTime, uint32_t, double, double *)
FAILS(vx_SetHardwareGain, uint32_t, int32_t, int32_t, int32_t, int32_t)
}
