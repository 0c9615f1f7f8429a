// advapi32's MD5, as Windows exports it (no SDK header declares it): an
// independent oracle for the tests and the benchmark.
#pragma once

#include <windows.h>

struct AdvapiMd5Context {
  ULONG bits[2];
  ULONG state[4];
  unsigned char buffer[64];
  unsigned char digest[16];
};
extern "C" {
void WINAPI MD5Init(AdvapiMd5Context* context);
void WINAPI MD5Update(AdvapiMd5Context* context, const unsigned char* data, unsigned int length);
void WINAPI MD5Final(AdvapiMd5Context* context);
}
