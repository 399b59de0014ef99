#pragma once

// The registry tree of the program, below HKEY_LOCAL_MACHINE. The spellings are those of settings
// that exist on disk.

namespace velmora::keys {

inline constexpr char16_t identity[] = u"SOFTWARE\\Norvane\\zkPlayer\\Vesion";
inline constexpr char16_t playSet[] = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
inline constexpr char16_t playParameters[] = u"SOFTWARE\\Norvane\\zkPlayer\\playParameters";
inline constexpr char16_t hosts[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";

inline constexpr char16_t provider[] =
    u"winmgmts:{impersonationLevel=impersonate}!\\\\.\\root\\default:StdRegProv";

} // namespace velmora::keys
