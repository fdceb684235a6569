/* A host written in C: the processor's name and type through the flat interface alone. */
#include <stdio.h>

#include <velhal/hal/hal_api.h>

int main(void) {
    char name[260] = {0};
    uint32_t returned = 0;
    uint32_t type = 0;
    if (!CpuInit() || !CpuQueryInformation(HAL_CPU_INFO_NAME, name, sizeof name, &returned)) {
        fprintf(stderr, "consumer_c: no processor name\n");
        return 1;
    }
    if (!CpuQueryInformation(HAL_CPU_INFO_TYPE, &type, sizeof type, &returned)) return 1;
    printf("consumer_c: %s (type %u, detachable %d)\n", name, (unsigned)type,
           IsTypeDetachablePC() ? 1 : 0);
    return 0;
}
