// Names of the numerical-reproducibility modes, shared by the verbose line and `zel info`.
#pragma once

namespace zel::serv {

// The mode's name, or null for a code without one (5, 11 and anything outside 1-12).
inline const char *cbwr_mode_name(int code)
{
    switch (code) {
    case 1: return "OFF";
    case 2: return "AUTO";
    case 3: return "COMPATIBLE";
    case 4: return "SSE2";
    case 6: return "SSSE3";
    case 7: return "SSE4_1";
    case 8: return "SSE4_2";
    case 9: return "AVX";
    case 10: return "AVX2";
    case 12: return "AVX512";
    default: return nullptr;
    }
}

// Set in zel_serv_cbwr_get(-1) when the mode is strict.
constexpr int cbwr_strict_bit = 65536;

} // namespace zel::serv
