#pragma once

/// The program's title: of its message boxes, and the name by which its copies know each other.
inline constexpr char programTitle[] = "Velmar Client";
