/* A host written in C: the chief header must compile as C without <windows.h>. */
#include "hal/hal_api.h"

#include <stdlib.h>

uint32_t CHostInitProcessorAndBattery(void) {
    HalDeviceList* list = NULL;
    uint32_t processor = HalInit(HAL_CLASS_PROCESSOR, NULL);
    uint32_t battery = HalInit(HAL_CLASS_BATTERY, &list);
    free(list); /* still NULL: classes 0 and 6 make no block */
    return processor + battery;
}

/* The detachable test as a C host binds it: a one-byte bool through a plain name. */
uint32_t CHostIsTypeDetachablePC(void) { return IsTypeDetachablePC() ? 1u : 0u; }
