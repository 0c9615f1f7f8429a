/* Start-up of the MSVC-ABI test clients. They link no C runtime start-up
   objects (no Microsoft files are needed to build them): the entry point
   calls main and leaves through the C runtime's exit, which flushes stdout. */
#include <stdlib.h>

int main(void);

/* Referenced by any object that uses floating point. */
int _fltused = 0;

void mainCRTStartup(void) { exit(main()); }
