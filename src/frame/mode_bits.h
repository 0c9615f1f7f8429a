// The mode word: its bits, the registry value behind each, and where that
// value lives. Shared by the start-up code and the support tool so that both
// describe the same switches.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>

namespace mvsup::mode {

inline constexpr DWORD kRunAsService = 0x00000001;
inline constexpr DWORD kUserRootIsCurrentUser = 0x00000002;
inline constexpr DWORD kNoRoaming = 0x00000004;
inline constexpr DWORD kPrivateLogDir = 0x00000008;
inline constexpr DWORD kIconFromSHFileInfo = 0x00000010;
inline constexpr DWORD kRemoteFileNameAsLocalFileName = 0x00000020;
inline constexpr DWORD kPrependHandleToFileName = 0x00000040;
inline constexpr DWORD kUseCryptor = 0x00000080;
inline constexpr DWORD kHalcyoDocClassId = 0x00000100;
inline constexpr DWORD kNsxAsDrive = 0x00010000;
inline constexpr DWORD kReloadQuery = 0x00100000;  // asked for, never stored
inline constexpr DWORD kEnableMacro = 0x01000000;
inline constexpr DWORD kLiteSDK = 0x40000000;
inline constexpr DWORD kInitialised = 0x80000000;

inline constexpr const wchar_t* kClientKey = L"Software\\Corvell\\Mervane Client";

// Where the value that sets a bit is read from.
enum class Source {
  MachineClientKey,    // HKEY_LOCAL_MACHINE, the client key itself
  UserClientKey,       // HKEY_CURRENT_USER, the client key itself
  ComponentSettings,   // a component key under the user registry root
  None,                // no registry source
};

struct BitSource {
  DWORD bit;
  const wchar_t* value_name;
  Source source;
  const wchar_t* component;  // for ComponentSettings
  DWORD default_value;
};

// In the order in which start-up reads them.
inline constexpr std::array<BitSource, 11> kBitSources{{
    {kRunAsService, L"RunAsService", Source::MachineClientKey, nullptr, 0},
    {kNsxAsDrive, L"NsxAsDrive", Source::MachineClientKey, nullptr, 0},
    {kNoRoaming, L"NoRoaming", Source::UserClientKey, nullptr, 0},
    {kIconFromSHFileInfo, L"IconFromSHFileInfo", Source::ComponentSettings, L"MVSUP\\Settings", 1},
    {kUseCryptor, L"UseCryptor", Source::ComponentSettings, L"MVSUP\\Settings", 0},
    {kHalcyoDocClassId, L"HalcyoDocClassId", Source::ComponentSettings, L"MVSUP\\Settings", 0},
    {kPrivateLogDir, L"PrivateLogDir", Source::ComponentSettings, L"MVSUP\\Settings", 0},
    {kRemoteFileNameAsLocalFileName, L"RemoteFileNameAsLocalFileName", Source::ComponentSettings,
     L"MvNsx\\Settings", 0},
    {kPrependHandleToFileName, L"PrependHandleToFileName", Source::ComponentSettings,
     L"MvNsx\\Settings", 0},
    {kEnableMacro, L"EnableMacro", Source::ComponentSettings, L"MvNsx\\Settings", 0},
    {kLiteSDK, L"LiteSDK", Source::UserClientKey, nullptr, 0},
}};

// Limits read at start-up, with their sources and defaults.
inline constexpr const wchar_t* kMaxItemsComponent = L"MvNsx\\Settings";
inline constexpr const wchar_t* kMaxItemsValue = L"MaxFolderItemCount";
inline constexpr DWORD kDefaultMaxItems = 4096;
inline constexpr const wchar_t* kIllegalCharsComponent = L"MvAxess\\Settings";
inline constexpr const wchar_t* kIllegalCharsValue = L"IllegalPathNameChars";
inline constexpr const wchar_t* kDefaultIllegalChars = L":\\/*?\"<>|";
inline constexpr int kIllegalCharsCapacity = 16;
// Longest usable file title is this minus the length of the work directory.
inline constexpr int kPathBudget = 210;
inline constexpr int kWorkDirectoryCapacity = 260;

inline constexpr int max_path_for_work_directory(int work_directory_length) {
  return kPathBudget - work_directory_length;
}

}  // namespace mvsup::mode
