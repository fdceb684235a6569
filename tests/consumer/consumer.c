/* A host written in C99: the processor's name and type through the flat interface alone, the
 * library's version, and a block freed with the library's own deallocator. */
#include <stdio.h>

#include <velhal/hal/hal_api.h>

int main(void) {
    char name[260] = {0};
    uint32_t returned = 0;
    uint32_t type = 0;
    HalDeviceList* disks = NULL;
    if (HalGetVersion() != VELHAL_VERSION) {
        fprintf(stderr, "consumer_c: built with %s, running another VelHal\n", VELHAL_VERSION_STRING);
        return 1;
    }
    if (!CpuInit() || !CpuQueryInformation(HAL_CPU_INFO_NAME, name, sizeof name, &returned)) {
        fprintf(stderr, "consumer_c: no processor name\n");
        return 1;
    }
    if (!CpuQueryInformation(HAL_CPU_INFO_TYPE, &type, sizeof type, &returned)) return 1;
    if (HalInit(HAL_CLASS_DISK, &disks)) HalFreeBlock(disks);
    printf("consumer_c: VelHal %s: %s (type %u, detachable %d)\n", VELHAL_VERSION_STRING, name,
           (unsigned)type, IsTypeDetachablePC() ? 1 : 0);
    return 0;
}
