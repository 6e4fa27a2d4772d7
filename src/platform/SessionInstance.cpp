#include "platform/SessionInstance.h"

// apart from all others, so that the thin program gets none of them
#include "moc_SessionInstance.cpp" // NOLINT(bugprone-suspicious-include)
