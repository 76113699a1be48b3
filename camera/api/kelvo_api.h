// SPDX-License-Identifier: MIT
// The C interface of the camera library libkelvo_api.so.1, as the program and every library that stands in
// for the maker's agree on it. A status is 0 on success; a handle of 0 means no camera.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define KELVO_API __attribute__((visibility("default")))
#else
#define KELVO_API
#endif

/* Enumeration. The list is a buffer of 4 + 112 n bytes whose first word holds n. */
KELVO_API int32_t vx_GetNumberOfCameras(int32_t *count);
KELVO_API int32_t vx_GetCameraList(void *list);

/* Device. The window is always null. */
KELVO_API int32_t vx_InitCamera(uint32_t *handle, void *window);
KELVO_API int32_t vx_ExitCamera(uint32_t h);
KELVO_API int32_t vx_GetDuration(uint32_t h, uint32_t mode, int32_t *milliseconds);
KELVO_API int32_t vx_GetSensorInfo(uint32_t h, void *record); /* 80 bytes */
KELVO_API int32_t vx_GetCameraInfo(uint32_t h, void *record); /* 64 bytes */
KELVO_API int32_t vx_GetError(uint32_t h, int32_t *code, char **text);
KELVO_API int32_t vx_LoadParameters(uint32_t h, const char *path);

/* Functions that take a command. */
KELVO_API int32_t vx_SetColorMode(uint32_t h, int32_t mode);
KELVO_API int32_t vx_AOI(uint32_t h, uint32_t command, void *data, uint32_t size);
KELVO_API int32_t vx_HotPixel(uint32_t h, uint32_t command, void *data, uint32_t size);
KELVO_API int32_t vx_Event(uint32_t h, uint32_t command, void *data, uint32_t size);

/* Image memory, the sequence and capture. */
KELVO_API int32_t vx_AllocImageMem(uint32_t h, int32_t width, int32_t height, int32_t bitsPerPixel,
                                   char **memory, int32_t *memoryId);
KELVO_API int32_t vx_FreeImageMem(uint32_t h, char *memory, int32_t memoryId);
KELVO_API int32_t vx_AddToSequence(uint32_t h, char *memory, int32_t memoryId);
KELVO_API int32_t vx_ClearSequence(uint32_t h);
KELVO_API int32_t vx_GetActSeqBuf(uint32_t h, int32_t *number, char **current, char **last);
KELVO_API int32_t vx_LockSeqBuf(uint32_t h, int32_t number, char *memory);
KELVO_API int32_t vx_UnlockSeqBuf(uint32_t h, int32_t number, char *memory);
KELVO_API int32_t vx_CaptureVideo(uint32_t h, int32_t wait);
KELVO_API int32_t vx_StopLiveVideo(uint32_t h, int32_t wait);
KELVO_API int32_t vx_FreezeVideo(uint32_t h, int32_t wait);
KELVO_API int32_t vx_GetFramesPerSecond(uint32_t h, double *framesPerSecond);

/* Parameters: pixel clock, frame times in seconds, exposure, gains. */
KELVO_API int32_t vx_GetPixelClockRange(uint32_t h, int32_t *min, int32_t *max);
KELVO_API int32_t vx_SetPixelClock(uint32_t h, int32_t value);
KELVO_API int32_t vx_GetFrameTimeRange(uint32_t h, double *min, double *max, double *increment);
KELVO_API int32_t vx_SetFrameRate(uint32_t h, double wanted, double *actual);
KELVO_API int32_t vx_GetExposureRange(uint32_t h, double *min, double *max, double *increment);
KELVO_API int32_t vx_SetExposureTime(uint32_t h, double wanted, double *actual);
KELVO_API int32_t vx_SetHardwareGain(uint32_t h, int32_t master, int32_t red, int32_t green, int32_t blue);

#ifdef __cplusplus
}
#endif
