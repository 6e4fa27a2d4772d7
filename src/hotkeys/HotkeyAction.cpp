#include "hotkeys/HotkeyAction.h"
