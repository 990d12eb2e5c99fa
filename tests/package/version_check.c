/* The version macros of zel/version.h: consistent with each other, with the version the build
 * was configured with, and with the version the loaded core reports. */
#include <stdio.h>
#include <string.h>

#include <zel.h>

#if !defined(ZEL_VERSION_MAJOR) || !defined(ZEL_VERSION_MINOR) || !defined(ZEL_VERSION_PATCH)
#error "zel.h does not define the version macros"
#endif
#if ZEL_VERSION != ZEL_VERSION_MAJOR * 10000 + ZEL_VERSION_MINOR * 100 + ZEL_VERSION_PATCH
#error "ZEL_VERSION does not combine its parts"
#endif
#if !(ZEL_VERSION_NUMBER(2, 0, 9) < ZEL_VERSION_NUMBER(2, 1, 0) && ZEL_VERSION_NUMBER(2, 99, 99) < ZEL_VERSION_NUMBER(3, 0, 0))
#error "ZEL_VERSION_NUMBER does not order releases"
#endif

int main(void)
{
    int failures = 0;
    char parts[64];
    snprintf(parts, sizeof parts, "%d.%d.%d", ZEL_VERSION_MAJOR, ZEL_VERSION_MINOR, ZEL_VERSION_PATCH);
    if (strcmp(parts, ZEL_VERSION_STRING) != 0 || strcmp(ZEL_VERSION_STRING, ZEL_EXPECTED_VERSION) != 0) {
        printf("FAIL: macros say %s and \"%s\", the build says %s\n", parts, ZEL_VERSION_STRING, ZEL_EXPECTED_VERSION);
        ++failures;
    }
    zel_version loaded;
    zel_serv_get_version(&loaded);
    if (loaded.major_version != ZEL_VERSION_MAJOR || loaded.minor_version != ZEL_VERSION_MINOR) {
        printf("FAIL: the core reports %d.%d, the headers %d.%d\n", (int)loaded.major_version,
               (int)loaded.minor_version, ZEL_VERSION_MAJOR, ZEL_VERSION_MINOR);
        ++failures;
    }
    if (failures == 0)
        printf("version %s (%d) agrees with the build and the loaded core\n", ZEL_VERSION_STRING, ZEL_VERSION);
    return failures != 0;
}
