// The one place that includes the Windows headers, so that every source sees
// the same macros (UNICODE, NOMINMAX, WIN32_LEAN_AND_MEAN come from the build).
#pragma once

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <wincrypt.h>
#include <wininet.h>
