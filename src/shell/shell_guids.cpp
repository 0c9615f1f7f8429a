// Defines the GUIDs declared in the shell family's public header.
#include <windows.h>
#include <shlobj.h>

#include <initguid.h>

#include "MvSupShell.h"
