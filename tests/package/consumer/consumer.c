/* A client built against the installed library: a handle, a Base64 text and
   a digest, each checked against its known answer. */
#include <stdio.h>
#include <string.h>

#include <MvSup2u.h>

int main(void) {
  wchar_t handle[32];
  LPSTR base64 = NULL;
  DWORD base64Length = 0;
  BYTE digest[16] = {0};
  static const BYTE kDigestOfAbc[16] = {0x90, 0x01, 0x50, 0x98, 0x3c, 0xd2, 0x4f, 0xb0,
                                       0xd6, 0x96, 0x3f, 0x7d, 0x28, 0xe1, 0x7f, 0x72};

  if (GetMvxItemHandleAsString(MVXITEMTYPE_FILE, 12, handle, 32) != 7 || wcscmp(handle, L"File-12") != 0) {
    printf("GetMvxItemHandleAsString gave %ls\n", handle);
    return 1;
  }
  if (Base64Encode((const BYTE*)"MvSup2u", 7, &base64, &base64Length) != S_OK || base64Length != 12 ||
      memcmp(base64, "TXZTdXAydQ==", 12) != 0) {
    printf("Base64Encode failed\n");
    return 1;
  }
  GlobalFree(base64);
  if (MD5GetDigest("abc", 3, digest) != S_OK || memcmp(digest, kDigestOfAbc, 16) != 0) {
    printf("MD5GetDigest failed\n");
    return 1;
  }
  printf("consumer ok (%s)\n", CONSUMER_KIND);
  return 0;
}
