/*
 * VelHal flat device-class interface.
 *
 * Compiles as C (C99 and later, clean under -pedantic) and as C++, needs no Windows header,
 * and uses fixed-width types only. Every function returns 1 (or, where documented, the non-zero
 * result of the operating system call) on success and 0 on failure; none of them throws or
 * sets a last error. Hosts that bind the functions by name (GetProcAddress) find a pointer type
 * for each below: PFN_ and the function's name.
 *
 * Blocks handed out by HalInit, MmInit and GpInit are allocated with msvcrt's malloc; the
 * caller releases them with free from that C runtime, or, whatever its own runtime, with
 * HalFreeBlock. The library never frees a block it handed out.
 */
#ifndef VELHAL_HAL_API_H_
#define VELHAL_HAL_API_H_

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "velhal_export.h"
#include "velhal_version.h"

/* Layout checks where the language has them (C11, C++); C99 compiles without them. */
#if defined(__cplusplus)
#define HAL_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define HAL_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#else
#define HAL_STATIC_ASSERT(cond, msg) struct hal_static_assert_c99
#endif

/*
 * The library's version: the macros say which header a host was built with, HalGetVersion
 * which DLL it runs with, as (major << 16) | (minor << 8) | patch.
 */
VELHAL_C_API uint32_t HalGetVersion(void);

/* Frees a block that HalInit, MmInit or GpInit handed out (null is accepted). */
VELHAL_C_API void HalFreeBlock(void* block);

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

/*
 * Information classes, by device class. Each line names the answer's form:
 *   u32 / u64 / i32: little-endian, *returnedSize = its width (the processor's numbers leave
 *       *returnedSize alone);
 *   UTF-16: copied without a NUL, *returnedSize = its bytes, yet 2n + 2 bytes of room needed;
 *   ANSI+NUL: ANSI code page, copied with its NUL; the buffer must be longer than the text;
 *   ANSI: ANSI code page without a NUL (pass a zeroed buffer), buffer longer than the text.
 * "empty fails" marks a text class whose empty answer is a failure; elsewhere it is 0 bytes.
 */

/* Class 0 and CpuQueryInformation: the processor. Clocks in MHz, caches in KiB. */
#define HAL_CPU_INFO_VENDOR 0u              /* ANSI+NUL, empty fails */
#define HAL_CPU_INFO_NAME 1u                /* ANSI+NUL, empty fails */
#define HAL_CPU_INFO_L1_ASSOCIATIVITY 2u    /* ANSI+NUL, e.g. "8-way" */
#define HAL_CPU_INFO_L2_ASSOCIATIVITY 3u    /* ANSI+NUL */
#define HAL_CPU_INFO_L3_ASSOCIATIVITY 4u    /* ANSI+NUL */
#define HAL_CPU_INFO_EXTENDED_LEAF_PROBE 6u /* u32, always 0 when answered */
#define HAL_CPU_INFO_CURRENT_CLOCK 7u       /* u32 */
#define HAL_CPU_INFO_EXTERNAL_CLOCK 8u      /* u32 */
#define HAL_CPU_INFO_MAX_CLOCK 9u           /* u32 */
#define HAL_CPU_INFO_CORES 10u              /* u32 */
#define HAL_CPU_INFO_LOGICAL_PROCESSORS 11u /* u32 */
#define HAL_CPU_INFO_L1_CACHE_SIZE 12u      /* u32 */
#define HAL_CPU_INFO_L2_CACHE_SIZE 13u      /* u32 */
#define HAL_CPU_INFO_L3_CACHE_SIZE 14u      /* u32 */
#define HAL_CPU_INFO_LOAD_PERCENTAGE 17u    /* u32; an idle 0 fails */
#define HAL_CPU_INFO_TYPE 18u               /* u32: 0 unknown, 1 Intel, 2 AMD, 3 Snapdragon */

/* Class 3: the default audio endpoints. Queries and HalSetInformation: */
#define HAL_AUDIO_INFO_SPEAKER_VOLUME 0u  /* i32 percent; set: i32 level, u8 relative flag */
#define HAL_AUDIO_INFO_SPEAKER_MUTE 1u    /* u32 0 or 1 */
#define HAL_AUDIO_INFO_MICROPHONE_MUTE 2u /* u32 0 or 1 */
/* HalSetCallback's endpoint numbers (note the other order). */
#define HAL_AUDIO_ENDPOINT_MICROPHONE 0u
#define HAL_AUDIO_ENDPOINT_SPEAKER 1u

/* Class 5: physical disks. */
#define HAL_DISK_INFO_MEDIA_TYPE_TEXT 0u        /* UTF-16 */
#define HAL_DISK_INFO_CAPTION 1u                /* UTF-16 */
#define HAL_DISK_INFO_SERIAL_NUMBER 2u          /* UTF-16 */
#define HAL_DISK_INFO_SIZE_MIB 3u               /* u64 */
#define HAL_DISK_INFO_FREE_MIB 4u               /* u64 */
#define HAL_DISK_INFO_SIZE_DECIMAL_GB 5u        /* u64 */
#define HAL_DISK_INFO_SIZE_DECIMAL_MB 6u        /* u64 */
#define HAL_DISK_INFO_COUNT 7u                  /* u32 */
#define HAL_DISK_INFO_FREE_MIB_SECOND_FORM 8u   /* u64; a short buffer is zeroed */
#define HAL_DISK_INFO_FIRMWARE_REVISION 9u      /* UTF-16 */
#define HAL_DISK_INFO_TRIM_ENABLED 10u          /* u32 0 or 1 */
#define HAL_DISK_INFO_STORAGE_MEDIA_TYPE 11u    /* u32: 3 HDD, 4 SSD, 5 SCM */
#define HAL_DISK_INFO_SYSTEM_DISK_INDEX 12u     /* u32 */

/* Class 6 and BtQueryInformation: the battery. mWh, mV, mW. */
#define HAL_BATTERY_INFO_PRESENT 0u               /* u32 1 */
#define HAL_BATTERY_INFO_MANUFACTURER 1u          /* ANSI+NUL */
#define HAL_BATTERY_INFO_DEVICE_NAME 2u           /* ANSI+NUL */
#define HAL_BATTERY_INFO_REMAINING_CAPACITY 3u    /* u32 */
#define HAL_BATTERY_INFO_FULL_CHARGE_CAPACITY 4u  /* u32 */
#define HAL_BATTERY_INFO_DESIGN_CAPACITY 5u       /* u32 */
#define HAL_BATTERY_INFO_AC_LINE_STATUS 6u        /* u32: 0 offline, 1 online, 255 unknown */
#define HAL_BATTERY_INFO_VOLTAGE 7u               /* u32 */
#define HAL_BATTERY_INFO_LOSS 8u                  /* u32, hundredths of a percent */
#define HAL_BATTERY_INFO_DISCHARGE_RATE 9u        /* u32 */
#define HAL_BATTERY_INFO_CHARGE_RATE 10u          /* u32 */
/* HalSetInformation(6) and BtSetInformation: two threshold bytes, first then second. */
#define HAL_BATTERY_SET_CHARGE_THRESHOLD 12u

/* Class 11 and MmQueryInformation: memory modules. */
#define HAL_MEMORY_INFO_COUNT 0u          /* u32 */
#define HAL_MEMORY_INFO_LOCATOR 1u        /* ANSI, empty fails */
#define HAL_MEMORY_INFO_MANUFACTURER 2u   /* ANSI, empty fails */
#define HAL_MEMORY_INFO_SERIAL_NUMBER 3u  /* ANSI, empty fails */
#define HAL_MEMORY_INFO_PART_NUMBER 4u    /* ANSI, empty fails */
#define HAL_MEMORY_INFO_CAPACITY 5u       /* u64 bytes */
#define HAL_MEMORY_INFO_SPEED 6u          /* u32, as WMI reports it */

/*
 * Class 4 and GpQueryInforamtion: graphics adapters, answered from a GpAdapterList. "Discrete"
 * is the last record whose discrete flag is set, "integrated" the last whose flag is clear; a
 * class fails when no record qualifies. Each _ALIAS number takes the same path as its pair.
 */
#define HAL_GRAPHICS_INFO_DISCRETE_NAME 0u           /* UTF-16, empty fails */
#define HAL_GRAPHICS_INFO_DISCRETE_STATUS 1u         /* UTF-16, empty fails: WMI Status */
#define HAL_GRAPHICS_INFO_DISCRETE_DRIVER_VERSION 2u /* UTF-16, empty fails */
#define HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE 3u    /* UTF-16, empty fails: YYYYMMDD */
#define HAL_GRAPHICS_INFO_INTEGRATED_NAME 4u         /* UTF-16, empty fails */
#define HAL_GRAPHICS_INFO_INTEGRATED_STATUS 5u       /* UTF-16, empty fails */
#define HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_VERSION 6u /* UTF-16, empty fails */
#define HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE 7u  /* UTF-16, empty fails: YYYYMMDD */
#define HAL_GRAPHICS_INFO_DISCRETE_NAME_ALIAS 8u
#define HAL_GRAPHICS_INFO_DISCRETE_STATUS_ALIAS 9u
#define HAL_GRAPHICS_INFO_DISCRETE_DRIVER_VERSION_ALIAS 10u
#define HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE_ALIAS 11u
#define HAL_GRAPHICS_INFO_INTEGRATED_NAME_ALIAS 12u
#define HAL_GRAPHICS_INFO_INTEGRATED_STATUS_ALIAS 13u
#define HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_VERSION_ALIAS 14u
#define HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE_ALIAS 15u
#define HAL_GRAPHICS_INFO_MONITOR 16u                /* UTF-16, empty fails: PNP model or caption */
#define HAL_GRAPHICS_INFO_RESOLUTION 17u             /* UTF-16, empty fails: "1920x1080" */
#define HAL_GRAPHICS_INFO_NOT_SERVED 18u             /* always fails */
#define HAL_GRAPHICS_INFO_COUNT 19u                  /* u32 adapter records */
#define HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY 20u  /* u32 MiB, 0 when unknown */
#define HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE 21u  /* u32 device problem code */
#define HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY 22u /* u32 MiB, 0 when unknown */
#define HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE 23u /* u32 device problem code */
#define HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY_ALIAS 24u
#define HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY_ALIAS 25u
#define HAL_GRAPHICS_INFO_SCREEN_WIDTH 26u           /* u32 pixels, 0 fails */
#define HAL_GRAPHICS_INFO_SCREEN_HEIGHT 27u          /* u32 pixels, 0 fails */
#define HAL_GRAPHICS_INFO_REFRESH_RATE 28u           /* u32 Hz, 0 fails */
#define HAL_GRAPHICS_INFO_BITS_PER_PIXEL 29u         /* u32, 0 fails */

/*
 * Class 16: the built-in display's brightness and colour, through the AMD display library or
 * the Intel driver with the power scheme. Queries (entry is &DpDisplayList.adapterIndex):
 */
#define HAL_DISPLAY_INFO_COLOR_CAPS 0u               /* u32 (AMD only): supported adjustments */
#define HAL_DISPLAY_INFO_COLOR_TEMPERATURE 2u        /* DpColorRange; Intel: 3 u32 triples */
#define HAL_DISPLAY_INFO_BRIGHTNESS 3u               /* DpColorRange; Intel: {%, 0, 0, 100, 0} */
/* HalSetInformation(16): */
#define HAL_DISPLAY_SET_COLOR_TEMPERATURE 2u         /* u32 level 0-255, u32 mode */
#define HAL_DISPLAY_SET_BRIGHTNESS 3u                /* AMD as 2; Intel: u32 percent */
#define HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS 5u   /* as 2; Intel: 8 bytes needed */
#define HAL_DISPLAY_SET_COLOR_GAINS 6u               /* Intel only: five floats */

/*
 * A batch, for hosts that ask many questions at once: between HalBeginBatch and HalEndBatch,
 * on the calling thread, every WMI query shares one connection per namespace; an identical
 * query (up to blanks beside a comparison) is answered from the rows the batch already holds,
 * as is one that picks a class's objects by a whole number ("WHERE Index='1'") once the batch
 * holds all of the class's objects; and the graphics and IP adapter inventories and each device
 * information set are taken once (a driver reset, removal, enabling or rescan makes the sets be
 * taken again). Batches nest (counted per thread); the outermost HalEndBatch releases
 * everything. End a batch on the thread that began it and before that thread uninitialises COM.
 * HalEndBatch returns 0 when no batch is open.
 */
VELHAL_C_API uint32_t HalBeginBatch(void);
VELHAL_C_API uint32_t HalEndBatch(void);

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
 * Graphics adapters. GpInit makes a GpAdapterList (list is a GpAdapterList**); an empty
 * inventory is success without a block, *list untouched. GpQueryInforamtion (spelt so in the
 * export table) answers HAL_GRAPHICS_INFO_* from the block; a block whose size field is not
 * 8 + 552 x count fails. GpSetInformation has nothing to set and always returns 0.
 */
VELHAL_C_API uint32_t GpInit(GpAdapterList** list);
VELHAL_C_API uint32_t GpQueryInforamtion(GpAdapterList* block, uint32_t infoClass, void* buffer,
                                         uint32_t bufferSize, uint32_t* returnedSize);
VELHAL_C_API uint32_t GpSetInformation(GpAdapterList* block, uint32_t infoClass, void* buffer,
                                       uint32_t bufferSize, uint32_t* returnedSize);

/*
 * Whether the firmware's chassis type byte (SMBIOS type 3) says "detachable" (0x20). The
 * result is one byte: C's bool (_Bool) and C++'s bool alike, 1 for true and 0 for false.
 */
VELHAL_C_API bool IsTypeDetachablePC(void);

/* Pointer types for hosts that bind the functions by name. */
typedef uint32_t (*PFN_HalGetVersion)(void);
typedef void (*PFN_HalFreeBlock)(void* block);
typedef uint32_t (*PFN_HalBeginBatch)(void);
typedef uint32_t (*PFN_HalEndBatch)(void);
typedef uint32_t (*PFN_HalInit)(HalDeviceClass deviceClass, void* list);
typedef uint32_t (*PFN_HalOpenDevice)(HalDeviceClass deviceClass, HalDeviceEntry* entry);
typedef uint32_t (*PFN_HalCloseDevice)(HalDeviceClass deviceClass, HalDeviceEntry* entry);
typedef uint32_t (*PFN_HalRead)(HalDeviceClass deviceClass, HalDeviceEntry* entry, int64_t* offset,
                                void* buffer, uint32_t length, uint32_t* bytesRead);
typedef uint32_t (*PFN_HalWrite)(HalDeviceClass deviceClass, HalDeviceEntry* entry,
                                 int64_t* offset, const void* buffer, uint32_t length,
                                 uint32_t* bytesWritten);
typedef uint32_t (*PFN_HalQueryInformation)(HalDeviceClass deviceClass, void* entry,
                                            uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                            uint32_t* returnedSize);
typedef uint32_t (*PFN_HalSetInformation)(HalDeviceClass deviceClass, void* entry,
                                          uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                          uint32_t* returnedSize);
typedef uint32_t (*PFN_HalSetCallback)(HalDeviceClass deviceClass, uint32_t endpoint,
                                       struct IAudioEndpointVolumeCallback* callback,
                                       void* context);
typedef uint32_t (*PFN_CpuInit)(void);
typedef uint32_t (*PFN_CpuQueryInformation)(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                            uint32_t* returnedSize);
typedef uint32_t (*PFN_BtInit)(void);
typedef uint32_t (*PFN_BtQueryInformation)(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                           uint32_t* returnedSize);
typedef uint32_t (*PFN_BtSetInformation)(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                                         uint32_t* returnedSize);
typedef uint32_t (*PFN_MmInit)(void* list);
typedef uint32_t (*PFN_MmQueryInformation)(HalDeviceEntry* entry, uint32_t infoClass, void* buffer,
                                           uint32_t bufferSize, uint32_t* returnedSize);
typedef uint32_t (*PFN_GpInit)(GpAdapterList** list);
typedef uint32_t (*PFN_GpQueryInforamtion)(GpAdapterList* block, uint32_t infoClass, void* buffer,
                                           uint32_t bufferSize, uint32_t* returnedSize);
typedef uint32_t (*PFN_GpSetInformation)(GpAdapterList* block, uint32_t infoClass, void* buffer,
                                         uint32_t bufferSize, uint32_t* returnedSize);
typedef bool (*PFN_IsTypeDetachablePC)(void);

#endif /* VELHAL_HAL_API_H_ */
