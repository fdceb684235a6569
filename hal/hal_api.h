/*
 * VelHal flat device-class interface.
 *
 * Compiles as C and as C++, needs no Windows header, and uses fixed-width types only.
 * Every function returns 1 (or, where documented, the non-zero result of the operating
 * system call) on success and 0 on failure; none of them throws or sets a last error.
 *
 * Blocks handed out by HalInit are allocated with malloc; the caller releases them with
 * free from the same C runtime (msvcrt). The library never frees a block it handed out.
 */
#ifndef VELHAL_HAL_API_H_
#define VELHAL_HAL_API_H_

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "velhal_export.h"

#ifdef __cplusplus
#define HAL_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define HAL_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

/* Device-class numbers; every other value makes each entry point return 0. */
typedef uint32_t HalDeviceClass;
#define HAL_CLASS_PROCESSOR 0u
#define HAL_CLASS_AUDIO_ENDPOINTS 3u
#define HAL_CLASS_GRAPHICS 4u
#define HAL_CLASS_DISK 5u
#define HAL_CLASS_BATTERY 6u
#define HAL_CLASS_MEMORY 11u
#define HAL_CLASS_DISPLAY 16u

/* One entry of a HalDeviceList (16 bytes). */
typedef struct HalDeviceEntry {
    void* handle;      /* OS handle stored by HalOpenDevice (class 5); meaningful only after it */
    uint32_t index;    /* position in the list; for class 5 the physical-drive number */
    uint32_t reserved; /* never written */
} HalDeviceEntry;

/* The block HalInit allocates for classes 3, 5 and 11: 8 + 16 x count bytes. */
typedef struct HalDeviceList {
    uint32_t totalSize; /* 8 + 16 x count, header included */
    uint32_t count;
    HalDeviceEntry entries[1]; /* count entries follow the header */
} HalDeviceList;

#define HAL_DEVICE_LIST_SIZE(count) (8u + 16u * (uint32_t)(count))

HAL_STATIC_ASSERT(sizeof(void*) == 8, "VelHal is a 64-bit library");
HAL_STATIC_ASSERT(sizeof(HalDeviceEntry) == 16, "HalDeviceEntry is 16 bytes");
HAL_STATIC_ASSERT(offsetof(HalDeviceEntry, handle) == 0, "handle slot at 0");
HAL_STATIC_ASSERT(offsetof(HalDeviceEntry, index) == 8, "index at 8");
HAL_STATIC_ASSERT(offsetof(HalDeviceEntry, reserved) == 12, "reserved at 12");
HAL_STATIC_ASSERT(offsetof(HalDeviceList, totalSize) == 0, "total size at 0");
HAL_STATIC_ASSERT(offsetof(HalDeviceList, count) == 4, "count at 4");
HAL_STATIC_ASSERT(offsetof(HalDeviceList, entries) == 8, "entries at 8");

/* One graphics adapter record (552 bytes); bytes marked unused are not written. */
typedef struct GpAdapterEntry {
    uint32_t discrete;       /* 1 unless WMI's AdapterDACType says "Integrated" */
    uint8_t unused4[4];
    uint64_t zero;           /* always written as 0 */
    uint32_t index;          /* 0 .. count - 1 */
    uint8_t active;          /* 1 when WMI reports a usable refresh rate */
    uint8_t unused21[3];
    uint32_t videoMemoryMiB; /* dedicated video memory, 0 when unknown */
    uint16_t name[260];      /* UTF-16 device description, NUL-terminated */
    uint8_t unused548[4];
} GpAdapterEntry;

/* The graphics block of class 4: 8 + 552 x count bytes. */
typedef struct GpAdapterList {
    uint32_t totalSize;
    uint32_t count;
    GpAdapterEntry adapters[1];
} GpAdapterList;

HAL_STATIC_ASSERT(sizeof(GpAdapterEntry) == 552, "GpAdapterEntry is 552 bytes");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, discrete) == 0, "discrete flag at 0");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, zero) == 8, "zero field at 8");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, index) == 16, "index at 16");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, active) == 20, "active flag at 20");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, videoMemoryMiB) == 24, "video memory at 24");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, name) == 28, "name at 28");
HAL_STATIC_ASSERT(offsetof(GpAdapterEntry, unused548) == 548, "tail at 548");
HAL_STATIC_ASSERT(offsetof(GpAdapterList, count) == 4, "count at 4");
HAL_STATIC_ASSERT(offsetof(GpAdapterList, adapters) == 8, "adapters at 8");

/* The display-brightness block of class 16 (16 bytes). Queries and sets take &adapterIndex. */
typedef struct DpDisplayList {
    uint32_t totalSize; /* 16 */
    uint32_t count;     /* 1 */
    uint32_t adapterIndex;
    uint32_t displayIndex;
} DpDisplayList;

/* Every 20-byte answer of class 16. */
typedef struct DpColorRange {
    uint32_t current;
    uint32_t defaultValue;
    uint32_t minimum;
    uint32_t maximum;
    uint32_t step;
} DpColorRange;

HAL_STATIC_ASSERT(sizeof(DpDisplayList) == 16, "DpDisplayList is 16 bytes");
HAL_STATIC_ASSERT(offsetof(DpDisplayList, adapterIndex) == 8, "adapter index at 8");
HAL_STATIC_ASSERT(offsetof(DpDisplayList, displayIndex) == 12, "display index at 12");
HAL_STATIC_ASSERT(sizeof(DpColorRange) == 20, "DpColorRange is five u32");
HAL_STATIC_ASSERT(offsetof(DpColorRange, step) == 16, "step at 16");

/* Core Audio's callback interface; the same tag Windows' headers use in C and C++. */
struct IAudioEndpointVolumeCallback;

/*
 * list is the address of the caller's block pointer (HalDeviceList* for classes 3, 5 and 11,
 * GpAdapterList* for 4, DpDisplayList* for 16). Classes 0 and 6 make no block and ignore it.
 */
VELHAL_C_API uint32_t HalInit(HalDeviceClass deviceClass, void* list);

VELHAL_C_API uint32_t HalOpenDevice(HalDeviceClass deviceClass, HalDeviceEntry* entry);
VELHAL_C_API uint32_t HalCloseDevice(HalDeviceClass deviceClass, HalDeviceEntry* entry);

/* offset has the layout of LARGE_INTEGER (a host with <windows.h> passes &li.QuadPart). */
VELHAL_C_API uint32_t HalRead(HalDeviceClass deviceClass, HalDeviceEntry* entry, int64_t* offset,
                              void* buffer, uint32_t length, uint32_t* bytesRead);
VELHAL_C_API uint32_t HalWrite(HalDeviceClass deviceClass, HalDeviceEntry* entry, int64_t* offset,
                               const void* buffer, uint32_t length, uint32_t* bytesWritten);

/* For class 4, entry is the whole GpAdapterList block; for class 16, &DpDisplayList.adapterIndex. */
VELHAL_C_API uint32_t HalQueryInformation(HalDeviceClass deviceClass, void* entry, uint32_t infoClass,
                                          void* buffer, uint32_t bufferSize, uint32_t* returnedSize);
VELHAL_C_API uint32_t HalSetInformation(HalDeviceClass deviceClass, void* entry, uint32_t infoClass,
                                        void* buffer, uint32_t bufferSize, uint32_t* returnedSize);

/* endpoint 0 is the microphone, 1 the speaker. The library takes over one reference. */
VELHAL_C_API uint32_t HalSetCallback(HalDeviceClass deviceClass, uint32_t endpoint,
                                     struct IAudioEndpointVolumeCallback* callback, void* context);

/*
 * Module entry points. Text answers of the processor and battery are narrow (ANSI code page)
 * NUL-terminated strings: the buffer must be longer than the text, *returnedSize receives its
 * length without the NUL. Numbers are u32 at buffer[0..3] unless the class says otherwise.
 */

/* Processor: CpuInit detects the processor type (0 unknown, 1 Intel, 2 AMD, 3 Snapdragon). */
VELHAL_C_API uint32_t CpuInit(void);
VELHAL_C_API uint32_t CpuQueryInformation(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                          uint32_t* returnedSize);

/* Battery: BtSetInformation accepts class 12, the two charge-threshold bytes. */
VELHAL_C_API uint32_t BtInit(void);
VELHAL_C_API uint32_t BtQueryInformation(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                         uint32_t* returnedSize);
VELHAL_C_API uint32_t BtSetInformation(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                       uint32_t* returnedSize);

/* Memory modules: MmInit makes a HalDeviceList (list is a HalDeviceList**). */
VELHAL_C_API uint32_t MmInit(void* list);
VELHAL_C_API uint32_t MmQueryInformation(HalDeviceEntry* entry, uint32_t infoClass, void* buffer,
                                         uint32_t bufferSize, uint32_t* returnedSize);

/*
 * Whether the firmware's chassis type byte (SMBIOS type 3) says "detachable" (0x20). The
 * result is one byte: C's bool (_Bool) and C++'s bool alike, 1 for true and 0 for false.
 */
VELHAL_C_API bool IsTypeDetachablePC(void);

#endif /* VELHAL_HAL_API_H_ */
