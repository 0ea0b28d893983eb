#include "LoggingCategory.h"

namespace HIDCommunicator {

Q_LOGGING_CATEGORY(hidCategory, "quillon.hid")

} // namespace HIDCommunicator
