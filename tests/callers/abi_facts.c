/* The record layouts that the VBA and .NET declarations mirror, as this
   compiler lays them out: each fact is the value of an absolute symbol,
   which the declaration check reads back with nm. */
#include <stddef.h>
#include <time.h>

#include "MvSup2u.h"

typedef struct tm tm;

#define MVSUP_FACT(name, value) \
  __asm__ volatile(".globl mvsup_fact_" #name "\n\t.set mvsup_fact_" #name ", %c0" : : "i"(value));
#define MVSUP_RECORD(type) MVSUP_FACT(type##__size, sizeof(type))
#define MVSUP_FIELD(type, index, field)                            \
  MVSUP_FACT(type##__##index##__offset, offsetof(type, field))     \
  MVSUP_FACT(type##__##index##__size, sizeof(((type*)0)->field))

void mvsup_abi_facts(void);
void mvsup_abi_facts(void) {
  MVSUP_RECORD(MVSUP_DIGEST_REQUEST)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 0, nonceCount)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 1, nonce)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 2, cnonce)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 3, user)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 4, realm)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 5, password)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 6, algorithm)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 7, method)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 8, qop)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 9, digestUri)
  MVSUP_FIELD(MVSUP_DIGEST_REQUEST, 10, response)

  MVSUP_RECORD(SYSTEMTIME)
  MVSUP_FIELD(SYSTEMTIME, 0, wYear)
  MVSUP_FIELD(SYSTEMTIME, 1, wMonth)
  MVSUP_FIELD(SYSTEMTIME, 2, wDayOfWeek)
  MVSUP_FIELD(SYSTEMTIME, 3, wDay)
  MVSUP_FIELD(SYSTEMTIME, 4, wHour)
  MVSUP_FIELD(SYSTEMTIME, 5, wMinute)
  MVSUP_FIELD(SYSTEMTIME, 6, wSecond)
  MVSUP_FIELD(SYSTEMTIME, 7, wMilliseconds)

  MVSUP_RECORD(FILETIME)
  MVSUP_FIELD(FILETIME, 0, dwLowDateTime)
  MVSUP_FIELD(FILETIME, 1, dwHighDateTime)

  MVSUP_RECORD(tm)
  MVSUP_FIELD(tm, 0, tm_sec)
  MVSUP_FIELD(tm, 1, tm_min)
  MVSUP_FIELD(tm, 2, tm_hour)
  MVSUP_FIELD(tm, 3, tm_mday)
  MVSUP_FIELD(tm, 4, tm_mon)
  MVSUP_FIELD(tm, 5, tm_year)
  MVSUP_FIELD(tm, 6, tm_wday)
  MVSUP_FIELD(tm, 7, tm_yday)
  MVSUP_FIELD(tm, 8, tm_isdst)
}
