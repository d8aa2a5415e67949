#pragma once

#include <QtGlobal>

namespace vellmora::test {

/// True where the tests are asked to take their time (`./test --long`).
inline bool isLongRun() {
    return qEnvironmentVariableIntValue("VELLMORA_LONG_TESTS") != 0;
}

}  // namespace vellmora::test
