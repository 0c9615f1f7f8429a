/* A plain C client of the library: the umbrella header must compile as
   strict C, and the program must link against the import library and run. */
#include <stdio.h>

#include "MvSup2u.h"

int main(void) {
  LONG mode = GetMvSupMode(MVSUP_MODE_INITIALISED);
  LCID lcid = 0;
  wchar_t buffer[MAX_PATH];
  if (!LCIDfromLangTag(L"pt-br", &lcid) || lcid != 0x0816) {
    printf("LCIDfromLangTag gave %lx\n", (unsigned long)lcid);
    return 1;
  }
  if ((unsigned long)mode != MVSUP_MODE_INITIALISED) {
    printf("GetMvSupMode gave %lx\n", (unsigned long)mode);
    return 1;
  }
  GetProgramDirectoryPath(buffer, MAX_PATH);
  printf("client ok\n");
  return 0;
}
