#include "model/EventStore.h"
