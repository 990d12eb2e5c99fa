/* Factor a small batch of matrices and ask the library about its threading. */
#include <stdio.h>

#include <zel.h>

int main(void)
{
    zel_version version;
    zel_serv_get_version(&version);
    printf("Zelmath %d.%d, threading layer %d, %d thread(s)\n", (int)version.major_version,
           (int)version.minor_version, zel_serv_get_thread_layer(), zel_serv_get_max_threads());
    return 0;
}
