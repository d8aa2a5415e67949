#pragma once

#include "app/ContentWindow.h"

namespace vellmora::test {

/// What holds of a workspace and its window between any two actions of the user, once events are handled.
/// What does not is reported as a failure of the running test.
void checkInvariants(ContentWindow& shown);

}  // namespace vellmora::test
