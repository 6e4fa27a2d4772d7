#include "hotkeys/Hotkey.h"
