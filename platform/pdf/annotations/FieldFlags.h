#pragma once

namespace vellmora {

// Field flags (ISO 32000-2, tables 229, 231 and 233), counted from 1.
constexpr int multilineFlag = 13;
constexpr int passwordFlag = 14;
constexpr int radioFlag = 16;
constexpr int pushButtonFlag = 17;
constexpr int comboFlag = 18;
constexpr int combFlag = 25;

}  // namespace vellmora
