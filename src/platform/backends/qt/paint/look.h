#pragma once

// The colours of everything that the toolkit draws for us: text boxes, lists, toggles, menus,
// boxes, tips. The forms' own colours come with their designs.

#include <QColor>

namespace velmora::platform::qt::look {

inline constexpr QRgb bodyTop = 0xFF2B3340;
inline constexpr QRgb bodyMiddle = 0xFF232A35;
inline constexpr QRgb bodyFoot = 0xFF1A2029;
inline constexpr QRgb outline = 0xFF3D4858;
inline constexpr QRgb litEdge = 0xFF566377;
inline constexpr QRgb insetTop = 0xFF0B0F15;
inline constexpr QRgb insetFoot = 0xFF121822;
inline constexpr QRgb insetOutline = 0xFF05070A;
inline constexpr QRgb accent = 0xFF5BE0CF;
inline constexpr QRgb accentDeep = 0xFF27B5A6;
inline constexpr QRgb accentInk = 0xFF0E2420;
inline constexpr QRgb rowTint = 0x4D27B5A6; // 30 % of the accent
inline constexpr QRgb keyTop = 0xFF3A4454;
inline constexpr QRgb keyFoot = 0xFF2A323F;
inline constexpr QRgb keyOutline = 0xFF4A566A;
inline constexpr QRgb text = 0xFFE9EDF3;
inline constexpr QRgb secondVoice = 0xFF9FACBD;
inline constexpr QRgb dimmed = 0xFF66717F;
inline constexpr QRgb warning = 0xFFFF6B5E;

} // namespace velmora::platform::qt::look
